// SectionDecoder: takes a GPS section apart, field by field, by the documented layout alone.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "apps/gpsbook/dump/Layout.h"
#include "apps/gpsbook/dump/SectionBytes.h"

namespace gpsbook {

/// A field as it is stored.
struct StoredField {
    std::int64_t offset = 0;  // byte of the file
    std::string_view record;  // "book", "group 2", "group 2, point 17"
    std::string_view field;   // "entity.name"
    std::string_view type;    // "f64"; "bytes": passed over, the value is their number
    std::variant<std::int64_t, double, std::string> value;  // unit of the field
};

class StoredFieldSink {
public:
    virtual ~StoredFieldSink() = default;
    virtual void Take(const StoredField& field) = 0;
};

/// Uses nothing of the library that writes and reads sections: what it finds is what the tables of the
/// documentation say, so that the two can be held against each other.
class SectionDecoder {
public:
    SectionDecoder(SectionBytes& bytes, short version, StoredFieldSink& sink)
        : bytes_(bytes), version_(version), sink_(sink) {}

    /// Reads the section to its end, where its bytes have to end, too.
    /// Errors: SectionDamage; the sink has got everything before it.
    void Run();

    std::int64_t Groups() const { return groups_; }  // complete ones
    std::int64_t Points() const { return points_; }

private:
    std::int64_t Rows(std::span<const Row> rows, const std::string& within);
    std::int64_t Field(FieldType type, const std::string& name);
    void Record(RecordId id, const std::string& within);
    template <class Content>
    void Sized(const std::string& within, Content content);
    template <class Content>
    void Envelope(const std::string& within, Content content);
    void MapLibraryLists(const std::string& within, std::int64_t lists);
    void DisplayOptions(const std::string& within, std::int64_t form);
    void DisplayEntries(const std::string& within, const char* kind);
    void Groups(std::int64_t count);
    void PostProcessing();
    void ObservationFiles(const char* kind);

    SectionBytes& bytes_;
    short version_;
    StoredFieldSink& sink_;
    std::string record_;
    std::int64_t groups_ = 0;
    std::int64_t points_ = 0;
};

}  // namespace gpsbook
