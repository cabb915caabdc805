#include <gtest/gtest.h>

#include <cstdint>
#include <numeric>
#include <vector>

#include "console_capture.h"
#include "data_utils.h"
#include "scripted_rand.h"

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

TEST(FromBigEndianUINT32, ReadsMostSignificantByteFirstAndIsItsOwnInverse)
{
    const uint8_t stored[] = {0x11, 0x22, 0x33, 0x44};
    uint32_t raw = 0;
    memcpy(&raw, stored, sizeof raw);
    EXPECT_EQ(FromBigEndianUINT32(raw), 0x11223344u);
    EXPECT_EQ(FromBigEndianUINT32(FromBigEndianUINT32(0xDEADBEEF)), 0xDEADBEEFu);
}

// Three draws of the C library's generator, mixed as the data patterns are
// specified to be; a mix of zero is never a value.
TEST(Q7_rand32, MixesThreeDrawsOfRand)
{
    srand(12345);
    uint32_t r1 = (uint32_t)rand(), r2 = (uint32_t)rand(), r3 = (uint32_t)rand();
    srand(12345);
    EXPECT_EQ(Q7_rand32(), (((r1 << 15) ^ r2) << 2) ^ r3);
    // Draws that mix to zero give all 32 bits set instead.
    ScriptRand({1, 0x8000, 0});
    EXPECT_EQ(Q7_rand32(), 0xFFFFFFFFu);
    ScriptRand({0, 1, 4});
    EXPECT_EQ(Q7_rand32(), 0xFFFFFFFFu);
}

}  // namespace
