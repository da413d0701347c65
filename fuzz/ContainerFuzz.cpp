// A project file: opened for reading, whatever it holds, from memory.
#include <cerrno>
#include <cstring>
#include <memory>

#include "fuzz/Fuzz.h"
#include "host/os/FileOperations.h"
#include "host/project/Project.h"

namespace {

constexpr const char* kPath = "/book.gpsbook";

/// A disk with one file, which is never written.
class OneFile : public FileOperations {
public:
    explicit OneFile(std::string_view bytes) : bytes_(bytes) {}

    int Open(const std::string& path, How how, std::uint32_t, int& file) override {
        if (how != How::read) return EROFS;
        if (path != kPath) return ENOENT;
        file = 3;
        return 0;
    }
    int Close(int) override { return 0; }
    int ReadAt(int, std::int64_t offset, void* bytes, std::size_t size, std::size_t& got) override {
        fuzz::Require(offset >= 0, "no read before the beginning");
        const auto at = std::min(static_cast<std::size_t>(offset), bytes_.size());
        got = std::min(size, bytes_.size() - at);
        std::memcpy(bytes, bytes_.data() + at, got);
        return 0;
    }
    int Write(int, const void*, std::size_t) override { return EROFS; }
    int Truncate(int, std::int64_t) override { return EROFS; }
    int Sync(int) override { return EROFS; }
    int SyncData(int) override { return EROFS; }
    int SyncFolder(const std::string&) override { return EROFS; }
    int Rename(const std::string&, const std::string&) override { return EROFS; }
    int Link(const std::string&, const std::string&) override { return EROFS; }
    int Unlink(const std::string&) override { return EROFS; }
    int GetFacts(const std::string& path, Facts& facts) override {
        return path == kPath ? GetFacts(3, facts) : ENOENT;
    }
    int GetFacts(int, Facts& facts) override {
        facts = {};
        facts.regular = true;
        facts.size = static_cast<std::int64_t>(bytes_.size());
        return 0;
    }
    int CheckWritable(const std::string&) override { return EROFS; }
    int CopyRights(int, const Facts&) override { return EROFS; }
    int Resolve(const std::string& path, std::string& resolved) override {
        resolved = path;
        return 0;
    }
    int Lock(int) override { return 0; }

private:
    std::string_view bytes_;
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::ForgetSettings();
    OneFile files({reinterpret_cast<const char*>(data), size});
    try {
        const auto project = gpsproject::Project::Open(kPath, gpsproject::Project::Mode::read, files);
        fuzz::Require(project->IsReadOnly(), "what is opened for reading is not written");
        fuzz::Require(project->GetReport().IsDamaged() == !project->GetReport().Text().empty(),
                      "a report says something when there is damage, and only then");
    } catch (const gpsproject::ProjectError& error) {
        fuzz::Require(error.what()[0] != '\0', "an error says what is wrong");
    }
    return 0;
}
