#include "line_editor.h"

#include <string.h>
#include <wchar.h>

/* Without the header (a cross build for a target without libedit) there is
 * no editor to load. */
#if __has_include(<histedit.h>)
#include <dlfcn.h>
#include <histedit.h>

/* Answers an engineer can recall with the up arrow. */
#define HISTORY_SIZE 200

/* The library's functions this program calls, found when it is loaded. */
typedef struct Libedit {
    decltype(&el_init) pfnInit;
    decltype(&el_set) pfnSet;
    decltype(&el_gets) pfnGets;
    decltype(&history_init) pfnHistoryInit;
    decltype(&history) pfnHistory;
} Libedit;

static Libedit gs_stLibedit;
static EditLine *gs_pEditor = NULL;
static History *gs_pHistory = NULL;
static const char *(*gs_pfnPrompt)(void) = NULL;
static int (*gs_pfnGetByte)(unsigned char *pu8Byte) = NULL;

static char *Prompt(EditLine *pEditor)
{
    (void)pEditor;
    return (char *)gs_pfnPrompt(); /* the editor only reads it */
}

static int GetChar(EditLine *pEditor, wchar_t *pwChar)
{
    (void)pEditor;
    unsigned char u8Byte = 0;
    int iRead = gs_pfnGetByte(&u8Byte);
    if (iRead == 1)
        *pwChar = (wchar_t)u8Byte;
    return iRead;
}

static bool LoadLibedit(void)
{
    void *pLibrary = dlopen("libedit.so.2", RTLD_NOW | RTLD_LOCAL);
    if (pLibrary == NULL)
        return false;
    gs_stLibedit.pfnInit = (decltype(&el_init))dlsym(pLibrary, "el_init");
    gs_stLibedit.pfnSet = (decltype(&el_set))dlsym(pLibrary, "el_set");
    gs_stLibedit.pfnGets = (decltype(&el_gets))dlsym(pLibrary, "el_gets");
    gs_stLibedit.pfnHistoryInit = (decltype(&history_init))dlsym(pLibrary, "history_init");
    gs_stLibedit.pfnHistory = (decltype(&history))dlsym(pLibrary, "history");
    /* Kept loaded for the rest of the session, as the editor is. */
    return gs_stLibedit.pfnInit != NULL && gs_stLibedit.pfnSet != NULL && gs_stLibedit.pfnGets != NULL &&
           gs_stLibedit.pfnHistoryInit != NULL && gs_stLibedit.pfnHistory != NULL;
}

bool OpenLineEditor(FILE *pInput, FILE *pOutput, const char *(*pfnPrompt)(void),
                    int (*pfnGetByte)(unsigned char *pu8Byte))
{
    if (gs_pEditor != NULL)
        return true;
    if (!LoadLibedit())
        return false;
    gs_pfnPrompt = pfnPrompt;
    gs_pfnGetByte = pfnGetByte;
    gs_pHistory = gs_stLibedit.pfnHistoryInit();
    gs_pEditor = gs_pHistory != NULL ? gs_stLibedit.pfnInit("q7cal", pInput, pOutput, stderr) : NULL;
    if (gs_pEditor == NULL)
        return false;
    HistEvent stEvent;
    gs_stLibedit.pfnHistory(gs_pHistory, &stEvent, H_SETSIZE, HISTORY_SIZE);
    gs_stLibedit.pfnSet(gs_pEditor, EL_EDITOR, "emacs");
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
    const char *sLine = gs_stLibedit.pfnGets(gs_pEditor, piLength);
    if (sLine == NULL || *piLength <= 0)
        return NULL;
    if (strspn(sLine, " \t\n") < (size_t)*piLength) {
        HistEvent stEvent;
        gs_stLibedit.pfnHistory(gs_pHistory, &stEvent, H_ENTER, sLine);
    }
    return sLine;
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

#endif
