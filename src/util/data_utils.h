/* Small data utilities shared by the DSD commands and the diagnostic tests. */
#ifndef Q7_DATA_UTILS_H
#define Q7_DATA_UTILS_H

#include <stdint.h>

/* A random 32-bit word from the C library's rand (seeded by main); never 0. */
uint32_t Q7_rand32(void);

/* Prints the bytes sixteen to a row, each row led by "%04X: " with the
 * display offset of its first byte, each byte as " %02X"; ends with one newline. */
void Q7_HexByteDump(const uint8_t *pu8Data, uint32_t u32FirstOffset, uint32_t u32Count);

/* The value of four bytes stored most significant first, in host order. */
uint32_t FromBigEndianUINT32(uint32_t u32Value);

/* Compares `u32Count` bytes, the read-back index starting at its own offset and
 * the expected index at its own; prints one line per difference. Returns the
 * number of differing bytes. */
uint32_t CompareBlocks(const uint8_t *pu8ReadBack, const uint8_t *pu8Expected, uint32_t u32ReadBackOffset,
                       uint32_t u32ExpectedOffset, uint32_t u32Count);

/* Compares `u32Count` bytes from the offset with a fill value (a value above
 * 255 never matches); prints one line per difference and returns their number. */
uint32_t CompareFill(const uint8_t *pu8ReadBack, uint32_t u32Offset, uint32_t u32Count, uint32_t u32Fill);

/* free() that accepts NULL. */
void bfree(void *pBuffer);

#endif /* Q7_DATA_UTILS_H */
