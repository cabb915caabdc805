// The two transmitters TX1 and TX2: the attenuator chain, GC word and decoder
// mode of each, and the settings they share (output power, diversity switch,
// the active transmitters, backoff, Phi word, feedback calibration
// attenuation, LFL controller, RF asymmetry).
//
// Operations on one transmitter take a selector: 0 the active transmitter
// (TX1 when both are active), 1 TX1, 2 TX2, 3 both; a read needs one
// transmitter, so 3 is refused there.
#ifndef Q7SIM_TRANSMITTERS_H
#define Q7SIM_TRANSMITTERS_H

#include <array>
#include <cstdint>

#include "Status.h"

namespace q7sim {

// The six settings of a transmitter's attenuator chain. The baseband
// attenuator moves in 0.125 dB steps; a value is stored exactly as written.
struct TxAttn {
    double basebandDb = 0.0;
    uint32_t mixerThermIndex = 0;
    uint32_t mixerBinaryIndex = 0;
    uint32_t paDriverThermIndex = 0;
    uint32_t paDriverAttnIndex = 0;
    uint32_t extAttn = 0;  // 0 disabled, 1 enabled
};

class Transmitters {
public:
    // Active transmitters, one bit each: bit 0 TX1, bit 1 TX2.
    static constexpr uint32_t kTx1 = 1;
    static constexpr uint32_t kTx2 = 2;
    static constexpr uint32_t kBothTx = kTx1 | kTx2;

    // Selectors.
    static constexpr uint32_t kSelectActive = 0;
    static constexpr uint32_t kSelectBoth = 3;

    static constexpr double kMinBasebandAttnDb = -6.0;
    static constexpr double kMaxBasebandAttnDb = 11.875;
    static constexpr uint32_t kMaxMixerThermIndex = 15;
    static constexpr uint32_t kMaxMixerBinaryIndex = 31;
    static constexpr uint32_t kMaxPaDriverThermIndex = 16;
    static constexpr uint32_t kMaxPaDriverAttnIndex = 5;
    static constexpr double kMinOutputPowerDbm = -40.0;
    static constexpr double kMaxOutputPowerDbm = 35.0;
    static constexpr double kMaxBackoffDb = 30.0;
    static constexpr double kMaxGcWord = 65535.0;
    static constexpr uint32_t kMaxPhiWord = 4095;
    static constexpr uint32_t kMaxFeedbackCalAttn = 31;
    static constexpr int32_t kMinRfAsymmetryKHz = -31;
    static constexpr int32_t kMaxRfAsymmetryKHz = 32;

    uint32_t activeTx() const { return activeTx_; }
    Status SetActiveTx(uint32_t activeTx);

    Status GetAttn(uint32_t selector, TxAttn &attn) const;
    Status SetAttn(uint32_t selector, const TxAttn &attn);

    double outputPowerDbm() const { return outputPowerDbm_; }
    Status SetOutputPower(double powerDbm);

    uint32_t diversitySwitch() const { return diversitySwitch_; }
    Status SetDiversitySwitch(uint32_t position);

    double backoff() const { return backoff_; }
    Status SetBackoff(double backoff);

    Status GetGcWord(uint32_t selector, double &gcWord) const;
    Status SetGcWord(uint32_t selector, double gcWord);

    uint32_t phiWord() const { return phiWord_; }
    Status SetPhiWord(uint32_t phiWord);

    uint32_t feedbackCalAttn() const { return feedbackCalAttn_; }
    Status SetFeedbackCalAttn(uint32_t attn);

    int32_t lflControllerState() const { return lflControllerState_; }
    Status SetLflControllerState(int32_t state);

    int32_t rfAsymmetryKHz() const { return rfAsymmetryKHz_; }
    Status SetRfAsymmetry(int32_t asymmetryKHz);

    // Decoder mode of TX1 (index 0) or TX2 (index 1).
    uint32_t decoderMode(unsigned index) const { return tx_.at(index).decoderMode; }
    Status SetDecoderMode(uint32_t selector, uint32_t mode);

    // Test hooks: make the device report values it would refuse to take.
    void ForceActiveTx(uint32_t activeTx) { activeTx_ = activeTx; }
    void ForceDiversitySwitch(uint32_t position) { diversitySwitch_ = position; }
    void ForceAttn(unsigned index, const TxAttn &attn) { tx_.at(index).attn = attn; }

private:
    struct Transmitter {
        TxAttn attn;
        double gcWord = 0.0;
        uint32_t decoderMode = 0;  // 0 decoder enabled, 1 overridden
    };

    // The transmitters a selector names, as active-transmitter bits.
    Status Select(uint32_t selector, uint32_t &txBits) const;
    // Reads a setting of the one transmitter that the selector names.
    template <class T>
    Status ReadSelected(uint32_t selector, T Transmitter::*field, T &value) const;
    // Checks the selector, then the value, then changes each selected transmitter.
    template <class Change>
    Status ApplyToSelected(uint32_t selector, const Status &valueCheck, Change change);
    static Status CheckAttn(const TxAttn &attn);

    std::array<Transmitter, 2> tx_{{
        {{3.0, 8, 16, 8, 2, 0}, 8192.0, 0},
        {{3.125, 8, 15, 8, 2, 0}, 8240.0, 0},
    }};
    uint32_t activeTx_ = kTx1;
    double outputPowerDbm_ = 0.0;
    uint32_t diversitySwitch_ = 0;
    double backoff_ = 3.0;
    uint32_t phiWord_ = 512;
    uint32_t feedbackCalAttn_ = 10;
    int32_t lflControllerState_ = 1;
    int32_t rfAsymmetryKHz_ = 0;
};

}  // namespace q7sim

#endif
