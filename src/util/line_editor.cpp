#include "line_editor.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <wchar.h>

/* Without the header (a cross build for a target without libedit) there is
 * no editor to load. */
#if __has_include(<histedit.h>)
#include <dlfcn.h>
#include <histedit.h>

/* Answers an engineer can recall with the up arrow. */
#define HISTORY_SIZE 200
/* The bound keys' sequences are shorter; a longer one is kept only this far. */
#define ESCAPE_SEQUENCE_MAX 15
#define ESCAPE 0x1B
/* What a byte that is not UTF-8 stands for in the line. */
#define REPLACEMENT_CHARACTER 0xFFFDu

/* The library's functions this program calls, found when it is loaded. */
typedef struct Libedit {
    decltype(&el_init) pfnInit;
    decltype(&el_set) pfnSet;
    decltype(&el_wset) pfnWideSet;
    decltype(&el_wgets) pfnGets;
    decltype(&history_init) pfnHistoryInit;
    decltype(&history) pfnHistory;
} Libedit;

/* The escape sequences the editor is given, each bound here to what its key
 * does whatever the terminal description says. */
typedef struct BoundKey {
    const char *sSequence;
    const char *sFunction;
} BoundKey;

static const BoundKey gs_astBoundKeys[] = {
    {"\033[A", "ed-prev-history"}, {"\033OA", "ed-prev-history"},    {"\033[B", "ed-next-history"},
    {"\033OB", "ed-next-history"}, {"\033[C", "ed-next-char"},       {"\033OC", "ed-next-char"},
    {"\033[D", "ed-prev-char"},    {"\033OD", "ed-prev-char"},       {"\033[H", "ed-move-to-beg"},
    {"\033OH", "ed-move-to-beg"},  {"\033[1~", "ed-move-to-beg"},    {"\033[7~", "ed-move-to-beg"},
    {"\033[F", "ed-move-to-end"},  {"\033OF", "ed-move-to-end"},     {"\033[4~", "ed-move-to-end"},
    {"\033[8~", "ed-move-to-end"}, {"\033[3~", "ed-delete-next-char"},
};

static Libedit gs_stLibedit;
static EditLine *gs_pEditor = NULL;
static History *gs_pHistory = NULL;
static FILE *gs_pOutput = NULL;
static const char *(*gs_pfnPrompt)(void) = NULL;
static int (*gs_pfnGetByte)(unsigned char *pu8Byte) = NULL;

/* The characters of a bound key not yet given to the editor, and a byte read
 * one too far (-1 when there is none). */
static wchar_t gs_awKeyRest[ESCAPE_SEQUENCE_MAX];
static int gs_iKeyRestCount = 0;
static int gs_iKeyRestNext = 0;
static int gs_iHeldByte = -1;

/* The line returned, as UTF-8. */
static char *gs_sLine = NULL;
static size_t gs_uLineSize = 0;

static char *Prompt(EditLine *pEditor)
{
    (void)pEditor;
    return (char *)gs_pfnPrompt(); /* the editor only reads it */
}

static int NextByte(unsigned char *pu8Byte)
{
    if (gs_iHeldByte < 0)
        return gs_pfnGetByte(pu8Byte);
    *pu8Byte = (unsigned char)gs_iHeldByte;
    gs_iHeldByte = -1;
    return 1;
}

/* The character of the UTF-8 sequence that u8Lead begins; U+FFFD for one
 * that is not UTF-8 (overlong forms included: no byte sequence stands for an
 * ASCII character but that character). A byte that does not continue the
 * sequence is read again as the next key. 1, or what the byte reader said. */
static int ReadMultibyte(unsigned char u8Lead, wchar_t *pwChar)
{
    static const uint32_t au32Least[] = {0, 0x80, 0x800, 0x10000};
    const int iFollowing = u8Lead >= 0xF0 ? 3 : u8Lead >= 0xE0 ? 2 : u8Lead >= 0xC0 ? 1 : 0;
    uint32_t u32Char = u8Lead & (0x3Fu >> iFollowing);
    bool bValid = iFollowing != 0 && u8Lead < 0xF8;
    for (int i = 0; i < iFollowing && bValid; i++) {
        unsigned char u8Byte = 0;
        int iRead = NextByte(&u8Byte);
        if (iRead != 1)
            return iRead;
        bValid = (u8Byte & 0xC0) == 0x80;
        if (bValid)
            u32Char = u32Char << 6 | (u8Byte & 0x3Fu);
        else
            gs_iHeldByte = u8Byte;
    }
    if (!bValid || u32Char < au32Least[iFollowing] || u32Char > 0x10FFFF)
        u32Char = REPLACEMENT_CHARACTER;
    *pwChar = (wchar_t)u32Char;
    return 1;
}

/* Reads the rest of an escape sequence after its ESC into sSequence (ESC
 * first, terminated, cut at ESCAPE_SEQUENCE_MAX characters): doubled ESCs,
 * then "[" with its parameters up to a final byte, "O" and one byte, or any
 * one byte. A control byte (or one beyond ASCII) is no part of a sequence: it
 * ends it and is read again as a key of its own. 1, or what the byte reader
 * said. */
