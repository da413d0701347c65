// Makes the inputs that the targets begin with: fuzz_corpus FOLDER writes FOLDER/<target>/<name>.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "fuzz/Fuzz.h"
#include "gps/cloud/CGpsBaseCloudTable.h"
#include "gps/cloud/CGpsPntCloudTable.h"
#include "gps/model/CLibGps.h"
#include "gps/options/COpzPostProc.h"
#include "host/base/JournalWriter.h"
#include "host/project/Project.h"
#include "platform/coord/CLibMap.h"
#include "tests/MemoryFile.h"
#include "tests/gps/persist/RandomBook.h"
#include "tests/host/cloud/Records.h"

namespace {

// One below and one at every version at which a record changes, and the newest.
constexpr short kVersions[] = {0,    719,  720,  741,  742,  743,  749,  750,  880,  881,  902, 903,
                               1001, 1002, 1003, 1004, 1105, 1106, 1299, 1300, 1310, 1311, 1400};
constexpr short kNewest = 1400;

class Corpus {
public:
    explicit Corpus(const std::filesystem::path& folder) : folder_(folder) {}

    void Add(const std::string& target, const std::string& name, const std::string& input) {
        std::filesystem::create_directories(folder_ / target);
        std::ofstream out(folder_ / target / name, std::ios::binary);
        out.write(input.data(), static_cast<std::streamsize>(input.size()));
        good_ = out.good() && good_;
    }
    bool IsGood() const { return good_; }
    std::filesystem::path Folder(const std::string& target) {
        std::filesystem::create_directories(folder_ / target);
        return folder_ / target;
    }

private:
    std::filesystem::path folder_;
    bool good_ = true;
};

struct Book {
    CLibMap map;
    CLibGps lib{nullptr, nullptr, nullptr, &map, 3};
};

// One group with one point and one observation file: few bytes, every record.
void FillSmall(CLibGps& book) {
    CGrpGps* group = book.AddGrp(false);
    group->SetNomeGrp("G");
    group->SetNome("B");
    group->SetCloudId(7);
    group->GetConvCoord()->SetImp(CConvCoord::impPronta, 1);
    group->GetConvCoord()->SetImpFlag(true);
    group->GetConvCoord()->GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::mercatoreTrasversa, 0, 9, 500000, 0,
                                                            0.9996);
    CPunGps* point = book.AddPun(0, false);
    point->SetNome("P");
    point->SetNote("n");
    point->SetLat(45);
    point->SetLong(11);
    point->SetElev(100);
    point->CloudItemChanged(4);
    book.GetOpzPostProc()->AddDataPtBaseLineDett("r.tps");
}

void AddSection(Corpus& corpus, const std::string& name, Book& book, short version, bool cloud) {
    const std::string section = fuzz::Written(
        version, [&](ofpstream& out) { book.lib.SalvaInFile(out, version, "book", nullptr, nullptr); });
    corpus.Add("section", name, fuzz::MakeInput(version, cloud ? 1 : 0, section));
}

void AddSections(Corpus& corpus) {
    for (const short version : kVersions) {
        Book empty, small;
        FillSmall(small.lib);
        for (const bool cloud : {false, true}) {
            const std::string kind = std::to_string(version) + (cloud ? "-cloud" : "");
            AddSection(corpus, "empty-" + kind, empty, version, cloud);
            AddSection(corpus, "small-" + kind, small, version, cloud);
        }
    }
    for (unsigned seed = 1; seed <= 8; ++seed) {
        Book book;
        test::RandomBook(seed).Fill(book.lib, book.map);
        AddSection(corpus, "random-" + std::to_string(seed), book, kNewest, seed % 2 == 1);
    }
}

