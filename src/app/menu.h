/*
 * The two-level menu over the static table MenuEntry.
 *
 * Adding a command: write its handler (src/commands/ or the folder of its
 * subsystem) and declare it in src/commands/commands.h; add its row to
 * MenuEntry in menu_table.cpp, in its group, in menu order; add a handler test
 * and extend the group's golden transcript. The table test checks the rows.
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
