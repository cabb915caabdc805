#include "data_utils.h"

#include <stdio.h>
#include <stdlib.h>

uint32_t Q7_rand32(void)
{
    uint32_t u32R1 = (uint32_t)rand();
    uint32_t u32R2 = (uint32_t)rand();
    uint32_t u32R3 = (uint32_t)rand();
    uint32_t u32Value = (((u32R1 << 15) ^ u32R2) << 2) ^ u32R3;
    return u32Value != 0 ? u32Value : 0xFFFFFFFFu;
}

void Q7_HexByteDump(const uint8_t *pu8Data, uint32_t u32FirstOffset, uint32_t u32Count)
{
    for (uint32_t i = 0; i < u32Count; i++) {
        if (i % 16 == 0)
            printf("%04X: ", u32FirstOffset + i);
        printf(" %02X", pu8Data[i]);
        if (i % 16 == 15 && i != u32Count - 1)
            printf("\n");
    }
    printf("\n");
}

uint32_t FromBigEndianUINT32(uint32_t u32Value)
{
    const uint32_t u32One = 1;
    if (*(const uint8_t *)&u32One != 1)
        return u32Value;
    return (u32Value >> 24) | ((u32Value >> 8) & 0x0000FF00u) | ((u32Value << 8) & 0x00FF0000u) | (u32Value << 24);
}

uint32_t CompareBlocks(const uint8_t *pu8ReadBack, const uint8_t *pu8Expected, uint32_t u32ReadBackOffset,
                       uint32_t u32ExpectedOffset, uint32_t u32Count)
{
    uint32_t u32Errors = 0;
    for (uint32_t i = 0; i < u32Count; i++) {
        uint32_t u32ReadIndex = u32ReadBackOffset + i;
        uint32_t u32ExpectedIndex = u32ExpectedOffset + i;
        if (pu8ReadBack[u32ReadIndex] != pu8Expected[u32ExpectedIndex]) {
            printf("\nRead back [%08X] = %02X - Expected [%08X] = %02X - Verify ERROR", u32ReadIndex,
                   pu8ReadBack[u32ReadIndex], u32ExpectedIndex, pu8Expected[u32ExpectedIndex]);
            u32Errors++;
        }
    }
    if (u32Errors != 0)
        printf("\n");
    return u32Errors;
}

uint32_t CompareFill(const uint8_t *pu8ReadBack, uint32_t u32Offset, uint32_t u32Count, uint32_t u32Fill)
{
    uint32_t u32Errors = 0;
    for (uint32_t n = 0; n < u32Count; n++) {
        uint32_t i = u32Offset + n;
        if ((uint32_t)pu8ReadBack[i] != u32Fill) {
            printf("\nRead back [%08X] = %02X - Expected %02X - Verify ERROR", i, pu8ReadBack[i], u32Fill);
            u32Errors++;
        }
    }
    if (u32Errors != 0)
        printf("\n");
    return u32Errors;
}

void bfree(void *pBuffer)
{
    if (pBuffer != NULL)
        free(pBuffer);
}
