#include "host/project/GpsSection.h"

#include <cerrno>

#include "gps/persist/StreamVersions.h"
#include "host/os/FileOperations.h"
#include "host/project/CheckingSink.h"
#include "host/project/FileMessage.h"
#include "host/project/GpsReader.h"
#include "host/project/NotedOfSave.h"
#include "host/project/OwnedFile.h"
#include "host/project/ProjectLock.h"
#include "host/project/ReadBack.h"
#include "host/project/SafeReplace.h"
#include "host/project/SaveTarget.h"
#include "host/project/SectionDamage.h"
#include "host/project/SectionWalk.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

namespace gpsproject {

namespace {

using Kind = ProjectError::Kind;

void WriteTo(Project& project, SafeReplace& pending, const std::string& file, short version) {
    FileOperations& files = project.GetFiles();
    CLibGps& book = project.GetBook();
    const NotedOfSave noted(book);
    CheckingSink sink(files, pending.GetFile());
    {
        ofpstream out(sink, version);
        book.SalvaInFile(out, version, book.GetNomeFile().c_str(), nullptr, nullptr);
        if (!out.Close()) throw SystemError(file, "cannot be written", out.GetError());
    }
    pending.Sync();
    const SectionEntry entry{
        std::string(kGpsSection), version, CountItems(book), 0, sink.GetChecks().GetLength(),
        sink.GetChecks().GetCrc()};
    if (!ReadsBack(files, pending.GetFile(), {entry, true, sink.GetChecks().TakeBlocks()}))
        throw SystemError(file, "cannot be written; what was written reads back differently", EIO);
}

/// Takes back the groups that a read has added, unless it came to its end.
class AddedGroups {
public:
    explicit AddedGroups(CLibGps& book) : book_(book), before_(book.GetGrpArSize()) {}
    ~AddedGroups() {
        while (!stay_ && book_.GetGrpArSize() > before_) book_.DelGrpAt(book_.GetGrpArSize() - 1);
    }
    AddedGroups(const AddedGroups&) = delete;
    AddedGroups& operator=(const AddedGroups&) = delete;
    void Stay() { stay_ = true; }

private:
    CLibGps& book_;
    int before_;
    bool stay_ = false;
};

/// The bare section as the only one of its file.
FoundSection WholeFile(std::int64_t size, short version) {
    return {{std::string(kGpsSection), version, 0, 0, size, 0}, false, {}};
}

/// Goes through the section without keeping anything; returns the number of its groups and points.
std::int64_t CheckSection(FileOperations& files, int file, const FoundSection& section,
                          const std::string& name) {
    struct Last : SectionListener {
        void Record(const SectionRecord& record) override {
            if (in->IsOk())
                sound = record;
            else if (broken.end == 0)
                broken = record;
        }
        const ifpstream* in = nullptr;
        SectionRecord sound, broken;
    } last;
    SectionSource source(files, file, section);
    ifpstream in(source, section.entry.length, section.entry.version);
    in.SetPastEndLimit(kPastEndReads);
    last.in = &in;
    std::int64_t items = 0;
    try {
        items = WalkSection(in, &last);
    } catch (const StreamExhausted&) {
    }
    if (source.GetError() != 0) throw SystemError(name, "cannot be read", source.GetError());
    const std::string expected =
        "; it may be damaged, or of another version than " + std::to_string(section.entry.version);
    if (!in.IsOk())
        throw ProjectError(Kind::damaged, name + ": " + last.broken.Text() + ", byte " +
                                              std::to_string(in.GetFailPosition()) +
                                              ": a record wants more from here on than there is" + expected);
    if (in.GetRemaining() > 0)
        throw ProjectError(Kind::damaged, name + ": byte " + std::to_string(in.GetPosition()) + ": " +
                                              std::to_string(in.GetRemaining()) +
                                              " bytes are left over behind the last record" + expected);
    return items;
}

/// The map library as it is, to be read back.
class SavedMap {
public:
    SavedMap(CLibMap& map, short version) : map_(map), out_(version) { map.SalvaInFile(out_, version); }
    void PutBack() {
        ifpstream in(out_.GetBytes().data(), out_.GetBytes().size(), out_.GetVersion());
        map_.LeggeDaFile(in, out_.GetVersion());
    }

private:
    CLibMap& map_;
    ofpstream out_;
};

}  // namespace

void WriteSection(Project& project, const std::string& file, short version, bool overwrite) {
    if (version < Project::kOldestVersion || version > Project::kNewestVersion)
        throw ProjectError(Kind::notHeld, file + ": sections of version " + std::to_string(version) +
                                              " are not written; choose one from " +
                                              std::to_string(Project::kOldestVersion) + " to " +
                                              std::to_string(Project::kNewestVersion));
    FileOperations& files = project.GetFiles();
    const SaveTarget target = FindSaveTarget(files, file, overwrite);
    if (std::string own; files.Resolve(project.GetPath(), own) == 0 && own == target.path)
        throw ProjectError(Kind::exists, file + ": is the project itself; choose another name");
    const ProjectLock lock(files, target.path);
    SafeReplace pending(files, target.path, target.former);
    WriteTo(project, pending, file, version);
    if (const int error = pending.Place())
        throw SystemError(file, "is written, but the disk does not confirm it", error);
}

void ReadSection(const std::string& file, short version, Project& into) {
    if (version > Project::kNewestVersion || version < 1)
        throw ProjectError(Kind::tooNew, file + ": there is no version " + std::to_string(version) +
                                             " of the section here; give one from 1 to " +
                                             std::to_string(Project::kNewestVersion));
    // Its records carry ids of whatever project it was shared through: they could name anything in this one.
    if (into.GetCloud().IsLinked())
        throw ProjectError(Kind::notHeld,
                           file +
                               ": cannot be read into a book that belongs to a shared project; "
                               "read it into a book of its own, and import that book");
    FileOperations& files = into.GetFiles();
    OwnedFile opened(files);
    FileOperations::Facts facts;
    int error = file.empty() ? ENOENT : files.Open(file, FileOperations::How::read, 0, opened.number);
    if (error == 0) error = files.GetFacts(opened.number, facts);
    if (error == ENOENT) throw ProjectError(Kind::notFound, file + ": there is no such file; check the name");
    if (error != 0) throw SystemError(file, "cannot be opened", error);
    if (!facts.regular)
        throw ProjectError(Kind::damaged, file + ": is no ordinary file; give the name of a section's file");

    const FoundSection section = WholeFile(facts.size, version);
    const std::int64_t items = CheckSection(files, opened.number, section, file);

    CLibGps& book = into.GetBook();
    const bool first = book.GetGrpArSize() == 0;
    const std::int64_t before = CountItems(book);
    SavedMap map(into.GetMap(), version);
    NotedOfSave noted(book);
    AddedGroups added(book);
    SectionSource source(files, opened.number, section);
    ifpstream in(source, facts.size, version);
    in.SetPastEndLimit(kPastEndReads);
    try {
        book.LeggeDaFile(in, first, true, version, book.GetNomeFile().c_str(), into.GetDrawings());
        if (!in.IsOk() || CountItems(book) - before != items)
            throw SystemError(file, "cannot be read", ENOMEM);
    } catch (...) {
        if (version < kVerDisegni) map.PutBack();
        throw;
    }
    // Conversions of groups that were there select from the library that they know.
    if (version < kVerDisegni && !first) map.PutBack();
    added.Stay();
}

}  // namespace gpsproject
