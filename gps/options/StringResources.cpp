#include "gps/options/StringResources.h"

#include <algorithm>
#include <string_view>

namespace {

struct Resource {
    unsigned id;
    std::string_view text;
};

constexpr Resource kTable[] = {
    {kStrOpzListGps, "Entit\xC3\xA0 GPS"},
};

bool ContinuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

}  // namespace

int LoadStringGps(unsigned id, char* buffer, int size) {
    if (!buffer || size < 1) return 0;
    std::string_view text;
    for (const Resource& resource : kTable)
        if (resource.id == id) text = resource.text;
    std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    while (length > 0 && length < text.size() && ContinuesCharacter(text[length])) --length;
    buffer[text.copy(buffer, length)] = '\0';
    return static_cast<int>(length);
}
