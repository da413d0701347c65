// Several values in one go: the same bytes as one by one, wherever a window ends.
#include "platform/base/BlockWriter.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/Bytes.h"
#include "tests/host/base/StreamParts.h"

namespace {

using test::Bytes;
using test::Dump;
using test::MemorySink;

constexpr std::size_t kWindow = 256 * 1024;

void WriteOneOfEach(ofpstream& out, std::size_t atMost) {
    BlockWriter block(out, atMost);
    block.WriteUChar(0xFE);
    block.WriteShort(-2);
    block.WriteUShort(0xFEDC);
    block.WriteInt(-3);
    block.WriteUInt(0x89ABCDEFu);
    block.WriteInt64(-4);
    block.WriteFloat(0.1f);
    block.WriteDouble(-1.5);
}

Bytes OneOfEach() {
    return Bytes().Hex("fe feff dcfe fdffffff efcdab89 fcffffffffffffff cdcccc3d 000000000000f8bf");
}

TEST(BlockWriter, BytesAreThoseOfTheValues) {
    ofpstream out(1400);
    WriteOneOfEach(out, OneOfEach().Size());
    out.WriteUChar(1);
    EXPECT_EQ(Dump(out.GetBytes()), Dump(OneOfEach().U8(1).Get()));
    EXPECT_EQ(out.GetPosition(), static_cast<std::int64_t>(OneOfEach().Size()) + 1);
}

TEST(BlockWriter, LessMayBeWrittenThanWasAskedFor) {
    ofpstream out(1400);
    WriteOneOfEach(out, 4096);
    { const BlockWriter nothing(out, 100); }
    out.WriteUChar(1);
    EXPECT_EQ(Dump(out.GetBytes()), Dump(OneOfEach().U8(1).Get()));
}

TEST(BlockWriter, NothingIsLostWhereAWindowEnds) {
    for (const std::size_t atMost : {OneOfEach().Size(), std::size_t{4096}}) {
        for (std::size_t offset = 0; offset <= atMost; offset += atMost / 40 + 1) {
            MemorySink sink;
            ofpstream out(sink, 1400);
            out.WriteUChar('.');  // makes the window, so that the rest fills it
            const std::string lead(kWindow - 1 - offset, '.');
            out.WriteBytes(lead.data(), lead.size());
            WriteOneOfEach(out, atMost);
            out.WriteUChar('!');
            ASSERT_TRUE(out.Close());
            ASSERT_EQ(Dump(sink.taken.substr(lead.size() + 1)), Dump(OneOfEach().U8('!').Get()))
                << atMost << ", " << offset;
        }
    }
}

TEST(BlockWriter, MemoryGrowsForIt) {
    ofpstream out(1400);
    Bytes expected;
    for (int i = 0; i < 1000; ++i) {
        WriteOneOfEach(out, 4096);
        expected.Raw(OneOfEach());
    }
    EXPECT_TRUE(out.GetBytes() == expected.Get());
}

}  // namespace
