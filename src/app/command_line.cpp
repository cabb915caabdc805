#include "command_line.h"

#include <errno.h>
#include <getopt.h>
#include <stdio.h>
#include <string.h>

static const char sHelpText[] =
    "Usage: q7cal [-h | --help | -V | --version]\n"
    "Exercise, calibrate and check the two-antenna radio device through its\n"
    "calibration library (the Cal API).\n"
    "\n"
    "Without an option, q7cal connects the device and shows its main menu. Each\n"
    "answer is read from standard input, so a script of answers can be piped in;\n"
    "at end of input the program leaves through its normal exit. q7cal-report\n"
    "judges a saved session: q7cal < unit.answers | q7cal-report\n"
    "\n"
    "  -h, --help     show this help and exit\n"
    "  -V, --version  show the version and exit\n"
    "\n"
    "Exit status:\n"
    "  0      after -1 or end of input at a menu\n"
    "  1      the device cannot be connected\n"
    "  2      a wrong command line\n"
    "  3      input ended inside a command\n"
    "  4      standard output could not be written (this wins over 3)\n"
    "  128+N  after signal N: SIGINT, SIGTERM, SIGHUP and SIGQUIT are taken at\n"
    "         the next safe point (restores made, device mode popped, normal\n"
    "         exit); a second SIGINT ends the program at once\n"
    "See q7cal(1) for the menu groups and the rules for scripts.\n";

/* Prints the text; 0, or 4 after a line on stderr when standard output
 * could not take it. */
static int PrintAndFlush(const char *sText)
{
    fputs(sText, stdout);
    if (fflush(stdout) == 0 && !ferror(stdout))
        return 0;
    fprintf(stderr, "q7cal: write error on standard output: %s\n", strerror(errno));
    return 4;
}

static int WrongArgument(const char *sWhat, const char *sArgument)
{
    fprintf(stderr, "q7cal: %s '%s'; try 'q7cal --help'\n", sWhat, sArgument);
    return 2;
}

int HandleCommandLine(int argc, char *argv[])
{
    static const struct option astOptions[] = {
        {"help", no_argument, NULL, 'h'}, {"version", no_argument, NULL, 'V'}, {NULL, 0, NULL, 0}};
    char sVersion[64];
    char sUnknown[3] = {'-', '\0', '\0'};
    int iAsked = 0; /* 'h' or 'V': the first asked for */

    opterr = 0; /* the wrong argument is named below, in the program's own words */
    optind = 1;
    for (;;) {
        const int iElement = optind; /* the argument being read */
        /* "+": the options end at the first operand, whatever POSIXLY_CORRECT says. */
        const int iOption = getopt_long(argc, argv, "+hV", astOptions, NULL);
        if (iOption == -1)
            break;
        if (iOption == 'h' || iOption == 'V') {
            if (iAsked == 0)
                iAsked = iOption;
            continue;
        }
        /* A long option as it was typed; a short one by its letter, which may
         * stand inside a cluster ("-hx"). */
        if (strncmp(argv[iElement], "--", 2) == 0)
            return WrongArgument("unknown option", argv[iElement]);
        sUnknown[1] = (char)optopt;
        return WrongArgument("unknown option", sUnknown);
    }
    if (optind < argc)
        return WrongArgument("unexpected argument", argv[optind]);
    if (iAsked == 'h')
        return PrintAndFlush(sHelpText);
    if (iAsked == 'V') {
        snprintf(sVersion, sizeof sVersion, "q7cal %s\n", Q7CAL_VERSION);
        return PrintAndFlush(sVersion);
    }
    return COMMAND_LINE_RUN;
}
