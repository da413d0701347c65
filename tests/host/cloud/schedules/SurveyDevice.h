// SurveyDevice: an installation with a book of a shared project, and what its user did beside it.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/cloud/Sync.h"
#include "host/project/Project.h"
#include "tests/host/cloud/schedules/SharedSurvey.h"
#include "tests/host/project/ModelDisk.h"

namespace test {

/// What the user of a device did, as far as it has to be found again.
struct UserModel {
    std::map<Tag, Tag> created;  // and the group of points; 0: a group
    std::set<Tag> deleted;
    std::vector<std::pair<Tag, std::string>> mapChanges;  // with which group, and its conversion then
    std::set<Tag> settled;  // given up, or added again as others, when a conflict was decided
    /// A value that the server has not confirmed, and the number of the edit that set it.
    struct Waiting {
        std::string text;
        long edit = 0;
    };
    std::map<Tag, std::map<std::uint32_t, Waiting>> pending;  // by change bit
};

/// Tags of all devices.
struct TagSource {
    Tag last = 0;
    Tag Next() { return ++last; }
};

class SurveyDevice {
public:
    struct Place {
        int g = -1, p = -1;  // p: -1 for a group
    };

    SurveyDevice(SharedSurvey& survey, TagSource& tags, int number, std::mt19937& random);
    ~SurveyDevice();

    /// A new book with some groups and points, or none, is linked to the project. The first device makes it.
    void Start(bool makes, int groups);

    gpsproject::Project& GetProject() { return *project_; }
    CLibGps& GetBook() { return project_->GetBook(); }
    BadLine& GetLine() { return line_; }
    const UserModel& GetModel() const { return model_; }
    int GetNumber() const { return sender_.device; }
    const std::string& GetName() const { return sender_.author; }

    /// Where an item is in the book; g is -1 when it is not there.
    Place PlaceOf(Tag tag);

    // --- what the user does: each is one edit ----------------------------------------------------------

    Tag AddGroup();
    Tag AddPoint(int g);
    void Change(Place place, std::uint32_t bit);
    void ChangeSomething();
    void ChangeMap();
    void GiveBadText(Place place);
    void Delete(Place place);
    void SwapSomething();
    void SettleSomething();

    /// Texts that no record can carry are replaced.
    void RepairTexts();
    /// All kept conflicts are added again as new; returns how many.
    int AddAllAgain();

    // --- what the program does -----------------------------------------------------------------------------

    void Store();  // the journal
    void Save();

    /// One in so many syncs is interrupted between two steps.
    void Sync(int interruptedOneIn);

    /// Interrupted before step number `step`, counted from 0, and then crashed or not.
    void SyncUntil(int step, bool crash);
    void SyncWhole() { SyncUntil(-1, false); }

    // A sync in single steps; each is stored when it returns. Pull ends without effect while a commit is not
    // answered.
    void BeginCommit();
    void Send();
    void TakeAnswer();
    void Pull();

    /// The program ends as it is, or with the power lost, and is started again.
    void Crash(bool power);
    void CloseAndOpen();

    /// From operation `at` of the disk on everything fails, and what throws for it ends in a crash; `once`:
    /// only that operation fails, and the program goes on.
    void BreakDisk(long at, bool once);
    void MendDisk();

    /// How much goes wrong; 0: nothing.
    struct Habits {
        int interruptedOneIn = 0;
        int diskFaultOneIn = 0;
    };

    /// Something, at random.
    void Act(const Habits& habits);

    // --- checks ---------------------------------------------------------------------------------------

    /// Nothing that is not confirmed was lost, nothing deleted came back, each item is there once and under
    /// its own id.
    void Check();

    /// The book is what the server has; `map`: with the map library.
    void CheckSameAs(const std::map<Tag, SharedSurvey::Item>& everything, bool map = true);

    bool HasToSend() { return project_->GetCloud().HasToSend(); }

    /// Tags in conflicts that keep what was deleted.
    std::set<Tag> KeptTags();

    struct Counts {
        long edits = 0, syncs = 0, failed = 0, interrupted = 0, crashes = 0, losses = 0, back = 0,
             settled = 0, held = 0, diskFaults = 0, computed = 0;
    };
    static Counts counts;

    /// Writes what happens to the standard output.
    static bool tell;

private:
    int Below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
    bool OneIn(int n) { return Below(n) == 0; }
    bool SomeGroup(int& g);
    Place SomePlace();

    template <class Do>
    void Edit(Do edit);
    void Stored();
    void Created(CGrpGps& group);
    void Created(CPunGps& point, Tag group);
    void Changed(CGrpGps& group, std::uint32_t bits);
    void Changed(CPunGps& point, std::uint32_t bits);
    void ComputePosition(Place place);
    bool IsOfFix(Place place);
    void NoteCommit();
    void CheckPending(Tag tag, std::map<std::uint32_t, UserModel::Waiting>& values, Place place);
    bool IsKept(Tag tag, std::uint32_t bit, const std::string& value);
    const std::vector<KeptFields>& KeptIn(const gpsproject::CloudConflict& conflict);
    void CheckToldOfClashes();
    std::string WholeState();
    void ForgetAnswered();
    bool TakeTheirs(const gpsproject::CloudConflict& conflict);
    bool AddAgain(const gpsproject::CloudConflict& conflict);
    void KeepAsItIs(const gpsproject::CloudConflict& conflict);
    void Reopen();
    template <class Do>
    void OnDisk(Do work);
    std::string Where() const;
    void Tell(const std::string& what) const;

    SharedSurvey& survey_;
    TagSource& tags_;
    std::mt19937& random_;
    BadLine line_;
    Sender sender_;
    std::unique_ptr<ModelDisk> disk_;
    std::unique_ptr<gpsproject::Project> project_;

    std::map<std::string, std::vector<KeptFields>> kept_;  // by record: reading one takes a book
    std::map<std::string, long> commits_;                  // of this device, and the last edit before each
    std::optional<CommitAnswer> answer_;                   // that was sent, and not taken

    UserModel model_;
    // Setting that counts the edits: it tells which of them came back.
    static constexpr const char* kStep = "step";

    // After each edit since the last one that is surely stored, which is number first_.
    std::vector<UserModel> states_;
    long first_ = 0;
    bool fatal_ = false;  // what fails next ends in a crash
};

using SurveyDevices = std::vector<std::unique_ptr<SurveyDevice>>;

/// After all was sent and taken: all have the same, values that were taken are there or in the history, and
/// each item that was made is there, was deleted by somebody, or waits in a conflict.
void CheckTogether(SharedSurvey& survey, const SurveyDevices& devices);

}  // namespace test
