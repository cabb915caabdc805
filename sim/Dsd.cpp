#include "Dsd.h"

#include <algorithm>
#include <cstring>

namespace q7sim {

namespace {

Status CheckRange(const char *what, const DsdArea &area, uint32_t count, uint32_t address)
{
    if (static_cast<uint64_t>(address) + count > area.size)
        return Status::Errorf("DSD %s of %u bytes at 0x%04X goes beyond %s (0x0000-0x%04X)", what, count, address,
                              area.name.c_str(), area.size - 1);
    return Status::Ok();
}

}  // namespace

// At power-up the boot loader copies the factory DSD of the active section
// into the buffer and loads it. Both copies are made when first used, so that
// a session that never reaches the DSD never holds them.
std::vector<uint8_t> &Dsd::Buffer() const
{
    if (buffer_.empty())
        buffer_ = FactoryDsd();
    return buffer_;
}

std::vector<uint8_t> &Dsd::Loaded() const
{
    if (loaded_.empty())
        loaded_ = FactoryDsd();
    return loaded_;
}

DsdArea Dsd::Area(uint32_t nvmMode)
{
    if (nvmMode == kNvmModeBuffer || nvmMode == kNvmModeMiiBuffer)
        return DsdArea{Buffer().data(), kBufferSize, "the DSD buffer", false};
    uint32_t section = nvm.current();
    return DsdArea{nvm.Section(section), Nvm::kSectionSize, "DSD section " + std::to_string(section),
                   nvm.ReadOnly(section)};
}

Status Dsd::Read(const DsdArea &area, uint8_t *dest, uint32_t count, uint32_t address) const
{
    if (dest == nullptr && count != 0)
        return Status::Error("DSD read into a NULL buffer");
    Status status = CheckRange("read", area, count, address);
    if (status.ok() && count != 0)
        std::memcpy(dest, area.bytes + address, count);
    return status;
}

Status Dsd::Write(const DsdArea &area, const uint8_t *source, uint32_t count, uint32_t address, uint32_t *written)
{
    if (source == nullptr && count != 0)
        return Status::Error("DSD write from a NULL buffer");
    if (area.readOnly)
        return Status::Errorf("%s is read-only", area.name.c_str());
    Status status = CheckRange("write", area, count, address);
    if (!status.ok())
        return status;
    if (count != 0)
        std::memcpy(area.bytes + address, source, count);
    *written = count;
    return Status::Ok();
}

Status Dsd::WriteFlash2xImage(const DsdArea &area, const uint8_t *data, uint32_t size, uint32_t flashOffset,
                              const Flash2xBytesWithHeader *header, uint32_t headerWords, uint32_t writeMode,
                              uint32_t *written)
{
    if (area.size != Nvm::kSectionSize)
        return Status::Errorf("%s holds no Flash 2.x image", area.name.c_str());
    if (header == nullptr || headerWords != 3)
        return Status::Errorf("Flash 2.x header record of %u words: 3 expected", header == nullptr ? 0 : headerWords);
    if (writeMode != kFlash2xFillGap && writeMode != kFlash2xKeepGap)
        return Status::Errorf("Flash 2.x write mode %u is out of range (1-2)", writeMode);
    if (data == nullptr && size != 0)
        return Status::Error("Flash 2.x write from a NULL buffer");
    if (area.readOnly)
        return Status::Errorf("%s is read-only", area.name.c_str());
    if (static_cast<uint64_t>(flashOffset) + size > Nvm::kSectionSize)
        return Status::Errorf("Flash 2.x data block of %u bytes at offset 0x%04X goes beyond the 64 KB image", size,
                              flashOffset);
    if (size != 0)
        std::memcpy(area.bytes + flashOffset, data, size);
    uint32_t end = flashOffset + size;
    if (writeMode == kFlash2xFillGap && end < Nvm::kHeaderOffset)
        std::memset(area.bytes + end, 0xFF, Nvm::kHeaderOffset - end);
    Nvm::LayOutHeader(area.bytes + Nvm::kHeaderOffset, header->u32DSDImageSize, header->u32DSDImagePriority);
    *written = size;
    return Status::Ok();
}

Status Dsd::FindRegion(const DsdArea &area, int32_t regionId, ByteRange *payload) const
{
    if (regionId < kFirstRegionId || regionId > kLastRegionId)
        return Status::Errorf("DSD region ID %d is unknown (%d-%d)", regionId, kFirstRegionId, kLastRegionId);
    DsdReader reader(area.bytes);
    if (!reader.HeaderValid())
        return Status::Errorf("No valid DSD header in %s", area.name.c_str());
    std::optional<ByteRange> place = reader.Payload(static_cast<uint32_t>(regionId));
    if (!place)
        return Status::Errorf("DSD region %d has no place in the DSD directory of %s", regionId, area.name.c_str());
    *payload = *place;
    return Status::Ok();
}

Status Dsd::RegionSize(const DsdArea &area, int32_t regionId, uint32_t *size) const
{
    ByteRange payload{};
    Status status = FindRegion(area, regionId, &payload);
    if (status.ok())
        *size = payload.length;
    return status;
}

Status Dsd::ReadRegion(const DsdArea &area, int32_t regionId, uint32_t bufferSize, uint8_t *dest,
                       uint32_t *returned) const
{
    ByteRange payload{};
    Status status = FindRegion(area, regionId, &payload);
    if (!status.ok())
        return status;
    uint32_t count = std::min(payload.length, bufferSize);
    if (dest == nullptr && count != 0)
        return Status::Error("DSD region read into a NULL buffer");
    if (count != 0)
        std::memcpy(dest, area.bytes + payload.offset, count);
    *returned = count;
    return Status::Ok();
}

Status Dsd::WriteRegion(const DsdArea &area, int32_t regionId, uint32_t count, const uint8_t *source,
                        uint32_t *written)
{
    ByteRange payload{};
    Status status = FindRegion(area, regionId, &payload);
    if (!status.ok())
        return status;
    if (source == nullptr && count != 0)
        return Status::Error("DSD region write from a NULL buffer");
    if (area.readOnly)
        return Status::Errorf("%s is read-only", area.name.c_str());
    if (count > payload.length)
        return Status::Errorf("DSD region %d holds %u bytes, not %u", regionId, payload.length, count);
    uint8_t *region = area.bytes + payload.offset;
    if (count != 0)
        std::memcpy(region, source, count);
    std::memset(region + count, 0, payload.length - count);
    SealBlock(area.bytes, static_cast<uint32_t>(regionId));
    *written = count;
    return Status::Ok();
}

Status Dsd::Load(uint32_t loadMode)
{
    switch (loadMode) {
    case kLoadUnchanged:
        return Status::Ok();
    case kLoadFromNvm: {
        const uint8_t *section = nvm.Section(nvm.active());
        std::copy(section, section + kDsdSize, Loaded().begin());
        return Status::Ok();
    }
    case kLoadFromBuffer:
        Loaded() = Buffer();
        return Status::Ok();
    default:
        return Status::Errorf("DSD load mode %u is out of range (0-2)", loadMode);
    }
}

Status Dsd::LoadedBlockCount(uint32_t *count) const
{
    DsdReader reader(loaded());
    if (!reader.HeaderValid())
        return Status::Error("No valid DSD header in the loaded DSD");
    *count = forcedBlockCount_.value_or(reader.BlockCount());
    return Status::Ok();
}

Status Dsd::BlockValidity(uint8_t valid[kDsdBlockCount], uint32_t *count) const
{
    Status status = LoadedBlockCount(count);
    if (!status.ok())
        return status;
    DsdReader reader(loaded());
    for (uint32_t block = 0; block < std::min(*count, kDsdBlockCount); block++)
        valid[block] = reader.BlockValid(block) ? 1 : 0;
    return Status::Ok();
}

Status Dsd::BlockChecksums(uint16_t checksums[kDsdBlockCount], uint32_t *count) const
{
    Status status = LoadedBlockCount(count);
    if (!status.ok())
        return status;
    // A block that the directory places outside the DSD has no checksum to
    // read: its entry is left as it was and the others are still reported.
    DsdReader reader(loaded());
    std::optional<uint32_t> misplaced;
    for (uint32_t block = 0; block < std::min(*count, kDsdBlockCount); block++) {
        if (reader.Block(block))
            checksums[block] = reader.StoredBlockChecksum(block);
        else if (!misplaced)
            misplaced = block;
    }
    if (misplaced)
        return Status::Errorf("DSD block %u lies outside the DSD: its checksum cannot be read", *misplaced);
    return Status::Ok();
}

std::optional<ByteRange> Dsd::LoadedPayload(uint32_t block, uint32_t neededLength) const
{
    std::optional<ByteRange> payload = DsdReader(loaded()).Payload(block);
    if (!payload || payload->length < neededLength)
        return std::nullopt;
    return payload;
}

bool Dsd::CalibrationValid() const
{
    CalibrationRecord record{};
    return DsdReader(loaded()).BlockValid(kBlockCal) && Calibration(&record).ok() && record.calFlag != 0;
}

Status Dsd::Calibration(CalibrationRecord *record) const
{
    std::optional<ByteRange> payload = LoadedPayload(kBlockCal, kCalFormatSize + kCalRecordSize);
    if (!payload)
        return Status::Error("The loaded DSD has no readable CAL block");
    const uint8_t *bytes = loaded() + payload->offset + kCalFormatSize;
    record->calFlag = bytes[0];
    record->vendorId = bytes[1];
    std::memcpy(record->date, bytes + 2, 3);
    std::memcpy(record->time, bytes + 5, 3);
    std::memcpy(record->swVersion, bytes + 8, 3);
    return Status::Ok();
}

Status Dsd::MacAddress(uint8_t mac[kMacAddressSize]) const
{
    std::optional<ByteRange> payload = LoadedPayload(kBlockMac, kMacAddressSize);
    if (!payload)
        return Status::Error("The loaded DSD has no readable MAC block");
    std::memcpy(mac, loaded() + payload->offset, kMacAddressSize);
    return Status::Ok();
}

}  // namespace q7sim
