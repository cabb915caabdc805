// The control channel between host and device, as the echo exchange sees it:
// a message of the given length goes down and comes back.
#ifndef Q7SIM_ECHOLINK_H
#define Q7SIM_ECHOLINK_H

#include <cstdint>

#include "Status.h"

namespace q7sim {

class EchoLink {
public:
    // The largest payload one control message carries.
    static constexpr uint32_t kMaxMessageBytes = 2048;

    Status Exchange(uint32_t length);
    // Completed exchanges and the bytes they carried each way.
    uint32_t exchanges() const { return exchanges_; }
    uint64_t bytesEchoed() const { return bytesEchoed_; }

private:
    uint32_t exchanges_ = 0;
    uint64_t bytesEchoed_ = 0;
};

}  // namespace q7sim

#endif
