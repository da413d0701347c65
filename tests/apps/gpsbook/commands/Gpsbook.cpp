#include "tests/apps/gpsbook/commands/Gpsbook.h"

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <charconv>
#include <chrono>
#include <cstdlib>
#include <thread>

namespace gpsbook::test {

namespace {

/// The files that take the place of the three standard ones.
struct Streams {
    int in;
    int out;
    int err;
};

// In the child: nothing here may return.
[[noreturn]] void Become(const std::string& folder, const std::vector<std::string>& arguments,
                         const std::map<std::string, std::string>& environment, const Streams& streams) {
    std::vector<char*> argv{const_cast<char*>("gpsbook")};
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    for (const auto& [name, value] : environment) ::setenv(name.c_str(), value.c_str(), 1);
    const bool ready = ::chdir(folder.c_str()) == 0 && ::dup2(streams.in, STDIN_FILENO) >= 0 &&
                       ::dup2(streams.out, STDOUT_FILENO) >= 0 && ::dup2(streams.err, STDERR_FILENO) >= 0;
    if (ready) ::execv(GPSBOOK_PROGRAM, argv.data());
    ::_exit(127);
}

pid_t Start(const std::string& folder, const std::vector<std::string>& arguments,
            const std::map<std::string, std::string>& environment, const Streams& streams) {
    const pid_t child = ::fork();
    if (child == 0) Become(folder, arguments, environment, streams);
    EXPECT_GT(child, 0);
    return child;
}

int ExitCodeOf(pid_t child) {
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int Run(const std::string& folder, const std::vector<std::string>& arguments,
        const std::map<std::string, std::string>& environment, const Streams& streams) {
    return ExitCodeOf(Start(folder, arguments, environment, streams));
}

int Opened(const std::string& path, int flags) {
    const int file = ::open(path.c_str(), flags | O_CLOEXEC, 0600);
    EXPECT_GE(file, 0) << path;
    return file;
}

std::string AllOf(int file) {
    std::string text;
    char buffer[4096];
    for (ssize_t n = ::read(file, buffer, sizeof buffer); n > 0; n = ::read(file, buffer, sizeof buffer))
        text.append(buffer, static_cast<std::size_t>(n));
    return text;
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    return stream << "exit code " << outcome.exitCode << "\n--- standard output\n"
                  << outcome.out.substr(0, 4000) << "\n--- standard error\n"
                  << outcome.err << "---\n";
}

Outcome Workplace::Run(const std::vector<std::string>& arguments, const Surroundings& around) const {
    const TestFolder kept;
    WriteFile(kept / "in", around.input);
    const bool keepOut = around.outputTo.empty();
    const Streams streams{
        Opened(kept / "in", O_RDONLY),
        keepOut ? Opened(kept / "out", O_WRONLY | O_CREAT) : Opened(around.outputTo, O_WRONLY),
        Opened(kept / "err", O_WRONLY | O_CREAT)};
    Outcome outcome;
    outcome.exitCode = test::Run(folder_ / "", arguments, around.environment, streams);
    for (const int file : {streams.in, streams.out, streams.err}) ::close(file);
    if (keepOut) outcome.out = ReadFile(kept / "out");
    outcome.err = ReadFile(kept / "err");
    return outcome;
}

Outcome Workplace::RunOnTerminal(const std::vector<std::string>& arguments) const {
    const TestFolder kept;
    int terminal = -1;
    int line = -1;
    EXPECT_EQ(::openpty(&terminal, &line, nullptr, nullptr, nullptr), 0);
    const Streams streams{Opened("/dev/null", O_RDONLY), Opened(kept / "out", O_WRONLY | O_CREAT), line};
    Outcome outcome;
    std::thread reader([&] { outcome.err = AllOf(terminal); });  // ends when the line is closed everywhere
    outcome.exitCode = test::Run(folder_ / "", arguments, {}, streams);
    for (const int file : {streams.in, streams.out, streams.err}) ::close(file);
    reader.join();
    ::close(terminal);
    outcome.out = ReadFile(kept / "out");
    return outcome;
}

Outcome Workplace::RunInterrupted(const std::vector<std::string>& arguments, const std::string& input) const {
    const TestFolder kept;
    int ends[2] = {-1, -1};
    EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    EXPECT_EQ(::write(ends[1], input.data(), input.size()), static_cast<ssize_t>(input.size()));
    const Streams streams{ends[0], Opened(kept / "out", O_WRONLY | O_CREAT),
                          Opened(kept / "err", O_WRONLY | O_CREAT)};
    const std::size_t before = Names().size();
    const pid_t child = Start(folder_ / "", arguments, {}, streams);
    for (int i = 0; i < 2000 && Names().size() == before; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_GT(Names().size(), before) << "no output was prepared";
    EXPECT_EQ(::kill(child, SIGINT), 0);
    ::close(ends[1]);
    Outcome outcome;
    outcome.exitCode = ExitCodeOf(child);
    for (const int file : {streams.in, streams.out, streams.err}) ::close(file);
    outcome.out = ReadFile(kept / "out");
    outcome.err = ReadFile(kept / "err");
    return outcome;
}

Outcome Workplace::Convert(std::vector<std::string> arguments, const Surroundings& around) const {
    arguments.insert(arguments.begin(), {"convert", "--crs", "EPSG:32633"});
    return Run(arguments, around);
}

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

namespace {

// The tests use no text with a quote or a line break in it.
std::vector<std::string> CellsOf(const std::string& line) {
    std::vector<std::string> cells(1);
    for (const char c : line) {
        if (c == ',')
            cells.emplace_back();
        else
            cells.back() += c;
    }
    return cells;
}

}  // namespace

CsvRows RowsOf(const std::string& csv) {
    CsvRows rows;
    const std::vector<std::string> lines = LinesOf(csv);
    if (lines.empty()) return rows;
    const std::vector<std::string> names = CellsOf(lines[0]);
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::vector<std::string> cells = CellsOf(lines[i]);
        EXPECT_EQ(cells.size(), names.size()) << lines[i];
        auto& row = rows.emplace_back();
        for (std::size_t k = 0; k < std::min(cells.size(), names.size()); ++k) row[names[k]] = cells[k];
    }
    return rows;
}

double NumberOf(const std::map<std::string, std::string>& row, const std::string& column) {
    const auto cell = row.find(column);
    if (cell == row.end()) {
        ADD_FAILURE() << "no column " << column;
        return 0;
    }
    const std::string& text = cell->second;
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    EXPECT_TRUE(error == std::errc{} && end == text.data() + text.size()) << column << " is " << text;
    return value;
}

}  // namespace gpsbook::test
