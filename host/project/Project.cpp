#include "host/project/Project.h"

#include <cerrno>

#include "host/os/FileOperations.h"
#include "host/project/ContainerReader.h"
#include "host/project/FileMessage.h"
#include "host/project/OwnedFile.h"
#include "host/project/ProjectLock.h"
#include "host/project/SafeReplace.h"
#include "host/project/SaveTarget.h"

namespace gpsproject {

namespace {

using Kind = ProjectError::Kind;

bool IsThere(FileOperations& files, const std::string& path) {
    FileOperations::Facts facts;
    return files.GetFacts(path, facts) == 0 && facts.regular;
}

bool IsSameFileStill(FileOperations& files, const std::string& target, const FileOperations::Facts& former) {
    FileOperations::Facts now;
    return files.GetFacts(target, now) == 0 && now.IsSameContent(former);
}

/// The file itself. Errors: one that is not there, is no file, or is not meant to be opened.
std::string ExistingFile(FileOperations& files, const std::string& path) {
    if (path.empty() || path.find('\0') != std::string::npos)
        throw ProjectError(Kind::notFound,
                           "the name of the project is empty or holds a zero byte; give another one");
    std::string target;
    FileOperations::Facts facts;
    int error = files.Resolve(path, target);
    if (error == 0) error = files.GetFacts(target, facts);
    if (error == ENOENT || error == ENOTDIR) {
        const std::string backup = (target.empty() ? path : target) + kBackupEnding;
        throw ProjectError(Kind::notFound,
                           path + ": there is no such file" +
                               (IsThere(files, backup) ? ", but there is its backup " + backup +
                                                             "; copy it to this name to go on with it"
                                                       : "; check the name"));
    }
    if (error != 0) throw SystemError(path, "cannot be opened", error);
    if (!facts.regular)
        throw ProjectError(Kind::damaged, path + ": is no ordinary file; give the name of a project's file");
    if (target.ends_with(kSavingEnding))
        throw ProjectError(Kind::damaged,
                           path + ": is what an interrupted save has left, and no project; open " +
                               target.substr(0, target.size() - std::string(kSavingEnding).size()));
    if (target.ends_with(kJournalEnding))
        throw ProjectError(Kind::damaged,
                           path + ": is the journal of a project; open " +
                               target.substr(0, target.size() - std::string(kJournalEnding).size()));
    return target;
}

}  // namespace

Project::Project(short streamVersion) : Project(streamVersion, FileOperations::System()) {}

Project::Project(short streamVersion, FileOperations& files)
    : files_(files),
      map_(std::make_unique<CLibMap>()),
      tables_(std::make_unique<CloudTables>()),
      book_(std::make_unique<CLibGps>(&tables_->project, nullptr, nullptr, map_.get(), 0)),
      journalFile_(files),
      edits_(*book_),
      cloud_(*tables_, *book_, edits_),
      version_(streamVersion) {}

Project::~Project() {
    // An edit that was not ended does not count: nothing of it needs to stay on the disk.
    if (writer_ && writer_->IsInEdit()) {
        while (writer_->IsInEdit()) writer_->DropEdit();
        if (writer_->GetDurableSequence() == 0) writer_->Remove();
    }
    book_->SetTmpJournal(nullptr);
    tables_->base.SetOwner(nullptr);
    tables_->points.SetOwner(nullptr);
}

std::unique_ptr<Project> Project::Open(const std::string& path, Mode mode) {
    return Open(path, mode, FileOperations::System());
}

std::unique_ptr<Project> Project::Open(const std::string& path, Mode mode, FileOperations& files) {
    const std::string target = ExistingFile(files, path);
    const bool write = mode != Mode::read;
    std::unique_ptr<ProjectLock> lock = write ? std::make_unique<ProjectLock>(files, target) : nullptr;
    if (write) {
        if (const int error = files.CheckWritable(target))
            throw SystemError(path, "may not be written", error);
    }

    std::unique_ptr<Project> project = OpenOnce(path, target, mode, files);
    // A program that writes the book may have saved it between the reading of file and journal.
    constexpr int kTries = 5;
    for (int i = 1; !write && i < kTries && !IsSameFileStill(files, target, project->opened_->facts); ++i)
        project = OpenOnce(path, target, mode, files);
    project->readOnly_ = !write || project->report_.IsDamaged();
    if (!project->readOnly_) {
        project->lock_ = std::move(lock);
        project->GoOnWith(project->NewJournal(path, target, project->opened_->sections));
        if (mode == Mode::write) project->SaveReplayed();
    }
    return project;
}

std::unique_ptr<Project> Project::OpenOnce(const std::string& path, const std::string& target, Mode mode,
                                           FileOperations& files) {
    OwnedFile file(files);
    FileOperations::Facts facts;
    int error = files.Open(target, FileOperations::How::read, 0, file.number);
    if (error == 0) error = files.GetFacts(file.number, facts);
    if (error != 0) throw SystemError(path, "cannot be opened", error);

    auto project = std::make_unique<Project>(kNewestVersion, files);
    project->path_ = path;
    project->target_ = target;
    const std::string backup = target + kBackupEnding;
    try {
        const Container container = ReadContainer(files, file.number, facts.size, path);
        project->ReadFrom(file.number, container);
        project->opened_ = OpenedFile{facts, {}};
        for (const FoundSection& section : container.sections)
            project->opened_->sections.push_back(section.entry);
    } catch (const ProjectError& e) {
        if (e.GetKind() != Kind::damaged || !IsThere(files, backup)) throw;
        throw ProjectError(Kind::damaged,
                           std::string(e.what()) + "; the book as it was saved before is " + backup);
    }
    // Edits are only certain on the book that they were made on.
    if (!project->report_.IsDamaged()) project->ReplayJournal(mode);
    if (project->report_.IsDamaged() && IsThere(files, backup)) project->report_.backup = backup;
    return project;
}

void Project::RefuseToWrite(const std::string& path) const {
    throw ProjectError(
        Kind::readOnly,
        path + (report_.IsDamaged() ? ": is damaged and is not written over; save under another name"
                                    : ": was opened for reading; save under another name"));
}

void Project::Save() {
    if (path_.empty())
        throw ProjectError(Kind::notFound, "the project has no file yet; save it under a name");
    if (readOnly_) RefuseToWrite(path_);
    SaveTo(path_, FindSaveTarget(files_, target_, true), nullptr);
}

void Project::SaveAs(const std::string& path, bool overwrite) {
    const SaveTarget target = FindSaveTarget(files_, path, overwrite);
    if (target.path == target_) {
        if (readOnly_ && target.former) RefuseToWrite(path);
        if (!readOnly_) return SaveTo(path, target, nullptr);
    }
    auto lock = std::make_unique<ProjectLock>(files_, target.path);
    SaveTo(path, target, std::move(lock));
}

}  // namespace gpsproject
