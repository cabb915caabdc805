#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "Device.h"
#include "Q7CalAPI.h"
#include "SimControl.h"
#include "console_capture.h"

namespace {

using q7sim::Device;
using q7sim::Dsd;
using q7sim::Nvm;

class SimDsdTest : public SimulatedDeviceTest {
protected:
    // A raw change of the addressed DSD memory, as a byte write makes it.
    void Poke(uint32_t address, std::vector<uint8_t> bytes)
    {
        uint32_t written = 0;
        ASSERT_TRUE(device().dsd.Write(device().DsdTarget(), bytes.data(), static_cast<uint32_t>(bytes.size()), address,
                                       &written)
                        .ok());
    }

    uint32_t DsdValid()
    {
        uint32_t valid = 9;
        EXPECT_EQ(Q7_IsDSDValid(hCal, &valid), nullptr);
        return valid;
    }

    uint32_t CalibrationValid()
    {
        uint32_t valid = 9;
        EXPECT_EQ(Q7_IsCalibrationValid(hCal, &valid), nullptr);
        return valid;
    }

    std::vector<uint32_t> Bitmaps()
    {
        FlashDSDInfo info{};
        EXPECT_EQ(Q7_GetFlashDSDInfo(hCal, &info), nullptr);
        return {info.au32SectionBitmap[0], info.au32SectionBitmap[1], info.au32SectionBitmap[2]};
    }

