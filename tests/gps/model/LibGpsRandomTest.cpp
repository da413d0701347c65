// The field book against a plain model of it, one random operation after the other.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/Scale.h"
#include "tests/gps/model/Book.h"
#include "tests/gps/model/ChangeWatch.h"

namespace {

struct ModelGroup {
    CGrpGps* group;
    int creator;
    std::vector<CPunGps*> points;
};

template <class T>
void EraseAt(std::vector<T>& list, int at) {
    list.erase(list.begin() + at);
}

class Simulation {
public:
    Simulation() : book_(kDrawing) {
        other_.Fill({3, 2});
        book_.lib.AddListener([this](int, int, VEXNotifyObject::CNotifyData*) { ++notified_; });
    }

    void Step();
    void CheckAll();
    const std::string& LastOperation() const { return last_; }

    /// How often something worth testing came about: a test that never gets there proves nothing.
    long made = 0, deleted = 0, found = 0, notFound = 0, goneGroups = 0, goneOwners = 0, current = 0;

private:
    static constexpr long long kDrawing = 90210;
    static constexpr int kMaxGroups = 24, kMaxPoints = 60;
    static constexpr int kUntouched = -77;

    int Random(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random_); }
    bool OneIn(int n) { return Random(n) == 0; }
    /// A position from two below the first to two beyond the last, now and then an absurd one.
    int Position(int size) { return OneIn(50) ? (OneIn(2) ? INT_MIN : INT_MAX) : Random(size + 4) - 2; }
    int Groups() const { return static_cast<int>(model_.size()); }
    bool Has(int g) const { return g >= 0 && g < Groups(); }
    ModelGroup& At(int g) { return model_[static_cast<std::size_t>(g)]; }
    int Points(int g) { return Has(g) ? static_cast<int>(At(g).points.size()) : 0; }
    bool Has(int g, int p) { return Has(g) && p >= 0 && p < Points(g); }
    CPunGps* PointAt(int g, int p) { return Has(g, p) ? At(g).points[static_cast<std::size_t>(p)] : nullptr; }
    int PlaceOf(const CGrpGps* group) const;

    void GroupEdit();
    void PointEdit();
    void InsertGroup(int i, bool append);
    void DeleteGroup(int i);
    void InsertPoint(int g, int p, bool append);
    void DeletePoint(int g, int p, bool byPointer);
    void Reserve();
    void FindGroup();
    void FindPoint();
    void ExpectPoint(CPunGps* point, CGrpGps* owner);
    void ReadPositions();
    void ReadCurrent();

    std::mt19937 random_{19840601};
    test::Book book_, other_;
    test::ChangeWatch changes_;
    std::vector<ModelGroup> model_;
    std::vector<CCloudItem*> groupsByAge_, pointsByAge_;  // those in the tables' added items
    std::vector<CGrpGps*> gone_;                          // pointers to destroyed groups

    struct Copy {
        std::unique_ptr<CPunGps> point;
        CGrpGps* owner;
    };
    std::vector<Copy> copies_;  // detached copies of points, whose groups may be gone
    int notified_ = 0;
    std::string last_;
};

int Simulation::PlaceOf(const CGrpGps* group) const {
    for (int i = 0; i < Groups(); ++i)
        if (model_[static_cast<std::size_t>(i)].group == group) return i;
    return -1;
}

void Simulation::Step() {
    switch (Random(20)) {
        case 0:
            return GroupEdit();
        case 1:
        case 2:
        case 3:
        case 4:
        case 5:
        case 6:
            return PointEdit();
        case 7:
            return Reserve();
        case 8:
        case 9:
        case 10:
            return FindGroup();
        case 11:
        case 12:
        case 13:
        case 14:
        case 15:
            return FindPoint();
        case 16:
            return ReadCurrent();
        default:
            return ReadPositions();
    }
}

void Simulation::GroupEdit() {
    const int i = Position(Groups());
    const int kind = Random(6);
    if (kind < 3) return InsertGroup(i, kind == 0);
    if (kind == 3 || Groups() > kMaxGroups) return DeleteGroup(i);
    if (kind == 4 && Groups() > 0) {
        last_ = "swap groups";
        const int a = Random(Groups()), b = Random(Groups());
        book_.lib.GrpGpsSwap(a, b);
        std::swap(At(a), At(b));
        return;
    }
    last_ = "another device";
    const int creator = 1 + Random(3);
    if (CGrpGps* group = book_.lib.GetGrpAt(i)) {
        group->SetCloudCreatorDevId(creator);
        At(i).creator = creator;
    }
}

void Simulation::InsertGroup(int i, bool append) {
    last_ = append ? "add group" : "insert group";
    const bool fromCloud = OneIn(5);
    CGrpGps* group = append ? book_.lib.AddGrp(fromCloud) : book_.lib.InsGrpAt(i, fromCloud);
    const int at = append ? Groups() : i;
    ASSERT_EQ(group != nullptr, at >= 0 && at <= Groups());
    if (!group) return;
    ++made;
    model_.insert(model_.begin() + at, {group, CCloudManager::GetInstance()->GetDevId(), {}});
    if (!fromCloud) groupsByAge_.push_back(group);
}

