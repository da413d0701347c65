// Checksums of a content, block by block and as a whole.
#include "host/project/BlockChecks.h"

#include <gtest/gtest.h>

#include <string>

#include "host/project/ContainerFormat.h"

namespace {

using namespace gpsproject;

std::string Content(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t x = 12345;
    for (char& byte : bytes) byte = static_cast<char>((x = x * 1664525 + 1013904223) >> 24);
    return bytes;
}

TEST(BlockChecks, WholeAndBlocksAreThoseOfTheBytesHoweverTheyCome) {
    for (const std::size_t size : {0U, 1U, 4095U, 4096U, 4097U, 8192U, 20000U}) {
        const std::string bytes = Content(size);
        for (const std::size_t step : {1U, 100U, 4096U, 5000U, 100000U}) {
            BlockChecks checks;
            for (std::size_t at = 0; at < size; at += step)
                checks.Add(bytes.data() + at, std::min<std::size_t>(step, size - at));
            EXPECT_EQ(checks.GetLength(), static_cast<std::int64_t>(size));
            EXPECT_EQ(checks.GetCrc(), Crc(bytes)) << size << " by " << step;
            std::vector<std::uint32_t> blocks;
            for (std::size_t at = 0; at < size; at += 4096) blocks.push_back(Crc(bytes.substr(at, 4096)));
            EXPECT_EQ(checks.TakeBlocks(), blocks) << size << " by " << step;
        }
    }
}

TEST(BlockChecks, BlocksWithKnownChecksumsGiveTheSameWhole) {
    const std::string bytes = Content(10000);
    BlockChecks checks;
    for (std::size_t at = 0; at < bytes.size(); at += 4096) {
        const std::string block = bytes.substr(at, 4096);
        checks.AddBlock(Crc(block), block.size());
    }
    EXPECT_EQ(checks.GetLength(), 10000);
    EXPECT_EQ(checks.GetCrc(), Crc(bytes));
}

TEST(FindWrongBit, FindsEveryBit) {
    const std::string bytes = Content(200);
    const std::uint32_t crc = Crc(bytes);
    for (std::size_t bit = 0; bit < 8 * bytes.size(); ++bit) {
        std::string damaged = bytes;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        const auto found = FindWrongBit(damaged, crc);
        ASSERT_TRUE(found) << bit;
        EXPECT_EQ(found->byte, bit / 8);
        EXPECT_EQ(found->mask, 1 << (bit % 8));
    }
}

TEST(FindWrongBit, FindsBitsAtBothEndsOfAWholeBlock) {
    const std::string bytes = Content(4096);
    for (const std::size_t byte : {0U, 1U, 4094U, 4095U}) {
        std::string damaged = bytes;
        damaged[byte] = static_cast<char>(damaged[byte] ^ 0x80);
        const auto found = FindWrongBit(damaged, Crc(bytes));
        ASSERT_TRUE(found);
        EXPECT_EQ(found->byte, byte);
        EXPECT_EQ(found->mask, 0x80);
    }
}

// Two bits differ from one bit in at least two more places, which this checksum always sees in a block.
TEST(FindWrongBit, TwoWrongBitsAreNotTakenForOne) {
    const std::string bytes = Content(64);
    const std::uint32_t crc = Crc(bytes);
    for (std::size_t a = 0; a < 512; ++a) {
        for (std::size_t b = a + 1; b < 512; ++b) {
            std::string damaged = bytes;
            damaged[a / 8] = static_cast<char>(damaged[a / 8] ^ (1 << (a % 8)));
            damaged[b / 8] = static_cast<char>(damaged[b / 8] ^ (1 << (b % 8)));
            ASSERT_FALSE(FindWrongBit(damaged, crc)) << a << " and " << b;
        }
    }
}

TEST(FindWrongBit, NothingIsWrongInWhatIsRight) { EXPECT_FALSE(FindWrongBit("hello", Crc("hello"))); }

}  // namespace
