// What the hardening tests share: every command of the menu table, a fresh
// device to run it against, and a script that answers a command's prompts.
#ifndef Q7_TEST_COMMAND_SCRIPT_H
#define Q7_TEST_COMMAND_SCRIPT_H

#include <cstddef>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Q7CalAPI.h"
#include "menu.h"

// One command of MenuEntry and the two menu choices that reach it.
struct CommandRow {
    size_t index;
    int group;
    int position;
    std::string label;
};
std::vector<CommandRow> CommandRows();
// The label as a test name: letters and digits only.
std::string TestNameOf(const CommandRow &row);
inline void PrintTo(const CommandRow &row, std::ostream *os) { *os << row.label; }

// A factory-fresh simulated device, opened and connected, logging every call
// from here on. Same random numbers for the program at every run.
CalInterfaceHandle FreshConnectedDevice();

// Answers a command's prompts with `filler`, except the `badAt`-th prompt
// (counted from 0), which gets `bad` once (nothing: end of input). A command's
// own picker counts as a prompt: it gets the filler the first time and -1,
// which leaves it, afterwards. A pause gets an empty line; after an empty line
// the same prompt is waited at, and gets the filler. With a row, the script first chooses the command at the menu
// and afterwards leaves both menus with -1; without one, the command's
// handler is called directly.
class CommandScript {
public:
    CommandScript(const CommandRow *row, std::string filler, int badAt = -1,
                  std::optional<std::string> bad = std::nullopt);
    std::optional<std::string> operator()(std::string_view printed);

    // The session's read indices at which the command asked for a value or a
    // choice, and which of them were choices.
    const std::vector<size_t> &promptReads() const { return promptReads_; }
    bool isChoice(size_t prompt) const { return choicePrompts_.count(prompt) != 0; }
    // The command ended and a menu was shown again.
    bool backAtMenu() const { return menuReads_ > 2; }

private:
    const CommandRow *row_;
    std::string filler_;
    int badAt_;
    std::optional<std::string> bad_;
    size_t reads_ = 0;
    size_t menuReads_ = 0;
    std::vector<size_t> promptReads_;
    std::set<size_t> choicePrompts_;
    size_t lastPrinted_ = 0;
    bool lastLineEmpty_ = false;
};

#endif
