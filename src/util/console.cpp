#include "console.h"

#include <ctype.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <math.h>
#include <poll.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include "line_editor.h"

#define PAD_STRING_MAX 80u
#define CHOICE_WORD_MAX 49u
#define PROMPT_MAX 512
/* Longer answers are not numbers any reader could take. */
#define ANSWER_WORD_MAX 63u
/* No answer comes further into its line than this: input there is no text. */
#define ANSWER_LINE_MAX 65536u
/* A line that has not ended by then never will (/dev/zero): the input ends. */
#define INPUT_LINE_LIMIT (16u * ANSWER_LINE_MAX)

static char gs_sPadBuffer[PAD_STRING_MAX + 1];

/* Standard input has ended; every later read fails at once. */
static bool gs_bInputEnded = false;
/* The last read stopped inside a line: its line end has not been read yet. */
static bool gs_bLinePending = false;
/* The stop signal that ends the session (SIGTERM and SIGHUP win over
 * SIGINT), and whether a SIGINT has arrived since the session last went on:
 * set by the handler alone. */
static volatile sig_atomic_t gs_iStopSignal = 0;
static volatile sig_atomic_t gs_iInterrupted = 0;
/* A write to standard output failed, and the error it failed with. */
static bool gs_bOutputFailed = false;
static int gs_iOutputError = 0;
/* The command in progress has printed its abandon line. */
static bool gs_bAbandonAnnounced = false;

bool SessionEnded(void) { return gs_bInputEnded || gs_iStopSignal != 0 || gs_bOutputFailed; }

int StopSignal(void) { return gs_iStopSignal; }

/* ---- Standard output ---------------------------------------------------- */

/* What the program printed after its last line end: the prompt that a line
 * editor shows again when it redraws the line. */
static char gs_sOutputTail[PROMPT_MAX];
/* The C library's own standard output, which the line editor draws on. */
static FILE *gs_pLibraryStdout = NULL;

static void RememberOutputTail(const char *pBytes, size_t uSize)
{
    size_t uKept = strlen(gs_sOutputTail);
    for (size_t i = 0; i < uSize; i++) {
        if (pBytes[i] == '\n')
            uKept = 0;
        else if (uKept + 1 < sizeof gs_sOutputTail)
            gs_sOutputTail[uKept++] = pBytes[i];
    }
    gs_sOutputTail[uKept] = '\0';
}

/* Writes all of it to file descriptor 1, resuming after a signal: a stop
 * signal while a slow reader holds the pipe full is no output error. */
static ssize_t WriteStandardOutput(void *pCookie, const char *pBytes, size_t uSize)
{
    (void)pCookie;
    size_t uDone = 0;
    while (uDone < uSize) {
        ssize_t iWritten = write(STDOUT_FILENO, pBytes + uDone, uSize - uDone);
        if (iWritten < 0 && errno == EINTR)
            continue;
        if (iWritten <= 0)
            break;
        uDone += (size_t)iWritten;
    }
    RememberOutputTail(pBytes, uDone);
    return uDone > 0 || uSize == 0 ? (ssize_t)uDone : -1;
}

static void WriteThroughResumingStream(void)
{
    if (gs_pLibraryStdout != NULL)
        return; /* once for the process */
    cookie_io_functions_t stFunctions;
    memset(&stFunctions, 0, sizeof stFunctions);
    stFunctions.write = WriteStandardOutput;
    FILE *pStream = fopencookie(NULL, "w", stFunctions);
    if (pStream == NULL)
        return; /* the C library's own stream stays */
    /* Each line written as it completes, to a pipe too: a reader that times
     * what it reads (q7cal-report on a live pipe) sees each line when it
     * happened, not when the program next waits for an answer. */
    setvbuf(pStream, NULL, _IOLBF, BUFSIZ);
    fflush(stdout);
    gs_pLibraryStdout = stdout;
    stdout = pStream;
}

