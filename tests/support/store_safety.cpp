#include "store_safety.h"

#include <algorithm>

#include "DsdFormat.h"

std::vector<uint8_t> DsdStoresOf(q7sim::Device &device)
{
    std::vector<uint8_t> stores;
    for (uint32_t section = 0; section < q7sim::Nvm::kSectionCount; section++)
        stores.insert(stores.end(), device.dsd.nvm.Section(section),
                      device.dsd.nvm.Section(section) + q7sim::Nvm::kSectionSize);
    stores.insert(stores.end(), device.dsd.buffer(), device.dsd.buffer() + q7sim::Dsd::kBufferSize);
    return stores;
}

// A region write seals its block: the device writes the block's checksum and
// the DSD's anew. A region put back as it was may so leave those two changed,
// where they were stale before: the contents are as the engineer asked, and
// the checksums now say so. True when that is all that differs.
static bool OnlyResealed(const std::vector<uint8_t> &original, const std::vector<uint8_t> &after)
{
    if (original.size() != after.size())
        return false;
    std::vector<uint8_t> resealed = original;
    // The DSD at the start of each NVM section and of the DSD buffer.
    for (size_t start = 0; start + q7sim::kDsdSize <= original.size(); start += q7sim::Nvm::kSectionSize) {
        auto image = resealed.begin() + start;
        auto afterImage = after.begin() + start;
        for (uint32_t block = q7sim::kFirstRegionId;
             block <= q7sim::kLastRegionId && !std::equal(image, image + q7sim::kDsdSize, afterImage); block++) {
            std::copy(original.begin() + start, original.begin() + start + q7sim::kDsdSize, image);
            q7sim::SealBlock(&*image, block);
        }
    }
    return resealed == after;
}

static bool Has(const std::string &text, const char *part) { return text.find(part) != std::string::npos; }

bool SaysAStoreMayBeLeftChanged(const std::string &output)
{
    size_t restoring = output.find("Restoring original");
    bool restoreFailed = restoring != std::string::npos && output.find("WRITE ERROR: ", restoring) != std::string::npos;
    return Has(output, "\nWARNING: Original data not restored, because ") || restoreFailed ||
           (Has(output, " verify errors.\n") && !Has(output, "\n0 verify errors.\n"));
}

std::string StoreSafetyViolation(const WriteCommandEnd &end)
{
    if (end.written != nullptr) {
        size_t foreign = 0;
        for (size_t b = 0; b < end.after.size(); b++)
            if (end.after[b] != end.original[b] && end.after[b] != (*end.written)[b])
                foreign++;
        if (foreign != 0)
            return std::to_string(foreign) + " bytes that are neither original nor written";
    }
    if (!end.restoreAsked || end.after == end.original || OnlyResealed(end.original, end.after))
        return "";
    if (!SaysAStoreMayBeLeftChanged(end.output))
        return "a restore was asked for, and the store was left changed without a word";
    if (Has(end.output, " was SUCCESSFUL."))
        return "a restore claimed that was not made";
    return "";
}
