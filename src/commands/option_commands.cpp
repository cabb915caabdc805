/* Library Configuration Commands: the library's eight option slots, read and
 * set by number through the option picker. */
#include <stdbool.h>
#include <stdint.h>
#include <stdio.h>

#include "command_steps.h"
#include "commands.h"
#include "console.h"

/* The slot number that stands for every option in the get command. */
#define ALL_OPTIONS 8
#define PICKER_NAME_WIDTH 30u
#define VALUE_NAME_WIDTH 35u

/* The slot's record, or NULL for a slot that is reserved (or undescribed). */
static const OptionInfo *UsableOption(uint32_t u32Slot)
{
    const OptionInfo *pInfo = Q7_GetOptionInfo(u32Slot);
    return pInfo != NULL && pInfo->u32Reserved == 0 ? pInfo : NULL;
}

/* The name padded with blanks or cut to the width (at most 80), in
 * PadString's buffer; a missing name shows as blanks. */
static const char *PaddedName(const char *sName, uint32_t u32Width)
{
    char sCut[81];
    snprintf(sCut, sizeof sCut, "%.*s", (int)u32Width, sName != NULL ? sName : "");
    return PadString(sCut, ' ', u32Width);
}

/* -1, 8 when it is the highest accepted number, or a usable slot. */
static bool ChoiceIsValid(int iChoice, int iHighest)
{
    if (iChoice == -1 || (iChoice == ALL_OPTIONS && iHighest == ALL_OPTIONS))
        return true;
    return iChoice >= 0 && iChoice < ALL_OPTIONS && UsableOption((uint32_t)iChoice) != NULL;
}

int GetOptionChoice(int iAllOptions)
{
    int iHighest = iAllOptions != 0 ? ALL_OPTIONS : ALL_OPTIONS - 1;

    for (uint32_t i = 0; i < Q7_OPTION_COUNT; i++) {
        if (i % 2 == 0)
            printf("\n");
        const OptionInfo *pInfo = Q7_GetOptionInfo(i);
        const OptionInfo *pUsable = UsableOption(i);
        printf("%5u. %s", pInfo != NULL ? pInfo->u32OptionID : i,
               PaddedName(pUsable != NULL ? pUsable->sName : "<Reserved>", PICKER_NAME_WIDTH));
    }
    if (iAllOptions != 0)
        printf("\n%5u. %s", (uint32_t)ALL_OPTIONS, PaddedName("All options", PICKER_NAME_WIDTH));
    if (iHighest % 2 == 1)
        printf("\n");
    printf("%5d. %s", -1, "Return to Main Menu");

    for (;;) {
        printf("\n\nENTER Option ID : ");
        int iChoice = ReadChoice();
        if (ChoiceIsValid(iChoice, iHighest))
            return iChoice;
        puts("ERROR: Invalid option ID. Please try again.");
    }
}

int TestGetOptionByID(CalInterfaceHandle hCal)
{
    if (!BeginCommand(hCal, "\nGet Option By ID:"))
        return -1;
    for (;;) {
        int iChoice = GetOptionChoice(1);
        if (iChoice == -1 && SessionEnded())
            return AbandonCommand();
        if (iChoice == -1)
            break;
        uint32_t u32First = iChoice == ALL_OPTIONS ? 0 : (uint32_t)iChoice;
        uint32_t u32Last = iChoice == ALL_OPTIONS ? Q7_OPTION_COUNT - 1 : (uint32_t)iChoice;
        for (uint32_t i = u32First; i <= u32Last; i++) {
            const OptionInfo *pInfo = UsableOption(i);
            int32_t i32Value = 0;
            if (pInfo == NULL)
                continue;
            if (ReportError(Q7_GetOptionByID(hCal, i, &i32Value)))
                return -1;
            printf("\n%s = %d", PaddedName(pInfo->sName, VALUE_NAME_WIDTH), i32Value);
        }
        puts("\n");
    }
    return ReportSuccess("TestGetOptionByID");
}

int TestSetOptionByID(CalInterfaceHandle hCal)
{
    if (!BeginCommand(hCal, "\nSet Option By ID:"))
        return -1;
    for (;;) {
        uint32_t u32Value = 0;
        int iChoice = GetOptionChoice(0);
        if (iChoice == -1 && SessionEnded())
            return AbandonCommand();
        if (iChoice == -1)
            break;
        if (!ReadUnsigned(&u32Value, "\nOption value = "))
            return -1;
        printf("\n");
        if (ReportError(Q7_SetOptionByID(hCal, (uint32_t)iChoice, u32Value)))
            return -1;
    }
    return ReportSuccess("TestSetOptionByID");
}
