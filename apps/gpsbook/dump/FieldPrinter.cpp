#include "apps/gpsbook/dump/FieldPrinter.h"

#include <fmt/format.h>

#include <cmath>
#include <iterator>
#include <nlohmann/json.hpp>

#include "apps/gpsbook/book/Interrupt.h"
#include "apps/gpsbook/commands/Output.h"
#include "platform/base/GpsValues.h"

namespace gpsbook {

namespace {

constexpr std::size_t kPiece = 64 * 1024;

std::string Quoted(const std::string& text) {
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string ValueText(const StoredField& field) {
    if (const auto* text = std::get_if<std::string>(&field.value)) return Quoted(*text);
    if (const auto* number = std::get_if<double>(&field.value))
        return *number == GPS_VAL_UNSET ? std::string("unset") : fmt::format("{}", *number);
    return fmt::format("{}", std::get<std::int64_t>(field.value));
}

// JSON knows no number that is none: those are texts, as people see them.
std::string ValueJson(const StoredField& field) {
    const auto* number = std::get_if<double>(&field.value);
    if (number && *number == GPS_VAL_UNSET) return "null";
    if (number && !std::isfinite(*number)) return Quoted(fmt::format("{}", *number));
    return ValueText(field);
}

}  // namespace

void FieldPrinter::Begin(const SectionInfo& info) {
    if (json_)
        fmt::format_to(std::back_inserter(out_),
                       "{{\n\"{}\": {}, \"version\": {}, \"offset\": {}, \"size\": {},\n\"fields\": [",
                       info.bare ? "file" : "book", Quoted(info.file), info.version, info.offset, info.size);
    else
        fmt::format_to(std::back_inserter(out_), "{}: version {}, {} bytes from byte {}\n", info.file,
                       info.version, info.size, info.offset);
}

void FieldPrinter::Line(const StoredField& field) {
    if (json_)
        fmt::format_to(std::back_inserter(out_),
                       "{}\n{{\"offset\": {}, \"record\": \"{}\", \"field\": \"{}\", \"type\": \"{}\", "
                       "\"value\": {}}}",
                       first_ ? "" : ",", field.offset, field.record, field.field, field.type,
                       ValueJson(field));
    else
        fmt::format_to(std::back_inserter(out_), "{:>10}  {:<24} {:<36} {:<8} {}\n", field.offset,
                       field.record, field.field, field.type, ValueText(field));
    first_ = false;
}

void FieldPrinter::Take(const StoredField& field) {
    Line(field);
    if (out_.size() < kPiece) return;
    CheckInterrupt();
    Flush();
}

void FieldPrinter::End(const SectionDecoder& decoder, const std::optional<SectionDamage>& damage) {
    if (json_) {
        fmt::format_to(std::back_inserter(out_),
                       "\n],\n\"groups\": {}, \"points\": {},\n\"damage\": ", decoder.Groups(),
                       decoder.Points());
        if (damage)
            fmt::format_to(std::back_inserter(out_), "{{\"offset\": {}, \"what\": {}}}\n}}\n", damage->offset,
                           Quoted(damage->what));
        else
            out_ += "null\n}\n";
    } else if (!damage) {
        fmt::format_to(std::back_inserter(out_),
                       "{} groups, {} points; the section ends with its last record\n", decoder.Groups(),
                       decoder.Points());
    }
    Flush();
}

void FieldPrinter::Flush() {
    PrintText(out_);
    out_.clear();
}

}  // namespace gpsbook
