// Addresses of groups and points.
#include "apps/gpsbook/book/Address.h"

#include <gtest/gtest.h>

#include "apps/gpsbook/commands/CommandError.h"
#include "tests/apps/gpsbook/book/SmallBook.h"

namespace gpsbook::test {
namespace {

using Places = std::vector<Place>;

/// Message and exit code of the refusal.
std::string Refusal(const CLibGps& book, const std::string& address, ExitCode code) {
    try {
        FindPlaces(book, address);
    } catch (const CommandError& e) {
        EXPECT_EQ(e.Code(), code) << address << ": " << e.what();
        return e.what();
    }
    return "accepted";
}

TEST(Address, GroupsAndPointsAreFoundByNameAndByPosition) {
    SmallBook book;
    book.Group("Quay", {"P1", "P2", "P3"});
    book.Group("Pier", {"P1"});
    EXPECT_EQ(FindPlaces(book.lib, "Pier"), (Places{{1, -1}}));
    EXPECT_EQ(FindPlaces(book.lib, "#1"), (Places{{1, -1}}));
    EXPECT_EQ(FindPlaces(book.lib, "Quay/P2"), (Places{{0, 1}}));
    EXPECT_EQ(FindPlaces(book.lib, "Quay/#2"), (Places{{0, 2}}));
    EXPECT_EQ(FindPlaces(book.lib, "#0/P3"), (Places{{0, 2}}));
    EXPECT_EQ(FindPlaces(book.lib, "#1/#0"), (Places{{1, 0}}));
}

TEST(Address, RangesTakeBothEnds) {
    SmallBook book;
    book.Group("Quay", {"A", "B", "C", "D"});
    book.Group("Pier", {"A", "B"});
    EXPECT_EQ(FindPlaces(book.lib, "Quay/#1..#2"), (Places{{0, 1}, {0, 2}}));
    EXPECT_EQ(FindPlaces(book.lib, "Quay/#2.."), (Places{{0, 2}, {0, 3}}));
    EXPECT_EQ(FindPlaces(book.lib, "Quay/#3..#3"), (Places{{0, 3}}));
    EXPECT_EQ(FindPlaces(book.lib, "#0..#1"), (Places{{0, -1}, {1, -1}}));
    EXPECT_EQ(FindPlaces(book.lib, "#0..#1/B"), (Places{{0, 1}, {1, 1}})) << "a point of each group";
    EXPECT_EQ(Refusal(book.lib, "Quay/#2..#1", exitUsage),
              "\"Quay/#2..#1\": the range runs backwards; write it #1..#2");
    EXPECT_EQ(Refusal(book.lib, "#1..#0", exitUsage),
              "\"#1..#0\": the range runs backwards; write it #0..#1");
    EXPECT_NE(Refusal(book.lib, "Quay/#2..#4", exitNotFound).find("Quay has 4 points, #0 to #3"),
              std::string::npos);
    EXPECT_NE(Refusal(book.lib, "Quay/#4..", exitNotFound).find("no point #4.."), std::string::npos);
}

TEST(Address, NamesMayHoldSlashesAndSigns) {
    SmallBook book;
    book.Group("a/b", {"c", "d/e"});
    book.Group("a", {"x", "b/d"});
    book.Group("#x", {"#y"});
    book.Group("..", {".."});
    EXPECT_EQ(FindPlaces(book.lib, "a/b"), (Places{{0, -1}}));
    EXPECT_EQ(FindPlaces(book.lib, "a/b/c"), (Places{{0, 0}}));
    EXPECT_EQ(FindPlaces(book.lib, "a/b/d/e"), (Places{{0, 1}}));
    EXPECT_EQ(FindPlaces(book.lib, "a/b/d"), (Places{{1, 1}}));
    EXPECT_EQ(FindPlaces(book.lib, "a/x"), (Places{{1, 0}}));
    EXPECT_EQ(FindPlaces(book.lib, "#x/#y"), (Places{{2, 0}}));
    EXPECT_EQ(FindPlaces(book.lib, "../.."), (Places{{3, 0}}));
}

TEST(Address, PositionWinsOverANameThatLooksLikeOne) {
    SmallBook book;
    book.Group("#1", {"#1", "P"});
    book.Group("Pier", {"A"});
    EXPECT_EQ(FindPlaces(book.lib, "#1"), (Places{{1, -1}}));
    EXPECT_EQ(FindPlaces(book.lib, "#0/#1"), (Places{{0, 1}}));
    EXPECT_EQ(FindPlaces(book.lib, "#0/#0"), (Places{{0, 0}})) << "reached by its position";
}

TEST(Address, NameThatSeveralHaveIsRefusedWithTheirPositions) {
    SmallBook book;
    book.Group("Quay", {"P1", "P1", "P2"});
    book.Group("Pier");
    book.Group("Quay", {"P3"});
    book.Group("Quay/P2");
    EXPECT_EQ(Refusal(book.lib, "Quay", exitUsage),
              "\"Quay\" names 2 of them: #0, #2; give one by its position");
    EXPECT_EQ(Refusal(book.lib, "#0/P1", exitUsage),
              "\"#0/P1\" names 2 of them: #0/#0, #0/#1; give one by its position");
    EXPECT_EQ(Refusal(book.lib, "Quay/P2", exitUsage),
              "\"Quay/P2\" names 2 of them: #3, #0/#2; give one by its position")
        << "a group of that name, and a point";
    EXPECT_EQ(FindPlaces(book.lib, "Quay/P3"), (Places{{2, 0}})) << "only one of the groups has such a point";
    EXPECT_NE(Refusal(book.lib, "Quay/#0", exitUsage).find("#0/#0, #2/#0"), std::string::npos);
}

TEST(Address, ManyOfANameAreNotAllTold) {
    SmallBook book;
    book.Group("Q", {"P", "P", "P", "P", "P", "P", "P", "P", "P", "P", "P", "P"});
    EXPECT_NE(Refusal(book.lib, "Q/P", exitUsage).find("names 12 of them: #0/#0, "), std::string::npos);
    EXPECT_NE(Refusal(book.lib, "Q/P", exitUsage).find("#0/#9, ...; give"), std::string::npos);
}

TEST(Address, WhatIsNotThereIsToldWithNamesLikeIt) {
    SmallBook book;
    book.Group("Quay", {"P1", "P2"});
    book.Group("Pier");
    EXPECT_EQ(Refusal(book.lib, "quay", exitNotFound), "there is no group \"quay\"; is it Quay?");
    EXPECT_EQ(Refusal(book.lib, "Harbour", exitNotFound),
              "there is no group \"Harbour\"; the book has 2 groups, #0 to #1");
    EXPECT_EQ(Refusal(book.lib, "Quay/P7", exitNotFound),
              "\"Quay/P7\": group Quay has no point \"P7\"; is it P1 or P2?");
    EXPECT_EQ(Refusal(book.lib, "Kuay/P1", exitNotFound), "there is no group \"Kuay\"; is it Quay?");
    EXPECT_EQ(Refusal(book.lib, "#2", exitNotFound),
              "\"#2\": there is no group #2; the book has 2 groups, #0 to #1");
    EXPECT_EQ(Refusal(book.lib, "Quay/#2", exitNotFound),
              "\"Quay/#2\": there is no point #2 in it; Quay has 2 points, #0 to #1");
    EXPECT_EQ(Refusal(book.lib, "Pier/#0", exitNotFound),
              "\"Pier/#0\": there is no point #0 in it; Pier has no points");
    EXPECT_EQ(Refusal(book.lib, "#99999999999", exitNotFound).substr(0, 33),
              "there is no group \"#99999999999\";");
    EXPECT_NE(Refusal(book.lib, "", exitUsage).find("an address is empty"), std::string::npos);
    EXPECT_NE(Refusal(SmallBook().lib, "#0", exitNotFound).find("the book has no groups"), std::string::npos);
}

TEST(Address, SeveralAddressesGiveEachPlaceOnceInTheOrderOfTheBook) {
    SmallBook book;
    book.Group("Quay", {"A", "B", "C"});
    book.Group("Pier");
    EXPECT_EQ(FindPlaces(book.lib, std::vector<std::string>{"Pier", "Quay/#1..", "Quay/C", "Quay/A"}),
              (Places{{0, 0}, {0, 1}, {0, 2}, {1, -1}}));
}

TEST(Address, OnePlaceIsAskedForWhereOneIsNeeded) {
    SmallBook book;
    book.Group("Quay", {"A", "B"});
    EXPECT_EQ(FindPlace(book.lib, "Quay/B"), (Place{0, 1}));
    EXPECT_THROW(FindPlace(book.lib, "Quay/#0.."), CommandError);
    EXPECT_EQ(FindGroup(book.lib, "Quay"), 0);
    EXPECT_THROW(FindGroup(book.lib, "Quay/A"), CommandError);
    EXPECT_EQ(FindGroups(book.lib, {"Quay"}), std::vector<int>{0});
    EXPECT_THROW(FindGroups(book.lib, {"Quay", "Quay/A"}), CommandError);
}

TEST(Address, GroupWithoutANameHasThatOfItsEntity) {
    SmallBook book;
    book.Group("", {"A"}).SetNome("base 1");
    book.Group("", {""});
    EXPECT_EQ(FindPlaces(book.lib, "base 1/A"), (Places{{0, 0}}));
    EXPECT_EQ(PlaceText(book.lib, {0, 0}), "base 1/A");
    EXPECT_EQ(PlaceText(book.lib, {1, 0}), "#1/#0");
    EXPECT_EQ(PlaceText(book.lib, {1, -1}), "#1");
}

}  // namespace
}  // namespace gpsbook::test
