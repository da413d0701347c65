#include "host/cloud/Device.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <random>
#include <string_view>
#include <system_error>

#include "host/base/Utf8.h"
#include "host/project/FileMessage.h"
#include "host/project/OwnedFile.h"
#include "host/project/ProjectError.h"

namespace gpssync {

namespace {

using gpsproject::OwnedFile;
using gpsproject::ProjectError;
using gpsproject::SystemError;

constexpr std::string_view kBegin =
    "# Who this installation is to shared projects. Not to be copied to another one.\ndevice ";
constexpr std::size_t kMostBytes = 1024;

std::string Environment(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

std::string ContentOf(std::int32_t device) { return std::string(kBegin) + std::to_string(device) + '\n'; }

/// 0: it is no content of such a file, not even when a single byte is missing.
std::int32_t DeviceOf(std::string_view content) {
    if (!content.starts_with(kBegin)) return 0;
    const std::string_view digits = content.substr(kBegin.size());
    std::int32_t device = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), device);
    return device > 0 && content == ContentOf(device) ? device : 0;
}

std::int32_t RandomDevice() {
    std::random_device random;
    return std::uniform_int_distribution<std::int32_t>(1, std::numeric_limits<std::int32_t>::max())(random);
}

/// 0: there is no such file.
std::int32_t ReadDevice(FileOperations& files, const std::string& path) {
    OwnedFile file(files);
    FileOperations::Facts facts;
    int error = files.Open(path, FileOperations::How::read, 0, file.number);
    if (error == ENOENT) return 0;
    if (error == 0) error = files.GetFacts(file.number, facts);
    std::string content(kMostBytes, '\0');
    std::size_t got = 0;
    if (error == 0 && facts.regular) error = files.ReadAt(file.number, 0, content.data(), kMostBytes, got);
    if (error != 0) throw SystemError(path, "the id of this installation cannot be read", error);
    content.resize(got);
    if (const std::int32_t device = DeviceOf(content)) return device;
    throw ProjectError(ProjectError::Kind::damaged,
                       path +
                           ": does not hold the id of this installation; put it back from a copy, or remove "
                           "the file: shared projects then take this for a new installation");
}

/// A file under another name, and removed with it.
class Prepared {
public:
    Prepared(FileOperations& files, std::string path, const std::string& content)
        : files_(files), path_(std::move(path)) {
        OwnedFile file(files);
        int error = files.Open(path_, FileOperations::How::createNew, 0600, file.number);
        made_ = error == 0;
        if (error == 0) error = files.Write(file.number, content.data(), content.size());
        if (error == 0) error = files.Sync(file.number);
        error_ = error;
    }
    ~Prepared() {
        if (made_) files_.Unlink(path_);
    }
    Prepared(const Prepared&) = delete;
    Prepared& operator=(const Prepared&) = delete;

    int GetError() const { return error_; }

private:
    FileOperations& files_;
    std::string path_;
    bool made_ = false;
    int error_ = 0;
};

/// Makes the file, unless another program was faster.
void MakeDevice(FileOperations& files, const std::string& path) {
    const std::string folder = std::filesystem::path(path).parent_path().string();
    std::error_code made;
    if (!folder.empty()) std::filesystem::create_directories(folder, made);
    const std::string aside = path + ".new-" + std::to_string(RandomDevice());
    const Prepared prepared(files, aside, ContentOf(RandomDevice()));
    int error = prepared.GetError();
    // A second name is given only where there is none: whoever comes later finds the first one's id.
    if (error == 0) error = files.Link(aside, path);
    if (error == EEXIST) return;
    if (error == 0) error = files.SyncFolder(folder.empty() ? "." : folder);
    if (error != 0)
        throw SystemError(path,
                          "the id of this installation cannot be kept there; GPS_SURVEY_DEVICE can name "
                          "another file",
                          error);
}

/// A text that can tell others: what it cannot hold becomes '?'.
std::string Cleaned(std::string text) {
    if (text.size() > kMostAuthorBytes) text.resize(kMostAuthorBytes);
    const bool utf8 = IsUtf8(text);
    for (char& c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F || (!utf8 && byte >= 0x80)) c = '?';
    }
    return text;
}

}  // namespace

std::string DeviceFile() {
    if (std::string named = Environment("GPS_SURVEY_DEVICE"); !named.empty()) return named;
    std::string folder = Environment("XDG_STATE_HOME");
    if (!folder.starts_with('/')) {  // a relative one is not valid
        folder = Environment("HOME");
        if (folder.empty()) return {};
        folder += "/.local/state";
    }
    return folder + "/gps-survey/device";
}

std::int32_t DeviceIn(const std::string& file, FileOperations& files) {
    if (file.empty())
        throw ProjectError(ProjectError::Kind::notFound,
                           "there is no home to keep the id of this installation in; GPS_SURVEY_DEVICE can "
                           "name a file for it");
    if (const std::int32_t device = ReadDevice(files, file)) return device;
    MakeDevice(files, file);
    if (const std::int32_t device = ReadDevice(files, file)) return device;
    throw SystemError(file, "the id of this installation is not there any more", ENOENT);
}

std::int32_t OwnDevice() { return DeviceIn(DeviceFile()); }

std::string AuthorProblem(const std::string& author) {
    if (author.empty()) return "the name is empty";
    if (author.size() > kMostAuthorBytes)
        return "the name is longer than " + std::to_string(kMostAuthorBytes) + " bytes";
    if (!IsUtf8(author)) return "the name is not UTF-8; see which encoding the terminal has";
    const bool control = std::any_of(author.begin(), author.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
    });
    return control ? "the name holds a line break or control character" : "";
}

std::string SystemAuthor() {
    const passwd* const user = ::getpwuid(::geteuid());
    const std::string name = user && user->pw_name ? user->pw_name : "user" + std::to_string(::geteuid());
    char host[256] = {};
    const bool known = ::gethostname(host, sizeof host - 1) == 0 && host[0] != '\0';
    return Cleaned(name + '@' + (known ? host : "localhost"));
}

}  // namespace gpssync
