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

ExitCode ExitCodeOf(gpssync::TransportError::Kind kind) {
    using Kind = gpssync::TransportError::Kind;
    switch (kind) {
        case Kind::noAnswer:
            return exitServer;
        case Kind::notFound:
            return exitNotFound;
        case Kind::older:
        case Kind::refused:
            return exitConflict;
        case Kind::damaged:
            break;
    }
    return exitRefused;
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
    } catch (const gpssync::TransportError& e) {
        tell(e);
        return ExitCodeOf(e.GetKind());
    }
}

}  // namespace gpsbook
