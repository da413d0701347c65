#include "apps/gpsbook/dump/SectionDecoder.h"

#include <fmt/format.h>

#include <bit>

namespace gpsbook {

namespace {

std::string Path(const std::string& within, std::string_view name) {
    return within.empty() ? std::string(name) : fmt::format("{}.{}", within, name);
}

}  // namespace

void SectionDecoder::Run() {
    record_ = "book";
    const std::int64_t groups = Rows(BookRows(), "");
    Groups(groups);
    record_ = "book";
    if (version_ >= 1002 && Field(FieldType::u8, "post-processing options follow") != 0) PostProcessing();
    if (bytes_.Remaining() > 0)
        throw SectionDamage{bytes_.Position(),
                            fmt::format("{} bytes follow the last record", bytes_.Remaining())};
}

// Reads all fields of a table that are in this version; the last number that was read is returned.
std::int64_t SectionDecoder::Rows(std::span<const Row> rows, const std::string& within) {
    std::int64_t last = 0;
    for (const Row& row : rows) {
        if (!row.IsIn(version_)) continue;
        if (row.record == RecordId::none)
            last = Field(row.type, Path(within, row.name));
        else
            Record(row.record, Path(within, row.name));
    }
    return last;
}

std::int64_t SectionDecoder::Field(FieldType type, const std::string& name) {
    StoredField field;
    field.offset = bytes_.Position();
    field.record = record_;
    field.field = name;
    field.type = NameOf(type);
    std::int64_t number = 0;
    switch (type) {
        case FieldType::u8:
            number = static_cast<std::int64_t>(bytes_.Unsigned(1));
            break;
        case FieldType::u16:
            number = static_cast<std::int64_t>(bytes_.Unsigned(2));
            break;
        case FieldType::u32:
            number = static_cast<std::int64_t>(bytes_.Unsigned(4));
            break;
        case FieldType::i16:
        case FieldType::bool2:
            number = bytes_.Signed(2);
            break;
        case FieldType::i32:
        case FieldType::bool4:
        case FieldType::count:
            number = bytes_.Signed(4);
            break;
        case FieldType::i64:
        case FieldType::drawing:
            number = bytes_.Signed(8);
            break;
        case FieldType::f32:
            field.value =
                static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(bytes_.Unsigned(4))));
            break;
        case FieldType::f64:
            field.value = std::bit_cast<double>(bytes_.Unsigned(8));
            break;
        case FieldType::string: {
            const std::int64_t length = bytes_.Signed(4);
            field.value = length > 0 ? bytes_.Text(length) : std::string();
            break;
        }
    }
    if (type != FieldType::f32 && type != FieldType::f64 && type != FieldType::string) field.value = number;
    sink_.Take(field);
    return number;
}

// A length, then so many bytes, of which a later program may have written more than is known here.
template <class Content>
void SectionDecoder::Sized(const std::string& within, Content content) {
    const std::int64_t length = Field(FieldType::i32, Path(within, "length"));
    if (length < 0) throw SectionDamage{bytes_.Position() - 4, fmt::format("a length of {} bytes", length)};
    const std::int64_t token = bytes_.SetEnd(length);
    content();
    if (const std::int64_t more = bytes_.Remaining(); more > 0) {
        const std::string name = Path(within, "unknown");
        sink_.Take({bytes_.Position(), record_, name, "bytes", more});
        bytes_.Skip(more);
    }
    bytes_.LiftEnd(token);
}

template <class Content>
void SectionDecoder::Envelope(const std::string& within, Content content) {
    const std::int64_t form = Field(FieldType::i32, Path(within, "form"));
    Sized(within, [&] { content(form); });
}

void SectionDecoder::Record(RecordId id, const std::string& within) {
    switch (id) {
        case RecordId::mapLibrary:
            return Envelope(within, [&](std::int64_t form) {
                if (form == 1) MapLibraryLists(within, Rows(MapLibraryRows(), within));
            });
        case RecordId::bookOptions:
            Rows(BookOptionRows(), within);
            return;
        case RecordId::displayOptions:
            return Envelope(within, [&](std::int64_t form) { DisplayOptions(within, form); });
        case RecordId::entity:
            if (Rows(EntityRows(), within) != 0) Rows(EntityMoreRows(), within);
            return;
        case RecordId::cloud:
            Rows(CloudRows(), within);
            return;
        case RecordId::conversion:
            return Envelope(within, [&](std::int64_t form) {
                if (form == 1 && Rows(ConversionRows(), within) != 0)
                    Rows(DatumRows(), Path(within, "selected datum"));
            });
        case RecordId::datum:
            Rows(DatumRows(), within);
            return;
        case RecordId::projection:
            Rows(ProjectionRows(), within);
            return;
        case RecordId::none:
            return;
    }
}

void SectionDecoder::MapLibraryLists(const std::string& within, std::int64_t lists) {
    for (std::int64_t i = 0; i < lists; ++i) {
        const std::string list = Path(within, fmt::format("list {}", i));
        Field(FieldType::i32, Path(list, "selector 1"));
        Field(FieldType::i32, Path(list, "selector 2"));
        const std::int64_t datums = Field(FieldType::count, Path(list, "datums"));
        for (std::int64_t k = 0; k < datums; ++k) Rows(DatumRows(), Path(list, fmt::format("datum {}", k)));
    }
}

// Form 1 has the normal entries alone, form 2 the list's own values and two lists of entries.
void SectionDecoder::DisplayOptions(const std::string& within, std::int64_t form) {
    if (form == 2) {
        Field(FieldType::string, Path(within, "name"));
        Field(FieldType::i32, Path(within, "type"));
        Field(FieldType::i16, Path(within, "visible"));
    }
    if (form == 1 || form == 2) DisplayEntries(within, "entry");
    if (form == 2) DisplayEntries(within, "common entry");
}

void SectionDecoder::DisplayEntries(const std::string& within, const char* kind) {
    const std::int64_t entries = Field(FieldType::count, Path(within, fmt::format("{} list", kind)));
    for (std::int64_t i = 0; i < entries; ++i) {
        const std::string entry = Path(within, fmt::format("{} {}", kind, i));
        Sized(entry, [&] { Rows(DisplayEntryRows(), entry); });
    }
}

void SectionDecoder::Groups(std::int64_t count) {
    for (std::int64_t g = 0; g < count; ++g) {
        const std::string group = fmt::format("group {}", g);
        record_ = group;
        Rows(GroupRows(), "");
        const std::int64_t points = Field(FieldType::count, "points");
        for (std::int64_t p = 0; p < points; ++p) {
            record_ = fmt::format("{}, point {}", group, p);
            Rows(PointRows(), "");
            ++points_;
        }
        ++groups_;
    }
}

void SectionDecoder::PostProcessing() {
    record_ = "post-processing";
    Rows(PostProcessingRows(), "");
    ObservationFiles("rover file");
    ObservationFiles("base file");
}

void SectionDecoder::ObservationFiles(const char* kind) {
    const std::int64_t files = Field(FieldType::count, fmt::format("{}s", kind));
    for (std::int64_t i = 0; i < files; ++i) {
        record_ = fmt::format("post-processing, {} {}", kind, i);
        Rows(ObservationFileRows(), "");
    }
    record_ = "post-processing";
}

}  // namespace gpsbook
