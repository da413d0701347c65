// gpsbook cloud: what a book and its project differ in, and conflicts that are settled.
#include <gtest/gtest.h>

#include "tests/apps/gpsbook/commands/SharedSite.h"

namespace gpsbook::test {
namespace {

using nlohmann::json;

/// Anna and bert have set the same code; bert's sync has met it as conflict 1.
class Disputed : public SharedSite {
public:
    Disputed() {
        Share();
        EXPECT_EQ(As("anna", {"set", "site.gpsbook", "Quay/P1", "code=FENCE"}).exitCode, 0);
        EXPECT_EQ(As("bert", {"set", "bert.gpsbook", "Quay/P1", "code=WALL"}).exitCode, 0);
        Sync("anna");
        Sync("bert", 3);
    }
};

/// Anna has deleted the point that bert has changed; it is kept as conflict 1 of bert.
class Deleted : public SharedSite {
public:
    explicit Deleted(const std::string& address = "Quay/P3") {
        Share();
        EXPECT_EQ(As("anna", {"delete", "site.gpsbook", address}).exitCode, 0);
        EXPECT_EQ(As("bert", {"set", "bert.gpsbook", "Quay/P3", "antenna=1.9"}).exitCode, 0);
        Sync("anna");
        Sync("bert", 3);
    }

    std::string PointsOfBert(const std::string& group) const {
        std::string names;
        const json list = JsonOf(Run({"list", "bert.gpsbook", group, "--json"}));
        for (const json& point : list["groups"][0]["points"])
            names += (names.empty() ? "" : " ") + point["name"].get<std::string>();
        return names;
    }
};

// --- status ------------------------------------------------------------------------------------------------

TEST(CloudStatus, BookOfOnesOwnIsNotShared) {
    const Site site;
    const Outcome outcome = site.Run({"cloud", "status", "site.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "site.gpsbook: is not shared; gpsbook sync shares it\n");
    const json status = JsonOf(site.Run({"cloud", "status", "site.gpsbook", "--json"}));
    EXPECT_TRUE(status["project"].is_null());
    EXPECT_TRUE(status["revision"].is_null());
}

TEST(CloudStatus, TellsWhatWaitsWithTheFieldsThatChanged) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "name=Mole"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "Mole", "name=M1"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P1", "code=FENCE", "antenna=1.8"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Pier", "base_h=3"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"delete", "site.gpsbook", "Quay/P2", "Quay/P3"}).exitCode, 0);
    const json status = site.Status("anna");
    EXPECT_EQ(status["project"], "Dam");
    EXPECT_TRUE(status["commit"].is_null());
    EXPECT_EQ(status["new"], json::parse(R"([{"kind": "group", "group": 2, "point": null, "name": "Mole"},
                              {"kind": "point", "group": 2, "point": 0, "name": "Mole/M1"}])"));
    ASSERT_EQ(status["changed"].size(), 2U);
    EXPECT_EQ(status["changed"][0]["name"], "Quay/P1");
    EXPECT_EQ(status["changed"][0]["id"], 3);
    // The plane coordinates follow from the antenna.
    EXPECT_EQ(status["changed"][0]["fields"], json({"code-text", "position", "antenna"}));
    EXPECT_EQ(status["changed"][1]["name"], "Pier");
    EXPECT_EQ(status["changed"][1]["fields"], json({"base-elevation"}));
    EXPECT_EQ(status["deleted"], json({{"groups", json::array()}, {"points", {4, 5}}}));
    const Outcome text = site.As("anna", {"cloud", "status", "site.gpsbook"});
    EXPECT_EQ(text.out,
              "site.gpsbook: project Dam of shared.sqlite, revision 1\n"
              "  new: 1 group, 1 point\n"
              "    Mole\n"
              "    Mole/M1\n"
              "  changed: 1 group, 1 point\n"
              "    Quay/P1: code-text, position, antenna\n"
              "    Pier: base-elevation\n"
              "  deleted: 0 groups, 2 points\n"
              "    2 points: ids 4, 5\n");
    site.Sync("anna");
    const json after = site.Status("anna");
    EXPECT_EQ(after["new"], json::array());
    EXPECT_EQ(after["changed"], json::array());
    EXPECT_EQ(after["deleted"], json({{"groups", json::array()}, {"points", json::array()}}));
}

