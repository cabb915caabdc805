#include "EchoLink.h"

namespace q7sim {

Status EchoLink::Exchange(uint32_t length)
{
    if (length == 0 || length > kMaxMessageBytes)
        return Status::Errorf("Echo message length %u bytes is out of range (1-%u)", length, kMaxMessageBytes);
    exchanges_++;
    bytesEchoed_ += length;
    return Status::Ok();
}

}  // namespace q7sim