void AddRecords(Corpus& corpus) {
    Book small;
    FillSmall(small.lib);
    CPunGps& point = *small.lib.GetPunAt(0, 0);
    CConvCoord& conversion = *small.lib.GetGrpAt(0)->GetConvCoord();
    CDatumConv* datum = small.map.AddDat(1, 2);
    datum->SetNome("d");
    datum->SetCoeffToStd(1, 2, 3, 4, 5, 6, 7);
    for (unsigned switches = 0; switches < 2; ++switches) {
        const std::string name = switches == 0 ? "plain" : "switched";
        const auto add = [&](const char* target, short version,
                             const std::function<void(ofpstream&)>& write) {
            corpus.Add(target, name + "-" + std::to_string(version),
                       fuzz::MakeInput(version, switches, fuzz::Written(version, write)));
        };
        add("entity", kNewest, [&](ofpstream& out) {
            point.CEgn::SalvaInFile(out);
            point.CCloudItem::SalvaInFile(out, kNewest, false);
        });
        add("conversion", kNewest, [&](ofpstream& out) { conversion.SalvaInFile(out, kNewest); });
        add("map", kNewest, [&](ofpstream& out) { small.map.SalvaInFile(out, kNewest); });
        add("book_options", kNewest,
            [&](ofpstream& out) { small.lib.GetOpzLibGps().SalvaInFile(out, kNewest); });
        for (const short version : {short{719}, short{730}, short{742}})
            add("display_options", version,
                [&](ofpstream& out) { small.lib.GetOpzListDisGps().SalvaInFile(out, version, nullptr); });
        for (const short version : {short{1002}, short{1003}, short{1300}})
            add("postproc", version, [&](ofpstream& out) { small.lib.GetOpzPostProc()->SalvaInFile(out); });
    }
}

// The bits of a target's switches: 1 groups, 2 from plane coordinates.
void AddExchangeFiles(Corpus& corpus) {
    const test::MemoryFile file;
    for (unsigned seed = 0; seed < 6; ++seed) {
        Book book;
        if (seed == 0)
            FillSmall(book.lib);
        else
            test::RandomBook(seed).Fill(book.lib, book.map);
        const std::string name = seed == 0 ? "small" : "random-" + std::to_string(seed);
        for (const unsigned switches : {0u, 1u, 4u, 5u, 8u, 16u}) {
            book.lib.SalvaPuntiInFile(0, 0, book.lib.GetPunArSize(0), file.Name());
            corpus.Add("exchange", name + "-points-" + std::to_string(switches),
                       fuzz::MakeInput(kNewest, switches, file.Bytes()));
            book.lib.SalvaGruppoInFile(0, book.lib.GetGrpArSize(), file.Name(), nullptr);
            corpus.Add("exchange", name + "-groups-" + std::to_string(switches),
                       fuzz::MakeInput(kNewest, switches | 2u, file.Bytes()));
        }
        // More is promised than there is: a missing point, a missing group.
        book.lib.SalvaPuntiInFile(0, 0, 12, file.Name());
        corpus.Add("exchange", name + "-points-short", fuzz::MakeInput(kNewest, 0, file.Bytes()));
        book.lib.SalvaGruppoInFile(0, 7, file.Name(), nullptr);
        corpus.Add("exchange", name + "-groups-short", fuzz::MakeInput(kNewest, 2, file.Bytes()));
    }
}