void Simulation::DeleteGroup(int i) {
    last_ = "delete group";
    if (Has(i)) {
        for (CPunGps* point : At(i).points) std::erase(pointsByAge_, point);
        std::erase(groupsByAge_, At(i).group);
        gone_.push_back(At(i).group);
        if (gone_.size() > 50) EraseAt(gone_, 0);
        ++deleted;
    }
    book_.lib.DelGrpAt(i);
    if (Has(i)) EraseAt(model_, i);
}

void Simulation::PointEdit() {
    const int g = OneIn(10) ? Position(Groups()) : Random(Groups() + 1);
    const int p = Position(Points(g));
    switch (Random(8)) {
        case 0:
            return InsertPoint(g, p, true);
        case 1:
        case 2:
            return InsertPoint(g, p, false);
        case 3:
            return DeletePoint(g, p, true);
        case 4:
            if (!OneIn(2) && Points(g) < kMaxPoints) return InsertPoint(g, p, false);
            return DeletePoint(g, p, false);
        case 5: {
            if (Points(g) == 0) return;
            last_ = "swap points";
            const int a = Random(Points(g)), b = Random(Points(g));
            book_.lib.PunGpsSwap(g, a, b);
            std::swap(At(g).points[static_cast<std::size_t>(a)], At(g).points[static_cast<std::size_t>(b)]);
            return;
        }
        case 6: {
            if (!Has(g, p)) return;
            last_ = "copy point";
            copies_.push_back({std::make_unique<CPunGps>(*PointAt(g, p)), At(g).group});
            if (copies_.size() > 50) EraseAt(copies_, Random(50));
            return;
        }
        default:
            if (Points(g) > kMaxPoints) DeletePoint(g, Random(Points(g)), false);
    }
}

void Simulation::InsertPoint(int g, int p, bool append) {
    last_ = append ? "add point" : "insert point";
    const bool fromCloud = OneIn(5);
    CPunGps* point = append ? book_.lib.AddPun(g, fromCloud) : book_.lib.InsPunAt(g, p, fromCloud);
    const int at = append ? Points(g) : p;
    ASSERT_EQ(point != nullptr, Has(g) && at >= 0 && at <= Points(g));
    if (!point) return;
    ++made;
    At(g).points.insert(At(g).points.begin() + at, point);
    if (!fromCloud) pointsByAge_.push_back(point);
}

void Simulation::DeletePoint(int g, int p, bool byPointer) {
    CPunGps* point = PointAt(g, p);
    if (point) {
        std::erase(pointsByAge_, point);
        EraseAt(At(g).points, p);
        ++deleted;
    }
    last_ = byPointer ? "delete point by pointer" : "delete point";
    if (!byPointer) return book_.lib.DelPunAt(g, p);
    if (point) return book_.lib.DelPunAt(point);
    book_.lib.DelPunAt(copies_.empty() ? other_.lib.GetPunAt(0, 1) : copies_.back().point.get());
}

void Simulation::Reserve() {
    last_ = "reserve";
    const int g = Position(Groups());
    const int n = OneIn(5) ? -Random(1000) : Random(100);
    book_.lib.GrpArReserve(n);
    ASSERT_EQ(book_.lib.GrpArAddReserve(n), n);
    book_.lib.PunArReserve(g, n);
    ASSERT_EQ(book_.lib.PunArAddReserve(g, n), Has(g) ? n : 0);
}

void Simulation::FindGroup() {
    last_ = "find group";
    CGrpGps* group = nullptr;
    const int kind = Random(10);
    if (kind == 0) {
        group = other_.lib.GetGrpAt(Random(2));
    } else if (kind < 3 && !gone_.empty()) {
        group = gone_[static_cast<std::size_t>(Random(static_cast<int>(gone_.size())))];
    } else if (kind > 3 && Groups() > 0) {
        group = At(Random(Groups())).group;
    }
    const int place = PlaceOf(group);  // another group may live at a destroyed one's address by now
    int i = kUntouched;
    ASSERT_EQ(book_.lib.GetIndiciDiGrp(group, i), place >= 0);
    ASSERT_EQ(i, place >= 0 ? place : kUntouched);
    ASSERT_EQ(book_.lib.GetPunArSize(group), place >= 0 ? Points(place) : -1);
    const int p = Position(Points(place));
    ASSERT_EQ(book_.lib.GetPunAt(group, p), PointAt(place, p));
    place >= 0 ? ++found : ++notFound;
    goneGroups += kind < 3 && kind > 0 && place < 0 ? 1 : 0;
}

