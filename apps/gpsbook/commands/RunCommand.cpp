#include "apps/gpsbook/commands/RunCommand.h"

#include <iostream>

#include "apps/gpsbook/writers/WriteError.h"

namespace gpsbook {

ExitCode ExitCodeOf(gpsproject::ProjectError::Kind kind) {
    using Kind = gpsproject::ProjectError::Kind;
    switch (kind) {
        case Kind::notFound:
            return exitNotFound;
        case Kind::locked:
        case Kind::changedOutside:
            return exitConflict;
        case Kind::damaged:
        case Kind::tooNew:
        case Kind::readOnly:
            return exitRefused;
        case Kind::exists:
        case Kind::notHeld:
        case Kind::system:
            break;
    }
    return exitFailure;
}

int RunCommand(const std::string& name, const std::function<void()>& work) {
    const auto tell = [&](const std::exception& e) {
        std::cerr << "gpsbook " << name << ": " << e.what() << '\n';
    };
    try {
        work();
        return exitDone;
    } catch (const CommandError& e) {
        tell(e);
        return e.Code();
    } catch (const WriteError& e) {
        tell(e);
        return exitFailure;
    } catch (const gpsproject::ProjectError& e) {
        tell(e);
        return ExitCodeOf(e.GetKind());
    }
}

}  // namespace gpsbook
