#include <gtest/gtest.h>

#include <string>

#include "SimControl.h"
#include "commands.h"
#include "console_capture.h"

namespace {

class DsdManagementTest : public SimulatedDeviceTest {
protected:
    // Changes the DSD image in section 0 of the NVM, as a raw byte write would.
    uint8_t &Nvm(uint32_t address) { return device().dsd.nvm.Section(0)[address]; }
};

TEST_F(DsdManagementTest, AChangedBlockShowsNotValidAfterLoadingFromNvm)
{
    Nvm(0x0640 + 8 + 20) ^= 0xFF;  // inside the CAL tables
    ASSERT_EQ(RunHandler(TestLoadDSD, hCal, "1\n").result, 0);

    HandlerRun valid = RunHandler(TestAreDSDChecksumsValid, hCal);
    EXPECT_EQ(valid.result, 0);
    EXPECT_TRUE(Contains(valid.output, "         MAC checksum is  VALID\n         CAL checksum is NOT VALID\n"));
    EXPECT_EQ(Count(valid.output, "checksum is  VALID\n"), 11u);
    EXPECT_EQ(RunHandler(TestIsDSDValid, hCal).output,
              "\nIsDSDValid:\n    DSD checksum is NOT VALID\n\nIsDSDValid was SUCCESSFUL.\n");
    EXPECT_TRUE(Contains(RunHandler(TestIsCalibrationValid, hCal).output, "    Calibration state = NOT VALID\n"));
}

TEST_F(DsdManagementTest, TheBlockCountIsCappedAtTwelveAndZeroListsNothing)
{
    device().dsd.ForceBlockCount(15);
    HandlerRun capped = RunHandler(TestGetDSDChecksums, hCal);
    EXPECT_EQ(capped.result, 0);
    EXPECT_EQ(Count(capped.output, " checksum = "), 12u);
    EXPECT_TRUE(EndsWith(capped.output, "    unused checksum = F480\n 12 DSD blocks found.\n\nGetDSDChecksums was SUCCESSFUL.\n"));

    device().dsd.ForceBlockCount(0);
    EXPECT_EQ(RunHandler(TestAreDSDChecksumsValid, hCal).output,
              "\nAreDSDChecksumsValid:\n  0 DSD blocks found.\n\nAreDSDChecksumsValid was SUCCESSFUL.\n");
}

TEST_F(DsdManagementTest, TheBlockLinesReadBeforeAFailingBlockComeBeforeItsError)
{
    // Directory entry of block 5 moved beyond the DSD: its checksum stays at FFFF.
    Nvm(16 + 4 * 5) = 0xFF;
    ASSERT_EQ(Q7_LoadDSD(hCal, 1), nullptr);
    HandlerRun checksums = RunHandler(TestGetDSDChecksums, hCal);
    EXPECT_EQ(checksums.result, -1);
    EXPECT_EQ(Count(checksums.output, " checksum = "), 12u);
    EXPECT_TRUE(EndsWith(checksums.output, "          HW checksum = FFFF\n         MIB checksum = E649\n"
                                           "    Security checksum = CF75\n      OMA DM checksum = 1E25\n"
                                           "     \t  MRU checksum = 0EC7\n         HVX checksum = 8F76\n"
                                           "    unused checksum = F480\n"
                                           "\nERROR: DSD block 5 lies outside the DSD: its checksum cannot be read\n"));
}

TEST_F(DsdManagementTest, NvmTypesAndFlashMapsTheDeviceDoesNotReportAreNamedByTheirCodes)
{
    struct Case {
        uint32_t type, map;
        const char *typeLine, *mapLine;
    };
    const Case cases[] = {
        {0, 0, "    NVM type         = EEPROM (0)\n", "    Flash map type   = Not applicable (0)\n"},
        {7, 1, "    NVM type         = INVALID VALUE (7)\n", "    Flash map type   = Flash 1.x (1)\n"},
        {2, 3, "    NVM type         = INVALID VALUE (2)\n", "    Flash map type   = INVALID VALUE (3)\n"},
    };
    for (const Case &c : cases) {
        device().dsd.nvm.ForceInfo(c.type, c.map);
        std::string output = RunHandler(TestGetDSDInfo, hCal).output;
        EXPECT_TRUE(Contains(output, c.typeLine)) << output;
        EXPECT_TRUE(Contains(output, c.mapLine)) << output;
    }
}

TEST_F(DsdManagementTest, ASectionWithoutTheKnownBitsShowsNoMarks)
{
    device().dsd.nvm.ForceBitmap(1, 0x10);
    EXPECT_TRUE(Contains(RunHandler(TestGetFlashDSDInfo, hCal).output,
                         "     1        0x10                                    \n"));
}

TEST_F(DsdManagementTest, TheCopyOffsetIsHexadecimal)
{
    Nvm(0x10) = 0x7F;  // 10 is the start of the directory
    EXPECT_EQ(RunHandler(TestCopyDSDSection, hCal, "0\n1\n1\n10\n").result, 0);
    EXPECT_EQ(device().dsd.nvm.Section(1)[0x10], 0x7F);
}

}  // namespace
