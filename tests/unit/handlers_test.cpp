// The interactive handlers, group by group, on what the golden sessions of a
// healthy device cannot show: values the device never reports on its own
// (forced into the simulated device), lists capped by the program, and what
// each command passes to the device. Device errors are the fault matrix's,
// bad answers the prompt walk's.
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <regex>
#include <string>
#include <vector>

#include "SimControl.h"
#include "commands.h"
#include "console_capture.h"
#include "diagnostics.h"

namespace {

using q7sim::Device;

// A device state, a command with its answers, and lines its output must hold.
struct Shown {
    const char *what;
    std::function<void(Device &)> force;
    int (*handler)(CalInterfaceHandle);
    const char *answers;
    std::vector<std::string> lines;
};

class HandlersTest : public SimulatedDeviceTest {
protected:
    void ExpectShown(const std::vector<Shown> &cases)
    {
        for (const Shown &c : cases) {
            c.force(device());
            HandlerRun run = RunHandler(c.handler, hCal, c.answers);
            EXPECT_EQ(run.result, 0) << c.what << "\n" << run.output;
            for (const std::string &line : c.lines)
                EXPECT_TRUE(Contains(run.output, line)) << c.what << ": no \"" << line << "\" in\n" << run.output;
        }
    }
};

TEST_F(HandlersTest, ConfigurationValuesTheDeviceNeverReportsAreShownAsUnknown)
{
    ExpectShown({
        {"unknown modes", [](Device &d) { d.modes.ForceMode(q7sim::DeviceMode{6, 0xFFFFFFFFu, 0, 0}); },
         TestGetDeviceMode, "",
         {"    DUT Mode        = Unknown DUT Mode (6)\n", "    Modulation type = Unknown modulation type (-1)\n"}},
        {"unknown loopback", [](Device &d) { d.modes.ForceMode(q7sim::DeviceMode{0, 2, 0, 4}); }, TestGetDeviceMode, "",
         {"    Modulation type = 64 QAM (2)\n", "\tLoopback =Unknown Transmitter( 4)\n"}},
    });
}

TEST_F(HandlersTest, RxValuesAreShownByNameAndNumber)
{
    std::vector<Shown> cases;
    const char *const kAntNames[] = {"Rx1 only", "Rx2 only", "Rx1 + Rx2", "Unknown value"};
    for (uint32_t config = 0; config < 4; config++)
        cases.push_back({"Rx antenna configuration", [config](Device &d) { d.rx.ForceAntConfig(config); },
                         TestGetRxAntConfig, "", {"    RxAntConfig = " + std::string(kAntNames[config]) + "\n"}});
    // Every front-end state above medium is high.
    for (uint32_t state : {1u, 2u, 7u, 0xFFFFFFFFu})
        cases.push_back({"front-end state", [state](Device &d) { d.rx.ForceGainState(0, q7sim::RxGainState{0, state, 14}); },
                         TestGetRxGainState, "0\n",
                         {"    Front End gain state   = " +
                          std::string(state == 1 ? "Medium (Max gain - 12 dB)" : "High   (Max gain)") + " (" +
                          std::to_string(state) + ")\n"}});
    cases.push_back({"clip shares", [](Device &d) { d.rx.ForceAdcCounts(500, 0, 100000); }, TestGetRSSIReport, "",
                     {"    Rx1 ADC clip count    = 500 (0.50 %)\n    Rx2 ADC clip count    = 0 (0.00 %)\n"
                      "    Number of ADC samples = 100000\n"}});
    // Zero samples: the shares are what printf makes of 5 / 0 and 0 / 0.
    volatile double zero = 0.0;
    char infinite[64];
    char notANumber[64];
    std::snprintf(infinite, sizeof infinite, "    Rx1 ADC clip count    = 5 (%0.2f %%)\n", 5.0 * 100.0 / zero);
    std::snprintf(notANumber, sizeof notANumber, "    Rx2 ADC clip count    = 0 (%0.2f %%)\n", 0.0 * 100.0 / zero);
    cases.push_back({"no ADC samples", [](Device &d) { d.rx.ForceAdcCounts(5, 0, 0); }, TestGetRSSIReport, "",
                     {infinite, notANumber}});
    cases.push_back({"an error count just below the no-sync mark",
                     [](Device &d) { d.rx.ForceFrameStatistics(7, 0xFFFFFFFEu); }, TestGetFrameErrorStatistics, "",
                     {"    Total frames elapsed  = 7\n    Frames in error       = 4294967294\n"}});
    ExpectShown(cases);
}

TEST_F(HandlersTest, TxValuesTheDeviceNeverTakesAreShownWithTheirNumbers)
{
    ExpectShown({
        {"external attenuator 2", [](Device &d) { d.tx.ForceAttn(0, q7sim::TxAttn{1.5, 1, 2, 3, 4, 2}); }, TestGetTxAttn,
         "1\n", {"     External attenuator                 = Enabled (2)\n"}},
        {"switch 5", [](Device &d) { d.tx.ForceDiversitySwitch(5); }, TestGetTxDiversitySwitch, "", {"= 5 (Antenna 2)\n"}},
        {"active transmitter 4", [](Device &d) { d.tx.ForceActiveTx(4); }, TestGetActiveTX, "",
         {"\nGetActiveTx:\n Unknown Value(4)\nGetActiveTX was SUCCESSFUL.\n"}},
    });
}

TEST_F(HandlersTest, TypedTxValuesReachTheDeviceUnroundedAndForTheirTransmitter)
{
    EXPECT_EQ(RunHandler(TestSetTxBackoff, hCal, "1.23456789\n").result, 0);
    EXPECT_EQ(device().tx.backoff(), 1.23456789);
    EXPECT_EQ(RunHandler(TestSetTxDecoderMode, hCal, "2\n1\n").result, 0);
    EXPECT_EQ(device().tx.decoderMode(0), 0u);
    EXPECT_EQ(device().tx.decoderMode(1), 1u);
    EXPECT_EQ(RunHandler(TestSetLCLControllerState, hCal, "0\n").result, 0);
    EXPECT_EQ(device().tx.lflControllerState(), 0);
    EXPECT_EQ(RunHandler(TestSetTRSwitch, hCal, "0\n1\n").result, 0);
    EXPECT_EQ(device().cal.trSwitch().ant1, 0u);
    EXPECT_EQ(device().cal.trSwitch().ant2, 1u);
    EXPECT_EQ(RunHandler(TestEchoTest, hCal, "64\n").result, 0);
    EXPECT_EQ(device().echo.bytesEchoed(), 64u);
}

// Every command that asks for a transmitter passes the one typed: the device's
// own range check names it.
TEST_F(HandlersTest, EveryTransmitterSelectorTypedReachesTheDevice)
{
    ASSERT_EQ(Q7_SetDeviceMode(hCal, q7sim::kDutLoopback, 0, 1000, 0), nullptr);
    const struct {
        int (*handler)(CalInterfaceHandle);
        const char *answers;  // the selector first
    } commands[] = {
        {TestGetTxAttn, "7\n"},          {TestSetTxAttn, "7\n0\n0\n0\n0\n0\n0\n"}, {TestGetTxGCWord, "7\n"},
        {TestSetTxGCWord, "7\n1.5\n"}, {TestSetTxDecoderMode, "7\n1\n"},            {TestCalibrateTxGains, "7\n2500000\n"},
        {TestCalibrateTxExtAttnStep, "7\n"},
    };
    for (const auto &command : commands) {
        HandlerRun run = RunHandler(command.handler, hCal, command.answers);
        EXPECT_TRUE(EndsWith(run.output, "\nERROR: Tx selector 7 is out of range (0-3)\n")) << run.output;
    }
}

TEST_F(HandlersTest, LoopbackAndOtherListsStopAtTheirCapacityAndRoundAsPrinted)
{
    ASSERT_EQ(Q7_SetDeviceMode(hCal, q7sim::kDutAgcFreeRun, 0, 1000, 0), nullptr);
    HandlerRun fe = RunHandler(TestCalibrateFESteps, hCal, "5\n-40\n-40.0\n");
    const auto &mid = device().cal.feSteps().lnaMidGainStep;
    char row[80];
    std::snprintf(row, sizeof row, "LNA mid gain step   = %6.2f %6.2f dB\n", mid[0], mid[1]);
    EXPECT_TRUE(Contains(fe.output, row)) << "Rx1 left, Rx2 right:\n" << fe.output;

    ASSERT_EQ(Q7_SetDeviceMode(hCal, q7sim::kDutLoopback, 0, 1000, 0), nullptr);
    ASSERT_EQ(Q7_ResetRxSpectrum(hCal, 3, 1), nullptr);
    ExpectShown({
        {"no LC trim frequency", [](Device &d) { d.cal.ForceLCTrimCount(0); }, TestCalibrateLCTrim, "",
         {"Calibrate LC Trim:\n\n #Frequency=0\n\nCalibrateLCTrim was SUCCESSFUL.\n"}},
        {"temperature", [](Device &d) { d.thermal.ForceTemperature(36.6); }, TestGetTemperature, "",
         {"\nGetTemperature:\n    Temperature = 37 C\n\nGetTemperature was SUCCESSFUL.\n"}},
        {"empty spectrum", [](Device &d) { d.spectrum.ForceLength(0); }, TestGetRxSpectrum, "", {"\nGetRxSpectrum\n\nSpectrum length = 0\n\n\nGetRxSpectrum was SUCCESSFUL.\n"}},
        {"long driver version",
         [](Device &d) {
             d.versions.ForceDriverVersion("0123456789012345678901234567890123456789");
             d.versions.ForceRfChipVersion(0x12345);
         },
         TestGetVersionInfo, "",
         {"    Driver version          = 0123456789012345678901234567890\n", "    RF chip version         = 12345\n"}},
    });

    device().cal.ForceLCTrimCount(40);
    HandlerRun trim = RunHandler(TestCalibrateLCTrim, hCal);
    EXPECT_TRUE(Contains(trim.output, "\n #Frequency=40\nLCTrimArray[0] = "));
    EXPECT_EQ(Count(trim.output, "LCTrimArray["), 12u);

    device().spectrum.ForceLength(17);
    const std::string value = "[ -]{1,6}\\d+\\.\\d";  // "%7.1f" of a value below 1000
    EXPECT_TRUE(std::regex_match(RunHandler(TestGetRxSpectrum, hCal).output,
                                 std::regex("\nGetRxSpectrum\n\nSpectrum length = 17\n\n   0:(" + value + "){16}\n  16:" +
                                            value + "\n\nGetRxSpectrum was SUCCESSFUL.\n")));
    device().spectrum.ForceLength(5000);
    HandlerRun capped = RunHandler(TestGetRxSpectrum, hCal);
    EXPECT_TRUE(Contains(capped.output, "\nSpectrum length = 5000\n"));
    EXPECT_EQ(Count(capped.output, ":"), 128u);
    EXPECT_TRUE(Contains(capped.output, "\n2032:"));
}

// ---- Library options ----

TEST_F(HandlersTest, ThePickerCutsLongNamesTo30AndTheValueListTo35)
{
    const std::string name40 = "Forty characters of option name, exactly";
    device().options.ForceInfo(0, name40, false);
    device().options.ForceInfo(1, std::string(90, 'L'), false);
    HandlerRun run = RunHandler(TestGetOptionByID, hCal, "0\n1\n-1\n");
    EXPECT_EQ(run.result, 0);
    EXPECT_TRUE(Contains(run.output, "\n    0. " + name40.substr(0, 30) + "    1. " + std::string(30, 'L') + "\n"));
    EXPECT_TRUE(Contains(run.output, "\n" + name40.substr(0, 35) + " = 0\n"));
    EXPECT_TRUE(Contains(run.output, "\n" + std::string(35, 'L') + " = 2000\n"));

}

// ---- DSD management and reading ----

TEST_F(HandlersTest, DsdInformationTheDeviceNeverReportsIsShownByItsCodes)
{
    std::vector<Shown> cases = {
        {"EEPROM", [](Device &d) { d.dsd.nvm.ForceInfo(0, 0); }, TestGetDSDInfo, "",
         {"    NVM type         = EEPROM (0)\n", "    Flash map type   = Not applicable (0)\n"}},
        {"unknown NVM type", [](Device &d) { d.dsd.nvm.ForceInfo(7, 1); }, TestGetDSDInfo, "",
         {"    NVM type         = INVALID VALUE (7)\n", "    Flash map type   = Flash 1.x (1)\n"}},
        {"unknown flash map", [](Device &d) { d.dsd.nvm.ForceInfo(2, 3); }, TestGetDSDInfo, "",
         {"    NVM type         = INVALID VALUE (2)\n", "    Flash map type   = INVALID VALUE (3)\n"}},
        {"a section without the known bits", [](Device &d) { d.dsd.nvm.ForceBitmap(1, 0x10); }, TestGetFlashDSDInfo, "",
         {"     1        0x10                                    \n"}},
        {"15 blocks", [](Device &d) { d.dsd.ForceBlockCount(15); }, TestGetDSDChecksums, "",
         {"    unused checksum = F480\n 12 DSD blocks found.\n\nGetDSDChecksums was SUCCESSFUL.\n"}},
        {"no block", [](Device &d) { d.dsd.ForceBlockCount(0); }, TestAreDSDChecksumsValid, "",
         {"\nAreDSDChecksumsValid:\n  0 DSD blocks found.\n\nAreDSDChecksumsValid was SUCCESSFUL.\n"}},
    };
    ExpectShown(cases);
}

// A connect and a disconnect that the device took answer 0, as every handler does.
TEST_F(HandlersTest, ConnectAndDisconnectAnswerZero)
{
    EXPECT_EQ(RunHandler(TestDisconnectDevice, hCal, "").result, 0);
    EXPECT_EQ(RunHandler(TestConnectDevice, hCal, "").result, 0);
}

TEST_F(HandlersTest, DsdReadsAndCopiesTakeWhatIsTypedAndDumpOnlyWhatWasRead)
{
    device().dsd.nvm.Section(0)[0x10] = 0x7F;  // the copy offset is hexadecimal: 10 is 16
    EXPECT_EQ(RunHandler(TestCopyDSDSection, hCal, "0\n1\n1\n10\n").result, 0);
    EXPECT_EQ(device().dsd.nvm.Section(1)[0x10], 0x7F);

    q7sim::control::FailNext("Q7_ReadDSDBytes", 1, "read reached the device");
    HandlerRun run = RunHandler(TestReadDSDBlock, hCal, "0\n1073741824\n");
    EXPECT_TRUE(EndsWith(run.output, "\nERROR: Block size of 1073741824 words is too large (at most 1073741823)\n"));
    EXPECT_EQ(run.result, -1);
    uint8_t byte = 0;
    EXPECT_STREQ(Q7_ReadDSDBytes(hCal, &byte, 1, 0), "read reached the device") << "nothing was read before";

    q7sim::control::ShortRead("Q7_ReadDSDRegionByID", 1, 5);
    run = RunHandler(TestReadDSDRegionByID, hCal, "4\n");
    // The first five bytes of region 4, the calibration record, and no more.
    EXPECT_TRUE(EndsWith(run.output, "\nDSD region size = 2488 bytes\n0000:  00 02 01 2A 24\n"
                                     "\nReadDSDRegionByID was SUCCESSFUL.\n"))
        << run.output;
}

// A device that takes the NVM mode but stays in another one would have the
// writes of PART 1 and PART 2 land in the NVM itself: the test stops first.
// Before that it puts the device in Tx CW, 4 QAM, keeping the CW offset and
// the loopback transmitter it found.
TEST_F(HandlersTest, AnNvmModeThatDoesNotTakeEffectStopsTheNvmModeTestBeforeAnyWrite)
{
    struct Case {
        uint32_t modeBefore;
        unsigned ignoredSets;
        const char *tail;
    } cases[] = {
        {1, 1, "Setting NVM mode = 0\n====================\n\nERROR: The device is in NVM mode 1 after NVM mode 0 was set\n"},
        {0, 2, "Setting NVM mode = 1\n====================\n\nERROR: The device is in NVM mode 0 after NVM mode 1 was set\n"},
    };
    q7sim::control::RecordCalls();
    for (const Case &c : cases) {
        ASSERT_EQ(Q7_SetOptionByID(hCal, Q7_OPTION_NVM_MODE, c.modeBefore), nullptr);
        ASSERT_EQ(Q7_SetDeviceMode(hCal, 5, 1, -250, 2), nullptr);
        const std::vector<uint8_t> storesBefore = DsdStores();
        q7sim::control::IgnoreNext("Q7_SetOptionByID", c.ignoredSets);
        HandlerRun run = RunHandler(NvmModeTest, hCal, "0\n");
        EXPECT_EQ(run.result, -1);
        EXPECT_TRUE(EndsWith(run.output, c.tail)) << run.output;
        EXPECT_TRUE(DsdStores() == storesBefore) << "nothing is written";
    }
    std::vector<LoggedCall> txCwSets;
    for (const LoggedCall &call : LoggedCallsOf({"Q7_SetDeviceMode"}))
        if (call.second[0] == 2)
            txCwSets.push_back(call);
    EXPECT_EQ(txCwSets, std::vector<LoggedCall>(2, {"Q7_SetDeviceMode", {2, 0, -250, 2}}));
}

}  // namespace
