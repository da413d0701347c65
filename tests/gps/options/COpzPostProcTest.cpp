// Post-processing options: defaults, settings, files, results.
#include "gps/options/COpzPostProc.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "gps/model/CLibGps.h"
#include "platform/base/CIniFile.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "tests/Settings.h"
#include "tests/host/base/VirtualSlot.h"

namespace {

using test::Settings;
using test::TempFolder;
using File = COpzPostProc::TDatiStaticPtBaseLine;

struct After : COpzPostProc {
    virtual void Next() {}
};

constexpr double kUnset = 1.7e200;
constexpr const char* kSection = "OPZ-POST-PROC";

TEST(OpzPostProc, DestructorIsItsOnlyVirtualOperation) {
    EXPECT_TRUE(std::has_virtual_destructor_v<COpzPostProc>);
    EXPECT_EQ(VirtualSlot(&After::Next), 2);
}

TEST(OpzPostProc, ParametersHaveTheirDefaults) {
    const Settings settings;
    const COpzPostProc opz;
    const COpzPostProc::TParPostProc& par = opz.ParPostProc;
    EXPECT_EQ(par.wPar1, 15);
    EXPECT_EQ(par.wPar2, 10);
    EXPECT_EQ(par.wPar3, 6);
    EXPECT_EQ(par.wPar4, 3);
    EXPECT_EQ(par.dPar1, 0.001);
    EXPECT_EQ(par.dPar2, 0.95);
    EXPECT_EQ(par.ePar1, 0);
    EXPECT_TRUE(par.bPar1);
    EXPECT_EQ(par.aValPair[0].dVal, 0.0);
    EXPECT_EQ(par.aValPair[0].nVal, 20);
    EXPECT_EQ(par.aValPair[1].dVal, 50.0);
    EXPECT_EQ(par.aValPair[1].nVal, 1013);
    EXPECT_FALSE(par.bPar2);
    EXPECT_EQ(par.wPar5, 50);
    EXPECT_EQ(par.dPar3, 2.0);
    EXPECT_EQ(par.dPar4, 0.5);
    EXPECT_EQ(par.nPar1, 0);
    EXPECT_TRUE(par.bPar3);
    EXPECT_EQ(par.wPar6, 1);
    EXPECT_TRUE(par.bPar4);
    EXPECT_TRUE(par.bPar5);
    EXPECT_EQ(par.nPar2, 0);
    EXPECT_FALSE(par.bPar6);
    EXPECT_TRUE(par.bPar7);
    EXPECT_TRUE(par.bPar8);
    EXPECT_TRUE(par.bPar9);
    EXPECT_EQ(sizeof par.ePar1, 4u);
    EXPECT_EQ(opz.dExtra1, 10.0);
    EXPECT_EQ(opz.dExtra2, 2.0);
    EXPECT_EQ(opz.dExtra3, 0.005);
    EXPECT_EQ(opz.dExtra4, 0.005);
    EXPECT_EQ(opz.nExtra5, 8);
    EXPECT_FALSE(opz.bDettScanned);
    EXPECT_EQ(opz.GetNumPtBaseLineDett(), 0);
    EXPECT_EQ(opz.GetNumPtBaseLineBase(), 0);
}

TEST(OpzPostProc, FileHasItsDefaults) {
    const File file;
    EXPECT_TRUE(file.bFlag1);
    EXPECT_FALSE(file.bFileExists);
    EXPECT_FALSE(file.bFlag2);
    EXPECT_TRUE(file.bFlag3);
    EXPECT_FALSE(file.bFlag4);
    EXPECT_EQ(file.nIdx1, -1);
    EXPECT_EQ(file.sText1, "");
    EXPECT_EQ(file.sFile, "");
    EXPECT_EQ(file.nIdx2, -1);
    EXPECT_EQ(file.nIdx3, 1);
    EXPECT_EQ(file.sText2, "");
    EXPECT_FALSE(file.bAltValue);
    for (const double value : {file.dValue, file.dA1, file.dA2, file.dA3, file.dB1, file.dB2, file.dB3,
                               file.dWorkA[0], file.dWorkA[1], file.dWorkA[2], file.dWorkB[0], file.dWorkB[1],
                               file.dWorkB[2], file.dWorkC[0], file.dWorkC[1], file.dWorkC[2]})
        EXPECT_EQ(value, kUnset);
    EXPECT_TRUE(file.vecStringResults1.empty());
    EXPECT_TRUE(file.vecStringResults2.empty());
    EXPECT_EQ(file.sWork1 + file.sWork2 + file.sWork3 + file.sWork4, "");
    EXPECT_EQ(file.nWork1, 0);
    EXPECT_EQ(file.nWork2, 0);
    EXPECT_EQ(file.nWork3, 0);
    EXPECT_FALSE(file.bWork);
    EXPECT_EQ(file.nWork64, -1);
}

// --- settings ----------------------------------------------------------------------------------------------

void ExpectDefaultChoices(const COpzPostProc& opz) {
    EXPECT_EQ(opz.TpInsCoordBase, 0);
    EXPECT_EQ(opz.eOpzCreaNuoviPt, 0);
    EXPECT_EQ(opz.sNumeGruppoSpec, "");
    EXPECT_EQ(opz.eOpzNomiNuoviPt, 0);
    EXPECT_EQ(opz.sSuffissoPtNuovi, "");
    EXPECT_EQ(opz.eOpzNomiVecchiPt, 0);
    EXPECT_EQ(opz.sSuffissoPtVecchi, "_OLD");
}

TEST(OpzPostProc, WithoutSettingsReplacedPointsGetASuffix) {
    const Settings settings;
    ExpectDefaultChoices(COpzPostProc());
    EXPECT_EQ(settings.Text(), "");
}

void FillChoices(COpzPostProc& opz) {
    opz.TpInsCoordBase = -1;
    opz.eOpzCreaNuoviPt = 2147483647;
    opz.sNumeGruppoSpec = " 1-3; 5 ";
    opz.eOpzNomiNuoviPt = -2147483647 - 1;
    opz.sSuffissoPtNuovi = "=\"n\"";
    opz.eOpzNomiVecchiPt = 70000;
    opz.sSuffissoPtVecchi = "";
}

void ExpectFilledChoices(const COpzPostProc& opz) {
    EXPECT_EQ(opz.TpInsCoordBase, -1);
    EXPECT_EQ(opz.eOpzCreaNuoviPt, 2147483647);
    EXPECT_EQ(opz.sNumeGruppoSpec, " 1-3; 5 ");
    EXPECT_EQ(opz.eOpzNomiNuoviPt, -2147483647 - 1);
    EXPECT_EQ(opz.sSuffissoPtNuovi, "=\"n\"");
    EXPECT_EQ(opz.eOpzNomiVecchiPt, 70000);
    EXPECT_EQ(opz.sSuffissoPtVecchi, "");
}

TEST(OpzPostProc, ChoicesComeBackAndParametersDoNot) {
    const Settings settings;
    COpzPostProc opz;
    FillChoices(opz);
    opz.ParPostProc.wPar1 = 99;
    opz.dExtra1 = 99;
    opz.SetInIni();
    const COpzPostProc other;
    ExpectFilledChoices(other);
    EXPECT_EQ(other.ParPostProc.wPar1, 15);
    EXPECT_EQ(other.dExtra1, 10.0);
}

TEST(OpzPostProc, ChoicesAreWrittenInTheirOrder) {
    const Settings settings;
    COpzPostProc opz;
    opz.TpInsCoordBase = 1;
    opz.eOpzCreaNuoviPt = 2;
    opz.sNumeGruppoSpec = "three";
    opz.eOpzNomiNuoviPt = 4;
    opz.sSuffissoPtNuovi = "five";
    opz.eOpzNomiVecchiPt = 6;
    opz.SetInIni();
    EXPECT_EQ(
        settings.Text(),
        "[OPZ-POST-PROC]\nTpInsCoordBase = 1\neOpzCreaNuoviPt = 2\nsNumeGruppoSpec = three\n"
        "eOpzNomiNuoviPt = 4\nsSuffissoPtNuovi = five\neOpzNomiVecchiPt = 6\nsSuffissoPtVecchi = _OLD\n");
}

TEST(OpzPostProc, EveryKeySetsItsOwnChoice) {
    for (const char* key : {"TpInsCoordBase", "eOpzCreaNuoviPt", "sNumeGruppoSpec", "eOpzNomiNuoviPt",
                            "sSuffissoPtNuovi", "eOpzNomiVecchiPt", "sSuffissoPtVecchi"}) {
        const Settings settings;
        ASSERT_TRUE(CIniFile().WriteString(kSection, key, "77"));
        const COpzPostProc opz;
        const std::string name = key;
        EXPECT_EQ(opz.TpInsCoordBase, name == "TpInsCoordBase" ? 77 : 0);
        EXPECT_EQ(opz.eOpzCreaNuoviPt, name == "eOpzCreaNuoviPt" ? 77 : 0);
        EXPECT_EQ(opz.sNumeGruppoSpec, name == "sNumeGruppoSpec" ? "77" : "");
        EXPECT_EQ(opz.eOpzNomiNuoviPt, name == "eOpzNomiNuoviPt" ? 77 : 0);
        EXPECT_EQ(opz.sSuffissoPtNuovi, name == "sSuffissoPtNuovi" ? "77" : "");
        EXPECT_EQ(opz.eOpzNomiVecchiPt, name == "eOpzNomiVecchiPt" ? 77 : 0);
        EXPECT_EQ(opz.sSuffissoPtVecchi, name == "sSuffissoPtVecchi" ? "77" : "_OLD");
    }
}

TEST(OpzPostProc, GetDaIniPutsDefaultsInThePlaceOfWhatIsNotThere) {
    const Settings settings;
    COpzPostProc opz;
    FillChoices(opz);
    opz.GetDaIni();
    ExpectDefaultChoices(opz);
}

// --- copies ------------------------------------------------------------------------------------------------

TEST(OpzPostProc, CopiesHaveEverythingAndReadNoSettings) {
    const Settings settings;
    COpzPostProc opz;
    FillChoices(opz);
    opz.ParPostProc.dPar4 = 7;
    opz.ParPostProc.aValPair[1].nVal = 8;
    opz.dExtra3 = 9;
    opz.nExtra5 = 10;
    opz.AddDataPtBaseLineDett("d");
    opz.AddDataPtBaseLineBase("b");
    opz.AddStringResults1(0, "one");
    opz.AddStringResults2(0, "two");
    opz.vecPtBaseLineDett[0].sWork4 = "work";
    opz.vecPtBaseLineDett[0].dWorkB[1] = 11;
    opz.vecPtBaseLineDett[0].nWork64 = 12;
    opz.vecPtBaseLineBase[0].nIdx1 = 13;
    const COpzPostProc copied(opz);
    COpzPostProc assigned;
    assigned.AddDataPtBaseLineDett("former");
    assigned = opz;
    for (const COpzPostProc* copy : {&copied, static_cast<const COpzPostProc*>(&assigned)}) {
        ExpectFilledChoices(*copy);
        EXPECT_EQ(copy->ParPostProc.dPar4, 7);
        EXPECT_EQ(copy->ParPostProc.aValPair[1].nVal, 8);
        EXPECT_EQ(copy->dExtra3, 9);
        EXPECT_EQ(copy->nExtra5, 10);
        EXPECT_TRUE(copy->bDettScanned);
        ASSERT_EQ(copy->GetNumPtBaseLineDett(), 1);
        ASSERT_EQ(copy->GetNumPtBaseLineBase(), 1);
        EXPECT_EQ(copy->GetFullResult(0), "one\r\ntwo\r\n");
        EXPECT_EQ(copy->vecPtBaseLineDett[0].sWork4, "work");
        EXPECT_EQ(copy->vecPtBaseLineDett[0].dWorkB[1], 11);
        EXPECT_EQ(copy->vecPtBaseLineDett[0].nWork64, 12);
        EXPECT_EQ(copy->vecPtBaseLineBase[0].nIdx1, 13);
    }
    opz.AddStringResults1(0, "later");
    EXPECT_EQ(copied.GetNumStringResults1(0), 1);
}

// --- files -------------------------------------------------------------------------------------------------

TEST(OpzPostProc, AddedRoverFileIsThereAndTheListIsKnown) {
    const Settings settings;
    COpzPostProc opz;
    EXPECT_TRUE(opz.AddDataPtBaseLineDett("a"));
    EXPECT_TRUE(opz.AddDataPtBaseLineDett("a")) << "duplicates are nobody's business";
    ASSERT_EQ(opz.GetNumPtBaseLineDett(), 2);
    EXPECT_EQ(opz.GetNumPtBaseLineBase(), 0);
    EXPECT_TRUE(opz.bDettScanned);
    EXPECT_EQ(opz.GetDataPtBaseLineDettAt(1)->sFile, "a");
    EXPECT_TRUE(opz.GetDataPtBaseLineDettAt(1)->bFileExists);
    EXPECT_TRUE(opz.GetDataPtBaseLineDettAt(1)->bFlag1);
    EXPECT_EQ(opz.GetDataPtBaseLineDettAt(1)->nIdx3, 1);
}

TEST(OpzPostProc, AddedBaseFileLeavesTheRoversUnknown) {
    const Settings settings;
    COpzPostProc opz;
    EXPECT_TRUE(opz.AddDataPtBaseLineBase("a"));
    ASSERT_EQ(opz.GetNumPtBaseLineBase(), 1);
    EXPECT_EQ(opz.GetNumPtBaseLineDett(), 0);
    EXPECT_FALSE(opz.bDettScanned);
    EXPECT_EQ(opz.GetDataPtBaseLineBaseAt(0)->sFile, "a");
    EXPECT_TRUE(opz.GetDataPtBaseLineBaseAt(0)->bFileExists);
}

TEST(OpzPostProc, FileIsFoundByItsWholePath) {
    const Settings settings;
    COpzPostProc opz;
    for (const char* file : {"x/a", "x/b", "x/a", ""}) {
        opz.AddDataPtBaseLineDett(file);
        opz.AddDataPtBaseLineBase(std::string("base ") + file);
    }
    EXPECT_EQ(opz.GetIdPtBaseLineDettByFile("x/a"), 0);
    EXPECT_EQ(opz.GetIdPtBaseLineDettByFile("x/b"), 1);
    EXPECT_EQ(opz.GetIdPtBaseLineDettByFile(""), 3);
    EXPECT_EQ(opz.GetIdPtBaseLineDettByFile("X/a"), -1);
    EXPECT_EQ(opz.GetIdPtBaseLineDettByFile("x/"), -1);
    EXPECT_EQ(opz.GetIdPtBaseLineDettByFile("x\\a"), -1);
    EXPECT_EQ(opz.GetIdPtBaseLineDettByFile("base x/a"), -1);
    EXPECT_EQ(opz.GetIdPtBaseLineBaseByFile("base x/b"), 1);
    EXPECT_EQ(opz.GetIdPtBaseLineBaseByFile("x/b"), -1);
}

TEST(OpzPostProc, DeletionMovesTheOthersUp) {
    const Settings settings;
    COpzPostProc opz;
    for (const char* file : {"a", "b", "c"}) {
        opz.AddDataPtBaseLineDett(file);
        opz.AddDataPtBaseLineBase(file);
    }
    opz.DelDataPtBaseLineDettAt(1);
    opz.DelDataPtBaseLineBaseAt(0);
    ASSERT_EQ(opz.GetNumPtBaseLineDett(), 2);
    ASSERT_EQ(opz.GetNumPtBaseLineBase(), 2);
    EXPECT_EQ(opz.GetDataPtBaseLineDettAt(1)->sFile, "c");
    EXPECT_EQ(opz.GetDataPtBaseLineBaseAt(0)->sFile, "b");
    opz.DelAllDataPtBaseLineDett();
    EXPECT_EQ(opz.GetNumPtBaseLineDett(), 0);
    EXPECT_EQ(opz.GetNumPtBaseLineBase(), 2);
    EXPECT_TRUE(opz.bDettScanned);
    opz.DelAllDataPtBaseLineBase();
    EXPECT_EQ(opz.GetNumPtBaseLineBase(), 0);
}

TEST(OpzPostProc, PositionsThatDoNotExistAreAnsweredWithNothing) {
    const Settings settings;
    COpzPostProc opz;
    opz.AddDataPtBaseLineDett("a");
    opz.AddDataPtBaseLineBase("b");
    opz.AddStringResults1(0, "x");
    opz.AddStringResults2(0, "y");
    for (const unsigned i : {1u, 2147483648u, 4294967295u}) {
        EXPECT_EQ(opz.GetDataPtBaseLineDettAt(i), nullptr);
        EXPECT_EQ(opz.GetDataPtBaseLineBaseAt(i), nullptr);
        opz.DelDataPtBaseLineDettAt(i);
        opz.DelDataPtBaseLineBaseAt(i);
        opz.ClearStringResults(i);
        opz.AddStringResults1(i, "z");
        opz.AddStringResults2(i, "z");
        EXPECT_EQ(opz.GetNumStringResults1(i), 0);
        EXPECT_EQ(opz.GetNumStringResults2(i), 0);
        EXPECT_EQ(opz.GetStringResults1At(i, 0), "");
        EXPECT_EQ(opz.GetStringResults2At(i, 0), "");
        EXPECT_EQ(opz.GetStringResults1At(0, i), "");
        EXPECT_EQ(opz.GetStringResults2At(0, i), "");
        EXPECT_EQ(opz.GetFullResult(i), "");
    }
    EXPECT_EQ(opz.GetNumPtBaseLineDett(), 1);
    EXPECT_EQ(opz.GetNumPtBaseLineBase(), 1);
    EXPECT_EQ(opz.GetFullResult(0), "x\r\ny\r\n");
}

// --- results -----------------------------------------------------------------------------------------------

TEST(OpzPostProc, ResultsStandInTwoBlocksOfEachRoverFile) {
    const Settings settings;
    COpzPostProc opz;
    opz.AddDataPtBaseLineDett("0");
    opz.AddDataPtBaseLineDett("1");
    opz.AddStringResults2(1, "c");
    opz.AddStringResults1(1, "a");
    opz.AddStringResults1(1, "b");
    EXPECT_EQ(opz.GetNumStringResults1(1), 2);
    EXPECT_EQ(opz.GetNumStringResults2(1), 1);
    EXPECT_EQ(opz.GetStringResults1At(1, 0), "a");
    EXPECT_EQ(opz.GetStringResults1At(1, 1), "b");
    EXPECT_EQ(opz.GetStringResults2At(1, 0), "c");
    EXPECT_EQ(opz.GetFullResult(1), "a\r\nb\r\nc\r\n");
    EXPECT_EQ(opz.GetFullResult(0), "");
    opz.ClearStringResults(1);
    EXPECT_EQ(opz.GetNumStringResults1(1), 0);
    EXPECT_EQ(opz.GetNumStringResults2(1), 0);
    EXPECT_EQ(opz.GetFullResult(1), "");
    opz.AddStringResults2(1, "");
    EXPECT_EQ(opz.GetFullResult(1), "\r\n");
}

// --- search in the project's folder ------------------------------------------------------------------------

/// A project "Site7.prj" with a folder "Site7".
struct Site {
    TempFolder folder;
    Site() { mkdir((folder / "Site7").c_str(), 0777); }
    std::string Project() const { return folder / "Site7.prj"; }
    std::string File(const std::string& name) const { return folder / ("Site7\\" + name); }
    void Put(const std::string& name) const { test::WriteFileBytes(folder / ("Site7/" + name), "x"); }
    void Remove(const std::string& name) const { unlink((folder / ("Site7/" + name)).c_str()); }
};

std::set<std::string> Files(const COpzPostProc& opz) {
    std::set<std::string> files;
    for (const File& file : opz.vecPtBaseLineDett) files.insert(file.sFile);
    return files;
}

TEST(OpzPostProc, RoverFilesAreThoseOfTheProjectsFolder) {
    const Settings settings;
    const Site site;
    for (const char* name : {"a.tps", "B.TPS", "c.tps.bak", "d.txt", ".e.tps"}) site.Put(name);
    test::WriteFileBytes(site.folder / "outside.tps", "x");
    COpzPostProc opz;
    opz.FindTpsDettFilesInFolder(site.Project().c_str());
    EXPECT_EQ(Files(opz),
              (std::set<std::string>{site.File("a.tps"), site.File("B.TPS"), site.File(".e.tps")}));
    EXPECT_EQ(opz.GetNumPtBaseLineDett(), 3);
    EXPECT_TRUE(opz.bDettScanned);
    for (const File& file : opz.vecPtBaseLineDett) {
        EXPECT_TRUE(file.bFileExists);
        EXPECT_TRUE(file.bFlag1);
        EXPECT_EQ(file.nIdx2, -1);
    }
}

TEST(OpzPostProc, ProjectPathMayHaveEitherSeparatorAndNoExtension) {
    const Settings settings;
    const Site site;
    site.Put("a.tps");
    for (const std::string& path : {site.Project(), site.folder / "Site7", site.folder / "Site7.v2"}) {
        COpzPostProc opz;
        opz.FindTpsDettFilesInFolder(path.c_str());
        EXPECT_EQ(Files(opz), std::set<std::string>{site.File("a.tps")}) << path;
    }
    std::string backslashes = site.Project();
    std::replace(backslashes.begin(), backslashes.end(), '/', '\\');
    COpzPostProc opz;
    opz.FindTpsDettFilesInFolder(backslashes.c_str());
    ASSERT_EQ(opz.GetNumPtBaseLineDett(), 1);
    EXPECT_EQ(opz.vecPtBaseLineDett[0].sFile, backslashes.substr(0, backslashes.size() - 4) + "\\a.tps");
    site.Remove("a.tps");
    opz.FindTpsDettFilesInFolder(backslashes.c_str());
    EXPECT_FALSE(opz.vecPtBaseLineDett[0].bFileExists) << "the path that was stored leads to the file";
    site.Put("a.tps");
    opz.FindTpsDettFilesInFolder(backslashes.c_str());
    EXPECT_TRUE(opz.vecPtBaseLineDett[0].bFileExists);
}

TEST(OpzPostProc, DotOfAFolderIsNoExtensionOfTheProject) {
    const Settings settings;
    const TempFolder folder;
    for (const char* sub : {"Jobs.v2", "Jobs.v2/Site7"}) ASSERT_EQ(mkdir((folder / sub).c_str(), 0777), 0);
    test::WriteFileBytes(folder / "Jobs.v2/Site7/a.tps", "x");
    COpzPostProc opz;
    opz.FindTpsDettFilesInFolder((folder / "Jobs.v2/Site7").c_str());
    EXPECT_EQ(Files(opz), std::set<std::string>{folder / "Jobs.v2/Site7\\a.tps"});
}

TEST(OpzPostProc, WithoutMatchesTheNextCallLooksAgain) {
    const Settings settings;
    const Site site;
    COpzPostProc opz;
    opz.FindTpsDettFilesInFolder(site.Project().c_str());
    EXPECT_EQ(opz.GetNumPtBaseLineDett(), 0);
    EXPECT_FALSE(opz.bDettScanned);
    opz.FindTpsDettFilesInFolder((site.folder / "none.prj").c_str());
    EXPECT_FALSE(opz.bDettScanned);
    site.Put("a.tps");
    opz.FindTpsDettFilesInFolder(site.Project().c_str());
    EXPECT_EQ(opz.GetNumPtBaseLineDett(), 1);
    EXPECT_TRUE(opz.bDettScanned);
}

TEST(OpzPostProc, WithoutProjectNothingIsFound) {
    const Settings settings;
    COpzPostProc opz;
    opz.FindTpsDettFilesInFolder(nullptr);
    opz.FindTpsDettFilesInFolder("");
    EXPECT_EQ(opz.GetNumPtBaseLineDett(), 0);
    EXPECT_FALSE(opz.bDettScanned);
}

TEST(OpzPostProc, SearchEmptiesTheRoversAndLeavesTheBases) {
    const Settings settings;
    const Site site;
    COpzPostProc opz;
    opz.AddDataPtBaseLineDett("stale");
    opz.AddDataPtBaseLineBase("base");
    opz.bDettScanned = false;
    opz.FindTpsDettFilesInFolder(site.Project().c_str());
    EXPECT_EQ(opz.GetNumPtBaseLineDett(), 0);
    ASSERT_EQ(opz.GetNumPtBaseLineBase(), 1);
    EXPECT_TRUE(opz.GetDataPtBaseLineBaseAt(0)->bFileExists) << "bases are not looked at";
}

TEST(OpzPostProc, KnownFilesAreOnlyLookedAt) {
    const Settings settings;
    const Site site;
    site.Put("a.tps");
    site.Put("base");
    COpzPostProc opz;
    opz.FindTpsDettFilesInFolder(site.Project().c_str());
    opz.AddDataPtBaseLineBase(site.File("base"));
    opz.AddDataPtBaseLineBase(site.File("no base"));
    site.Remove("a.tps");
    site.Put("b.tps");
    opz.FindTpsDettFilesInFolder(site.Project().c_str());
    ASSERT_EQ(opz.GetNumPtBaseLineDett(), 1) << "neither added nor removed";
    EXPECT_EQ(opz.GetDataPtBaseLineDettAt(0)->sFile, site.File("a.tps"));
    EXPECT_FALSE(opz.GetDataPtBaseLineDettAt(0)->bFileExists);
    EXPECT_TRUE(opz.GetDataPtBaseLineBaseAt(0)->bFileExists);
    EXPECT_FALSE(opz.GetDataPtBaseLineBaseAt(1)->bFileExists);
    site.Put("a.tps");
    opz.FindTpsDettFilesInFolder(nullptr);
    EXPECT_TRUE(opz.GetDataPtBaseLineDettAt(0)->bFileExists);
}

TEST(OpzPostProc, AnAddedRoverKeepsTheFolderUnread) {
    const Settings settings;
    const Site site;
    site.Put("a.tps");
    COpzPostProc opz;
    opz.AddDataPtBaseLineDett(site.File("mine"));
    opz.FindTpsDettFilesInFolder(site.Project().c_str());
    EXPECT_EQ(Files(opz), std::set<std::string>{site.File("mine")});
    EXPECT_FALSE(opz.GetDataPtBaseLineDettAt(0)->bFileExists);
}

TEST(OpzPostProc, KnownRoversThatWereAllDeletedKeepTheFolderUnread) {
    const Settings settings;
    const Site site;
    site.Put("a.tps");
    COpzPostProc opz;
    opz.FindTpsDettFilesInFolder(site.Project().c_str());
    opz.DelAllDataPtBaseLineDett();
    opz.FindTpsDettFilesInFolder(site.Project().c_str());
    EXPECT_EQ(opz.GetNumPtBaseLineDett(), 0);
    EXPECT_TRUE(opz.bDettScanned);
}

TEST(OpzPostProc, KnownFilesOfALoadedProjectAreOnlyLookedAt) {
    const Settings settings;
    const Site site;
    site.Put("here.tps");
    site.Put("unknown.tps");
    COpzPostProc saved;
    saved.AddDataPtBaseLineDett("D:\\Jobs\\Site7\\elsewhere.tps");  // another system's
    saved.AddDataPtBaseLineDett(site.File("here.tps"));
    ofpstream out(1400);
    saved.SalvaInFile(out);
    ifpstream in(out.GetBytes().data(), out.GetBytes().size(), 1400);
    COpzPostProc opz;
    opz.LeggeDaFile(in);
    ASSERT_EQ(opz.GetNumPtBaseLineDett(), 2);
    EXPECT_FALSE(opz.vecPtBaseLineDett[1].bFileExists) << "nobody has looked yet";
    opz.FindTpsDettFilesInFolder(site.Project().c_str());
    ASSERT_EQ(opz.GetNumPtBaseLineDett(), 2);
    EXPECT_FALSE(opz.vecPtBaseLineDett[0].bFileExists);
    EXPECT_TRUE(opz.vecPtBaseLineDett[1].bFileExists);
}

TEST(OpzPostProc, AnAddedBaseLeavesTheFolderToBeRead) {
    const Settings settings;
    const Site site;
    site.Put("a.tps");
    COpzPostProc opz;
    opz.AddDataPtBaseLineBase("mine");
    opz.FindTpsDettFilesInFolder(site.Project().c_str());
    EXPECT_EQ(Files(opz), std::set<std::string>{site.File("a.tps")});
}

// --- the field book's own ----------------------------------------------------------------------------------

TEST(OpzPostProc, FieldBookMakesThemOnceWhenTheyAreAskedFor) {
    const Settings settings;
    CLibGps book(nullptr, nullptr, nullptr, nullptr, 0);
    EXPECT_FALSE(book.HasOpzPostProc());
    settings.SetText("[OPZ-POST-PROC]\nsSuffissoPtNuovi = first\n");
    COpzPostProc* const opz = book.GetOpzPostProc();
    ASSERT_NE(opz, nullptr);
    EXPECT_TRUE(book.HasOpzPostProc());
    EXPECT_EQ(opz->sSuffissoPtNuovi, "first") << "the settings at that time, not at the book's making";
    settings.SetText("[OPZ-POST-PROC]\nsSuffissoPtNuovi = later\n");
    EXPECT_EQ(book.GetOpzPostProc(), opz);
    EXPECT_EQ(opz->sSuffissoPtNuovi, "first");
}

}  // namespace
