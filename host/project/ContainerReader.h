// ContainerReader: finds the sections of a project file, also of a damaged one.
#pragma once

#include <string>
#include <vector>

#include "host/os/FileOperations.h"
#include "host/project/DamageReport.h"
#include "host/project/SectionSource.h"

namespace gpsproject {

/// What a file holds, by its table; when the table is lost, by the marks of the sections themselves.
struct Container {
    std::vector<FoundSection> sections;
    std::vector<Damage> damages;

    const FoundSection* Find(std::string_view name) const;
};

/// `size`: bytes of the file, `name`: for messages.
/// Errors: ProjectError: damaged when it is no project or nothing of it can be found, tooNew, system.
Container ReadContainer(FileOperations& files, int file, std::int64_t size, const std::string& name);

/// Checksums of a section's blocks, from behind its content; false when they are not there.
bool ReadBlocks(FileOperations& files, int file, std::int64_t size, FoundSection& section);

}  // namespace gpsproject
