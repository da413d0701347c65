// The envelope of the host's own records: forms to come, and damage.
#include "host/base/RecordEnvelope.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tests/Bytes.h"

namespace {

using test::Bytes;
using test::Dump;

// A record of two numbers, and one number behind it.
struct Read {
    std::int32_t form = 0, a = 0, b = 0, behind = 0;
    bool ok = false;
    std::int64_t failedAt = 0;

    explicit Read(const std::string& bytes) {
        ifpstream in(bytes.data(), bytes.size(), 1400);
        ReadEnvelope(in, [&](ifpstream& payload, std::int32_t f) {
            form = f;
            a = payload.ReadInt();
            b = payload.ReadInt();
        });
        behind = in.ReadInt();
        ok = in.IsOk();
        failedAt = in.GetFailPosition();
    }
};

TEST(RecordEnvelope, FormAndLengthStandBeforeThePayload) {
    ofpstream out(742);
    short version = 0;
    WriteEnvelope(out, 3, [&](ofpstream& payload) {
        version = payload.GetVersion();
        payload.WriteString("ab");
        payload.WriteUChar(9);
    });
    EXPECT_EQ(Dump(out.GetBytes()), Dump(Bytes().I32(3).I32(7).Text("ab").U8(9).Get()));
    EXPECT_EQ(version, 742) << "the payload knows the stream's version";
}

TEST(RecordEnvelope, PayloadComesBack) {
    const Read read(Bytes().I32(1).I32(8).I32(10).I32(20).I32(30));
    EXPECT_EQ(read.form, 1);
    EXPECT_EQ(read.a, 10);
    EXPECT_EQ(read.b, 20);
    EXPECT_EQ(read.behind, 30);
    EXPECT_TRUE(read.ok);
}

TEST(RecordEnvelope, FieldsOfALaterFormArePassedOver) {
    const Read read(Bytes().I32(2).I32(15).I32(10).I32(20).Raw("unknown").I32(30));
    EXPECT_EQ(read.form, 2);
    EXPECT_EQ(read.a, 10);
    EXPECT_EQ(read.b, 20);
    EXPECT_EQ(read.behind, 30);
    EXPECT_TRUE(read.ok);
}

TEST(RecordEnvelope, PayloadThatIsTooShortIsAFailureAndTakesNothingOfTheNext) {
    const Read read(Bytes().I32(1).I32(4).I32(10).I32(30).I32(40));
    EXPECT_EQ(read.a, 10);
    EXPECT_EQ(read.b, 0);
    EXPECT_EQ(read.behind, 30);
    EXPECT_FALSE(read.ok);
    EXPECT_EQ(read.failedAt, 12);
}

TEST(RecordEnvelope, NegativeLengthIsNone) {
    for (const std::int32_t length : {-1, std::numeric_limits<std::int32_t>::min()}) {
        const Read read(Bytes().I32(1).I32(length).I32(30).I32(40));
        EXPECT_EQ(read.a, 0);
        EXPECT_EQ(read.b, 0);
        EXPECT_EQ(read.behind, 30);
        EXPECT_FALSE(read.ok);
    }
}

TEST(RecordEnvelope, LengthBeyondTheStreamEndsAtItsEnd) {
    for (const std::int32_t length : {13, std::numeric_limits<std::int32_t>::max()}) {
        const Read read(Bytes().I32(1).I32(length).I32(10).I32(20).I32(30));
        EXPECT_EQ(read.a, 10);
        EXPECT_EQ(read.b, 20);
        EXPECT_EQ(read.behind, 0);
        EXPECT_FALSE(read.ok);
        EXPECT_EQ(read.failedAt, 16) << "where the rest of the payload should be";
    }
}

TEST(RecordEnvelope, ReadsBeyondAPayloadCountForTheLimit) {
    const std::string bytes = Bytes().I32(1).I32(0).I32(30);
    ifpstream in(bytes.data(), bytes.size(), 1400);
    in.SetPastEndLimit(10);
    EXPECT_THROW(ReadEnvelope(in,
                              [](ifpstream& payload, std::int32_t) {
                                  for (;;) payload.ReadInt();
                              }),
                 StreamExhausted);
    EXPECT_EQ(in.ReadInt(), 30) << "the stream's own end holds again";
}

}  // namespace
