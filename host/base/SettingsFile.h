// SettingsFile: the text of a settings file, read as a whole and replaced as a whole.
#pragma once

#include <functional>
#include <string>

/// What a file holds.
struct SettingsText {
    enum class State { Missing, Readable, Damaged, Refused };

    /// Damaged: the file cannot be settings (a zero byte, or more than 16 MiB). Refused: it is there, but the
    /// system does not give it.
    State state = State::Missing;
    std::string text;  // of a readable file; else empty
};

SettingsText ReadSettings(const std::string& path);

/// The new text of a file, and whether the old one has to be kept beside it.
struct SettingsChange {
    std::string text;
    bool keepOld = false;
    std::string keptAs = ".damaged";  // behind the name of the file
};

/// Replaces the text by what `change` makes of it, in one step: whoever reads meanwhile finds the old text or
/// the new one. One change at a time, among processes and threads. An old text to be kept, or a damaged file,
/// is then found under its name and `keptAs` (".damaged-2" and so on, if that is there).
///
/// Makes the folder, and writes nothing when the text stays the same. False, with the old file as it was,
/// when it does not succeed. `kept`, which may be null, gets the name of an old text that was kept.
bool ChangeSettings(const std::string& path, const std::function<SettingsChange(const SettingsText&)>& change,
                    std::string* kept = nullptr);
