/*
 * Console input and text helpers shared by the menu and every handler.
 *
 * All reads of standard input go through this module, which flushes stdout
 * first (so prompts show when output is a pipe) and handles the two input
 * failures the same way everywhere:
 *  - an answer that is not a number (trailing letters included) or does not
 *    fit the value's type: one line says what is expected, the rest of that
 *    input line is dropped and the same prompt is asked again;
 *  - end of input: the Read* helpers print one line and return false, and the
 *    caller abandons its command before it changes the device; the menu then
 *    leaves through its normal exit path. At a menu, end of input reads as -1.
 */
#ifndef Q7_CONSOLE_H
#define Q7_CONSOLE_H

#include <stdbool.h>
#include <stdint.h>

/* One menu choice: the signed decimal number at the start of the next word,
 * 0 when the word does not start with one (or does not fit an int), -1 at end
 * of input. A word is read up to 49 characters; the rest of a longer word is
 * dropped. */
int ReadChoice(void);

/* The text padded with the fill character, or cut, to exactly `width`
 * characters, in a static buffer that the next call overwrites. NULL for a
 * NULL text, a text longer than 80 characters or a width above 80. */
char *PadString(const char *sText, char cFill, uint32_t u32Width);

/* Drops pending input (on a terminal all typed-ahead input, on a pipe or file
 * only what the last read left of its line), asks for Enter and waits for one
 * character. Returns at once at end of input. */
void PressEnterToContinue(void);

/* Print the prompt (a printf format) and read one answer, a word, as the
 * "%u", "%d", "%x" or "%lg" conversion reads it: unsigned decimal, signed
 * decimal, hexadecimal (an optional 0x) or floating point. As with the C
 * library, a minus sign before an unsigned or hexadecimal number negates it
 * modulo 2^32 (-1 reads as FFFFFFFF). True when *value was set; false at end
 * of input, with *value unchanged. */
bool ReadUnsigned(uint32_t *pu32Value, const char *sPromptFormat, ...) __attribute__((format(printf, 2, 3)));
bool ReadSigned(int32_t *pi32Value, const char *sPromptFormat, ...) __attribute__((format(printf, 2, 3)));
bool ReadHex(uint32_t *pu32Value, const char *sPromptFormat, ...) __attribute__((format(printf, 2, 3)));
bool ReadDouble(double *pdValue, const char *sPromptFormat, ...) __attribute__((format(printf, 2, 3)));

/* True once standard input has ended. */
bool InputEnded(void);

/* Forget what was learnt about standard input; for a new input stream. */
void ResetInputState(void);

#endif /* Q7_CONSOLE_H */
