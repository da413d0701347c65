#include "host/cloud/Wire.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <limits>
#include <utility>

namespace gpssync {

namespace {

using gpsproject::CloudClash;
using gpsproject::CloudKind;
using gpsproject::CloudReply;
using gpsproject::CommitAnswer;
using gpsproject::PullPage;
using gpsproject::RefusedRecord;
using Json = nlohmann::json;

// --- decoding: everything is looked at before it is taken --------------------------------------------------

struct Malformed {};

void Require(bool holds) {
    if (!holds) throw Malformed();
}

const Json& Member(const Json& object, const char* name) {
    const auto found = object.find(name);
    Require(found != object.end());
    return *found;
}

void RequireObject(const Json& json, std::size_t members) {
    Require(json.is_object() && json.size() == members);
}

template <class Number>
Number Whole(const Json& json) {
    Require(json.is_number_integer());
    if (json.is_number_unsigned()) {
        const auto value = json.get<std::uint64_t>();
        Require(value <= static_cast<std::uint64_t>(std::numeric_limits<Number>::max()));
        return static_cast<Number>(value);
    }
    const auto value = json.get<std::int64_t>();
    Require(std::in_range<Number>(value));
    return static_cast<Number>(value);
}

const std::string& Text(const Json& json) {
    Require(json.is_string());
    return json.get_ref<const std::string&>();
}

const Json& Array(const Json& json) {
    Require(json.is_array());
    return json;
}

CloudKind Kind(const Json& json) {
    const auto kind = Whole<int>(json);
    Require(kind == 3 || kind == 4);
    return static_cast<CloudKind>(kind);
}

RefusedRecord Refused(const Json& json) {
    RequireObject(json, 2);
    return {Whole<std::int64_t>(Member(json, "number")), Text(Member(json, "reason"))};
}

CloudClash Clash(const Json& json) {
    RequireObject(json, 9);
    CloudClash clash;
    clash.kind = Kind(Member(json, "kind"));
    clash.id = Whole<std::int64_t>(Member(json, "id"));
    clash.name = Text(Member(json, "name"));
    clash.bit = Whole<std::uint32_t>(Member(json, "bit"));
    clash.mine = Text(Member(json, "mine"));
    clash.theirs = Text(Member(json, "theirs"));
    clash.device = Whole<std::int32_t>(Member(json, "device"));
    clash.author = Text(Member(json, "author"));
    clash.revision = Whole<std::int64_t>(Member(json, "revision"));
    return clash;
}

CloudReply Reply(const Json& json) {
    RequireObject(json, 6);
    CloudReply reply;
    reply.kind = Kind(Member(json, "kind"));
    const Json& deleted = Member(json, "deleted");
    Require(deleted.is_boolean());
    reply.deleted = deleted.get<bool>();
    reply.device = Whole<std::int32_t>(Member(json, "device"));
    reply.revision = Whole<std::int64_t>(Member(json, "revision"));
    const Json& unseen = Member(json, "unseen");
    Require(unseen.is_boolean());
    reply.unseen = unseen.get<bool>();
    const Json& fields = Array(Member(json, "fields"));
    reply.fields.reserve(fields.size());
    for (const Json& field : fields) reply.fields.emplace_back(Text(field));
    return reply;
}

std::int64_t RevisionNumber(const std::string& text) {
    std::int64_t revision = 0;
    const char* const end = text.data() + text.size();
    const auto [at, error] = std::from_chars(text.data(), end, revision);
    Require(error == std::errc() && at == end);
    return revision;
}

template <class Decode>
auto Decoded(std::string_view text, Decode decode) -> std::optional<decltype(decode(Json()))> {
    const Json json = Json::parse(text, nullptr, false);
    if (json.is_discarded()) return std::nullopt;
    try {
        return decode(json);
    } catch (const Malformed&) {
        return std::nullopt;
    }
}

// --- encoding ----------------------------------------------------------------------------------------------

// Bytes that are not UTF-8 come only from a damaged store: better a mark in their place than no text at all.
std::string Written(const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace); }

Json ToJson(const CloudClash& clash) {
    return {{"kind", static_cast<int>(clash.kind)},
            {"id", clash.id},
            {"name", clash.name},
            {"bit", clash.bit},
            {"mine", clash.mine},
            {"theirs", clash.theirs},
            {"device", clash.device},
            {"author", clash.author},
            {"revision", clash.revision}};
}

Json ToJson(const CloudReply& reply) {
    Json fields = Json::array();
    for (const vex::String& field : reply.fields) fields.push_back(std::string(field.View()));
    return {
        {"kind", static_cast<int>(reply.kind)}, {"deleted", reply.deleted}, {"device", reply.device},
        {"revision", reply.revision},           {"unseen", reply.unseen},   {"fields", std::move(fields)}};
}

}  // namespace

std::string EncodeAnswer(const CommitAnswer& answer) {
    Json refused = Json::array(), clashes = Json::array();
    for (const RefusedRecord& record : answer.refused)
        refused.push_back({{"number", record.number}, {"reason", record.reason}});
    for (const CloudClash& clash : answer.clashes) clashes.push_back(ToJson(clash));
    const Json json = {{"commit", answer.commit},       {"revision", answer.revision},
                       {"head", answer.head},           {"ids", answer.ids},
                       {"refused", std::move(refused)}, {"clashes", std::move(clashes)}};
    return Written(json);
}

std::optional<CommitAnswer> DecodeAnswer(std::string_view text) {
    return Decoded(text, [](const Json& json) {
        RequireObject(json, 6);
        CommitAnswer answer;
        answer.commit = Text(Member(json, "commit"));
        answer.revision = Whole<std::int64_t>(Member(json, "revision"));
        answer.head = Text(Member(json, "head"));
        const Json& ids = Array(Member(json, "ids"));
        answer.ids.reserve(ids.size());
        for (const Json& id : ids) answer.ids.push_back(Whole<std::int64_t>(id));
        for (const Json& record : Array(Member(json, "refused"))) answer.refused.push_back(Refused(record));
        for (const Json& clash : Array(Member(json, "clashes"))) answer.clashes.push_back(Clash(clash));
        return answer;
    });
}

std::string EncodePage(const PullPage& page) {
    Json replies = Json::array(), authors = Json::object();
    for (const CloudReply& reply : page.replies) replies.push_back(ToJson(reply));
    for (const auto& [revision, author] : page.authors) authors[std::to_string(revision)] = author;
    const Json json = {{"upTo", page.upTo},
                       {"newest", page.newest},
                       {"head", page.head},
                       {"last", page.last},
                       {"next", page.next},
                       {"replies", std::move(replies)},
                       {"authors", std::move(authors)}};
    return Written(json);
}

std::optional<PullPage> DecodePage(std::string_view text) {
    return Decoded(text, [](const Json& json) {
        RequireObject(json, 7);
        PullPage page;
        page.upTo = Whole<std::int64_t>(Member(json, "upTo"));
        page.newest = Whole<std::int64_t>(Member(json, "newest"));
        page.head = Text(Member(json, "head"));
        const Json& last = Member(json, "last");
        Require(last.is_boolean());
        page.last = last.get<bool>();
        page.next = Text(Member(json, "next"));
        for (const Json& reply : Array(Member(json, "replies"))) page.replies.push_back(Reply(reply));
        const Json& authors = Member(json, "authors");
        Require(authors.is_object());
        for (const auto& [revision, author] : authors.items())
            page.authors.emplace(RevisionNumber(revision), Text(author));
        return page;
    });
}

}  // namespace gpssync
