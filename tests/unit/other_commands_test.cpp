#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "Device.h"
#include "SimControl.h"
#include "commands.h"
#include "console_capture.h"

namespace {

class OtherCommandsTest : public SimulatedDeviceTest {
protected:
    q7sim::Device &device() { return *q7sim::control::OpenDevice(); }
};

size_t Count(const std::string &text, const std::regex &pattern)
{
    return static_cast<size_t>(std::distance(std::sregex_iterator(text.begin(), text.end(), pattern),
                                             std::sregex_iterator()));
}

const char kReadRficPrompts[] = "     RFIC Bank Address\t\t\t\t\t\t?      RFIC register number (hex)\t\t\t\t\t? "
                                "     RFIC read timing (0=GTB based, 1=Immediate)? ";

TEST_F(OtherCommandsTest, NullHandlePrintsNothingExceptInTheVersionReport)
{
    for (auto handler : {TestReadGPIOState, TestSetGPIOConfiguration, TestSetGPIOPinState, TestReadRFICRegister,
                         TestWriteRFICRegister, TestGetTemperature, TestGetGPADCValue, TestSetGPDACValue,
                         TestResetRxSpectrum, TestGetRxSpectrum}) {
        HandlerRun run = RunHandler(handler, nullptr, "1 1 1 1\n");
        EXPECT_EQ(run.result, -1);
        EXPECT_EQ(run.output, "");
    }
    HandlerRun version = RunHandler(TestGetVersionInfo, nullptr);
    EXPECT_EQ(version.result, -1);
    EXPECT_EQ(version.output, "\nGetVersionInfo:\n\nERROR: Invalid Cal API interface handle\n");
}

TEST_F(OtherCommandsTest, GpioPermissionIsReadAsHexAndPinWritesShowInTheState)
{
    HandlerRun config = RunHandler(TestSetGPIOConfiguration, hCal, "ff\n");
    EXPECT_EQ(config.result, 0);
    EXPECT_EQ(config.output,
              "\nSetGPIOConfiguration:\n"
              "The parameters specify the configuration of each pin:\n"
              "  GPIO write permission: 0=read-only; 1=read-write\n"
              "Please enter:\n"
              "    GPIO write permission (hex) ? "
              "\nSetGPIOConfiguration was SUCCESSFUL.\n");
    EXPECT_EQ(device().gpio.writePermission(), 0xFFu);

    HandlerRun refused = RunHandler(TestSetGPIOPinState, hCal, "10\n1\n");
    EXPECT_EQ(refused.result, -1);
    EXPECT_EQ(refused.output,
              "\nSetGPIOPinState:\n    GPIO pin number (0-31) ?     GPIO pin state (0-1)   ? "
              "\nERROR: GPIO pin 10 is read-only (no write permission)\n");

    ASSERT_EQ(Q7_SetGPIOConfiguration(hCal, 0x1C00), nullptr);
    EXPECT_EQ(RunHandler(TestSetGPIOPinState, hCal, "11\n1\n").result, 0);
    HandlerRun read = RunHandler(TestReadGPIOState, hCal);
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.output,
              "\nReadGPIOState:\n"
              "     GPIO pin state            = 80F308A5\n"
              "     GPIO pin direction        = FFFF00FF (1=Input; 0=Output)\n"
              "     GPIO pin write permission = 00001C00 (0=read-only; 1=read-write)\n"
              "\nReadGPIOState was SUCCESSFUL.\n");
}

TEST_F(OtherCommandsTest, RficRegisterNumbersAndDataAreHexAndTheDataShowsEightDigits)
{
    HandlerRun write = RunHandler(TestWriteRFICRegister, hCal, "0\n1e\nbeef\n1\n");
    EXPECT_EQ(write.result, 0);
    EXPECT_EQ(write.output,
              "\nWriteRFICRegister:\n"
              "\t RFIC Bank Address\t\t?      RFIC register number (hex)\t\t\t?      RFIC register data (hex)\t\t\t? "
              "     RFIC write timing (0=GTB based, 1=Immediate)? "
              "\n\nWriteRFICRegister was SUCCESSFUL.\n");

    HandlerRun read = RunHandler(TestReadRFICRegister, hCal, "0\n1E\n0\n");
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.output, std::string("\nReadRFICRegister:\n") + kReadRficPrompts +
                               "\n     RFIC register data = 0000BEEF\n\nReadRFICRegister was SUCCESSFUL.\n");

    HandlerRun bad = RunHandler(TestReadRFICRegister, hCal, "0\n40\n1\n");
    EXPECT_EQ(bad.result, -1);
    EXPECT_EQ(bad.output, std::string("\nReadRFICRegister:\n") + kReadRficPrompts +
                              "\nERROR: RFIC register 0x40 is out of range (0x0-0x3F)\n");
}