static int ReadEscapeSequence(char *sSequence)
{
    enum { AFTER_ESCAPE, CONTROL_SEQUENCE, LAST_BYTE } eState = AFTER_ESCAPE;
    size_t uLength = 0;
    sSequence[uLength++] = ESCAPE;
    for (;;) {
        unsigned char u8Byte = 0;
        int iRead = NextByte(&u8Byte);
        if (iRead != 1)
            return iRead;
        const bool bDoubledEscape = eState == AFTER_ESCAPE && u8Byte == ESCAPE;
        if (!bDoubledEscape && (u8Byte < 0x20 || u8Byte > 0x7E)) {
            gs_iHeldByte = u8Byte;
            break;
        }
        if (uLength < ESCAPE_SEQUENCE_MAX)
            sSequence[uLength++] = (char)u8Byte;
        if (eState == AFTER_ESCAPE && u8Byte == '[')
            eState = CONTROL_SEQUENCE;
        else if (eState == AFTER_ESCAPE && u8Byte == 'O')
            eState = LAST_BYTE;
        else if (!bDoubledEscape && !(eState == CONTROL_SEQUENCE && u8Byte < 0x40))
            break; /* the final byte; below 0x40 a parameter or intermediate byte */
    }
    sSequence[uLength] = '\0';
    return 1;
}

static bool IsBoundKey(const char *sSequence)
{
    for (size_t i = 0; i < sizeof gs_astBoundKeys / sizeof gs_astBoundKeys[0]; i++)
        if (strcmp(sSequence, gs_astBoundKeys[i].sSequence) == 0)
            return true;
    return false;
}

/* The next character for the editor: 1 with it, or what the byte reader said. */
static int GetChar(EditLine *pEditor, wchar_t *pwChar)
{
    (void)pEditor;
    if (gs_iKeyRestNext < gs_iKeyRestCount) {
        *pwChar = gs_awKeyRest[gs_iKeyRestNext++];
        return 1;
    }
    for (;;) {
        unsigned char u8Byte = 0;
        int iRead = NextByte(&u8Byte);
        if (iRead != 1)
            return iRead;
        if (u8Byte >= 0x80)
            return ReadMultibyte(u8Byte, pwChar);
        if (u8Byte != ESCAPE) {
            *pwChar = (wchar_t)u8Byte;
            return 1;
        }
        char sSequence[ESCAPE_SEQUENCE_MAX + 1];
        iRead = ReadEscapeSequence(sSequence);
        if (iRead != 1)
            return iRead;
        if (IsBoundKey(sSequence)) {
            gs_iKeyRestCount = (int)strlen(sSequence);
            for (int i = 0; i < gs_iKeyRestCount; i++)
                gs_awKeyRest[i] = (wchar_t)sSequence[i];
            gs_iKeyRestNext = 1;
            *pwChar = gs_awKeyRest[0];
            return 1;
        }
        /* A key the editor has no use for: nothing of it reaches the line. */
        fputc('\a', gs_pOutput);
        fflush(gs_pOutput);
    }
}

/* The line as UTF-8 in gs_sLine, character for character as the screen
 * shows it; false when there is no memory for it. */
static bool EncodeLine(const wchar_t *pwLine, int iCount, int *piLength)
{
    const size_t uNeeded = (size_t)iCount * 4 + 1;
    if (uNeeded > gs_uLineSize) {
        char *sLarger = (char *)realloc(gs_sLine, uNeeded);
        if (sLarger == NULL)
            return false;
        gs_sLine = sLarger;
        gs_uLineSize = uNeeded;
    }
    size_t uLength = 0;
    for (int i = 0; i < iCount; i++) {
        uint32_t u32Char = (uint32_t)pwLine[i];
        if (u32Char > 0x10FFFF)
            u32Char = REPLACEMENT_CHARACTER;
        if (u32Char < 0x80) {
            gs_sLine[uLength++] = (char)u32Char;
            continue;
        }
        static const uint32_t au32Lead[] = {0, 0xC0, 0xE0, 0xF0};
        const int iFollowing = u32Char < 0x800 ? 1 : u32Char < 0x10000 ? 2 : 3;
        gs_sLine[uLength++] = (char)(au32Lead[iFollowing] | u32Char >> (6 * iFollowing));
        for (int j = iFollowing - 1; j >= 0; j--)
            gs_sLine[uLength++] = (char)(0x80u | ((u32Char >> (6 * j)) & 0x3Fu));
    }
    gs_sLine[uLength] = '\0';
    *piLength = (int)uLength;
    return true;
}

