// ContainerWriter: writes a project file from its beginning to its end.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/os/FileOperations.h"
#include "host/project/BlockChecks.h"
#include "host/project/ContainerFormat.h"
#include "platform/base/StreamEnds.h"

class ofpstream;

namespace gpsproject {

/// Bytes go to the file once and in order, and only their checksums are kept. Nothing is synced.
/// Errors: every operation answers 0 or an error number of errno.
class ContainerWriter {
public:
    /// `file` is empty and open for writing, and outlives the writer.
    ContainerWriter(FileOperations& files, int file) : files_(files), file_(file) {}

    int Begin();

    /// A section: `write` puts its content into a stream of that version.
    int Section(const std::string& name, short version, std::int64_t items,
                const std::function<void(ofpstream&)>& write);

    /// Table and end mark.
    int End();

    const std::vector<SectionEntry>& GetEntries() const { return entries_; }
    std::int64_t GetSize() const { return size_; }

private:
    int Put(const std::string& bytes);

    FileOperations& files_;
    int file_;
    std::int64_t size_ = 0;
    std::vector<SectionEntry> entries_;
};

}  // namespace gpsproject
