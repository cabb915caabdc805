#include <gtest/gtest.h>

#include <string>

#include "Device.h"
#include "SimControl.h"
#include "commands.h"
#include "console_capture.h"

namespace {

using DsdManagementTest = SimulatedDeviceTest;

q7sim::Device &OpenDevice() { return *q7sim::control::OpenDevice(); }

// Changes the DSD image in section 0 of the NVM, as a raw byte write would.
void PokeNvm(uint32_t address, uint8_t value) { OpenDevice().dsd.nvm.Section(0)[address] = value; }
void FlipNvm(uint32_t address) { OpenDevice().dsd.nvm.Section(0)[address] ^= 0xFF; }

const char kFactoryValidity[] =
    "\nAreDSDChecksumsValid:\n"
    "    Compatibility checksum is  VALID\n"
    "          RF checksum is  VALID\n"
    "         PHY checksum is  VALID\n"
    "         MAC checksum is  VALID\n"
    "         CAL checksum is  VALID\n"
    "          HW checksum is  VALID\n"
    "         MIB checksum is  VALID\n"
    "    Security checksum is  VALID\n"
    "      OMA DM checksum is  VALID\n"
    "     \t  MRU checksum is  VALID\n"
    "         HVX checksum is  VALID\n"
    "    unused checksum is  VALID\n"
    " 12 DSD blocks found.\n"
    "\nAreDSDChecksumsValid was SUCCESSFUL.\n";

const char kFactoryChecksumLines[] =
    "    Compatibility checksum = B92C\n"
    "          RF checksum = 632B\n"
    "         PHY checksum = 69B0\n"
    "         MAC checksum = D418\n"
    "         CAL checksum = 77AF\n"
    "          HW checksum = 17B2\n"
    "         MIB checksum = E649\n"
    "    Security checksum = CF75\n"
    "      OMA DM checksum = 1E25\n"
    "     \t  MRU checksum = 0EC7\n"
    "         HVX checksum = 8F76\n"
    "    unused checksum = F480\n";

TEST_F(DsdManagementTest, NullHandlePrintsNothingExceptWhereTheCalApiJudgesIt)
{
    for (auto handler : {TestLoadDSD, TestIsDSDValid, TestAreDSDChecksumsValid, TestGetDSDChecksums,
                         TestIsCalibrationValid, TestGetNVMSize, TestGetDSDInfo, TestGetFlashDSDInfo,
                         TestSelectActiveDSDSection, TestInitializeFlash, TestSelectCurrentDSDSection,
                         TestCopyDSDSection}) {
        HandlerRun run = RunHandler(handler, nullptr, "1 1 1 1\n");
        EXPECT_EQ(run.result, -1);
        EXPECT_EQ(run.output, "");
    }
    HandlerRun cal = RunHandler(TestGetCalibrationInfo, nullptr);
    EXPECT_EQ(cal.result, -1);
    EXPECT_EQ(cal.output, "\nGetCalibrationInfo:\n\nERROR: Invalid Cal API interface handle\n");
    HandlerRun mac = RunHandler(TestGetMACAddress, nullptr);
    EXPECT_EQ(mac.result, -1);
    EXPECT_EQ(mac.output, "\nGetMACAddress:\n\nERROR: Invalid Cal API interface handle\n");
}

TEST_F(DsdManagementTest, TheFactoryDsdListsTwelveValidBlocksWithTheirChecksums)
{
    HandlerRun valid = RunHandler(TestAreDSDChecksumsValid, hCal);
    EXPECT_EQ(valid.result, 0);
    EXPECT_EQ(valid.output, kFactoryValidity);

    HandlerRun checksums = RunHandler(TestGetDSDChecksums, hCal);
    EXPECT_EQ(checksums.result, 0);
    EXPECT_EQ(checksums.output, std::string("\nGetDSDChecksums:\n") + kFactoryChecksumLines +
                                    " 12 DSD blocks found.\n\nGetDSDChecksums was SUCCESSFUL.\n");

    EXPECT_EQ(RunHandler(TestIsDSDValid, hCal).output,
              "\nIsDSDValid:\n    DSD checksum is  VALID\n\nIsDSDValid was SUCCESSFUL.\n");
    EXPECT_EQ(RunHandler(TestIsCalibrationValid, hCal).output,
              "\nIsCalibrationValid:\n    Calibration state = VALID\n\nIsCalibrationValid was SUCCESSFUL.\n");
}

TEST_F(DsdManagementTest, AChangedBlockShowsNotValidAfterLoadingFromNvm)
{
    FlipNvm(0x0640 + 8 + 20);  // inside the CAL tables

    HandlerRun load = RunHandler(TestLoadDSD, hCal, "1\n");
    EXPECT_EQ(load.result, 0);
    EXPECT_EQ(load.output,
              "\nLoadDSD:\n"
              "    Load mode: 0=Unchanged; 1=From NVM; 2=From DDR\n"
              "    DSD address ? "
              "\nLoadDSD was SUCCESSFUL.\n");

    HandlerRun valid = RunHandler(TestAreDSDChecksumsValid, hCal);
    EXPECT_EQ(valid.result, 0);
    EXPECT_NE(valid.output.find("         MAC checksum is  VALID\n         CAL checksum is NOT VALID\n"),
              std::string::npos);
    EXPECT_EQ(RunHandler(TestIsDSDValid, hCal).output,
              "\nIsDSDValid:\n    DSD checksum is NOT VALID\n\nIsDSDValid was SUCCESSFUL.\n");
    EXPECT_NE(RunHandler(TestIsCalibrationValid, hCal).output.find("    Calibration state = NOT VALID\n"),
              std::string::npos);

    HandlerRun refused = RunHandler(TestLoadDSD, hCal, "3\n");
    EXPECT_EQ(refused.result, -1);
    EXPECT_NE(refused.output.find("    DSD address ? \nERROR: DSD load mode 3 is out of range (0-2)\n"),
              std::string::npos);
}

TEST_F(DsdManagementTest, TheBlockCountIsCappedAtTwelveAndZeroListsNothing)
{
    OpenDevice().dsd.ForceBlockCount(15);
    HandlerRun capped = RunHandler(TestGetDSDChecksums, hCal);
    EXPECT_EQ(capped.result, 0);
    EXPECT_EQ(capped.output, std::string("\nGetDSDChecksums:\n") + kFactoryChecksumLines +
                                 " 12 DSD blocks found.\n\nGetDSDChecksums was SUCCESSFUL.\n");

    OpenDevice().dsd.ForceBlockCount(0);
    EXPECT_EQ(RunHandler(TestAreDSDChecksumsValid, hCal).output,
              "\nAreDSDChecksumsValid:\n  0 DSD blocks found.\n\nAreDSDChecksumsValid was SUCCESSFUL.\n");
}

TEST_F(DsdManagementTest, BlockLinesComeBeforeTheErrorAndAFailureBeforeCountingListsNone)
{
    // Directory entry of block 5 moved beyond the DSD: its checksum stays at FFFF.
    PokeNvm(16 + 4 * 5, 0xFF);
    ASSERT_EQ(Q7_LoadDSD(hCal, 1), nullptr);
    HandlerRun checksums = RunHandler(TestGetDSDChecksums, hCal);
    EXPECT_EQ(checksums.result, -1);
    std::string lines = kFactoryChecksumLines;
    lines.replace(lines.find("          HW checksum = 17B2"), 28, "          HW checksum = FFFF");
    EXPECT_EQ(checksums.output, "\nGetDSDChecksums:\n" + lines +
                                    "\nERROR: DSD block 5 lies outside the DSD: its checksum cannot be read\n");

    q7sim::control::FailNext("Q7_AreDSDChecksumsValid", 1, "NVM read timed out");
    HandlerRun failed = RunHandler(TestAreDSDChecksumsValid, hCal);
    EXPECT_EQ(failed.result, -1);
    EXPECT_EQ(failed.output, "\nAreDSDChecksumsValid:\n\nERROR: NVM read timed out\n");
}

TEST_F(DsdManagementTest, CalibrationRecordAndMacAddressLayouts)
{
    HandlerRun cal = RunHandler(TestGetCalibrationInfo, hCal);
    EXPECT_EQ(cal.result, 0);
    EXPECT_EQ(cal.output,
              "\nGetCalibrationInfo:\n"
              "    Cal flag    = 1\n"
              "    Vendor ID   = 2A\n"
              "    Cal date    = 24/03/18\n"
              "    Cal time    = 10:42:07\n"
              "    SW Version  = 02.05.11\n"
              "\nGetCalibrationInfo was SUCCESSFUL.\n");

    HandlerRun mac = RunHandler(TestGetMACAddress, hCal);
    EXPECT_EQ(mac.result, 0);
    EXPECT_EQ(mac.output,
              "\nGetMACAddress:\n    MAC address = 02:1A:C7:30:5E:81\n\nGetMACAddress was SUCCESSFUL.\n");
}

TEST_F(DsdManagementTest, NvmSizeAndTypesWithTheirNamesAndCodes)
{
    EXPECT_EQ(RunHandler(TestGetNVMSize, hCal).output,
              "\nGetNVMSize:\n    DSD size = 32768 bytes\n\nGetNVMSize was SUCCESSFUL.\n");
    EXPECT_EQ(RunHandler(TestGetDSDInfo, hCal).output,
              "\nGetDSDInfo:\n"
              "    NVM type         = Flash (1)\n"
              "    DSD size = 32768 bytes\n"
              "    Flash map type   = Flash 2.x (2)\n"
              "\nGetDSDInfo was SUCCESSFUL.\n");

    OpenDevice().dsd.nvm.ForceInfo(0, 0);
    std::string eeprom = RunHandler(TestGetDSDInfo, hCal).output;
    EXPECT_NE(eeprom.find("    NVM type         = EEPROM (0)\n"), std::string::npos);
    EXPECT_NE(eeprom.find("    Flash map type   = Not applicable (0)\n"), std::string::npos);

    OpenDevice().dsd.nvm.ForceInfo(7, 1);
    std::string odd = RunHandler(TestGetDSDInfo, hCal).output;
    EXPECT_NE(odd.find("    NVM type         = INVALID VALUE (7)\n"), std::string::npos);
    EXPECT_NE(odd.find("    Flash map type   = Flash 1.x (1)\n"), std::string::npos);

    OpenDevice().dsd.nvm.ForceInfo(2, 3);
    std::string beyond = RunHandler(TestGetDSDInfo, hCal).output;
    EXPECT_NE(beyond.find("    NVM type         = INVALID VALUE (2)\n"), std::string::npos);
    EXPECT_NE(beyond.find("    Flash map type   = INVALID VALUE (3)\n"), std::string::npos);
}

TEST_F(DsdManagementTest, TheSectionTableFollowsTheBitmaps)
{
    HandlerRun table = RunHandler(TestGetFlashDSDInfo, hCal);
    EXPECT_EQ(table.result, 0);
    EXPECT_EQ(table.output,
              "\nGetFlashDSDInfo:\n"
              "  Section    Bitmap    Present  Valid  Read-Only  Active\n"
              "     0        0x0B        X       X                  X\n"
              "     1        0x03        X       X                   \n"
              "     2        0x07        X       X        X          \n"
              "\nGetFlashDSDInfo was SUCCESSFUL.\n");

    OpenDevice().dsd.nvm.ForceBitmap(1, 0x10);
    EXPECT_NE(RunHandler(TestGetFlashDSDInfo, hCal).output.find("     1        0x10                                    \n"),
              std::string::npos);
}

TEST_F(DsdManagementTest, SectionSelectionCopyAndFlashInitialisation)
{
    HandlerRun active = RunHandler(TestSelectActiveDSDSection, hCal, "1\n");
    EXPECT_EQ(active.result, 0);
    EXPECT_EQ(active.output,
              "\nSelectActiveDSDSection:\n    DSD  section (0-2) ? \nSelectActiveDSDSection was SUCCESSFUL.\n");
    EXPECT_NE(RunHandler(TestGetFlashDSDInfo, hCal).output.find("     1        0x0B        X       X                  X\n"),
              std::string::npos);

    HandlerRun current = RunHandler(TestSelectCurrentDSDSection, hCal, "3\n");
    EXPECT_EQ(current.result, -1);
    EXPECT_EQ(current.output,
              "\nSelectCurrentDSDSection:\n    DSD  section (0-2) ? \nERROR: DSD section 3 is out of range (0-2)\n");

    HandlerRun copy = RunHandler(TestCopyDSDSection, hCal, "0\n2\n16\n3000\n");
    EXPECT_EQ(copy.result, -1);
    EXPECT_EQ(copy.output,
              "\nCopyDSDSection:\n"
              "    Source DSD  section (0-2) ? "
              "    Target DSD  section (0-2) ? "
              "    Number of bytes to copy (dec)    ? "
              "    Starting offset in section (hex) ? "
              "\nERROR: Target DSD section 2 is read-only\n");

    // The offset is hexadecimal: 10 is the start of the directory.
    PokeNvm(0x10, 0x7F);
    ASSERT_EQ(Q7_SelectCurrentDSDSection(hCal, 1), nullptr);
    EXPECT_EQ(RunHandler(TestCopyDSDSection, hCal, "1\n0\n1\n10\n").result, 0);
    EXPECT_EQ(OpenDevice().dsd.nvm.Section(0)[0x10], OpenDevice().dsd.nvm.Section(1)[0x10]);

    HandlerRun flash = RunHandler(TestInitializeFlash, hCal, "5000\n");
    EXPECT_EQ(flash.result, 0);
    EXPECT_EQ(flash.output,
              "\nInitializeFlash:\n"
              "    Desired flash memory sector size (bytes) ? "
              "    Actual flash memory sector size = 8192 bytes\n"
              "\nInitializeFlash was SUCCESSFUL.\n");
}

TEST_F(DsdManagementTest, EndOfInputAbandonsTheCommandBeforeTheDeviceIsCalled)
{
    FlipNvm(0x0640 + 40);
    HandlerRun load = RunHandler(TestLoadDSD, hCal, "");
    EXPECT_EQ(load.result, -1);
    EXPECT_EQ(load.output,
              "\nLoadDSD:\n    Load mode: 0=Unchanged; 1=From NVM; 2=From DDR\n    DSD address ? "
              "\nEnd of input: command abandoned.\n");
    uint32_t valid = 0;
    ASSERT_EQ(Q7_IsDSDValid(hCal, &valid), nullptr);
    EXPECT_EQ(valid, 1u) << "nothing was loaded";

    HandlerRun copy = RunHandler(TestCopyDSDSection, hCal, "0\n1\n32768\n");
    EXPECT_EQ(copy.result, -1);
    EXPECT_NE(OpenDevice().dsd.nvm.Section(1)[0x0640 + 40], OpenDevice().dsd.nvm.Section(0)[0x0640 + 40])
        << "nothing was copied";
}

}  // namespace