    // The region's payload as the DSD header's directory places it.
    q7sim::ByteRange Directory(uint32_t block)
    {
        std::vector<uint8_t> entry = ReadDsd(16 + 4 * block, 4);
        uint32_t offset = static_cast<uint32_t>(entry[0] << 8 | entry[1]);
        return q7sim::ByteRange{offset + 8, static_cast<uint32_t>(entry[2] << 8 | entry[3])};
    }
};

TEST(SimDsdFormatTest, Crc16IsTheCcittCrcAndContinuesOverPieces)
{
    const uint8_t check[] = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
    EXPECT_EQ(q7sim::Crc16(check, sizeof check), 0x29B1);
    EXPECT_EQ(q7sim::Crc16(check + 4, 5, q7sim::Crc16(check, 4)), 0x29B1);
    EXPECT_EQ(q7sim::Crc16(check, 0), 0xFFFF);
}

TEST_F(SimDsdTest, TheFactoryImageIsValidAndDescribesAFlash2xDevice)
{
    EXPECT_EQ(DsdValid(), 1u);
    EXPECT_EQ(BlockValidity(), std::vector<uint8_t>(12, 1));
    EXPECT_EQ(CalibrationValid(), 1u);
    EXPECT_EQ(Bitmaps(), (std::vector<uint32_t>{0x0B, 0x03, 0x07}));

    // Every stored checksum is the CRC of its block's payload.
    uint16_t checksums[12];
    uint32_t count = 0;
    ASSERT_EQ(Q7_GetDSDChecksums(hCal, checksums, &count), nullptr);
    ASSERT_EQ(count, 12u);
    for (uint32_t block = 0; block < 12; block++) {
        q7sim::ByteRange payload = Directory(block);
        std::vector<uint8_t> bytes = ReadDsd(payload.offset, payload.length);
        EXPECT_EQ(checksums[block], q7sim::Crc16(bytes.data(), bytes.size())) << block;
        EXPECT_EQ(ReadDsd(payload.offset - 8, 1)[0], block) << "the block header names its block";
    }
}

TEST_F(SimDsdTest, ARawChangeInvalidatesItsBlockOnceLoadedAndPuttingItBackHeals)
{
    q7sim::ByteRange cal = Directory(q7sim::kBlockCal);
    uint8_t original = ReadDsd(cal.offset + 100, 1)[0];
    Poke(cal.offset + 100, {static_cast<uint8_t>(original ^ 0x01)});

    EXPECT_EQ(DsdValid(), 1u) << "the loaded copy is unchanged until the next load";
    ASSERT_EQ(Q7_LoadDSD(hCal, Dsd::kLoadFromNvm), nullptr);
    std::vector<uint8_t> valid = BlockValidity();
    for (uint32_t block = 0; block < 12; block++)
        EXPECT_EQ(valid[block], block == q7sim::kBlockCal ? 0 : 1) << block;
    EXPECT_EQ(DsdValid(), 0u);
    EXPECT_EQ(CalibrationValid(), 0u);
    EXPECT_EQ(Bitmaps()[0], 0x09u) << "section 0 no longer holds a valid DSD";

    Poke(cal.offset + 100, {original});
    ASSERT_EQ(Q7_LoadDSD(hCal, Dsd::kLoadFromNvm), nullptr);
    EXPECT_EQ(BlockValidity(), std::vector<uint8_t>(12, 1));
    EXPECT_EQ(DsdValid(), 1u);
    EXPECT_EQ(CalibrationValid(), 1u);
}

TEST_F(SimDsdTest, RegionsAreTheBlockPayloadsAndReadTheSameAsByAddress)
{
    for (int32_t id = 1; id <= 11; id++) {
        q7sim::ByteRange payload = Directory(static_cast<uint32_t>(id));
        uint32_t size = 0;
        ASSERT_EQ(Q7_GetDSDRegionSizeByID(hCal, id, &size), nullptr) << id;
        EXPECT_EQ(size, payload.length) << id;
        std::vector<uint8_t> region(size);
        uint32_t returned = 0;
        ASSERT_EQ(Q7_ReadDSDRegionByID(hCal, id, size, region.data(), &returned), nullptr);
        EXPECT_EQ(returned, size);
        EXPECT_EQ(region, ReadDsd(payload.offset, payload.length)) << id;
    }
    uint32_t size = 0;
    ASSERT_EQ(Q7_GetDSDRegionSizeByID(hCal, 4, &size), nullptr);
    EXPECT_GE(size, 3u);
    ASSERT_EQ(Q7_GetDSDRegionSizeByID(hCal, 10, &size), nullptr);
    EXPECT_GT(size, 256u) << "one region is longer than the automated dump";

    for (int32_t id : {0, 12, -1})
        EXPECT_EQ(Text(Q7_GetDSDRegionSizeByID(hCal, id, &size)),
                  "DSD region ID " + std::to_string(id) + " is unknown (1-11)");
    uint8_t byte = 0;
    uint32_t returned = 7;
    EXPECT_EQ(Text(Q7_ReadDSDRegionByID(hCal, 0, 1, &byte, &returned)), "DSD region ID 0 is unknown (1-11)");
    EXPECT_EQ(returned, 7u);
}

TEST_F(SimDsdTest, ARegionReadNeverFillsMoreThanTheBufferPassed)
{
    std::vector<uint8_t> buffer(16, 0xA5);
    uint32_t returned = 0;
    ASSERT_EQ(Q7_ReadDSDRegionByID(hCal, 10, 10, buffer.data(), &returned), nullptr);
    EXPECT_EQ(returned, 10u);
    for (size_t i = 10; i < buffer.size(); i++)
        EXPECT_EQ(buffer[i], 0xA5) << i;

    ASSERT_EQ(Q7_ReadDSDRegionByID(hCal, 10, 0, nullptr, &returned), nullptr);
    EXPECT_EQ(returned, 0u);
    EXPECT_EQ(Text(Q7_ReadDSDRegionByID(hCal, 10, 10, nullptr, &returned)), "DSD region read into a NULL buffer");
}

TEST_F(SimDsdTest, TheMacAddressAndCalibrationRecordAreTheBytesOfTheirBlocks)
{
    uint8_t mac[6];
    ASSERT_EQ(Q7_GetMACAddress(hCal, mac), nullptr);
    EXPECT_EQ(std::vector<uint8_t>(mac, mac + 6), ReadDsd(Directory(q7sim::kBlockMac).offset, 6));
    EXPECT_EQ(std::memcmp(mac, q7sim::kFactoryMacAddress, 6), 0);

    uint8_t flag = 0, vendor = 0, date[3], time[3], version[3];
    ASSERT_EQ(Q7_GetCalibrationInfo(hCal, &flag, &vendor, date, time, version), nullptr);
    std::vector<uint8_t> record = ReadDsd(Directory(q7sim::kBlockCal).offset + 2, 11);
    std::vector<uint8_t> reported{flag, vendor};
    reported.insert(reported.end(), date, date + 3);
    reported.insert(reported.end(), time, time + 3);
    reported.insert(reported.end(), version, version + 3);
    EXPECT_EQ(reported, record);
    EXPECT_EQ(flag, 1);

    // A new MAC written into the block shows once the DSD is loaded again.
    Poke(Directory(q7sim::kBlockMac).offset, {0x02, 0x00, 0x00, 0x00, 0x00, 0x07});
    ASSERT_EQ(Q7_LoadDSD(hCal, Dsd::kLoadFromNvm), nullptr);
    ASSERT_EQ(Q7_GetMACAddress(hCal, mac), nullptr);
    EXPECT_EQ(mac[5], 0x07);

    // A cleared cal flag makes the calibration invalid even with a sealed block.
    Device &dev = device();
    uint8_t *section = dev.dsd.nvm.Section(0);
    section[Directory(q7sim::kBlockCal).offset + 2] = 0;
    q7sim::SealBlock(section, q7sim::kBlockCal);
    ASSERT_EQ(Q7_LoadDSD(hCal, Dsd::kLoadFromNvm), nullptr);
    EXPECT_EQ(BlockValidity()[q7sim::kBlockCal], 1);
    EXPECT_EQ(CalibrationValid(), 0u);
}

TEST_F(SimDsdTest, TheWholeSectionImageIsAddressableWithItsFlash2xHeader)
{
    std::vector<uint8_t> erased = ReadDsd(0x8000, 0xFC00 - 0x8000);
    EXPECT_EQ(erased, std::vector<uint8_t>(erased.size(), 0xFF));

    std::vector<uint8_t> header = ReadDsd(63 * 1024, 1024);
    EXPECT_EQ(std::vector<uint8_t>(header.begin(), header.begin() + 4), (std::vector<uint8_t>{0x00, 0x00, 0x80, 0x00}));
    EXPECT_EQ(std::vector<uint8_t>(header.begin() + 4, header.begin() + 8), std::vector<uint8_t>(4, 0xFF));
    EXPECT_EQ(std::vector<uint8_t>(header.begin() + 8, header.begin() + 12), (std::vector<uint8_t>{0, 0, 0, 10}));
    EXPECT_EQ(std::vector<uint8_t>(header.begin() + 12, header.begin() + 1020), std::vector<uint8_t>(1008, 0xFF));
    EXPECT_EQ(std::vector<uint8_t>(header.begin() + 1020, header.end()), (std::vector<uint8_t>{0x7E, 0x1A, 0x0D, 0x5D}));

    EXPECT_EQ(ReadDsd(0, 65536).size(), 65536u);
    uint8_t bytes[2];
    EXPECT_EQ(Text(Q7_ReadDSDBytes(hCal, bytes, 2, 0xFFFF)),
              "DSD read of 2 bytes at 0xFFFF goes beyond DSD section 0 (0x0000-0xFFFF)");
    EXPECT_EQ(Text(Q7_ReadDSDBytes(hCal, bytes, 2, 0xFFFFFFFF)),
              "DSD read of 2 bytes at 0xFFFFFFFF goes beyond DSD section 0 (0x0000-0xFFFF)");
    EXPECT_EQ(Text(Q7_ReadDSDBytes(hCal, nullptr, 0, 0)), "(success)");
    EXPECT_EQ(Text(Q7_ReadDSDBytes(hCal, nullptr, 2, 0)), "DSD read into a NULL buffer");
}

TEST_F(SimDsdTest, TheNvmModeChoosesBetweenTheNvmAndTheDsdBuffer)
{
    std::vector<uint8_t> nvmDsd = ReadDsd(0, 32768);
    EXPECT_EQ(std::vector<uint8_t>(device().dsd.buffer(), device().dsd.buffer() + 32768), nvmDsd)
        << "the buffer starts with the DSD the device booted from";

    for (uint32_t mode : {1u, 2u}) {
        ASSERT_EQ(Q7_SetOptionByID(hCal, 7, mode), nullptr);
        uint8_t byte = 0;
        EXPECT_EQ(Text(Q7_ReadDSDBytes(hCal, &byte, 1, 0x8000)),
                  "DSD read of 1 bytes at 0x8000 goes beyond the DSD buffer (0x0000-0x7FFF)");
    }

    // The buffer, not the NVM, takes the change; a load from it shows it.
    Poke(0x1000, std::vector<uint8_t>(16, 0x00));
    EXPECT_EQ(ReadDsd(0x1000, 16), std::vector<uint8_t>(16, 0x00));
    ASSERT_EQ(Q7_LoadDSD(hCal, Dsd::kLoadFromBuffer), nullptr);
    EXPECT_EQ(BlockValidity()[q7sim::kBlockHw], 0);
    EXPECT_EQ(DsdValid(), 0u);

    ASSERT_EQ(Q7_SetOptionByID(hCal, 7, 0), nullptr);
    EXPECT_EQ(ReadDsd(0, 32768), nvmDsd);
    ASSERT_EQ(Q7_LoadDSD(hCal, Dsd::kLoadFromNvm), nullptr);
    EXPECT_EQ(DsdValid(), 1u);

    ASSERT_EQ(Q7_LoadDSD(hCal, Dsd::kLoadFromBuffer), nullptr);
    EXPECT_EQ(DsdValid(), 0u);
    ASSERT_EQ(Q7_LoadDSD(hCal, Dsd::kLoadUnchanged), nullptr);
    EXPECT_EQ(DsdValid(), 0u) << "load mode 0 leaves the loaded DSD as it is";
    EXPECT_EQ(Text(Q7_LoadDSD(hCal, 3)), "DSD load mode 3 is out of range (0-2)");
}

TEST_F(SimDsdTest, SectionsAreSelectedCopiedAndProtected)
{
    EXPECT_EQ(Text(Q7_SelectCurrentDSDSection(hCal, 3)), "DSD section 3 is out of range (0-2)");
    EXPECT_EQ(Text(Q7_SelectActiveDSDSection(hCal, 3)), "DSD section 3 is out of range (0-2)");

    // Reads follow the current section.
    ASSERT_EQ(Q7_SelectCurrentDSDSection(hCal, 1), nullptr);
    Poke(0x3000, {0x00, 0x00});
    EXPECT_EQ(ReadDsd(0x3000, 2), (std::vector<uint8_t>{0, 0}));
    EXPECT_EQ(Bitmaps(), (std::vector<uint32_t>{0x0B, 0x01, 0x07}));
    EXPECT_EQ(Text(Q7_SelectActiveDSDSection(hCal, 1)), "DSD section 1 does not hold a valid DSD image");

    ASSERT_EQ(Q7_SelectCurrentDSDSection(hCal, 0), nullptr);
    EXPECT_NE(ReadDsd(0x3000, 2), (std::vector<uint8_t>{0, 0}));

    EXPECT_EQ(Text(Q7_CopyDSDSection(hCal, 3, 1, 1, 0)), "Source DSD section 3 is out of range (0-2)");
    EXPECT_EQ(Text(Q7_CopyDSDSection(hCal, 0, 5, 1, 0)), "Target DSD section 5 is out of range (0-2)");
    EXPECT_EQ(Text(Q7_CopyDSDSection(hCal, 1, 1, 1, 0)), "Source and target are the same DSD section (1)");
    EXPECT_EQ(Text(Q7_CopyDSDSection(hCal, 1, 2, 1, 0)), "Target DSD section 2 is read-only");
    EXPECT_EQ(Text(Q7_CopyDSDSection(hCal, 0, 1, 2, 0xFFFF)),
              "Copy of 2 bytes at offset 0xFFFF goes beyond the 64 KB section (0x0000-0xFFFF)");
    ASSERT_EQ(Q7_CopyDSDSection(hCal, 0, 1, 2, 0x3000), nullptr);
    EXPECT_EQ(Bitmaps(), (std::vector<uint32_t>{0x0B, 0x03, 0x07}));

    // The active section is the one a load from NVM takes.
    ASSERT_EQ(Q7_SelectActiveDSDSection(hCal, 2), nullptr);
    EXPECT_EQ(Bitmaps(), (std::vector<uint32_t>{0x03, 0x03, 0x0F}));
    Poke(0x3000, {0x00});
    ASSERT_EQ(Q7_LoadDSD(hCal, Dsd::kLoadFromNvm), nullptr);
    EXPECT_EQ(DsdValid(), 1u) << "section 0 changed, section 2 was loaded";

    // The read-only section refuses writes through the DSD memory it backs.
    ASSERT_EQ(Q7_SelectCurrentDSDSection(hCal, 2), nullptr);
    uint8_t byte = 0;
    uint32_t written = 0;
    EXPECT_EQ(device().dsd.Write(device().DsdTarget(), &byte, 1, 0, &written).text(), "DSD section 2 is read-only");
}

TEST_F(SimDsdTest, RegionWritesClearTheRestAndKeepTheBlockValid)
{
    Device &dev = device();
    uint8_t data[4] = {1, 2, 3, 4};
    uint32_t written = 0;
    ASSERT_TRUE(dev.dsd.WriteRegion(dev.DsdTarget(), 5, 4, data, &written).ok());
    EXPECT_EQ(written, 4u);
    q7sim::ByteRange hw = Directory(q7sim::kBlockHw);
    std::vector<uint8_t> expected(hw.length, 0);
    std::memcpy(expected.data(), data, 4);
    EXPECT_EQ(ReadDsd(hw.offset, hw.length), expected);
    ASSERT_EQ(Q7_LoadDSD(hCal, Dsd::kLoadFromNvm), nullptr);
    EXPECT_EQ(BlockValidity(), std::vector<uint8_t>(12, 1));
    EXPECT_EQ(DsdValid(), 1u);

    EXPECT_EQ(dev.dsd.WriteRegion(dev.DsdTarget(), 5, hw.length + 1, expected.data(), &written).text(),
              "DSD region 5 holds 248 bytes, not 249");
}

TEST_F(SimDsdTest, FlashInitialisationRoundsUpToASupportedSectorSizeAndKeepsTheData)
{
    std::vector<uint8_t> image = ReadDsd(0, 65536);
    const std::pair<uint32_t, uint32_t> kRoundings[] = {{1, 4096}, {4096, 4096}, {5000, 8192}, {65536, 65536}};
    for (auto [desired, actual] : kRoundings) {
        uint32_t size = 0;
        ASSERT_EQ(Q7_InitializeFlash(hCal, desired, &size), nullptr) << desired;
        EXPECT_EQ(size, actual);
    }
    uint32_t size = 7;
    EXPECT_EQ(Text(Q7_InitializeFlash(hCal, 0, &size)), "Flash sector size of 0 bytes is not supported (1-65536 bytes)");
    EXPECT_EQ(Text(Q7_InitializeFlash(hCal, 65537, &size)),
              "Flash sector size of 65537 bytes is not supported (1-65536 bytes)");
    EXPECT_EQ(size, 7u);
    EXPECT_EQ(ReadDsd(0, 65536), image);
}

using SimOptionsTest = SimulatedDeviceTest;

TEST_F(SimOptionsTest, EightSlotsDescribeThemselvesWithTwoReserved)
{
    for (uint32_t slot = 0; slot < 8; slot++) {
        const OptionInfo *info = Q7_GetOptionInfo(slot);
        ASSERT_NE(info, nullptr);
        EXPECT_EQ(info->u32OptionID, slot);
        ASSERT_NE(info->sName, nullptr);
        EXPECT_LE(std::strlen(info->sName), 30u);
        EXPECT_EQ(info->u32Reserved != 0, slot == 3 || slot == 4) << slot;
    }
    EXPECT_EQ(Q7_GetOptionInfo(8), nullptr);
    EXPECT_STREQ(Q7_GetOptionInfo(7)->sName, "NVM mode (0=NVM 1/2=buffer)");

    q7sim::control::Reset();
    ASSERT_NE(Q7_GetOptionInfo(7), nullptr) << "the records need no interface";
    EXPECT_STREQ(Q7_GetOptionInfo(7)->sName, "NVM mode (0=NVM 1/2=buffer)");
}

TEST_F(SimOptionsTest, ValuesAreCheckedAndReadBack)
{
    int32_t value = -9;
    ASSERT_EQ(Q7_GetOptionByID(hCal, 1, &value), nullptr);
    EXPECT_EQ(value, 2000);
    for (uint32_t mode : {2u, 1u, 0u}) {
        ASSERT_EQ(Q7_SetOptionByID(hCal, 7, mode), nullptr);
        ASSERT_EQ(Q7_GetOptionByID(hCal, 7, &value), nullptr);
        EXPECT_EQ(value, static_cast<int32_t>(mode));
    }
    EXPECT_EQ(Text(Q7_SetOptionByID(hCal, 7, 3)), "Option 7 value 3 is out of range (0-2)");
    EXPECT_EQ(Text(Q7_SetOptionByID(hCal, 1, 99)), "Option 1 value 99 is out of range (100-60000)");
    EXPECT_EQ(Text(Q7_SetOptionByID(hCal, 3, 0)), "Option 3 is reserved");
    EXPECT_EQ(Text(Q7_GetOptionByID(hCal, 4, &value)), "Option 4 is reserved");
    EXPECT_EQ(Text(Q7_GetOptionByID(hCal, 8, &value)), "Option ID 8 is out of range (0-7)");
    ASSERT_EQ(Q7_GetOptionByID(hCal, 7, &value), nullptr);
    EXPECT_EQ(value, 0) << "a refused value leaves the option as it was";
}

}  // namespace
