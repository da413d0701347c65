// A project saved and opened: the whole save against one synced write of the same bytes, and the memory of a
// load.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>

#include "bench/Store.h"
#include "bench/Work.h"
#include "bench/Workload.h"
#include "host/project/Project.h"

namespace bench {

namespace {

void FillProject(gpsproject::Project& project, std::size_t n) {
    CLibGps& book = project.GetBook();
    book.AddGrp(false);
    for (std::size_t i = 0; i < n; ++i) Fill(*book.AddPun(0, false), MakeFix(i));
}

Work SaveProject() {
    return {"save.project", [](std::size_t n) -> Run {
                auto project = std::make_shared<gpsproject::Project>(kVersion);
                FillProject(*project, n);
                project->SaveAs(ScratchFile("gpsbook"), true);
                return Run{[project] { project->Save(); }, {}};
            }};
}

void WriteSynced(const std::string& file, const std::string& bytes) {
    const int fd = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    std::size_t done = 0;
    while (fd >= 0 && done < bytes.size()) {
        const ssize_t step = write(fd, bytes.data() + done, bytes.size() - done);
        if (step <= 0) break;
        done += static_cast<std::size_t>(step);
    }
    if (fd < 0 || done < bytes.size() || fsync(fd) != 0)
        throw std::runtime_error("bench: cannot write " + file);
    close(fd);
}

Work WriteOnce() {
    return {"save.one_write", [](std::size_t n) -> Run {
                auto bytes = std::make_shared<std::string>(SectionOf(Book(n).Get()));
                return Run{[bytes] { WriteSynced(ScratchFile("bytes"), *bytes); }, {}};
            }};
}

// A line of /proc/self/status, in bytes.
double StatusBytes(const char* name) {
    std::FILE* status = std::fopen("/proc/self/status", "r");
    char line[256];
    double value = 0;
    while (status && std::fgets(line, sizeof line, status)) {
        if (std::string_view(line).starts_with(name))
            value =
                1024 * static_cast<double>(std::strtoull(line + std::string_view(name).size(), nullptr, 10));
    }
    if (status) std::fclose(status);
    return value;
}

// In a process of its own, which has nothing else in memory: largest resident size while a project is opened,
// over the resident size with the book loaded, both above what was there before.
double PeakOfLoad(std::size_t n) {
    const std::string file = ScratchFile("gpsbook");
    {
        gpsproject::Project project(kVersion);
        FillProject(project, n);
        project.SaveAs(file, true);
    }
    int ends[2];
    if (pipe(ends) != 0) return -1;
    const pid_t child = fork();
    if (child == 0) {
        execl("/proc/self/exe", "gps_bench", "--peak-of-load", file.c_str(), std::to_string(ends[1]).c_str(),
              nullptr);
        _exit(1);
    }
    close(ends[1]);
    double ratio = -1;
    if (read(ends[0], &ratio, sizeof ratio) != sizeof ratio) ratio = -1;
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return ratio;
}

}  // namespace

int MeasurePeakOfLoad(const char* file, int answerTo) {
    const double before = StatusBytes("VmRSS:");
    const auto project = gpsproject::Project::Open(file, gpsproject::Project::Mode::read);
    const double peak = StatusBytes("VmHWM:") - before, loaded = StatusBytes("VmRSS:") - before;
    const double ratio = peak / loaded;
    return write(answerTo, &ratio, sizeof ratio) == sizeof ratio ? 0 : 1;
}

std::vector<Ratio> SaveRatios() {
    return {{"save/one_write",
             SaveProject(),
             WriteOnce(),
             {10'000, 100'000, 1'000'000},
             [](std::size_t n) { return n >= 1'000'000 ? 3.0 : std::numeric_limits<double>::infinity(); },
             0,
             0,
             true}};
}

std::vector<Figure> LoadFigures() {
    return {{"load.peak_memory", "x loaded", PeakOfLoad, {1'000'000}, 1.25, false}};
}

}  // namespace bench
