// The current group: where new measurements go.
#include <gtest/gtest.h>

#include "tests/gps/model/Book.h"

namespace {

using test::Book;
using test::DeviceId;

// A book whose groups were made by these devices.
struct Devices : Book {
    Devices(std::initializer_list<int> creators, bool isCloud) {
        project.SetCloud(isCloud);
        for (const int creator : creators) lib.AddGrp(false)->SetCloudCreatorDevId(creator);
    }
};

TEST(CurrentGroup, IsTheLastOneOfThisDeviceInACloudProject) {
    const DeviceId device(4);
    struct Row {
        const char* name;
        std::initializer_list<int> creators;
        bool isCloud;
        int current;  // -1: none
    };
    const Row rows[] = {
        {"no group", {}, true, -1},
        {"no group, no cloud", {}, false, -1},
        {"the last is ours", {9, 4, 4}, true, 2},
        {"the last is another's", {4, 4, 9}, true, 1},
        {"only the first is ours", {4, 9, 9}, true, 0},
        {"none is ours", {9, 8, 7}, true, -1},
        {"without cloud the last, whoever made it", {4, 4, 9}, false, 2},
        {"without cloud none need be ours", {9}, false, 0},
    };
    for (const Row& row : rows) {
        Devices book(row.creators, row.isCloud);
        EXPECT_EQ(book.lib.GetCurrGrp(), row.current < 0 ? nullptr : book.lib.GetGrpAt(row.current))
            << row.name;
    }
}

TEST(CurrentGroup, IsTheLastOneWithoutAProject) {
    CLibGps book(nullptr, nullptr, nullptr, nullptr, 0);
    EXPECT_EQ(book.GetCurrGrp(), nullptr);
    book.AddGrp(false);
    CGrpGps* last = book.AddGrp(false);
    last->SetCloudCreatorDevId(12345);
    EXPECT_EQ(book.GetCurrGrp(), last);
}

TEST(CurrentGroup, NewGroupIsOursAtOnce) {
    const DeviceId device(4);
    Devices book({4, 9}, true);
    CGrpGps* added = book.lib.AddGrp(false);
    EXPECT_EQ(book.lib.GetCurrGrp(), added);
}

TEST(CurrentGroup, FollowsTheDeviceId) {
    Devices book({4, 9}, true);
    {
        const DeviceId device(4);
        EXPECT_EQ(book.lib.GetCurrGrp(), book.lib.GetGrpAt(0));
    }
    const DeviceId device(9);
    EXPECT_EQ(book.lib.GetCurrGrp(), book.lib.GetGrpAt(1));
}

TEST(CurrentGroup, DeviceIsAskedOncePerCallInTheCloudOrNot) {
    CCloudManager& manager = *CCloudManager::GetInstance();
    CLibGps alone(nullptr, nullptr, nullptr, nullptr, 0);
    Devices cloud({1, 2, 3, 4, 5}, true), local({1, 2}, false);
    for (CLibGps* book : {&alone, &cloud.lib, &local.lib}) {
        const int calls = manager.GetDevIdCalls();
        book->GetCurrGrp();
        EXPECT_EQ(manager.GetDevIdCalls(), calls + 1);
        book->GetCurrGrp();
        EXPECT_EQ(manager.GetDevIdCalls(), calls + 2);
    }
}

TEST(CurrentGroup, LastPointIsThatOfTheCurrentGroup) {
    const DeviceId device(4);
    Devices book({4, 4, 9}, true);
    EXPECT_EQ(book.lib.GetLastPun(), nullptr);
    book.lib.AddPun(0, false);
    book.lib.AddPun(2, false);
    EXPECT_EQ(book.lib.GetLastPun(), nullptr) << "the current group is empty, though others are not";
    book.lib.AddPun(1, false);
    CPunGps* last = book.lib.AddPun(1, false);
    EXPECT_EQ(book.lib.GetLastPun(), last);
    book.project.SetCloud(false);
    EXPECT_EQ(book.lib.GetLastPun(), book.lib.GetPunAt(2, 0));
}

TEST(CurrentGroup, NoGroupHasNoLastPointAndNoConversion) {
    CLibGps book(nullptr, nullptr, nullptr, nullptr, 0);
    EXPECT_EQ(book.GetLastPun(), nullptr);
    EXPECT_EQ(book.GetCurrConvCoord(), nullptr);
    EXPECT_EQ(book.GetCurrValidConvCoord(), nullptr);
}

TEST(CurrentGroup, ConversionIsThatOfTheCurrentGroup) {
    const DeviceId device(4);
    Devices book({4, 4, 9}, true);
    EXPECT_EQ(book.lib.GetCurrConvCoord(), book.lib.GetGrpAt(1)->GetConvCoord());
}

TEST(CurrentGroup, ValidConversionNeedsReadinessAndTheCode) {
    Book book;
    book.Fill({0});
    CGrpGps& group = *book.lib.GetGrpAt(0);
    CConvCoord* conversion = group.GetConvCoord();
    EXPECT_EQ(book.lib.GetCurrValidConvCoord(), nullptr);
    conversion->SetImp(CConvCoord::impPronta, 1);
    EXPECT_EQ(book.lib.GetCurrValidConvCoord(), nullptr) << "bit 0 of the code is missing";
    group.SetCodeElab(2);
    EXPECT_EQ(book.lib.GetCurrValidConvCoord(), nullptr);
    group.SetCodeElab(3);
    EXPECT_EQ(book.lib.GetCurrValidConvCoord(), conversion);
    conversion->SetImp(CConvCoord::impPronta, 0);
    EXPECT_EQ(book.lib.GetCurrValidConvCoord(), nullptr);
    EXPECT_EQ(book.lib.GetCurrConvCoord(), conversion) << "whatever its validity";
}

}  // namespace
