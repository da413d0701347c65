#include "tests/apps/gpsbook/commands/Shell.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <string_view>

namespace gpsbook::test {

std::string OutputOf(const std::string& folder, const std::string& command, int& exitCode) {
    const std::string line = "cd '" + folder + "' && { " + command + "\n} 2>&1";
    std::FILE* const pipe = ::popen(line.c_str(), "r");
    EXPECT_NE(pipe, nullptr);
    if (pipe == nullptr) return {};
    std::string text;
    char buffer[4096];
    for (std::size_t n = 0; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) text.append(buffer, n);
    const int status = ::pclose(pipe);
    exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return text;
}

std::string Typed(const std::vector<std::string>& shell, const std::string& folder, const std::string& keys,
                  const std::string& awaited) {
    std::vector<char*> argv;
    for (const std::string& argument : shell) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const winsize size{40, 200, 0, 0};
    int terminal = -1;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, &size);
    if (child == 0) {
        if (::chdir(folder.c_str()) == 0 && ::setenv("TERM", "dumb", 1) == 0) ::execvp(argv[0], argv.data());
        ::_exit(127);
    }
    EXPECT_GT(child, 0);
    EXPECT_EQ(::write(terminal, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    std::string drawn;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (drawn.find(awaited) == std::string::npos && std::chrono::steady_clock::now() < end) {
        pollfd ready{terminal, POLLIN, 0};
        if (::poll(&ready, 1, 100) <= 0) continue;
        char buffer[4096];
        const ssize_t n = ::read(terminal, buffer, sizeof buffer);
        if (n <= 0) break;
        for (const char c : std::string_view(buffer, static_cast<std::size_t>(n))) {
            if (c == '\b' && !drawn.empty())
                drawn.pop_back();
            else
                drawn += c;
        }
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    ::close(terminal);
    return drawn;
}

}  // namespace gpsbook::test
