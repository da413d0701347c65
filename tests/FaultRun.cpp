#include "tests/FaultRun.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>

namespace test {

namespace {

std::string AllOf(int file) {
    std::string text;
    char piece[4096];
    for (ssize_t got; (got = ::read(file, piece, sizeof piece)) > 0;)
        text.append(piece, static_cast<std::size_t>(got));
    ::close(file);
    return text;
}

}  // namespace

FaultRun RunWithFault(const std::vector<std::string>& command, const std::string& folder, int call,
                      int error) {
    int log[2], err[2];
    EXPECT_EQ(::pipe(log), 0);
    EXPECT_EQ(::pipe(err), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::setenv("LD_PRELOAD", FAULT_SHIM, 1);
        ::setenv("ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0", 1);
        ::setenv("SHIM_FOLDER", folder.c_str(), 1);
        ::setenv("SHIM_CALL", std::to_string(call).c_str(), 1);
        ::setenv("SHIM_ERROR", std::to_string(error).c_str(), 1);
        ::setenv("SHIM_LOG", std::to_string(log[1]).c_str(), 1);
        ::dup2(err[1], 2);
        ::close(log[0]);
        ::close(err[0]);
        std::vector<char*> arguments;
        for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
        arguments.push_back(nullptr);
        ::execv(arguments[0], arguments.data());
        ::_exit(127);
    }
    ::close(log[1]);
    ::close(err[1]);
    FaultRun run;
    std::istringstream calls(AllOf(log[0]));
    for (std::string line; std::getline(calls, line);) run.calls.push_back(line);
    run.message = AllOf(err[0]);
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    if (error == kKill && call >= 0 && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) return run;
    EXPECT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status) << "\n" << run.message;
    run.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

}  // namespace test
