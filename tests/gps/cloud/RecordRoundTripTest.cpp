// Random books through records and replies: on the other side the same add records.
#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <vector>

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
    if (map.GetDatArSize(2, 3) == 0) map.AddDat(2, 3);
    for (int g = 0; g < book.GetGrpArSize(); ++g) {
        CGrpGps& group = *book.GetGrpAt(g);
        MakeCarriable<CGrpGps>(group);
        group.SetNomeGrp(WithoutSeparators(group.GetNomeGrp()));
        CConvCoord& conversion = *group.GetConvCoord();
        MakeCarriable(conversion.GetConvDtBaseGps());
        if (!map.GetDatAt(conversion.GetImp(3), conversion.GetImp(4), conversion.GetImp(5))) {
            conversion.SetImp(3, 2);
            conversion.SetImp(4, 3);
            conversion.SetImp(5, g % map.GetDatArSize(2, 3));
        }
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

/// The six covariances of a point that a record carries, square metres.
std::vector<float> Covariances(const CPunGps& point) {
    return {point.GetPosCov_xx(), point.GetPosCov_xy(), point.GetPosCov_xz(),
            point.GetPosCov_yy(), point.GetPosCov_yz(), point.GetPosCov_zz()};
}

/// `covariances`: of the point, which are its last fields; none for a group. What a record can carry of them
/// comes back within one unit of 1e-9 square metres.
void ExpectSame(const Reply& sent, const Reply& back, const std::vector<float>& covariances) {
    const bool group = covariances.empty();
    const std::size_t first = sent.size() - covariances.size();
    ASSERT_EQ(sent.size(), back.size());
    for (std::size_t i = 0; i < sent.size(); ++i) {
        const bool origin = group && (i == sent.size() - 16 || i == sent.size() - 15);
        const std::string_view one = sent[i].View(), two = back[i].View();
        if (i >= first) {
            // One that 32 bits do not hold was sent as another, of any size: back as the nearest float of
            // that.
            const bool fits = covariances[i - first] > -2.147F;
            ASSERT_NEAR(std::min(Number(sent[i]), 1e9), Number(back[i]), fits ? 1 : 128)
                << "covariance, field " << i;
        } else if (origin && one != "NULLVAL") {
            ASSERT_NEAR(Number(sent[i]), Number(back[i]), 1e-9) << "origin, field " << i;
        } else if (!origin && !(one == "-0" && two == "0")) {  // the two are equal: a setter stores nothing
            ASSERT_EQ(one, two) << "field " << i;
        }
    }
}

TEST(RecordRoundTrip, RandomBooksComeBackAsTheyWere) {
    const long books = Scaled(2'000);
    long points = 0, groups = 0, travelled = 0;
    for (long seed = 1; seed <= books; ++seed) {
        CloudBook here;
        RandomBook(static_cast<unsigned>(seed)).Fill(here.lib, here.map);
        MakeCarriable(here.lib, here.map);
        CloudBook there;
        // Each group by itself: the records of all refer to one map library.
        for (int g = 0; g < here.lib.GetGrpArSize(); ++g, ++groups) {
            vex::String record;
            here.bases.GetFields(*here.lib.GetGrpAt(g), 0x1FFF, record);
            Reply fields = Split(record.View());
            ASSERT_EQ(fields.size(), 84u);
            if (!TravelsWithOrigin(*here.lib.GetGrpAt(g)->GetConvCoord()->GetConvLocal())) continue;
            ++travelled;
            fields.insert(fields.begin(), {std::to_string(1 + g), "9"});
            ASSERT_TRUE(there.bases.UpdateSuccessful_Edit(fields));
            CCloudItem* item = nullptr;
            ASSERT_TRUE(there.bases.FindItem(1 + g, item));
            vex::String back;
            there.bases.GetFields(*static_cast<CGrpGps*>(item), 0x1FFF, back);
            ExpectSame(Split(record.View()), Split(back.View()), {});
            for (int p = 0; p < here.lib.GetPunArSize(g); ++p, ++points) {
                here.points.GetFields(*here.lib.GetPunAt(g, p), 0x1FFFF, record);
                Reply reply = Split(record.View());
                reply.insert(reply.begin(), {std::to_string(1 + points), std::to_string(1 + g)});
                ASSERT_TRUE(there.points.UpdateSuccessful_Edit(reply));
                ASSERT_TRUE(there.points.FindItem(1 + points, item));
                there.points.GetFields(*static_cast<CPunGps*>(item), 0x1FFFF, back);
                Reply other = Split(back.View());
                other.insert(other.begin(), {std::to_string(1 + points), std::to_string(1 + g)});
                ExpectSame(reply, other, Covariances(*here.lib.GetPunAt(g, p)));
            }
            if (HasFatalFailure()) FAIL() << "book " << seed << ", group " << g;
        }
    }
    EXPECT_GT(travelled * 4, groups * 3) << "few origins have no way through their projection";
    EXPECT_GT(points, books * 4);
}

}  // namespace
