/* Limits that the DSD commands check before they allocate a buffer. */
#ifndef Q7_DSD_LIMITS_H
#define Q7_DSD_LIMITS_H

#include <stdbool.h>
#include <stdint.h>

/* The Cal API counts bytes in 32 bits: a block of 32-bit words fits when its
 * byte count does. Otherwise prints an error line and returns false. */
bool BlockSizeFits(uint32_t u32WordCount);

#endif /* Q7_DSD_LIMITS_H */
