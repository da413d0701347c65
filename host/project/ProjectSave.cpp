// Project: from the objects to the file.
#include <cerrno>
#include <utility>

#include "gps/persist/StreamVersions.h"
#include "host/os/FileOperations.h"
#include "host/project/ContainerReader.h"
#include "host/project/ContainerWriter.h"
#include "host/project/FileMessage.h"
#include "host/project/GpsReader.h"
#include "host/project/NotHeld.h"
#include "host/project/NotedOfSave.h"
#include "host/project/Project.h"
#include "host/project/ProjectLock.h"
#include "host/project/ReadBack.h"
#include "host/project/SafeReplace.h"
#include "host/project/SaveTarget.h"
#include "host/project/SettingsRecord.h"
#include "platform/base/ofpstream.h"

namespace gpsproject {

namespace {

using Kind = ProjectError::Kind;

void Verify(FileOperations& files, int file, const ContainerWriter& writer, const std::string& path) {
    FileOperations::Facts facts;
    if (const int error = files.GetFacts(file, facts))
        throw SystemError(path, "cannot be saved, the file is as it was", error);
    const auto differs = [&] {
        return SystemError(
            path, "cannot be saved, the file is as it was; what was written reads back differently", EIO);
    };
    if (facts.size != writer.GetSize()) throw differs();
    try {
        const Container container = ReadContainer(files, file, facts.size, path);
        if (!container.damages.empty() || container.sections.size() != writer.GetEntries().size())
            throw differs();
        for (std::size_t i = 0; i < container.sections.size(); ++i) {
            if (container.sections[i].entry != writer.GetEntries()[i] ||
                !ReadsBack(files, file, container.sections[i]))
                throw differs();
        }
    } catch (const ProjectError& e) {
        if (e.GetKind() == Kind::system) throw;
        throw differs();
    }
}

}  // namespace

void Project::WriteSections(ContainerWriter& writer, const JournalMark& mark, const std::string& path,
                            const std::string& target) {
    const auto need = [&](int error) {
        if (error != 0) throw SystemError(target, "cannot be saved, the file is as it was", error);
    };
    need(writer.Begin());
    need(writer.Section(std::string(kSettingsSection), version_, 0,
                        [&](ofpstream& out) { WriteSettings(out, settings_); }));
    if (version_ >= kVerDisegni)
        need(writer.Section(std::string(kMapSection), version_, 0,
                            [&](ofpstream& out) { map_->SalvaInFile(out, version_); }));
    if (mark.id != 0)
        need(writer.Section(std::string(kJournalSection), version_, 0,
                            [&](ofpstream& out) { WriteMark(out, mark); }));
    if (cloud_.IsLinked())
        need(writer.Section(std::string(kCloudSection), version_, 0,
                            [&](ofpstream& out) { cloud_.SalvaInFile(out); }));
    for (const KeptSection& kept : kept_)
        need(writer.Section(kept.name, kept.version, kept.items, [&](ofpstream& out) {
            out.WriteBytes(kept.content.data(), kept.content.size());
        }));
    need(writer.Section(std::string(kGpsSection), version_, CountItems(*book_), [&](ofpstream& out) {
        book_->SalvaInFile(out, version_, path.c_str(), nullptr, nullptr);
    }));
    need(writer.End());
}

/// `lock`: of another target than the present one.
void Project::SaveTo(const std::string& givenPath, const SaveTarget& givenTarget,
                     std::unique_ptr<ProjectLock> lock) {
    if (version_ < kOldestVersion || version_ > kNewestVersion)
        throw ProjectError(Kind::notHeld, givenPath + ": streams of version " + std::to_string(version_) +
                                              " are not written; choose one from " +
                                              std::to_string(kOldestVersion) + " to " +
                                              std::to_string(kNewestVersion));
    if (givenTarget.former && givenTarget.path == target_ && opened_ &&
        !IsUnchanged(files_, givenTarget.path, *opened_))
        throw ProjectError(
            Kind::changedOutside,
            givenPath + ": another program has changed it since it was opened; save under another name");
    // All that needs memory comes before the new file gets its place.
    std::string target = givenTarget.path;
    const bool elsewhere = target != target_;
    // The journal goes by the name, whatever other names the file has.
    std::string path = elsewhere ? givenPath : path_;
    std::vector<std::string> notes = NotHeldBy(*this, version_);
    NotedOfSave noted(*book_);

    const std::string journalPath = target + kJournalEnding;
    const JournalMark mark = elsewhere ? KeepStranger(journalPath) : MarkNow();
    SafeReplace pending(files_, target, givenTarget.former);
    ContainerWriter writer(files_, pending.GetFile());
    WriteSections(writer, mark, path, target);
    pending.Sync();
    Verify(files_, pending.GetFile(), writer, path);
    if (FileOperations::Facts now;
        givenTarget.former && (files_.GetFacts(target, now) != 0 || !now.IsSameContent(*givenTarget.former)))
        throw ProjectError(
            Kind::changedOutside,
            path + ": another program has changed it during the save; save under another name");
    OpenedFile saved{{}, writer.GetEntries()};
    std::unique_ptr<JournalWriter> journal = NewJournal(path, target, saved.sections);

    const int notSynced = pending.Place();
    noted.Stays();
    mark_ = mark;
    // When the disk does not confirm the names, the old journal goes on: it follows the former file, should
    // that come back, and the new one. A journal that is yet to be made confirms them with its own name.
    if (notSynced == 0 || elsewhere || !writer_ || !writer_->HasFile())
        TakeJournalIn(std::move(journal), journalPath, elsewhere);
    files_.GetFacts(target, saved.facts);
    opened_ = std::move(saved);
    path_ = std::move(path);
    target_ = std::move(target);
    if (lock) lock_ = std::move(lock);
    notes_ = std::move(notes);
    report_ = {};
    readOnly_ = false;
    map_->SetModifiedFlag(false);
    book_->SetModifiedFlag(false);
    if (notSynced != 0)
        throw SystemError(path_,
                          "is saved, but the disk does not confirm it; the book as it was before is " +
                              target_ + kBackupEnding,
                          notSynced);
}

}  // namespace gpsproject
