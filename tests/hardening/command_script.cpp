#include "command_script.h"

#include <cctype>
#include <cstdlib>

#include "SimControl.h"
#include "scripted_session.h"

std::vector<CommandRow> CommandRows()
{
    std::vector<CommandRow> rows;
    int group = 0;
    int position = 0;
    for (size_t i = 0; MenuEntry[i].sLabel != nullptr; i++) {
        if (MenuEntry[i].sGroupTitle != nullptr) {
            group++;
            position = 0;
        }
        rows.push_back({i, group, ++position, MenuEntry[i].sLabel});
    }
    return rows;
}

std::string TestNameOf(const CommandRow &row)
{
    std::string name = "G" + std::to_string(row.group) + "_";
    for (char c : row.label)
        if (std::isalnum(static_cast<unsigned char>(c)))
            name += c;
    return name;
}

CalInterfaceHandle FreshConnectedDevice()
{
    q7sim::control::Reset();
    char buffer[128];
    CalInterfaceHandle hCal = Q7_GetCalInterface(Q7_INTERFACE_LOCAL, buffer, nullptr);
    if (hCal == nullptr || Q7_ConnectDevice(hCal) != nullptr)
        std::abort();
    q7sim::control::RecordCalls();
    std::srand(1);
    return hCal;
}

CommandScript::CommandScript(const CommandRow *row, std::string filler, int badAt, std::optional<std::string> bad)
    : row_(row), filler_(std::move(filler)), badAt_(badAt), bad_(std::move(bad))
{
}

std::optional<std::string> CommandScript::operator()(std::string_view printed)
{
    size_t read = reads_++;
    bool nothingNew = printed.size() == lastPrinted_;
    lastPrinted_ = printed.size();
    std::optional<std::string> line;
    switch (KindOfRead(printed)) {
    case ReadKind::Menu:
        menuReads_++;
        if (row_ != nullptr && menuReads_ == 1)
            line = std::to_string(row_->group);
        else if (row_ != nullptr && menuReads_ == 2)
            line = std::to_string(row_->position);
        else
            line = "-1";
        break;
    case ReadKind::Pause:
        line = "";
        break;
    case ReadKind::Choice:
    case ReadKind::Answer:
        if (nothingNew && lastLineEmpty_) {
            line = filler_;  // still at the prompt that got the empty line
            break;
        }
        promptReads_.push_back(read);
        size_t prompt = promptReads_.size() - 1;
        bool firstChoice = false;
        if (KindOfRead(printed) == ReadKind::Choice) {
            firstChoice = choicePrompts_.empty();
            choicePrompts_.insert(prompt);
        }
        if (static_cast<int>(prompt) == badAt_)
            line = bad_;
        else if (choicePrompts_.count(prompt) != 0 && !firstChoice)
            line = "-1";
        else
            line = filler_;
        break;
    }
    lastLineEmpty_ = line && line->empty();
    return line;
}
