#include "apps/gpsbook/book/Interrupt.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

#include "apps/gpsbook/commands/CommandError.h"

namespace gpsbook {
namespace {

// 0: nothing was asked before the signal, and the check after it ends the work with a failure.
int AskToEnd(int signal) {
    WatchForInterrupt();
    CheckInterrupt();
    (void)std::raise(signal);
    try {
        CheckInterrupt();
    } catch (const CommandError& e) {
        return e.Code() == exitFailure ? 0 : 2;
    }
    return 3;
}

TEST(InterruptDeathTest, SignalIsNotedAndEndsTheWorkAtTheNextCheck) {
    for (const int signal : {SIGINT, SIGTERM})
        EXPECT_EXIT(std::_Exit(AskToEnd(signal)), testing::ExitedWithCode(0), "") << signal;
}

TEST(InterruptDeathTest, SecondSignalEndsTheProgramAtOnce) {
    EXPECT_EXIT(
        {
            AskToEnd(SIGTERM);
            (void)std::raise(SIGTERM);
        },
        testing::KilledBySignal(SIGTERM), "");
}

// A shell starts a job in the background with SIGINT ignored: it goes on when the terminal is interrupted.
TEST(InterruptDeathTest, IgnoredSignalStaysIgnored) {
    EXPECT_EXIT(
        {
            (void)std::signal(SIGINT, SIG_IGN);
            std::_Exit(AskToEnd(SIGINT));
        },
        testing::ExitedWithCode(3), "");
}

}  // namespace
}  // namespace gpsbook
