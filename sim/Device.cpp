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

}  // namespace q7sim
