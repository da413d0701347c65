// FieldPrinter: stored fields as lines of text or as JSON, written as they come.
#pragma once

#include <optional>

#include "apps/gpsbook/dump/SectionDecoder.h"

namespace gpsbook {

/// What is said of the section before its fields.
struct SectionInfo {
    std::string file;
    bool bare = false;  // the file is the section, else a book that holds it
    short version = 0;
    std::int64_t offset = 0;  // byte of the file
    std::int64_t size = 0;    // bytes
};

/// Prints to standard output. Errors: WriteError; CommandError when the program is asked to end.
class FieldPrinter : public StoredFieldSink {
public:
    explicit FieldPrinter(bool json) : json_(json) {}

    void Begin(const SectionInfo& info);
    void Take(const StoredField& field) override;
    void End(const SectionDecoder& decoder, const std::optional<SectionDamage>& damage);

private:
    void Line(const StoredField& field);
    void Flush();

    bool json_;
    bool first_ = true;
    std::string out_;
};

}  // namespace gpsbook