void OpenClosedStandardDescriptors(void)
{
    /* Standard output is opened for reading only, so that its first write
     * fails as a write to a closed descriptor does. */
    static const int aiFlags[] = {O_RDONLY, O_RDONLY, O_WRONLY};
    for (int iDescriptor = 0; iDescriptor <= STDERR_FILENO; iDescriptor++) {
        /* open() hands out the lowest free number: this one. */
        if (fcntl(iDescriptor, F_GETFD) < 0 && errno == EBADF)
            (void)open("/dev/null", aiFlags[iDescriptor]);
    }
}

/* Standard output can no longer be written: the session ends like end of
 * input, and the first error is the one reported. */
static void NoteOutputFailed(int iError)
{
    if (!gs_bOutputFailed)
        gs_iOutputError = iError;
    gs_bOutputFailed = true;
}

/* Flushes what was printed; a failure ends the session like end of input. */
static void FlushOutput(void)
{
    if (fflush(stdout) != 0 || ferror(stdout))
        NoteOutputFailed(errno);
}

void PrintDeviceNotice(const char *sFormat, ...)
{
    char sText[PROMPT_MAX];
    va_list args;
    va_start(args, sFormat);
    vsnprintf(sText, sizeof sText, sFormat, args);
    va_end(args);
    fputs(sText, stdout);
    FlushOutput();
    if (gs_bOutputFailed) {
        /* One line on stderr: without the blank lines that set it apart. */
        const char *sLine = sText + strspn(sText, "\n");
        fprintf(stderr, "q7cal: %.*s\n", (int)strcspn(sLine, "\n"), sLine);
    }
}

bool FinishOutput(void)
{
    FlushOutput();
    if (!gs_bOutputFailed)
        return true;
    fprintf(stderr, "q7cal: write error on standard output: %s\n",
            gs_iOutputError != 0 ? strerror(gs_iOutputError) : "output lost");
    return false;
}

/* ---- Stop signals ------------------------------------------------------- */

static void EndPipedInput(void);

/* The signals that end the session. */
static const int gs_aiStopSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

static void OnStopSignal(int iSignal)
{
    const int iSavedErrno = errno;
    if (iSignal == SIGINT) {
        /* A second Ctrl-C is the engineer insisting: end at once, by the signal. */
        if (gs_iInterrupted) {
            signal(SIGINT, SIG_DFL);
            raise(SIGINT);
            return;
        }
        gs_iInterrupted = 1;
        if (gs_iStopSignal == 0)
            gs_iStopSignal = SIGINT;
    } else if (gs_iStopSignal == 0 || gs_iStopSignal == SIGINT) {
        /* SIGTERM, SIGHUP and SIGQUIT end the session whatever came before. */
        gs_iStopSignal = iSignal;
    }
    EndPipedInput();
    errno = iSavedErrno;
}

/* Standard input once the session has ended by a signal: see EndPipedInput. */
static int gs_iNullInput = -1;

void CatchStopSignals(void)
{
    if (gs_iNullInput < 0)
        gs_iNullInput = open("/dev/null", O_RDONLY | O_CLOEXEC);
    struct sigaction stAction;
    memset(&stAction, 0, sizeof stAction);
    stAction.sa_handler = OnStopSignal;
    sigemptyset(&stAction.sa_mask);
    stAction.sa_flags = 0; /* no SA_RESTART: a blocking read or sleep returns */
    for (size_t i = 0; i < sizeof gs_aiStopSignals / sizeof gs_aiStopSignals[0]; i++) {
        struct sigaction stBefore;
        /* A signal the caller ignores (nohup, a background job) stays ignored. */
        if (sigaction(gs_aiStopSignals[i], NULL, &stBefore) == 0 && stBefore.sa_handler != SIG_IGN)
            sigaction(gs_aiStopSignals[i], &stAction, NULL);
    }
    /* A closed pipe and a file-size limit are output errors, not deaths. */
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN);
    WriteThroughResumingStream();
}

static const char *SignalName(int iSignal)
{
    switch (iSignal) {
    case SIGINT:
        return "SIGINT";
    case SIGTERM:
        return "SIGTERM";
    case SIGHUP:
        return "SIGHUP";
    case SIGQUIT:
        return "SIGQUIT";
    default:
        return "a signal";
    }
}

