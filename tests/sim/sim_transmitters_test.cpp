#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "Device.h"
#include "Q7CalAPI.h"
#include "console_capture.h"

namespace {

struct Attn {
    double baseband;
    uint32_t mixerTherm, mixerBinary, paTherm, paAttn, ext;
};

class SimTransmittersTest : public SimulatedDeviceTest {
protected:
    ApiStatus Set(uint32_t selector, const Attn &a)
    {
        return Q7_SetTxAttn(hCal, selector, a.baseband, a.mixerTherm, a.mixerBinary, a.paTherm, a.paAttn, a.ext);
    }
    Attn Get(uint32_t selector)
    {
        Attn a{};
        EXPECT_EQ(Q7_GetTxAttn(hCal, selector, &a.baseband, &a.mixerTherm, &a.mixerBinary, &a.paTherm, &a.paAttn,
                               &a.ext),
                  nullptr);
        return a;
    }
};

bool Same(const Attn &a, const Attn &b)
{
    return a.baseband == b.baseband && a.mixerTherm == b.mixerTherm && a.mixerBinary == b.mixerBinary &&
           a.paTherm == b.paTherm && a.paAttn == b.paAttn && a.ext == b.ext;
}

const Attn kCheck1{-2.0, 9, 2, 1, 1, 0};
const Attn kCheck2{2.0, 0, 20, 10, 4, 1};

TEST_F(SimTransmittersTest, AutomatedAttenuatorSetsAreStoredPerTransmitter)
{
    ASSERT_EQ(Set(1, kCheck1), nullptr);
    ASSERT_EQ(Set(2, kCheck2), nullptr);
    EXPECT_TRUE(Same(Get(1), kCheck1));
    EXPECT_TRUE(Same(Get(2), kCheck2));
    EXPECT_TRUE(Same(Get(0), kCheck1)) << "TX1 is the active transmitter when the device starts";

    const Attn fine{11.875, 15, 31, 16, 5, 1};
    ASSERT_EQ(Set(3, fine), nullptr);
    EXPECT_TRUE(Same(Get(1), fine)) << "selector 3 writes both";
    EXPECT_TRUE(Same(Get(2), fine));
}

TEST_F(SimTransmittersTest, SelectorZeroFollowsTheActiveTransmitter)
{
    ASSERT_EQ(Q7_SetActiveTX(hCal, 2), nullptr);
    ASSERT_EQ(Set(0, kCheck2), nullptr);
    EXPECT_TRUE(Same(Get(2), kCheck2));
    EXPECT_FALSE(Same(Get(1), kCheck2));

    ASSERT_EQ(Q7_SetTxGCWord(hCal, 0, 4000.25), nullptr);
    double word = 0.0;
    ASSERT_EQ(Q7_GetTxGCWord(hCal, 2, &word), nullptr);
    EXPECT_EQ(word, 4000.25);

    ASSERT_EQ(Q7_SetActiveTX(hCal, 3), nullptr);
    ASSERT_EQ(Set(0, kCheck1), nullptr);
    EXPECT_TRUE(Same(Get(1), kCheck1)) << "with both active, selector 0 writes both";
    EXPECT_TRUE(Same(Get(2), kCheck1));

    ASSERT_EQ(Q7_SetActiveTX(hCal, 0), nullptr);
    EXPECT_EQ(Text(Set(0, kCheck1)), "Tx selector 0 names the active transmitter, and none is active");
    uint32_t active = 9;
    ASSERT_EQ(Q7_GetActiveTX(hCal, &active), nullptr);
    EXPECT_EQ(active, 0u);
}

TEST_F(SimTransmittersTest, SelectorsAndValuesOutOfRangeAreRefusedWithoutChange)
{
    Attn a{};
    EXPECT_EQ(Text(Q7_GetTxAttn(hCal, 3, &a.baseband, &a.mixerTherm, &a.mixerBinary, &a.paTherm, &a.paAttn, &a.ext)),
              "Tx selector 3 names both transmitters; a read takes one (0-2)");
    EXPECT_EQ(Text(Set(4, kCheck1)), "Tx selector 4 is out of range (0-3)");
    EXPECT_EQ(Text(Set(4, Attn{99.0, 0, 0, 0, 0, 0})), "Tx selector 4 is out of range (0-3)") << "selector first";
    EXPECT_EQ(Text(Set(1, Attn{12.0, 0, 0, 0, 0, 0})), "Baseband attenuator 12 dB is out of range (-6 to 11.875 dB)");
    EXPECT_EQ(Text(Set(1, Attn{NAN, 0, 0, 0, 0, 0})), "Baseband attenuator nan dB is out of range (-6 to 11.875 dB)");
    EXPECT_EQ(Text(Set(1, Attn{0.0, 0, 32, 0, 0, 0})), "Mixer binary index 32 is out of range (0-31)");
    EXPECT_EQ(Text(Set(1, Attn{0.0, 0, 0, 17, 0, 0})), "PA driver thermometer index 17 is out of range (0-16)");
    EXPECT_EQ(Text(Set(1, Attn{0.0, 0, 0, 0, 6, 0})), "PA driver attenuator index 6 is out of range (0-5)");
    EXPECT_EQ(Text(Set(1, Attn{0.0, 0, 0, 0, 0, 2})), "External attenuator 2 is out of range (0-1)");
    EXPECT_EQ(Get(1).baseband, 3.0) << "the factory setting stays";

    EXPECT_EQ(Text(Q7_SetActiveTX(hCal, 4)), "Active TX 4 is out of range (0-3)");
    EXPECT_EQ(Text(Q7_SetTxDiversitySwitch(hCal, 2)), "Tx diversity switch 2 is out of range (0-1)");
    EXPECT_EQ(Text(Q7_SetTxOutputPower(hCal, -40.5)), "Tx output power -40.5 dBm is out of range (-40 to 35 dBm)");
    EXPECT_EQ(Text(Q7_SetTxBackoff(hCal, -1.0)), "Tx backoff -1 is out of range (0 to 30)");
    EXPECT_EQ(Text(Q7_SetTxGCWord(hCal, 1, 70000.0)), "Tx GC word 70000 is out of range (0 to 65535)");
    EXPECT_EQ(Text(Q7_SetTxPhiWord(hCal, 4096)), "Tx Phi word 4096 is out of range (0-4095)");
    EXPECT_EQ(Text(Q7_SetFeedbackCalAttn(hCal, 32)), "Feedback calibration attenuation 32 is out of range (0-31)");
    EXPECT_EQ(Text(Q7_SetRFAsymmetry(hCal, -32)), "RF asymmetry -32 kHz is out of range (-31 to 32 kHz)");
    EXPECT_EQ(Text(Q7_SetTxDecoderMode(hCal, 1, 2)), "Tx decoder mode 2 is out of range (0-1)");
    double word = 0.0;
    EXPECT_EQ(Text(Q7_GetTxGCWord(hCal, 3, &word)), "Tx selector 3 names both transmitters; a read takes one (0-2)");
}

TEST_F(SimTransmittersTest, AutomatedPowerAndSwitchValuesReadBackExactly)
{
    for (double level : {20.0, -20.0, 10.0, -40.0, 35.0}) {
        ASSERT_EQ(Q7_SetTxOutputPower(hCal, level), nullptr);
        double power = 0.0;
        ASSERT_EQ(Q7_GetTxOutputPower(hCal, &power), nullptr);
        EXPECT_EQ(power, level);
    }
    for (uint32_t position : {0u, 1u, 0u}) {
        ASSERT_EQ(Q7_SetTxDiversitySwitch(hCal, position), nullptr);
        uint32_t read = 9;
        ASSERT_EQ(Q7_GetTxDiversitySwitch(hCal, &read), nullptr);
        EXPECT_EQ(read, position);
    }
}

TEST_F(SimTransmittersTest, LowLevelWordsRoundTrip)
{
    ASSERT_EQ(Q7_SetTxBackoff(hCal, 0.1 + 0.2), nullptr);
    double backoff = 0.0;
    ASSERT_EQ(Q7_GetTxBackoff(hCal, &backoff), nullptr);
    EXPECT_EQ(backoff, 0.1 + 0.2);

    ASSERT_EQ(Q7_SetTxPhiWord(hCal, 4095), nullptr);
    uint32_t phi = 0;
    ASSERT_EQ(Q7_GetTxPhiWord(hCal, &phi), nullptr);
    EXPECT_EQ(phi, 4095u);

    ASSERT_EQ(Q7_SetFeedbackCalAttn(hCal, 31), nullptr);
    uint32_t attn = 0;
    ASSERT_EQ(Q7_GetFeedbackCalAttn(hCal, &attn), nullptr);
    EXPECT_EQ(attn, 31u);

    for (int32_t asymmetry : {-31, 32}) {
        ASSERT_EQ(Q7_SetRFAsymmetry(hCal, asymmetry), nullptr);
        int32_t read = 0;
        ASSERT_EQ(Q7_GetRFAsymmetry(hCal, &read), nullptr);
        EXPECT_EQ(read, asymmetry);
    }

    ASSERT_EQ(Q7_SetTxDecoderMode(hCal, 3, 1), nullptr);
    q7sim::Transmitters &tx = device().tx;
    EXPECT_EQ(tx.decoderMode(0), 1u);
    EXPECT_EQ(tx.decoderMode(1), 1u);
    ASSERT_EQ(Q7_SetLFLControllerState(hCal, 0), nullptr);
    EXPECT_EQ(tx.lflControllerState(), 0);
}

TEST_F(SimTransmittersTest, ATransmitterIsOnOnlyWhenOneIsActiveInATransmitMode)
{
    EXPECT_FALSE(device().Transmitting()) << "Normal mode";
    ASSERT_EQ(Q7_SetDeviceMode(hCal, 2, 0, 0, 0), nullptr);
    EXPECT_TRUE(device().Transmitting());
    ASSERT_EQ(Q7_SetActiveTX(hCal, 0), nullptr);
    EXPECT_FALSE(device().Transmitting());
}

}  // namespace
