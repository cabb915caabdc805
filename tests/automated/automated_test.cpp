// The automated test against the simulated device, with a sleep that returns
// at once: the device-mode stack, whole runs on a healthy device, and each
// read-back fault showing FAIL at its own check while the run goes on.
#include <gtest/gtest.h>

#include <signal.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "SimControl.h"
#include "automated.h"
#include "console.h"
#include "console_capture.h"
#include "failing_malloc.h"
#include "instant_sleep.h"

namespace {

using q7sim::control::FailNext;
using q7sim::control::IgnoreNext;
using q7sim::control::SkewOutput;

// The answers of a whole run: Enter after each group and at the pause inside
// the other-command group, and load mode 1 for LoadDSD.
const char kRunAnswers[] = "\n\n\n\n\n\n1\n\n\n";
const char kFinalPop[] = "Pop[ 0] - set device mode: mode = 0 modulation = 0 CW Offset=0 LoopbackTX=0 \n";

class AutomatedTestTest : public SimulatedDeviceTest {
protected:
    void SetUp() override
    {
        SimulatedDeviceTest::SetUp();
        ASSERT_EQ(u32DeviceModeStackPointer, 0u);
    }
    void TearDown() override
    {
        EXPECT_EQ(u32DeviceModeStackPointer, 0u) << "every push needs its pop";
        SimulatedDeviceTest::TearDown();
    }

    std::string Run(const std::string &answers = kRunAnswers)
    {
        HandlerRun run = RunHandler(AutomatedTest, hCal, answers);
        EXPECT_EQ(run.result, 0);
        EXPECT_TRUE(EndsWith(run.output, kFinalPop)) << "the run must go on to its final pop";
        return run.output;
    }

    q7sim::DeviceMode Mode() { return device().modes.mode(); }

    void ExpectMode(uint32_t dutMode, uint32_t modulation, int32_t cwOffset, uint32_t loopbackTx)
    {
        q7sim::DeviceMode mode = Mode();
        EXPECT_EQ(mode.dutMode, dutMode);
        EXPECT_EQ(mode.modulationType, modulation);
        EXPECT_EQ(mode.cwOffsetKHz, cwOffset);
        EXPECT_EQ(mode.loopbackTx, loopbackTx);
    }
};

std::vector<std::string> LinesStartingWith(const std::string &text, const std::vector<std::string> &prefixes)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        for (const std::string &prefix : prefixes)
            if (line.compare(0, prefix.size(), prefix) == 0)
                lines.push_back(line);
    return lines;
}

// Each verdict line in run order, "PASS" or "FAIL".
std::vector<std::string> Verdicts(const std::string &output)
{
    std::vector<std::string> verdicts;
    std::istringstream in(output);
    for (std::string line; std::getline(in, line);)
        if (EndsWith(line, "PASS") || EndsWith(line, "FAIL"))
            verdicts.push_back(line.substr(line.size() - 4));
    return verdicts;
}

// ---- The device-mode stack ----

TEST_F(AutomatedTestTest, FifteenPushesFitAndTheSixteenthOverflowsWithoutTouchingTheDevice)
{
    std::string output = RunWithInput("", [&] {
        for (uint32_t i = 1; i <= 15; i++)
            PushDeviceMode(hCal, i % 6, i % 3, static_cast<int32_t>(i * 100), i % 4);
    });
    EXPECT_TRUE(EndsWith(output, "Push[15] - set device mode: mode = 3 modulation = 0 CW Offset=1500 LoopbackTX=3 \n"));
    ExpectMode(3, 0, 1500, 3);

    output = RunWithInput("", [&] { PushDeviceMode(hCal, 1, 1, 1, 1); });
    EXPECT_EQ(output, "ERROR: Device mode stack OVERFLOW\n");
    EXPECT_EQ(u32DeviceModeStackPointer, 15u);
    ExpectMode(3, 0, 1500, 3);

    output = RunWithInput("", [&] { PopDeviceMode(hCal, nullptr, nullptr, nullptr, nullptr); });
    EXPECT_EQ(output, "Pop[14] - set device mode: mode = 2 modulation = 2 CW Offset=1400 LoopbackTX=2 \n");
    ExpectMode(2, 2, 1400, 2);

    output = RunWithInput("", [&] {
        for (int i = 0; i < 14; i++)
            PopDeviceMode(hCal, nullptr, nullptr, nullptr, nullptr);
    });
    EXPECT_TRUE(EndsWith(output, kFinalPop));
}