/* ---- Where answers come from -------------------------------------------- */

/* Decided at the first read of a session: standard input is a terminal, and
 * (when the program's own output is a terminal too) answers come through the
 * line editor; at a terminal, whether standard output is a pipe, whose reader
 * may go away while an answer is awaited. */
static bool gs_bSourceKnown = false;
static bool gs_bTerminal = false;
static bool gs_bEditing = false;
static bool gs_bOutputPipe = false;
/* A signal that comes after the flag was looked at but before a read of a
 * pipe or file began would leave that read waiting on a writer that may never
 * write again: piped input is ended at the signal, so the read finds end of
 * input at once. A terminal's reads wait in ppoll, which lets the signal in
 * only while it waits, and a terminal must stay ours to put back as it was. */
static void EndPipedInput(void)
{
    if (!gs_bTerminal && gs_iNullInput >= 0)
        (void)dup2(gs_iNullInput, STDIN_FILENO);
}

/* The line the editor gave, and how much of it has been read. */
static const char *gs_sEditedLine = NULL;
static int gs_iEditedLength = 0;
static int gs_iEditedRead = 0;
/* A character read one too far, to be read again; EOF when there is none. */
static int gs_iPutBack = EOF;
/* How far into its line the input has been read. */
static uint32_t gs_u32LineBytes = 0;

static const char *EditorPrompt(void) { return gs_sOutputTail; }

/* While the editor reads a line it holds the terminal in a mode of its own:
 * Ctrl-Z and SIGCONT are caught then, and answered in AwaitTerminalByte. */
static volatile sig_atomic_t gs_iSuspendAsked = 0;
static volatile sig_atomic_t gs_iContinued = 0;
static struct sigaction gs_stSuspendBefore;
static struct sigaction gs_stContinueBefore;

static void OnSuspend(int iSignal)
{
    (void)iSignal;
    gs_iSuspendAsked = 1;
}

static void OnContinue(int iSignal)
{
    (void)iSignal;
    gs_iContinued = 1;
}

static void CatchTerminalStops(void)
{
    struct sigaction stAction;
    memset(&stAction, 0, sizeof stAction);
    sigemptyset(&stAction.sa_mask);
    stAction.sa_flags = SA_RESTART; /* the editor's own reads and writes go on */
    gs_iContinued = 0;              /* the editor draws a new line anyway */
    stAction.sa_handler = OnContinue;
    sigaction(SIGCONT, &stAction, &gs_stContinueBefore);
    /* Where Ctrl-Z is ignored (no job control), it stays ignored. */
    sigaction(SIGTSTP, NULL, &gs_stSuspendBefore);
    stAction.sa_handler = OnSuspend;
    if (gs_stSuspendBefore.sa_handler != SIG_IGN)
        sigaction(SIGTSTP, &stAction, NULL);
}

static void ReleaseTerminalStops(void)
{
    sigaction(SIGTSTP, &gs_stSuspendBefore, NULL);
    sigaction(SIGCONT, &gs_stContinueBefore, NULL);
}

/* Ctrl-Z at the editor, with SIGTSTP and SIGCONT blocked: the terminal is put
 * back as it was found before the program stops, so the shell gets it as it
 * left it, and a session continued in the background (kill %1) need not touch
 * it again to finish its command. When the program goes on, the editor takes
 * the terminal back and redraws its line (in AwaitTerminalByte). */
static void StopAtTerminal(void)
{
    struct sigaction stDefault, stCaught;
    memset(&stDefault, 0, sizeof stDefault);
    stDefault.sa_handler = SIG_DFL;
    sigemptyset(&stDefault.sa_mask);
    sigset_t stSuspend, stContinue;
    sigemptyset(&stSuspend);
    sigaddset(&stSuspend, SIGTSTP);
    sigemptyset(&stContinue);
    sigaddset(&stContinue, SIGCONT);

    SuspendLineEditor();
    sigaction(SIGTSTP, &stDefault, &stCaught);
    raise(SIGTSTP);
    sigprocmask(SIG_UNBLOCK, &stSuspend, NULL); /* stopped here until continued */
    sigprocmask(SIG_BLOCK, &stSuspend, NULL);
    sigaction(SIGTSTP, &stCaught, NULL);
    /* The SIGCONT that ended the stop is answered once, here. */
    static const struct timespec stNoWait = {0, 0};
    (void)sigtimedwait(&stContinue, NULL, &stNoWait);
    gs_iContinued = 1;
}

