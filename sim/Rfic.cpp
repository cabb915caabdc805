#include "Rfic.h"

#include <random>

namespace q7sim {

Rfic::Rfic()
{
    // Power-on defaults of this chip revision.
    std::mt19937 rng(0x7135u);
    for (auto &bank : registers_) {
        for (uint16_t &value : bank)
            value = static_cast<uint16_t>(rng());
    }
    registers_[0][0] = kChipId;
}

Status Rfic::CheckAddress(uint32_t bank, uint32_t reg, uint32_t timing)
{
    if (bank >= kBanks)
        return Status::Errorf("RFIC bank %u is out of range (0-%u)", bank, kBanks - 1);
    if (reg >= kRegistersPerBank)
        return Status::Errorf("RFIC register 0x%X is out of range (0x0-0x%X)", reg, kRegistersPerBank - 1);
    if (timing > kImmediate)
        return Status::Errorf("RFIC timing %u is out of range (0=GTB based, 1=Immediate)", timing);
    return Status::Ok();
}

Status Rfic::Read(uint32_t bank, uint32_t reg, uint32_t timing, uint32_t &data) const
{
    if (Status status = CheckAddress(bank, reg, timing); !status.ok())
        return status;
    // A GTB-based access waits for the frame boundary; every operation spans one frame.
    data = registers_[bank][reg];
    return Status::Ok();
}

Status Rfic::Write(uint32_t bank, uint32_t reg, uint32_t data, uint32_t timing)
{
    if (Status status = CheckAddress(bank, reg, timing); !status.ok())
        return status;
    if (bank == 0 && reg == 0)
        return Status::Error("RFIC register 0x0 of bank 0 is the read-only chip ID");
    if (data > 0xFFFF)
        return Status::Errorf("RFIC register data 0x%X does not fit a 16-bit register", data);
    registers_[bank][reg] = static_cast<uint16_t>(data);
    return Status::Ok();
}

}  // namespace q7sim
