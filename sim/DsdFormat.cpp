#include "DsdFormat.h"

#include <array>
#include <cstring>
#include <random>

namespace q7sim {

namespace {

// Offset and payload length of each block as the factory lays them out. The
// blocks follow one another; a 12-byte erased gap precedes the unused block.
constexpr ByteRange kFactoryLayout[kDsdBlockCount] = {
    {0x0040, 24},    // Compatibility
    {0x0060, 408},   // RF
    {0x0200, 1016},  // PHY
    {0x0600, 56},    // MAC
    {0x0640, 2488},  // CAL
    {0x1000, 248},   // HW
    {0x1100, 3064},  // MIB
    {0x1D00, 760},   // Security
    {0x2000, 4088},  // OMA DM
    {0x3000, 1016},  // MRU
    {0x3400, 300},   // HVX
    {0x3540, kDsdSize - 0x3540 - kDsdBlockHeaderSize},  // unused
};

constexpr uint8_t kBlockVersion = 1;
constexpr uint8_t kCompatibility[] = {
    0x00, 0x01,              // layout version
    0x00, 0x03,              // board revision
    0x51, 0x07, 0x20, 0x01,  // baseband chip
    0x51, 0x07, 0x52, 0x02,  // RF chip
    0x02, 0x05, 0x00,        // lowest firmware that reads this DSD
};
constexpr uint8_t kCalFormat[kCalFormatSize] = {0x00, 0x02};

// CRC-16/CCITT (polynomial 0x1021) a byte at a time: computed a bit at a
// time, the factory image's checksums were most of the device's start-up.
constexpr std::array<uint16_t, 256> MakeCrc16Table()
{
    std::array<uint16_t, 256> table{};
    for (uint32_t byte = 0; byte < 256; byte++) {
        uint32_t crc = byte << 8;
        for (int bit = 0; bit < 8; bit++)
            crc = (crc & 0x8000) ? (crc << 1) ^ 0x1021 : crc << 1;
        table[byte] = static_cast<uint16_t>(crc);
    }
    return table;
}
constexpr std::array<uint16_t, 256> kCrc16Table = MakeCrc16Table();

uint32_t DirectoryEntry(uint32_t block) { return kDsdDirectoryOffset + 4 * block; }

void FillBlock(uint8_t *dsd, uint32_t block)
{
    ByteRange place = kFactoryLayout[block];
    uint8_t *header = dsd + place.offset;
    uint8_t *payload = header + kDsdBlockHeaderSize;
    header[0] = static_cast<uint8_t>(block);
    header[1] = kBlockVersion;
    PutBigEndian16(header + 2, static_cast<uint16_t>(place.length));
    PutBigEndian16(header + 4, 0);
    PutBigEndian16(header + 6, 0);

    // Tables of trims and settings: repeatable bytes from a fixed seed.
    std::mt19937 generator(0x0D5D0000u + block);
    for (uint32_t i = 0; i < place.length; i++)
        payload[i] = static_cast<uint8_t>(generator() & 0xFF);

    switch (block) {
    case kBlockCompatibility:
        std::memset(payload, 0, place.length);
        std::memcpy(payload, kCompatibility, sizeof kCompatibility);
        break;
    case kBlockMac:
        std::memset(payload, 0, place.length);
        std::memcpy(payload, kFactoryMacAddress, kMacAddressSize);
        break;
    case kBlockCal: {
        const CalibrationRecord &cal = kFactoryCalibration;
        uint8_t *record = payload + kCalFormatSize;
        std::memcpy(payload, kCalFormat, kCalFormatSize);
        record[0] = cal.calFlag;
        record[1] = cal.vendorId;
        std::memcpy(record + 2, cal.date, 3);
        std::memcpy(record + 5, cal.time, 3);
        std::memcpy(record + 8, cal.swVersion, 3);
        break;
    }
    case kBlockUnused:
        std::memset(payload, 0xFF, place.length);
        break;
    default:
        break;
    }
}

}  // namespace

const uint8_t kFactoryMacAddress[kMacAddressSize] = {0x02, 0x1A, 0xC7, 0x30, 0x5E, 0x81};
const CalibrationRecord kFactoryCalibration = {
    1, 0x2A, {0x24, 0x03, 0x18}, {0x10, 0x42, 0x07}, {0x02, 0x05, 0x11},
};

uint16_t Crc16(const uint8_t *data, size_t length, uint16_t crc)
{
    for (size_t i = 0; i < length; i++)
        crc = static_cast<uint16_t>((crc << 8) ^ kCrc16Table[((crc >> 8) ^ data[i]) & 0xFF]);
    return crc;
}

uint16_t GetBigEndian16(const uint8_t *bytes) { return static_cast<uint16_t>(bytes[0] << 8 | bytes[1]); }

uint32_t GetBigEndian32(const uint8_t *bytes)
{
    return static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
           static_cast<uint32_t>(bytes[2]) << 8 | bytes[3];
}

void PutBigEndian16(uint8_t *bytes, uint16_t value)
{
    bytes[0] = static_cast<uint8_t>(value >> 8);
    bytes[1] = static_cast<uint8_t>(value);
}

void PutBigEndian32(uint8_t *bytes, uint32_t value)
{
    PutBigEndian16(bytes, static_cast<uint16_t>(value >> 16));
    PutBigEndian16(bytes + 2, static_cast<uint16_t>(value));
}

bool DsdReader::HeaderValid() const
{
    return GetBigEndian32(dsd_) == kDsdMagic && GetBigEndian16(dsd_ + 4) == kDsdLayoutVersion &&
           GetBigEndian16(dsd_ + 6) <= kDsdBlockCount && GetBigEndian32(dsd_ + 8) == kDsdSize;
}

uint32_t DsdReader::BlockCount() const { return HeaderValid() ? GetBigEndian16(dsd_ + 6) : 0; }

std::optional<ByteRange> DsdReader::Block(uint32_t block) const
{
    if (block >= BlockCount())
        return std::nullopt;
    uint32_t offset = GetBigEndian16(dsd_ + DirectoryEntry(block));
    uint32_t length = GetBigEndian16(dsd_ + DirectoryEntry(block) + 2);
    if (offset < kDsdHeaderSize || offset + kDsdBlockHeaderSize + length > kDsdSize)
        return std::nullopt;
    return ByteRange{offset, kDsdBlockHeaderSize + length};
}

std::optional<ByteRange> DsdReader::Payload(uint32_t block) const
{
    std::optional<ByteRange> place = Block(block);
    if (!place)
        return std::nullopt;
    return ByteRange{place->offset + kDsdBlockHeaderSize, place->length - kDsdBlockHeaderSize};
}

uint16_t DsdReader::StoredBlockChecksum(uint32_t block) const
{
    std::optional<ByteRange> place = Block(block);
    return place ? GetBigEndian16(dsd_ + place->offset + 4) : 0;
}

bool DsdReader::BlockValid(uint32_t block) const
{
    std::optional<ByteRange> payload = Payload(block);
    if (!payload)
        return false;
    const uint8_t *header = dsd_ + payload->offset - kDsdBlockHeaderSize;
    return header[0] == block && GetBigEndian16(header + 2) == payload->length &&
           GetBigEndian16(header + 4) == Crc16(dsd_ + payload->offset, payload->length);
}

uint16_t DsdReader::StoredChecksum() const { return GetBigEndian16(dsd_ + kDsdChecksumOffset); }

uint16_t DsdReader::ComputedChecksum() const
{
    // The CRC runs over the DSD in two pieces around its own two bytes.
    constexpr uint32_t kAfter = kDsdChecksumOffset + 2;
    return Crc16(dsd_ + kAfter, kDsdSize - kAfter, Crc16(dsd_, kDsdChecksumOffset));
}

bool DsdReader::Valid() const { return HeaderValid() && StoredChecksum() == ComputedChecksum(); }

namespace {

void WriteBlockChecksum(uint8_t *dsd, uint32_t block)
{
    std::optional<ByteRange> payload = DsdReader(dsd).Payload(block);
    if (payload)
        PutBigEndian16(dsd + payload->offset - kDsdBlockHeaderSize + 4, Crc16(dsd + payload->offset, payload->length));
}

}  // namespace

void SealBlock(uint8_t *dsd, uint32_t block)
{
    WriteBlockChecksum(dsd, block);
    SealDsd(dsd);
}

void SealDsd(uint8_t *dsd) { PutBigEndian16(dsd + kDsdChecksumOffset, DsdReader(dsd).ComputedChecksum()); }

static std::vector<uint8_t> BuildFactoryDsd()
{
    std::vector<uint8_t> dsd(kDsdSize, 0xFF);
    PutBigEndian32(&dsd[0], kDsdMagic);
    PutBigEndian16(&dsd[4], kDsdLayoutVersion);
    PutBigEndian16(&dsd[6], kDsdBlockCount);
    PutBigEndian32(&dsd[8], kDsdSize);
    PutBigEndian16(&dsd[12], 0);
    PutBigEndian16(&dsd[14], 0);
    for (uint32_t block = 0; block < kDsdBlockCount; block++) {
        PutBigEndian16(&dsd[DirectoryEntry(block)], static_cast<uint16_t>(kFactoryLayout[block].offset));
        PutBigEndian16(&dsd[DirectoryEntry(block) + 2], static_cast<uint16_t>(kFactoryLayout[block].length));
        FillBlock(dsd.data(), block);
    }
    for (uint32_t block = 0; block < kDsdBlockCount; block++)
        WriteBlockChecksum(dsd.data(), block);
    SealDsd(dsd.data());
    return dsd;
}

std::vector<uint8_t> FactoryDsd()
{
    // The same for every device: built once per process.
    static const std::vector<uint8_t> image = BuildFactoryDsd();
    return image;
}

ByteRange FactoryBlockPlace(uint32_t block) { return kFactoryLayout[block]; }

}  // namespace q7sim
