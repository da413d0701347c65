// Settings: a settings file of its own for a test.
#pragma once

#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "tests/TempFolder.h"

namespace test {

/// While it lives, default settings stand in a file of its own, which is not there at the beginning.
class Settings {
public:
    Settings() : file_(folder_ / "settings.ini") {
        if (const char* before = std::getenv(kName)) before_ = before;
        ::setenv(kName, file_.c_str(), 1);
    }
    ~Settings() {
        if (before_)
            ::setenv(kName, before_->c_str(), 1);
        else
            ::unsetenv(kName);
    }
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    const std::string& Path() const { return file_; }
    /// What the file holds; nothing when it is not there.
    std::string Text() const { return std::filesystem::exists(file_) ? FileBytes(file_) : ""; }
    void SetText(std::string_view text) const { WriteFileBytes(file_, text); }

private:
    static constexpr const char* kName = "GPS_SURVEY_SETTINGS";

    TempFolder folder_;
    std::string file_;
    std::optional<std::string> before_;
};

}  // namespace test