TEST_F(AutomatedTestTest, APopHandsOutTheRecordBeneathAndAnEmptyStackUnderflows)
{
    uint32_t dutMode = 99, modulation = 99, loopbackTx = 99;
    int32_t cwOffset = 99;
    RunWithInput("", [&] {
        PushDeviceMode(hCal, 5, 2, 300, 1);
        PushDeviceMode(hCal, 2, 0, 1000, 0);
    });
    // A mode set past the stack is undone by the pop all the same.
    ASSERT_EQ(Q7_SetDeviceMode(hCal, 1, 0, 1000, 0), nullptr);
    RunWithInput("", [&] { PopDeviceMode(hCal, &dutMode, &modulation, &cwOffset, &loopbackTx); });
    EXPECT_EQ((std::vector<uint32_t>{dutMode, modulation, static_cast<uint32_t>(cwOffset), loopbackTx}),
              (std::vector<uint32_t>{5, 2, 300, 1}));
    ExpectMode(5, 2, 300, 1);

    RunWithInput("", [&] { PopDeviceMode(hCal, &dutMode, nullptr, &cwOffset, nullptr); });
    EXPECT_EQ(dutMode, 0u);
    EXPECT_EQ(cwOffset, 0);
    EXPECT_EQ(modulation, 2u) << "a null out-pointer is skipped";

    dutMode = modulation = loopbackTx = 77;
    cwOffset = 77;
    std::string output = RunWithInput("", [&] { PopDeviceMode(hCal, &dutMode, &modulation, &cwOffset, &loopbackTx); });
    EXPECT_EQ(output, "ERROR: Device mode stack UNDERFLOW\n");
    EXPECT_EQ((std::vector<uint32_t>{dutMode, modulation, static_cast<uint32_t>(cwOffset), loopbackTx}),
              (std::vector<uint32_t>{77, 77, 77, 77}));
    EXPECT_EQ(u32DeviceModeStackPointer, 0u);
}

// ---- Whole runs on a healthy device ----

TEST_F(AutomatedTestTest, AHealthyDevicePassesEveryCheckAndEndsInNormalModeTwiceOver)
{
    ForgetSleeps();
    const std::string first = Run();
    // The waits after the band writes, the attenuator writes and the register 30 checks.
    EXPECT_EQ(Sleeps(), (std::vector<uint32_t>{500, 500, 500, 500, 500, 100, 100, 100, 100}));
    // 3 band, 2 gain-state, 2 attenuator, 3 power, 3 switch, 2 LED, 4 register checks.
    EXPECT_EQ(Count(first, "PASS"), 19u);
    EXPECT_EQ(Count(first, "FAIL"), 0u);
    ExpectMode(0, 0, 0, 0);

    const std::string second = Run();
    EXPECT_EQ(LinesStartingWith(second, {"Push[", "Pop["}), LinesStartingWith(first, {"Push[", "Pop["}));
    EXPECT_EQ(Count(second, "PASS"), 19u);
}

