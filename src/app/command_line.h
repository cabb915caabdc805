/* The command line: -h/--help and -V/--version, answered without touching the device. */
#ifndef Q7_COMMAND_LINE_H
#define Q7_COMMAND_LINE_H

/* HandleCommandLine's answer when the program should go on to the menu. */
#define COMMAND_LINE_RUN (-1)

/* Read as getopt_long reads it in POSIX order, whatever the environment:
 * abbreviations such as --vers, the options ending at the first operand or at
 * "--". Every option is read before any is acted on, and the program takes no
 * operand. No argument: COMMAND_LINE_RUN. -h/--help or -V/--version (the
 * first given): prints the text to stdout and returns 0, or 4 when standard
 * output could not take it. An unknown option or an operand: names it on
 * stderr, points to --help and returns 2. */
int HandleCommandLine(int argc, char *argv[]);

#endif /* Q7_COMMAND_LINE_H */