TEST(CloudStatus, TellsBothValuesOfAConflictAndWho) {
    const Disputed site;
    const json conflict = site.Status("bert")["conflicts"][0];
    EXPECT_EQ(conflict["number"], 1);
    EXPECT_EQ(conflict["what"], "field");
    EXPECT_EQ(conflict["kind"], "point");
    EXPECT_EQ(conflict["id"], 3);
    EXPECT_EQ(conflict["name"], "Quay/P1");
    EXPECT_EQ(conflict["field"], "code-text");
    EXPECT_EQ(conflict["mine"], "\"WALL\"");
    EXPECT_EQ(conflict["theirs"], "\"FENCE\"");
    EXPECT_EQ(conflict["author"], "anna");
    EXPECT_EQ(conflict["revision"], 2);
    EXPECT_GT(conflict["device"], 0);
    const Outcome text = site.As("bert", {"cloud", "status", "bert.gpsbook"});
    EXPECT_NE(text.out.find("  conflicts, which gpsbook cloud resolve settles:\n"
                            "    1: point Quay/P1 (id 3), code-text: here \"WALL\", there \"FENCE\", set by "
                            "anna in revision 2\n"),
              std::string::npos)
        << text;
}

TEST(CloudStatus, TellsWhatTheProjectRefused) {
    const Deleted site;
    const json status = site.Status("bert");
    ASSERT_EQ(status["refused"].size(), 1U);
    EXPECT_EQ(status["refused"][0]["id"], 5);
    EXPECT_NE(status["refused"][0]["reason"].get<std::string>().find("was deleted by anna"),
              std::string::npos);
    EXPECT_EQ(status["conflicts"][0]["what"], "kept");
    EXPECT_EQ(status["conflicts"][0]["points"], 1);
    const Outcome text = site.As("bert", {"cloud", "status", "bert.gpsbook"});
    EXPECT_EQ(status["refused"][0]["name"], "Quay/P3");
    EXPECT_NE(text.out.find("  refused by the project:\n    point Quay/P3 (id 5): "), std::string::npos)
        << text;
    EXPECT_EQ(status["conflicts"][0]["why"], json({"unsent"}));
}

TEST(CloudStatus, HereIsWhatStandsInTheBookNow) {
    const Disputed site;
    ASSERT_EQ(site.As("bert", {"set", "bert.gpsbook", "Quay/P1", "code=GATE"}).exitCode, 0);
    EXPECT_EQ(site.Status("bert")["conflicts"][0]["mine"], "\"GATE\"");
    Outcome text = site.As("bert", {"cloud", "status", "bert.gpsbook"});
    EXPECT_NE(text.out.find("code-text: here \"GATE\", there \"FENCE\", set by anna"), std::string::npos)
        << text;
    ASSERT_EQ(site.As("bert", {"set", "bert.gpsbook", "Quay/P1", "code=FENCE"}).exitCode, 0);
    text = site.As("bert", {"cloud", "status", "bert.gpsbook"});
    EXPECT_NE(text.out.find("code-text: by now the same here and there, set by anna"), std::string::npos)
        << text;
    site.Sync("bert");
    EXPECT_EQ(site.Status("bert")["conflicts"], json::array());
}

TEST(CloudStatus, ConflictOfAPointThatIsGoneTellsSo) {
    const Disputed site;
    ASSERT_EQ(site.As("bert", {"delete", "bert.gpsbook", "Quay/P1"}).exitCode, 0);
    EXPECT_TRUE(site.Status("bert")["conflicts"][0]["mine"].is_null());
    EXPECT_EQ(site.Status("bert")["conflicts"][0]["theirs"], "\"FENCE\"");
    const Outcome text = site.As("bert", {"cloud", "status", "bert.gpsbook"});
    EXPECT_NE(text.out.find("code-text: not in the book any more, there \"FENCE\""), std::string::npos)
        << text;
}

