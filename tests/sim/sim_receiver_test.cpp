#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "Q7CalAPI.h"
#include "console_capture.h"

namespace {

struct Rssi {
    double rssi[2];
    double combined;
    double adc[2];
    uint32_t clips[2];
    uint32_t samples;
};

struct Cinr {
    double combined;
    double antenna[2];
};

class SimReceiverTest : public SimulatedDeviceTest {
protected:
    Rssi ReadRssi()
    {
        Rssi r{};
        EXPECT_EQ(Q7_GetRSSIReport(hCal, &r.rssi[0], &r.rssi[1], &r.combined, &r.adc[0], &r.adc[1], &r.clips[0],
                                   &r.clips[1], &r.samples),
                  nullptr);
        return r;
    }
    Cinr ReadCinr()
    {
        Cinr c{};
        EXPECT_EQ(Q7_GetCINR(hCal, &c.combined, &c.antenna[0], &c.antenna[1]), nullptr);
        return c;
    }
    bool InSync(uint32_t *syncFreqKHz = nullptr)
    {
        double offset = 0.0;
        uint32_t freq = 0, status = 0;
        EXPECT_EQ(Q7_IsSync(hCal, &offset, &freq, &status), nullptr);
        if (syncFreqKHz != nullptr)
            *syncFreqKHz = freq;
        if (status != 0) {
            EXPECT_LE(std::fabs(offset), 2.0);
            EXPECT_NE(offset, 0.0);
        } else {
            EXPECT_EQ(offset, 0.0);
            EXPECT_EQ(freq, 0u);
        }
        return status != 0;
    }
    uint32_t FramesInError(uint32_t *total = nullptr)
    {
        uint32_t frames = 0, errors = 0;
        EXPECT_EQ(Q7_GetFrameErrorStatistics(hCal, &frames, &errors), nullptr);
        if (total != nullptr)
            *total = frames;
        return errors;
    }
    double TotalGain(uint32_t path)
    {
        uint32_t ext = 0, fe = 0;
        int32_t pga = 0;
        double total = 0.0;
        EXPECT_EQ(Q7_GetRxGainState(hCal, path, &ext, &fe, &pga, &total), nullptr);
        return total;
    }
};

double PowerSumDbm(double a, double b)
{
    return 10.0 * std::log10(std::pow(10.0, a / 10.0) + std::pow(10.0, b / 10.0));
}

TEST_F(SimReceiverTest, FactoryDeviceReceivesTheTestSignalInSync)
{
    uint32_t freq = 0;
    EXPECT_TRUE(InSync(&freq));
    EXPECT_EQ(freq, 2500000u);

    Rssi r = ReadRssi();
    for (int p = 0; p < 2; p++) {
        EXPECT_NEAR(r.rssi[p], -60.0, 2.0) << p;
        EXPECT_NEAR(r.adc[p], r.rssi[p] + TotalGain(p), 1e-9) << "ADC power is received power plus gain";
        EXPECT_LT(r.adc[p], -15.0) << "well below full scale";
        EXPECT_EQ(r.clips[p], 0u);
    }
    EXPECT_NEAR(r.combined, PowerSumDbm(r.rssi[0], r.rssi[1]), 1e-9);
    EXPECT_EQ(r.samples, 56000u);

    Cinr c = ReadCinr();
    EXPECT_GT(c.antenna[0], 25.0);
    EXPECT_GT(c.antenna[1], 25.0);
    EXPECT_NEAR(c.combined, PowerSumDbm(c.antenna[0], c.antenna[1]), 1e-9) << "maximum-ratio combining";
}

TEST_F(SimReceiverTest, ThermalNoiseFollowsTheBandwidthAndTheNoiseFigure)
{
    double ant1 = 0.0, ant2 = 0.0;
    ASSERT_EQ(Q7_GetPerAntThermalNoise(hCal, &ant1, &ant2), nullptr);
    EXPECT_NEAR(ant1, -98.0, 0.6);
    EXPECT_NEAR(ant2, -98.0, 0.6);

    ASSERT_EQ(Q7_SetBandConfig(hCal, 2500000, 5000), nullptr);
    ASSERT_EQ(Q7_GetPerAntThermalNoise(hCal, &ant1, &ant2), nullptr);
    EXPECT_NEAR(ant1, -101.0, 0.6);

    // The external LNA lowers the noise figure by a dB.
    ASSERT_EQ(Q7_SetRxGainState(hCal, 0, 1, 2, 0), nullptr);
    ASSERT_EQ(Q7_GetPerAntThermalNoise(hCal, &ant1, &ant2), nullptr);
    EXPECT_NEAR(ant1, -102.0, 0.6);
}

TEST_F(SimReceiverTest, GainChainAddsItsStages)
{
    EXPECT_EQ(TotalGain(0), 38.0);
    ASSERT_EQ(Q7_SetRxGainState(hCal, 2, 1, 2, 31), nullptr);  // both paths at maximum
    EXPECT_EQ(TotalGain(0), 70.0);
    EXPECT_EQ(TotalGain(1), 69.5);
    ASSERT_EQ(Q7_SetRxGainState(hCal, 0, 0, 1, 14), nullptr);
    EXPECT_EQ(TotalGain(0), 26.0) << "medium front end: 12 dB below high";
    ASSERT_EQ(Q7_SetRxGainState(hCal, 0, 0, 0, 15), nullptr);
    EXPECT_EQ(TotalGain(0), 13.0) << "low front end: 26 dB below high, odd PGA index";
    EXPECT_EQ(TotalGain(1), 69.5) << "path 0 alone";

    // The back-off AGC lowers the gain by its backoff; the other modes keep it.
    ASSERT_EQ(Q7_SetAGCMode(hCal, 1, 10), nullptr);
    EXPECT_EQ(TotalGain(0), 3.0);
    ASSERT_EQ(Q7_SetAGCMode(hCal, 2, 10), nullptr);
    EXPECT_EQ(TotalGain(0), 13.0);
}

TEST_F(SimReceiverTest, MoreGainRaisesAdcPowerAndClippingNotTheReceivedPower)
{
    Rssi low = ReadRssi();
    ASSERT_EQ(Q7_SetRxGainState(hCal, 0, 0, 2, 18), nullptr);  // 4 dB more on Rx1
    Rssi more = ReadRssi();
    EXPECT_NEAR(more.adc[0] - low.adc[0], 4.0, 0.6);
    EXPECT_NEAR(more.rssi[0], low.rssi[0], 0.6);
    EXPECT_GT(more.clips[0], 0u) << "within a few dB of full scale";
    EXPECT_LT(more.clips[0], more.samples / 100);

    ASSERT_EQ(Q7_SetRxGainState(hCal, 0, 1, 2, 18), nullptr);  // and the external LNA
    Rssi clipped = ReadRssi();
    EXPECT_GT(clipped.clips[0], clipped.samples / 2) << "beyond full scale most samples clip";
    EXPECT_LE(clipped.adc[0], -7.5) << "a clipped ADC cannot read far above full scale";
    EXPECT_LT(ReadCinr().antenna[0], 0.0) << "clipping distortion swamps the signal";
    EXPECT_EQ(clipped.clips[1], 0u) << "Rx2 is untouched";
}

TEST_F(SimReceiverTest, AnAntennaSwitchedOffShowsNoSignal)
{
    ASSERT_EQ(Q7_SetRxAntConfig(hCal, 0), nullptr);  // Rx1 only
    uint32_t config = 9;
    ASSERT_EQ(Q7_GetRxAntConfig(hCal, &config), nullptr);
    EXPECT_EQ(config, 0u);

    Rssi r = ReadRssi();
    EXPECT_NEAR(r.rssi[0], -60.0, 2.0);
    EXPECT_NEAR(r.adc[1], -70.0, 0.6) << "Rx2's ADC sees only its own floor";
    EXPECT_LT(r.rssi[1], -100.0);
    EXPECT_EQ(r.clips[1], 0u);
    EXPECT_EQ(r.combined, r.rssi[0]);

    Cinr c = ReadCinr();
    EXPECT_EQ(c.antenna[1], -20.0);
    EXPECT_EQ(c.combined, c.antenna[0]);
    EXPECT_TRUE(InSync()) << "one antenna is enough";

    ASSERT_EQ(Q7_SetRxAntConfig(hCal, 1), nullptr);  // Rx2 only
    r = ReadRssi();
    EXPECT_NEAR(r.adc[0], -70.0, 0.6);
    EXPECT_NEAR(r.rssi[1], -61.0, 2.0);
    EXPECT_EQ(Text(Q7_SetRxAntConfig(hCal, 3)), "Rx antenna configuration 3 is out of range (0-2)");
}

TEST_F(SimReceiverTest, SyncNeedsTheBaseStationsFrequency)
{
    ASSERT_EQ(Q7_SetBandConfig(hCal, 2533500, 5000), nullptr);
    EXPECT_FALSE(InSync());
    Rssi r = ReadRssi();
    EXPECT_NEAR(r.rssi[0], -101.0, 1.0) << "only noise in a channel away from the base station";
    EXPECT_EQ(r.samples, 28000u);
    EXPECT_EQ(ReadCinr().combined, -20.0);
    EXPECT_EQ(FramesInError(), 0xFFFFFFFFu);

    // Within the tolerance sync comes back after the acquisition time.
    ASSERT_EQ(Q7_SetBandConfig(hCal, 2500040, 10000), nullptr);
    EXPECT_FALSE(InSync());
    for (int i = 0; i < 4; i++)
        InSync();
    EXPECT_TRUE(InSync());
    ASSERT_EQ(Q7_SetBandConfig(hCal, 2500060, 10000), nullptr);
    for (int i = 0; i < 8; i++)
        EXPECT_FALSE(InSync());
}

TEST_F(SimReceiverTest, ForcedReSyncDropsSyncForAWhileOfDeviceTime)
{
    ASSERT_EQ(Q7_ForceReSync(hCal), nullptr);
    int polls = 0;
    while (!InSync() && polls < 100)
        polls++;
    // Each operation advances the device by one 5 ms frame; sync takes 20 ms.
    EXPECT_EQ(polls, 3);
}

TEST_F(SimReceiverTest, FrameCountersAdvanceWhileInSyncAndResetOnRequest)
{
    uint32_t total = 0;
    ASSERT_EQ(Q7_ResetFrameErrorStatistics(hCal), nullptr);
    EXPECT_EQ(FramesInError(&total), 0u);
    EXPECT_EQ(total, 1u);
    uint32_t config = 0;
    for (int i = 0; i < 9; i++)
        ASSERT_EQ(Q7_GetRxAntConfig(hCal, &config), nullptr);
    EXPECT_EQ(FramesInError(&total), 0u);
    EXPECT_EQ(total, 11u);

    ASSERT_EQ(Q7_SetBandConfig(hCal, 2300000, 10000), nullptr);
    EXPECT_EQ(FramesInError(&total), 0xFFFFFFFFu);
    uint32_t stopped = total;
    FramesInError(&total);
    EXPECT_EQ(total, stopped) << "no frames without sync";

    ASSERT_EQ(Q7_ResetFrameErrorStatistics(hCal), nullptr);
    FramesInError(&total);
    EXPECT_EQ(total, 0u);
}

TEST_F(SimReceiverTest, HeavyClippingCostsFrames)
{
    ASSERT_EQ(Q7_SetRxGainState(hCal, 2, 1, 2, 31), nullptr);
    ASSERT_EQ(Q7_ResetFrameErrorStatistics(hCal), nullptr);
    for (int i = 0; i < 20; i++)
        FramesInError();
    uint32_t total = 0;
    uint32_t errors = FramesInError(&total);
    EXPECT_EQ(total, 21u);
    EXPECT_GT(errors, 10u);
    EXPECT_LE(errors, total);
}

TEST_F(SimReceiverTest, GainStateRangesAndPathNumbers)
{
    EXPECT_EQ(Text(Q7_SetRxGainState(hCal, 3, 0, 0, 0)), "Rx path 3 is out of range (0-2)");
    EXPECT_EQ(Text(Q7_SetRxGainState(hCal, 0, 2, 0, 0)), "External LNA 2 is out of range (0-1)");
    EXPECT_EQ(Text(Q7_SetRxGainState(hCal, 0, 0, 3, 0)), "Front end gain state 3 is out of range (0-2)");
    EXPECT_EQ(Text(Q7_SetRxGainState(hCal, 0, 0, 0, 32)), "PGA gain index 32 is out of range (0-31)");
    EXPECT_EQ(Text(Q7_SetAGCMode(hCal, 3, 0)), "AGC mode 3 is out of range (0-2)");
    EXPECT_EQ(Text(Q7_SetAGCMode(hCal, 0, 65)), "AGC backoff 65 dB is out of range (0-64 dB)");

    uint32_t ext = 0, fe = 0;
    int32_t pga = 0;
    double total = 0.0;
    EXPECT_EQ(Text(Q7_GetRxGainState(hCal, 2, &ext, &fe, &pga, &total)), "Rx path 2 is out of range (0-1)");

    // The automated test's arithmetic writes every odd index in turn; each is kept.
    for (int32_t index = 0; index <= 31; index++) {
        ASSERT_EQ(Q7_SetRxGainState(hCal, 1, index % 2, index % 3, index), nullptr);
        ASSERT_EQ(Q7_GetRxGainState(hCal, 1, &ext, &fe, &pga, &total), nullptr);
        EXPECT_EQ(ext, uint32_t(index % 2));
        EXPECT_EQ(fe, uint32_t(index % 3));
        EXPECT_EQ(pga, index);
    }
}

TEST_F(SimReceiverTest, ReportsRepeatOnAFreshDevice)
{
    auto session = [this] {
        Rssi r = ReadRssi();
        Cinr c = ReadCinr();
        double offset = 0.0;
        uint32_t freq = 0, status = 0;
        EXPECT_EQ(Q7_IsSync(hCal, &offset, &freq, &status), nullptr);
        return std::to_string(r.rssi[0]) + std::to_string(r.adc[1]) + std::to_string(c.combined) +
               std::to_string(offset);
    };
    std::string first = session();
    EXPECT_NE(session(), first) << "measurements carry noise";
    TearDown();
    SetUp();
    EXPECT_EQ(session(), first);
}

}  // namespace
