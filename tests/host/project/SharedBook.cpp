#include "tests/host/project/SharedBook.h"

#include "platform/base/ofpstream.h"
#include "platform/entity/CCloudTable.h"
#include "tests/host/cloud/Records.h"

namespace test {

using gpsproject::Edit;

namespace {

void Announce(CCloudItem* item) {
    if (CCloudTable* table = item->GetTable()) table->ItemDeletedLocally(item);
}

std::vector<vex::String> Fields(const std::string& joined) {
    std::vector<vex::String> fields;
    for (std::size_t at = 0, end = 0; end != std::string::npos; at = end + 1) {
        end = joined.find(';', at);
        fields.emplace_back(joined.substr(at, end == std::string::npos ? end : end - at));
    }
    return fields;
}

void AddItems(std::string& text, const CCloudTable& table) {
    text += "added:";
    for (const CCloudItem* item : table.GetAdded()) text += " " + std::to_string(item->GetTicket());
    text += "\nchanged:";
    std::map<long long, std::uint32_t> changed;  // the set is in no order that means anything
    for (const CCloudItem* item : table.GetChanged()) changed[item->GetCloudId()] = item->GetCloudFlag();
    for (const auto& [id, mask] : changed) text += " " + std::to_string(id) + "/" + std::to_string(mask);
    text += "\ndeleted:";
    for (const long long id : table.GetDeleted()) text += " " + std::to_string(id);
    text += "\nby id:";
    std::map<long long, bool> known;
    for (const auto& [id, item] : table.GetById()) known[id] = item != nullptr;
    for (const auto& [id, here] : known) text += " " + std::to_string(id) + (here ? "" : "-");
    text += "\nsent: " + std::to_string(table.GetSentAdded()) + " " + std::to_string(table.GetSentChanged()) +
            " " + std::to_string(table.GetSentDeleted()) + "\n";
}

std::string StateAndTablesOf(Project& project) {
    ofpstream state(Project::kNewestVersion);
    WriteCloudState(state, project.GetCloud().GetState());
    std::string text{state.GetBytes()};
    AddItems(text, project.GetCloud().GetTables().base);
    AddItems(text, project.GetCloud().GetTables().points);
    return text;
}

}  // namespace

void FillSmall(Project& project) {
    CLibGps& book = project.GetBook();
    for (const char* name : {"A", "B"}) book.AddGrp(false)->SetNomeGrp(name);
    book.AddPun(0, false)->SetNome("A1");
    book.AddPun(0, false)->SetNome("A2");
    book.AddPun(1, false)->SetNome("B1");
}

SharedDisk::SharedDisk(short version) : JournalDisk(0, "/d/unused") {
    Project project(version, *this);
    FillSmall(project);
    project.SaveAs(kBook, false);
    project.GetCloud().Link(kLink);
    project.Save();
    Unlink("/d/unused");
    Unlink(std::string(kBook) + ".bak");
    SyncAll();
}

void AddGroup(Project& project, const char* name) {
    Edit edit(project.GetEdits());
    project.GetBook().AddGrp(false)->SetNomeGrp(name);
    project.GetEdits().GroupInserted(project.GetBook().GetGrpArSize() - 1);
    edit.Done();
}

void AddPoint(Project& project, int g, const char* name) {
    Edit edit(project.GetEdits());
    project.GetBook().AddPun(g, false)->SetNome(name);
    project.GetEdits().PointInserted(g, project.GetBook().GetPunArSize(g) - 1);
    edit.Done();
}

void RenamePoint(Project& project, int g, int p, const char* name) {
    Edit edit(project.GetEdits());
    project.GetBook().GetPunAt(g, p)->SetNome(name);
    project.GetEdits().PointChanged(g, p);
    edit.Done();
}

void DeletePoint(Project& project, int g, int p) {
    Edit edit(project.GetEdits());
    Announce(CPunGps::CloudItemOf(project.GetBook().GetPunAt(g, p)));
    project.GetEdits().DeletingPoint(g, p);
    project.GetBook().DelPunAt(g, p);
    edit.Done();
}

void DeleteGroup(Project& project, int g) {
    Edit edit(project.GetEdits());
    CLibGps& book = project.GetBook();
    for (int p = 0; p < book.GetPunArSize(g); ++p) Announce(CPunGps::CloudItemOf(book.GetPunAt(g, p)));
    Announce(CGrpGps::CloudItemOf(book.GetGrpAt(g)));
    project.GetEdits().DeletingGroup(g);
    book.DelGrpAt(g);
    edit.Done();
}

CommitAnswer AcceptAll(Project& project, std::int64_t revision, std::int64_t firstId) {
    CommitAnswer answer;
    answer.commit = project.GetCloud().GetCommit()->id;
    answer.revision = revision;
    if (revision > 0) answer.head = answer.commit;
    const auto& tables = project.GetCloud().GetTables();
    const auto added = tables.base.GetSentAdded() + tables.points.GetSentAdded();
    for (std::size_t i = 0; i < added; ++i) answer.ids.push_back(firstId++);
    return answer;
}

void Settle(Project& project) {
    EXPECT_TRUE(project.GetCloud().BeginCommit(kCommit1));
    EXPECT_TRUE(project.GetCloud().TakeAnswer(AcceptAll(project, 1, 1), 1));
}

CloudReply GroupReply(std::int64_t id, const std::string& name) {
    return {CloudKind::group, false, 2,
            Fields(std::to_string(id) + ";2;" + GroupFields(name) + ";" + Conversion())};
}

CloudReply PointReply(std::int64_t id, std::int64_t group, const std::string& name) {
    return {CloudKind::point, false, 2,
            Fields(std::to_string(id) + ";" + std::to_string(group) + ";" + PointFields(name))};
}

CloudReply DeletionOf(CloudKind kind, std::int64_t id) {
    return {kind, true, 2, Fields("DEL;" + std::to_string(id))};
}

PullPage PageOf(std::int64_t upTo, std::vector<CloudReply> replies, const std::string& head) {
    for (CloudReply& reply : replies)
        if (reply.revision == 0) reply.revision = upTo;
    return {upTo, head, true, "", std::move(replies), {{upTo, "Bruno"}}};
}

std::string CloudBytesOf(Project& project) {
    ofpstream out(Project::kNewestVersion);
    project.GetCloud().SalvaInFile(out);
    return std::string(out.GetBytes());
}

std::string EverythingOf(Project& project) { return ContentOf(project) + StateAndTablesOf(project); }

std::string OutlineOf(Project& project) {
    std::string text = NamesIn(project) + "\n";
    CLibGps& book = project.GetBook();
    const auto add = [&text](const CCloudItem& item) {
        text += " " + std::to_string(item.GetCloudId()) + "/" + std::to_string(item.GetCloudFlag());
    };
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        add(*CGrpGps::CloudItemOf(book.GetGrpAt(g)));
        for (int p = 0; p < book.GetPunArSize(g); ++p) add(*CPunGps::CloudItemOf(book.GetPunAt(g, p)));
    }
    return text + StateAndTablesOf(project);
}

std::string NamesIn(Project& project) {
    std::string text;
    CLibGps& book = project.GetBook();
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        text += (g > 0 ? " " : "") + book.GetGrpAt(g)->GetNomeGrp() + "(";
        for (int p = 0; p < book.GetPunArSize(g); ++p)
            text += (p > 0 ? " " : "") + book.GetPunAt(g, p)->GetNome();
        text += ")";
    }
    return text;
}

long long IdOfGroup(Project& project, int g) { return project.GetBook().GetGrpAt(g)->GetCloudId(); }
long long IdOfPoint(Project& project, int g, int p) { return project.GetBook().GetPunAt(g, p)->GetCloudId(); }

}  // namespace test
