#include "apps/gpsbook/book/ExchangeSave.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "apps/gpsbook/book/Address.h"
#include "apps/gpsbook/book/ExchangeCheck.h"
#include "apps/gpsbook/commands/CommandError.h"
#include "apps/gpsbook/commands/ConvertSummary.h"
#include "apps/gpsbook/writers/StagedOutput.h"
#include "apps/gpsbook/writers/WriteError.h"
#include "gps/model/CLibGps.h"

namespace gpsbook {

namespace {

using Result = CLibGps::TResActionObj;

// `whose` and what stands there: "group Quay", 4, "point".
void CheckRange(const SaveRange& r, const std::string& whose, int size, const char* one) {
    const std::int64_t asked = std::max<std::int64_t>(std::int64_t{r.last} - r.first, 0);
    if (r.force) {
        const std::int64_t missing = asked - CountIn(r, size);
        if (missing > kMostMissing)
            throw CommandError(exitUsage,
                               fmt::format("the range holds {} positions at which nothing stands; even with "
                                           "--force it can be {} at most",
                                           missing, kMostMissing));
        return;
    }
    const auto refuse = [&](const std::string& what) {
        throw CommandError(exitUsage, fmt::format("{}; {} has {}. --force writes a file that promises more "
                                                  "than it holds, which other programs may not read",
                                                  what, whose, Counted(size, one)));
    };
    if (r.first < 0 || r.first > size)
        refuse(fmt::format("--first: {} is no position here, give 0 to {}", r.first, size));
    if (r.last < r.first) refuse(fmt::format("--last: {} stands before --first {}", r.last, r.first));
    if (r.last > size) refuse(fmt::format("--last: {} is too much, give {} to {}", r.last, r.first, size));
}

// `write` writes the file of that name.
template <class Write>
void WriteStaged(const SaveRange& range, const Write& write) {
    StagedOutput output(range.file, range.overwrite);
    if (write(output.File().string()) != Result::done)
        throw WriteError(range.file, "could not be made or written; see whether the disk is full");
    output.Commit();
}

}  // namespace

int CountIn(const SaveRange& range, int size) {
    const std::int64_t first = std::max(range.first, 0);
    return static_cast<int>(std::max<std::int64_t>(std::min(range.last, size) - first, 0));
}

void SavePoints(CLibGps& book, int group, const SaveRange& range) {
    CheckRange(range, "group " + PlaceText(book, {group, -1}), book.GetPunArSize(group), "point");
    WriteStaged(range, [&](const std::string& file) {
        return book.SalvaPuntiInFile(group, range.first, range.last, file);
    });
}

void SaveGroups(CLibGps& book, const SaveRange& range) {
    CheckRange(range, "the book", book.GetGrpArSize(), "group");
    WriteStaged(range, [&](const std::string& file) {
        return book.SalvaGruppoInFile(range.first, range.last, file, nullptr);
    });
}

}  // namespace gpsbook
