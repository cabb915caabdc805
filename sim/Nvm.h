// The device's NVM: a flash with the Flash 2.x map. Three 64 KB sections,
// each holding one DSD image: the 32 KB DSD at its start, erased bytes (0xFF)
// after it, and the 1 KB header block at 63 KB:
//
//   +0     DSDImageSize (bytes)        +4    0xFF x 4
//   +8     DSDImagePriority            +12   0xFF x 1008
//   +1020  DSDImageMagicNumber 0x7E1A0D5D    (all big-endian)
//
// The active section is the one the device loads; the current section is the
// one that DSD reads and writes address in NVM mode 0.
#ifndef Q7SIM_NVM_H
#define Q7SIM_NVM_H

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "Status.h"

namespace q7sim {

struct Flash2xHeader {
    uint32_t imageSize = 0;
    uint32_t priority = 0;
    uint32_t magic = 0;
};

class Nvm {
public:
    static constexpr uint32_t kSectionCount = 3;
    static constexpr uint32_t kSectionSize = 64 * 1024;
    static constexpr uint32_t kHeaderOffset = 63 * 1024;
    static constexpr uint32_t kHeaderSize = 1024;
    static constexpr uint32_t kMagicNumber = 0x7E1A0D5D;
    static constexpr uint32_t kHeaderSizeField = 0;
    static constexpr uint32_t kHeaderPriorityField = 8;
    static constexpr uint32_t kHeaderMagicField = 1020;

    // Reported by Q7_GetDSDInfo.
    static constexpr uint32_t kNvmTypeFlash = 1;
    static constexpr uint32_t kFlashMap2x = 2;

    // The factory's sections: all three hold the factory DSD, section 0 is
    // active and current, section 2 is the read-only factory copy.
    static constexpr uint32_t kReadOnlySection = 2;
    static constexpr uint32_t kFactoryPriority[kSectionCount] = {10, 5, 0};

    // Sector sizes the flash supports; a desired size is rounded up to one.
    static constexpr uint32_t kSectorSizes[] = {4096, 8192, 16384, 32768, 65536};

    uint8_t *Section(uint32_t section) { return Image(section); }
    const uint8_t *Section(uint32_t section) const { return Image(section); }

    uint32_t active() const { return active_; }
    uint32_t current() const { return current_; }
    uint32_t sectorSize() const { return sectorSize_; }
    bool ReadOnly(uint32_t section) const { return section == kReadOnlySection; }
    // The header block carries the magic number and the DSD is valid.
    bool SectionValid(uint32_t section) const;
    // Present, valid, read-only and active bits of Q7_GetFlashDSDInfo.
    uint32_t Bitmap(uint32_t section) const;

    Flash2xHeader Header(uint32_t section) const;
    // Lays out the section's header block: the fields and the 0xFF fillers.
    void WriteHeader(uint32_t section, uint32_t imageSize, uint32_t priority);
    // The same layout in the kHeaderSize bytes at `header`.
    static void LayOutHeader(uint8_t *header, uint32_t imageSize, uint32_t priority);

    Status SelectActive(uint32_t section);
    Status SelectCurrent(uint32_t section);
    // Copies `count` bytes at `offset` of the source section to the same
    // offset of the target section.
    Status Copy(uint32_t source, uint32_t target, uint32_t count, uint32_t offset);
    // Sets up the flash for the smallest supported sector size that holds
    // the desired one; the sections keep their data.
    Status InitializeFlash(uint32_t desiredSectorSize, uint32_t *actualSectorSize);

    uint32_t nvmType() const { return nvmType_; }
    uint32_t flashMapType() const { return flashMapType_; }

    // For tests that need a device reporting values it never reports itself.
    void ForceInfo(uint32_t nvmType, uint32_t flashMapType);
    void ForceBitmap(uint32_t section, uint32_t bitmap) { forcedBitmap_[section] = bitmap; }

private:
    static Status CheckSection(const char *role, uint32_t section);

    // The section's bytes, as the factory left them until first used: a
    // session that never looks at sections 1 and 2 never holds them (128 KB
    // of the program's resident size at start).
    uint8_t *Image(uint32_t section) const;

    mutable std::array<std::vector<uint8_t>, kSectionCount> sections_;
    uint32_t active_ = 0;
    uint32_t current_ = 0;
    uint32_t sectorSize_ = 65536;
    uint32_t nvmType_ = kNvmTypeFlash;
    uint32_t flashMapType_ = kFlashMap2x;
    std::array<std::optional<uint32_t>, kSectionCount> forcedBitmap_;
};

}  // namespace q7sim

#endif
