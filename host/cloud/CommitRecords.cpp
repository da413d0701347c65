#include "host/cloud/CommitRecords.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "host/base/Utf8.h"
#include "platform/base/GpsValues.h"

namespace gpssync {

namespace {

constexpr std::string_view kBreak = "\r\n";

std::string Number(std::int64_t n) { return std::to_string(n); }

// Long texts are no help to who reads a reason. Cut before a character.
std::string Quoted(std::string_view text) {
    constexpr std::size_t kLong = 40;
    if (text.size() <= kLong) return '"' + std::string(text) + '"';
    std::size_t end = kLong;
    while ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return '"' + std::string(text.substr(0, end)) + "...\"";
}

template <class Out>
bool WholeText(std::string_view text, Out& out) {
    const auto end = text.data() + text.size();
    const auto [at, error] = std::from_chars(text.data(), end, out);
    return error == std::errc() && at == end && !text.empty();
}

// Reads one record. Methods answer false when it is wrong; record.wrong then says why.
class Reading {
public:
    Reading(std::string_view text, CommitRecord& record) : rest_(text), record_(record) {}

    void Read() {
        CheckBytes();
        const std::string_view tag = Take();
        if (tag == "UBAS")
            Change(CloudKind::group);
        else if (tag == "UPTGPS")
            Change(CloudKind::point);
        else if (tag == "IBAS")
            Add(CloudKind::group);
        else if (tag == "IPTGPS")
            Add(CloudKind::point);
        else if (tag == "DEL")
            Remove();
        else if (record_.wrong.empty())
            Wrong(tag.empty() ? "the record is empty" : "there is no kind of record " + Quoted(tag));
    }

private:
    // One pass: what no record may hold, and how many fields there are.
    void CheckBytes() {
        unsigned all = 0;
        bool zero = false, lineBreak = false;
        for (const char c : rest_) {
            all |= static_cast<unsigned char>(c);
            zero |= c == '\0';
            lineBreak |= c == '\r' || c == '\n';
            fields_ += c == ';';
        }
        if (zero)
            Wrong("the record holds a zero byte");
        else if (all >= 0x80 && !IsUtf8(rest_))
            Wrong("the record is not UTF-8");
        else if (lineBreak)
            Wrong("the record holds a line break");
    }

    bool Wrong(std::string reason) {
        record_.wrong = std::move(reason);
        return false;
    }

    // The next field; without any more, `any_` is false.
    std::string_view Take() {
        any_ = more_;
        const std::size_t end = rest_.find(';');
        const std::string_view field = rest_.substr(0, end);
        more_ = end != std::string_view::npos;
        rest_ = more_ ? rest_.substr(end + 1) : std::string_view();
        ++number_;
        return field;
    }

    bool TakeId(std::int64_t& id) {
        const std::string_view text = Take();
        if (!any_) return Wrong("the record ends before the id");
        if (!WholeText(text, id)) return Wrong("the id " + Quoted(text) + " is no whole number of 64 bits");
        return id >= 1 || Wrong("the id is " + Number(id) + "; ids are 1 or more");
    }

    void Change(CloudKind kind) {
        record_.act = CommitRecord::Act::change;
        record_.kind = kind;
        if (!record_.wrong.empty() || !TakeId(record_.id) || !TakeMask()) return;
        int expected = 3;
        for (const FieldGroup& fields : FieldGroupsOf(kind))
            if (record_.mask & fields.bit) expected += fields.count;
        TakeFields(expected);
    }

    bool TakeMask() {
        std::uint32_t known = 0;
        for (const FieldGroup& fields : FieldGroupsOf(record_.kind)) known |= fields.bit;
        const std::string_view text = Take();
        if (!any_) return Wrong("the record ends before the mask");
        std::int32_t mask = 0;
        if (!WholeText(text, mask))
            return Wrong("the mask " + Quoted(text) + " is no whole number of 32 bits");
        record_.mask = static_cast<std::uint32_t>(mask);
        if (mask == 0) return Wrong("the mask is 0: the record changes nothing");
        if (record_.mask & ~known)
            return Wrong("the mask " + Number(mask) + " has bits that a " + NameOf(record_.kind) +
                         " does not have; the book was written by a newer program");
        return true;
    }

