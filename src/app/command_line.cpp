#include "command_line.h"

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
    "  128+N  after signal N: SIGINT, SIGTERM and SIGHUP are taken at the next\n"
    "         safe point (restores made, device mode popped, normal exit); a\n"
    "         second SIGINT ends the program at once\n"
    "See q7cal(1) for the menu groups and the rules for scripts.\n";

static bool IsOption(const char *sArgument, const char *sShort, const char *sLong)
{
    return strcmp(sArgument, sShort) == 0 || strcmp(sArgument, sLong) == 0;
}

int HandleCommandLine(int argc, char *argv[])
{
    if (argc <= 1)
        return COMMAND_LINE_RUN;
    const char *sFirst = argv[1];
    bool bHelp = IsOption(sFirst, "-h", "--help");
    bool bVersion = IsOption(sFirst, "-V", "--version");
    if ((bHelp || bVersion) && argc == 2) {
        if (bHelp)
            fputs(sHelpText, stdout);
        else
            printf("q7cal %s\n", Q7CAL_VERSION);
        return 0;
    }
    if (bHelp || bVersion)
        fprintf(stderr, "q7cal: unexpected argument '%s'; try 'q7cal --help'\n", argv[2]);
    else if (sFirst[0] == '-')
        fprintf(stderr, "q7cal: unknown option '%s'; try 'q7cal --help'\n", sFirst);
    else
        fprintf(stderr, "q7cal: unexpected argument '%s'; try 'q7cal --help'\n", sFirst);
    return 2;
}
