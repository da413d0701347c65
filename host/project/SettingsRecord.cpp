#include "host/project/SettingsRecord.h"

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

namespace gpsproject {

void WriteSettings(ofpstream& out, const std::map<std::string, std::string>& settings) {
    out.WriteInt(static_cast<std::int32_t>(settings.size()));
    for (const auto& [key, value] : settings) {
        out.WriteString(key);
        out.WriteString(value);
    }
}

void ReadSettings(ifpstream& in, std::map<std::string, std::string>& settings) {
    const std::int32_t count = in.ReadInt();
    for (std::int32_t i = 0; i < count; ++i) {
        const std::string key = in.ReadString();
        const std::string value = in.ReadString();
        if (!in.IsOk()) return;
        settings[key] = value;
    }
}

}  // namespace gpsproject