/* Waits until the terminal has a byte. False when the session ended while
 * waiting: a stop signal came, also one that came before the wait began (the
 * stop signals are blocked while the flags are looked at, and let in only by
 * ppoll itself, so a Ctrl-C typed just as the prompt appears is never left
 * waiting for a key), or the pipe that standard output writes to lost its
 * reader (tee ended by the same Ctrl-C), which no later write may come to
 * show. */
static bool AwaitTerminalByte(void)
{
    sigset_t stBlocked, stBefore;
    sigemptyset(&stBlocked);
    for (size_t i = 0; i < sizeof gs_aiStopSignals / sizeof gs_aiStopSignals[0]; i++)
        sigaddset(&stBlocked, gs_aiStopSignals[i]);
    sigaddset(&stBlocked, SIGTSTP);
    sigaddset(&stBlocked, SIGCONT);
    sigprocmask(SIG_BLOCK, &stBlocked, &stBefore);
    bool bReady = false;
    while (gs_iStopSignal == 0 && !gs_bOutputFailed && !bReady) {
        if (gs_iSuspendAsked) {
            gs_iSuspendAsked = 0;
            StopAtTerminal();
        }
        /* Continued in the background, the editor waits for the terminal. */
        if (gs_iContinued && tcgetpgrp(fileno(stdin)) == getpgrp()) {
            gs_iContinued = 0;
            ResumeLineEditor();
        }
        struct pollfd astWatched[] = {{fileno(stdin), POLLIN, 0}, {STDOUT_FILENO, 0, 0}};
        int iCount = ppoll(astWatched, gs_bOutputPipe ? 2 : 1, NULL, &stBefore);
        if (iCount < 0 && errno != EINTR)
            break; /* the read says what is wrong */
        if (iCount > 0 && astWatched[1].revents != 0)
            NoteOutputFailed(EPIPE); /* the pipe's reader has gone */
        bReady = iCount > 0 && astWatched[0].revents != 0;
    }
    sigprocmask(SIG_SETMASK, &stBefore, NULL);
    return gs_iStopSignal == 0 && !gs_bOutputFailed;
}

/* One byte of the terminal: 1, 0 at end of input, -1 when the session ended
 * while waiting or the terminal is gone (the editor then gives up the line). */
static int ReadTerminalByte(unsigned char *pu8Byte)
{
    for (;;) {
        if (!AwaitTerminalByte())
            return -1;
        ssize_t iRead = read(fileno(stdin), pu8Byte, 1);
        if (iRead >= 0)
            return (int)iRead;
        if (errno != EINTR && errno != EAGAIN && errno != EWOULDBLOCK)
            return -1;
    }
}

/* The next byte of a pipe or file; a non-blocking one is waited on until a
 * byte or its true end comes. */
static int ReadPipedChar(void)
{
    for (;;) {
        int c = getchar();
        if (c != EOF || !ferror(stdin) || (errno != EAGAIN && errno != EWOULDBLOCK))
            return c;
        clearerr(stdin);
        struct pollfd stInput = {fileno(stdin), POLLIN, 0};
        if (poll(&stInput, 1, -1) < 0 && gs_iStopSignal != 0)
            return EOF;
    }
}

static void KnowInputSource(void)
{
    if (gs_bSourceKnown)
        return;
    gs_bSourceKnown = true;
    gs_bTerminal = isatty(fileno(stdin)) != 0;
    struct stat stOutput;
    gs_bOutputPipe = gs_bTerminal && fstat(STDOUT_FILENO, &stOutput) == 0 && S_ISFIFO(stOutput.st_mode);
    /* Editing needs the terminal for its echo: with output going to a pipe
     * or file, the terminal's own line editing serves. */
    gs_bEditing = gs_bTerminal && fileno(stdin) == STDIN_FILENO && isatty(STDOUT_FILENO) &&
                  gs_pLibraryStdout != NULL &&
                  OpenLineEditor(stdin, gs_pLibraryStdout, EditorPrompt, ReadTerminalByte);
}

