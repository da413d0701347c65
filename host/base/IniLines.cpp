#include "host/base/IniLines.h"

#include <cstddef>

namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kNone = std::string_view::npos;

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == kNone) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// Goes through the lines of a text and says of each in which section it is and which key it sets.
class Lines {
public:
    explicit Lines(std::string_view text)
        : text_(text), next_(text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0) {}

    bool Next() {
        if (next_ >= text_.size()) return false;
        begin_ = next_;
        contentEnd_ = text_.find_first_of("\r\n", begin_);
        if (contentEnd_ == kNone) contentEnd_ = text_.size();
        next_ = contentEnd_;
        if (next_ < text_.size()) next_ += text_.substr(next_).starts_with("\r\n") ? 2 : 1;
        Understand();
        return true;
    }

    bool Sets(std::string_view section, std::string_view key) const {
        return !key_.empty() && key_ == key && section_ == section;
    }
    bool IsOf(std::string_view section) const { return inSection_ && section_ == section; }
    bool IsBlank() const { return Trimmed(Content()).empty(); }
    std::string_view Content() const { return text_.substr(begin_, contentEnd_ - begin_); }
    std::size_t Begin() const { return begin_; }
    std::size_t ContentEnd() const { return contentEnd_; }
    std::size_t End() const { return next_; }

private:
    void Understand() {
        key_ = {};
        const std::string_view line = Trimmed(Content());
        if (line.empty() || line.front() == ';' || line.front() == '#') return;
        if (line.front() == '[') {
            const std::size_t end = line.find(']');
            if (end == kNone) return;
            section_ = Trimmed(line.substr(1, end - 1));
            inSection_ = true;
            return;
        }
        const std::size_t equals = line.find('=');
        if (equals != kNone) key_ = Trimmed(line.substr(0, equals));
    }

    std::string_view text_;
    std::string_view section_;
    std::string_view key_;
    std::size_t begin_ = 0;
    std::size_t contentEnd_ = 0;
    std::size_t next_;
    bool inSection_ = false;
};

std::string_view LineBreakOf(std::string_view text) {
    const std::size_t first = text.find_first_of("\r\n");
    return first != kNone && text.substr(first).starts_with("\r\n") ? "\r\n" : "\n";
}

bool EndsLine(std::string_view text) {
    return text.empty() || text == kByteOrderMark || text.back() == '\n' || text.back() == '\r';
}

std::string Joined(std::initializer_list<std::string_view> parts) {
    std::string all;
    for (const std::string_view part : parts) all += part;
    return all;
}

}  // namespace

std::string SetIniLine(std::string_view text, std::string_view section, std::string_view key,
                       std::string_view value) {
    const std::string_view lineBreak = LineBreakOf(text);
    std::size_t valueAt = kNone, valueEnd = 0, behind = kNone;
    for (Lines lines(text); lines.Next();) {
        if (lines.Sets(section, key)) {
            valueAt = lines.Begin() + lines.Content().find('=') + 1;
            valueEnd = lines.ContentEnd();
        }
        if (lines.IsOf(section) && !lines.IsBlank()) behind = lines.End();
    }
    if (valueAt != kNone) return Joined({text.substr(0, valueAt), " ", value, text.substr(valueEnd)});

    const std::string line = Joined({key, " = ", value, lineBreak});
    if (behind != kNone) {
        const std::string_view before = text.substr(0, behind);
        return Joined({before, EndsLine(before) ? "" : lineBreak, line, text.substr(behind)});
    }
    const bool isFirst = text.empty() || text == kByteOrderMark;
    return Joined({text, EndsLine(text) ? "" : lineBreak, isFirst ? "" : lineBreak, "[", section, "]",
                   lineBreak, line});
}

std::string RemoveIniLines(std::string_view text, std::string_view section, std::string_view key) {
    std::string kept;
    std::size_t from = 0;
    for (Lines lines(text); lines.Next();) {
        if (!lines.Sets(section, key)) continue;
        kept += text.substr(from, lines.Begin() - from);
        from = lines.End();
    }
    return kept += text.substr(from);
}
