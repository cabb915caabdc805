#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "commands.h"
#include "console_capture.h"

namespace {

using OtherCommandsTest = SimulatedDeviceTest;

TEST_F(OtherCommandsTest, TemperatureIsRoundedToWholeDegrees)
{
    device().thermal.ForceTemperature(36.6);
    EXPECT_EQ(RunHandler(TestGetTemperature, hCal).output,
              "\nGetTemperature:\n    Temperature = 37 C\n\nGetTemperature was SUCCESSFUL.\n");
}

TEST_F(OtherCommandsTest, SpectrumRowsHold16ValuesAndAnEmptySpectrumPrintsNoRow)
{
    ASSERT_EQ(Q7_ResetRxSpectrum(hCal, 3, 1), nullptr);
    device().spectrum.ForceLength(0);
    EXPECT_EQ(RunHandler(TestGetRxSpectrum, hCal).output,
              "\nGetRxSpectrum\n\nSpectrum length = 0\n\n\nGetRxSpectrum was SUCCESSFUL.\n");

    device().spectrum.ForceLength(17);
    HandlerRun seventeen = RunHandler(TestGetRxSpectrum, hCal);
    EXPECT_EQ(seventeen.result, 0);
    const std::string value = "[ -]{1,6}\\d+\\.\\d";  // "%7.1f" of a value below 1000
    EXPECT_TRUE(std::regex_match(seventeen.output,
                                 std::regex("\nGetRxSpectrum\n\nSpectrum length = 17\n"
                                            "\n   0:(" + value + "){16}"
                                            "\n  16:" + value + "\n\nGetRxSpectrum was SUCCESSFUL.\n")))
        << seventeen.output;
}

TEST_F(OtherCommandsTest, SpectrumListStopsAtTheCapacityWhateverLengthIsReported)
{
    ASSERT_EQ(Q7_ResetRxSpectrum(hCal, 0, 0), nullptr);
    device().spectrum.ForceLength(5000);
    HandlerRun run = RunHandler(TestGetRxSpectrum, hCal);
    EXPECT_EQ(run.result, 0);
    EXPECT_TRUE(Contains(run.output, "\nSpectrum length = 5000\n"));
    EXPECT_EQ(Count(run.output, ":"), 128u);
    EXPECT_TRUE(Contains(run.output, "\n2032:"));
}

TEST_F(OtherCommandsTest, VersionReportCutsTheDriverTextAt31Characters)
{
    device().versions.ForceDriverVersion("0123456789012345678901234567890123456789");
    device().versions.ForceRfChipVersion(0x12345);
    HandlerRun run = RunHandler(TestGetVersionInfo, hCal);
    EXPECT_EQ(run.result, 0);
    EXPECT_TRUE(Contains(run.output, "    Driver version          = 0123456789012345678901234567890\n"));
    EXPECT_TRUE(Contains(run.output, "    RF chip version         = 12345\n"));
}

}  // namespace
