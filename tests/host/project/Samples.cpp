#include "tests/host/project/Samples.h"

#include "gps/options/COpzPostProc.h"
#include "host/project/SettingsRecord.h"
#include "platform/base/ofpstream.h"

namespace test {

namespace {

void FillPoint(CPunGps& point, int number, int g, int p) {
    const double d = number + 0.1 * g + 0.001 * p;
    point.SetNome("P" + std::to_string(number) + "." + std::to_string(g) + "." + std::to_string(p));
    point.SetSecScri("code");
    point.SetNote(p % 2 ? "a note" : "");
    point.SetLat(45 + 1e-3 * d);
    point.SetLong(13 + 1e-3 * d);
    point.SetElev(60 + d);
    point.SetAltAnt(2);
    point.SetYear(2024);
    point.SetMonth(5);
    point.SetDay(1);
    point.SetTod(static_cast<std::uint32_t>(1000 * p));
    point.SetQua(4);
    point.SetHposRms(0.01);
    point.SetVposRms(0.02);
    point.SetPosCov_xx(1e-4F);
    point.SetPdop(1.5);
    point.SetGdop(2.5);
    point.SetNuGpsUsed(9);
    point.SetGrafBase(45.5, 13.5, 100);
    point.SetIsSecondaryPtDup(p == 1);
    point.SetPunRis32(7);
    point.SetCoord(400000 + d, 5000000 + d, 58 + d);
}

}  // namespace

void Fill(gpsproject::Project& project, int number, int groups, int points) {
    CLibGps& book = project.GetBook();
    while (book.GetGrpArSize() > 0) book.DelGrpAt(0);
    for (int g = 0; g < groups; ++g) {
        CGrpGps& group = *book.AddGrp(false);
        group.SetNomeGrp("Group " + std::to_string(number) + "." + std::to_string(g));
        group.SetLabels("Operator", "Instrument", "2024-05-01", "Place");
        group.SetBaseLat(45.5);
        group.SetBaseLong(13.5);
        group.SetTipoRilievo(2);
        group.SetGrpRis32(5);
        group.SetCodeElab(1);
        group.GetConvCoord()->SetImp(CConvCoord::impPronta, 1);
        for (int p = 0; p < points; ++p) FillPoint(*book.AddPun(g, false), number, g, p);
    }
    COpzPostProc& options = *book.GetOpzPostProc();
    options.DelAllDataPtBaseLineDett();
    options.AddDataPtBaseLineDett("/jobs/" + std::to_string(number) + ".tps");
    project.GetMap().GetDatAt(0, 0, 0)->SetNome("Datum " + std::to_string(number));
    project.GetSettings()["name"] = "Project " + std::to_string(number);
}

Content ContentOf(gpsproject::Project& project) {
    ofpstream out(gpsproject::Project::kNewestVersion);
    CLibGps& book = project.GetBook();
    const std::string file = book.GetNomeFile();
    const unsigned short version = book.GetStreamVersion();
    book.SalvaInFile(out, out.GetVersion(), file.c_str(), nullptr, nullptr);
    book.SetStreamVersion(version);
    project.GetMap().SalvaInFile(out, out.GetVersion());
    gpsproject::WriteSettings(out, project.GetSettings());
    return Content{std::string(out.GetBytes())};
}

}  // namespace test
