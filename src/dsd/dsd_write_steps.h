/* The steps that the DSD writes share: the working areas, the key, the data
 * pattern, the original contents, the look after a failed write, and the
 * restore confirmed by reading back. Each write reads top to bottom in its own
 * step order in its own source (dsd_block_write.cpp, dsd_byte_write.cpp,
 * dsd_region_write.cpp); they differ in when they learn whether to restore
 * and in what they do then:
 *
 *                        block write          byte and Flash 2.x      region write
 *                                             image writes
 *   restore question     before the write     before the write        after the verification
 *   original contents    read twice when a    read twice when a       read twice always; the
 *                        restore is asked     restore is asked        region's length comes
 *                                             (Flash 2.x: always)     from a read, checked
 *                                                                     against the size query
 *   data write fails     look: unchanged is   look: unchanged is      look: unchanged is said,
 *                        said, a change is    said, a change is       a change gets the
 *                        restored             restored                WARNING (no restore asked)
 *   verification read    WARNING              WARNING                 WARNING
 *   fails (restore
 *   asked)
 *   verify errors        restore withheld,    restore withheld,       restore made anyway
 *                        the errors said      WARNING
 *   session ends after   restore made         restore made            WARNING: not restored
 *   the write
 *
 * Nothing changes silently: once the data write may have changed the device,
 * every way a write ends leaves the original contents back where a restore
 * was asked for, or says that they are not ("WARNING: Original data not
 * restored, because ..."), or prints the error of the write that failed.
 * Those lines reach standard error too once standard output has failed. A
 * restore counts only when the range reads back as the original, which is
 * never written back unless two reads of it agreed. */
#ifndef Q7_DSD_WRITE_STEPS_H
#define Q7_DSD_WRITE_STEPS_H

#include <stdbool.h>
#include <stdint.h>

#include "Q7CalAPI.h"

#define VERIFY_PROMPT "\n    Verify write     (1=yes/0=no) ? "
#define RESTORE_PROMPT "\n    Restore contents (1=yes/0=no) ? "
#define RESTORING_LINE "\nRestoring original DSD values ... "

/* What a verification reads and a restore writes back: u32Size bytes at a DSD
 * address, or a whole region. */
typedef struct DsdRange {
    CalInterfaceHandle hCal;
    bool bRegion;
    int32_t i32RegionID; /* a region's */
    uint32_t u32Address; /* a range's at an address */
    uint32_t u32Size;
} DsdRange;

/* One allocation of three equal areas of the range's size. */
typedef struct DsdAreas {
    uint8_t *pu8Original;
    uint8_t *pu8Write;
    uint8_t *pu8ReadBack;
} DsdAreas;

/* How a write shows the count of a restoring write. */
typedef void (*ShowWrittenFunction)(uint32_t u32Written);

/* "\nREAD ERROR: %s\n" / "\nWRITE ERROR: %s\n" for a failed status, as a line
 * about the device; true when it did. */
bool ReportReadError(ApiStatus status);
bool ReportWriteError(ApiStatus status);

/* "WARNING: Original data not restored, because <reason>." Returns -1, the
 * result of the command that gives up. */
int WarnNotRestored(const char *sReasonFormat, ...) __attribute__((format(printf, 1, 2)));

/* Carves the three areas out of one allocation; none for a size of 0. False
 * after the error line. */
bool AllocateAreas(DsdAreas *pAreas, uint32_t u32Size);
void ReleaseAreas(DsdAreas *pAreas);

/* Fills an area before a read, so that a byte the read does not deliver
 * shows: as 0 to a verification, or as a value that cannot pass for the
 * original. */
void FillArea(uint8_t *pu8Area, uint32_t u32Size, uint8_t u8Value);

/* Reads the whole range; *pu32Returned is the count read (a byte read does
 * not say, and counts as whole). */
ApiStatus ReadRange(const DsdRange *pRange, uint8_t *pu8Dest, uint32_t *pu32Returned);
/* Writes u32Count bytes of the source from the start of the range. */
ApiStatus WriteRange(const DsdRange *pRange, uint32_t u32Key, const uint8_t *pu8Source, uint32_t u32Count,
                     uint32_t *pu32Written);

/* The original contents, read twice, into the original area (cleared first)
 * and into the read-back area (filled with 0xFF first): a read that comes
 * back short or with a changed byte cannot agree with the other, and is
 * never written back. False after the error line; nothing has been written.
 * *pu32Returned: the count the first read returned (at least the range's
 * size when true). */
bool ReadOriginal(const DsdRange *pRange, const DsdAreas *pAreas, uint32_t *pu32Returned);

/* The restore: the restoring line, a fresh key whatever the data write used,
 * the original area written back over the range and the count line; then the
 * range read back and compared with the original in silence. 0 when the
 * range holds the original contents again; -1 after the WRITE ERROR or the
 * WARNING that says why it may not. */
int RestoreAndConfirm(const DsdRange *pRange, const DsdAreas *pAreas, const char *sRestoringLine,
                      ShowWrittenFunction pfnShowWritten);

/* After a data write that answered an error: the range read again. Unchanged:
 * "The DSD range is unchanged."; changed: the restore with bRestore, else the
 * WARNING. Returns -1, the result of the failed write. */
int LookAfterFailedWrite(const DsdRange *pRange, const DsdAreas *pAreas, bool bRestore, const char *sRestoringLine,
                         ShowWrittenFunction pfnShowWritten);

/* A null handle ends the command with no output; otherwise the NVM mode
 * (library option 7, shown only; 0 if it cannot be read) is read and the
 * heading printed. */
bool BeginWithNvmMode(CalInterfaceHandle hCal, const char *sHeading, int32_t *pi32NvmMode);

/* The key of the data write: from the device for an answer of exactly 1 (a
 * refused request gives 0, which the write then refuses), else typed.
 * *pbRequested says whether the device was asked, which replaces the key it
 * held before. */
bool ReadWriteKey(CalInterfaceHandle hCal, uint32_t *pu32Key, bool *pbRequested);

/* A write that ends before it has used the key it requested (an answer
 * abandoned, a read that failed) says so: the key the engineer may hold from
 * an earlier request is no longer the device's. Returns -1. */
int EndBeforeTheWrite(bool bKeyRequested);

/* A data pattern fills 32-bit words (block write) or bytes (byte writes). */
typedef struct PatternElement {
    uint32_t u32Size;      /* 4 or 1 */
    const char *sUserWord; /* "Value" or "Byte" in the user pattern's prompts */
    uint32_t (*pfnRandom)(void);
} PatternElement;

extern const PatternElement gs_stWordElement;
extern const PatternElement gs_stByteElement;

/* Asks for a pattern until the selection is valid and fills u32Count
 * elements of the area with it; false when the session ends. */
bool FillDataPattern(const PatternElement *pElement, uint8_t *pu8Area, uint32_t u32Count);

#endif /* Q7_DSD_WRITE_STEPS_H */
