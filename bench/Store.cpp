// Points in a file: the section against SQLite and GeoPackage with the same attributes.
#include "bench/Store.h"

#include <sqlite3.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <vector>

#include "bench/Work.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "platform/cad/CDrawingsMapper.h"

#ifdef GPS_BENCH_GDAL
#include <ogrsf_frmts.h>
#endif

namespace bench {

namespace {

namespace fs = std::filesystem;

std::string scratchFolder;

using Points = std::vector<std::unique_ptr<PlainPoint>>;

std::shared_ptr<Points> MakePlainPoints(std::size_t n) {
    auto points = std::make_shared<Points>();
    for (std::size_t i = 0; i < n; ++i) points->push_back(MakePlainPoint(i));
    return points;
}

void Need(bool ok, const char* what) {
    if (!ok) throw std::runtime_error(std::string("bench: ") + what);
}

// Calls text(name, value), number(name, value) and whole(name, value) for every attribute of a point.
template <class Point, class Text, class Number, class Whole>
void ForAttributes(Point& p, Text text, Number number, Whole whole) {
    text("name", p.name);
    text("code", p.secScri);
    whole("egn", p.code);
    whole("validity", p.validity);
    number("x", p.x);
    number("y", p.y);
    number("z", p.z);
    number("lat", p.lat);
    number("lon", p.lon);
    number("h", p.h);
    number("antenna", p.antenna);
    whole("quality", p.quality);
    whole("prim", p.primary);
    whole("sec", p.secondary);
    whole("year", p.year);
    whole("month", p.month);
    whole("day", p.day);
    whole("tod", p.tod);
    number("hrms", p.hrms);
    number("vrms", p.vrms);
    whole("gps", p.gps);
    whole("glo", p.glonass);
    static constexpr const char* cov[] = {"cxx", "cyy", "czz", "ctt", "cxy",
                                          "cxz", "cxt", "cyz", "cyt", "czt"};
    for (int i = 0; i < 10; ++i) number(cov[i], p.cov[i]);
    number("pdop", p.pdop);
    number("gdop", p.gdop);
    static constexpr const char* base[] = {"base1", "base2", "base3"};
    for (int i = 0; i < 3; ++i) number(base[i], p.base[i]);
    whole("spare", p.spare);
}

// --- the section -------------------------------------------------------------------------------------------

void WriteSectionFile(CLibGps& book, const std::string& file) {
    ofpstream out(file.c_str(), kVersion);
    book.SalvaInFile(out, kVersion, file.c_str(), nullptr, nullptr);
    Need(out.Close(), "the section could not be written");
}

void ReadSectionFile(const std::string& file, std::size_t n) {
    CLibMap map;
    CLibGps book(nullptr, nullptr, nullptr, &map, 0);
    CDrawingsMapper drawings;
    ifpstream in(file.c_str(), kVersion);
    book.LeggeDaFile(in, true, true, kVersion, file.c_str(), drawings);
    Need(in.IsOk() && static_cast<std::size_t>(book.GetPunArSize(0)) == n, "the section could not be read");
}

Work SectionWrite() {
    return {"store.write.section", [](std::size_t n) -> Run {
                auto book = std::make_shared<Book>(n);
                return Run{[book] { WriteSectionFile(book->Get(), ScratchFile("section")); }, {}};
            }};
}

Work SectionRead() {
    return {"store.read.section", [](std::size_t n) -> Run {
                WriteSectionFile(Book(n).Get(), ScratchFile("section"));
                return Run{[n] { ReadSectionFile(ScratchFile("section"), n); }, {}};
            }};
}

// --- SQLite ------------------------------------------------------------------------------------------------

using Db = std::unique_ptr<sqlite3, int (*)(sqlite3*)>;
using Statement = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)>;

Db Open(const std::string& file) {
    sqlite3* db = nullptr;
    Need(sqlite3_open(file.c_str(), &db) == SQLITE_OK, "SQLite cannot open its file");
    return {db, sqlite3_close};
}

void Do(sqlite3* db, const std::string& sql) {
    Need(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, sqlite3_errmsg(db));
}

Statement Prepare(sqlite3* db, const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    Need(sqlite3_prepare_v2(db, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK, sqlite3_errmsg(db));
    return {statement, sqlite3_finalize};
}

void WriteSqlite(const Points& points, const std::string& file) {
    fs::remove(file);
    const Db db = Open(file);
    std::string columns, marks;
    PlainPoint any;
    const auto column = [&](const char* type) {
        return [&columns, &marks, type](const char* name, auto&) {
            columns += (columns.empty() ? "" : ", ") + std::string(name) + " " + type;
            marks += marks.empty() ? "?" : ", ?";
        };
    };
    ForAttributes(any, column("TEXT"), column("REAL"), column("INTEGER"));
    Do(db.get(), "CREATE TABLE points (" + columns + ")");
    Do(db.get(), "BEGIN");
    const Statement insert = Prepare(db.get(), "INSERT INTO points VALUES (" + marks + ")");
    for (const auto& p : points) {
        int i = 0;
        ForAttributes(
            *p,
            [&](const char*, const std::string& t) {
                sqlite3_bind_text(insert.get(), ++i, t.data(), static_cast<int>(t.size()), SQLITE_STATIC);
            },
            [&](const char*, double v) { sqlite3_bind_double(insert.get(), ++i, v); },
            [&](const char*, auto v) {
                sqlite3_bind_int64(insert.get(), ++i, static_cast<sqlite3_int64>(v));
            });
        Need(sqlite3_step(insert.get()) == SQLITE_DONE, sqlite3_errmsg(db.get()));
        sqlite3_reset(insert.get());
    }
    Do(db.get(), "COMMIT");
}

void ReadSqlite(const std::string& file, std::size_t n) {
    const Db db = Open(file);
    const Statement select = Prepare(db.get(), "SELECT * FROM points");
    Points points;
    while (sqlite3_step(select.get()) == SQLITE_ROW) {
        points.push_back(std::make_unique<PlainPoint>());
        int i = 0;
        ForAttributes(
            *points.back(),
            [&](const char*, std::string& t) {
                const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(select.get(), i));
                t.assign(bytes, static_cast<std::size_t>(sqlite3_column_bytes(select.get(), i++)));
            },
            [&](const char*, auto& v) {
                v = static_cast<std::remove_reference_t<decltype(v)>>(
                    sqlite3_column_double(select.get(), i++));
            },
            [&](const char*, auto& v) {
                v = static_cast<std::remove_reference_t<decltype(v)>>(
                    sqlite3_column_int64(select.get(), i++));
            });
    }
    Need(points.size() == n, "SQLite gave other points");
}

Work SqliteWrite() {
    return {"store.write.sqlite", [](std::size_t n) -> Run {
                auto points = MakePlainPoints(n);
                return Run{[points] { WriteSqlite(*points, ScratchFile("sqlite")); }, {}};
            }};
}

Work SqliteRead() {
    return {"store.read.sqlite", [](std::size_t n) -> Run {
                WriteSqlite(*MakePlainPoints(n), ScratchFile("sqlite"));
                return Run{[n] { ReadSqlite(ScratchFile("sqlite"), n); }, {}};
            }};
}

// --- GeoPackage --------------------------------------------------------------------------------------------

#ifdef GPS_BENCH_GDAL

GDALDriver* Driver() {
    GDALAllRegister();
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName("GPKG");
    Need(driver != nullptr, "GDAL has no GeoPackage driver");
    return driver;
}

void WriteGeoPackage(const Points& points, const std::string& file) {
    fs::remove(file);
    GDALDatasetUniquePtr data(Driver()->Create(file.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    Need(data != nullptr, "GDAL cannot create its file");
    const char* const options[] = {"SPATIAL_INDEX=NO", nullptr};
    OGRLayer* layer = data->CreateLayer("points", nullptr, wkbPoint, const_cast<char**>(options));
    PlainPoint any;
    const auto field = [&](OGRFieldType type) {
        return [layer, type](const char* name, auto&) {
            OGRFieldDefn defn(name, type);
            layer->CreateField(&defn);
        };
    };
    ForAttributes(any, field(OFTString), field(OFTReal), field(OFTInteger64));
    data->StartTransaction();
    for (const auto& p : points) {
        const OGRFeatureUniquePtr feature(OGRFeature::CreateFeature(layer->GetLayerDefn()));
        int i = 0;
        ForAttributes(
            *p, [&](const char*, const std::string& t) { feature->SetField(i++, t.c_str()); },
            [&](const char*, double v) { feature->SetField(i++, v); },
            [&](const char*, auto v) { feature->SetField(i++, static_cast<GIntBig>(v)); });
        OGRPoint at(p->lon, p->lat);
        feature->SetGeometry(&at);
        Need(layer->CreateFeature(feature.get()) == OGRERR_NONE, "GDAL cannot write a point");
    }
    data->CommitTransaction();
}

void ReadGeoPackage(const std::string& file, std::size_t n) {
    Driver();
    GDALDatasetUniquePtr data(GDALDataset::Open(file.c_str(), GDAL_OF_VECTOR));
    Need(data != nullptr, "GDAL cannot open its file");
    Points points;
    for (const auto& feature : *data->GetLayer(0)) {
        points.push_back(std::make_unique<PlainPoint>());
        int i = 0;
        ForAttributes(
            *points.back(), [&](const char*, std::string& t) { t = feature->GetFieldAsString(i++); },
            [&](const char*, auto& v) {
                v = static_cast<std::remove_reference_t<decltype(v)>>(feature->GetFieldAsDouble(i++));
            },
            [&](const char*, auto& v) {
                v = static_cast<std::remove_reference_t<decltype(v)>>(feature->GetFieldAsInteger64(i++));
            });
    }
    Need(points.size() == n, "GDAL gave other points");
}

Work GeoPackageWrite() {
    return {"store.write.geopackage", [](std::size_t n) -> Run {
                auto points = MakePlainPoints(n);
                return Run{[points] { WriteGeoPackage(*points, ScratchFile("gpkg")); }, {}};
            }};
}

Work GeoPackageRead() {
    return {"store.read.geopackage", [](std::size_t n) -> Run {
                WriteGeoPackage(*MakePlainPoints(n), ScratchFile("gpkg"));
                return Run{[n] { ReadGeoPackage(ScratchFile("gpkg"), n); }, {}};
            }};
}

#endif

}  // namespace

void SetScratchFolder(const std::string& folder) { scratchFolder = folder; }

std::string ScratchFile(const std::string& name) {
    static const struct Folder {
        fs::path path;
        Folder() {
            const fs::path parent =
                scratchFolder.empty() ? fs::temp_directory_path() : fs::path(scratchFolder);
            path = parent / ("gps_bench." + std::to_string(getpid()));
            fs::create_directories(path);
        }
        ~Folder() {
            std::error_code ignored;
            fs::remove_all(path, ignored);
        }
    } folder;
    return (folder.path / ("points." + name)).string();
}

std::unique_ptr<PlainPoint> MakePlainPoint(std::size_t i) {
    auto point = std::make_unique<PlainPoint>();
    Fill(*point, MakeFix(i));
    return point;
}

std::vector<Ratio> StoreRatios() {
    const auto at = [](double bound) { return [bound](std::size_t) { return bound; }; };
    const std::vector<std::size_t> million{1'000'000};
    std::vector<Ratio> ratios{
        {"store.write/sqlite", SectionWrite(), SqliteWrite(), million, at(0.2), 0, 0, true},
        {"store.read/sqlite", SectionRead(), SqliteRead(), million, at(0.25), 0, 0, true},
    };
#ifdef GPS_BENCH_GDAL
    ratios.push_back(
        {"store.write/geopackage", SectionWrite(), GeoPackageWrite(), million, at(0.08), 0, 0, true});
    ratios.push_back(
        {"store.read/geopackage", SectionRead(), GeoPackageRead(), million, at(0.16), 0, 0, true});
#endif
    return ratios;
}

}  // namespace bench
