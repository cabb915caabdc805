#include "command_line.h"

#include <stdio.h>
#include <string.h>

#define USAGE_LINE "Usage: q7cal [--help | --version]\n"

static const char sHelpText[] =
    USAGE_LINE
    "Exercise, calibrate and check the two-antenna radio device through its\n"
    "calibration library (the Cal API).\n"
    "\n"
    "Without an option, q7cal connects the device and shows its main menu. Each\n"
    "answer is read from standard input, so a script of answers can be piped in;\n"
    "at end of input the program leaves through its normal exit.\n"
    "\n"
    "  --help     show this help and exit\n"
    "  --version  show the version and exit\n"
    "\n"
    "Exit status: 0 after -1 at the main menu or at end of input, 1 when the\n"
    "device cannot be connected, 2 for a wrong command line.\n"
    "See q7cal(1) for the menu groups and the rules for scripts.\n";

int HandleCommandLine(int argc, char *argv[])
{
    if (argc <= 1)
        return COMMAND_LINE_RUN;
    if (argc == 2 && strcmp(argv[1], "--help") == 0) {
        fputs(sHelpText, stdout);
        return 0;
    }
    if (argc == 2 && strcmp(argv[1], "--version") == 0) {
        printf("q7cal %s\n", Q7CAL_VERSION);
        return 0;
    }
    fputs(USAGE_LINE, stderr);
    return 2;
}
