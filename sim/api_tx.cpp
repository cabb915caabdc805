// Cal API entry points of the simulated device. Tx: attenuators, output power,
// diversity switch, active transmitters and the low-level words.
#include "Interface.h"

using q7sim::Device;
using q7sim::Status;
using q7sim::Transmitters;
using q7sim::TxAttn;

namespace {

template <class Op>
ApiStatus TxDispatch(CalInterfaceHandle hCal, const char *name, q7sim::CallArguments arguments, Op &&op)
{
    return q7sim::Dispatch(hCal, name, arguments, q7sim::Requires::Connection,
                           [&](Device &device) { return op(device.tx); });
}

}  // namespace

extern "C" {

ApiStatus Q7_GetTxAttn(CalInterfaceHandle hCal, uint32_t u32TxSelector, double *pdBasebandAttnDb,
                       uint32_t *pu32MixerThermIndex, uint32_t *pu32MixerBinaryIndex,
                       uint32_t *pu32PaDriverThermIndex, uint32_t *pu32PaDriverAttnIndex, uint32_t *pu32ExtAttn)
{
    return TxDispatch(hCal, __func__, {u32TxSelector}, [&](Transmitters &tx) {
        TxAttn attn;
        Status status = tx.GetAttn(u32TxSelector, attn);
        if (status.ok()) {
            *pdBasebandAttnDb = q7sim::Reported("Q7_GetTxAttn", 0, attn.basebandDb);
            *pu32MixerThermIndex = q7sim::Reported("Q7_GetTxAttn", 1, attn.mixerThermIndex);
            *pu32MixerBinaryIndex = q7sim::Reported("Q7_GetTxAttn", 2, attn.mixerBinaryIndex);
            *pu32PaDriverThermIndex = q7sim::Reported("Q7_GetTxAttn", 3, attn.paDriverThermIndex);
            *pu32PaDriverAttnIndex = q7sim::Reported("Q7_GetTxAttn", 4, attn.paDriverAttnIndex);
            *pu32ExtAttn = q7sim::Reported("Q7_GetTxAttn", 5, attn.extAttn);
        }
        return status;
    });
}

ApiStatus Q7_SetTxAttn(CalInterfaceHandle hCal, uint32_t u32TxSelector, double dBasebandAttnDb,
                       uint32_t u32MixerThermIndex, uint32_t u32MixerBinaryIndex, uint32_t u32PaDriverThermIndex,
                       uint32_t u32PaDriverAttnIndex, uint32_t u32ExtAttn)
{
    return TxDispatch(hCal, __func__,
                      {u32TxSelector, dBasebandAttnDb, u32MixerThermIndex, u32MixerBinaryIndex, u32PaDriverThermIndex,
                       u32PaDriverAttnIndex, u32ExtAttn},
                      [&](Transmitters &tx) {
        return tx.SetAttn(u32TxSelector, TxAttn{dBasebandAttnDb, u32MixerThermIndex, u32MixerBinaryIndex,
                                                u32PaDriverThermIndex, u32PaDriverAttnIndex, u32ExtAttn});
    });
}

ApiStatus Q7_GetTxOutputPower(CalInterfaceHandle hCal, double *pdPowerDbm)
{
    return TxDispatch(hCal, __func__, {}, [&](Transmitters &tx) {
        *pdPowerDbm = q7sim::Reported("Q7_GetTxOutputPower", 0, tx.outputPowerDbm());
        return Status::Ok();
    });
}

ApiStatus Q7_SetTxOutputPower(CalInterfaceHandle hCal, double dPowerDbm)
{
    return TxDispatch(hCal, __func__, {dPowerDbm}, [&](Transmitters &tx) { return tx.SetOutputPower(dPowerDbm); });
}

ApiStatus Q7_GetTxDiversitySwitch(CalInterfaceHandle hCal, uint32_t *pu32Switch)
{
    return TxDispatch(hCal, __func__, {}, [&](Transmitters &tx) {
        *pu32Switch = q7sim::Reported("Q7_GetTxDiversitySwitch", 0, tx.diversitySwitch());
        return Status::Ok();
    });
}

ApiStatus Q7_SetTxDiversitySwitch(CalInterfaceHandle hCal, uint32_t u32Switch)
{
    return TxDispatch(hCal, __func__, {u32Switch}, [&](Transmitters &tx) { return tx.SetDiversitySwitch(u32Switch); });
}

ApiStatus Q7_GetActiveTX(CalInterfaceHandle hCal, uint32_t *pu32ActiveTx)
{
    return TxDispatch(hCal, __func__, {}, [&](Transmitters &tx) {
        *pu32ActiveTx = tx.activeTx();
        return Status::Ok();
    });
}

ApiStatus Q7_SetActiveTX(CalInterfaceHandle hCal, uint32_t u32ActiveTx)
{
    return TxDispatch(hCal, __func__, {u32ActiveTx}, [&](Transmitters &tx) { return tx.SetActiveTx(u32ActiveTx); });
}

ApiStatus Q7_GetTxBackoff(CalInterfaceHandle hCal, double *pdBackoff)
{
    return TxDispatch(hCal, __func__, {}, [&](Transmitters &tx) {
        *pdBackoff = tx.backoff();
        return Status::Ok();
    });
}

ApiStatus Q7_SetTxBackoff(CalInterfaceHandle hCal, double dBackoff)
{
    return TxDispatch(hCal, __func__, {dBackoff}, [&](Transmitters &tx) { return tx.SetBackoff(dBackoff); });
}

ApiStatus Q7_GetTxGCWord(CalInterfaceHandle hCal, uint32_t u32TxSelector, double *pdGcWord)
{
    return TxDispatch(hCal, __func__, {u32TxSelector},
                      [&](Transmitters &tx) { return tx.GetGcWord(u32TxSelector, *pdGcWord); });
}

ApiStatus Q7_SetTxGCWord(CalInterfaceHandle hCal, uint32_t u32TxSelector, double dGcWord)
{
    return TxDispatch(hCal, __func__, {u32TxSelector, dGcWord},
                      [&](Transmitters &tx) { return tx.SetGcWord(u32TxSelector, dGcWord); });
}

ApiStatus Q7_GetTxPhiWord(CalInterfaceHandle hCal, uint32_t *pu32PhiWord)
{
    return TxDispatch(hCal, __func__, {}, [&](Transmitters &tx) {
        *pu32PhiWord = tx.phiWord();
        return Status::Ok();
    });
}

ApiStatus Q7_SetTxPhiWord(CalInterfaceHandle hCal, uint32_t u32PhiWord)
{
    return TxDispatch(hCal, __func__, {u32PhiWord}, [&](Transmitters &tx) { return tx.SetPhiWord(u32PhiWord); });
}

ApiStatus Q7_GetFeedbackCalAttn(CalInterfaceHandle hCal, uint32_t *pu32Attn)
{
    return TxDispatch(hCal, __func__, {}, [&](Transmitters &tx) {
        *pu32Attn = tx.feedbackCalAttn();
        return Status::Ok();
    });
}

ApiStatus Q7_SetFeedbackCalAttn(CalInterfaceHandle hCal, uint32_t u32Attn)
{
    return TxDispatch(hCal, __func__, {u32Attn}, [&](Transmitters &tx) { return tx.SetFeedbackCalAttn(u32Attn); });
}

ApiStatus Q7_SetLFLControllerState(CalInterfaceHandle hCal, int32_t i32State)
{
    return TxDispatch(hCal, __func__, {i32State}, [&](Transmitters &tx) { return tx.SetLflControllerState(i32State); });
}

ApiStatus Q7_GetRFAsymmetry(CalInterfaceHandle hCal, int32_t *pi32AsymmetryKHz)
{
    return TxDispatch(hCal, __func__, {}, [&](Transmitters &tx) {
        *pi32AsymmetryKHz = tx.rfAsymmetryKHz();
        return Status::Ok();
    });
}

ApiStatus Q7_SetRFAsymmetry(CalInterfaceHandle hCal, int32_t i32AsymmetryKHz)
{
    return TxDispatch(hCal, __func__, {i32AsymmetryKHz},
                      [&](Transmitters &tx) { return tx.SetRfAsymmetry(i32AsymmetryKHz); });
}

ApiStatus Q7_SetTxDecoderMode(CalInterfaceHandle hCal, uint32_t u32TxSelector, uint32_t u32DecoderMode)
{
    return TxDispatch(hCal, __func__, {u32TxSelector, u32DecoderMode},
                      [&](Transmitters &tx) { return tx.SetDecoderMode(u32TxSelector, u32DecoderMode); });
}

}  // extern "C"
