#include "apps/gpsbook/book/Interrupt.h"

#include <csignal>

#include "apps/gpsbook/commands/CommandError.h"

namespace gpsbook {

namespace {

volatile std::sig_atomic_t asked = 0;

}  // namespace

void WatchForInterrupt() {
    struct sigaction action {};
    action.sa_handler = [](int) { asked = 1; };
    action.sa_flags = SA_RESETHAND;  // the second signal does what it always does
    for (const int signal : {SIGINT, SIGTERM}) {
        struct sigaction before {};
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);  // a shell may have asked for that
    }
}

bool IsAskedToEnd() { return asked != 0; }

void CheckInterrupt() {
    if (asked != 0) throw CommandError(exitFailure, "interrupted; nothing was written");
}

}  // namespace gpsbook
