#include "Nvm.h"

#include <algorithm>
#include <cstring>

#include "DsdFormat.h"
#include "Q7CalAPI.h"

namespace q7sim {

uint8_t *Nvm::Image(uint32_t section) const
{
    std::vector<uint8_t> &image = sections_[section];
    if (image.empty()) {
        std::vector<uint8_t> dsd = FactoryDsd();
        image.assign(kSectionSize, 0xFF);
        std::copy(dsd.begin(), dsd.end(), image.begin());
        LayOutHeader(image.data() + kHeaderOffset, kDsdSize, kFactoryPriority[section]);
    }
    return image.data();
}

bool Nvm::SectionValid(uint32_t section) const
{
    return Header(section).magic == kMagicNumber && DsdReader(Section(section)).Valid();
}

uint32_t Nvm::Bitmap(uint32_t section) const
{
    if (forcedBitmap_[section])
        return *forcedBitmap_[section];
    uint32_t bitmap = Q7_FLASH_SECTION_PRESENT;
    if (SectionValid(section))
        bitmap |= Q7_FLASH_SECTION_VALID;
    if (ReadOnly(section))
        bitmap |= Q7_FLASH_SECTION_READ_ONLY;
    if (section == active_)
        bitmap |= Q7_FLASH_SECTION_ACTIVE;
    return bitmap;
}

Flash2xHeader Nvm::Header(uint32_t section) const
{
    const uint8_t *header = Section(section) + kHeaderOffset;
    return Flash2xHeader{GetBigEndian32(header + kHeaderSizeField), GetBigEndian32(header + kHeaderPriorityField),
                         GetBigEndian32(header + kHeaderMagicField)};
}

void Nvm::WriteHeader(uint32_t section, uint32_t imageSize, uint32_t priority)
{
    LayOutHeader(Section(section) + kHeaderOffset, imageSize, priority);
}

void Nvm::LayOutHeader(uint8_t *header, uint32_t imageSize, uint32_t priority)
{
    std::memset(header, 0xFF, kHeaderSize);
    PutBigEndian32(header + kHeaderSizeField, imageSize);
    PutBigEndian32(header + kHeaderPriorityField, priority);
    PutBigEndian32(header + kHeaderMagicField, kMagicNumber);
}

Status Nvm::CheckSection(const char *role, uint32_t section)
{
    if (section >= kSectionCount)
        return Status::Errorf("%sDSD section %u is out of range (0-2)", role, section);
    return Status::Ok();
}

Status Nvm::SelectActive(uint32_t section)
{
    Status status = CheckSection("", section);
    if (!status.ok())
        return status;
    if (!SectionValid(section))
        return Status::Errorf("DSD section %u does not hold a valid DSD image", section);
    active_ = section;
    return Status::Ok();
}

Status Nvm::SelectCurrent(uint32_t section)
{
    Status status = CheckSection("", section);
    if (status.ok())
        current_ = section;
    return status;
}

Status Nvm::Copy(uint32_t source, uint32_t target, uint32_t count, uint32_t offset)
{
    Status status = CheckSection("Source ", source);
    if (status.ok())
        status = CheckSection("Target ", target);
    if (!status.ok())
        return status;
    if (source == target)
        return Status::Errorf("Source and target are the same DSD section (%u)", source);
    if (ReadOnly(target))
        return Status::Errorf("Target DSD section %u is read-only", target);
    if (static_cast<uint64_t>(offset) + count > kSectionSize)
        return Status::Errorf("Copy of %u bytes at offset 0x%X goes beyond the 64 KB section (0x0000-0xFFFF)", count,
                              offset);
    std::memcpy(Section(target) + offset, Section(source) + offset, count);
    return Status::Ok();
}

Status Nvm::InitializeFlash(uint32_t desiredSectorSize, uint32_t *actualSectorSize)
{
    for (uint32_t size : kSectorSizes) {
        if (desiredSectorSize != 0 && desiredSectorSize <= size) {
            sectorSize_ = size;
            *actualSectorSize = size;
            return Status::Ok();
        }
    }
    return Status::Errorf("Flash sector size of %u bytes is not supported (1-65536 bytes)", desiredSectorSize);
}

void Nvm::ForceInfo(uint32_t nvmType, uint32_t flashMapType)
{
    nvmType_ = nvmType;
    flashMapType_ = flashMapType;
}

}  // namespace q7sim
