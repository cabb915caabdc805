#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "automated.h"
#include "console_capture.h"
#include "diagnostics.h"
#include "menu.h"

namespace {

TEST(MenuTable, EveryRowHasALabelAndAHandlerAndTheGroupsFitTheMainMenu)
{
    ASSERT_NE(MenuEntry[0].sGroupTitle, nullptr) << "the table must open with a group";
    size_t groups = 0;
    size_t i = 0;
    for (; MenuEntry[i].sLabel != nullptr; i++) {
        EXPECT_NE(MenuEntry[i].pfnHandler, nullptr) << "row " << i << " " << MenuEntry[i].sLabel;
        if (MenuEntry[i].sGroupTitle != nullptr) {
            // The heading's row of asterisks is drawn with PadString, at most 80 wide.
            EXPECT_LE(strlen(MenuEntry[i].sGroupTitle) + 18, 80u);
            groups++;
        }
    }
    EXPECT_EQ(MenuEntry[i].sGroupTitle, nullptr);
    EXPECT_EQ(MenuEntry[i].pfnHandler, nullptr);
    EXPECT_EQ(groups, 9u);
    EXPECT_LE(groups, static_cast<size_t>(MAX_MENU_GROUPS));
}

using MenuHandlersTest = SimulatedDeviceTest;

TEST_F(MenuHandlersTest, EveryCommandRefusesANullHandleBeforeAskingAnything)
{
    // These three pass the handle on and show the Cal API's own refusal.
    const char *const kJudgedByTheCalApi[] = {"GetCalibrationInfo", "GetMACAddress", "GetVersionInfo"};
    for (size_t i = 0; MenuEntry[i].sLabel != nullptr; i++) {
        // The automated and NVM mode tests are only ever started with the
        // connected handle and run without a check of their own (their tests
        // run them whole).
        if (MenuEntry[i].pfnHandler == AutomatedTest || MenuEntry[i].pfnHandler == NvmModeTest)
            continue;
        std::string expected;
        for (const char *name : kJudgedByTheCalApi)
            if (strcmp(MenuEntry[i].sLabel, name) == 0)
                expected = "\n" + std::string(name) + ":\n\nERROR: Invalid Cal API interface handle\n";
        HandlerRun run = RunHandler(MenuEntry[i].pfnHandler, nullptr, "1 1 1 1 1 1 1\n");
        EXPECT_EQ(run.result, -1) << MenuEntry[i].sLabel;
        EXPECT_EQ(run.output, expected) << MenuEntry[i].sLabel;
    }
}

}  // namespace
