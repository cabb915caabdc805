#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "Device.h"
#include "Q7CalAPI.h"
#include "SimControl.h"
#include "console_capture.h"

namespace {

using q7sim::Dsd;
using q7sim::Nvm;

class SimDsdWriteTest : public SimulatedDeviceTest {
protected:
    std::string Write(uint32_t key, std::vector<uint8_t> bytes, uint32_t address, uint32_t *written = nullptr)
    {
        uint32_t count = 0;
        std::string status = Text(
            Q7_WriteDSDBytes(hCal, key, bytes.data(), static_cast<uint32_t>(bytes.size()), address, &count));
        if (written != nullptr)
            *written = count;
        return status;
    }

    std::vector<uint8_t> Section(uint32_t section)
    {
        const uint8_t *bytes = device().dsd.nvm.Section(section);
        return std::vector<uint8_t>(bytes, bytes + Nvm::kSectionSize);
    }

    std::vector<uint8_t> Buffer() { return std::vector<uint8_t>(device().dsd.buffer(), device().dsd.buffer() + 32768); }
};

TEST_F(SimDsdWriteTest, AKeyIsRandomNonzeroAndGoodForOneWrite)
{
    uint32_t first = Q7_RequestDSDWriteKey(hCal);
    uint32_t second = Q7_RequestDSDWriteKey(hCal);
    EXPECT_NE(first, 0u);
    EXPECT_NE(second, 0u);
    EXPECT_NE(first, second);

    std::vector<uint8_t> before = Section(0);
    char text[128];
    std::snprintf(text, sizeof text, "DSD write key %08X was not issued by the device", first);
    EXPECT_EQ(Write(first, {1, 2}, 0x100), text) << "a new request replaces the key before it";
    EXPECT_EQ(Write(0, {1, 2}, 0x100), "DSD write key 00000000 is not a key: request one with Q7_RequestDSDWriteKey");
    EXPECT_TRUE(Contains(Write(second ^ 1, {1, 2}, 0x100), "was not issued by the device"));
    EXPECT_EQ(Section(0), before) << "refused keys change nothing";

    EXPECT_EQ(Write(second, {1, 2}, 0x100), "(success)") << "a refused key leaves the issued key good";
    std::snprintf(text, sizeof text, "DSD write key %08X has already been used: each key is good for one write", second);
    EXPECT_EQ(Write(second, {3, 4}, 0x100), text);
    EXPECT_EQ(ReadDsd(0x100, 2), (std::vector<uint8_t>{1, 2}));

    // A write that fails for another reason leaves the key unused.
    uint32_t key = Q7_RequestDSDWriteKey(hCal);
    EXPECT_EQ(Write(key, {1}, 0x10000), "DSD write of 1 bytes at 0x10000 goes beyond DSD section 0 (0x0000-0xFFFF)");
    EXPECT_EQ(Write(key, {5}, 0x100), "(success)");
}

TEST_F(SimDsdWriteTest, AKeyExpiresAfterItsLifetimeInDeviceTime)
{
    ASSERT_EQ(Q7_SetOptionByID(hCal, 5, 100), nullptr);  // 100 ms: 20 operations of 5 ms
    uint32_t key = Q7_RequestDSDWriteKey(hCal);
    for (int i = 0; i < 20; i++)
        ReadDsd(0, 1);
    char text[128];
    std::snprintf(text, sizeof text, "DSD write key %08X has expired (lifetime 100 ms)", key);
    EXPECT_EQ(Write(key, {1}, 0x100), text);
}

TEST_F(SimDsdWriteTest, TheNvmModeChoosesTheSectionOrTheBufferAndReadOnlyRefuses)
{
    std::vector<uint8_t> buffer = Buffer();
    ASSERT_EQ(Write(Q7_RequestDSDWriteKey(hCal), {0xAA}, 0x100), "(success)");
    EXPECT_EQ(Section(0)[0x100], 0xAA) << "mode 0 writes the NVM's current section";
    EXPECT_EQ(Buffer(), buffer);

    for (uint32_t mode : {1u, 2u}) {
        std::vector<uint8_t> section = Section(0);
        ASSERT_EQ(Q7_SetOptionByID(hCal, Q7_OPTION_NVM_MODE, mode), nullptr);
        ASSERT_EQ(Write(Q7_RequestDSDWriteKey(hCal), {static_cast<uint8_t>(mode)}, 0x100), "(success)");
        EXPECT_EQ(Buffer()[0x100], mode) << "modes 1 and 2 write the DSD buffer";
        EXPECT_EQ(Section(0), section);
    }

    ASSERT_EQ(Q7_SetOptionByID(hCal, Q7_OPTION_NVM_MODE, 0), nullptr);
    ASSERT_EQ(Q7_SelectCurrentDSDSection(hCal, 2), nullptr);
    std::vector<uint8_t> factory = Section(2);
    uint32_t key = Q7_RequestDSDWriteKey(hCal);
    EXPECT_EQ(Write(key, {0}, 0x100), "DSD section 2 is read-only");
    uint32_t written = 0;
    Flash2xBytesWithHeader header{0, 4096, 3};
    EXPECT_EQ(Text(Q7_WriteFlash2xBytesWithHeader(hCal, key, nullptr, 0, 0, &header, 3, 1, &written)),
              "DSD section 2 is read-only");
    EXPECT_EQ(Text(Q7_WriteDSDRegionByID(hCal, key, 4, 0, nullptr, &written)), "DSD section 2 is read-only");
    EXPECT_EQ(Section(2), factory);
}

TEST_F(SimDsdWriteTest, ARawWriteInvalidatesItsBlockAndARegionWriteKeepsItValid)
{
    q7sim::ByteRange cal = q7sim::FactoryBlockPlace(q7sim::kBlockCal);
    ASSERT_EQ(Write(Q7_RequestDSDWriteKey(hCal), {0x42}, cal.offset + 20), "(success)");
    ASSERT_EQ(Q7_LoadDSD(hCal, Dsd::kLoadFromNvm), nullptr);
    EXPECT_EQ(BlockValidity()[q7sim::kBlockCal], 0) << "the checksum commands say so";

    const uint8_t data[4] = {9, 8, 7, 6};
    uint32_t size = 0, written = 0, returned = 0;
    ASSERT_EQ(Q7_GetDSDRegionSizeByID(hCal, 4, &size), nullptr);
    ASSERT_EQ(Q7_WriteDSDRegionByID(hCal, Q7_RequestDSDWriteKey(hCal), 4, 4, data, &written), nullptr);
    EXPECT_EQ(written, 4u);
    std::vector<uint8_t> region(size, 0xEE);
    ASSERT_EQ(Q7_ReadDSDRegionByID(hCal, 4, size, region.data(), &returned), nullptr);
    std::vector<uint8_t> expected(size, 0);
    std::memcpy(expected.data(), data, sizeof data);
    EXPECT_EQ(region, expected) << "written from the start, the rest zeroed";
    ASSERT_EQ(Q7_LoadDSD(hCal, Dsd::kLoadFromNvm), nullptr);
    EXPECT_EQ(BlockValidity(), std::vector<uint8_t>(12, 1));
    EXPECT_EQ(Text(Q7_WriteDSDRegionByID(hCal, Q7_RequestDSDWriteKey(hCal), 4, size + 1, region.data(), &written)),
              "DSD region 4 holds " + std::to_string(size) + " bytes, not " + std::to_string(size + 1));
}

TEST_F(SimDsdWriteTest, AFlash2xWriteLaysOutDataGapAndHeaderInTheNvmOnly)
{
    std::vector<uint8_t> data(16, 0x5A);
    Flash2xBytesWithHeader header{0, 4096, 3};
    uint32_t written = 0;
    ASSERT_EQ(Text(Q7_WriteFlash2xBytesWithHeader(hCal, Q7_RequestDSDWriteKey(hCal), data.data(), 16, 0x100, &header, 3,
                                                  1, &written)),
              "(success)");
    EXPECT_EQ(written, 16u);
    q7sim::Flash2xHeader stored = device().dsd.nvm.Header(0);
    EXPECT_EQ(stored.imageSize, 4096u);
    EXPECT_EQ(stored.priority, 3u);
    EXPECT_EQ(ReadDsd(65532, 4), (std::vector<uint8_t>{0x7E, 0x1A, 0x0D, 0x5D}));
    EXPECT_EQ(ReadDsd(0x110, 4), std::vector<uint8_t>(4, 0xFF));

    uint32_t key = Q7_RequestDSDWriteKey(hCal);
    EXPECT_EQ(Text(Q7_WriteFlash2xBytesWithHeader(hCal, key, data.data(), 16, 0xFFF8, &header, 3, 1, &written)),
              "Flash 2.x data block of 16 bytes at offset 0xFFF8 goes beyond the 64 KB image");
    EXPECT_EQ(Text(Q7_WriteFlash2xBytesWithHeader(hCal, key, data.data(), 16, 0, &header, 3, 3, &written)),
              "Flash 2.x write mode 3 is out of range (1-2)");
    EXPECT_EQ(Text(Q7_WriteFlash2xBytesWithHeader(hCal, key, data.data(), 16, 0, &header, 2, 1, &written)),
              "Flash 2.x header record of 2 words: 3 expected");
    ASSERT_EQ(Q7_SetOptionByID(hCal, Q7_OPTION_NVM_MODE, 1), nullptr);
    EXPECT_EQ(Text(Q7_WriteFlash2xBytesWithHeader(hCal, key, data.data(), 16, 0, &header, 3, 1, &written)),
              "Flash 2.x image writes need NVM mode 0: NVM mode 1 addresses the DSD buffer");
}

TEST_F(SimDsdWriteTest, DataFaultsActOnTheCallTheyArePlannedFor)
{
    std::vector<uint8_t> before = ReadDsd(0x100, 4);
    q7sim::control::FlipBitOnRead("Q7_ReadDSDBytes", 2, 5, 0x80);
    EXPECT_EQ(ReadDsd(0x100, 4), before);
    std::vector<uint8_t> flipped = before;
    flipped[1] ^= 0x80;  // byte 5 of 4
    EXPECT_EQ(ReadDsd(0x100, 4), flipped);
    EXPECT_EQ(ReadDsd(0x100, 4), before) << "the store itself is untouched";

    uint32_t written = 0;
    q7sim::control::IgnoreWrite("Q7_WriteDSDBytes", 1);
    EXPECT_EQ(Write(Q7_RequestDSDWriteKey(hCal), {1, 2, 3, 4}, 0x100, &written), "(success)");
    EXPECT_EQ(written, 4u);
    EXPECT_EQ(ReadDsd(0x100, 4), before);

    q7sim::control::StopWriteAfter("Q7_WriteDSDBytes", 1, 2);
    std::vector<uint8_t> data = {static_cast<uint8_t>(~before[0]), static_cast<uint8_t>(~before[1]),
                                 static_cast<uint8_t>(~before[2]), static_cast<uint8_t>(~before[3])};
    EXPECT_EQ(Write(Q7_RequestDSDWriteKey(hCal), data, 0x100, &written), "(success)");
    EXPECT_EQ(written, 2u);
    EXPECT_EQ(ReadDsd(0x100, 4), (std::vector<uint8_t>{data[0], data[1], before[2], before[3]}));

    q7sim::control::FailCall("Q7_WriteDSDBytes", 2, "NVM write failed");
    EXPECT_EQ(Write(Q7_RequestDSDWriteKey(hCal), {7}, 0x100), "(success)");
    EXPECT_EQ(Write(Q7_RequestDSDWriteKey(hCal), {8}, 0x100), "NVM write failed");
    EXPECT_EQ(Write(Q7_RequestDSDWriteKey(hCal), {9}, 0x100), "(success)");
}

}  // namespace
