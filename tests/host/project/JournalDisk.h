// JournalDisk: a disk with a saved book, for the tests of its journal.
#pragma once

#include <memory>
#include <string>

#include "host/project/Project.h"
#include "tests/host/project/ModelDisk.h"
#include "tests/host/project/Samples.h"

namespace test {

using gpsproject::Project;
using Mode = Project::Mode;

inline constexpr const char* kBook = "/d/book";
inline constexpr const char* kSameBook = "/d/../d/book";
inline constexpr const char* kJournal = "/d/book.journal";

/// A disk with a saved book.
struct JournalDisk : ModelDisk {
    explicit JournalDisk(int number = 0, const char* name = kBook) { Make(number, name); }
    void Make(int number, const char* name) {
        Project project(Project::kNewestVersion, *this);
        Fill(project, number);
        project.SaveAs(name, false);
    }
    using ModelDisk::Open;
    int Resolve(const std::string& path, std::string& resolved) override {
        return ModelDisk::Resolve(path == kSameBook ? kBook : path, resolved);
    }
    std::unique_ptr<Project> Open(Mode mode, const char* name = kBook) {
        return Project::Open(name, mode, *this);
    }
};

inline void Rename(Project& project, int g, const char* name) {
    gpsproject::Edit edit(project.GetEdits());
    project.GetBook().GetGrpAt(g)->SetNomeGrp(name);
    project.GetEdits().GroupChanged(g);
    edit.Done();
}

inline std::string NameOf(Project& project, int g) { return project.GetBook().GetGrpAt(g)->GetNomeGrp(); }

}  // namespace test
