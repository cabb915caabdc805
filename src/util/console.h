/*
 * Console input and text helpers shared by the menu and every handler.
 *
 * All reads of standard input go through this module, which flushes stdout
 * first (so prompts show when output is a pipe) and handles the two input
 * failures the same way everywhere:
 *  - an answer that is not a number (trailing letters included) or does not
 *    fit the value's type: one line says what is expected, the rest of that
 *    input line is dropped and the same prompt is asked again;
 *  - the end of the session: the Read* helpers print one line and return
 *    false, and the caller abandons its command before it changes the device
 *    (or, when it has changed it already, after finishing what the engineer
 *    asked for: a restore, a device mode popped). At a menu it reads as -1.
 * The session ends at the end of input, on a stop signal (SIGINT, SIGTERM,
 * SIGHUP, SIGQUIT) and when standard output can no longer be written. At a
 * terminal, Ctrl-C ends only the command in progress: the menu then carries
 * on (ResumeAfterInterrupt), and answers are read with line editing and
 * history. Input is text: a non-blocking standard input is waited on, and a
 * line that has not ended after 1 MiB ends the input.
 */
#ifndef Q7_CONSOLE_H
#define Q7_CONSOLE_H

#include <stdbool.h>
#include <stdint.h>

/* One menu choice: the signed decimal number at the start of the next word,
 * 0 when the word does not start with one (or does not fit an int), -1 at
 * the end of the session. A word is read up to 49 characters; the rest of a
 * longer word is dropped. */
int ReadChoice(void);

/* The text padded with the fill character, or cut, to exactly `width`
 * characters, in a static buffer that the next call overwrites. NULL for a
 * NULL text, a text longer than 80 characters or a width above 80. */
char *PadString(const char *sText, char cFill, uint32_t u32Width);

/* Drops pending input (on a terminal all typed-ahead input, on a pipe or file
 * only what the last read left of its line), asks for Enter and waits for one
 * line. Returns at once when the session has ended. */
void PressEnterToContinue(void);

/* Print the prompt (a printf format) and read one answer, a word, as the
 * "%u", "%d", "%x" or "%lg" conversion reads it: unsigned decimal, signed
 * decimal, hexadecimal (an optional 0x) or floating point. As with the C
 * library, a minus sign before an unsigned or hexadecimal number negates it
 * modulo 2^32 (-1 reads as FFFFFFFF). True when *value was set; false when
 * the session has ended, with *value unchanged. */
bool ReadUnsigned(uint32_t *pu32Value, const char *sPromptFormat, ...) __attribute__((format(printf, 2, 3)));
bool ReadSigned(int32_t *pi32Value, const char *sPromptFormat, ...) __attribute__((format(printf, 2, 3)));
bool ReadHex(uint32_t *pu32Value, const char *sPromptFormat, ...) __attribute__((format(printf, 2, 3)));
bool ReadDouble(double *pdValue, const char *sPromptFormat, ...) __attribute__((format(printf, 2, 3)));

/* True once the session takes no more answers: standard input has ended, a
 * stop signal arrived, or standard output could not be written. */
bool SessionEnded(void);

/* Why the command in progress ends early, for a line that ends "because
 * ...": "input ended", "the command was interrupted" (Ctrl-C at a terminal,
 * after which the session goes on), "the session was interrupted" (by a stop
 * signal) or "standard output could not be written". */
const char *WhyCommandEnded(void);

/* Prints, once per command, the line that says why the command in progress
 * is abandoned (end of input, or the signal); returns -1. */
int AbandonCommand(void);

/* Prints a line that says what became of the device after a write (a write
 * or read that failed, a restore withheld or not made). Once standard output
 * has failed, the line goes to standard error too, where the engineer can
 * still see it. */
void PrintDeviceNotice(const char *sFormat, ...) __attribute__((format(printf, 1, 2)));

/* Called first of all: a closed standard descriptor is opened on /dev/null,
 * so that nothing opened later (the device library's channel) takes its
 * number. A standard output that was closed is opened for reading only: its
 * first write fails, an output error. */
void OpenClosedStandardDescriptors(void);

/* SIGINT, SIGTERM, SIGHUP and SIGQUIT end the session at its next read, sleep
 * or check (a blocking read or a sleep is interrupted); a second SIGINT ends
 * the program at once. SIGPIPE and SIGXFSZ are ignored: a closed pipe and a
 * file-size limit are output errors. Standard output is written through a
 * stream that resumes a write a signal interrupted. */
void CatchStopSignals(void);

/* The stop signal that ends the session, or 0. */
int StopSignal(void);

/* At a terminal, after a command that Ctrl-C cut short: forgets the
 * interrupt and what was typed ahead, so that the menu carries on; true when
 * it did. False (and nothing forgotten) when the session ends for good: not
 * at a terminal, input ended, another stop signal, or output failed. */
bool ResumeAfterInterrupt(void);

/* Flushes standard output at the end of the session: false, after a line on
 * stderr, when anything written to it was lost. */
bool FinishOutput(void);

/* Forget what was learnt about standard input, a stop signal and output
 * errors; for a new session. */
void ResetInputState(void);

#endif /* Q7_CONSOLE_H */
