#include "Transmitters.h"

namespace q7sim {

namespace {

// True when value lies in [low, high]; a NaN never does.
bool Within(double value, double low, double high) { return value >= low && value <= high; }

}  // namespace

Status Transmitters::SetActiveTx(uint32_t activeTx)
{
    if (activeTx > kBothTx)
        return Status::Errorf("Active TX %u is out of range (0-3)", activeTx);
    activeTx_ = activeTx;
    return Status::Ok();
}

Status Transmitters::Select(uint32_t selector, uint32_t &txBits) const
{
    if (selector > kSelectBoth)
        return Status::Errorf("Tx selector %u is out of range (0-3)", selector);
    txBits = selector == kSelectActive ? activeTx_ & kBothTx : selector;
    if (txBits == 0)
        return Status::Error("Tx selector 0 names the active transmitter, and none is active");
    return Status::Ok();
}

template <class T>
Status Transmitters::ReadSelected(uint32_t selector, T Transmitter::*field, T &value) const
{
    if (selector == kSelectBoth)
        return Status::Error("Tx selector 3 names both transmitters; a read takes one (0-2)");
    uint32_t txBits = 0;
    Status status = Select(selector, txBits);
    if (!status.ok())
        return status;
    // With both transmitters active, the active one is read as TX1.
    value = tx_[(txBits & kTx1) != 0 ? 0 : 1].*field;
    return Status::Ok();
}

template <class Change>
Status Transmitters::ApplyToSelected(uint32_t selector, const Status &valueCheck, Change change)
{
    uint32_t txBits = 0;
    Status status = Select(selector, txBits);
    if (!status.ok())
        return status;
    if (!valueCheck.ok())
        return valueCheck;
    if ((txBits & kTx1) != 0)
        change(tx_[0]);
    if ((txBits & kTx2) != 0)
        change(tx_[1]);
    return Status::Ok();
}

Status Transmitters::GetAttn(uint32_t selector, TxAttn &attn) const
{
    return ReadSelected(selector, &Transmitter::attn, attn);
}

Status Transmitters::SetAttn(uint32_t selector, const TxAttn &attn)
{
    return ApplyToSelected(selector, CheckAttn(attn), [&](Transmitter &tx) { tx.attn = attn; });
}

Status Transmitters::CheckAttn(const TxAttn &attn)
{
    if (!Within(attn.basebandDb, kMinBasebandAttnDb, kMaxBasebandAttnDb))
        return Status::Errorf("Baseband attenuator %g dB is out of range (%g to %g dB)", attn.basebandDb,
                              kMinBasebandAttnDb, kMaxBasebandAttnDb);
    if (attn.mixerThermIndex > kMaxMixerThermIndex)
        return Status::Errorf("Mixer thermometer index %u is out of range (0-%u)", attn.mixerThermIndex,
                              kMaxMixerThermIndex);
    if (attn.mixerBinaryIndex > kMaxMixerBinaryIndex)
        return Status::Errorf("Mixer binary index %u is out of range (0-%u)", attn.mixerBinaryIndex,
                              kMaxMixerBinaryIndex);
    if (attn.paDriverThermIndex > kMaxPaDriverThermIndex)
        return Status::Errorf("PA driver thermometer index %u is out of range (0-%u)", attn.paDriverThermIndex,
                              kMaxPaDriverThermIndex);
    if (attn.paDriverAttnIndex > kMaxPaDriverAttnIndex)
        return Status::Errorf("PA driver attenuator index %u is out of range (0-%u)", attn.paDriverAttnIndex,
                              kMaxPaDriverAttnIndex);
    if (attn.extAttn > 1)
        return Status::Errorf("External attenuator %u is out of range (0-1)", attn.extAttn);
    return Status::Ok();
}

Status Transmitters::SetOutputPower(double powerDbm)
{
    if (!Within(powerDbm, kMinOutputPowerDbm, kMaxOutputPowerDbm))
        return Status::Errorf("Tx output power %g dBm is out of range (%g to %g dBm)", powerDbm, kMinOutputPowerDbm,
                              kMaxOutputPowerDbm);
    outputPowerDbm_ = powerDbm;
    return Status::Ok();
}

Status Transmitters::SetDiversitySwitch(uint32_t position)
{
    if (position > 1)
        return Status::Errorf("Tx diversity switch %u is out of range (0-1)", position);
    diversitySwitch_ = position;
    return Status::Ok();
}

Status Transmitters::SetBackoff(double backoff)
{
    if (!Within(backoff, 0.0, kMaxBackoffDb))
        return Status::Errorf("Tx backoff %g is out of range (0 to %g)", backoff, kMaxBackoffDb);
    backoff_ = backoff;
    return Status::Ok();
}

Status Transmitters::GetGcWord(uint32_t selector, double &gcWord) const
{
    return ReadSelected(selector, &Transmitter::gcWord, gcWord);
}

Status Transmitters::SetGcWord(uint32_t selector, double gcWord)
{
    Status valueCheck = Within(gcWord, 0.0, kMaxGcWord)
                            ? Status::Ok()
                            : Status::Errorf("Tx GC word %g is out of range (0 to %g)", gcWord, kMaxGcWord);
    return ApplyToSelected(selector, valueCheck, [gcWord](Transmitter &tx) { tx.gcWord = gcWord; });
}

Status Transmitters::SetPhiWord(uint32_t phiWord)
{
    if (phiWord > kMaxPhiWord)
        return Status::Errorf("Tx Phi word %u is out of range (0-%u)", phiWord, kMaxPhiWord);
    phiWord_ = phiWord;
    return Status::Ok();
}

Status Transmitters::SetFeedbackCalAttn(uint32_t attn)
{
    if (attn > kMaxFeedbackCalAttn)
        return Status::Errorf("Feedback calibration attenuation %u is out of range (0-%u)", attn,
                              kMaxFeedbackCalAttn);
    feedbackCalAttn_ = attn;
    return Status::Ok();
}

Status Transmitters::SetLflControllerState(int32_t state)
{
    if (state != 0 && state != 1)
        return Status::Errorf("LFL controller state %d is out of range (0-1)", state);
    lflControllerState_ = state;
    return Status::Ok();
}

Status Transmitters::SetRfAsymmetry(int32_t asymmetryKHz)
{
    if (asymmetryKHz < kMinRfAsymmetryKHz || asymmetryKHz > kMaxRfAsymmetryKHz)
        return Status::Errorf("RF asymmetry %d kHz is out of range (%d to %d kHz)", asymmetryKHz, kMinRfAsymmetryKHz,
                              kMaxRfAsymmetryKHz);
    rfAsymmetryKHz_ = asymmetryKHz;
    return Status::Ok();
}

Status Transmitters::SetDecoderMode(uint32_t selector, uint32_t mode)
{
    Status valueCheck = mode <= 1 ? Status::Ok() : Status::Errorf("Tx decoder mode %u is out of range (0-1)", mode);
    return ApplyToSelected(selector, valueCheck, [mode](Transmitter &tx) { tx.decoderMode = mode; });
}

}  // namespace q7sim
