#include "host/project/OpenedFile.h"

#include "host/project/ContainerReader.h"
#include "host/project/OwnedFile.h"
#include "host/project/ProjectError.h"
#include "platform/base/ifpstream.h"

namespace gpsproject {

namespace {

bool ContentsAreWhole(FileOperations& files, int file, const Container& container) {
    for (const FoundSection& section : container.sections) {
        SectionSource source(files, file, section);
        ifpstream in(source, section.entry.length, section.entry.version);
        in.Skip(in.GetRemaining());
        if (!source.IsWhole() || source.GetBadCount() != 0) return false;
    }
    return true;
}

}  // namespace

bool IsUnchanged(FileOperations& files, const std::string& path, const OpenedFile& opened) {
    OwnedFile file(files);
    FileOperations::Facts facts;
    if (files.Open(path, FileOperations::How::read, 0, file.number) != 0) return false;
    if (files.GetFacts(file.number, facts) != 0 || !facts.regular) return false;
    try {
        const Container container = ReadContainer(files, file.number, facts.size, path);
        if (!container.damages.empty() || container.sections.size() != opened.sections.size()) return false;
        for (std::size_t i = 0; i < container.sections.size(); ++i) {
            if (container.sections[i].entry != opened.sections[i]) return false;
        }
        return facts == opened.facts || ContentsAreWhole(files, file.number, container);
    } catch (const ProjectError&) {
        return false;
    }
}

}  // namespace gpsproject