void Simulation::FindPoint() {
    last_ = "find point";
    const int kind = Random(10);
    if (kind == 0) {
        CPunGps* foreign = OneIn(2) ? nullptr : other_.lib.GetPunAt(Random(2), Random(2));
        int g = kUntouched, p = kUntouched;
        ASSERT_FALSE(book_.lib.GetIndiciDiPun(foreign, g, p));
        ASSERT_EQ(g, kUntouched);
        ASSERT_EQ(p, kUntouched);
        return;
    }
    if (kind == 1 && !copies_.empty()) {
        const Copy& copy = copies_[static_cast<std::size_t>(Random(static_cast<int>(copies_.size())))];
        goneOwners += PlaceOf(copy.owner) < 0 ? 1 : 0;
        return ExpectPoint(copy.point.get(), copy.owner);
    }
    const int g = Random(Groups() + 1);
    if (Points(g) == 0) return;
    ExpectPoint(PointAt(g, Random(Points(g))), At(g).group);
}

void Simulation::ExpectPoint(CPunGps* point, CGrpGps* owner) {
    const int place = PlaceOf(owner);
    int at = -1;
    for (int k = 0; k < Points(place); ++k)
        if (PointAt(place, k) == point) at = k;
    int g = kUntouched, p = kUntouched;
    ASSERT_EQ(book_.lib.GetIndiciDiPun(point, g, p), at >= 0);
    ASSERT_EQ(g, place >= 0 ? place : kUntouched) << "the group is written even when the point is not there";
    ASSERT_EQ(p, at >= 0 ? at : kUntouched);
    at >= 0 ? ++found : ++notFound;
}

void Simulation::ReadPositions() {
    last_ = "read positions";
    const int g = Position(Groups()), p = Position(Points(g));
    ASSERT_EQ(book_.lib.GetGrpArSize(), Groups());
    ASSERT_EQ(book_.lib.GetGrpAt(g), Has(g) ? At(g).group : nullptr);
    ASSERT_EQ(book_.lib.GetPunArSize(g), Points(g));
    ASSERT_EQ(book_.lib.GetPunAt(g, p), PointAt(g, p));
}

void Simulation::ReadCurrent() {
    last_ = "current group";
    const bool isCloud = OneIn(2);
    book_.project.SetCloud(isCloud);
    const test::DeviceId device(1 + Random(4));
    CGrpGps* expected = nullptr;
    CPunGps* lastPoint = nullptr;
    for (const ModelGroup& group : model_) {
        if (isCloud && group.creator != CCloudManager::GetInstance()->GetDevId()) continue;
        expected = group.group;
        lastPoint = group.points.empty() ? nullptr : group.points.back();
    }
    ASSERT_EQ(book_.lib.GetCurrGrp(), expected);
    ASSERT_EQ(book_.lib.GetLastPun(), lastPoint);
    ASSERT_EQ(book_.lib.GetCurrConvCoord(), expected ? expected->GetConvCoord() : nullptr);
    ASSERT_EQ(book_.lib.GetCurrValidConvCoord(), nullptr);
    current += expected ? 1 : 0;
}

void Simulation::CheckAll() {
    ASSERT_EQ(book_.lib.GetGrpArSize(), Groups());
    for (int g = 0; g < Groups(); ++g) {
        ASSERT_EQ(book_.lib.GetGrpAt(g), At(g).group);
        ASSERT_EQ(book_.lib.GetPunArSize(g), Points(g));
        for (int p = 0; p < Points(g); ++p) ASSERT_EQ(book_.lib.GetPunAt(g, p), PointAt(g, p));
    }
    ASSERT_EQ(book_.bases.GetAdded(), groupsByAge_) << "groups wait in order of creation";
    ASSERT_EQ(book_.points.GetAdded(), pointsByAge_) << "points wait in order of creation";
    ASSERT_EQ(COrkaEng::GetDrawingRefUsage(kDrawing), 1 + Groups());
    ASSERT_EQ(changes_.Take(), test::ChangeWatch::Calls{});
    ASSERT_EQ(notified_, 0);
    ASSERT_FALSE(book_.lib.IsModified());
    ASSERT_EQ(other_.lib.GetPunArSize(0), 3);
}

TEST(BookRandom, OperationsDoWhatTheModelDoes) {
    Simulation simulation;
    const long operations = Scaled(1'000'000);
    for (long n = 0; n < operations; ++n) {
        simulation.Step();
        if (n % 100 == 0) simulation.CheckAll();
        if (HasFatalFailure()) {
            FAIL() << "operation " << n << ": " << simulation.LastOperation();
        }
    }
    simulation.CheckAll();
    EXPECT_GT(simulation.made, operations / 100);
    EXPECT_GT(simulation.deleted, operations / 100);
    EXPECT_GT(simulation.found, operations / 10);
    EXPECT_GT(simulation.notFound, operations / 100);
    EXPECT_GT(simulation.goneGroups, operations / 1000);
    EXPECT_GT(simulation.goneOwners, operations / 1000);
    EXPECT_GT(simulation.current, operations / 100);
}

}  // namespace