TEST_F(AutomatedTestTest, EndOfInputAbandonsTheGroupsLeftOnceAndRestoresTheMode)
{
    struct Case {
        const char *answers;
        const char *lastGroupHeading;
        const char *notReached;
    } cases[] = {
        {"\n", "Testing GetRSSIReport and related commands", "TX COMMAND GROUP"},
        // At the pause inside the other-command group: the spectrum is not reset.
        {"\n\n\n\n", "Testing GetGPADCValue and SetGPDACValue", "ResetRxSpectrum"},
        // At the LoadDSD prompt: its handler says it, the driver does not again,
        // and no DSD command runs after it.
        {"\n\n\n\n\n\n", "Testing DSD Management Commands", "IsDSDValid:"},
    };
    for (const Case &c : cases) {
        std::string output = Run(c.answers);
        EXPECT_TRUE(Contains(output, c.lastGroupHeading)) << c.answers;
        EXPECT_FALSE(Contains(output, c.notReached)) << c.answers;
        EXPECT_EQ(Count(output, "\nEnd of input: command abandoned.\n"), 1u) << output;
        ExpectMode(0, 0, 0, 0);
    }
}

// ---- Read-back faults: FAIL at the check concerned, the run goes on ----

// A device that answers no read at all: every value shows what was set
// before the read (zeros, cleared buffers, nothing dumped for a size it could
// not learn), every check is FAIL, nothing is written back that was never
// read, and the run still goes on to its final pop. The whole run is kept in
// golden/automated/every_read_fails.out (written anew when it is missing).
TEST_F(AutomatedTestTest, EveryReadThatFailsShowsItsPresetAndFailsItsCheck)
{
    for (const char *read : {"Q7_AreDSDChecksumsValid", "Q7_GetBandConfig", "Q7_GetCINR", "Q7_GetCalibrationInfo",
                             "Q7_GetDSDChecksums", "Q7_GetDSDInfo", "Q7_GetDSDRegionSizeByID", "Q7_GetDeviceMode",
                             "Q7_GetFrameErrorStatistics", "Q7_GetGPADCValue", "Q7_GetMACAddress", "Q7_GetNVMSize",
                             "Q7_GetPerAntThermalNoise", "Q7_GetRSSIReport", "Q7_GetRxAntConfig", "Q7_GetRxGainState",
                             "Q7_GetRxSpectrum", "Q7_GetTemperature", "Q7_GetTxAttn", "Q7_GetTxDiversitySwitch",
                             "Q7_GetTxOutputPower", "Q7_GetVersionInfo", "Q7_IsCalibrationValid", "Q7_IsDSDValid",
                             "Q7_IsSync", "Q7_ReadDSDBytes", "Q7_ReadDSDRegionByID", "Q7_ReadGPIOState",
                             "Q7_ReadRFICRegister"})
        FailNext(read, 1000, "Device fault");
    HandlerRun run = RunHandler(AutomatedTest, hCal, kRunAnswers);
    EXPECT_EQ(Count(run.output, "PASS"), 0u);
    EXPECT_EQ(Count(run.output, "FAIL"), 17u) << "the band and register 30 are not put back, so not judged";

    const std::string path = std::string(Q7_GOLDEN_DIR) + "/automated/every_read_fails.out";
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        std::ofstream(path, std::ios::binary) << run.output;
        FAIL() << "recorded " << path << ": check it line by line";
    }
    std::ostringstream expected;
    expected << in.rdbuf();
    EXPECT_EQ(run.output, expected.str());
}

