#include "host/project/CloudState.h"

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

namespace gpsproject {

namespace {

template <class List, class Write>
void WriteList(ofpstream& out, const List& list, Write write) {
    out.WriteInt64(static_cast<std::int64_t>(list.size()));
    for (const auto& one : list) write(one);
}

// A count may be anything in a damaged stream: reading ends with the stream.
template <class List, class Read>
void ReadList(ifpstream& in, List& list, Read read) {
    const std::int64_t count = in.ReadInt64();
    for (std::int64_t i = 0; i < count && in.IsOk(); ++i) {
        auto one = read();
        if (in.IsOk()) list.push_back(std::move(one));
    }
}

CloudKind ReadKind(ifpstream& in) {
    return in.ReadUChar() == static_cast<unsigned char>(CloudKind::group) ? CloudKind::group
                                                                          : CloudKind::point;
}

void WriteClash(ofpstream& out, const CloudClash& clash) {
    out.WriteUChar(static_cast<unsigned char>(clash.kind));
    out.WriteInt64(clash.id);
    out.WriteString(clash.name);
    out.WriteUInt(clash.bit);
    out.WriteString(clash.mine);
    out.WriteString(clash.theirs);
    out.WriteInt(clash.device);
    out.WriteString(clash.author);
    out.WriteInt64(clash.revision);
}

CloudClash ReadClash(ifpstream& in) {
    CloudClash clash;
    clash.kind = ReadKind(in);
    clash.id = in.ReadInt64();
    clash.name = in.ReadString();
    clash.bit = in.ReadUInt();
    clash.mine = in.ReadString();
    clash.theirs = in.ReadString();
    clash.device = in.ReadInt();
    clash.author = in.ReadString();
    clash.revision = in.ReadInt64();
    return clash;
}

void WriteConflict(ofpstream& out, const CloudConflict& conflict) {
    out.WriteInt(conflict.number);
    out.WriteUChar(static_cast<unsigned char>(conflict.kind));
    WriteClash(out, conflict.clash);
    out.WriteString(conflict.group);
    out.WriteInt64(conflict.groupId);
    out.WriteString(conflict.record);
    out.WriteInt(conflict.keptPoints);
}

CloudConflict ReadConflict(ifpstream& in) {
    CloudConflict conflict;
    conflict.number = in.ReadInt();
    const unsigned char kind = in.ReadUChar();
    conflict.kind = kind == 2   ? CloudConflict::Kind::kept
                    : kind == 1 ? CloudConflict::Kind::deletedHere
                                : CloudConflict::Kind::field;
    conflict.clash = ReadClash(in);
    conflict.group = in.ReadString();
    conflict.groupId = in.ReadInt64();
    conflict.record = in.ReadString();
    conflict.keptPoints = in.ReadInt();
    return conflict;
}

}  // namespace

void WriteCommit(ofpstream& out, const CloudCommit& commit) {
    out.WriteString(commit.id);
    out.WriteInt64(commit.revision);
    out.WriteInt64(commit.known);
    out.WriteString(commit.head);
    WriteList(out, commit.own, [&](std::int64_t revision) { out.WriteInt64(revision); });
    out.WriteString(commit.records);
}

CloudCommit ReadCommit(ifpstream& in) {
    CloudCommit commit;
    commit.id = in.ReadString();
    commit.revision = in.ReadInt64();
    commit.known = in.ReadInt64();
    commit.head = in.ReadString();
    ReadList(in, commit.own, [&] { return in.ReadInt64(); });
    commit.records = in.ReadString();
    return commit;
}

void WriteAnswer(ofpstream& out, const CommitAnswer& answer) {
    out.WriteString(answer.commit);
    out.WriteInt64(answer.revision);
    WriteList(out, answer.ids, [&](std::int64_t id) { out.WriteInt64(id); });
    WriteList(out, answer.refused, [&](const RefusedRecord& refused) {
        out.WriteInt64(refused.number);
        out.WriteString(refused.reason);
    });
    WriteList(out, answer.clashes, [&](const CloudClash& clash) { WriteClash(out, clash); });
    out.WriteString(answer.head);
}

CommitAnswer ReadAnswer(ifpstream& in) {
    CommitAnswer answer;
    answer.commit = in.ReadString();
    answer.revision = in.ReadInt64();
    ReadList(in, answer.ids, [&] { return in.ReadInt64(); });
    ReadList(in, answer.refused, [&] {
        RefusedRecord refused;
        refused.number = in.ReadInt64();
        refused.reason = in.ReadString();
        return refused;
    });
    ReadList(in, answer.clashes, [&] { return ReadClash(in); });
    answer.head = in.ReadString();
    return answer;
}

void WritePage(ofpstream& out, const PullPage& page) {
    out.WriteInt64(page.upTo);
    out.WriteInt64(page.newest);
    out.WriteString(page.head);
    out.WriteUChar(page.last ? 1 : 0);
    out.WriteString(page.next);
    WriteList(out, page.replies, [&](const CloudReply& reply) {
        out.WriteUChar(static_cast<unsigned char>(reply.kind));
        out.WriteUChar(reply.deleted ? 1 : 0);
        out.WriteInt(reply.device);
        out.WriteInt64(reply.revision);
        out.WriteUChar(reply.unseen ? 1 : 0);
        WriteList(out, reply.fields, [&](const vex::String& field) { out.WriteString(field.View()); });
    });
    WriteList(out, page.authors, [&](const auto& author) {
        out.WriteInt64(author.first);
        out.WriteString(author.second);
    });
}

PullPage ReadPage(ifpstream& in) {
    PullPage page;
    page.upTo = in.ReadInt64();
    page.newest = in.ReadInt64();
    page.head = in.ReadString();
    page.last = in.ReadUChar() != 0;
    page.next = in.ReadString();
    ReadList(in, page.replies, [&] {
        CloudReply reply;
        reply.kind = ReadKind(in);
        reply.deleted = in.ReadUChar() != 0;
        reply.device = in.ReadInt();
        reply.revision = in.ReadInt64();
        reply.unseen = in.ReadUChar() != 0;
        ReadList(in, reply.fields, [&] { return vex::String(in.ReadString()); });
        return reply;
    });
    std::vector<std::pair<std::int64_t, std::string>> authors;
    ReadList(in, authors, [&] {
        const std::int64_t revision = in.ReadInt64();
        return std::pair(revision, in.ReadString());
    });
    page.authors.insert(authors.begin(), authors.end());
    return page;
}

void WriteCloudState(ofpstream& out, const CloudState& state) {
    out.WriteString(state.link.store);
    out.WriteString(state.link.project);
    out.WriteString(state.link.key);
    out.WriteInt64(state.revision);
    out.WriteInt64(state.known);
    out.WriteString(state.head);
    WriteList(out, state.own, [&](std::int64_t revision) { out.WriteInt64(revision); });
    out.WriteInt64(state.again);
    out.WriteUChar(state.commit ? 1 : 0);
    if (state.commit) WriteCommit(out, *state.commit);
    out.WriteInt(state.lastConflict);
    WriteList(out, state.conflicts, [&](const CloudConflict& conflict) { WriteConflict(out, conflict); });
    WriteList(out, state.refusals, [&](const CloudRefusal& refusal) {
        out.WriteUChar(static_cast<unsigned char>(refusal.kind));
        out.WriteInt64(refusal.id);
        out.WriteString(refusal.name);
        out.WriteString(refusal.reason);
    });
}

void ReadCloudState(ifpstream& in, CloudState& state) {
    state.link.store = in.ReadString();
    state.link.project = in.ReadString();
    state.link.key = in.ReadString();
    state.revision = in.ReadInt64();
    state.known = in.ReadInt64();
    state.head = in.ReadString();
    ReadList(in, state.own, [&] { return in.ReadInt64(); });
    state.again = in.ReadInt64();
    if (in.ReadUChar() != 0) state.commit = ReadCommit(in);
    if (!in.IsOk()) state.commit.reset();  // half a commit is none
    state.lastConflict = in.ReadInt();
    ReadList(in, state.conflicts, [&] { return ReadConflict(in); });
    ReadList(in, state.refusals, [&] {
        CloudRefusal refusal;
        refusal.kind = ReadKind(in);
        refusal.id = in.ReadInt64();
        refusal.name = in.ReadString();
        refusal.reason = in.ReadString();
        return refusal;
    });
}

}  // namespace gpsproject
