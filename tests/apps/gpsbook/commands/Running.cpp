#include "tests/apps/gpsbook/commands/Running.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>

namespace gpsbook::test {

namespace {

constexpr std::chrono::milliseconds kStep{2};

}  // namespace

Running::Running(const Workplace& place, const std::vector<std::string>& arguments, bool pipe,
                 std::size_t mostBytes) {
    std::signal(SIGPIPE, SIG_IGN);
    int ends[2] = {-1, -1};
    EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    const int out = ::open((kept_ / "out").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const int err = ::open((kept_ / "err").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    std::vector<char*> argv{const_cast<char*>("gpsbook")};
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const std::string folder = place.Path("");
    child_ = ::fork();
    if (child_ == 0) {
        std::signal(SIGPIPE, SIG_DFL);
        if (mostBytes > 0) {
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{mostBytes, mostBytes};
            ::setrlimit(RLIMIT_FSIZE, &limit);
        }
        const bool ready = ::chdir(folder.c_str()) == 0 && ::dup2(ends[0], STDIN_FILENO) >= 0 &&
                           ::dup2(out, STDOUT_FILENO) >= 0 && ::dup2(err, STDERR_FILENO) >= 0;
        if (ready) ::execv(GPSBOOK_PROGRAM, argv.data());
        ::_exit(127);
    }
    EXPECT_GT(child_, 0);
    for (const int file : {ends[0], out, err}) ::close(file);
    input_ = ends[1];
    if (!pipe) CloseInput();
}

Running::~Running() {
    CloseInput();
    if (child_ <= 0) return;
    ::kill(child_, SIGKILL);
    ::waitpid(child_, nullptr, 0);
}

void Running::Feed(const std::string& text) const {
    for (std::size_t at = 0; at < text.size();) {
        const ssize_t n = ::write(input_, text.data() + at, text.size() - at);
        if (n <= 0) return;
        at += static_cast<std::size_t>(n);
    }
}

void Running::CloseInput() {
    if (input_ >= 0) ::close(input_);
    input_ = -1;
}

void Running::WaitFor(const std::function<bool(const std::string& out)>& holds) const {
    for (int i = 0; i < 10000; ++i) {
        if (holds(Out())) return;
        std::this_thread::sleep_for(kStep);
    }
    ADD_FAILURE() << "it did not come to that: " << Out() << ReadFile(kept_ / "err");
}

void Running::Signal(int number) const { EXPECT_EQ(::kill(child_, number), 0); }

Outcome Running::End() {
    int status = 0;
    pid_t ended = 0;
    for (int i = 0; i < 30000 && ended == 0; ++i) {
        ended = ::waitpid(child_, &status, WNOHANG);
        if (ended == 0) std::this_thread::sleep_for(kStep);
    }
    if (ended == 0) {
        ADD_FAILURE() << "it does not end";
        ::kill(child_, SIGKILL);
        ::waitpid(child_, &status, 0);
    }
    child_ = -1;
    CloseInput();
    Outcome outcome;
    outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    outcome.out = Out();
    outcome.err = ReadFile(kept_ / "err");
    return outcome;
}

}  // namespace gpsbook::test
