// SurveyDevice: the program, which stores, syncs and crashes.
#include "tests/host/cloud/schedules/SurveyDevice.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <iostream>
#include <string_view>
#include <utility>

namespace test {

namespace {

using gpsproject::Project;
using gpsproject::ProjectError;

constexpr const char* kBook = "/d/book";

struct Interrupted {};

}  // namespace

SurveyDevice::Counts SurveyDevice::counts;
bool SurveyDevice::tell = false;

SurveyDevice::SurveyDevice(SharedSurvey& survey, TagSource& tags, int number, std::mt19937& random)
    : survey_(survey),
      tags_(tags),
      random_(random),
      line_(survey, random),
      sender_{number, "device " + std::to_string(number)},
      disk_(std::make_unique<ModelDisk>()) {}

SurveyDevice::~SurveyDevice() = default;

std::string SurveyDevice::Where() const {
    return "device " + std::to_string(sender_.device) + ", edit " +
           std::to_string(first_ + static_cast<long>(states_.size()) - 1);
}

void SurveyDevice::Tell(const std::string& what) const {
    if (tell) std::cout << Where() << ": " << what << '\n';
}

void SurveyDevice::Start(bool makes, int groups) {
    project_ = std::make_unique<Project>(Project::kNewestVersion, *disk_);
    gpssync::LinkBook(*project_, line_, "memory", "survey", makes);
    for (int g = 0; g < groups; ++g) {
        CGrpGps& group = *GetBook().AddGrp(false);
        Created(group);
        for (int p = Below(3); p > 0; --p) Created(*GetBook().AddPun(g, false), TagOf(group));
    }
    project_->GetSettings()[kStep] = "0";
    states_ = {model_};
    project_->SaveAs(kBook, false);
    disk_->SyncAll();
}

// --- the program -------------------------------------------------------------------------------------------

// What was done until now comes back, whatever happens.
void SurveyDevice::Stored() {
    first_ += static_cast<long>(states_.size()) - 1;
    states_ = {model_};
}

template <class Do>
void SurveyDevice::OnDisk(Do work) {
    try {
        work();
    } catch (const ProjectError& error) {
        ++counts.diskFaults;
        // A disk that does not tell how a file is now makes it look like another one.
        EXPECT_TRUE(error.GetKind() == ProjectError::Kind::system ||
                    error.GetKind() == ProjectError::Kind::changedOutside)
            << error.what();
        Tell(error.what());
        if (fatal_) return Crash(OneIn(2));
        MendDisk();
    }
}

void SurveyDevice::Store() {
    OnDisk([&] {
        project_->GetEdits().Commit();
        Stored();
    });
}

void SurveyDevice::Save() {
    OnDisk([&] {
        project_->Save();
        Tell("saved");
        Stored();
    });
}

void SurveyDevice::SyncUntil(int step, bool crash) {
    ++counts.syncs;
    bool pulled = false;
    const auto next = [&](const char* what) {
        if (std::string_view(what) == "pull") pulled = true;
        if (std::string_view(what) == "send" && pulled) ++counts.computed;
        // What is sent is on the disk before, and all that was edited before it.
        Tell(what);
        NoteCommit();
        line_.SetKnown(project_->GetCloud().GetState().revision);
        if (std::string_view(what) == "send") Stored();
        if (std::string_view(what) == "store the answer") CheckToldOfClashes();
        if (step >= 0 && step-- == 0) throw Interrupted{};
    };
    OnDisk([&] {
        try {
            gpssync::Sync(*project_, line_, sender_, next);
            Stored();
        } catch (const Interrupted&) {
            ++counts.interrupted;
            if (crash) Crash(OneIn(2));
        } catch (const gpssync::TransportError& error) {
            ++counts.failed;
            Tell(error.what());
            EXPECT_EQ(error.GetKind(), gpssync::TransportError::Kind::noAnswer) << error.what();
        }
    });
    Check();
}

void SurveyDevice::Sync(int interruptedOneIn) {
    const bool interrupted = interruptedOneIn > 0 && OneIn(interruptedOneIn);
    SyncUntil(interrupted ? Below(12) : -1, OneIn(2));
}

// A commit under way holds what was edited until it began.
void SurveyDevice::NoteCommit() {
    if (const CloudCommit* commit = project_->GetCloud().GetCommit())
        commits_.try_emplace(commit->id, first_ + static_cast<long>(states_.size()) - 1);
}

void SurveyDevice::BeginCommit() {
    project_->GetCloud().BeginCommit(gpssync::RandomHex());
    NoteCommit();
    Store();
}

void SurveyDevice::Send() {
    if (const CloudCommit* commit = project_->GetCloud().GetCommit())
        answer_ = survey_.Commit(sender_, *commit);
}

void SurveyDevice::TakeAnswer() {
    if (!answer_) Send();  // it was lost
    if (!answer_) return;
    EXPECT_TRUE(project_->GetCloud().TakeAnswer(*answer_, sender_.device));
    answer_.reset();
    Store();
}

void SurveyDevice::Pull() {
    if (project_->GetCloud().GetCommit()) return;
    PullRequest request = project_->GetCloud().GetPullRequest();
    for (bool last = false; !last; Store()) {
        const PullPage page = survey_.GetServer().Pull(survey_.GetKey(), sender_, request);
        project_->GetCloud().TakePage(page);
        last = page.last;
        request.upTo = page.upTo;
        request.next = page.next;
    }
}

void SurveyDevice::Crash(bool power) {
    ++counts.crashes;
    Tell(power ? "power lost" : "crash");
    if (power) ++counts.losses;
    std::unique_ptr<ModelDisk> after = power ? disk_->AfterPowerLoss(random_) : nullptr;
    project_.reset();
    if (after) disk_ = std::move(after);
    MendDisk();
    Reopen();
}

void SurveyDevice::CloseAndOpen() {
    MendDisk();
    Store();
    const std::string before = WholeState();
    project_.reset();
    Reopen();
    EXPECT_TRUE(WholeState() == before) << Where() << ": the book is not as it was when it was closed";
}

void SurveyDevice::Reopen() {
    line_.HangUp();
    answer_.reset();
    project_ = Project::Open(kBook, Project::Mode::write, *disk_);
    ASSERT_FALSE(project_->GetReport().IsDamaged())
        << sender_.author << ": " << project_->GetReport().damages.front().what;
    if (project_->GetReplay().edits > 0) ++counts.back;
    const long step = static_cast<long>(WholeOf(project_->GetSettings()[kStep]));
    const long last = first_ + static_cast<long>(states_.size()) - 1;
    ASSERT_GE(step, first_) << sender_.author << ": what was stored did not come back";
    ASSERT_LE(step, last);
    model_ = states_[static_cast<std::size_t>(step - first_)];
    states_ = {model_};
    first_ = step;
    Tell("opened");
    Check();
}

void SurveyDevice::BreakDisk(long at, bool once) {
    fatal_ = !once;
    disk_->ResetOperations();
    if (once)
        disk_->SetFault([at](long n, const std::string&) { return n == at ? ENOSPC : 0; });
    else
        disk_->SetFault([at](long n, const std::string&) { return n >= at ? EIO : 0; });
}

void SurveyDevice::MendDisk() {
    fatal_ = false;
    disk_->SetFault({});
}

void SurveyDevice::Act(const Habits& habits) {
    if (habits.diskFaultOneIn > 0 && OneIn(habits.diskFaultOneIn)) BreakDisk(Below(20), OneIn(2));
    int g = 0;
    switch (Below(32)) {
        case 0:
            AddGroup();
            break;
        case 1:
        case 2:
        case 3:
        case 4:
            if (SomeGroup(g)) AddPoint(g);
            break;
        case 5:
            if (OneIn(2)) Delete({SomePlace().g, -1});
            break;
        case 6:
            Delete(SomePlace());
            break;
        case 7:
            SwapSomething();
            break;
        case 8:
            if (OneIn(2)) GiveBadText(SomePlace());
            break;
        case 9:
            SettleSomething();
            break;
        case 10:
        case 11:
            Store();
            break;
        case 12:
            Save();
            break;
        case 13:
            OneIn(2) ? CloseAndOpen() : Crash(OneIn(2));
            break;
        case 14:
            if (OneIn(4)) ChangeMap();
            break;
        case 15:
        case 16:
        case 17:
        case 18:
        case 19:
        case 20:
            Sync(habits.interruptedOneIn);
            break;
        default:
            ChangeSomething();
            break;
    }
    if (!fatal_) return;
    MendDisk();  // what was broken was not met
}

}  // namespace test
