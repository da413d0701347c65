// Replies of a server against both tables of a book, one behind the other, with edits in between.
//
// A line is a step: its first letter says what, the rest are fields joined by ";". g, p: a reply about a
// group, a point; G, P: a deletion; e: the n-th group or point (n, bits) is edited here; d: it is deleted
// here.
#include <string>
#include <vector>

#include "fuzz/Fuzz.h"
#include "gps/cloud/CGpsBaseCloudTable.h"
#include "gps/cloud/CGpsPntCloudTable.h"
#include "gps/model/CLibGps.h"
#include "platform/coord/CLibMap.h"
#include "platform/entity/CCloudProject.h"

namespace {

using Reply = std::vector<vex::String>;

struct Book {
    Book() : lib(&project, nullptr, nullptr, &map, 0) {
        project.SetGpsTables(&bases, &points);
        bases.SetOwner(&lib);
        points.SetOwner(&lib);
        lib.AddListener([this](int, int, auto*) { ++notified; });
        // Something to meet: a known group with a known and a new point, and a new group.
        lib.AddGrp(false)->SetCloudId(1);
        bases.AddItemToTable(lib.GetGrpAt(0));
        lib.AddPun(0, false)->SetCloudId(2);
        points.AddItemToTable(lib.GetPunAt(0, 0));
        lib.AddPun(0, false);
        lib.AddGrp(false);
    }
    ~Book() {
        bases.SetOwner(nullptr);
        points.SetOwner(nullptr);
    }

    CGpsBaseCloudTable bases;
    CGpsPntCloudTable points{&bases};
    CCloudProject project;
    CLibMap map;
    CLibGps lib;
    int notified = 0;
};

Reply Split(std::string_view text) {
    Reply fields;
    for (;;) {
        const std::size_t end = text.find(';');
        fields.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos) return fields;
        text.remove_prefix(end + 1);
    }
}

/// A number that a step names, from its first digits.
unsigned Number(const vex::String& text) {
    unsigned value = 0;
    for (const char c : text.View()) {
        if (c < '0' || c > '9') break;
        value = value * 10 + static_cast<unsigned>(c - '0');
    }
    return value;
}

/// Every item is in one collection of its table, and the book finds each where it stands.
void RequireSound(const Book& book) {
    std::size_t points = 0;
    for (int g = 0; g < book.lib.GetGrpArSize(); ++g) {
        int at = -1, in = -1;
        fuzz::Require(book.lib.GetIndiciDiGrp(book.lib.GetGrpAt(g), at) && at == g, "a group is found");
        for (int p = 0; p < book.lib.GetPunArSize(g); ++p, ++points)
            fuzz::Require(book.lib.GetIndiciDiPun(book.lib.GetPunAt(g, p), in, at) && in == g && at == p,
                          "a point is found");
    }
    const auto known = [](const CCloudTable& table) {
        std::size_t items = 0, tombstones = 0;
        for (const auto& [id, item] : table.GetById()) {
            fuzz::Require(id >= 1, "ids are 1 or more");
            fuzz::Require(!item || item->GetCloudId() == id, "an item is known by its own id");
            fuzz::Require(!item || item->IsCloudNotify(), "reporting is on");
            ++(item ? items : tombstones);
        }
        fuzz::Require(tombstones == table.GetDeleted().size(), "every tombstone is a deletion to be sent");
        for (const CCloudItem* item : table.GetChanged())
            fuzz::Require(item->GetCloudFlag() != 0, "a changed item has changed bits");
        return items + table.GetAdded().size();
    };
    fuzz::Require(known(book.bases) == static_cast<std::size_t>(book.lib.GetGrpArSize()),
                  "every group is in its table once");
    fuzz::Require(known(book.points) == points, "every point is in its table once");
}

std::string Commit(Book& book) {
    vex::String records;
    book.project.GenerateCommit(records);
    return std::string(records.View());
}

/// A reply: what it did is told once, and it does nothing when it comes again.
template <class Apply>
void Answer(Book& book, Apply apply, bool again) {
    const int before = book.notified;
    const std::string waiting = Commit(book);
    const bool applied = apply();
    fuzz::Require(book.notified - before == (applied ? 1 : 0), "one notification for each applied reply");
    fuzz::Require(!again || applied || Commit(book) == waiting, "what was refused changed nothing");
    if (!again || !applied) return;
    const std::string once = Commit(book);
    const int groups = book.lib.GetGrpArSize();
    fuzz::Require(apply() && Commit(book) == once && book.lib.GetGrpArSize() == groups, "twice is once");
}

CCloudItem* Item(Book& book, unsigned n) {
    for (int g = 0; g < book.lib.GetGrpArSize(); ++g) {
        if (n-- == 0) return book.lib.GetGrpAt(g);
        for (int p = 0; p < book.lib.GetPunArSize(g); ++p)
            if (n-- == 0) return book.lib.GetPunAt(g, p);
    }
    return nullptr;
}

void DeleteHere(Book& book, unsigned n) {
    for (int g = 0; g < book.lib.GetGrpArSize(); ++g) {
        if (n-- == 0) {
            for (int p = 0; p < book.lib.GetPunArSize(g); ++p)
                book.points.ItemDeletedLocally(book.lib.GetPunAt(g, p));
            book.bases.ItemDeletedLocally(book.lib.GetGrpAt(g));
            return book.lib.DelGrpAt(g);
        }
        for (int p = 0; p < book.lib.GetPunArSize(g); ++p) {
            if (n-- != 0) continue;
            book.points.ItemDeletedLocally(book.lib.GetPunAt(g, p));
            return book.lib.DelPunAt(g, p);
        }
    }
}

void Step(Book& book, char what, const Reply& fields) {
    switch (what) {
        case 'g':
            return Answer(
                book, [&] { return book.bases.UpdateSuccessful_Edit(fields); }, true);
        case 'p':
            return Answer(
                book, [&] { return book.points.UpdateSuccessful_Edit(fields); }, true);
        case 'G':
            return Answer(
                book, [&] { return book.bases.UpdateSuccessful_Del(fields); }, false);
        case 'P':
            return Answer(
                book, [&] { return book.points.UpdateSuccessful_Del(fields); }, false);
        case 'e':
            if (CCloudItem* item = Item(book, Number(fields[0])))
                item->CloudItemChanged(fields.size() > 1 ? Number(fields[1]) : 1);
            return;
        case 'd':
            return DeleteHere(book, Number(fields[0]));
        default:
            return;
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::ForgetSettings();
    std::string_view text(reinterpret_cast<const char*>(data), size);
    Book book;
    for (int steps = 0; steps < 64 && !text.empty(); ++steps) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.empty()) continue;
        Step(book, line[0], Split(line.substr(1)));
        RequireSound(book);
    }
    return 0;
}