    void Add(CloudKind kind) {
        record_.act = CommitRecord::Act::add;
        record_.kind = kind;
        for (const FieldGroup& fields : FieldGroupsOf(kind)) record_.mask |= fields.bit;
        if (!record_.wrong.empty()) return;
        int expected = 1 + static_cast<int>(FieldsOf(kind).size());
        if (kind == CloudKind::point) {
            ++expected;
            const std::string_view text = Take();
            if (!any_ || !WholeText(text, record_.parent)) {
                Wrong("the group " + Quoted(text) + " is no whole number of 64 bits");
                return;
            }
        }
        TakeFields(expected);
    }

    void Remove() {
        record_.act = CommitRecord::Act::remove;
        if (!record_.wrong.empty()) return;
        const std::string_view kind = Take();
        if (kind != "3" && kind != "4") {
            Wrong("nothing of kind " + Quoted(kind) + " can be deleted, only groups (3) and points (4)");
            return;
        }
        record_.kind = kind == "3" ? CloudKind::group : CloudKind::point;
        if (TakeId(record_.id) && more_) Wrong("the record has more than 3 fields");
    }

    // A record may leave out the datum selected in the map library: its conversion has 59 fields then.
    bool CountFields(int expected) {
        const bool shorter = record_.kind == CloudKind::group && record_.mask & CHG_GRP_CONVCOORD;
        if (fields_ == expected) return true;
        if (shorter && fields_ == expected - static_cast<int>(kDatumFields)) {
            record_.hasMapDatum = false;
            return true;
        }
        return Wrong("the record has " + Number(fields_) + " fields instead of " + Number(expected));
    }

    bool TakeFields(int expected) {
        if (!CountFields(expected)) return false;
        const auto all = FieldsOf(record_.kind);
        record_.values.resize(all.size());
        for (const FieldGroup& fields : FieldGroupsOf(record_.kind)) {
            if (!(record_.mask & fields.bit)) continue;
            const auto first = static_cast<std::size_t>(fields.first - 2);
            for (std::size_t i = first; i < first + static_cast<std::size_t>(fields.count); ++i) {
                if (!record_.hasMapDatum && i >= kSelectedDatum && i < kMapLibrary) continue;
                if (!TakeValue(all[i], record_.values[i])) return false;
            }
        }
        return true;
    }

    bool TakeValue(const Field& field, Value& value) {
        const std::string_view text = Take();
        switch (field.type) {
            case FieldType::text:
                if (auto* before = std::get_if<std::string>(&value))
                    before->assign(text);
                else
                    value.emplace<std::string>(text);
                return true;
            case FieldType::whole: {
                std::int64_t whole = 0;
                if (!WholeText(text, whole)) return WrongField(field, text, "is no whole number");
                if (whole < field.least || whole > field.most)
                    return WrongField(field, text,
                                      "is not between " + Number(field.least) + " and " + Number(field.most));
                value = whole;
                return true;
            }
            case FieldType::real:
                break;
        }
        if (text == "NULLVAL") {
            value = Unset();
            return true;
        }
        if (text == "-inf") {
            value = -std::numeric_limits<double>::infinity();
            return true;
        }
        double real = 0;
        if (!WholeText(text, real) || std::isnan(real)) return WrongField(field, text, "is no number");
        if (std::isinf(real) || !IsCoordValid(real)) return WrongField(field, text, "is out of range");
        value = real == 0 ? 0.0 : real;  // not every store keeps the sign of zero
        return true;
    }

    bool WrongField(const Field& field, std::string_view text, const std::string& what) {
        return Wrong("field " + Number(number_) + " (" + field.column + "): " + Quoted(text) + " " + what);
    }

    std::string_view rest_;
    CommitRecord& record_;
    bool more_ = true;
    bool any_ = true;
    int fields_ = 1;
    int number_ = 0;  // of fields taken
};

}  // namespace

bool CommitReader::Next(CommitRecord& record) {
    if (!more_) return false;
    const std::size_t end = rest_.find(kBreak);
    const std::string_view text = rest_.substr(0, end);
    more_ = end != std::string_view::npos;
    if (more_) rest_ = rest_.substr(end + kBreak.size());
    record.act = CommitRecord::Act::unknown;
    record.kind = CloudKind::point;
    record.id = 0;
    record.parent = 0;
    record.mask = 0;
    record.hasMapDatum = true;
    record.wrong.clear();
    Reading(text, record).Read();
    return true;
}

}  // namespace gpssync
