#include "platform/base/CIniFile.h"

#include <charconv>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>

#include "host/base/IniLines.h"
#include "host/base/IniText.h"
#include "host/base/IniValues.h"
#include "host/base/SettingsFile.h"

namespace {

std::string Section(const char* section) { return IniTextIn(section ? section : "", IniPlace::Section); }
std::string Key(const char* key) { return IniTextIn(key ? key : "", IniPlace::Key); }

std::optional<std::string> Find(const std::string& path, const char* section, const char* key) {
    const SettingsText file = ReadSettings(path);
    if (file.text.empty()) return {};
    const auto written = FindIniValue(file.text, Section(section), Key(key));
    if (!written) return {};
    return IniTextOut(*written);
}

// Whatever it is looked at by, the file must say afterwards what it said before, but for one value. Should a
// line that was taken for one thing be another, the file is written anew from what it was understood to say.
SettingsChange Changed(const SettingsText& old, const std::string& section, const std::string& key,
                       const std::optional<std::string>& value) {
    IniValues wanted = AllIniValues(old.text);
    if (value)
        wanted[{section, key}] = *value;
    else
        wanted.erase({section, key});
    std::string text =
        value ? SetIniLine(old.text, section, key, *value) : RemoveIniLines(old.text, section, key);
    if (AllIniValues(text) == wanted) return {std::move(text), false};
    return {IniTextOf(wanted), true};
}

bool Write(const std::string& path, const char* section, const char* key,
           const std::optional<std::string>& value, std::string& kept) {
    return ChangeSettings(
        path, [&](const SettingsText& old) { return Changed(old, Section(section), Key(key), value); },
        &kept);
}

template <class Number>
Number ParseNumber(const std::optional<std::string>& text, Number byDefault) {
    if (!text || text->empty()) return byDefault;
    const char* const end = text->data() + text->size();
    Number value{};
    const auto [behind, error] = std::from_chars(text->data(), end, value);
    if (behind != end || error == std::errc::invalid_argument) return byDefault;
    if (error == std::errc::result_out_of_range)
        return text->front() == '-' ? std::numeric_limits<Number>::min() : std::numeric_limits<Number>::max();
    return value;
}

template <class Number>
std::string NumberText(Number value) {
    char digits[16];
    return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
}

std::string Environment(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

}  // namespace

CIniFile::CIniFile() : path_(GetDefaultPath()) {}

CIniFile::CIniFile(const std::string& path) : path_(path) {}

bool CIniFile::GetBool(const char* section, const char* key, bool byDefault) const {
    const auto text = Find(path_, section, key);
    if (text == "1" || text == "true") return true;
    if (text == "0" || text == "false") return false;
    return byDefault;
}

bool CIniFile::WriteBool(const char* section, const char* key, bool value) {
    return WriteString(section, key, value ? "1" : "0");
}

short CIniFile::GetShort(const char* section, const char* key, short byDefault) const {
    return ParseNumber(Find(path_, section, key), byDefault);
}

bool CIniFile::WriteShort(const char* section, const char* key, short value) {
    return WriteString(section, key, NumberText(value));
}

std::int32_t CIniFile::GetLong(const char* section, const char* key, std::int32_t byDefault) const {
    return ParseNumber(Find(path_, section, key), byDefault);
}

bool CIniFile::WriteLong(const char* section, const char* key, std::int32_t value) {
    return WriteString(section, key, NumberText(value));
}

std::string CIniFile::GetString(const char* section, const char* key, const char* byDefault) const {
    auto text = Find(path_, section, key);
    if (text) return *std::move(text);
    return byDefault ? byDefault : "";
}

bool CIniFile::WriteString(const char* section, const char* key, const std::string& value) {
    return Write(path_, section, key, IniTextIn(value, IniPlace::Value), kept_);
}

bool CIniFile::HasValue(const char* section, const char* key) const {
    return Find(path_, section, key).has_value();
}

bool CIniFile::Remove(const char* section, const char* key) { return Write(path_, section, key, {}, kept_); }

CIniFile::State CIniFile::GetState() const {
    switch (ReadSettings(path_).state) {
        case SettingsText::State::Damaged:
            return State::Damaged;
        case SettingsText::State::Refused:
            return State::Refused;
        case SettingsText::State::Missing:
        case SettingsText::State::Readable:
            break;
    }
    return State::Usable;
}

std::string CIniFile::GetDefaultPath() {
    if (std::string named = Environment("GPS_SURVEY_SETTINGS"); !named.empty()) return named;
    std::string folder = Environment("XDG_CONFIG_HOME");
    if (!folder.starts_with('/')) {  // a relative one is not valid
        folder = Environment("HOME");
        if (folder.empty()) return {};
        folder += "/.config";
    }
    return folder + "/gps-survey/settings.ini";
}
