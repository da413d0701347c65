// Random books through records and replies: on the other side the same add records.
#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

#include "tests/Scale.h"
#include "tests/gps/cloud/CloudBook.h"
#include "tests/gps/persist/RandomBook.h"

namespace {

using test::CloudBook;
using test::Join;
using test::Lines;
using test::RandomBook;
using test::Reply;
using test::Split;

/// What no record carries, a record of such text cannot be split again.
std::string WithoutSeparators(std::string text) {
    for (char& c : text)
        if (c == ';' || c == '\r' || c == '\n') c = '_';
    return text;
}

template <class Item>
void MakeCarriable(Item& item) {
    item.SetNome(WithoutSeparators(item.GetNome()));
    item.SetSecScri(WithoutSeparators(item.GetSecScri()));
}

void MakeCarriable(CDatumConv* datum) {
    if (datum) datum->SetNome(WithoutSeparators(datum->GetNome()));
}

void MakeCarriable(CLibGps& book, CLibMap& map) {
    MakeCarriable(map.GetConvDtBaseGps());
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        CGrpGps& group = *book.GetGrpAt(g);
        MakeCarriable<CGrpGps>(group);
        group.SetNomeGrp(WithoutSeparators(group.GetNomeGrp()));
        CConvCoord& conversion = *group.GetConvCoord();
        MakeCarriable(conversion.GetConvDtBaseGps());
        MakeCarriable(map.GetDatAt(conversion.GetImp(3), conversion.GetImp(4), conversion.GetImp(5)));
        for (int p = 0; p < book.GetPunArSize(g); ++p) MakeCarriable<CPunGps>(*book.GetPunAt(g, p));
    }
}

double Number(const vex::String& text) {
    double value = 0;
    std::from_chars(text.c_str(), text.c_str() + text.GetLength(), value);
    return value;
}

/// The origin of the local system has a way through the projection and back. Random projections may have
/// none, and one that is defined by text has no place in a record.
bool TravelsWithOrigin(const CConvLocal& local) {
    if (local.GetProiezPla().IsDefinizioneText()) return false;
    double o1, o2, o3, o4, g1, g2, h, x, y;
    local.GetOrigin(o1, o2, o3, o4);
    return !local.GetCoordGraf(o1, o2, g1, g2) || (local.GetProiezPla().GrafToPlan(g1, g2, 0, x, y, h) &&
                                                   std::abs(x - o1) < 1e-6 && std::abs(y - o2) < 1e-6);
}

/// The record of a covariance loses at most one unit each way.
void ExpectSame(const Reply& sent, const Reply& back, std::size_t from, bool group) {
    ASSERT_EQ(sent.size(), back.size());
    for (std::size_t i = from; i < sent.size(); ++i) {
        const std::size_t covariances = group ? sent.size() : 23;
        const bool origin = group && (i == sent.size() - 16 || i == sent.size() - 15);
        const std::string_view one = sent[i].View(), two = back[i].View();
        if (i >= covariances) {
            // One below -2.147 was sent as another, which may be above 1.
            ASSERT_NEAR(std::min(Number(sent[i]), 1e9), Number(back[i]), 128) << "covariance, field " << i;
        } else if (origin && one != "NULLVAL") {
            ASSERT_NEAR(Number(sent[i]), Number(back[i]), 1e-9) << "origin, field " << i;
        } else if (!origin && !(one == "-0" && two == "0")) {  // the two are equal: a setter stores nothing
            ASSERT_EQ(one, two) << "field " << i;
        }
    }
}

TEST(RecordRoundTrip, RandomBooksComeBackAsTheyWere) {
    const long books = Scaled(2'000);
    long points = 0;
    for (long seed = 1; seed <= books; ++seed) {
        CloudBook here;
        RandomBook(static_cast<unsigned>(seed)).Fill(here.lib, here.map);
        MakeCarriable(here.lib, here.map);
        CloudBook there;
        // Each group by itself: the records of all refer to one map library.
        for (int g = 0; g < here.lib.GetGrpArSize(); ++g) {
            vex::String record;
            here.bases.GetFields(*here.lib.GetGrpAt(g), 0x1FFF, record);
            Reply fields = Split(record.View());
            if (fields.size() != 84) continue;  // a missing datum
            if (!TravelsWithOrigin(*here.lib.GetGrpAt(g)->GetConvCoord()->GetConvLocal())) continue;
            fields.insert(fields.begin(), {std::to_string(1 + g), "9"});
            ASSERT_TRUE(there.bases.UpdateSuccessful_Edit(fields));
            CCloudItem* item = nullptr;
            ASSERT_TRUE(there.bases.FindItem(1 + g, item));
            vex::String back;
            there.bases.GetFields(*static_cast<CGrpGps*>(item), 0x1FFF, back);
            ExpectSame(Split(record.View()), Split(back.View()), 0, true);
            for (int p = 0; p < here.lib.GetPunArSize(g); ++p, ++points) {
                here.points.GetFields(*here.lib.GetPunAt(g, p), 0x1FFFF, record);
                Reply reply = Split(record.View());
                reply.insert(reply.begin(), {std::to_string(1 + points), std::to_string(1 + g)});
                ASSERT_TRUE(there.points.UpdateSuccessful_Edit(reply));
                ASSERT_TRUE(there.points.FindItem(1 + points, item));
                there.points.GetFields(*static_cast<CPunGps*>(item), 0x1FFFF, back);
                Reply other = Split(back.View());
                other.insert(other.begin(), {std::to_string(1 + points), std::to_string(1 + g)});
                ExpectSame(reply, other, 0, false);
            }
            if (HasFatalFailure()) FAIL() << "book " << seed << ", group " << g;
        }
    }
    EXPECT_GT(points, books) << "the test did something";
}

}  // namespace