TEST(CloudStatus, ConflictIsGoneWhenTheOtherOneHasGoneOn) {
    const Disputed site;
    site.Sync("anna");
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P1", "code=GATE"}).exitCode, 0);
    site.Sync("anna");
    site.Sync("bert");
    EXPECT_EQ(site.FieldOf("bert", "Quay/P1", "code"), "GATE");
    EXPECT_EQ(site.Status("bert")["conflicts"], json::array());
    const Outcome late = site.As("bert", {"cloud", "resolve", "bert.gpsbook", "1", "--theirs"});
    EXPECT_EQ(late.exitCode, 5) << late;
    EXPECT_EQ(site.FieldOf("bert", "Quay/P1", "code"), "GATE");
}

TEST(CloudStatus, TellsWhatTheOtherOneHadDoneToWhatWasDeletedHere) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"add", "site.gpsbook", "Quay", "name=P5"}).exitCode, 0);
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Pier/A", "code=WALL", "quality=1"}).exitCode, 0);
    ASSERT_EQ(site.As("bert", {"delete", "bert.gpsbook", "Quay", "Pier/A"}).exitCode, 0);
    site.Sync("anna");
    site.Sync("bert", 3);
    const json conflicts = site.Status("bert")["conflicts"];
    ASSERT_EQ(conflicts.size(), 2U);
    const auto& point = conflicts[conflicts[0]["name"].get<std::string>().ends_with("P5") ? 0 : 1];
    const auto& changed = conflicts[conflicts[0]["name"].get<std::string>().ends_with("P5") ? 1 : 0];
    EXPECT_EQ(point["what"], "deleted-here");
    EXPECT_EQ(point["there"], json({"added"}));
    EXPECT_TRUE(point["mine"].is_null());
    EXPECT_EQ(changed["there"], json({"code-text", "quality"}));
    const Outcome text = site.As("bert", {"cloud", "status", "bert.gpsbook"});
    EXPECT_NE(text.out.find(": deleted here, and added there by anna in revision 2; it is deleted\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.out.find(": deleted here, and changed there (code-text, quality) by anna in revision 2; "
                            "it is deleted\n"),
              std::string::npos)
        << text;
    const Outcome outcome = site.As("bert", {"cloud", "resolve", "bert.gpsbook", "--all", "--mine"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(site.Status("bert")["conflicts"], json::array());
}

TEST(CloudStatus, TellsWhatIsHeldBackAndWhy) {
    const SharedSite site(
        [](gpsproject::Project& project) { project.GetBook().GetPunAt(0, 1)->SetNome("P;2"); });
    ASSERT_EQ(site.As("anna", FirstSync("site.gpsbook")).exitCode, 0);
    const Outcome text = site.As("anna", {"cloud", "status", "site.gpsbook"});
    EXPECT_NE(text.out.find("  held back, since no record can carry it:\n"
                            "    Quay/P;2: the name holds a ';'\n"),
              std::string::npos)
        << text;
}

TEST(CloudStatus, TellsOfACommitThatIsNotAnswered) {
    SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P1", "code=FENCE"}).exitCode, 0);
    {
        const auto project = gpsproject::Project::Open(site.Book(), gpsproject::Project::Mode::write);
        ASSERT_TRUE(project->GetCloud().BeginCommit(std::string(32, 'c')));
        project->Save();
    }
    const Outcome text = site.As("anna", {"cloud", "status", "site.gpsbook"});
    EXPECT_NE(
        text.out.find("  a commit was sent, or was to be, and is not answered: gpsbook sync repeats it\n"),
        std::string::npos)
        << text;
    EXPECT_EQ(site.Status("anna")["commit"]["id"], std::string(32, 'c'));
    EXPECT_EQ(site.Sync("anna")["repeated"], true);
    EXPECT_TRUE(site.Status("anna")["commit"].is_null());
}

TEST(CloudStatus, OfManyTheFirstTwentyAreTold) {
    const SharedSite site([](gpsproject::Project& project) {
        CLibGps& book = project.GetBook();
        for (int p = 5; p <= 25; ++p) book.AddPun(0, false)->SetNome("P" + std::to_string(p));
    });
    site.Share();
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/#0..", "code=FENCE"}).exitCode, 0);
    ASSERT_EQ(site.As("bert", {"set", "bert.gpsbook", "Quay/#0..", "code=WALL"}).exitCode, 0);
    Outcome text = site.As("anna", {"cloud", "status", "site.gpsbook"});
    EXPECT_NE(text.out.find("    Quay/P20: code-text\n    ... and 5 more; --json tells all\n"),
              std::string::npos)
        << text;
    site.Sync("anna");
    site.Sync("bert", 3);
    text = site.As("bert", {"cloud", "status", "bert.gpsbook"});
    EXPECT_TRUE(text.out.ends_with("\n    ... and 5 more; --json tells all\n")) << text;
    EXPECT_NE(text.out.find("\n    20: point Quay/"), std::string::npos) << text;
    EXPECT_EQ(text.out.find("\n    21: point Quay/"), std::string::npos) << text;
    EXPECT_EQ(site.Status("bert")["conflicts"].size(), 25U);
}

TEST(CloudStatus, ChangesNothing) {
    const Disputed site;
    const std::string bytes = site.Text("bert.gpsbook");
    site.Status("bert");
    EXPECT_EQ(site.Text("bert.gpsbook"), bytes);
    site.ExpectRefused({"cloud", "status", "none.gpsbook"}, 5, "none.gpsbook");
}

TEST(CloudStatus, InfoTellsTheLink) {
    const Disputed site;
    const json info = JsonOf(site.Run({"info", "bert.gpsbook", "--json"}));
    EXPECT_EQ(info["shared"]["project"], "Dam");
    EXPECT_EQ(info["shared"]["store"], "shared.sqlite");
    EXPECT_EQ(info["shared"]["revision"], 3);
    EXPECT_EQ(info["shared"]["to_send"], false);
    EXPECT_EQ(info["shared"]["conflicts"], 1);
    ASSERT_EQ(site.As("bert", {"set", "bert.gpsbook", "Quay/P4", "code=X"}).exitCode, 0);
    const Outcome text = site.Run({"info", "bert.gpsbook"});
    EXPECT_NE(text.out.find("  shared: project Dam of shared.sqlite, revision 3, with something to send\n"),
              std::string::npos)
        << text;
    EXPECT_TRUE(JsonOf(Site().Run({"info", "site.gpsbook", "--json"}))["shared"].is_null());
}

// --- resolve -----------------------------------------------------------------------------------------------

TEST(CloudResolve, MineKeepsTheValue) {
    const Disputed site;
    const Outcome outcome = site.As("bert", {"cloud", "resolve", "bert.gpsbook", "1", "--mine"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out, "1: Quay/P1 stays as it is here\nbert.gpsbook: 1 conflict settled, 0 left\n");
    EXPECT_EQ(site.Status("bert")["conflicts"], json::array());
    EXPECT_EQ(site.Sync("bert")["sent"]["changed"], 0);
    site.Sync("anna");
    EXPECT_EQ(site.FieldOf("anna", "Quay/P1", "code"), "WALL");
}

TEST(CloudResolve, TheirsIsAnEditThatIsSent) {
    const Disputed site;
    const json done =
        JsonOf(site.As("bert", {"cloud", "resolve", "bert.gpsbook", "1", "--theirs", "--json"}));
    EXPECT_EQ(done["saved"], true);
    EXPECT_EQ(done["decision"], "theirs");
    EXPECT_EQ(done["settled"], json::parse(R"([{"number": 1, "name": "Quay/P1"}])"));
    EXPECT_EQ(done["left"], 0);
    EXPECT_EQ(site.FieldOf("bert", "Quay/P1", "code"), "FENCE");
    EXPECT_EQ(site.Sync("bert")["sent"]["changed"], 1);
    site.Sync("anna");
    EXPECT_EQ(site.FieldOf("anna", "Quay/P1", "code"), "FENCE");
    site.ExpectSame();
}

TEST(CloudResolve, KeptPointComesBackIntoItsGroupAsANewOne) {
    const Deleted site;
    EXPECT_EQ(site.PointsOfBert("Quay"), "P1 P2 P4");
    const Outcome outcome = site.As("bert", {"cloud", "resolve", "bert.gpsbook", "1", "--add-again"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out,
              "1: Quay/P3 was added again, as a new one\nbert.gpsbook: 1 conflict settled, 0 left\n");
    EXPECT_EQ(site.PointsOfBert("Quay"), "P1 P2 P4 P3");
    EXPECT_EQ(site.FieldOf("bert", "Quay/P3", "antenna"), 1.9) << "with what was not sent";
    EXPECT_EQ(site.Sync("bert")["sent"]["new"], 1);
    site.Sync("anna", 0);
    site.ExpectSame();
}

TEST(CloudResolve, KeptPointCanComeIntoAnotherGroup) {
    const Deleted site;
    const Outcome outcome =
        site.As("bert", {"cloud", "resolve", "bert.gpsbook", "1", "--add-again", "--group", "Pier"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(site.PointsOfBert("Pier"), "A B P3");
}

TEST(CloudResolve, KeptGroupComesBackWithItsPoints) {
    const Deleted site("Quay");
    const json conflict = site.Status("bert")["conflicts"][0];
    EXPECT_EQ(conflict["kind"], "group");
    EXPECT_EQ(conflict["points"], 4);
    const Outcome wrong =
        site.As("bert", {"cloud", "resolve", "bert.gpsbook", "1", "--add-again", "--group", "Pier"});
    EXPECT_EQ(wrong.exitCode, 2) << wrong;
    EXPECT_NE(wrong.err.find("--group: conflict 1 is about a group"), std::string::npos) << wrong;
    const Outcome outcome = site.As("bert", {"cloud", "resolve", "bert.gpsbook", "1", "--add-again"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(site.PointsOfBert("Quay"), "P1 P2 P3 P4");
    EXPECT_EQ(site.Sync("bert")["sent"]["new"], 5);
    site.Sync("anna");
    site.ExpectSame();
}

TEST(CloudResolve, PointIsKeptForItsNoteWhichIsNowhereElse) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("bert", {"set", "bert.gpsbook", "Quay/P3", "notes=behind the wall"}).exitCode, 0);
    EXPECT_EQ(site.Sync("bert")["sent"]["changed"], 0) << "no record carries it";
    ASSERT_EQ(site.As("anna", {"delete", "site.gpsbook", "Quay/P3", "Quay/P4"}).exitCode, 0);
    site.Sync("anna");
    const json done = site.Sync("bert", 3);
    EXPECT_EQ(done["taken"]["deleted"], 2);
    ASSERT_EQ(done["conflicts"].size(), 1U);
    EXPECT_EQ(done["conflicts"][0]["what"], "kept");
    EXPECT_EQ(done["conflicts"][0]["name"], "Quay/P3");
    ASSERT_EQ(site.As("bert", {"cloud", "resolve", "bert.gpsbook", "1", "--add-again"}).exitCode, 0);
    EXPECT_EQ(site.FieldOf("bert", "Quay/P3", "notes"), "behind the wall");
    EXPECT_EQ(site.Sync("bert")["sent"]["new"], 1);
    site.Sync("anna");
    site.ExpectSame();
}

/// Of bert, point P3 was kept, and then its group with the rest.
class KeptApart : public Deleted {
public:
    KeptApart() {
        EXPECT_EQ(As("bert", {"set", "bert.gpsbook", "Quay/P4", "notes=here"}).exitCode, 0);
        EXPECT_EQ(As("anna", {"delete", "site.gpsbook", "Quay"}).exitCode, 0);
        Sync("anna");
        Sync("bert", 3);
    }
};

TEST(CloudResolve, KeptPointsComeIntoTheirGroupThatComesWithThem) {
    const KeptApart site;
    const Outcome outcome = site.As("bert", {"cloud", "resolve", "bert.gpsbook", "--all", "--add-again"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.out,
              "2: Quay was added again, as a new one\n1: Quay/P3 was added again, as a new one\n"
              "bert.gpsbook: 2 conflicts settled, 0 left\n");
    EXPECT_EQ(site.PointsOfBert("Quay"), "P1 P2 P4 P3");
    site.Sync("bert");
    site.Sync("anna");
    site.ExpectSame();
}

TEST(CloudResolve, KeptPointComesIntoItsGroupThatCameBeforeIt) {
    const KeptApart site;
    ASSERT_EQ(site.As("bert", {"cloud", "resolve", "bert.gpsbook", "2", "--add-again"}).exitCode, 0);
    site.Sync("bert");
    const Outcome outcome = site.As("bert", {"cloud", "resolve", "bert.gpsbook", "1", "--add-again"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(site.PointsOfBert("Quay"), "P1 P2 P4 P3");
}

TEST(CloudResolve, KeptPointWithoutItsGroupIsNotFoundAndNothingIsSettled) {
    const KeptApart site;
    ASSERT_EQ(site.As("bert", {"cloud", "resolve", "bert.gpsbook", "2", "--mine"}).exitCode, 0);
    const std::string bytes = site.Text("bert.gpsbook");
    const Outcome outcome = site.As("bert", {"cloud", "resolve", "bert.gpsbook", "--all", "--add-again"});
    EXPECT_EQ(outcome.exitCode, 5) << outcome;
    EXPECT_NE(outcome.err.find("group 'Quay'"), std::string::npos) << outcome;
    EXPECT_TRUE(site.Text("bert.gpsbook") == bytes);
}

TEST(CloudResolve, BookThatSomebodyWritesIsLocked) {
    const Disputed site;
    const std::string bytes = site.Text("bert.gpsbook");
    const auto project =
        gpsproject::Project::Open(site.Path("bert.gpsbook"), gpsproject::Project::Mode::write);
    const Outcome outcome = site.As("bert", {"cloud", "resolve", "bert.gpsbook", "1", "--mine"});
    EXPECT_EQ(outcome.exitCode, 3) << outcome;
    EXPECT_NE(outcome.err.find("bert.gpsbook"), std::string::npos) << outcome;
    EXPECT_TRUE(site.Text("bert.gpsbook") == bytes);
    EXPECT_EQ(site.As("bert", {"cloud", "status", "bert.gpsbook"}).exitCode, 0);
}

TEST(CloudResolve, KeptItemStaysAwayWithMine) {
    const Deleted site;
    ASSERT_EQ(site.As("bert", {"cloud", "resolve", "bert.gpsbook", "1", "--mine"}).exitCode, 0);
    EXPECT_EQ(site.PointsOfBert("Quay"), "P1 P2 P4");
    EXPECT_EQ(site.Status("bert")["conflicts"], json::array());
}

TEST(CloudResolve, AllTakesThoseThatTheDecisionFits) {
    const Deleted site;
    const Outcome none = site.As("bert", {"cloud", "resolve", "bert.gpsbook", "--all", "--theirs"});
    EXPECT_EQ(none.exitCode, 0) << none;
    EXPECT_EQ(none.out, "bert.gpsbook: 0 conflicts settled, 1 left\n");
    const Outcome one = site.As("bert", {"cloud", "resolve", "bert.gpsbook", "--all", "--add-again"});
    EXPECT_EQ(one.exitCode, 0) << one;
    EXPECT_EQ(site.Status("bert")["conflicts"], json::array());
}

TEST(CloudResolve, TheirPlaneSystemComputesThePositionsAndSettlesTheirConflicts) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay", "crs=EPSG:32632"}).exitCode, 0);
    ASSERT_EQ(site.As("bert", {"set", "bert.gpsbook", "Quay", "crs=EPSG:32634"}).exitCode, 0);
    site.Sync("anna");
    const std::vector<std::string> annas = site.Table("anna");
    const json conflicts = site.Sync("bert", 3)["conflicts"];
    int number = 0;
    for (const json& conflict : conflicts)
        if (conflict["field"] == "conversion") number = conflict["number"];
    const json done = JsonOf(
        site.As("bert", {"cloud", "resolve", "bert.gpsbook", std::to_string(number), "--theirs", "--json"}));
    EXPECT_EQ(done["settled"].size(), 1U);
    EXPECT_EQ(done["computed"], conflicts.size() - 1);
    EXPECT_EQ(done["left"], 0);
    EXPECT_EQ(site.Run({"check", "bert.gpsbook"}).out.find("[plane]"), std::string::npos);
    EXPECT_EQ(site.Table("bert"), annas);
    site.Sync("bert");
    site.Sync("anna");
    site.ExpectSame();
}

TEST(CloudResolve, AllTheirsDecidesPositionsBehindWhatTheyComeFrom) {
    const SharedSite site;
    site.Share();
    ASSERT_EQ(site.As("anna", {"set", "site.gpsbook", "Quay/P1", "antenna=1.5"}).exitCode, 0);
    ASSERT_EQ(site.As("bert", {"set", "bert.gpsbook", "Quay/P1", "antenna=1.7", "h=70"}).exitCode, 0);
    site.Sync("anna");
    EXPECT_EQ(site.Sync("bert", 3)["conflicts"].size(), 2U) << "position and antenna";
    const Outcome all = site.As("bert", {"cloud", "resolve", "bert.gpsbook", "--all", "--theirs"});
    EXPECT_EQ(all.exitCode, 0) << all;
    EXPECT_NE(all.out.find("1 conflict about positions: they are computed anew\n"), std::string::npos) << all;
    EXPECT_NE(all.out.find("bert.gpsbook: 1 conflict settled, 0 left\n"), std::string::npos) << all;
    EXPECT_EQ(site.FieldOf("bert", "Quay/P1", "height"), 68.5);
}

TEST(CloudResolve, DecisionThatDoesNotFitChangesNothing) {
    const Disputed site;
    const std::string bytes = site.Text("bert.gpsbook");
    struct Row {
        std::vector<std::string> words;
        int exitCode;
        const char* told;
    };
    const Row rows[] = {
        {{"1"}, 2, "give one of --mine, --theirs and --add-again"},
        {{"1", "--mine", "--theirs"}, 2, "give one of"},
        {{"--mine"}, 2, "give the numbers of conflicts, or --all"},
        {{"1", "--all", "--mine"}, 2, "give the numbers of conflicts, or --all"},
        {{"one", "--mine"}, 2, "is no number of a conflict"},
        {{"0", "--mine"}, 2, "is no number of a conflict"},
        {{"1x", "--mine"}, 2, "is no number of a conflict"},
        {{"1", "--mine", "--group", "Quay"}, 2, "--group: belongs to --add-again"},
        {{"2", "--mine"}, 5, "there is no conflict 2"},
        {{"1", "--add-again"}, 1, "conflict 1"},
        {{"1", "7", "--mine"}, 5, "there is no conflict 7"},
        {{"1", "--add-again", "--group", "None"}, 5, "None"},
    };
    for (const Row& row : rows) {
        std::vector<std::string> words{"cloud", "resolve", "bert.gpsbook"};
        words.insert(words.end(), row.words.begin(), row.words.end());
        const Outcome outcome = site.As("bert", words);
        EXPECT_EQ(outcome.exitCode, row.exitCode) << row.told << '\n' << outcome;
        EXPECT_NE(outcome.err.find(row.told), std::string::npos) << row.told << '\n' << outcome;
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(site.Text("bert.gpsbook") == bytes) << row.told;
    }
    site.ExpectRefused({"cloud", "status"}, 2, "BOOK");
    site.ExpectRefused({"cloud"}, 2, "subcommand");
}

}  // namespace
}  // namespace gpsbook::test
