/*
 * The two-level menu over the static table MenuEntry.
 *
 * Adding a command, in this order:
 *  1. The handler, in its group's source: src/commands/ (one source per menu
 *     group), src/dsd/ or src/diagnostics/. It reads as prompt, prompt, call,
 *     result lines, with the steps of src/util/command_steps.h (BeginCommand,
 *     the Read* prompt readers of console.h, ReportError / ReportSuccess /
 *     ReportOutcome) and returns 0 or -1.
 *  2. Its declaration in src/commands/commands.h (or its folder's header).
 *  3. Its row in MenuEntry (menu_table.cpp), in its group, in menu order. The
 *     menu test checks the table; the prompt walk and the fault matrix
 *     (tests/hardening/) take the new row by themselves.
 *  4. A row in tests/unit/handlers_test.cpp for what a transcript cannot show
 *     (an unknown value from the device, a capped list, the values typed
 *     reaching the device).
 *  5. Its lines in the group's golden transcript, tests/golden/cases/: add its
 *     answers to NAME.in, record with
 *       tests/golden/run_transcript.sh --record build-test/q7cal tests/golden/cases/NAME
 *     and check every line against the texts the command must print.
 *  6. The group's entry in man/q7cal.1 (MENU GROUPS), and the README's group
 *     list where the group has one.
 */
#ifndef Q7_MENU_H
#define Q7_MENU_H

#include <stdbool.h>

#include "Q7CalAPI.h"

/* A handler of one menu entry: 0 for success, -1 for failure. */
typedef int (*MenuHandler)(CalInterfaceHandle hCal);

typedef struct MenuItem {
    const char *sGroupTitle;  /* set only on the first entry of a group */
    const char *sLabel;       /* NULL ends the table */
    MenuHandler pfnHandler;
} MenuItem;

/* Groups the main menu can list. */
#define MAX_MENU_GROUPS 20

extern const MenuItem MenuEntry[];

/* Shows the menus until the user leaves the main menu, input ends or a stop
 * signal arrives; true when the session ended inside a command. */
bool RunMenu(CalInterfaceHandle hCal);

#endif /* Q7_MENU_H */
