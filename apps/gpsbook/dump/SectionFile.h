// SectionFile: the GPS section of a file, a field book's or one that holds nothing else.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "apps/gpsbook/dump/FieldPrinter.h"
#include "host/project/ContainerReader.h"
#include "platform/base/StreamEnds.h"

namespace gpsbook {

/// Opens a file and gives the bytes of its section, once or again.
class SectionFile {
public:
    /// The section of a field book. What is wrong with what holds it is in GetDamages.
    /// Errors: CommandError when the file cannot be opened or has no such section.
    static SectionFile OfBook(const std::string& file);

    /// A file that is a bare section of that version.
    static SectionFile Bare(const std::string& file, short version);

    SectionFile(SectionFile&& other) noexcept;
    SectionFile& operator=(SectionFile&&) = delete;
    ~SectionFile();

    const SectionInfo& GetInfo() const { return info_; }
    const std::vector<gpsproject::Damage>& GetDamages() const { return damages_; }

    /// Whether the file begins as a field book does, in which a section stands somewhere else.
    bool BeginsAsBook() const;

    /// A fresh source of its bytes, which this object outlives.
    std::unique_ptr<StreamSource> Source() const;

private:
    explicit SectionFile(const std::string& file);

    int file_ = -1;
    std::int64_t fileSize_ = 0;
    SectionInfo info_;
    gpsproject::FoundSection found_;
    std::vector<gpsproject::Damage> damages_;
};

/// The stream versions whose layout fits a bare section to its last byte, newest first; of versions that find
/// the same fields in it the newest. Errors: as SectionFile.
std::vector<short> FittingVersions(const std::string& file);

}  // namespace gpsbook
