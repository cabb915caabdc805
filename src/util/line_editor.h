/* Line editing and history for answers typed at a terminal, by libedit,
 * loaded on first use: a session fed by a script never loads it, and on a
 * host without libedit the terminal's own line editing serves.
 *
 * What Enter sends is what the screen shows. The editor is given whole keys:
 * a character beyond ASCII as itself (shown as \U+XXXX, and refused by every
 * answer reader: a Unicode minus is no minus), the escape sequences of the
 * arrows, Home, End and Delete; any other escape sequence is read whole and
 * dropped with the bell, leaving nothing in the line. */
#ifndef Q7_LINE_EDITOR_H
#define Q7_LINE_EDITOR_H

#include <stdbool.h>
#include <stdio.h>

/* Opens the editor on the terminal: it draws on `pOutput`, shows what
 * pfnPrompt returns as the prompt and reads its bytes with pfnGetByte (1 with
 * the byte, 0 at end of input, -1 when the read is to be given up). False
 * when libedit cannot be loaded. */
bool OpenLineEditor(FILE *pInput, FILE *pOutput, const char *(*pfnPrompt)(void),
                    int (*pfnGetByte)(unsigned char *pu8Byte));

/* The next line typed, with its line end, as UTF-8; kept in the history when
 * it holds more than blanks and nothing beyond ASCII. NULL at end of input or
 * when the read was given up. */
const char *EditNextLine(int *piLength);

/* From within a read of EditNextLine: the terminal put back as it was found
 * (before the program stops), and taken again with the prompt and the line
 * redrawn (when it goes on in the foreground). */
void SuspendLineEditor(void);
void ResumeLineEditor(void);

#endif /* Q7_LINE_EDITOR_H */