// Each value a check compares, read back different in turn: FAIL at exactly
// the checks that read it (in run order: 3 band, 2 gain-state, 2 attenuator,
// 3 power, 3 switch, 2 LED and 4 register checks), and the run goes on.
TEST_F(AutomatedTestTest, EveryComparedValueThatReadsBackDifferentlyFailsItsChecks)
{
    using q7sim::control::StickGpioPin;
    struct Fault {
        std::string what;
        std::function<void()> arm;
        std::vector<size_t> failing;
    };
    std::vector<Fault> faults = {
        {"band frequency", [] { SkewOutput("Q7_GetBandConfig", 0, 1000); }, {0, 1, 2}},
        {"bandwidth", [] { SkewOutput("Q7_GetBandConfig", 1, 1500); }, {0, 1, 2}},
        {"total gain, never compared", [] { SkewOutput("Q7_GetRxGainState", 3, 0.5); }, {}},
        {"power", [] { SkewOutput("Q7_GetTxOutputPower", 0, -0.01); }, {7, 8, 9}},
        {"diversity switch", [] { SkewOutput("Q7_GetTxDiversitySwitch", 0, 1); }, {10, 11, 12}},
    };
    for (unsigned output = 0; output < 3; output++)
        faults.push_back({"Rx gain state value " + std::to_string(output),
                          [output] { SkewOutput("Q7_GetRxGainState", output, 1); }, {3, 4}});
    for (unsigned output = 0; output < 6; output++)
        faults.push_back({"Tx attenuator value " + std::to_string(output),
                          [output] { SkewOutput("Q7_GetTxAttn", output, output == 0 ? 0.125 : 1); }, {5, 6}});
    for (unsigned pin = 10; pin <= 12; pin++) {
        faults.push_back({"LED pin " + std::to_string(pin) + " stuck at 1", [pin] { StickGpioPin(pin, 1); }, {13}});
        faults.push_back({"LED pin " + std::to_string(pin) + " stuck at 0", [pin] { StickGpioPin(pin, 0); }, {14}});
    }
    for (const Fault &fault : faults) {
        fault.arm();
        std::vector<std::string> expected(19, "PASS");
        for (size_t check : fault.failing)
            expected[check] = "FAIL";
        EXPECT_EQ(Verdicts(Run()), expected) << fault.what;
        q7sim::control::Reset();
        SetUp();
    }
}

TEST_F(AutomatedTestTest, ARegisterThatIgnoresWritesFailsUntilItsOwnValueIsWrittenBack)
{
    uint32_t saved = 0;
    ASSERT_EQ(Q7_ReadRFICRegister(hCal, 0, 30, 1, &saved), nullptr);
    char expected[200];
    snprintf(expected, sizeof expected,
             "Wrote 0x0000 to Reg 30 - Read back %04X - FAIL\nWrote 0x0000 to Reg 30 - Read back %04X - FAIL\n"
             "Wrote 0xffff to Reg 30 - Read back %04X - FAIL\nWrote 0x%04X to Reg 30 - Read back %04X - PASS\n",
             saved, saved, saved, saved, saved);
    IgnoreNext("Q7_WriteRFICRegister", 3);
    EXPECT_TRUE(Contains(Run(), expected));

    FailNext("Q7_ReadRFICRegister", 2, "Device fault");  // the chip ID and the saved value
    std::string output = Run();
    EXPECT_TRUE(Contains(output, "ERROR: Device fault\nRFIC ID = 0000\n"));
    EXPECT_TRUE(Contains(output, "Read back FFFF - PASS\nReg 30 not restored: it could not be read at the start\n"));
}

// ---- A check whose read-back call fails is FAIL, never PASS ----

TEST_F(AutomatedTestTest, EveryCheckWhoseReadBackFailsIsFailAndTheRunGoesOn)
{
    struct ReadBack {
        const char *operation;
        unsigned call;
        size_t verdict;  // its line among the 19
    } readBacks[] = {
        {"Q7_GetBandConfig", 2, 0},         {"Q7_GetBandConfig", 3, 1},        {"Q7_GetBandConfig", 4, 2},
        {"Q7_GetRxGainState", 2, 3},        {"Q7_GetRxGainState", 4, 4},       {"Q7_GetTxAttn", 2, 5},
        {"Q7_GetTxAttn", 3, 6},             {"Q7_GetTxOutputPower", 1, 7},     {"Q7_GetTxOutputPower", 2, 8},
        {"Q7_GetTxOutputPower", 3, 9},      {"Q7_GetTxDiversitySwitch", 1, 10}, {"Q7_GetTxDiversitySwitch", 2, 11},
        {"Q7_GetTxDiversitySwitch", 3, 12}, {"Q7_ReadGPIOState", 3, 13},       {"Q7_ReadGPIOState", 4, 14},
        {"Q7_ReadRFICRegister", 3, 15},     {"Q7_ReadRFICRegister", 4, 16},    {"Q7_ReadRFICRegister", 5, 17},
        {"Q7_ReadRFICRegister", 6, 18},
    };
    for (const ReadBack &readBack : readBacks) {
        q7sim::control::FailCall(readBack.operation, readBack.call, "Device fault");
        std::vector<std::string> expected(19, "PASS");
        expected[readBack.verdict] = "FAIL";
        EXPECT_EQ(Verdicts(Run()), expected) << readBack.operation << " call " << readBack.call;
        q7sim::control::Reset();
        SetUp();
    }
}

