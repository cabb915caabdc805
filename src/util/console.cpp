#include "console.h"

#include <errno.h>
#include <limits.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdio_ext.h>
#include <stdlib.h>
#include <string.h>
#include <termios.h>
#include <unistd.h>

#define PAD_STRING_MAX 80u
#define CHOICE_WORD_MAX 49
#define PROMPT_MAX 512

static char gs_sPadBuffer[PAD_STRING_MAX + 1];

/* Standard input has ended; every later read fails at once. */
static bool gs_bInputEnded = false;
/* The last read stopped inside a line: its line end has not been read yet. */
static bool gs_bLinePending = false;

bool InputEnded(void) { return gs_bInputEnded; }

void ResetInputState(void)
{
    gs_bInputEnded = false;
    gs_bLinePending = false;
}

static void DiscardRestOfLine(void)
{
    int c;
    do {
        c = getchar();
    } while (c != '\n' && c != EOF);
    gs_bLinePending = false;
}

int ReadChoice(void)
{
    char sWord[CHOICE_WORD_MAX + 1];
    memset(sWord, 0, sizeof sWord);

    fflush(stdout);
    if (gs_bInputEnded || scanf("%49s", sWord) != 1) {
        gs_bInputEnded = true;
        return -1;
    }
    gs_bLinePending = true;
    if (strlen(sWord) == CHOICE_WORD_MAX) {
        /* Drop the rest of an over-long word so that it is one choice, not several. */
        int c;
        while ((c = getchar()) != EOF && c != ' ' && c != '\t' && c != '\n') {
        }
        if (c != EOF)
            ungetc(c, stdin);
    }

    char *pEnd = NULL;
    errno = 0;
    long lChoice = strtol(sWord, &pEnd, 10);
    if (pEnd == sWord || errno == ERANGE || lChoice < INT_MIN || lChoice > INT_MAX)
        return 0;
    return (int)lChoice;
}

char *PadString(const char *sText, char cFill, uint32_t u32Width)
{
    if (sText == NULL || strlen(sText) > PAD_STRING_MAX || u32Width > PAD_STRING_MAX)
        return NULL;
    strcpy(gs_sPadBuffer, sText);
    for (size_t i = strlen(sText); i < u32Width; i++)
        gs_sPadBuffer[i] = cFill;
    gs_sPadBuffer[u32Width] = '\0';
    return gs_sPadBuffer;
}

void PressEnterToContinue(void)
{
    if (isatty(fileno(stdin))) {
        __fpurge(stdin);
        tcflush(fileno(stdin), TCIFLUSH);
        gs_bLinePending = false;
    } else if (gs_bLinePending) {
        DiscardRestOfLine();
    }

    printf("\nPress Enter to continue");
    fflush(stdout);
    char c = '\n';
    if (gs_bInputEnded || scanf("%c", &c) != 1)
        gs_bInputEnded = true;
    else
        gs_bLinePending = c != '\n';
    printf("\n");
}

/* One scanf conversion into *pValue: 1 when it matched, 0 when the input is
 * not a number, EOF at end of input. */
typedef int (*ScanOne)(void *pValue);

static int ScanUnsigned(void *pValue) { return scanf("%u", (unsigned int *)pValue); }
static int ScanSigned(void *pValue) { return scanf("%d", (int *)pValue); }
static int ScanHex(void *pValue) { return scanf("%x", (unsigned int *)pValue); }
static int ScanDouble(void *pValue) { return scanf("%lg", (double *)pValue); }

__attribute__((format(printf, 4, 0))) static bool ReadAnswer(ScanOne pfnScan, void *pValue, const char *sExpected,
                                                            const char *sPromptFormat, va_list args)
{
    char sPrompt[PROMPT_MAX];
    vsnprintf(sPrompt, sizeof sPrompt, sPromptFormat, args);

    while (!gs_bInputEnded) {
        fputs(sPrompt, stdout);
        fflush(stdout);
        int iMatched = pfnScan(pValue);
        if (iMatched == 1) {
            gs_bLinePending = true;
            return true;
        }
        if (iMatched == EOF)
            break;
        printf("\nNot a number. Please enter %s.\n", sExpected);
        DiscardRestOfLine();
    }
    gs_bInputEnded = true;
    printf("\nEnd of input: command abandoned.\n");
    return false;
}

/* Each reader forwards its prompt to ReadAnswer with its own conversion. */
#define DEFINE_READER(Name, Type, pfnScan, sExpected)                            \
    bool Name(Type *pValue, const char *sPromptFormat, ...)                      \
    {                                                                            \
        va_list args;                                                            \
        va_start(args, sPromptFormat);                                           \
        bool bRead = ReadAnswer(pfnScan, pValue, sExpected, sPromptFormat, args); \
        va_end(args);                                                            \
        return bRead;                                                            \
    }

DEFINE_READER(ReadUnsigned, uint32_t, ScanUnsigned, "an unsigned decimal number")
DEFINE_READER(ReadSigned, int32_t, ScanSigned, "a decimal number")
DEFINE_READER(ReadHex, uint32_t, ScanHex, "a hexadecimal number")
DEFINE_READER(ReadDouble, double, ScanDouble, "a number")
