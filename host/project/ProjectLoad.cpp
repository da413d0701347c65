// Project: from the file to the objects.
#include <algorithm>

#include "gps/persist/StreamVersions.h"
#include "host/os/FileOperations.h"
#include "host/project/ContainerReader.h"
#include "host/project/GpsReader.h"
#include "host/project/Project.h"
#include "host/project/ProjectLock.h"
#include "host/project/SectionDamage.h"
#include "host/project/SettingsRecord.h"
#include "platform/base/ifpstream.h"

namespace gpsproject {

namespace {

/// Reads a section and tells what is wrong with it. True when all of it was read as it was written.
template <class Read>
bool ReadSectionBy(FileOperations& files, int file, const FoundSection& section, std::vector<Damage>& damages,
                   Read read) {
    SectionSource source(files, file, section);
    ifpstream in(source, section.entry.length, section.entry.version);
    in.SetPastEndLimit(kPastEndReads);
    try {
        read(in);
    } catch (const StreamExhausted&) {  // what is wrong is told below
    }
    const std::int64_t left = in.GetRemaining();
    in.SetPastEndLimit(-1);
    in.Skip(left);
    TellSectionDamage(section, in, source, damages);
    if (left > 0 && in.IsOk())
        damages.push_back({section.entry.name, "", section.entry.offset + section.entry.length - left,
                           std::to_string(left) + " bytes are left over"});
    return left == 0 && in.IsOk() && source.IsWhole() && source.GetError() == 0;
}

KeptSection ReadKept(ifpstream& in, const SectionEntry& entry) {
    KeptSection kept{entry.name, entry.version, entry.items, {}};
    kept.content.resize(static_cast<std::size_t>(in.GetRemaining()));
    in.ReadBytes(kept.content.data(), kept.content.size());
    return kept;
}

void NoteOtherDatums(CLibGps& book, std::vector<std::string>& notes) {
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        const CGrpGps& group = *book.GetGrpAt(g);
        if (group.GetConvCoord()->IsDatumDiverso())
            notes.push_back(
                "group " + std::to_string(g) + " (" + group.GetNomeGrp() +
                "): its datum is not in the map library, or has other values than when the group was "
                "saved; its plane coordinates would become others when computed again");
    }
}

}  // namespace

void Project::ReadFrom(int file, const Container& container) {
    report_.damages = container.damages;
    auto& damages = report_.damages;
    const FoundSection* const gps = container.Find(kGpsSection);
    const FoundSection* const map = container.Find(kMapSection);
    if (gps || map) version_ = (gps ? gps : map)->entry.version;
    if (version_ > kNewestVersion)
        throw ProjectError(ProjectError::Kind::tooNew,
                           path_ + ": its field book has version " + std::to_string(version_) +
                               ", and this program knows versions up to " + std::to_string(kNewestVersion) +
                               "; use a newer program");
    for (const FoundSection& section : container.sections) {
        const auto by = [&](auto read) { return ReadSectionBy(files_, file, section, damages, read); };
        if (&section == gps)
            continue;
        else if (&section == map)
            by([&](ifpstream& in) { map_->LeggeDaFile(in, section.entry.version); });
        else if (section.entry.name == kSettingsSection)
            by([&](ifpstream& in) { ReadSettings(in, settings_); });
        else if (section.entry.name == kCloudSection) {
            if (by([&](ifpstream& in) { cloud_.LeggeDaFile(in); })) cloud_.GoOnAsRead();
        } else if (section.entry.name == kJournalSection)
            by([&](ifpstream& in) { mark_ = ReadMark(in); });
        else
            by([&](ifpstream& in) { kept_.push_back(ReadKept(in, section.entry)); });
    }
    if (gps)
        ReadGps(files_, file, *gps, path_, *book_, drawings_, report_);
    else
        damages.push_back({std::string(kGpsSection), "", -1, "the section is not there"});
    if (!map && version_ >= kVerDisegni)
        damages.push_back({std::string(kMapSection), "", -1, "the section is not there"});
    report_.groupsRead = book_->GetGrpArSize();
    report_.pointsRead = static_cast<int>(CountItems(*book_)) - report_.groupsRead;
    NoteOtherDatums(*book_, notes_);
    if (!gps || CountItems(*book_) < gps->entry.items) cloud_.ItemsWereLost();
}

}  // namespace gpsproject
