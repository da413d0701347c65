#include "apps/gpsbook/dump/SectionFile.h"

#include <algorithm>
#include <cerrno>
#include <functional>
#include <system_error>
#include <utility>

#include "apps/gpsbook/commands/CommandError.h"
#include "host/os/FileOperations.h"
#include "host/project/ContainerFormat.h"

namespace gpsbook {

namespace {

// The newest version of each layout that can be written.
constexpr short kLayouts[] = {1400, 1310, 1299, 1105, 1003, 1002, 1001, 880, 749};

// The fields that a version finds, and where: two versions that find the same read the same.
class Reading : public StoredFieldSink {
public:
    void Take(const StoredField& f) override {
        Mix(static_cast<std::size_t>(f.offset));
        Mix(std::hash<std::string_view>{}(f.field));
        Mix(std::hash<std::string_view>{}(f.type));
    }
    std::size_t Get() const { return hash_; }

private:
    void Mix(std::size_t value) { hash_ = (hash_ ^ value) * 0x9E3779B97F4A7C15ULL; }
    std::size_t hash_ = 0;
};

}  // namespace

SectionFile::SectionFile(const std::string& file) {
    FileOperations& files = FileOperations::System();
    FileOperations::Facts facts;
    int error = files.Open(file, FileOperations::How::read, 0, file_);
    if (error == 0) error = files.GetFacts(file_, facts);
    if (error == 0 && !facts.regular) error = EISDIR;
    if (error != 0) {
        if (file_ >= 0) files.Close(file_);
        if (error == ENOENT || error == ENOTDIR)
            throw CommandError(exitNotFound, file + ": there is no such file; check the name");
        if (error == EISDIR)
            throw CommandError(exitRefused,
                               file + ": is no ordinary file; give the name of a field book or section");
        throw CommandError(exitFailure, file + ": cannot be read (" + std::generic_category().message(error) +
                                            "); check its permissions");
    }
    fileSize_ = facts.size;
    info_.file = file;
}

SectionFile::SectionFile(SectionFile&& other) noexcept
    : file_(std::exchange(other.file_, -1)),
      fileSize_(other.fileSize_),
      info_(std::move(other.info_)),
      found_(std::move(other.found_)),
      damages_(std::move(other.damages_)) {}

SectionFile::~SectionFile() {
    if (file_ >= 0) FileOperations::System().Close(file_);
}

SectionFile SectionFile::OfBook(const std::string& file) {
    SectionFile opened(file);
    FileOperations& files = FileOperations::System();
    gpsproject::Container container = gpsproject::ReadContainer(files, opened.file_, opened.fileSize_, file);
    opened.damages_ = container.damages;
    const gpsproject::FoundSection* found = container.Find(gpsproject::kGpsSection);
    if (!found)
        throw CommandError(exitRefused, file + ": there is no GPS section in it; gpsbook check tells more");
    opened.found_ = *found;
    // Without its blocks a section is read as it stands, with nothing put right.
    if (opened.found_.blocks.empty()) ReadBlocks(files, opened.file_, opened.fileSize_, opened.found_);
    opened.info_.version = found->entry.version;
    opened.info_.offset = found->entry.offset;
    opened.info_.size = found->entry.length;
    return opened;
}

SectionFile SectionFile::Bare(const std::string& file, short version) {
    SectionFile opened(file);
    opened.info_.bare = true;
    opened.info_.version = version;
    opened.info_.size = opened.fileSize_;
    opened.found_.entry.version = version;
    opened.found_.entry.offset = 0;
    opened.found_.entry.length = opened.fileSize_;
    return opened;
}

bool SectionFile::BeginsAsBook() const {
    char head[gpsproject::kMarkerSize];
    std::size_t got = 0;
    const int error = FileOperations::System().ReadAt(file_, 0, head, sizeof head, got);
    return error == 0 && std::string_view(head, got) == gpsproject::kFileMarker;
}

std::unique_ptr<StreamSource> SectionFile::Source() const {
    return std::make_unique<gpsproject::SectionSource>(FileOperations::System(), file_, found_);
}

std::vector<short> FittingVersions(const std::string& file) {
    std::vector<short> fitting;
    std::vector<std::size_t> readings;
    for (const short version : kLayouts) {
        const SectionFile section = SectionFile::Bare(file, version);
        const auto source = section.Source();
        SectionBytes bytes(*source, 0, section.GetInfo().size);
        Reading reading;
        try {
            SectionDecoder(bytes, version, reading).Run();
            if (std::find(readings.begin(), readings.end(), reading.Get()) != readings.end()) continue;
            readings.push_back(reading.Get());
            fitting.push_back(version);
        } catch (const SectionDamage&) {
            continue;  // another layout
        }
    }
    return fitting;
}

}  // namespace gpsbook
