#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "SimControl.h"
#include "console_capture.h"
#include "diagnostics.h"

namespace {

class NvmModeTestTest : public SimulatedDeviceTest {
protected:
    void SetUp() override
    {
        SimulatedDeviceTest::SetUp();
        ASSERT_EQ(Q7_SetDeviceMode(hCal, 1, 2, -300, 3), nullptr);  // Calibration, 64 QAM
    }

    std::vector<uint8_t> NvmImage()
    {
        const uint8_t *section = device().dsd.nvm.Section(device().dsd.nvm.active());
        return std::vector<uint8_t>(section, section + q7sim::Nvm::kSectionSize);
    }

    uint32_t DutMode() { return device().modes.mode().dutMode; }
};

TEST_F(NvmModeTestTest, AWholeRunRestoresTheModeLeavesTheBufferModeAndNeverWritesTheNvm)
{
    const std::vector<uint8_t> nvmBefore = NvmImage();

    HandlerRun run = RunHandler(NvmModeTest, hCal, "1\n");

    // What it prints is pinned by the golden sessions of both interface types.
    EXPECT_EQ(run.result, 0);
    const q7sim::DeviceMode &mode = device().modes.mode();
    EXPECT_EQ(mode.dutMode, 1u);
    EXPECT_EQ(mode.modulationType, 2u);
    EXPECT_EQ(mode.cwOffsetKHz, -300);
    EXPECT_EQ(mode.loopbackTx, 3u);
    EXPECT_EQ(device().options.nvmMode(), 2u);  // left as the test set it
    EXPECT_EQ(NvmImage(), nvmBefore);
}

// Each failing operation ends the test at its own step: the error line is the
// last thing printed, nothing is undone, and from the switch to Tx CW on the
// device stays in Tx CW.
TEST_F(NvmModeTestTest, TheFirstFailingOperationEndsTheTestWithNothingUndone)
{
    struct Step {
        const char *operation;
        unsigned nthCall;
        const char *lastLineBefore;  // printed just before the failing call
        uint32_t dutModeAfter;
    };
    const Step steps[] = {
        {"Q7_GetDeviceMode", 1, "Running test for non-MII interface.\n", 1},
        {"Q7_SetDeviceMode", 1, "Setting device mode to Tx CW\n", 1},
        {"Q7_SetOptionByID", 1, "Setting NVM mode = 0\n====================\n", 2},
        {"Q7_GetOptionByID", 1, "Setting NVM mode = 0\n====================\n", 2},
        {"Q7_LoadDSD", 1, "Calling Load DSD Into Memory (NVM loading mode)\n", 2},
        {"Q7_ReadDSDBytes", 1, "Reading and saving all 32K of DSD into a buffer\n"
                               "=======================================================\n", 2},
        {"Q7_ReadDSDBytes", 2, "with Cal3API_rdm_block (direct from NVM)\n", 2},
        {"Q7_LoadDSD", 2, "Calling Load DSD Into Memory (NVM loading mode)\n", 2},
        {"Q7_SetOptionByID", 2, "Setting NVM mode = 1\n====================\n", 2},
        {"Q7_GetOptionByID", 2, "Setting NVM mode = 1\n====================\n", 2},
        {"Q7_WriteDSDBytes", 1, "starting with offset 0x0200\n", 2},
        {"Q7_ReadDSDBytes", 3, "with CalAPI_rdm_block (from buffer)\n", 2},
        {"Q7_LoadDSD", 3, "Calling Load DSD Into Memory (VDM loading mode)\n", 2},
        {"Q7_WriteDSDBytes", 2, "starting with offset 0x0200\n", 2},
        {"Q7_ReadDSDBytes", 4, "with CalAPI_rdm_block (from buffer)\n", 2},
        {"Q7_LoadDSD", 4, "Calling Load DSD Into Memory (VDM loading mode)\n", 2},
        {"Q7_SetDeviceMode", 2, "GetDSDChecksums was SUCCESSFUL.\n\n", 2},
    };
    for (const Step &step : steps) {
        SCOPED_TRACE(std::string(step.operation) + " call " + std::to_string(step.nthCall));
        ASSERT_EQ(Q7_SetDeviceMode(hCal, 1, 2, -300, 3), nullptr);
        const std::vector<uint8_t> nvmBefore = NvmImage();

        q7sim::control::FailCall(step.operation, step.nthCall, "Device fault");
        HandlerRun run = RunHandler(NvmModeTest, hCal, "0\n");

        EXPECT_EQ(run.result, -1);
        EXPECT_TRUE(EndsWith(run.output, std::string(step.lastLineBefore) + "\nERROR: Device fault\n")) << run.output;
        EXPECT_EQ(DutMode(), step.dutModeAfter);
        EXPECT_EQ(NvmImage(), nvmBefore);
    }
}

// A device that takes the NVM mode but stays in another one would have the
// writes of PART 1 and PART 2 land in the NVM itself: the test stops first.
TEST_F(NvmModeTestTest, AnNvmModeThatDoesNotTakeEffectStopsTheTestBeforeAnyWrite)
{
    struct Case {
        uint32_t modeBefore;
        unsigned ignoredSets;
        const char *tail;
    } cases[] = {
        {1, 1, "Setting NVM mode = 0\n====================\n\nERROR: The device is in NVM mode 1 after NVM mode 0 was set\n"},
        {0, 2, "Setting NVM mode = 1\n====================\n\nERROR: The device is in NVM mode 0 after NVM mode 1 was set\n"},
    };
    for (const Case &c : cases) {
        ASSERT_EQ(Q7_SetOptionByID(hCal, Q7_OPTION_NVM_MODE, c.modeBefore), nullptr);
        const std::vector<uint8_t> storesBefore = DsdStores();
        q7sim::control::IgnoreNext("Q7_SetOptionByID", c.ignoredSets);
        HandlerRun run = RunHandler(NvmModeTest, hCal, "0\n");
        EXPECT_EQ(run.result, -1);
        EXPECT_TRUE(EndsWith(run.output, c.tail)) << run.output;
        EXPECT_TRUE(DsdStores() == storesBefore) << "nothing is written";
    }
}

}  // namespace
