// CIniFile: the host's settings, texts under a section and a key.
#pragma once

#include <cstdint>
#include <string>

#include "platform/base/PlatformExport.h"

/// A default-constructed object addresses the settings of this installation. Every read looks at the file
/// as it is then; a missing file, section or key gives the default. A section or key is compared as it
/// stands, byte by byte. A null pointer counts as the empty text.
///
/// Writes are atomic, one at a time among processes, and keep all that others wrote, comments and the order
/// of lines too. They make the folder of the file. They answer false, changing nothing, when the file cannot
/// be read or written, or when somebody else has been writing it for ten seconds.
///
/// A file that cannot be settings (a zero byte in it, or more than 16 MiB) gives defaults. A write keeps it
/// under its name and ".damaged" (".damaged-2" and so on) and begins a new one. So it does with a file whose
/// lines can be understood in two ways, but then the new one has all values that the old one gave.
class GPS_PLATFORM_API CIniFile {
public:
    CIniFile();

    /// Settings in a given file.
    explicit CIniFile(const std::string& path);

    /// "1" and "true" are true, "0" and "false" are false; anything else gives the default.
    bool GetBool(const char* section, const char* key, bool byDefault) const;
    bool WriteBool(const char* section, const char* key, bool value);

    /// A decimal number, "-" before a negative one; beyond the range it gives the end of the range, anything
    /// else gives the default.
    short GetShort(const char* section, const char* key, short byDefault) const;
    bool WriteShort(const char* section, const char* key, short value);

    std::int32_t GetLong(const char* section, const char* key, std::int32_t byDefault) const;
    bool WriteLong(const char* section, const char* key, std::int32_t value);

    /// A text comes back exactly as it was written: blanks, quotes, ";", "=", line breaks and all bytes.
    std::string GetString(const char* section, const char* key, const char* byDefault) const;
    bool WriteString(const char* section, const char* key, const std::string& value);

    /// True when the file has a value under section and key.
    bool HasValue(const char* section, const char* key) const;

    /// Removes a value, so that the default holds again. True also when there was none.
    bool Remove(const char* section, const char* key);

    enum class State {
        Usable,   // or not there yet
        Damaged,  // it cannot be settings: reads give defaults, a write begins a new one
        Refused,  // the system does not give it: reads give defaults, a write fails
    };

    /// What the file is now.
    State GetState() const;

    /// Where the last write through this object that had to keep the former file has kept it; empty: none had
    /// to.
    const std::string& GetKeptPath() const { return kept_; }

    /// The file that it reads and writes.
    const std::string& GetPath() const { return path_; }

    /// The settings of this installation: the environment variable GPS_SURVEY_SETTINGS names the file; else
    /// it is gps-survey/settings.ini in $XDG_CONFIG_HOME, or in ~/.config. Empty when there is no home
    /// either: then nothing can be written.
    static std::string GetDefaultPath();

private:
    std::string path_;
    std::string kept_;
};