static bool LoadLibedit(void)
{
    void *pLibrary = dlopen("libedit.so.2", RTLD_NOW | RTLD_LOCAL);
    if (pLibrary == NULL)
        return false;
    gs_stLibedit.pfnInit = (decltype(&el_init))dlsym(pLibrary, "el_init");
    gs_stLibedit.pfnSet = (decltype(&el_set))dlsym(pLibrary, "el_set");
    gs_stLibedit.pfnWideSet = (decltype(&el_wset))dlsym(pLibrary, "el_wset");
    gs_stLibedit.pfnGets = (decltype(&el_wgets))dlsym(pLibrary, "el_wgets");
    gs_stLibedit.pfnHistoryInit = (decltype(&history_init))dlsym(pLibrary, "history_init");
    gs_stLibedit.pfnHistory = (decltype(&history))dlsym(pLibrary, "history");
    /* Kept loaded for the rest of the session, as the editor is. */
    return gs_stLibedit.pfnInit != NULL && gs_stLibedit.pfnSet != NULL && gs_stLibedit.pfnWideSet != NULL &&
           gs_stLibedit.pfnGets != NULL &&
           gs_stLibedit.pfnHistoryInit != NULL && gs_stLibedit.pfnHistory != NULL;
}

bool OpenLineEditor(FILE *pInput, FILE *pOutput, const char *(*pfnPrompt)(void),
                    int (*pfnGetByte)(unsigned char *pu8Byte))
{
    if (gs_pEditor != NULL)
        return true;
    if (!LoadLibedit())
        return false;
    gs_pOutput = pOutput;
    gs_pfnPrompt = pfnPrompt;
    gs_pfnGetByte = pfnGetByte;
    gs_pHistory = gs_stLibedit.pfnHistoryInit();
    gs_pEditor = gs_pHistory != NULL ? gs_stLibedit.pfnInit("q7cal", pInput, pOutput, stderr) : NULL;
    if (gs_pEditor == NULL)
        return false;
    HistEvent stEvent;
    gs_stLibedit.pfnHistory(gs_pHistory, &stEvent, H_SETSIZE, HISTORY_SIZE);
    gs_stLibedit.pfnSet(gs_pEditor, EL_EDITOR, "emacs");
    for (size_t i = 0; i < sizeof gs_astBoundKeys / sizeof gs_astBoundKeys[0]; i++)
        gs_stLibedit.pfnSet(gs_pEditor, EL_BIND, gs_astBoundKeys[i].sSequence, gs_astBoundKeys[i].sFunction,
                            (const char *)NULL);
    /* U+0080 to U+00FF (a no-break space) are characters like any other, not
     * the meta keys that the editor's 8-bit key map makes of them. */
    for (wchar_t wChar = 0x80; wChar <= 0xFF; wChar++) {
        const wchar_t awKey[] = {wChar, L'\0'};
        gs_stLibedit.pfnWideSet(gs_pEditor, EL_BIND, awKey, L"ed-insert", (const wchar_t *)NULL);
    }
    gs_stLibedit.pfnSet(gs_pEditor, EL_HIST, gs_stLibedit.pfnHistory, gs_pHistory);
    gs_stLibedit.pfnSet(gs_pEditor, EL_PROMPT, Prompt);
    gs_stLibedit.pfnSet(gs_pEditor, EL_GETCFN, GetChar);
    return true;
}

const char *EditNextLine(int *piLength)
{
    *piLength = 0;
    if (gs_pEditor == NULL)
        return NULL;
    /* The terminal is the editor's before its prompt shows: a key typed as
     * soon as the prompt appears is not echoed by the terminal itself. */
    gs_stLibedit.pfnSet(gs_pEditor, EL_PREP_TERM, 1);
    int iCount = 0;
    const wchar_t *pwLine = gs_stLibedit.pfnGets(gs_pEditor, &iCount);
    if (pwLine == NULL || iCount <= 0 || !EncodeLine(pwLine, iCount, piLength))
        return NULL;
    const bool bAscii = *piLength == iCount;
    if (bAscii && strspn(gs_sLine, " \t\n") < (size_t)*piLength) {
        HistEvent stEvent;
        gs_stLibedit.pfnHistory(gs_pHistory, &stEvent, H_ENTER, gs_sLine);
    }
    return gs_sLine;
}

void SuspendLineEditor(void)
{
    if (gs_pEditor != NULL)
        gs_stLibedit.pfnSet(gs_pEditor, EL_PREP_TERM, 0);
}

void ResumeLineEditor(void)
{
    if (gs_pEditor == NULL)
        return;
    /* Whatever was done to the terminal meanwhile, it is the editor's again. */
    gs_stLibedit.pfnSet(gs_pEditor, EL_PREP_TERM, 0);
    gs_stLibedit.pfnSet(gs_pEditor, EL_PREP_TERM, 1);
    gs_stLibedit.pfnSet(gs_pEditor, EL_REFRESH);
}

#else

bool OpenLineEditor(FILE *pInput, FILE *pOutput, const char *(*pfnPrompt)(void),
                    int (*pfnGetByte)(unsigned char *pu8Byte))
{
    (void)pInput;
    (void)pOutput;
    (void)pfnPrompt;
    (void)pfnGetByte;
    return false;
}

const char *EditNextLine(int *piLength)
{
    *piLength = 0;
    return NULL;
}

void SuspendLineEditor(void) {}

void ResumeLineEditor(void) {}

#endif
