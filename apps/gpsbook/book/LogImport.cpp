#include "apps/gpsbook/book/LogImport.h"

#include <filesystem>

#include "apps/gpsbook/book/Interrupt.h"
#include "apps/gpsbook/book/LogInput.h"
#include "apps/gpsbook/book/Progress.h"
#include "apps/gpsbook/readers/Format.h"

namespace gpsbook {

std::string GroupNameOf(const std::string& file) {
    return file == "-" ? "stdin" : std::filesystem::path(file).stem().string();
}

LogReport ImportLog(const std::string& file, CLibGps& book, int group, const FillOptions& fill,
                    const EpochFilterOptions& filter, long& nextNumber, bool progress,
                    const LineWatcher& watcher) {
    LogReport report;
    report.file = file;
    LogInput input(file);
    std::string_view piece = input.Next(kDetectBytes);
    const Format format = DetectFormat(piece);
    if (format == Format::unknown) return report;  // no position in it: said with the reasons

    GroupFiller filler(book, group, fill, EpochFilter(filter, format), nextNumber, report);
    filler.SetWatcher(watcher);
    const auto reader = MakeReader(format, filler);
    filler.SetHeader(&reader->Header());
    Progress bar(file, input.Size(), progress);
    for (; !piece.empty(); piece = input.Next()) {
        CheckInterrupt();
        reader->Feed(piece);
        bar.Show(input.Read());
    }
    reader->Finish();
    filler.FillGroup(reader->Header());
    return report;
}

}  // namespace gpsbook
