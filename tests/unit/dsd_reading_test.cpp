#include <gtest/gtest.h>

#include <string>

#include "SimControl.h"
#include "commands.h"
#include "console_capture.h"

namespace {

using DsdReadingTest = SimulatedDeviceTest;

TEST_F(DsdReadingTest, AWordCountWhoseByteCountOverflowsIsRefusedBeforeAnyRead)
{
    q7sim::control::FailNext("Q7_ReadDSDBytes", 1, "read reached the device");
    HandlerRun run = RunHandler(TestReadDSDBlock, hCal, "0\n1073741824\n");
    EXPECT_EQ(run.result, -1);
    EXPECT_TRUE(EndsWith(run.output, "\nERROR: Block size of 1073741824 words is too large (at most 1073741823)\n"));
    uint8_t byte = 0;
    EXPECT_STREQ(Q7_ReadDSDBytes(hCal, &byte, 1, 0), "read reached the device") << "the handler must not call the device";
}

TEST_F(DsdReadingTest, ARegionReadErrorComesAfterTheSizeLineWithoutADump)
{
    q7sim::control::FailNext("Q7_ReadDSDRegionByID", 1, "NVM read timed out");
    HandlerRun run = RunHandler(TestReadDSDRegionByID, hCal, "4\n");
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.output,
              "\nReadDSDRegionByID:\n"
              "Enter region ID (dec) ? "
              "\nDSD region size = 2488 bytes\n"
              "\nERROR: NVM read timed out\n");
}

TEST_F(DsdReadingTest, ARegionDumpShowsOnlyTheBytesTheReadReturned)
{
    q7sim::control::ShortRead("Q7_ReadDSDRegionByID", 1, 5);
    HandlerRun run = RunHandler(TestReadDSDRegionByID, hCal, "4\n");
    EXPECT_EQ(run.result, 0);
    // The first five bytes of region 4, the calibration record, and no more.
    EXPECT_TRUE(EndsWith(run.output, "\nDSD region size = 2488 bytes\n0000:  00 02 01 2A 24\n"
                                     "\nReadDSDRegionByID was SUCCESSFUL.\n"))
        << run.output;
}

}  // namespace
