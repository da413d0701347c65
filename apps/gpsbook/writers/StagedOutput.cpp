#include "apps/gpsbook/writers/StagedOutput.h"

#include <stdlib.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "apps/gpsbook/writers/WriteError.h"

namespace gpsbook {

namespace fs = std::filesystem;

namespace {

/// A link is followed, so that the file behind it is replaced and the link stays.
fs::path FollowLink(const fs::path& target) {
    std::error_code ec;
    if (!fs::is_symlink(target, ec)) return target;
    const fs::path real = fs::canonical(target, ec);
    if (ec)
        throw WriteError(target.string(),
                         "is a link to a file that does not exist; remove it or choose another name");
    return real;
}

/// The folder of the target, after everything about it that can be wrong has been looked at.
fs::path CheckedFolder(const fs::path& target) {
    const std::string name = target.string();
    std::error_code ec;
    if (target.empty())
        throw WriteError("output", "the name is empty; give a file name, or - for standard output");
    if (fs::is_directory(target, ec) || !target.has_filename())
        throw WriteError(name, "is a folder; give the name of a file in it");
    if (fs::exists(target, ec) && !fs::is_regular_file(target, ec))
        throw WriteError(name, "is no ordinary file and cannot be replaced; use - for standard output");
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    if (!fs::exists(folder, ec))
        throw WriteError(name,
                         "the folder " + folder.string() + " does not exist; create it or choose another");
    if (!fs::is_directory(folder, ec))
        throw WriteError(name, folder.string() + " is no folder; choose another place");
    return folder;
}

fs::path WithEnding(const fs::path& target, const std::string& ending) {
    if (ending.front() == '.') return fs::path(target).replace_extension(ending);
    return fs::path(target) += ending;
}

std::vector<fs::path> CompanionsOf(const fs::path& target, const std::vector<std::string>& endings) {
    std::vector<fs::path> files;
    for (const std::string& ending : endings) files.push_back(WithEnding(target, ending));
    return files;
}

void RefuseExisting(const fs::path& target, const std::vector<fs::path>& companions) {
    std::error_code ec;
    if (fs::exists(target, ec))
        throw WriteError(target.string(), "exists already; use --overwrite to replace it");
    for (const fs::path& file : companions) {
        if (fs::exists(file, ec))
            throw WriteError(
                target.string(),
                file.string() + ", which belongs to it, exists already; use --overwrite to replace it");
    }
}

/// The folder beside the target in which the output can be prepared.
fs::path StagingPlace(const fs::path& target, const std::vector<fs::path>& companions, bool overwrite) {
    fs::path folder = CheckedFolder(target);
    if (!overwrite) RefuseExisting(target, companions);
    return folder;
}

/// Moves files and can move them all back.
class Moves {
public:
    Moves() = default;
    ~Moves() {
        std::error_code ignored;
        for (auto i = done_.rbegin(); i != done_.rend(); ++i) fs::rename(i->second, i->first, ignored);
    }
    Moves(const Moves&) = delete;
    Moves& operator=(const Moves&) = delete;

    void Move(const fs::path& from, const fs::path& to) {
        fs::rename(from, to);
        done_.emplace_back(from, to);
    }
    void Keep() { done_.clear(); }

private:
    std::vector<std::pair<fs::path, fs::path>> done_;
};

}  // namespace

TempFolder::TempFolder(const fs::path& parent, const std::string& forFile) {
    std::string pattern = (parent / ".gpsbook-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        const std::string why = std::generic_category().message(errno);
        throw WriteError(forFile, "cannot write in the folder " + parent.string() + " (" + why +
                                      "); choose another or change its permissions");
    }
    path_ = pattern;
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

StagedOutput::StagedOutput(const fs::path& target, bool overwrite,
                           const std::vector<std::string>& companionEndings, const std::string& stagedName)
    : target_(FollowLink(target)),
      overwrite_(overwrite),
      companions_(CompanionsOf(target_, companionEndings)),
      folder_(StagingPlace(target_, companions_, overwrite), target_.string()),
      staged_(folder_.Path() / (stagedName.empty() ? target_.filename() : fs::path(stagedName))) {}

void StagedOutput::Commit() {
    if (!overwrite_)
        RefuseExisting(target_, companions_);  // somebody may have made the target in the meantime
    Moves moves;
    try {
        const fs::path old = folder_.Path() / "replaced";
        fs::create_directory(old);
        for (const fs::path& file : companions_) {
            if (fs::exists(file)) moves.Move(file, old / file.filename());
        }
        for (const fs::path& file : companions_) {
            const fs::path fresh = folder_.Path() / file.filename();
            if (fs::exists(fresh)) moves.Move(fresh, file);
        }
        if (fs::exists(target_)) fs::permissions(staged_, fs::status(target_).permissions());
        // Last and in one step: whoever looks for the target finds the old or the new one.
        fs::rename(staged_, target_);
    } catch (const fs::filesystem_error& e) {
        throw WriteError(target_.string(),
                         "cannot be put in place (" + e.code().message() +
                             "); see whether another program holds it or its folder is closed");
    }
    moves.Keep();
}

}  // namespace gpsbook
