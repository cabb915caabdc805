// Cal API entry points of the simulated device. The DSD: loading, checksums,
// calibration record, MAC address, NVM and flash sections, reads and writes.
#include <cstring>
#include <optional>
#include <vector>

#include "Interface.h"

using q7sim::CalibrationRecord;
using q7sim::DataFault;
using q7sim::Device;
using q7sim::Dispatch;
using q7sim::Dsd;
using q7sim::DsdArea;
using q7sim::Faults;
using q7sim::Options;
using q7sim::Requires;
using q7sim::Status;

namespace {

// A write that presents a key: a refused key changes nothing; a write that
// succeeds uses the key up. A data fault planned for this call acts on what
// the write changed in `area`.
template <class Write>
Status KeyedWrite(Device &device, const char *operation, uint32_t key, const DsdArea &area, uint32_t *written,
                  Write &&write)
{
    std::optional<DataFault> fault = Faults().TakeDataFault(operation);
    Status status = device.keys.Check(key, device.nowUs(), device.options.value(Options::kKeyLifetimeMs));
    if (!status.ok())
        return status;
    std::vector<uint8_t> before;
    if (fault)
        before.assign(area.bytes, area.bytes + area.size);
    uint32_t count = 0;
    status = write(&count);
    if (!status.ok())
        return status;
    device.keys.Consume();
    *written = fault ? fault->ApplyToWrite(before, area.bytes, count) : count;
    if (fault && fault->kind == DataFault::Kind::FailWrite)
        return Status::Errorf("NVM write failed after %u bytes", *written);
    return Status::Ok();
}

// A read into `dest` (room for `count` bytes) that sets the count it read; a
// data fault planned for this call acts on what it delivers.
template <class Read>
Status FaultedRead(const char *operation, uint8_t *dest, uint32_t count, uint32_t *returned, Read &&read)
{
    std::optional<DataFault> fault = Faults().TakeDataFault(operation);
    std::vector<uint8_t> before;
    if (fault)
        before.assign(dest, dest + count);
    Status status = read();
    if (status.ok() && fault)
        *returned = fault->ApplyToRead(before, dest, *returned);
    return status;
}

}  // namespace

