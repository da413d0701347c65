// Several devices edit one survey, and everything goes wrong that can: what is confirmed is never lost, what
// is not waits, and in the end all have the same.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <random>
#include <vector>

#include "tests/Scale.h"
#include "tests/host/cloud/schedules/SurveyDevice.h"

namespace {

using test::SharedSurvey;
using test::SurveyDevice;
using test::TagSource;

class Schedule {
public:
    explicit Schedule(unsigned seed) : random_(seed), survey_(PageSize()) {
        const int devices = 2 + Below(4);
        for (int i = 0; i < devices; ++i) {
            devices_.push_back(std::make_unique<SurveyDevice>(survey_, tags_, 11 + i, random_));
            devices_.back()->Start(i == 0, i == 0 ? 1 + Below(2) : Below(4) == 0 ? 1 : 0);
        }
    }

    void Run() {
        const SurveyDevice::Habits habits{3, Below(2) == 0 ? 12 : 0};
        for (const auto& device : devices_) device->GetLine().SetOneIn(4);
        const int steps = 8 + Below(40);
        for (int i = 0; i < steps && !testing::Test::HasFailure(); ++i)
            devices_[random_() % devices_.size()]->Act(habits);
        for (const auto& device : devices_) {
            device->GetLine().SetOneIn(0);
            device->MendDisk();
        }
        BringTogether();
        test::CheckTogether(survey_, devices_);
        if (testing::Test::HasFailure()) return;
        long again = 0;
        for (const auto& device : devices_) again += device->AddAllAgain();
        if (again == 0) return;
        kept += again;
        BringTogether();
        test::CheckTogether(survey_, devices_);
    }

    SharedSurvey& GetSurvey() { return survey_; }
    long kept = 0;

private:
    int Below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
    std::size_t PageSize() {
        static constexpr std::size_t sizes[] = {1, 2, 3, 7, 10'000};
        return sizes[random_() % 5];
    }

    /// Without mishaps, until nothing waits.
    void BringTogether() {
        // What one sends in the last round but one, all have after the last.
        for (int round = 0; round < 3; ++round) {
            for (const auto& device : devices_) {
                device->RepairTexts();
                device->SyncWhole();
            }
        }
        for (const auto& device : devices_)
            EXPECT_FALSE(device->HasToSend()) << device->GetName() << " has something to send for ever";
    }

    std::mt19937 random_;
    TagSource tags_;
    SharedSurvey survey_;
    test::SurveyDevices devices_;
};

constexpr unsigned kShards = 20;
constexpr long kSchedules = 200'000;

class Schedules : public testing::TestWithParam<unsigned> {};

// GPS_SCHEDULE=number runs that one alone.
TEST_P(Schedules, EndAlikeAndLoseNothing) {
    const char* given = std::getenv("GPS_SCHEDULE");
    const long count = given ? 1 : ScaledSessions(kSchedules / kShards);
    long kept = 0, refused = 0, clashes = 0, repeated = 0;
    SurveyDevice::counts = {};
    SurveyDevice::tell = given != nullptr;
    for (long i = 0; i < count && !HasFailure(); ++i) {
        const auto seed = given ? static_cast<unsigned>(test::WholeOf(given))
                                : GetParam() * 1'000'000U + static_cast<unsigned>(i);
        SCOPED_TRACE("GPS_SCHEDULE=" + std::to_string(seed));
        Schedule schedule(seed);
        schedule.Run();
        kept += schedule.kept;
        refused += schedule.GetSurvey().refused;
        clashes += schedule.GetSurvey().clashes;
        repeated += schedule.GetSurvey().repeated;
    }
    if (count < 1000) return;
    // What never came about was not tested.
    EXPECT_GT(kept, 0);
    EXPECT_GT(refused, 0);
    EXPECT_GT(clashes, 0);
    EXPECT_GT(repeated, 0);
    EXPECT_GT(SurveyDevice::counts.losses, 0);
    EXPECT_GT(SurveyDevice::counts.back, 0);
    EXPECT_GT(SurveyDevice::counts.held, 0);
    EXPECT_GT(SurveyDevice::counts.diskFaults, 0);
    EXPECT_GT(SurveyDevice::counts.settled, 0);
    EXPECT_GT(SurveyDevice::counts.computed, 0);
    for (const auto& [name, times] : {std::pair("kept", kept),
                                      {"refused", refused},
                                      {"clashes", clashes},
                                      {"repeated", repeated},
                                      {"crashes", SurveyDevice::counts.crashes}})
        RecordProperty(name, std::to_string(times));
}

INSTANTIATE_TEST_SUITE_P(Parts, Schedules, testing::Range(0U, kShards));

}  // namespace
