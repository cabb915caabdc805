#include "console.h"

#include <ctype.h>
#include <errno.h>
#include <limits.h>
#include <math.h>
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
/* Longer answers are not numbers any reader could take. */
#define ANSWER_WORD_MAX 63
#define ANSWER_WORD_MAX_TEXT "63"

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

/* Drops what is left of the word just read (up to the next blank, which stays
 * pending); true when anything was dropped. */
static bool DropRestOfWord(void)
{
    bool bDropped = false;
    int c;
    while ((c = getchar()) != EOF && !isspace(c))
        bDropped = true;
    if (c != EOF)
        ungetc(c, stdin);
    return bDropped;
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
    /* The rest of an over-long word belongs to this choice, not the next one. */
    if (strlen(sWord) == CHOICE_WORD_MAX)
        DropRestOfWord();

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

/* An answer is one word; its parse says whether it is a number of the
 * reader's kind and whether that number fits the reader's type. */
typedef enum AnswerParse { ANSWER_OK, ANSWER_NOT_A_NUMBER, ANSWER_OUT_OF_RANGE } AnswerParse;

typedef struct AnswerKind {
    AnswerParse (*pfnParse)(const char *sWord, void *pValue);
    const char *sExpected; /* what a number of this kind is called */
    const char *sRange;    /* the values that fit */
} AnswerKind;

/* True for a word that begins with a digit of the base after an optional sign;
 * strtoull and strtoll would also skip blanks and a second sign. */
static bool StartsWithDigit(const char *sWord, int iBase)
{
    const char *p = sWord + (*sWord == '+' || *sWord == '-');
    return iBase == 16 ? isxdigit((unsigned char)*p) != 0 : isdigit((unsigned char)*p) != 0;
}

/* An unsigned 32-bit number; a leading minus sign negates it modulo 2^32, as
 * the C library's %u and %x conversions do, so that -1 reads as FFFFFFFF. */
static AnswerParse ParseUnsigned32(const char *sWord, int iBase, uint32_t *pu32Value)
{
    if (!StartsWithDigit(sWord, iBase))
        return ANSWER_NOT_A_NUMBER;
    bool bNegative = *sWord == '-';
    const char *pDigits = sWord + (*sWord == '+' || *sWord == '-');
    char *pEnd = NULL;
    errno = 0;
    unsigned long long ullValue = strtoull(pDigits, &pEnd, iBase);
    if (*pEnd != '\0')
        return ANSWER_NOT_A_NUMBER;
    if (errno == ERANGE || ullValue > UINT32_MAX)
        return ANSWER_OUT_OF_RANGE;
    *pu32Value = bNegative ? 0u - (uint32_t)ullValue : (uint32_t)ullValue;
    return ANSWER_OK;
}

static AnswerParse ParseUnsigned(const char *sWord, void *pValue)
{
    return ParseUnsigned32(sWord, 10, (uint32_t *)pValue);
}

static AnswerParse ParseHex(const char *sWord, void *pValue) { return ParseUnsigned32(sWord, 16, (uint32_t *)pValue); }

static AnswerParse ParseSigned(const char *sWord, void *pValue)
{
    if (!StartsWithDigit(sWord, 10))
        return ANSWER_NOT_A_NUMBER;
    char *pEnd = NULL;
    errno = 0;
    long long llValue = strtoll(sWord, &pEnd, 10);
    if (*pEnd != '\0')
        return ANSWER_NOT_A_NUMBER;
    if (errno == ERANGE || llValue < INT32_MIN || llValue > INT32_MAX)
        return ANSWER_OUT_OF_RANGE;
    *(int32_t *)pValue = (int32_t)llValue;
    return ANSWER_OK;
}

/* What %lg accepts: decimal and hexadecimal floating point, inf and nan. */
static AnswerParse ParseDouble(const char *sWord, void *pValue)
{
    char *pEnd = NULL;
    errno = 0;
    double dValue = strtod(sWord, &pEnd);
    if (pEnd == sWord || *pEnd != '\0')
        return ANSWER_NOT_A_NUMBER;
    if (errno == ERANGE && isinf(dValue))
        return ANSWER_OUT_OF_RANGE;
    *(double *)pValue = dValue;
    return ANSWER_OK;
}

static const AnswerKind gs_stUnsigned = {ParseUnsigned, "an unsigned decimal number", "up to 4294967295"};
static const AnswerKind gs_stSigned = {ParseSigned, "a decimal number", "from -2147483648 to 2147483647"};
static const AnswerKind gs_stHex = {ParseHex, "a hexadecimal number", "up to FFFFFFFF"};
static const AnswerKind gs_stDouble = {ParseDouble, "a number", "within the range of a double"};

/* Reads one word of at most ANSWER_WORD_MAX characters: 1, or EOF at end of
 * input. The rest of a longer word is dropped and the word made empty, which
 * no kind accepts. */
static int ReadAnswerWord(char sWord[ANSWER_WORD_MAX + 1])
{
    if (scanf("%" ANSWER_WORD_MAX_TEXT "s", sWord) != 1)
        return EOF;
    gs_bLinePending = true;
    if (strlen(sWord) == ANSWER_WORD_MAX && DropRestOfWord())
        sWord[0] = '\0';
    return 1;
}

__attribute__((format(printf, 3, 0))) static bool ReadAnswer(const AnswerKind *pKind, void *pValue,
                                                            const char *sPromptFormat, va_list args)
{
    char sPrompt[PROMPT_MAX];
    char sWord[ANSWER_WORD_MAX + 1];
    vsnprintf(sPrompt, sizeof sPrompt, sPromptFormat, args);

    while (!gs_bInputEnded) {
        fputs(sPrompt, stdout);
        fflush(stdout);
        if (ReadAnswerWord(sWord) == EOF)
            break;
        AnswerParse eParse = pKind->pfnParse(sWord, pValue);
        if (eParse == ANSWER_OK)
            return true;
        if (eParse == ANSWER_NOT_A_NUMBER)
            printf("\nNot a number. Please enter %s.\n", pKind->sExpected);
        else
            printf("\nOut of range. Please enter %s %s.\n", pKind->sExpected, pKind->sRange);
        DiscardRestOfLine();
    }
    gs_bInputEnded = true;
    printf("\nEnd of input: command abandoned.\n");
    return false;
}

/* Each reader forwards its prompt to ReadAnswer with its own kind of number. */
#define DEFINE_READER(Name, Type, stKind)                                \
    bool Name(Type *pValue, const char *sPromptFormat, ...)              \
    {                                                                    \
        va_list args;                                                    \
        va_start(args, sPromptFormat);                                   \
        bool bRead = ReadAnswer(&stKind, pValue, sPromptFormat, args);   \
        va_end(args);                                                    \
        return bRead;                                                    \
    }

DEFINE_READER(ReadUnsigned, uint32_t, gs_stUnsigned)
DEFINE_READER(ReadSigned, int32_t, gs_stSigned)
DEFINE_READER(ReadHex, uint32_t, gs_stHex)
DEFINE_READER(ReadDouble, double, gs_stDouble)
