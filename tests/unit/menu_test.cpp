#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "console_capture.h"
#include "menu.h"

namespace {

// The command groups in menu order.
const char *const kGroupTitles[] = {
    "Configuration Commands", "Rx Commands", "Tx Commands",
    "Loopback Calibration Commands", "Other Commands", "DSD Management Commands",
    "DSD Read/Write Commands", "Library Configuration Commands", "Test Commands",
};

TEST(MenuTable, EveryRowHasALabelAndAHandlerAndGroupsComeInMenuOrder)
{
    ASSERT_NE(MenuEntry[0].sGroupTitle, nullptr) << "the table must open with a group";
    size_t groups = 0;
    size_t i = 0;
    for (; MenuEntry[i].sLabel != nullptr; i++) {
        EXPECT_NE(MenuEntry[i].pfnHandler, nullptr) << "row " << i << " " << MenuEntry[i].sLabel;
        if (MenuEntry[i].sGroupTitle != nullptr) {
            ASSERT_LT(groups, std::size(kGroupTitles));
            EXPECT_STREQ(MenuEntry[i].sGroupTitle, kGroupTitles[groups]);
            // The heading's row of asterisks is drawn with PadString, at most 80 wide.
            EXPECT_LE(strlen(MenuEntry[i].sGroupTitle) + 18, 80u);
            groups++;
        }
    }
    EXPECT_EQ(MenuEntry[i].sGroupTitle, nullptr);
    EXPECT_EQ(MenuEntry[i].pfnHandler, nullptr);
    EXPECT_EQ(groups, std::size(kGroupTitles));
    EXPECT_LE(groups, static_cast<size_t>(MAX_MENU_GROUPS));
}

class MenuLoopTest : public SimulatedDeviceTest {
protected:
    std::string Session(const std::string &input)
    {
        return RunWithInput(input, [&] { RunMenu(hCal); });
    }
};

size_t Count(const std::string &text, const std::string &what)
{
    size_t count = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        count++;
    return count;
}

TEST_F(MenuLoopTest, MainMenuShowsTheGroupsAndARowOfAsterisksAsWideAsItsHeading)
{
    std::string output = Session("-1\n");
    EXPECT_EQ(output.rfind("\n\n******** Cal API Main Menu ********\n\n    1. Configuration Commands", 0), 0u);
    EXPECT_NE(output.find("\n\n    9. Test Commands\n\n   -1. Exit application\n\n" + std::string(35, '*') + "\n\nENTER OPTION : "),
              std::string::npos);
}

TEST_F(MenuLoopTest, InvalidChoicesRedrawTheSameScreen)
{
    std::string output = Session("0\n10\n-2\nabc\n-1\n");
    EXPECT_EQ(Count(output, "\nSorry. Invalid option selected."), 4u);
    EXPECT_EQ(Count(output, "******** Cal API Main Menu ********"), 5u);
}

TEST_F(MenuLoopTest, AfterACommandItsGroupMenuComesBackAndMinusOneReturnsToTheMainMenu)
{
    std::string output = Session("1\n3\n-1\n-1\n");
    size_t command = output.find("\nGetDeviceMode:\n");
    ASSERT_NE(command, std::string::npos);
    size_t groupAgain = output.find("******** Configuration Commands ********", command);
    size_t mainAgain = output.find("******** Cal API Main Menu ********", command);
    EXPECT_NE(groupAgain, std::string::npos);
    EXPECT_LT(groupAgain, mainAgain);
    EXPECT_NE(output.find("\n\n   -1. Main Menu\n\n" + std::string(40, '*') + "\n"), std::string::npos);
}

TEST_F(MenuLoopTest, EndOfInputInAGroupMenuReadsAsMinusOneAtEachLevel)
{
    std::string output = Session("1\n");
    EXPECT_EQ(Count(output, "******** Configuration Commands ********"), 1u);
    EXPECT_EQ(Count(output, "******** Cal API Main Menu ********"), 2u);
}

TEST_F(MenuLoopTest, ACommandAbandonedAtEndOfInputLeavesWithoutAnotherMenu)
{
    std::string output = Session("1\n4\n2\n");
    const std::string tail = "    Modulation Type ? \nEnd of input: command abandoned.\n";
    ASSERT_GE(output.size(), tail.size());
    EXPECT_EQ(output.substr(output.size() - tail.size()), tail);
    uint32_t dutMode = 9, modulation = 9, loopback = 9;
    int32_t cwOffset = 9;
    ASSERT_EQ(Q7_GetDeviceMode(hCal, &dutMode, &modulation, &cwOffset, &loopback), nullptr);
    EXPECT_EQ(dutMode, 0u) << "nothing may reach the device from an abandoned command";
}

}  // namespace