std::string BytesOf(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// The bit of the target's switches: 1 puts the checksums right.
void AddJournals(Corpus& corpus) {
    const std::string file = (corpus.Folder("journal") / "made").string();
    std::filesystem::remove(file);
    Book book;
    FillSmall(book.lib);
    book.lib.SetNomeFile("book");
    JournalWriter journal(FileOperations::System(), file, "book", 7, 8);
    book.lib.SetTmpJournal(&journal);
    const auto add = [&](const std::string& name) {
        journal.Commit();
        for (const unsigned switches : {0u, 1u})
            corpus.Add("journal", name + "-" + std::to_string(switches),
                       fuzz::MakeInput(kNewest, switches, BytesOf(file)));
    };
    book.lib.SaveTmpGrpGps(book.lib.GetGrpAt(0), nullptr);
    add("group");
    journal.BeginEdit();
    book.lib.SaveTmpPunGps(book.lib.GetPunAt(0, 0));
    book.lib.SaveDelPunGps(book.lib.GetPunAt(0, 0));
    journal.EndEdit();
    add("edit");
    book.lib.SaveDelGrpGps(book.lib.GetGrpAt(0));
    add("deletion");
    corpus.Add("journal", "torn", fuzz::MakeInput(kNewest, 0, BytesOf(file).substr(0, 500)));
    std::string damaged = BytesOf(file);
    damaged[300] = static_cast<char>(damaged[300] ^ 1);
    corpus.Add("journal", "damaged", fuzz::MakeInput(kNewest, 0, damaged));
    book.lib.SetTmpJournal(nullptr);
    journal.Remove();
}

void AddContainers(Corpus& corpus) {
    const std::filesystem::path folder = corpus.Folder("container");
    for (const short version : {short{743}, short{1400}}) {
        const std::filesystem::path file = folder / ("book-" + std::to_string(version));
        gpsproject::Project project(version);
        FillSmall(project.GetBook());
        project.GetSettings()["name"] = "a project";
        project.SaveAs(file.string(), true);
        std::filesystem::remove(file.string() + ".bak");
        std::filesystem::remove(file.string() + ".lock");
    }
}

void AddStations(Corpus& corpus) {
    const std::string head = "id,name,country,region,province,x,y,z,frame,epoch,vx,vy,vz,source\n";
    corpus.Add("stations", "one",
               head + "UDIN,Udine,ITA,,UD,4316423.2699,1014588.7009,4569607.1405,ETRF2000,2008.0,,,,page\n");
    corpus.Add("stations", "quoted",
               head + "\"#A\",\"a \"\"b\"\", c\",ESP,,x,5103282,-392096,3793146,IGb14,,0.1,-0.2,1e-3,\r\n");
    corpus.Add("stations", "other_order", "\xEF\xBB\xBF# no more\n\nframe,Z_m,Y,x,id4,z\nx,1,2,3,a,5\n");
}

// Steps of the reply target: the items of a book as replies under new and known ids, edits and deletions.
void AddReplies(Corpus& corpus) {
    for (unsigned seed = 0; seed <= 8; ++seed) {
        Book book;
        if (seed == 0)
            FillSmall(book.lib);
        else
            test::RandomBook(seed).Fill(book.lib, book.map);
        CGpsBaseCloudTable bases;
        CGpsPntCloudTable points(&bases);
        std::string steps;
        const auto add = [&](char what, const std::string& head, const vex::String& fields) {
            std::string line = what + head + ";" + std::string(fields.View());
            std::replace(line.begin(), line.end(), '\n', ' ');
            steps += line + "\n";
        };
        for (int g = 0; g < book.lib.GetGrpArSize() && g < 4; ++g) {
            vex::String fields;
            bases.GetFields(*book.lib.GetGrpAt(g), 0x1FFF, fields);
            add('g', std::to_string(1 + 10 * g) + ";7", fields);
            for (int p = 0; p < book.lib.GetPunArSize(g) && p < 4; ++p) {
                points.GetFields(*book.lib.GetPunAt(g, p), 0x1FFFF, fields);
                add('p', std::to_string(2 + 10 * g + p) + ";" + std::to_string(1 + 10 * g), fields);
            }
        }
        const std::string name = seed == 0 ? "small" : "random-" + std::to_string(seed);
        corpus.Add("reply", name, steps);
        corpus.Add("reply", name + "-edited", "e0;4097\ne1;65553\n" + steps + "e2;3\n" + steps);
        corpus.Add("reply", name + "-deleted", "d1\n" + steps + "P;2\nG;11\nG;1\nd0\n" + steps);
    }
}

// Commits: every kind of record, as it should be and wrong.
void AddCommits(Corpus& corpus) {
    const std::string conversion = test::Conversion("Lib2;1;1;2;3;4;5;6;7;40;10", "4;M;0;0;0;0;0;0;0;0;1;2");
    corpus.Add("commit", "added",
               test::Records({test::Group("B3", conversion), test::Point(-1), test::Point(1)}));
    corpus.Add("commit", "short", test::Records({test::Group("B3", test::Conversion("")), test::Point(-7)}));
    corpus.Add("commit", "changed",
               test::Records({"UBAS;1;8191;" + test::GroupFields("B") + ";" + conversion,
                              "UPTGPS;2;131071;" + test::PointFields("P"), "UPTGPS;2;1;Q", "UBAS;3;16;S"}));
    corpus.Add("commit", "deleted", "DEL;3;1\r\nDEL;4;2\r\nDEL;4;4\r\nUPTGPS;4;1;P\r\nDEL;3;9");
    corpus.Add("commit", "wrong",
               "UBAS;0;1;B\r\nUPTGPS;2;0\r\nIBAS;x\r\nIPTGPS;1;NULLVAL;-inf;nan\r\n\r\nX;1");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: fuzz_corpus FOLDER\n", stderr);
        return 2;
    }
    fuzz::ForgetSettings();
    Corpus corpus(argv[1]);
    AddSections(corpus);
    AddRecords(corpus);
    AddExchangeFiles(corpus);
    AddJournals(corpus);
    AddContainers(corpus);
    AddStations(corpus);
    AddCommits(corpus);
    AddReplies(corpus);
    return corpus.IsGood() ? 0 : 1;
}