/* Reads the next line through the editor; false at end of input or when the
 * session ended while it waited. */
static bool EditLine(void)
{
    /* The prompt is on the screen already: the editor draws it again over
     * itself, from the start of the line. */
    FlushOutput();
    fputs("\r", gs_pLibraryStdout);
    fflush(gs_pLibraryStdout);
    CatchTerminalStops();
    gs_sEditedLine = EditNextLine(&gs_iEditedLength);
    ReleaseTerminalStops();
    gs_iEditedRead = 0;
    gs_sOutputTail[0] = '\0'; /* the editor ended the line on the screen */
    return gs_sEditedLine != NULL;
}

static int ReadEditedChar(void)
{
    if (gs_iEditedRead >= gs_iEditedLength && !EditLine())
        return EOF;
    return (unsigned char)gs_sEditedLine[gs_iEditedRead++];
}

/* The next character of input, or EOF. A line that runs on past
 * INPUT_LINE_LIMIT ends the input: no text has such lines. */
static int NextChar(void)
{
    int c = gs_iPutBack;
    if (c != EOF) {
        gs_iPutBack = EOF;
        return c;
    }
    if (gs_bInputEnded)
        return EOF;
    if (gs_bEditing) {
        c = ReadEditedChar();
    } else if (gs_bTerminal) {
        unsigned char u8Byte = 0;
        c = ReadTerminalByte(&u8Byte) == 1 ? u8Byte : EOF;
    } else {
        c = ReadPipedChar();
    }
    if (c == '\n') {
        gs_u32LineBytes = 0;
    } else if (c != EOF && ++gs_u32LineBytes > INPUT_LINE_LIMIT) {
        gs_bInputEnded = true;
        c = EOF;
    }
    return c;
}

static void PutBackChar(int c) { gs_iPutBack = c; }

/* Everything typed ahead at a terminal is dropped. */
static void DropTypedAhead(void)
{
    gs_iPutBack = EOF;
    gs_iEditedRead = gs_iEditedLength;
    tcflush(fileno(stdin), TCIFLUSH);
    gs_bLinePending = false;
    gs_u32LineBytes = 0;
}

void ResetInputState(void)
{
    gs_bInputEnded = false;
    gs_bLinePending = false;
    gs_iStopSignal = 0;
    gs_iInterrupted = 0;
    gs_bOutputFailed = false;
    gs_iOutputError = 0;
    gs_bAbandonAnnounced = false;
    gs_bSourceKnown = false;
    gs_iEditedRead = gs_iEditedLength = 0;
    gs_iPutBack = EOF;
    gs_u32LineBytes = 0;
    clearerr(stdin);
}

bool ResumeAfterInterrupt(void)
{
    if (!gs_bTerminal || gs_iStopSignal != SIGINT || gs_bInputEnded || gs_bOutputFailed)
        return false;
    (void)AbandonCommand(); /* said once, whether or not the command read again */
    DropTypedAhead();
    clearerr(stdin);
    gs_bAbandonAnnounced = false;
    gs_iStopSignal = 0;
    gs_iInterrupted = 0;
    return true;
}

/* ---- Reading answers ---------------------------------------------------- */

/* Flushes the prompt; true when an answer may be read. */
static bool ReadyToRead(void)
{
    FlushOutput();
    KnowInputSource();
    return !SessionEnded();
}

/* Ctrl-C at a terminal ends only the command: the session goes on. */
static bool OnlyTheCommandInterrupted(void) { return gs_iStopSignal == SIGINT && gs_bTerminal; }

const char *WhyCommandEnded(void)
{
    if (OnlyTheCommandInterrupted())
        return "the command was interrupted";
    if (gs_iStopSignal != 0)
        return "the session was interrupted";
    return gs_bOutputFailed ? "standard output could not be written" : "input ended";
}

