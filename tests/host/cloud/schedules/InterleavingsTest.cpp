// Three devices, each with one edit of the same group or point, and every order of what they do.
//
// What a device does by itself (it edits, begins a commit, takes an answer, stores) has no effect on the
// others: orders differ by when the server takes the commits and answers the pulls, and by where among its
// own steps a device edits.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <random>

#include "tests/Scale.h"
#include "tests/host/cloud/schedules/SurveyDevice.h"

namespace {

using test::SharedSurvey;
using test::SurveyDevice;
using test::Tag;

constexpr int kDevices = 3;

enum class Act { setPoint, deletePoint, deleteGroup, addPoint };
constexpr int kActs = 4;

/// When a device edits: before it begins its commit, while that is on its way, before it pulls, after it has.
enum class When { first, underWay, answered, last };
constexpr int kWhens = 4;

/// Each device's number stands twice: where its commit is taken, and where its pull is answered.
using Order = std::array<int, 2 * kDevices>;

std::vector<Order> AllOrders() {
    std::vector<Order> orders;
    Order order{0, 0, 1, 1, 2, 2};
    do orders.push_back(order);
    while (std::next_permutation(order.begin(), order.end()));
    return orders;
}

struct Interleaving {
    std::array<Act, kDevices> acts;
    std::array<When, kDevices> whens;
    Order order;
    int restarted, restartedAt;  // a device, and one of its steps; 5 and above: none is
    bool power;
};

class Team {
public:
    Team() : survey_(2) {
        for (int i = 0; i < kDevices; ++i) {
            devices_.push_back(std::make_unique<SurveyDevice>(survey_, tags_, 21 + i, random_));
            devices_.back()->Start(i == 0, 0);
        }
    }

    void Run(const Interleaving& one) {
        Prepare();
        std::array<bool, kDevices> sent{};
        for (const int i : one.order) {
            SurveyDevice& device = At(i);
            int step = sent[static_cast<std::size_t>(i)] ? 2 : 0;
            const auto next = [&] {
                if (i == one.restarted && step == one.restartedAt) device.Crash(one.power);
                ++step;
            };
            const auto edit = [&](When when) {
                if (one.whens[static_cast<std::size_t>(i)] == when)
                    Edit(device, one.acts[static_cast<std::size_t>(i)]);
            };
            if (!sent[static_cast<std::size_t>(i)]) {
                sent[static_cast<std::size_t>(i)] = true;
                edit(When::first);
                next();
                device.BeginCommit();
                edit(When::underWay);
                next();
                device.Send();
            } else {
                next();
                device.TakeAnswer();
                edit(When::answered);
                next();
                device.Pull();
                edit(When::last);
                next();
            }
            device.Check();
        }
        for (int round = 0; round < 2; ++round)
            for (const auto& device : devices_) device->SyncWhole();
        for (const auto& device : devices_) EXPECT_FALSE(device->HasToSend());
    }

    void Check() { test::CheckTogether(survey_, devices_); }
    SharedSurvey& GetSurvey() { return survey_; }

private:
    SurveyDevice& At(int i) { return *devices_[static_cast<std::size_t>(i)]; }

    // A group and a point that all have, and a point of each device with a change that waits.
    void Prepare() {
        SurveyDevice& first = At(0);
        group_ = first.AddGroup();
        const auto add = [&] { return first.AddPoint(first.PlaceOf(group_).g); };
        point_ = add();
        std::array<Tag, kDevices> own{};
        for (Tag& tag : own) tag = add();
        for (const auto& device : devices_) device->SyncWhole();
        for (int i = 0; i < kDevices; ++i) {
            At(i).Change(At(i).PlaceOf(own[static_cast<std::size_t>(i)]), CHG_PUN_QUA);
            At(i).Store();
        }
    }

    void Edit(SurveyDevice& device, Act act) {
        const auto group = device.PlaceOf(group_), point = device.PlaceOf(point_);
        switch (act) {
            case Act::setPoint:
                if (point.g >= 0) device.Change(point, CHG_NOME);
                break;
            case Act::deletePoint:
                device.Delete(point);
                break;
            case Act::deleteGroup:
                device.Delete(group);
                break;
            case Act::addPoint:
                if (group.g >= 0) device.AddPoint(group.g);
                break;
        }
        device.Store();
    }

    std::mt19937 random_{1};
    test::TagSource tags_;
    SharedSurvey survey_;
    test::SurveyDevices devices_;
    Tag group_ = 0, point_ = 0;
};

/// All there are, by number. Restarts go round among them.
Interleaving At(long number) {
    static const std::vector<Order> orders = AllOrders();
    const auto draw = [&number](int below) {
        const int digit = static_cast<int>(number % below);
        number /= below;
        return digit;
    };
    const int restart = static_cast<int>(number % 31);
    Interleaving one{};
    one.order = orders[static_cast<std::size_t>(draw(static_cast<int>(orders.size())))];
    for (Act& act : one.acts) act = static_cast<Act>(draw(kActs));
    for (When& when : one.whens) when = static_cast<When>(draw(kWhens));
    one.restarted = restart % kDevices;
    one.restartedAt = restart / kDevices / 2;
    one.power = restart / kDevices % 2 != 0;
    return one;
}

constexpr long kInterleavings = 90L * kActs * kActs * kActs * kWhens * kWhens * kWhens;
constexpr long kShards = 8;

class Interleavings : public testing::TestWithParam<long> {};

TEST_P(Interleavings, EndAlikeAndLoseNothing) {
    // Where not all are run, those that are come from everywhere: the factor has no divisor in common with
    // the number.
    constexpr long kSpread = 7919;
    constexpr long kOfOneTeam = 12;
    constexpr long kAll = kInterleavings / kShards;
    const long count = ScaledSessions(kAll) == kAll ? kAll : ScaledSessions(kAll) / 4;
    long clashes = 0, refused = 0;
    for (long i = 0; i < count && !HasFailure();) {
        Team team;
        for (long k = 0; k < kOfOneTeam && i < count && !HasFailure(); ++k, ++i) {
            const long number = (i * kShards + GetParam()) * kSpread % kInterleavings;
            SCOPED_TRACE("interleaving " + std::to_string(number));
            team.Run(At(number));
        }
        team.Check();
        clashes += team.GetSurvey().clashes;
        refused += team.GetSurvey().refused;
    }
    EXPECT_GT(clashes, 0);
    EXPECT_GT(refused, 0);
}

INSTANTIATE_TEST_SUITE_P(Parts, Interleavings, testing::Range(0L, kShards));

}  // namespace