extern "C" {

ApiStatus Q7_LoadDSD(CalInterfaceHandle hCal, uint32_t u32LoadMode)
{
    return Dispatch(hCal, __func__, {u32LoadMode}, Requires::Connection,
                    [&](Device &device) { return device.dsd.Load(u32LoadMode); });
}

ApiStatus Q7_IsDSDValid(CalInterfaceHandle hCal, uint32_t *pu32Valid)
{
    return Dispatch(hCal, __func__, {}, Requires::Connection, [&](Device &device) {
        *pu32Valid = device.dsd.LoadedValid() ? 1 : 0;
        return Status::Ok();
    });
}

ApiStatus Q7_AreDSDChecksumsValid(CalInterfaceHandle hCal, uint8_t *pu8BlockValid, uint32_t *pu32BlockCount)
{
    return Dispatch(hCal, __func__, {}, Requires::Connection,
                    [&](Device &device) { return device.dsd.BlockValidity(pu8BlockValid, pu32BlockCount); });
}

ApiStatus Q7_GetDSDChecksums(CalInterfaceHandle hCal, uint16_t *pu16Checksums, uint32_t *pu32BlockCount)
{
    return Dispatch(hCal, __func__, {}, Requires::Connection,
                    [&](Device &device) { return device.dsd.BlockChecksums(pu16Checksums, pu32BlockCount); });
}

ApiStatus Q7_IsCalibrationValid(CalInterfaceHandle hCal, uint32_t *pu32Valid)
{
    return Dispatch(hCal, __func__, {}, Requires::Connection, [&](Device &device) {
        *pu32Valid = device.dsd.CalibrationValid() ? 1 : 0;
        return Status::Ok();
    });
}

ApiStatus Q7_GetCalibrationInfo(CalInterfaceHandle hCal, uint8_t *pu8CalFlag, uint8_t *pu8VendorID, uint8_t *pu8Date,
                                uint8_t *pu8Time, uint8_t *pu8SwVersion)
{
    return Dispatch(hCal, __func__, {}, Requires::Connection, [&](Device &device) {
        CalibrationRecord record{};
        Status status = device.dsd.Calibration(&record);
        if (status.ok()) {
            *pu8CalFlag = record.calFlag;
            *pu8VendorID = record.vendorId;
            std::memcpy(pu8Date, record.date, sizeof record.date);
            std::memcpy(pu8Time, record.time, sizeof record.time);
            std::memcpy(pu8SwVersion, record.swVersion, sizeof record.swVersion);
        }
        return status;
    });
}

ApiStatus Q7_GetMACAddress(CalInterfaceHandle hCal, uint8_t *pu8Mac)
{
    return Dispatch(hCal, __func__, {}, Requires::Connection,
                    [&](Device &device) { return device.dsd.MacAddress(pu8Mac); });
}

ApiStatus Q7_GetNVMSize(CalInterfaceHandle hCal, uint32_t *pu32DsdSize)
{
    return Dispatch(hCal, __func__, {}, Requires::Connection, [&](Device &) {
        *pu32DsdSize = q7sim::kDsdSize;
        return Status::Ok();
    });
}

ApiStatus Q7_GetDSDInfo(CalInterfaceHandle hCal, uint32_t *pu32NvmType, uint32_t *pu32DsdSize,
                        uint32_t *pu32FlashMapType)
{
    return Dispatch(hCal, __func__, {}, Requires::Connection, [&](Device &device) {
        *pu32NvmType = device.dsd.nvm.nvmType();
        *pu32DsdSize = q7sim::kDsdSize;
        *pu32FlashMapType = device.dsd.nvm.flashMapType();
        return Status::Ok();
    });
}

ApiStatus Q7_GetFlashDSDInfo(CalInterfaceHandle hCal, FlashDSDInfo *pInfo)
{
    return Dispatch(hCal, __func__, {}, Requires::Connection, [&](Device &device) {
        for (uint32_t section = 0; section < q7sim::Nvm::kSectionCount; section++)
            pInfo->au32SectionBitmap[section] = device.dsd.nvm.Bitmap(section);
        return Status::Ok();
    });
}

ApiStatus Q7_SelectActiveDSDSection(CalInterfaceHandle hCal, uint32_t u32Section)
{
    return Dispatch(hCal, __func__, {u32Section}, Requires::Connection,
                    [&](Device &device) { return device.dsd.nvm.SelectActive(u32Section); });
}

ApiStatus Q7_SelectCurrentDSDSection(CalInterfaceHandle hCal, uint32_t u32Section)
{
    return Dispatch(hCal, __func__, {u32Section}, Requires::Connection,
                    [&](Device &device) { return device.dsd.nvm.SelectCurrent(u32Section); });
}

ApiStatus Q7_CopyDSDSection(CalInterfaceHandle hCal, uint32_t u32SourceSection, uint32_t u32TargetSection,
                            uint32_t u32ByteCount, uint32_t u32Offset)
{
    return Dispatch(hCal, __func__, {u32SourceSection, u32TargetSection, u32ByteCount, u32Offset},
                    Requires::Connection, [&](Device &device) {
        return device.dsd.nvm.Copy(u32SourceSection, u32TargetSection, u32ByteCount, u32Offset);
    });
}

ApiStatus Q7_InitializeFlash(CalInterfaceHandle hCal, uint32_t u32DesiredSectorSize, uint32_t *pu32ActualSectorSize)
{
    return Dispatch(hCal, __func__, {u32DesiredSectorSize}, Requires::Connection, [&](Device &device) {
        return device.dsd.nvm.InitializeFlash(u32DesiredSectorSize, pu32ActualSectorSize);
    });
}

ApiStatus Q7_ReadDSDBytes(CalInterfaceHandle hCal, uint8_t *pu8Dest, uint32_t u32ByteCount, uint32_t u32Address)
{
    const char *operation = __func__;  // __func__ inside a lambda names the lambda
    return Dispatch(hCal, operation, {u32ByteCount, u32Address}, Requires::Connection, [&](Device &device) {
        uint32_t returned = u32ByteCount;  // a byte read does not say how much it read
        return FaultedRead(operation, pu8Dest, u32ByteCount, &returned, [&] {
            return device.dsd.Read(device.DsdTarget(), pu8Dest, u32ByteCount, u32Address);
        });
    });
}

ApiStatus Q7_GetDSDRegionSizeByID(CalInterfaceHandle hCal, int32_t i32RegionID, uint32_t *pu32Size)
{
    return Dispatch(hCal, __func__, {i32RegionID}, Requires::Connection, [&](Device &device) {
        Status status = device.dsd.RegionSize(device.DsdTarget(), i32RegionID, pu32Size);
        if (status.ok())
            *pu32Size = q7sim::Reported("Q7_GetDSDRegionSizeByID", 0, *pu32Size);
        return status;
    });
}

ApiStatus Q7_ReadDSDRegionByID(CalInterfaceHandle hCal, int32_t i32RegionID, uint32_t u32BufferSize,
                               uint8_t *pu8Dest, uint32_t *pu32Returned)
{
    const char *operation = __func__;  // __func__ inside a lambda names the lambda
    return Dispatch(hCal, operation, {i32RegionID, u32BufferSize}, Requires::Connection, [&](Device &device) {
        return FaultedRead(operation, pu8Dest, u32BufferSize, pu32Returned, [&] {
            return device.dsd.ReadRegion(device.DsdTarget(), i32RegionID, u32BufferSize, pu8Dest, pu32Returned);
        });
    });
}

uint32_t Q7_RequestDSDWriteKey(CalInterfaceHandle hCal)
{
    // A refused request answers key 0.
    uint32_t key = 0;
    Dispatch(hCal, __func__, {}, Requires::Connection, [&](Device &device) {
        std::optional<DataFault> fault = Faults().TakeDataFault("Q7_RequestDSDWriteKey");
        key = fault && fault->kind == DataFault::Kind::ForgeKey ? 0xF0F0F0F0u : device.keys.Issue(device.nowUs());
        return Status::Ok();
    });
    return key;
}

ApiStatus Q7_WriteDSDBytes(CalInterfaceHandle hCal, uint32_t u32Key, const uint8_t *pu8Source, uint32_t u32ByteCount,
                           uint32_t u32Address, uint32_t *pu32Written)
{
    const char *operation = __func__;  // __func__ inside a lambda names the lambda
    return Dispatch(hCal, operation, {u32Key, u32ByteCount, u32Address}, Requires::Connection, [&](Device &device) {
        DsdArea area = device.DsdTarget();
        return KeyedWrite(device, operation, u32Key, area, pu32Written, [&](uint32_t *written) {
            return device.dsd.Write(area, pu8Source, u32ByteCount, u32Address, written);
        });
    });
}

ApiStatus Q7_WriteFlash2xBytesWithHeader(CalInterfaceHandle hCal, uint32_t u32Key, const uint8_t *pu8Data,
                                         uint32_t u32Size, uint32_t u32FlashOffset,
                                         const Flash2xBytesWithHeader *pHeader, uint32_t u32HeaderWords,
                                         uint32_t u32WriteMode, uint32_t *pu32Written)
{
    const char *operation = __func__;  // __func__ inside a lambda names the lambda
    return Dispatch(hCal, operation, {u32Key, u32Size, u32FlashOffset, u32HeaderWords, u32WriteMode},
                    Requires::Connection, [&](Device &device) {
        uint32_t nvmMode = device.options.nvmMode();
        if (nvmMode != Dsd::kNvmModeDirect)
            return Status::Errorf("Flash 2.x image writes need NVM mode 0: NVM mode %u addresses the DSD buffer",
                                  nvmMode);
        DsdArea area = device.DsdTarget();
        return KeyedWrite(device, operation, u32Key, area, pu32Written, [&](uint32_t *written) {
            return device.dsd.WriteFlash2xImage(area, pu8Data, u32Size, u32FlashOffset, pHeader, u32HeaderWords,
                                                u32WriteMode, written);
        });
    });
}

ApiStatus Q7_WriteDSDRegionByID(CalInterfaceHandle hCal, uint32_t u32Key, int32_t i32RegionID, uint32_t u32ByteCount,
                                const uint8_t *pu8Source, uint32_t *pu32Written)
{
    const char *operation = __func__;  // __func__ inside a lambda names the lambda
    return Dispatch(hCal, operation, {u32Key, i32RegionID, u32ByteCount}, Requires::Connection, [&](Device &device) {
        DsdArea area = device.DsdTarget();
        return KeyedWrite(device, operation, u32Key, area, pu32Written, [&](uint32_t *written) {
            return device.dsd.WriteRegion(area, i32RegionID, u32ByteCount, pu8Source, written);
        });
    });
}

}  // extern "C"
