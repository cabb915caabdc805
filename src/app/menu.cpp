#include "menu.h"

#include <stdbool.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "console.h"
#include "printed_texts.h"


/* Lists the groups (main menu) or the entries of the group that starts at
 * `u32GroupStart`; records the group starts and returns the item count. */
static uint32_t PrintItems(bool bMainMenu, uint32_t u32GroupStart, uint32_t au32GroupStart[MAX_MENU_GROUPS])
{
    uint32_t u32Items = 0;
    if (bMainMenu) {
        for (uint32_t i = 0; MenuEntry[i].sLabel != NULL && u32Items < MAX_MENU_GROUPS; i++) {
            if (MenuEntry[i].sGroupTitle != NULL) {
                au32GroupStart[u32Items++] = i;
                printf("\n\n   %2d. %s", (int)u32Items, MenuEntry[i].sGroupTitle);
            }
        }
        return u32Items;
    }
    printf("\n\n   %2d. %s", (int)++u32Items, MenuEntry[u32GroupStart].sLabel);
    for (uint32_t i = u32GroupStart + 1; MenuEntry[i].sGroupTitle == NULL && MenuEntry[i].sLabel != NULL; i++)
        printf("\n\n   %2d. %s", (int)++u32Items, MenuEntry[i].sLabel);
    return u32Items;
}

bool RunMenu(CalInterfaceHandle hCal)
{
    uint32_t au32GroupStart[MAX_MENU_GROUPS];
    bool bMainMenu = true;
    bool bExit = false;
    uint32_t u32GroupStart = 0;

    while (!bExit) {
        const char *sTitle = bMainMenu ? TEXT_MAIN_MENU : MenuEntry[u32GroupStart].sGroupTitle;
        printf("\n\n" TEXT_MENU_BANNER_EDGE " %s " TEXT_MENU_BANNER_EDGE, sTitle);
        uint32_t u32Items = PrintItems(bMainMenu, u32GroupStart, au32GroupStart);
        printf("\n\n   -1. %s", bMainMenu ? "Exit application" : "Main Menu");
        /* A row of asterisks as wide as the heading line. */
        printf("\n\n%s\n", PadString("", '*', (uint32_t)strlen(sTitle) + 18));
        printf("\n" TEXT_MENU_PROMPT);

        int iChoice = ReadChoice();
        if (iChoice == -1) {
            /* A stop signal leaves from any menu at once. */
            if (bMainMenu || StopSignal() != 0)
                bExit = true;
            else
                bMainMenu = true;
        } else if (iChoice == 0 || (uint32_t)iChoice > u32Items) {
            printf("\n" TEXT_INVALID_OPTION);
        } else if (bMainMenu) {
            u32GroupStart = au32GroupStart[iChoice - 1];
            bMainMenu = false;
        } else {
            MenuEntry[u32GroupStart + (uint32_t)iChoice - 1].pfnHandler(hCal);
            /* A command cut short by the end of the session leaves through the
             * exit path; at a terminal, Ctrl-C ends only the command. */
            if (SessionEnded() && !ResumeAfterInterrupt())
                return true;
        }
    }
    return false;
}
