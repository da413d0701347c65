// Bytes in memory as a source, and the fields that a decoder finds in them.
#pragma once

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "apps/gpsbook/dump/SectionDecoder.h"

namespace gpsbook::test {

class MemorySource : public StreamSource {
public:
    explicit MemorySource(std::string bytes, int error = 0) : bytes_(std::move(bytes)), error_(error) {}

    int Read(void* to, std::size_t size, std::size_t& got) override {
        got = std::min(size, bytes_.size() - at_);
        if (got == 0 && error_ != 0) return error_;
        std::memcpy(to, bytes_.data() + at_, got);
        at_ += got;
        return 0;
    }

private:
    std::string bytes_;
    int error_;  // at the end
    std::size_t at_ = 0;
};

/// A field with texts of its own.
struct KeptField {
    std::int64_t offset;
    std::string record, field, type;
    std::variant<std::int64_t, double, std::string> value;  // unit of the field
};

class KeepingSink : public StoredFieldSink {
public:
    void Take(const StoredField& f) override {
        fields.push_back(
            {f.offset, std::string(f.record), std::string(f.field), std::string(f.type), f.value});
    }

    /// The first field of that name in a record; null without it.
    const KeptField* Find(const std::string& record, const std::string& field) const {
        for (const KeptField& f : fields)
            if (f.record == record && f.field == field) return &f;
        return nullptr;
    }

    std::vector<KeptField> fields;
};

/// What became of decoding.
struct Decoded {
    KeepingSink sink;
    bool whole = false;
    SectionDamage damage{-1, ""};
    std::int64_t groups = 0, points = 0;
};

inline Decoded Decode(const std::string& bytes, short version, std::int64_t begin = 0) {
    Decoded decoded;
    MemorySource source(bytes);
    SectionBytes section(source, begin, static_cast<std::int64_t>(bytes.size()));
    SectionDecoder decoder(section, version, decoded.sink);
    try {
        decoder.Run();
        decoded.whole = true;
    } catch (const SectionDamage& damage) {
        decoded.damage = damage;
    }
    decoded.groups = decoder.Groups();
    decoded.points = decoder.Points();
    return decoded;
}

}  // namespace gpsbook::test
