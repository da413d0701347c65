// Exchange files of points and of groups, loaded in front, in the middle and behind, with and without a cloud
// project.
//
// A load has no limit of reads past the end, as it believes every count. Files that promise millions of
// records are told before, by a reader that has the limit, and left out here as whoever takes a file from
// elsewhere should leave them out.
#include "fuzz/Fuzz.h"
#include "gps/model/CLibGps.h"
#include "platform/cad/CDrawingsMapper.h"
#include "platform/coord/CLibMap.h"
#include "platform/entity/CCloudProject.h"
#include "platform/entity/CCloudTable.h"
#include "tests/MemoryFile.h"
#include "tests/gps/persist/ExchangeGuard.h"

namespace {

using test::ExchangeKind;

struct Table final : CCloudTable {
    using CCloudTable::CCloudTable;
};

// A group of two points, one of which has a fix and plane coordinates.
struct Book {
    explicit Book(bool cloud) : lib(cloud ? &project : nullptr, nullptr, nullptr, &map, 0) {
        project.SetGpsTables(&bases, &points);
        CGrpGps& group = *lib.AddGrp(false);
        group.SetCodeElab(1);
        group.GetConvCoord()->SetImp(CConvCoord::impPronta, 1);
        group.GetConvCoord()->GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000,
                                                               0, 0.9996);
        CPunGps& point = *lib.AddPun(0, false);
        point.SetLat(45);
        point.SetLong(9);
        point.SetElev(100);
        point.SetAltAnt(1.5);
        lib.CalcolaCoordCart(&point, 0);
        lib.AddPun(0, false);
    }
    Table bases{CCloudTable::tabGpsBase};
    Table points{CCloudTable::tabGpsPnt};
    CCloudProject project;
    CLibMap map;
    CLibGps lib;
};

struct Case {
    ExchangeKind kind;
    bool cloud, fromPlane;
    int after;
};

int Load(CLibGps& book, const Case& c, const std::string& file) {
    CDrawingsMapper drawings;
    return static_cast<int>(c.kind == ExchangeKind::points
                                ? book.CaricaPuntiDaFile(c.fromPlane, 0, c.after, file)
                                : book.CaricaGruppoDaFile(0, c.after, file, drawings));
}

int CountOfPoints(const CLibGps& book) {
    int count = 0;
    for (int g = 0; g < book.GetGrpArSize(); ++g) count += book.GetPunArSize(g);
    return count;
}

// Every item is in its table once and found where it is.
void RequireSound(const Book& book, bool cloud) {
    const CLibGps& lib = book.lib;
    for (int g = 0; g < lib.GetGrpArSize(); ++g) {
        for (int p = 0; p < lib.GetPunArSize(g); ++p) {
            int foundG = -1, foundP = -1;
            fuzz::Require(
                lib.GetIndiciDiPun(lib.GetPunAt(g, p), foundG, foundP) && foundG == g && foundP == p,
                "every point is found where it is");
        }
    }
    if (!cloud) return;
    fuzz::Require(book.bases.GetAdded().size() + book.bases.GetById().size() ==
                      static_cast<std::size_t>(lib.GetGrpArSize()),
                  "every group is in its table once");
    fuzz::Require(book.points.GetAdded().size() + book.points.GetById().size() ==
                      static_cast<std::size_t>(CountOfPoints(lib)),
                  "every point is in its table once");
}

// What came of a load is saved, loaded into a book like the first one, and saved again.
std::string SavedAgain(Book& book, const Case& c, int count) {
    const test::MemoryFile file;
    const int first = c.after + 1;
    const auto result = c.kind == ExchangeKind::points
                            ? book.lib.SalvaPuntiInFile(0, first, first + count, file.Name())
                            : book.lib.SalvaGruppoInFile(first, first + count, file.Name(), nullptr);
    fuzz::Require(result == CLibGen::TResActionObj::done, "a file in memory can be written");
    return file.Bytes();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::ForgetSettings();
    const fuzz::Input input(data, size);
    Case c{input.Switch(1) ? ExchangeKind::groups : ExchangeKind::points, input.Switch(0), input.Switch(2),
           -1};
    if (input.Switch(3)) c.after += 1;
    if (input.Switch(4)) c.after -= 2;  // places that do not exist
    if (!test::IsBounded(input.bytes, c.kind)) return 0;

    test::MemoryFile file;
    file.Write(input.bytes);
    Book book(c.cloud);
    const int before = c.kind == ExchangeKind::points ? book.lib.GetPunArSize(0) : book.lib.GetGrpArSize();
    int g = 0, p = 0;
    book.lib.GetIndiciDiPun(book.lib.GetPunAt(0, 1), g, p);  // positions are remembered from now on
    const int result = Load(book.lib, c, file.Name());
    fuzz::Require(result == 0 || result == 3 || result == 4, "the result is one of those of a load");
    RequireSound(book, c.cloud);
    if (result == 3 || c.after < -1) return 0;  // not everything has come

    const int count =
        (c.kind == ExchangeKind::points ? book.lib.GetPunArSize(0) : book.lib.GetGrpArSize()) - before;
    const std::string saved = SavedAgain(book, c, count);
    file.Write(saved);
    Book second(c.cloud);
    fuzz::Require(Load(second.lib, c, file.Name()) == result,
                  "what was saved is loaded with the same result");
    fuzz::Require(SavedAgain(second, c, count) == saved, "what was loaded is saved again as it was");
    return 0;
}