int AbandonCommand(void)
{
    if (gs_bAbandonAnnounced)
        return -1;
    gs_bAbandonAnnounced = true;
    if (OnlyTheCommandInterrupted())
        printf("\nInterrupted: command abandoned.\n");
    else if (gs_iStopSignal != 0)
        printf("\nInterrupted by %s: command abandoned.\n", SignalName(gs_iStopSignal));
    else
        printf("\nEnd of input: command abandoned.\n");
    return -1;
}

static void DiscardRestOfLine(void)
{
    int c;
    do {
        c = NextChar();
    } while (c != '\n' && c != EOF);
    gs_bLinePending = false;
}

/* Reads one word: blanks and line ends before it are skipped, and at most
 * u32Max characters are kept (the rest of a longer word is dropped; *pbCut
 * says so). A word that is no text, holding a NUL byte or lying further into
 * its line than any answer, comes back empty, which no reader takes for a
 * number. EOF at end of input, and when the session ends during the read (a
 * stop signal may have cut the word short); else the length kept. */
static int ReadWord(char *sWord, uint32_t u32Max, bool *pbCut)
{
    uint32_t u32Length = 0;
    bool bNoText = false;
    int c;

    *pbCut = false;
    do {
        c = NextChar();
    } while (c != EOF && isspace(c));
    if (c == EOF)
        return EOF;
    for (; c != EOF && !isspace(c); c = NextChar()) {
        if (c == '\0' || gs_u32LineBytes > ANSWER_LINE_MAX)
            bNoText = true;
        if (u32Length < u32Max)
            sWord[u32Length++] = (char)c;
        else
            *pbCut = true;
    }
    if (c != EOF)
        PutBackChar(c); /* the blank after the word stays pending */
    gs_bLinePending = true;
    if (SessionEnded())
        return EOF;
    if (bNoText)
        u32Length = 0;
    sWord[u32Length] = '\0';
    return (int)u32Length;
}

int ReadChoice(void)
{
    char sWord[CHOICE_WORD_MAX + 1];
    bool bCut = false;

    if (!ReadyToRead() || ReadWord(sWord, CHOICE_WORD_MAX, &bCut) == EOF) {
        if (gs_iStopSignal == 0)
            gs_bInputEnded = true;
        return -1;
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
    if (SessionEnded())
        return;
    KnowInputSource();
    if (gs_bTerminal)
        DropTypedAhead();
    else if (gs_bLinePending)
        DiscardRestOfLine();

    printf("\nPress Enter to continue");
    int c = ReadyToRead() ? NextChar() : EOF;
    if (c == EOF && gs_iStopSignal == 0)
        gs_bInputEnded = true;
    else if (gs_bTerminal && c != EOF && c != '\n')
        DiscardRestOfLine(); /* a line typed at the pause answers the pause alone */
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

__attribute__((format(printf, 3, 0))) static bool ReadAnswer(const AnswerKind *pKind, void *pValue,
                                                            const char *sPromptFormat, va_list args)
{
    char sPrompt[PROMPT_MAX];
    char sWord[ANSWER_WORD_MAX + 1];
    bool bCut = false;
    vsnprintf(sPrompt, sizeof sPrompt, sPromptFormat, args);

    while (!SessionEnded()) {
        fputs(sPrompt, stdout);
        if (!ReadyToRead() || ReadWord(sWord, ANSWER_WORD_MAX, &bCut) == EOF)
            break;
        if (bCut)
            sWord[0] = '\0'; /* too long to be a number */
        AnswerParse eParse = pKind->pfnParse(sWord, pValue);
        if (eParse == ANSWER_OK)
            return true;
        if (eParse == ANSWER_NOT_A_NUMBER)
            printf("\nNot a number. Please enter %s.\n", pKind->sExpected);
        else
            printf("\nOut of range. Please enter %s %s.\n", pKind->sExpected, pKind->sRange);
        DiscardRestOfLine();
    }
    if (gs_iStopSignal == 0)
        gs_bInputEnded = true;
    AbandonCommand();
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
