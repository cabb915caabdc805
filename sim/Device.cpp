#include "Device.h"

namespace q7sim {

Status Device::Connect()
{
    if (connected_)
        return Status::Error("Device already connected");
    connected_ = true;
    return Status::Ok();
}

Status Device::Disconnect()
{
    if (!connected_)
        return Status::Error("Device not connected");
    connected_ = false;
    return Status::Ok();
}

bool Device::Transmitting() const
{
    uint32_t dutMode = modes.mode().dutMode;
    bool txMode = dutMode == kDutTxCw || dutMode == kDutTxOfdma || dutMode == kDutLoopback;
    return txMode && tx.activeTx() != 0;
}

}  // namespace q7sim
