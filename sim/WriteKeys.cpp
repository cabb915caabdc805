#include "WriteKeys.h"

namespace q7sim {

uint32_t WriteKeys::Issue(uint64_t nowUs)
{
    uint32_t key = 0;
    while (key == 0 || key == issued_ || used_.count(key) != 0)
        key = static_cast<uint32_t>(rng_());
    issued_ = key;
    issuedAtUs_ = nowUs;
    return key;
}

Status WriteKeys::Check(uint32_t key, uint64_t nowUs, uint32_t lifetimeMs) const
{
    if (key == 0)
        return Status::Error("DSD write key 00000000 is not a key: request one with Q7_RequestDSDWriteKey");
    if (key == issued_) {
        if (nowUs - issuedAtUs_ > static_cast<uint64_t>(lifetimeMs) * 1000)
            return Status::Errorf("DSD write key %08X has expired (lifetime %u ms)", key, lifetimeMs);
        return Status::Ok();
    }
    if (used_.count(key) != 0)
        return Status::Errorf("DSD write key %08X has already been used: each key is good for one write", key);
    return Status::Errorf("DSD write key %08X was not issued by the device", key);
}

void WriteKeys::Consume()
{
    used_.insert(issued_);
    issued_ = 0;
}

}  // namespace q7sim
