#include <gtest/gtest.h>

#include <cstdint>
#include <numeric>
#include <vector>

#include "console_capture.h"
#include "data_utils.h"

namespace {

// Rows of sixteen are pinned by the DSD reading sessions; only an offset
// beyond the 64 KB section needs more than four digits.
TEST(HexByteDump, OffsetsGrowBeyondFourDigits)
{
    std::vector<uint8_t> bytes(20);
    std::iota(bytes.begin(), bytes.end(), 0);
    EXPECT_EQ(RunWithInput("", [&] { Q7_HexByteDump(bytes.data(), 0x1FFF8, 20); }),
              "1FFF8:  00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F\n"
              "20008:  10 11 12 13\n");
}

TEST(CompareBlocks, ComparesFromEachSideOffsetAndNamesBothIndexes)
{
    const uint8_t readBack[] = {9, 9, 9, 9, 0xAA, 0xBB, 0xCC};
    const uint8_t expected[] = {0xAA, 0x00, 0xCC};
    uint32_t errors = 0;
    std::string output = RunWithInput("", [&] { errors = CompareBlocks(readBack, expected, 4, 0, 3); });
    EXPECT_EQ(errors, 1u);
    EXPECT_EQ(output, "\nRead back [00000005] = BB - Expected [00000001] = 00 - Verify ERROR\n");

    EXPECT_EQ(RunWithInput("", [&] { errors = CompareBlocks(expected, expected, 0, 0, 3); }), "");
    EXPECT_EQ(errors, 0u);
}

TEST(CompareFill, MatchingFillPrintsNothingAndAFillAbove255NeverMatches)
{
    const uint8_t erased[] = {0xFF, 0xFF, 0xFF, 0xFF};
    uint32_t errors = 1;
    EXPECT_EQ(RunWithInput("", [&] { errors = CompareFill(erased, 0, 4, 0xFF); }), "");
    EXPECT_EQ(errors, 0u);

    std::string output = RunWithInput("", [&] { errors = CompareFill(erased, 2, 2, 0x1FF); });
    EXPECT_EQ(errors, 2u);
    EXPECT_EQ(output,
              "\nRead back [00000002] = FF - Expected 1FF - Verify ERROR"
              "\nRead back [00000003] = FF - Expected 1FF - Verify ERROR\n");
}

TEST(FromBigEndianUINT32, ReadsMostSignificantByteFirstAndIsItsOwnInverse)
{
    const uint8_t stored[] = {0x11, 0x22, 0x33, 0x44};
    uint32_t raw = 0;
    memcpy(&raw, stored, sizeof raw);
    EXPECT_EQ(FromBigEndianUINT32(raw), 0x11223344u);
    EXPECT_EQ(FromBigEndianUINT32(FromBigEndianUINT32(0xDEADBEEF)), 0xDEADBEEFu);
}

}  // namespace
