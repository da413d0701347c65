// BookCloud: the book's side of a shared project.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/project/CloudState.h"
#include "host/project/CloudTables.h"
#include "host/project/ConflictList.h"
#include "host/project/DerivedPositions.h"

class CDrawingsMapper;
class CLibGps;
class ifpstream;

namespace gpsproject {

class BookEdits;

/// Takes what was edited here to the shared project, and what others edited there into the book. Every step
/// is noted in the journal as one edit and can be repeated from it: a crash at any moment, or an answer that
/// got lost, neither loses nor doubles anything, provided that
/// - a commit is on the disk (BookEdits::Commit) before it is sent;
/// - no page is taken while a commit is unanswered.
///
/// Errors of all operations that change the book: std::bad_alloc, ProjectError (the journal).
class BookCloud {
public:
    BookCloud(CloudTables& tables, CLibGps& book, BookEdits& edits);

    bool IsLinked() const { return tables_.IsLinked(); }
    const CloudState& GetState() const { return state_; }
    CloudTables& GetTables() { return tables_; }

    /// Requires: not linked. All groups and points become new ones of the shared project; what ids they had
    /// were another project's. It is no edit of the journal: save the book.
    void Link(const CloudLink& link);

    /// The same project (key) under another name or at another place. Save the book.
    void SetLink(const CloudLink& link);

    /// Something waits to be sent, or was sent and is not answered.
    bool HasToSend();

    /// The commit under way: as it was first made, however often it is sent. Null: there is none.
    const CloudCommit* GetCommit() const { return state_.commit ? &*state_.commit : nullptr; }

    /// Makes a commit of all that waits and can be sent, under an id that is used only once. False: there is
    /// nothing, or another one is under way.
    bool BeginCommit(const std::string& id);

    /// The server has answered; `device`: which one this is. False, changing nothing: it is no answer to the
    /// commit under way, or not a whole one.
    bool TakeAnswer(const CommitAnswer& answer, int device);

    /// What to ask for next, without page.
    PullRequest GetPullRequest() const;

    /// Items of a copy of the book came in (CLibGps::MergeCloudItems) that knew the project up to an older
    /// revision: what others did since then, deletions above all, is asked for once more. Save the book.
    void PullAgainFrom(std::int64_t revision);
    /// The same; `copy` may also know later revisions than the book.
    void PullAgainAfter(const CloudState& copy);

    /// What came into the book, and from whom.
    struct TakenItem {
        enum class What : std::uint8_t { added, changed, deleted };
        What what = What::changed;
        CloudKind kind = CloudKind::point;
        std::int64_t id = 0;
        std::string name, group;   // of a point its own name and that of its group, as they were then
        std::uint32_t fields = 0;  // that came in with a change
        std::int32_t device = 0;
        std::string author;
    };

    struct Taken {
        int groups = 0, points = 0;  // new or changed
        int deleted = 0;             // groups and points, without those that went with their group
        int conflicts = 0;
        std::vector<DerivedPositions::Place> computed;  // positions, at the last page; they wait to be sent
        std::vector<TakenItem> items;                   // without those that stay as they are
    };

    /// Takes a page of what others changed. A field that waits to be sent keeps its value and becomes a
    /// conflict; what is deleted and holds something unconfirmed, or was deleted by somebody who had not
    /// seen all that was sent from here, is kept as a conflict first. A conflict is over when others bring
    /// another value of its field, or both values have become the same. A fix or a conversion that comes
    /// without the positions that belong to it has these computed (DerivedPositions), which settles what
    /// conflicts there are about them.
    /// Requires: no commit is under way. Errors: ProjectError (damaged) for a page with a reply that cannot
    /// be applied; those before it are, and the revision stays.
    Taken TakePage(const PullPage& page);

    /// A conflict is settled. False: there is none of that number. Of a kept group that was added again,
    /// `ticket` is the new one's: kept points of it find it by that.
    bool DropConflict(int number, std::int64_t ticket = 0);
    const CloudConflict* FindConflict(int number) const;

    /// Numbers of those about the positions of these items.
    std::vector<int> FindConflictsOfPositions(const std::vector<DerivedPositions::Place>& places);
    /// What stands in the book in the fields of a conflict, as a record has it. None: it is about no field,
    /// or the item is not in the book.
    std::optional<std::string> ValueHere(const CloudConflict& conflict);

    /// While it lives, conflicts that are settled still stand in GetState(): many leave it at once.
    class Settling {
    public:
        explicit Settling(BookCloud& cloud) : cloud_(cloud) { ++cloud_.settling_; }
        ~Settling() {
            if (--cloud_.settling_ == 0) cloud_.conflicts_.Sweep();
        }
        Settling(const Settling&) = delete;
        Settling& operator=(const Settling&) = delete;

    private:
        BookCloud& cloud_;
    };

    // --- for Project ---------------------------------------------------------------------------------

    /// The section of the project file. Read before the book.
    void SalvaInFile(ofpstream& out) const;
    void LeggeDaFile(ifpstream& in);

    /// The section was whole: the book is linked. With a damaged one it is not, for ids and tickets that are
    /// not certain could land on other items.
    void GoOnAsRead();

    /// Groups or points of the file could not be read: the next pull brings again what the server has of
    /// them. An unanswered commit is given up. Its answer would take the lost ones for deleted here, and
    /// delete them for everybody; now what it added may be there twice.
    void ItemsWereLost();

    /// Repeats one of the edits above from the journal. Empty, or what is wrong with it.
    std::string Replay(int code, ifpstream& in);

private:
    void Answered(const CommitAnswer& answer, int device);
    void Knows(std::int64_t revision, const std::string& head);
    void Apply(const PullPage& page, Taken& taken, std::size_t& done);
    void ApplyEdit(const CloudReply& reply, const std::string& author, std::int64_t revision, Taken& taken);
    void ApplyDeletion(const CloudReply& reply, const std::string& author, std::int64_t revision,
                       Taken& taken);
    [[noreturn]] void RefuseReply(const CloudReply& reply) const;
    bool IsAsHere(const CloudReply& reply, CCloudItem& item);
    bool TakeFields(const CloudReply& reply, CCloudItem& item, std::uint32_t& bits);
    void LookAtPositions(const CloudReply& reply, CCloudItem& item, std::uint32_t bits);
    void ComputePositions(Taken& taken);
    void NoteComputed(const Taken& taken);
    bool HasUnconfirmed(int g) const;
    void AddConflict(CloudConflict conflict);
    std::set<int> Overtaken(const CloudReply& reply, std::int64_t id, CCloudItem& item);
    void DropEqual();
    void Dropped(std::set<int>& number, std::int64_t group, std::int64_t ticket);
    CCloudTable& TableOf(CloudKind kind);
    void FieldsOf(CloudKind kind, CCloudItem& item, std::uint32_t bit, vex::String& text);

    CloudTables& tables_;
    CLibGps& book_;
    BookEdits& edits_;
    CloudState state_;
    DerivedPositions derived_{book_};  // in a pull, also one that broke off
    ConflictList conflicts_{state_.conflicts, state_.lastConflict};
    int settling_ = 0;
};

}  // namespace gpsproject
