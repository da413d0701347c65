// Journals of the book that Site makes, as a session leaves them that ended before it saved.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/base/LittleEndian.h"
#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {

using Work = std::function<void(gpsproject::Project&)>;

/// Runs a session on a book that ends without a save. Each piece of work is an edit, stored by itself.
inline void Session(const std::string& book, const std::vector<Work>& edits) {
    const auto project = gpsproject::Project::Open(book, gpsproject::Project::Mode::write);
    for (const Work& work : edits) {
        gpsproject::Edit edit(project->GetEdits());
        work(*project);
        edit.Done();
        project->GetEdits().Commit();
    }
}

inline Work Coded(int g, int p, const char* code) {
    return [=](gpsproject::Project& project) {
        project.GetBook().GetPunAt(g, p)->SetCode(code);
        project.GetEdits().PointChanged(g, p);
    };
}

/// A point behind the last one of a group, 0.0001 degrees north of the point in front of it.
inline Work Added(int g, const char* name) {
    return [=](gpsproject::Project& project) {
        CLibGps& book = project.GetBook();
        const int p = book.GetPunArSize(g);
        CPunGps& point = *book.AddPun(g, false);
        const CPunGps& before = *book.GetPunAt(g, p - 1);
        point.SetNome(name);
        point.SetLat(before.GetLat() + 0.0001);
        point.SetLong(before.GetLong());
        point.SetElev(before.GetElev());
        point.SetAltAnt(before.GetAltAnt());
        book.CalcolaCoordCart(&point, g);
        project.GetEdits().PointInserted(g, p);
    };
}

inline Work Renamed(int g, const char* name) {
    return [=](gpsproject::Project& project) {
        project.GetBook().GetGrpAt(g)->SetNomeGrp(name);
        project.GetEdits().GroupChanged(g);
    };
}

inline Work Deleted(int g, int p) {
    return [=](gpsproject::Project& project) {
        project.GetEdits().DeletingPoint(g, p);
        project.GetBook().DelPunAt(g, p);
    };
}

/// Where each frame of a journal begins: a header of 33 bytes, then frames of 40 bytes and their payload,
/// whose length stands at byte 8.
inline std::vector<std::size_t> FramesOf(const std::string& journal) {
    std::vector<std::size_t> at;
    for (std::size_t i = 33; i + 40 <= journal.size();) {
        at.push_back(i);
        i += 40 +
             LoadLittleEndian<std::uint32_t>(reinterpret_cast<const unsigned char*>(journal.data()) + i + 8);
    }
    return at;
}

/// The book of Site with four edits in its journal.
class JournalSite : public Site {
public:
    JournalSite() {
        Session(Book(), {Coded(0, 1, "KERB"), Added(0, "P5"), Renamed(1, "Mole"), Deleted(0, 0)});
    }

    std::string Journal() const { return Text("site.gpsbook.journal"); }
    bool HasJournal() const { return std::filesystem::exists(Path("site.gpsbook.journal")); }

    void PutJournal(const std::string& bytes) const { Put("site.gpsbook.journal", bytes); }

    /// Changes a byte of the payload of a frame.
    void Damage(std::size_t frame) const {
        std::string bytes = Journal();
        bytes[FramesOf(bytes).at(frame) + 41] ^= 1;
        PutJournal(bytes);
    }

    Outcome Do(const std::string& what, bool asJson = false) const {
        std::vector<std::string> arguments{"journal", what, "site.gpsbook"};
        if (asJson) arguments.push_back("--json");
        return Run(arguments);
    }
};

}  // namespace gpsbook::test