TEST_F(AutomatedTestTest, ASignalEndsTheRunAtItsNextPauseWithTheModePoppedBack)
{
    CatchStopSignalsInTest();
    // At the first band write, before its 500 ms wait; once, as a second
    // SIGINT ends the program at once.
    q7sim::control::OnEveryCall([raised = false](const std::string &operation) mutable {
        if (operation == "Q7_SetBandConfig" && !raised) {
            raised = true;
            raise(SIGINT);
        }
    });
    ForgetSleeps();
    HandlerRun run = RunHandler(AutomatedTest, hCal, kRunAnswers);
    ReleaseStopSignals();
    EXPECT_TRUE(Sleeps().empty()) << "no wait is made once the signal came";
    EXPECT_EQ(StopSignal(), SIGINT);
    EXPECT_TRUE(EndsWith(run.output, "\nInterrupted by SIGINT: command abandoned.\n" + std::string(kFinalPop)))
        << run.output;
    EXPECT_FALSE(Contains(run.output, "Press Enter")) << "no pause waits once the signal came";
    EXPECT_FALSE(Contains(run.output, "Testing GetRxAntConfig")) << "the groups after it are abandoned";
    ExpectMode(0, 0, 0, 0);
}

// The engineer insisting: a second SIGINT, while the first one's restore is
// being made, ends the program at once, by the signal.
TEST_F(AutomatedTestTest, ASecondSigintEndsTheProgramAtOnce)
{
    EXPECT_EXIT(
        {
            CatchStopSignalsInTest();
            q7sim::control::OnEveryCall([raised = 0](const std::string &operation) mutable {
                if (raised == 1 || (raised == 0 && operation == "Q7_SetBandConfig")) {
                    raised++;
                    raise(SIGINT);
                }
            });
            ForgetSleeps();
            (void)RunHandler(AutomatedTest, hCal, kRunAnswers);
            std::exit(0);
        },
        ::testing::KilledBySignal(SIGINT), "");
}

