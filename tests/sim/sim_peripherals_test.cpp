#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "Device.h"
#include "Q7CalAPI.h"
#include "console_capture.h"

namespace {

class SimPeripheralsTest : public SimulatedDeviceTest {
protected:

    void ReadGpio()
    {
        ASSERT_EQ(Q7_ReadGPIOState(hCal, &state, &direction, &permission), nullptr);
    }
    uint32_t ReadRegister(uint32_t bank, uint32_t reg)
    {
        uint32_t data = 0xDEADBEEF;
        EXPECT_EQ(Q7_ReadRFICRegister(hCal, bank, reg, 1, &data), nullptr);
        return data;
    }

    uint32_t state = 0, direction = 0, permission = 0;
};

TEST_F(SimPeripheralsTest, LedPinsFollowTheOtherCommandGroupSequence)
{
    ReadGpio();
    EXPECT_EQ(direction & 0x1C00u, 0u) << "the LED pins are outputs";
    const uint32_t ledPermission = ~direction & 0x1C00u;
    EXPECT_EQ(ledPermission, 0x1C00u);
    ASSERT_EQ(Q7_SetGPIOConfiguration(hCal, ledPermission), nullptr);

    for (uint32_t value : {0u, 1u}) {
        for (uint32_t pin = 10; pin <= 12; pin++)
            EXPECT_EQ(Q7_SetGPIOPinState(hCal, pin, value), nullptr) << pin;
        ReadGpio();
        EXPECT_EQ(state & 0x1C00u, value != 0 ? 0x1C00u : 0u);
    }

    ASSERT_EQ(Q7_SetGPIOConfiguration(hCal, 0), nullptr);
    EXPECT_EQ(Text(Q7_SetGPIOPinState(hCal, 10, 0)), "GPIO pin 10 is read-only (no write permission)");
    ReadGpio();
    EXPECT_EQ(state & 0x1C00u, 0x1C00u) << "refused writes leave the LEDs on";
    EXPECT_EQ(permission, 0u);
}

TEST_F(SimPeripheralsTest, InputsAndOutOfRangePinsCannotBeWritten)
{
    ReadGpio();
    const uint32_t before = state;
    ASSERT_EQ(Q7_SetGPIOConfiguration(hCal, 0xFFFFFFFF), nullptr);
    EXPECT_EQ(Text(Q7_SetGPIOPinState(hCal, 0, 0)), "GPIO pin 0 is an input and cannot be written");
    EXPECT_EQ(Text(Q7_SetGPIOPinState(hCal, 32, 0)), "GPIO pin 32 is out of range (0-31)");
    EXPECT_EQ(Text(Q7_SetGPIOPinState(hCal, 9, 2)), "GPIO pin state 2 is out of range (0-1)");
    ReadGpio();
    EXPECT_EQ(state, before);

    device().gpio.ForceDirection(q7sim::Gpio::kBoardDirection | 0x0800u);
    device().gpio.ForceInputLevels(0x0800u);
    EXPECT_EQ(Text(Q7_SetGPIOPinState(hCal, 11, 0)), "GPIO pin 11 is an input and cannot be written");
    ReadGpio();
    EXPECT_EQ(state & 0x0800u, 0x0800u) << "an input shows the level the board drives";
}

TEST_F(SimPeripheralsTest, RficChipIdIsReadOnlyAndRegister30KeepsWhatIsWritten)
{
    EXPECT_EQ(ReadRegister(0, 0), q7sim::Rfic::kChipId);
    EXPECT_EQ(Text(Q7_WriteRFICRegister(hCal, 0, 0, 0x1234, 1)), "RFIC register 0x0 of bank 0 is the read-only chip ID");
    EXPECT_EQ(ReadRegister(0, 0), q7sim::Rfic::kChipId);

    const uint32_t saved = ReadRegister(0, 30);
    for (uint32_t value : {0x0000u, 0xFFFFu, saved}) {
        ASSERT_EQ(Q7_WriteRFICRegister(hCal, 0, 30, value, 1), nullptr);
        EXPECT_EQ(ReadRegister(0, 30), value);
    }
    ASSERT_EQ(Q7_WriteRFICRegister(hCal, 3, 0x3F, 0xA5A5, 0), nullptr);
    EXPECT_EQ(ReadRegister(3, 0x3F), 0xA5A5u);
    EXPECT_EQ(ReadRegister(0, 31), ReadRegister(0, 31)) << "reads do not disturb a register";

    uint32_t data = 0;
    EXPECT_EQ(Text(Q7_ReadRFICRegister(hCal, 4, 0, 1, &data)), "RFIC bank 4 is out of range (0-3)");
    EXPECT_EQ(Text(Q7_ReadRFICRegister(hCal, 0, 0x40, 1, &data)), "RFIC register 0x40 is out of range (0x0-0x3F)");
    EXPECT_EQ(Text(Q7_ReadRFICRegister(hCal, 0, 1, 2, &data)), "RFIC timing 2 is out of range (0=GTB based, 1=Immediate)");
    EXPECT_EQ(Text(Q7_WriteRFICRegister(hCal, 0, 30, 0x10000, 1)),
              "RFIC register data 0x10000 does not fit a 16-bit register");
}

TEST_F(SimPeripheralsTest, TemperatureRisesSlowlyWhileATransmitterIsOn)
{
    double start = 0.0, later = 0.0;
    ASSERT_EQ(Q7_GetTemperature(hCal, &start), nullptr);
    EXPECT_GE(start, 30.0);
    EXPECT_LE(start, 45.0);
    for (int i = 0; i < 2000; i++)
        device().Tick();
    ASSERT_EQ(Q7_GetTemperature(hCal, &later), nullptr);
    EXPECT_EQ(later, start) << "idle in Normal mode";

    ASSERT_EQ(Q7_SetDeviceMode(hCal, q7sim::kDutTxCw, 0, 0, 0), nullptr);
    ASSERT_TRUE(device().Transmitting());
    ASSERT_EQ(Q7_GetTemperature(hCal, &later), nullptr);
    EXPECT_LT(later - start, 0.1) << "slowly: a few operations barely change it";
    for (int i = 0; i < 12000; i++)  // one minute of device time
        device().Tick();
    ASSERT_EQ(Q7_GetTemperature(hCal, &later), nullptr);
    EXPECT_GT(later, start + 5.0);
    EXPECT_LE(later, 45.0);
    EXPECT_EQ(std::fmod(later * 16.0, 1.0), 0.0) << "the sensor reads in 1/16 degree steps";
}

TEST_F(SimPeripheralsTest, AdcReadsTheDacLoopBackAndItsSensors)
{
    uint32_t value = 0;
    ASSERT_EQ(Q7_SetGPDACValue(hCal, 0, 1.67), nullptr);
    ASSERT_EQ(Q7_GetGPADCValue(hCal, 0, &value), nullptr);
    EXPECT_NEAR(value, 518.0, 1.0);
    ASSERT_EQ(Q7_SetGPDACValue(hCal, 3, 3.3), nullptr);
    ASSERT_EQ(Q7_GetGPADCValue(hCal, 0, &value), nullptr);
    EXPECT_NEAR(value, 518.0, 1.0) << "only DAC output 0 is looped back";
    EXPECT_EQ(device().analog.dac(3), 3.3);

    ASSERT_EQ(Q7_GetGPADCValue(hCal, 2, &value), nullptr);
    EXPECT_NEAR(value, 512.0, 1.0) << "half the 3.3 V supply";
    uint32_t idle = 0, transmitting = 0;
    ASSERT_EQ(Q7_GetGPADCValue(hCal, 3, &idle), nullptr);
    ASSERT_EQ(Q7_SetDeviceMode(hCal, q7sim::kDutTxOfdma, 0, 0, 0), nullptr);
    ASSERT_EQ(Q7_GetGPADCValue(hCal, 3, &transmitting), nullptr);
    EXPECT_GT(transmitting, idle + 200) << "the Tx power detector";

    EXPECT_EQ(Text(Q7_GetGPADCValue(hCal, 4, &value)), "GP ADC mux setting 4 is out of range (0-3)");
    EXPECT_EQ(Text(Q7_SetGPDACValue(hCal, 4, 1.0)), "GP DAC mux setting 4 is out of range (0-3)");
    EXPECT_EQ(Text(Q7_SetGPDACValue(hCal, 1, -0.1)), "GP DAC voltage -0.100 V is out of range (0-3.3 V)");
    EXPECT_EQ(Text(Q7_SetGPDACValue(hCal, 1, 3.31)), "GP DAC voltage 3.310 V is out of range (0-3.3 V)");
}

// Mean of the bins [first, last).
double Mean(const std::vector<double> &bins, size_t first, size_t last)
{
    double sum = 0.0;
    for (size_t i = first; i < last; i++)
        sum += bins[i];
    return sum / static_cast<double>(last - first);
}

TEST_F(SimPeripheralsTest, SpectrumHasTheOfdmaShapeOfTheCurrentBand)
{
    std::vector<double> bins(2048, -1.0);
    uint32_t length = 0;
    EXPECT_EQ(Text(Q7_GetRxSpectrum(hCal, 2048, bins.data(), &length)),
              "The Rx spectrum capture is not set up (reset it first)");
    EXPECT_EQ(Text(Q7_ResetRxSpectrum(hCal, 17, 1)), "IIR filter alpha shift 17 is out of range (0-16)");
    EXPECT_EQ(Text(Q7_ResetRxSpectrum(hCal, 3, 48)), "Symbol index 48 is out of range (0-47)");
    ASSERT_EQ(Q7_ResetRxSpectrum(hCal, 3, 1), nullptr);

    ASSERT_EQ(Q7_GetRxSpectrum(hCal, 2048, bins.data(), &length), nullptr);
    ASSERT_EQ(length, 1024u) << "1024-point FFT in 10 MHz";
    EXPECT_EQ(bins[1024], -1.0) << "nothing beyond the length is written";
    EXPECT_NEAR(Mean(bins, 0, 92), 12.0, 1.0) << "left guard band at the noise floor";
    EXPECT_NEAR(Mean(bins, 92, 512), 48.0, 1.0) << "flat occupied band";
    EXPECT_NEAR(Mean(bins, 513, 933), 48.0, 1.0);
    EXPECT_LT(bins[512], 25.0) << "the DC subcarrier is unused";
    EXPECT_NEAR(Mean(bins, 933, 1024), 12.0, 1.0) << "right guard band";

    ASSERT_EQ(Q7_GetRxSpectrum(hCal, 100, bins.data(), &length), nullptr);
    EXPECT_EQ(length, 100u) << "never longer than the capacity";

    ASSERT_EQ(Q7_SetBandConfig(hCal, 3500000, 5000), nullptr);
    ASSERT_EQ(Q7_GetRxSpectrum(hCal, 2048, bins.data(), &length), nullptr);
    ASSERT_EQ(length, 512u);
    EXPECT_NEAR(Mean(bins, 0, 512), 12.0, 1.0) << "no signal away from the test base station";
}

TEST_F(SimPeripheralsTest, PreambleUsesEveryThirdSubcarrierAndLoopbackFillsAnyChannel)
{
    ASSERT_EQ(Q7_SetBandConfig(hCal, 2600000, 5000), nullptr);
    ASSERT_EQ(Q7_SetDeviceMode(hCal, q7sim::kDutLoopback, 0, 0, 0), nullptr);
    ASSERT_EQ(Q7_ResetRxSpectrum(hCal, 16, 0), nullptr);
    std::vector<double> bins(2048);
    uint32_t length = 0;
    ASSERT_EQ(Q7_GetRxSpectrum(hCal, 2048, bins.data(), &length), nullptr);
    ASSERT_EQ(length, 512u);
    EXPECT_NEAR(bins[46], 12.0 + 36.0 + 9.0, 0.5);
    EXPECT_NEAR(bins[47], 12.0, 0.5);
    EXPECT_NEAR(bins[49], 12.0 + 36.0 + 9.0, 0.5);
}

TEST_F(SimPeripheralsTest, VersionInfoWritesAtMost32DriverBytes)
{
    uint32_t phy = 0, mac[3] = {}, calApi[3] = {}, local[3] = {}, baseband = 0, rf = 0;
    char driver[40];
    device().versions.ForceDriverVersion(std::string(40, 'd'));
    std::memset(driver, 'x', sizeof driver);
    ASSERT_EQ(Q7_GetVersionInfo(hCal, &phy, mac, driver, calApi, local, &baseband, &rf), nullptr);
    EXPECT_EQ(std::string(driver, sizeof driver), std::string(32, 'd') + std::string(8, 'x'));
    EXPECT_EQ(rf, q7sim::Rfic::kChipId) << "the RF chip version is its chip ID";
}

}  // namespace
