// What the device and the library report about their versions.
#ifndef Q7SIM_VERSIONINFO_H
#define Q7SIM_VERSIONINFO_H

#include <array>
#include <cstdint>
#include <string>

#include "Rfic.h"

namespace q7sim {

class VersionInfo {
public:
    static constexpr uint32_t kDriverTextSize = 32;

    struct Report {
        uint32_t phyFirmware;
        std::array<uint32_t, 3> macFirmware;
        std::array<uint32_t, 3> calApi;
        std::array<uint32_t, 3> localCalApi;
        uint32_t basebandChip;
        uint32_t rfChip;
    };

    const Report &report() const { return report_; }
    const std::string &driverVersion() const { return driver_; }
    // Copies the driver text into a 32-byte buffer as the driver hands it
    // over: truncated, and unterminated when it fills all 32 bytes.
    void CopyDriverVersion(char *buffer) const;

    // Test hooks: a device that reports values the program must cope with.
    void ForceDriverVersion(std::string text) { driver_ = std::move(text); }
    void ForceRfChipVersion(uint32_t version) { report_.rfChip = version; }

private:
    Report report_{0x00030215, {2, 7, 14}, {1, 4, 0}, {1, 4, 0}, 0x0B2501A0, Rfic::kChipId};
    // The one free-text field says what this is, so that no transcript of a
    // simulated run passes for a unit's (the program shows 31 characters).
    std::string driver_ = "SIMULATED DEVICE (q7cal)";
};

}  // namespace q7sim

#endif
