// The field-book section: with and without a cloud project, with everything kept or nothing.
#include <memory>

#include "fuzz/Fuzz.h"
#include "gps/model/CLibGps.h"
#include "gps/options/COpzPostProc.h"
#include "platform/cad/CDrawingsMapper.h"
#include "platform/coord/CLibMap.h"
#include "platform/entity/CCloudProject.h"
#include "platform/entity/CCloudTable.h"

namespace {

struct Table final : CCloudTable {
    using CCloudTable::CCloudTable;
};

struct Book {
    explicit Book(bool cloud) : lib(cloud ? &project : nullptr, nullptr, nullptr, &map, 0) {
        project.SetGpsTables(&bases, &points);
    }
    Table bases{CCloudTable::tabGpsBase};
    Table points{CCloudTable::tabGpsPnt};
    CCloudProject project;
    CLibMap map;
    CLibGps lib;
};

// Every item is in one collection of its table, as long as memory lasts.
void RequireSound(const Book& book) {
    std::size_t points = 0;
    for (int g = 0; g < book.lib.GetGrpArSize(); ++g)
        points += static_cast<std::size_t>(book.lib.GetPunArSize(g));
    fuzz::Require(book.bases.GetAdded().size() + book.bases.GetById().size() ==
                      static_cast<std::size_t>(book.lib.GetGrpArSize()),
                  "every group is in its table once");
    fuzz::Require(book.points.GetAdded().size() + book.points.GetById().size() == points,
                  "every point is in its table once");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::ForgetSettings();
    fuzz::Input input(data, size);
    const bool cloud = input.Switch(0), options = !input.Switch(1), entities = !input.Switch(2);
    CDrawingsMapper drawings;
    for (long long drawing = 0; drawing < 8; ++drawing) drawings.SetDrawing(drawing, drawing);

    const auto read = [&](Book& book, ifpstream& in) {
        book.lib.LeggeDaFile(in, options, entities, input.version, "book", drawings);
    };
    const auto write = [&](Book& book, ofpstream& out) {
        book.lib.SalvaInFile(out, input.version, "book", nullptr, nullptr);
    };
    // Version 742 is written longer than it is read: it is there for reading.
    if (input.version == 742 || !options || !entities) {
        Book book(cloud);
        fuzz::ReadAll(input.bytes, input.version, [&](ifpstream& in) { read(book, in); });
        fuzz::Written(input.version, [&](ofpstream& out) { write(book, out); });
        if (cloud) RequireSound(book);
        return 0;
    }
    fuzz::RequireSameAgain(
        input, [&] { return std::make_unique<Book>(cloud); }, read, write);
    Book book(cloud);
    fuzz::ReadAll(input.bytes, input.version, [&](ifpstream& in) { read(book, in); });
    fuzz::ReadAll(input.bytes, input.version,
                  [&](ifpstream& in) { read(book, in); });  // behind what is there
    if (cloud) RequireSound(book);
    return 0;
}
