// StagedOutput: an output file that appears complete or not at all.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace gpsbook {

/// A folder with a name nobody else uses, removed with all it holds at the end.
class TempFolder {
public:
    /// Errors: WriteError naming `forFile` when the folder cannot be made in `parent`.
    TempFolder(const std::filesystem::path& parent, const std::string& forFile);
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }

private:
    std::filesystem::path path_;
};

/// Output is written into a temporary folder beside the target and moved into place by Commit. Without Commit
/// the target stays as it was and nothing else is left behind.
class StagedOutput {
public:
    /// `companionEndings` names the files that belong to the target: an ending with a dot takes the place of
    /// the target's own ending (".dbf"), any other is put behind its name ("-wal").
    /// `stagedName` is the name the output has until Commit. Default: that of the target.
    /// Errors: WriteError when the target or a companion exists and `overwrite` is false, when the target is
    /// no ordinary file, or when its folder is missing or closed to us. Nothing has been touched then.
    StagedOutput(const std::filesystem::path& target, bool overwrite,
                 const std::vector<std::string>& companionEndings = {}, const std::string& stagedName = {});

    /// Where the output is written until Commit; companions of it are written beside it.
    const std::filesystem::path& File() const { return staged_; }

    /// Moves what was written to the target and removes old companions. Requires: all files are closed.
    /// On error: WriteError; the old files are back in place.
    void Commit();

private:
    std::filesystem::path target_;
    bool overwrite_;
    std::vector<std::filesystem::path> companions_;
    TempFolder folder_;
    std::filesystem::path staged_;
};

}  // namespace gpsbook