// Once the session has ended the run sends only what puts the device back
// (the band, register 30, the pops) and judges nothing more: no verdict is
// taken without its settling time.
TEST_F(AutomatedTestTest, ASignalMidRunPutsBackWhatTheGroupChangedAndJudgesNothingMore)
{
    uint32_t savedRegister = 0;
    ASSERT_EQ(Q7_ReadRFICRegister(hCal, 0, 30, 1, &savedRegister), nullptr);
    struct Case {
        const char *operation;
        unsigned nth;
        size_t verdicts;  // given before the signal
    } cases[] = {{"Q7_SetBandConfig", 2, 1}, {"Q7_WriteRFICRegister", 2, 16}, {"Q7_ReadDSDRegionByID", 1, 19}};
    for (const Case &c : cases) {
        CatchStopSignalsInTest();
        q7sim::control::OnEveryCall([&c, seen = 0u](const std::string &operation) mutable {
            if (operation == c.operation && ++seen == c.nth)
                raise(SIGTERM);
        });
        HandlerRun run = RunHandler(AutomatedTest, hCal, kRunAnswers);
        ReleaseStopSignals();
        EXPECT_EQ(Verdicts(run.output).size(), c.verdicts) << c.operation;
        EXPECT_FALSE(Contains(run.output, "Region ID = 2 ")) << c.operation;  // no region read after the signal
        EXPECT_TRUE(EndsWith(run.output, "\nInterrupted by SIGTERM: command abandoned.\n" + std::string(kFinalPop)))
            << run.output;
        EXPECT_EQ(device().modes.band().centerFreqKHz, 2500000u) << c.operation;
        EXPECT_EQ(device().modes.band().bandwidthKHz, 10000u) << c.operation;
        uint32_t registerNow = 0;
        EXPECT_EQ(Q7_ReadRFICRegister(hCal, 0, 30, 1, &registerNow), nullptr);
        EXPECT_EQ(registerNow, savedRegister) << c.operation;
        ExpectMode(0, 0, 0, 0);
        q7sim::control::Reset();
        SetUp();
    }

    // A restore whose read-back fails says so with the zeros it was left.
    for (const char *operation : {"Q7_SetBandConfig", "Q7_WriteRFICRegister"}) {
        CatchStopSignalsInTest();
        q7sim::control::OnEveryCall([operation, seen = 0u](const std::string &called) mutable {
            if (called == operation && ++seen == 2) {
                raise(SIGTERM);
                FailNext("Q7_GetBandConfig", 1000, "Device fault");
                FailNext("Q7_ReadRFICRegister", 1000, "Device fault");
            }
        });
        HandlerRun run = RunHandler(AutomatedTest, hCal, kRunAnswers);
        ReleaseStopSignals();
        EXPECT_TRUE(Contains(run.output, std::string(operation) == "Q7_SetBandConfig"
                                             ? "WARNING: The band configuration is not restored: Freq = 0 - BW = 0\n"
                                             : "WARNING: Reg 30 is not restored: it reads 0000\n"))
            << run.output;
        q7sim::control::Reset();
        SetUp();
    }
}

// The final pop is confirmed by reading the mode back.
TEST_F(AutomatedTestTest, AFinalPopThatDoesNotTakeIsSaid)
{
    q7sim::control::RecordCalls();
    Run();
    unsigned modeSets = 0;
    for (const std::string &call : q7sim::control::Calls())
        modeSets += call == "Q7_SetDeviceMode";
    q7sim::control::Reset();
    SetUp();
    q7sim::control::FailCall("Q7_SetDeviceMode", modeSets, "Device busy");
    HandlerRun run = RunHandler(AutomatedTest, hCal, kRunAnswers);
    EXPECT_TRUE(EndsWith(run.output, std::string(kFinalPop) + "WARNING: The device mode is not restored: mode = 4 "
                                                              "modulation = 1 CW Offset=1000 LoopbackTX=0\n"))
        << run.output;
}

// ---- What the run sends the device ----

// Register 30 and the chip ID: bank 0, the data, and timing 1 (at once) on
// every read and write; a stop signal at the second write leaves only the
// saved value to put back and read.
TEST_F(AutomatedTestTest, EveryRegisterCallNamesItsBankRegisterDataAndTiming)
{
    uint32_t saved = 0;
    ASSERT_EQ(Q7_ReadRFICRegister(hCal, 0, 30, 1, &saved), nullptr);
    const LoggedCall chipId{"Q7_ReadRFICRegister", {0, 0, 1}};
    const LoggedCall read30{"Q7_ReadRFICRegister", {0, 30, 1}};
    auto write30 = [](double data) { return LoggedCall{"Q7_WriteRFICRegister", {0, 30, data, 1}}; };
    struct Case {
        bool signal;
        std::vector<LoggedCall> calls;
    } cases[] = {
        {false,
         {chipId, read30, write30(0), read30, write30(0), read30, write30(0xFFFF), read30, write30(saved), read30}},
        {true, {chipId, read30, write30(0), read30, write30(0), write30(saved), read30}},
    };
    for (const Case &c : cases) {
        CatchStopSignalsInTest();
        q7sim::control::OnEveryCall([&c, seen = 0u](const std::string &operation) mutable {
            if (c.signal && operation == "Q7_WriteRFICRegister" && ++seen == 2)
                raise(SIGTERM);
        });
        q7sim::control::RecordCalls();
        RunHandler(AutomatedTest, hCal, kRunAnswers);
        ReleaseStopSignals();
        EXPECT_EQ(LoggedCallsOf({"Q7_ReadRFICRegister", "Q7_WriteRFICRegister"}), c.calls) << "signal: " << c.signal;
        q7sim::control::Reset();
        SetUp();
    }
}

