#include "host/project/BookCloud.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "gps/cloud/FieldLayout.h"
#include "gps/cloud/TableSteps.h"
#include "gps/model/CLibGps.h"
#include "host/project/BookEdits.h"
#include "host/project/CloudItems.h"
#include "host/project/EditCodes.h"
#include "host/project/HeldBack.h"
#include "host/project/KeptItem.h"
#include "host/project/ProjectError.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

namespace gpsproject {

namespace {

constexpr std::string_view kLineEnd = "\r\n";

/// One record of a commit, as far as it has to be known again when it is answered.
struct SentRecord {
    std::string_view tag, second, third;
    std::string_view name;  // of a new item, as people call it
};

// Texts with separators are never sent: fields are what stands between the separators.
template <class Visit>
void ForEachRecord(std::string_view records, Visit visit) {
    std::int64_t number = 0;
    while (!records.empty()) {
        const auto end = records.find(kLineEnd);
        std::string_view line = records.substr(0, end);
        records = end == std::string_view::npos ? std::string_view{} : records.substr(end + kLineEnd.size());
        const auto next = [&line] {
            const auto at = line.find(';');
            const std::string_view field = line.substr(0, at);
            line = at == std::string_view::npos ? std::string_view{} : line.substr(at + 1);
            return field;
        };
        SentRecord record;
        record.tag = next();
        record.second = next();
        record.third = next();
        record.name = record.third;
        if (record.tag == "IBAS") {
            for (int i = 3; i < kGroupNameField - 1; ++i) next();
            record.name = GroupName(next(), record.second);
        }
        visit(++number, record);
    }
}

std::int64_t IdOf(std::string_view digits) {
    std::int64_t id = 0;
    for (const char c : digits) id = id * 10 + (c - '0');  // written by the tables
    return id;
}

std::string Joined(const std::vector<vex::String>& fields, const FieldGroup& group) {
    std::string text;
    for (int i = group.first; i < group.first + group.count; ++i) {
        if (i > group.first) text += ';';
        text += fields[static_cast<std::size_t>(i)].View();
    }
    return text;
}

std::string AuthorOf(const PullPage& page, const CloudReply& reply) {
    const auto found = page.authors.find(reply.revision);
    const bool named = found != page.authors.end() && !found->second.empty();
    return named ? found->second : "device " + std::to_string(reply.device);
}

/// Of the item that a reply is about, which has all its fields.
std::string NameIn(const CloudReply& reply) {
    const std::string_view name = reply.fields[2].View();
    if (reply.kind == CloudKind::point) return std::string(name);
    return std::string(GroupName(reply.fields[kGroupNameField].View(), name));
}

/// 0: the text is no id.
std::int64_t IdIn(std::string_view text) {
    if (text.empty() || text.size() > 18 ||
        !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return 0;
    return IdOf(text);
}

/// The id that a reply is about; 0: it has none.
std::int64_t IdOf(const CloudReply& reply) {
    const std::size_t at = reply.deleted ? 1 : 0;
    const std::size_t fields = reply.deleted                    ? DEL_REPLY_FIELDS
                               : reply.kind == CloudKind::group ? GRP_REPLY_FIELDS
                                                                : PUN_REPLY_FIELDS;
    if (reply.fields.size() != fields) return 0;
    return IdIn(reply.fields[at].View());
}

/// Kept points of groups that were added again, each with its group, which had no id when that was noted.
std::vector<std::pair<CloudConflict*, const CGrpGps*>> GroupsAddedAgain(std::vector<CloudConflict>& conflicts,
                                                                        const CLibGps& book) {
    std::map<std::int64_t, const CGrpGps*> groups;
    for (const CloudConflict& conflict : conflicts)
        if (conflict.groupId < 0) groups.emplace(-conflict.groupId, nullptr);
    for (int g = 0; g < book.GetGrpArSize() && !groups.empty(); ++g) {
        const CGrpGps* const group = book.GetGrpAt(g);
        const auto found = groups.find(group->GetTicket());
        // Among those with ids a ticket may be there twice.
        if (found != groups.end() && (!found->second || group->GetCloudId() < 1)) found->second = group;
    }
    std::vector<std::pair<CloudConflict*, const CGrpGps*>> pairs;
    for (CloudConflict& conflict : conflicts)
        if (const auto found = groups.find(-conflict.groupId); found != groups.end() && found->second)
            pairs.emplace_back(&conflict, found->second);
    return pairs;
}

/// With the names that the item has in the book now.
BookCloud::TakenItem TakenOf(const CLibGps& book, BookCloud::TakenItem::What what, const CloudReply& reply,
                             CCloudItem& item, std::int64_t id, const std::string& author) {
    BookCloud::TakenItem taken{what, reply.kind, id, {}, {}, 0, reply.device, author};
    if (reply.kind == CloudKind::group) {
        taken.name = GroupName(static_cast<CGrpGps&>(item));
    } else {
        CPunGps& point = static_cast<CPunGps&>(item);
        int g = -1, p = -1;
        taken.name = point.GetNome();
        if (book.GetIndiciDiPun(&point, g, p)) taken.group = GroupName(*book.GetGrpAt(g));
    }
    return taken;
}

/// Texts that no record carries: they are nowhere but here.
bool HasOwnTexts(const CEgn& entity) {
    const std::string& photos = entity.GetNomiFoto_Raw();
    return !entity.GetNote().empty() || !entity.GetTerScri().empty() || !entity.GetAttribDis().empty() ||
           (!photos.empty() && photos != "******");
}

/// In a kept conflict the value of this side says why: see CloudConflict.
std::string WhyKept(bool unconfirmed, bool unseen) {
    if (!unseen) return {};
    return unconfirmed ? "unseen, unsent" : "unseen";
}

bool IsUnconfirmed(const CPunGps& point) { return point.GetCloudFlag() != 0 || HasOwnTexts(point); }

}  // namespace

BookCloud::BookCloud(CloudTables& tables, CLibGps& book, BookEdits& edits)
    : tables_(tables), book_(book), edits_(edits) {
    tables_.base.SetOwner(&book_);
    tables_.points.SetOwner(&book_);
}

void BookCloud::Link(const CloudLink& link) {
    // A damaged file may have left something in them.
    tables_.base = CGpsBaseCloudTable();
    tables_.points = CGpsPntCloudTable(&tables_.base);
    tables_.base.SetOwner(&book_);
    tables_.points.SetOwner(&book_);
    for (int g = 0; g < book_.GetGrpArSize(); ++g) {
        book_.GetGrpAt(g)->SetCloudId(0);
        tables_.base.Adopt(*book_.GetGrpAt(g));
        for (int p = 0; p < book_.GetPunArSize(g); ++p) {
            book_.GetPunAt(g, p)->SetCloudId(0);
            tables_.points.Adopt(*book_.GetPunAt(g, p));
        }
    }
    tables_.Link();
    derived_.Clear();
    state_ = {};
    state_.link = link;
    conflicts_.Forget();
}

void BookCloud::SetLink(const CloudLink& link) { state_.link = link; }

bool BookCloud::HasToSend() {
    const auto waits = [](const CCloudTable& table) {
        return !table.GetAdded().empty() || !table.GetChanged().empty() || !table.GetDeleted().empty();
    };
    return state_.commit || waits(tables_.base) || waits(tables_.points);
}

// --- a commit and its answer -----------------------------------------------------------------------------

bool BookCloud::BeginCommit(const std::string& id) {
    if (!IsLinked() || state_.commit || !HasToSend()) return false;
    // What a damaged journal, or want of memory, may have left in the tables is not what this one sends.
    tables_.base.EndCommit();
    tables_.points.EndCommit();
    CloudCommit commit{id, state_.revision, state_.head, state_.own, {}, state_.known};
    {
        const Holding holding(tables_, FindHeld(book_, tables_));
        if (!HasToSend()) return false;
        vex::String records;
        tables_.project.GenerateCommit(records);
        commit.records = records.View();
        tables_.base.BeginCommit();
        tables_.points.BeginCommit();
    }
    try {
        Edit edit(edits_);
        edits_.NoteCloud(kCommitBegun, [&](ofpstream& out) {
            WriteCommit(out, commit);
            tables_.base.SalvaCommit(out);
            tables_.points.SalvaCommit(out);
        });
        edit.Done();
    } catch (...) {
        // What is not on the way to the disk is not sent: it waits as before.
        tables_.base.EndCommit();
        tables_.points.EndCommit();
        throw;
    }
    state_.commit = std::move(commit);
    return true;
}

bool BookCloud::TakeAnswer(const CommitAnswer& answer, int device) {
    if (!state_.commit || answer.commit != state_.commit->id) return false;
    if (answer.ids.size() != tables_.base.GetSentAdded() + tables_.points.GetSentAdded()) return false;
    Edit edit(edits_);
    edits_.NoteCloud(kCommitAnswered, [&](ofpstream& out) {
        out.WriteInt(device);
        WriteAnswer(out, answer);
    });
    Answered(answer, device);
    edit.Done();
    return true;
}

void BookCloud::Answered(const CommitAnswer& answer, int device) {
    std::vector<CloudRefusal> refusals;
    std::vector<long long> groups, points;  // changes that were taken
    auto refused = answer.refused.begin();
    ForEachRecord(state_.commit->records, [&](std::int64_t number, const SentRecord& record) {
        while (refused != answer.refused.end() && refused->number < number) ++refused;
        const bool taken = refused == answer.refused.end() || refused->number != number;
        const bool group =
            record.tag == "UBAS" || record.tag == "IBAS" || (record.tag == "DEL" && record.second == "3");
        const bool change = record.tag == "UBAS" || record.tag == "UPTGPS";
        if (taken && change) (group ? groups : points).push_back(IdOf(record.second));
        if (taken) return;
        CloudRefusal refusal{group ? CloudKind::group : CloudKind::point, 0, {}, refused->reason};
        if (change)
            refusal.id = IdOf(record.second);
        else if (record.tag == "DEL")
            refusal.id = IdOf(record.third);
        else
            refusal.name = record.name;
        // The next page may take it away, and the reason is read later.
        if (CCloudItem* const item = FindItem(tables_, refusal.kind, refusal.id))
            refusal.name = ItemName(book_, refusal.kind, item);
        refusals.push_back(std::move(refusal));
    });

    std::vector<CloudConflict> conflicts = state_.conflicts;
    int lastConflict = state_.lastConflict;
    ConflictList list(conflicts, lastConflict);
    for (const CloudClash& clash : answer.clashes) {
        CloudConflict conflict;
        conflict.kind = clash.bit == 0 ? CloudConflict::Kind::deletedHere : CloudConflict::Kind::field;
        conflict.clash = clash;
        list.Add(std::move(conflict));
    }
    list.Sweep();
    const auto addedAgain = GroupsAddedAgain(conflicts, book_);
    state_.own.reserve(state_.own.size() + 1);
    state_.head.reserve(answer.head.size());

    // Confirmed twice is confirmed once: when memory ends in between, the answer can be taken again.
    const auto firstPoint = answer.ids.begin() + static_cast<std::ptrdiff_t>(tables_.base.GetSentAdded());
    tables_.base.ConfirmAdded({answer.ids.begin(), firstPoint}, device);
    tables_.points.ConfirmAdded({firstPoint, answer.ids.end()}, device);
    tables_.base.ConfirmChanged(groups);
    tables_.points.ConfirmChanged(points);
    tables_.base.ConfirmDeleted();
    tables_.points.ConfirmDeleted();

    // Nothing fails from here on.
    tables_.base.EndCommit();
    tables_.points.EndCommit();
    for (const auto& [conflict, group] : addedAgain)
        if (group->GetCloudId() > 0) conflict->groupId = group->GetCloudId();
    state_.conflicts = std::move(conflicts);
    conflicts_.Forget();
    state_.lastConflict = lastConflict;
    state_.refusals = std::move(refusals);
    if (answer.revision > 0) {
        state_.own.push_back(answer.revision);
        Knows(answer.revision, answer.head);
    }
    state_.commit.reset();
}

// A store that has this head at this revision has all that was before it.
void BookCloud::Knows(std::int64_t revision, const std::string& head) {
    if (revision < state_.known) return;
    state_.head = head;
    state_.known = revision;
}

// --- what others did -------------------------------------------------------------------------------------

PullRequest BookCloud::GetPullRequest() const {
    if (state_.again < 0) return {state_.revision, state_.head, state_.own, 0, {}, state_.known};
    // What came in from a copy, or is lost here, may be what this book itself did or deleted since.
    return {std::min(state_.again, state_.revision), state_.head, {}, 0, {}, state_.known};
}

void BookCloud::PullAgainFrom(std::int64_t revision) {
    if (state_.again < 0 || revision < state_.again) state_.again = revision;
}

void BookCloud::PullAgainAfter(const CloudState& copy) {
    Knows(copy.known, copy.head);
    PullAgainFrom(copy.revision);
}

BookCloud::Taken BookCloud::TakePage(const PullPage& page) {
    Taken taken;
    const bool nothing = page.replies.empty() && page.last && page.upTo == state_.revision &&
                         page.head == state_.head && state_.own.empty() && state_.again < 0 &&
                         derived_.IsEmpty();
    if (nothing) return taken;
    std::size_t done = 0;
    try {
        Edit edit(edits_);
        edits_.NoteCloud(kPageTaken, [&](ofpstream& out) { WritePage(out, page); });
        Apply(page, taken, done);
        NoteComputed(taken);
        edit.Done();
        return taken;
    } catch (...) {
        // A page that does not fit would not fit at the next opening either. What came before stands in the
        // book, and later edits build on it.
        if (done > 0) {
            PullPage part = page;
            part.last = false;
            part.replies.resize(done);
            Edit edit(edits_);
            edits_.NoteCloud(kPageTaken, [&](ofpstream& out) { WritePage(out, part); });
            NoteComputed(taken);
            edit.Done();
        }
        throw;
    }
}

void BookCloud::Apply(const PullPage& page, Taken& taken, std::size_t& done) {
    const std::int64_t newest = std::max(page.newest, page.upTo);
    state_.head.reserve(page.head.size());
    const ConflictSweep sweep(conflicts_);
    for (const CloudReply& reply : page.replies) {
        const std::string author = AuthorOf(page, reply);
        if (reply.deleted)
            ApplyDeletion(reply, author, reply.revision, taken);
        else
            ApplyEdit(reply, author, reply.revision, taken);
        // Also of a page that ends here: later edits build on what it has brought.
        if (done++ == 0) Knows(newest, page.head);
        book_.SetModifiedFlag(true);
    }
    Knows(newest, page.head);
    if (page.last) {
        ComputePositions(taken);
        DropEqual();
        state_.revision = page.upTo;
        state_.again = -1;
        std::erase_if(state_.own, [&](std::int64_t revision) { return revision <= page.upTo; });
    }
    book_.SetModifiedFlag(true);
}

void BookCloud::ApplyEdit(const CloudReply& reply, const std::string& author, std::int64_t revision,
                          Taken& taken) {
    const std::int64_t id = IdOf(reply);
    CCloudTable& table = TableOf(reply.kind);
    CCloudItem* item = nullptr;
    const bool known = id > 0 && table.FindItem(id, item);
    // What was deleted here, and the server does not know it yet.
    const auto tellDeletedHere = [&] {
        CloudConflict conflict;
        conflict.kind = CloudConflict::Kind::deletedHere;
        conflict.clash.kind = reply.kind;
        conflict.clash.id = id;
        conflict.clash.name = NameIn(reply);
        conflict.clash.device = reply.device;
        conflict.clash.author = author;
        conflict.clash.revision = revision;
        if (!known) conflict.clash.theirs = "added";
        if (reply.kind == CloudKind::point) {
            conflict.groupId = IdIn(reply.fields[1].View());
            if (CCloudItem* const group = FindItem(tables_, CloudKind::group, conflict.groupId))
                conflict.group = GroupName(*static_cast<CGrpGps*>(group));
        }
        AddConflict(std::move(conflict));
        ++taken.conflicts;
    };
    if (item && item->GetCloudFlag() == 0 && IsAsHere(reply, *item)) return;
    std::set<int> overtaken = item ? Overtaken(reply, id, *item) : std::set<int>{};
    std::uint32_t bits = 0;
    if (item ? !TakeFields(reply, *item, bits) : id < 1 || !table.UpdateSuccessful_Edit(reply.fields)) {
        // A new point of a group that was deleted here: the deletion is still to be sent, and takes the
        // point.
        if (id > 0 && reply.kind == CloudKind::point) {
            CCloudItem* group = nullptr;
            if (tables_.base.FindItem(IdIn(reply.fields[1].View()), group) && !group)
                return tellDeletedHere();
        }
        RefuseReply(reply);
    }
    if (known && !item) return tellDeletedHere();
    ++(reply.kind == CloudKind::group ? taken.groups : taken.points);
    if (CCloudItem* now = nullptr; table.FindItem(id, now) && now) {
        using What = TakenItem::What;
        auto told = TakenOf(book_, item ? What::changed : What::added, reply, *now, id, author);
        told.fields = bits;
        if (!item || told.fields != 0) taken.items.push_back(std::move(told));
    }
    if (!item) return;
    conflicts_.Drop(overtaken);
    // Local values that wait have stayed: what the other one set is worth telling where it differs.
    vex::String mine;
    for (const FieldGroup& fields : FieldGroupsOf(reply.kind)) {
        if ((item->GetCloudFlag() & fields.bit) == 0) continue;
        FieldsOf(reply.kind, *item, fields.bit, mine);
        std::string theirs = Joined(reply.fields, fields);
        if (mine.View() == theirs) continue;
        CloudConflict conflict;
        conflict.clash = {
            reply.kind,        id,           NameIn(reply), fields.bit, std::string(mine.View()),
            std::move(theirs), reply.device, author,        revision};
        AddConflict(std::move(conflict));
        ++taken.conflicts;
    }
}

bool BookCloud::IsAsHere(const CloudReply& reply, CCloudItem& item) {
    vex::String here;
    constexpr std::uint32_t all = ~std::uint32_t{0};
    FieldsOf(reply.kind, item, all, here);
    std::string_view left = here.View();
    for (std::size_t i = 2; i < reply.fields.size(); ++i) {
        const std::string_view field = reply.fields[i].View();
        if (!left.starts_with(field)) return false;
        left.remove_prefix(field.size());
        const bool last = i + 1 == reply.fields.size();
        if (last ? !left.empty() : !left.starts_with(';')) return false;
        if (!last) left.remove_prefix(1);
    }
    return true;
}

// As UpdateSuccessful_Edit does it with an item that is here. But what this book would send itself is there
// already, and more exactly: a reply holds covariances up to 1 and types of 0 or 1. `bits`: what has become
// another value.
bool BookCloud::TakeFields(const CloudReply& reply, CCloudItem& item, std::uint32_t& bits) {
    if (IdIn(reply.fields[1].View()) < 1) return false;
    std::vector<std::pair<const FieldGroup*, std::string>> others;
    vex::String here;
    for (const FieldGroup& fields : FieldGroupsOf(reply.kind)) {
        if (item.GetCloudFlag() & fields.bit) continue;
        FieldsOf(reply.kind, item, fields.bit, here);
        if (here.View() == Joined(reply.fields, fields)) continue;
        others.emplace_back(&fields, here.View());
        bits |= fields.bit;
    }
    LookAtPositions(reply, item, bits);
    {
        const ReportsOff off(item);
        for (const auto& [fields, before] : others) {
            const vex::String* const first = &reply.fields[static_cast<std::size_t>(fields->first)];
            if (reply.kind == CloudKind::group)
                tables_.base.SetFields(static_cast<CGrpGps&>(item), fields->bit, first);
            else
                tables_.points.SetFields(static_cast<CPunGps&>(item), fields->bit, first);
            FieldsOf(reply.kind, item, fields->bit, here);
            if (here.View() == before) bits &= ~fields->bit;  // only written in another way
        }
    }
    NotifyReply(&book_);
    return true;
}

void BookCloud::LookAtPositions(const CloudReply& reply, CCloudItem& item, std::uint32_t bits) {
    int g = -1, p = -1;
    if (reply.kind == CloudKind::point) {
        if (bits & kPointFix && book_.GetIndiciDiPun(static_cast<CPunGps*>(&item), g, p))
            derived_.LookAtPoint(g, p);
        return;
    }
    if (!(bits & (kBaseFix | kConversion)) || !book_.GetIndiciDiGrp(static_cast<CGrpGps*>(&item), g)) return;
    if (!(bits & kConversion)) return derived_.LookAtPoint(g, p);
    derived_.LookAtGroup(g);
    if (!(bits & CHG_GRP_CONVCOORD)) return;
    vex::String here;
    FieldsOf(reply.kind, item, CHG_GRP_CONVCOORD, here);
    if (IsOtherMap(here.View(), Joined(reply.fields, GRP_FIELDS.back()))) derived_.LookAtAll();
}

void BookCloud::ComputePositions(Taken& taken) {
    taken.computed = derived_.Recompute();
    if (taken.computed.empty()) return;
    const std::vector<int> moot = FindConflictsOfPositions(taken.computed);
    std::set<int> settled(moot.begin(), moot.end());
    conflicts_.Drop(settled);
    NotifyReply(&book_);
}

// Replay computes them too, but another program may do it a little differently.
void BookCloud::NoteComputed(const Taken& taken) {
    for (const auto& [g, p] : taken.computed) p < 0 ? edits_.GroupChanged(g) : edits_.PointChanged(g, p);
}

void BookCloud::RefuseReply(const CloudReply& reply) const {
    const char* what = reply.deleted ? "deletion" : reply.kind == CloudKind::group ? "group" : "point";
    throw ProjectError(ProjectError::Kind::damaged, book_.GetNomeFile() + ": the server sent a " + what +
                                                        " (id " + std::to_string(IdOf(reply)) +
                                                        ") that does not fit the book; nothing behind it was "
                                                        "taken over");
}

bool BookCloud::HasUnconfirmed(int g) const {
    const CGrpGps& group = *book_.GetGrpAt(g);
    if (group.GetCloudFlag() != 0 || HasOwnTexts(group)) return true;
    if (!group.GetOper().empty() || !group.GetStrum().empty() || !group.GetData().empty() ||
        !group.GetLocalita().empty())
        return true;
    for (int p = 0; p < book_.GetPunArSize(g); ++p) {
        const CPunGps& point = *book_.GetPunAt(g, p);
        if (point.GetCloudId() < 1 || IsUnconfirmed(point)) return true;
    }
    return false;
}

void BookCloud::ApplyDeletion(const CloudReply& reply, const std::string& author, std::int64_t revision,
                              Taken& taken) {
    const std::int64_t id = IdOf(reply);
    CCloudTable& table = TableOf(reply.kind);
    CCloudItem* item = nullptr;
    if (id < 1) RefuseReply(reply);
    if (!table.FindItem(id, item)) return;  // it went with its group, or was never here
    if (item) {
        CloudConflict conflict;
        conflict.kind = CloudConflict::Kind::kept;
        conflict.clash.kind = reply.kind;
        conflict.clash.id = id;
        conflict.clash.device = reply.device;
        conflict.clash.author = author;
        conflict.clash.revision = revision;
        int g = -1, p = -1;
        // The tables hold nothing but the book's groups and points.
        if (reply.kind == CloudKind::group) {
            CGrpGps* group = static_cast<CGrpGps*>(item);
            if (book_.GetIndiciDiGrp(group, g) && (HasUnconfirmed(g) || reply.unseen)) {
                conflict.clash.mine = WhyKept(HasUnconfirmed(g), reply.unseen);
                conflict.clash.name = conflict.group = GroupName(*group);
                conflict.groupId = id;
                conflict.keptPoints = book_.GetPunArSize(g);
                conflict.record = KeepGroup(book_, g);
            }
        } else {
            CPunGps* point = static_cast<CPunGps*>(item);
            if ((IsUnconfirmed(*point) || reply.unseen) && book_.GetIndiciDiPun(point, g, p)) {
                conflict.clash.mine = WhyKept(IsUnconfirmed(*point), reply.unseen);
                conflict.clash.name = point->GetNome();
                conflict.group = GroupName(*book_.GetGrpAt(g));
                conflict.groupId = book_.GetGrpAt(g)->GetCloudId();
                conflict.keptPoints = 1;
                conflict.record = KeepPoint(book_, g, p);
            }
        }
        if (!conflict.record.empty()) {
            AddConflict(std::move(conflict));
            ++taken.conflicts;
        }
        // Points leave the host's sets before they go.
        if (reply.kind == CloudKind::group && g >= 0) book_.GetGrpAt(g)->AzzeraPunSet();
    }
    std::vector<TakenItem> told;
    if (item) told.push_back(TakenOf(book_, TakenItem::What::deleted, reply, *item, id, author));
    if (!table.UpdateSuccessful_Del(reply.fields)) return;
    ++taken.deleted;
    taken.items.insert(taken.items.end(), told.begin(), told.end());
}

// --- conflicts -------------------------------------------------------------------------------------------

void BookCloud::AddConflict(CloudConflict conflict) { conflicts_.Add(std::move(conflict)); }

const CloudConflict* BookCloud::FindConflict(int number) const { return conflicts_.Find(number); }

std::optional<std::string> BookCloud::ValueHere(const CloudConflict& conflict) {
    const CloudClash& clash = conflict.clash;
    CCloudItem* const item = FindItem(tables_, clash.kind, clash.id);
    if (conflict.kind != CloudConflict::Kind::field || !item) return std::nullopt;
    vex::String here;
    FieldsOf(clash.kind, *item, clash.bit, here);
    return std::string(here.View());
}

// What the conflict is about has been decided elsewhere when the reply brings another value into the book,
// or the one that waits here.
std::set<int> BookCloud::Overtaken(const CloudReply& reply, std::int64_t id, CCloudItem& item) {
    std::set<int> overtaken;
    for (const int number : conflicts_.About(reply.kind, id)) {
        const CloudConflict& conflict = *conflicts_.Find(number);
        const FieldGroup* const fields = FieldGroupOf(reply.kind, conflict.clash.bit);
        if (conflict.kind != CloudConflict::Kind::field || !fields) continue;
        if (fields->first + fields->count > static_cast<int>(reply.fields.size())) continue;
        const bool waits = (item.GetCloudFlag() & fields->bit) != 0;
        const bool same = ValueHere(conflict) == Joined(reply.fields, *fields);
        if (waits == same) overtaken.insert(number);
    }
    return overtaken;
}

std::vector<int> BookCloud::FindConflictsOfPositions(const std::vector<DerivedPositions::Place>& places) {
    std::vector<int> numbers;
    for (const auto& [g, p] : places) {
        const bool group = p < 0;
        const std::int64_t id = group ? book_.GetGrpAt(g)->GetCloudId() : book_.GetPunAt(g, p)->GetCloudId();
        for (const int number : conflicts_.About(group ? CloudKind::group : CloudKind::point, id)) {
            const CloudConflict& one = *conflicts_.Find(number);
            if (one.kind == CloudConflict::Kind::field && one.clash.bit == CHG_COORD)
                numbers.push_back(number);
        }
    }
    return numbers;
}

void BookCloud::DropEqual() {
    std::set<int> equal;
    for (const CloudConflict& conflict : state_.conflicts)
        if (ValueHere(conflict) == conflict.clash.theirs) equal.insert(conflict.number);
    conflicts_.Drop(equal);
}

bool BookCloud::DropConflict(int number, std::int64_t ticket) {
    const CloudConflict* const conflict = FindConflict(number);
    if (!conflict) return false;
    const std::int64_t id = conflict->clash.id;
    std::set<int> dropped{number};
    Edit edit(edits_);
    edits_.NoteCloud(kConflictDropped, [&](ofpstream& out) {
        out.WriteInt(number);
        if (ticket > 0) out.WriteInt64(ticket);
    });
    edit.Done();
    Dropped(dropped, id, ticket);
    return true;
}

void BookCloud::Dropped(std::set<int>& number, std::int64_t group, std::int64_t ticket) {
    if (ticket > 0) conflicts_.GroupAddedAgain(group, ticket);
    conflicts_.Drop(number);
    if (settling_ == 0) conflicts_.Sweep();
}

// --- file and journal ------------------------------------------------------------------------------------

void BookCloud::SalvaInFile(ofpstream& out) const {
    WriteCloudState(out, state_);
    tables_.base.SalvaStato(out);
    tables_.points.SalvaStato(out);
    if (!derived_.IsEmpty()) derived_.SalvaInFile(out);
}

void BookCloud::LeggeDaFile(ifpstream& in) {
    ReadCloudState(in, state_);
    // So are they written; a damaged file may hold anything.
    std::ranges::stable_sort(state_.conflicts, {}, &CloudConflict::number);
    if (!state_.conflicts.empty())
        state_.lastConflict = std::max(state_.lastConflict, state_.conflicts.back().number);
    conflicts_.Forget();
    tables_.base.LeggeStato(in);
    tables_.points.LeggeStato(in);
    if (in.GetRemaining() > 0) derived_.LeggeDaFile(in);
}

void BookCloud::GoOnAsRead() { tables_.Link(); }

void BookCloud::ItemsWereLost() {
    if (!IsLinked()) return;
    PullAgainFrom(0);
    state_.commit.reset();
    tables_.base.EndCommit();
    tables_.points.EndCommit();
}

std::string BookCloud::Replay(int code, ifpstream& in) {
    if (!IsLinked()) return "it belongs to a shared project, and the book does not";
    switch (code) {
        case kCommitBegun:
            if (state_.commit) return "a commit begins, and the one before is not answered";
            {
                CloudCommit commit = ReadCommit(in);
                tables_.base.LeggeCommit(in);
                tables_.points.LeggeCommit(in);
                state_.commit = std::move(commit);
            }
            return "";
        case kCommitAnswered: {
            const int device = in.ReadInt();
            const CommitAnswer answer = ReadAnswer(in);
            if (!state_.commit || answer.commit != state_.commit->id ||
                answer.ids.size() != tables_.base.GetSentAdded() + tables_.points.GetSentAdded())
                return "a commit is answered that is not under way";
            Answered(answer, device);
            return "";
        }
        case kPageTaken:
            try {
                Taken taken;
                std::size_t done = 0;
                Apply(ReadPage(in), taken, done);
            } catch (const ProjectError& e) {
                return e.what();
            }
            return "";
        default: {
            const int number = in.ReadInt();  // kConflictDropped
            const std::int64_t ticket = in.GetRemaining() > 0 ? in.ReadInt64() : 0;
            const CloudConflict* const conflict = FindConflict(number);
            if (!conflict) return "";
            std::set<int> dropped{number};
            Dropped(dropped, conflict->clash.id, ticket);
            return "";
        }
    }
}

CCloudTable& BookCloud::TableOf(CloudKind kind) {
    if (kind == CloudKind::group) return tables_.base;
    return tables_.points;
}

void BookCloud::FieldsOf(CloudKind kind, CCloudItem& item, std::uint32_t bit, vex::String& text) {
    if (kind == CloudKind::group)
        tables_.base.GetFields(static_cast<CGrpGps&>(item), bit, text);
    else
        tables_.points.GetFields(static_cast<CPunGps&>(item), bit, text);
}

}  // namespace gpsproject
