// The device's DSD stores: the NVM (flash sections), the DSD buffer in device
// memory, and the loaded copy in device memory that the device works from.
//
// DSD reads and writes address an area chosen by the NVM mode (library
// option 7): in mode 0 the whole 64 KB image of the NVM's current section,
// header block included; in modes 1 and 2 the DSD buffer. Q7_LoadDSD fills
// the loaded copy from the active section or from the buffer; the validity,
// checksum, calibration and MAC operations read the loaded copy.
#ifndef Q7SIM_DSD_H
#define Q7SIM_DSD_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "DsdFormat.h"
#include "Nvm.h"
#include "Q7CalAPI.h"
#include "Status.h"

namespace q7sim {

// A memory that DSD reads and writes address. It starts with a DSD.
struct DsdArea {
    uint8_t *bytes;
    uint32_t size;
    std::string name;  // "DSD section 0", "the DSD buffer"
    bool readOnly;
};

class Dsd {
public:
    // Values of library option 7.
    static constexpr uint32_t kNvmModeDirect = 0;
    static constexpr uint32_t kNvmModeBuffer = 1;     // non-MII host interface
    static constexpr uint32_t kNvmModeMiiBuffer = 2;  // MII host interface

    static constexpr uint32_t kLoadUnchanged = 0;
    static constexpr uint32_t kLoadFromNvm = 1;
    static constexpr uint32_t kLoadFromBuffer = 2;

    static constexpr uint32_t kBufferSize = kDsdSize;

    // Flash 2.x write modes: the gap between the data block and the header
    // block is erased (0xFF) or keeps its bytes.
    static constexpr uint32_t kFlash2xFillGap = 1;
    static constexpr uint32_t kFlash2xKeepGap = 2;

    Nvm nvm;

    // The area for the NVM mode (an unknown mode addresses the NVM).
    DsdArea Area(uint32_t nvmMode);

    Status Read(const DsdArea &area, uint8_t *dest, uint32_t count, uint32_t address) const;
    // A raw write: no checksum is touched, so a changed block stays invalid
    // until it is fixed. The caller has checked the write key.
    Status Write(const DsdArea &area, const uint8_t *source, uint32_t count, uint32_t address, uint32_t *written);

    // A Flash 2.x image write into a 64 KB NVM section: the data block at the
    // flash offset, the gap up to the header block filled with 0xFF (write
    // mode 1) or kept (mode 2), then the header block laid out from the
    // record, over any data that reached into it. The caller has checked the
    // write key.
    Status WriteFlash2xImage(const DsdArea &area, const uint8_t *data, uint32_t size, uint32_t flashOffset,
                             const Flash2xBytesWithHeader *header, uint32_t headerWords, uint32_t writeMode,
                             uint32_t *written);

    Status RegionSize(const DsdArea &area, int32_t regionId, uint32_t *size) const;
    // Returns the region's first bytes, never more than the buffer holds.
    Status ReadRegion(const DsdArea &area, int32_t regionId, uint32_t bufferSize, uint8_t *dest,
                      uint32_t *returned) const;
    // Writes the region from its start, clears the rest of it and seals its
    // block. The caller has checked the write key.
    Status WriteRegion(const DsdArea &area, int32_t regionId, uint32_t count, const uint8_t *source,
                       uint32_t *written);

    Status Load(uint32_t loadMode);
    const uint8_t *loaded() const { return Loaded().data(); }
    const uint8_t *buffer() const { return Buffer().data(); }

    bool LoadedValid() const { return DsdReader(loaded()).Valid(); }
    Status BlockValidity(uint8_t valid[kDsdBlockCount], uint32_t *count) const;
    // The checksums stored in the blocks; fails, after reporting the count
    // and every readable checksum, when a block lies outside the DSD.
    Status BlockChecksums(uint16_t checksums[kDsdBlockCount], uint32_t *count) const;
    // The CAL block's checksum is valid and its cal flag is set.
    bool CalibrationValid() const;
    Status Calibration(CalibrationRecord *record) const;
    Status MacAddress(uint8_t mac[kMacAddressSize]) const;

    // For tests: the block count reported from now on, whatever the DSD says.
    void ForceBlockCount(uint32_t count) { forcedBlockCount_ = count; }

private:
    Status FindRegion(const DsdArea &area, int32_t regionId, ByteRange *payload) const;
    Status LoadedBlockCount(uint32_t *count) const;
    std::optional<ByteRange> LoadedPayload(uint32_t block, uint32_t neededLength) const;

    std::vector<uint8_t> &Buffer() const;
    std::vector<uint8_t> &Loaded() const;

    mutable std::vector<uint8_t> buffer_;
    mutable std::vector<uint8_t> loaded_;
    std::optional<uint32_t> forcedBlockCount_;
};

}  // namespace q7sim

#endif