// The loopback group: the TR switches, and the calibrations with their fixed
// parameters (frequency index 5; scan list 5 at -40 dBm on both antennas;
// transmitter 0, the active one), each in the mode pushed for it.
TEST_F(AutomatedTestTest, TheLoopbackCalibrationsAreSentTheirFixedParameters)
{
    q7sim::control::RecordCalls();
    EXPECT_EQ(RunHandler(AutomatedLoopbackGroupTest, hCal, "").result, 0);
    const std::vector<LoggedCall> expected = {
        {"Q7_SetDeviceMode", {5, 0, 1000, 0}},   {"Q7_SetTRSwitch", {0, 0}},
        {"Q7_CalibrateTxPoutFreqCorr", {5}},     {"Q7_SetDeviceMode", {4, 0, 1000, 0}},
        {"Q7_CalibrateFESteps", {5, -40, -40}},  {"Q7_SetDeviceMode", {5, 0, 1000, 0}},
        {"Q7_CalibrateTxExtAttnStep", {0}},      {"Q7_SetDeviceMode", {0, 0, 0, 0}},
    };
    EXPECT_EQ(LoggedCallsOf({"Q7_SetDeviceMode", "Q7_SetTRSwitch", "Q7_CalibrateTxPoutFreqCorr", "Q7_CalibrateFESteps",
                             "Q7_CalibrateTxExtAttnStep"}),
              expected);
}

// Each buffer of the DSD read/write group failed in turn (the test block's,
// then each region's): the group says so after the size it could not hold
// and goes on with the rest.
TEST_F(AutomatedTestTest, ADsdBufferThatCannotBeAllocatedIsSaidAndTheGroupGoesOn)
{
    CountAllocations();
    const std::string whole = RunHandler(AutomatedDSDReadWriteGroupTest, hCal, "").output;
    const unsigned allocations = StopCountingAllocations();
    EXPECT_GE(allocations, 2u);
    for (unsigned failing = 1; failing <= allocations; failing++) {
        CountAllocations(failing);
        HandlerRun run = RunHandler(AutomatedDSDReadWriteGroupTest, hCal, "");
        StopCountingAllocations();
        EXPECT_EQ(run.result, 0);
        EXPECT_TRUE(Contains(run.output, " bytes\nMemory allocation failed.\n")) << failing << ":\n" << run.output;
        EXPECT_TRUE(EndsWith(run.output, whole.substr(whole.rfind("\nGetNVMSize")))) << failing << ":\n" << run.output;
    }
}

// ---- The loopback group stops at its first failing calibration ----