TEST_F(OtherCommandsTest, TemperatureIsRoundedToWholeDegrees)
{
    device().thermal.ForceTemperature(36.6);
    HandlerRun run = RunHandler(TestGetTemperature, hCal);
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.output, "\nGetTemperature:\n    Temperature = 37 C\n\nGetTemperature was SUCCESSFUL.\n");
}

TEST_F(OtherCommandsTest, DacVoltageIsADoubleAndTheAdcValueIsDecimal)
{
    HandlerRun dac = RunHandler(TestSetGPDACValue, hCal, "0\n3.3\n");
    EXPECT_EQ(dac.result, 0);
    EXPECT_EQ(dac.output,
              "\nSetGPDACValue:\n     GP DAC mux setting (0-3) ?      GP DAC voltage (Volts)   ? "
              "\nSetGPDACValue was SUCCESSFUL.\n");
    EXPECT_EQ(device().analog.dac(0), 3.3);

    HandlerRun adc = RunHandler(TestGetGPADCValue, hCal, "0\n");
    EXPECT_EQ(adc.result, 0);
    EXPECT_TRUE(std::regex_match(adc.output, std::regex("\nGetGPADCValue:\n     GP ADC mux setting \\(0-3\\) \\?      "
                                                        "Value = 102[23]\n\nGetGPADCValue was SUCCESSFUL.\n")))
        << adc.output;
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
    const std::regex field(value);
    for (std::sregex_iterator it(seventeen.output.begin(), seventeen.output.end(), field), end; it != end; ++it)
        EXPECT_EQ(it->length(), 7);
}

TEST_F(OtherCommandsTest, SpectrumListStopsAtTheCapacityWhateverLengthIsReported)
{
    ASSERT_EQ(Q7_ResetRxSpectrum(hCal, 0, 0), nullptr);
    device().spectrum.ForceLength(5000);
    HandlerRun run = RunHandler(TestGetRxSpectrum, hCal);
    EXPECT_EQ(run.result, 0);
    EXPECT_NE(run.output.find("\nSpectrum length = 5000\n"), std::string::npos);
    EXPECT_EQ(Count(run.output, std::regex("\n[ \\d]{4}:")), 128u);
    EXPECT_NE(run.output.find("\n2032:"), std::string::npos);
    EXPECT_EQ(run.output.find("\n2048:"), std::string::npos);
}

TEST_F(OtherCommandsTest, VersionReportCutsTheDriverTextAt31Characters)
{
    device().versions.ForceDriverVersion("0123456789012345678901234567890123456789");
    device().versions.ForceRfChipVersion(0x12);
    HandlerRun run = RunHandler(TestGetVersionInfo, hCal);
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.output,
              "\nGetVersionInfo:\n"
              "    PHY firmware version    = 00030215\n"
              "    MAC firmware version    = 2.7.14\n"
              "    Driver version          = 0123456789012345678901234567890\n"
              "    Halvix Cal API library version = 1.4.0\n"
              "    Local Cal API library version = 1.4.0\n"
              "    Baseband chip version   = 0B2501A0\n"
              "    RF chip version         = 0012\n"
              "\nGetVersionInfo was SUCCESSFUL.\n");

    device().versions.ForceRfChipVersion(0x12345);
    EXPECT_NE(RunHandler(TestGetVersionInfo, hCal).output.find("    RF chip version         = 12345\n"),
              std::string::npos);
}

TEST_F(OtherCommandsTest, DeviceErrorsPrintNoResultLines)
{
    q7sim::control::FailNext("Q7_ReadGPIOState", 1, "GPIO block not clocked");
    EXPECT_EQ(RunHandler(TestReadGPIOState, hCal).output, "\nReadGPIOState:\n\nERROR: GPIO block not clocked\n");

    q7sim::control::FailNext("Q7_GetTemperature", 1, "Sensor busy");
    EXPECT_EQ(RunHandler(TestGetTemperature, hCal).output, "\nGetTemperature:\n\nERROR: Sensor busy\n");

    EXPECT_EQ(RunHandler(TestGetRxSpectrum, hCal).output,
              "\nGetRxSpectrum\n\nERROR: The Rx spectrum capture is not set up (reset it first)\n");

    HandlerRun reset = RunHandler(TestResetRxSpectrum, hCal, "17\n1\n");
    EXPECT_EQ(reset.result, -1);
    EXPECT_EQ(reset.output,
              "\nResetRxSpectrum\n     Shift for IIR filter alpha (0-16) ?      Symbol index to be captured       ? "
              "\nERROR: IIR filter alpha shift 17 is out of range (0-16)\n");

    q7sim::control::FailNext("Q7_GetVersionInfo", 1, "Firmware not responding");
    EXPECT_EQ(RunHandler(TestGetVersionInfo, hCal).output, "\nGetVersionInfo:\n\nERROR: Firmware not responding\n");
}

}  // namespace
