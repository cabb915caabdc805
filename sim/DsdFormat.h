// The layout of one DSD (device-specific data): 32 KB holding a header with
// the block directory, then twelve blocks, each a header and a payload.
//
//   0x0000  DSD header (64 bytes, every field big-endian)
//           +0  magic "Q7DS"            +4  layout version (1)
//           +6  block count (12)        +8  DSD size (32768)
//           +12 DSD checksum            +14 reserved (0)
//           +16 directory: per block its offset and payload length (2 x u16)
//   block   +0  block number  +1 block version  +2 payload length (u16)
//           +4  block checksum (u16)   +6 reserved (0)   +8 payload
//
// A block checksum is the CRC-16 (CCITT, initial value 0xFFFF) of the
// payload; the DSD checksum is the CRC-16 of all 32 KB with its own two bytes
// left out. Regions 1 to 11 are the payloads of blocks 1 to 11.
#ifndef Q7SIM_DSDFORMAT_H
#define Q7SIM_DSDFORMAT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace q7sim {

constexpr uint32_t kDsdSize = 32768;
constexpr uint32_t kDsdBlockCount = 12;
constexpr uint32_t kDsdHeaderSize = 64;
constexpr uint32_t kDsdBlockHeaderSize = 8;
constexpr uint32_t kDsdMagic = 0x51374453;  // "Q7DS"
constexpr uint32_t kDsdLayoutVersion = 1;
constexpr uint32_t kDsdChecksumOffset = 12;
constexpr uint32_t kDsdDirectoryOffset = 16;

enum DsdBlockId : uint32_t {
    kBlockCompatibility = 0,
    kBlockRf,
    kBlockPhy,
    kBlockMac,
    kBlockCal,
    kBlockHw,
    kBlockMib,
    kBlockSecurity,
    kBlockOmaDm,
    kBlockMru,
    kBlockHvx,
    kBlockUnused,
};

// Regions by ID: region N is the payload of block N.
constexpr int32_t kFirstRegionId = 1;
constexpr int32_t kLastRegionId = 11;

// The calibration record at the start of the CAL payload, after the two bytes
// of the record format. A region write of region 4 keeps the first three bytes
// (format and cal flag) as they are.
struct CalibrationRecord {
    uint8_t calFlag;  // nonzero: the device is calibrated
    uint8_t vendorId;
    uint8_t date[3];
    uint8_t time[3];
    uint8_t swVersion[3];
};
constexpr uint32_t kCalFormatSize = 2;
constexpr uint32_t kCalRecordSize = 11;
constexpr uint32_t kMacAddressSize = 6;

struct ByteRange {
    uint32_t offset;
    uint32_t length;
};

// CRC-16/CCITT; pass the previous result to continue over a further piece.
uint16_t Crc16(const uint8_t *data, size_t length, uint16_t crc = 0xFFFF);
uint16_t GetBigEndian16(const uint8_t *bytes);
uint32_t GetBigEndian32(const uint8_t *bytes);
void PutBigEndian16(uint8_t *bytes, uint16_t value);
void PutBigEndian32(uint8_t *bytes, uint32_t value);

// Reads one DSD of kDsdSize bytes. Whatever the bytes hold, it never looks
// outside them: a directory entry that points beyond the DSD has no block.
class DsdReader {
public:
    explicit DsdReader(const uint8_t *dsd) : dsd_(dsd) {}

    // Magic, layout version, DSD size and a block count of at most 12.
    bool HeaderValid() const;
    // The blocks the header declares; 0 without a valid header.
    uint32_t BlockCount() const;

    // The block (header and payload) as the directory places it, if it lies
    // inside the DSD.
    std::optional<ByteRange> Block(uint32_t block) const;
    std::optional<ByteRange> Payload(uint32_t block) const;

    // The checksum stored in the block's header (0 when the block lies outside).
    uint16_t StoredBlockChecksum(uint32_t block) const;
    // The block header names this block and its length, and the checksum matches.
    bool BlockValid(uint32_t block) const;

    uint16_t StoredChecksum() const;
    uint16_t ComputedChecksum() const;
    // A valid header and a matching DSD checksum.
    bool Valid() const;

private:
    const uint8_t *dsd_;
};

// Writes the block's checksum from its payload, then the DSD checksum.
void SealBlock(uint8_t *dsd, uint32_t block);
// Writes the DSD checksum.
void SealDsd(uint8_t *dsd);

// The DSD as the factory programs it: every checksum valid, the device
// calibrated, its MAC address in the MAC block.
std::vector<uint8_t> FactoryDsd();

// The factory's directory, for tests of the layout.
ByteRange FactoryBlockPlace(uint32_t block);
extern const uint8_t kFactoryMacAddress[kMacAddressSize];
extern const CalibrationRecord kFactoryCalibration;

}  // namespace q7sim

#endif