// Each group says how it went: 0, or -1 where it stops early (a failing
// calibration, a spectrum that cannot be reset), whatever the driver makes of it.
TEST_F(AutomatedTestTest, EachGroupReturnsZeroOrMinusOneWhereItStopsEarly)
{
    struct Case {
        int (*group)(CalInterfaceHandle);
        const char *answers;
        const char *failing;  // an operation whose failure stops the group, or null
    } cases[] = {
        {AutomatedConfigurationGroupTest, "", nullptr}, {AutomatedRxGroupTest, "", nullptr},
        {AutomatedTxGroupTest, "", nullptr},            {AutomatedLoopbackGroupTest, "", "Q7_CalibrateFESteps"},
        {AutomatedOtherCommandGroupTest, "\n", "Q7_ResetRxSpectrum"}, {AutomatedDSDManagementGroupTest, "1\n", nullptr},
        {AutomatedDSDReadWriteGroupTest, "", nullptr},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(RunHandler(c.group, hCal, c.answers).result, 0);
        if (c.failing != nullptr) {
            FailNext(c.failing, 1, "Device fault");
            EXPECT_EQ(RunHandler(c.group, hCal, c.answers).result, -1) << c.failing;
        }
    }
    // A session that ends inside a group: the groups that can stop early say
    // so; the configuration, Rx, Tx and DSD groups always answer 0.
    struct Stop {
        int (*group)(CalInterfaceHandle);
        const char *operation;  // SIGTERM at its first call
        int result;
    } stops[] = {
        {AutomatedLoopbackGroupTest, "Q7_CalibrateLCTrim", -1},  {AutomatedLoopbackGroupTest, "Q7_CalibrateTxPoutFreqCorr", -1},
        {AutomatedLoopbackGroupTest, "Q7_CalibrateFESteps", -1}, {AutomatedOtherCommandGroupTest, "Q7_SetGPIOConfiguration", -1},
        {AutomatedOtherCommandGroupTest, "Q7_ReadRFICRegister", -1}, {AutomatedOtherCommandGroupTest, "Q7_GetTemperature", -1},
        {AutomatedOtherCommandGroupTest, "Q7_SetGPDACValue", -1}, {AutomatedConfigurationGroupTest, "Q7_GetDeviceMode", 0},
        {AutomatedRxGroupTest, "Q7_SetRxAntConfig", 0},         {AutomatedTxGroupTest, "Q7_SetTxAttn", 0},
        {AutomatedTxGroupTest, "Q7_SetTxOutputPower", 0},
    };
    EXPECT_EQ(RunHandler(AutomatedDSDManagementGroupTest, hCal, "").result, 0);  // input ends at its prompt
    u32DeviceModeStackPointer = 0;
    q7sim::control::Reset();
    SetUp();
    for (const Stop &stop : stops) {
        CatchStopSignalsInTest();
        q7sim::control::OnEveryCall([&stop, seen = 0u](const std::string &operation) mutable {
            if (operation == stop.operation && ++seen == 1)
                raise(SIGTERM);
        });
        EXPECT_EQ(RunHandler(stop.group, hCal, "\n").result, stop.result) << stop.operation;
        ReleaseStopSignals();
        u32DeviceModeStackPointer = 0;  // the driver pops what a group left pushed
        q7sim::control::Reset();
        SetUp();
    }
}

TEST_F(AutomatedTestTest, AFailingCalibrationStopsTheLoopbackGroupAfterItsPops)
{
    const std::string loopback = "Pop[ 1] - set device mode: mode = 5 modulation = 0 CW Offset=1000 LoopbackTX=0 \n";
    struct Stop {
        const char *operation;
        std::string tail;
    } stops[] = {
        {"Q7_CalibrateTxPoutFreqCorr", "Setting cable losses to 20 dB\n\nERROR: Device fault\n" + std::string(kFinalPop)},
        {"Q7_CalibrateFESteps", "set to -40 dBm\n\nERROR: Device fault\n" + loopback + kFinalPop},
        {"Q7_CalibrateTxExtAttnStep", "Active Transmitter set to 0\n\nERROR: Device fault\n" + std::string(kFinalPop)},
    };
    for (const Stop &stop : stops) {
        FailNext(stop.operation, 1, "Device fault");
        HandlerRun run = RunHandler(AutomatedLoopbackGroupTest, hCal);
        EXPECT_EQ(run.result, -1) << stop.operation;
        EXPECT_TRUE(EndsWith(run.output, stop.tail)) << stop.operation << run.output;
        EXPECT_EQ(u32DeviceModeStackPointer, 0u) << stop.operation;
        ExpectMode(0, 0, 0, 0);
    }

    FailNext("Q7_CalibrateFESteps", 1, "Device fault");
    std::string output = Run();
    EXPECT_FALSE(Contains(output, "Tx Ext Attn Step[ 0]"));
    EXPECT_TRUE(Contains(output, "Testing ReadGPIOState"));
    EXPECT_EQ(Count(output, "PASS"), 19u);
}

}  // namespace
