#include "host/project/SectionDamage.h"

#include <system_error>

#include "platform/base/ifpstream.h"

namespace gpsproject {

void TellSectionDamage(const FoundSection& section, const ifpstream& in, const SectionSource& source,
                       std::vector<Damage>& damages) {
    const SectionEntry& entry = section.entry;
    const auto say = [&](std::int64_t offset, const std::string& what) {
        damages.push_back({entry.name, "", offset, what});
    };
    for (const auto& bad : source.GetBadBlocks()) {
        say(bad.offset, bad.repaired ? "one bit was wrong; it has been read as it was written"
                                     : "the " + std::to_string(bad.size) +
                                           " bytes from here on are not all as they were written");
    }
    const auto told = static_cast<std::int64_t>(source.GetBadBlocks().size());
    if (source.GetBadCount() > told)
        say(-1, "and " + std::to_string(source.GetBadCount() - told) +
                    " more places that are not as they were written");
    if (source.GetError() != 0)
        say(-1, "cannot be read to its end: " + std::generic_category().message(source.GetError()));
    else if (!source.IsWhole() && told == 0)
        say(-1, "is not what was written: its checksum differs");
    if (!in.IsOk())
        say(entry.offset + in.GetFailPosition(), "a record wants more from here on than there is");
}

}  // namespace gpsproject
