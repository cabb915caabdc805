// Every prompt of every command in MenuEntry, found by running the command
// through the menu: each prompt in turn gets end of input, a word that is not
// a number, an empty line, a number too large for any integer, and -1 where
// the prompt reads an unsigned number. The answer is judged against the run in
// which every prompt got a plain number.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdio>
#include <functional>
#include <set>
#include <string>

#include "SimControl.h"
#include "command_script.h"
#include "console_capture.h"
#include "console.h"
#include "printed_texts.h"
#include "menu.h"
#include "scripted_session.h"

namespace {

// Commands that go on after a command they call is abandoned at end of input:
// the automated test runs the handlers of every group in turn.
const std::set<std::string> kGoOnAfterEndOfInput = {"Automated test"};
// Commands that, when input ends after their data write, still make the
// restore asked for or say that it is not made.
const std::set<std::string> kFinishAfterEndOfInput = {"WriteDSDBlock", "WriteDSDBytes", "WriteFlash2xBytesWithHeader",
                                                      "WriteDSDRegionByID"};

// Every prompt is walked once with each of these answers standing for "a
// valid number"; some prompts are reached only with one of them.
const char *const kFillers[] = {"0", "1"};

const char kAbandoned[] = "\nEnd of input: command abandoned.\n";

struct MenuRun {
    Session session;
    CommandScript script;
    bool inputEnded;
    size_t deviceCalls;  // by the end of the run
};

MenuRun RunThroughMenu(const CommandRow &row, const std::string &filler, int badAt = -1,
                       std::optional<std::string> bad = std::nullopt, const char *caseName = "every prompt answered")
{
    CalInterfaceHandle hCal = FreshConnectedDevice();
    CommandScript script(&row, filler, badAt, bad);
    std::string what = row.label + ": " + caseName + " at prompt " + std::to_string(badAt + 1) + ", filler " + filler;
    Session session = RunSession(what, std::ref(script), [&] { RunMenu(hCal); });
    bool inputEnded = SessionEnded();
    size_t deviceCalls = q7sim::control::Calls().size();
    q7sim::control::Reset();
    return {std::move(session), std::move(script), inputEnded, deviceCalls};
}

// The handler's own result, called directly with the same answers, input
// ending at prompt `at`.
int RunHandlerAbandonedAt(const CommandRow &row, const std::string &filler, int at)
{
    CalInterfaceHandle hCal = FreshConnectedDevice();
    CommandScript script(nullptr, filler, at, std::nullopt);
    int result = 0;
    RunSession(row.label + ": the handler abandoned at prompt " + std::to_string(at + 1), std::ref(script),
               [&] { result = MenuEntry[row.index].pfnHandler(hCal); });
    q7sim::control::Reset();
    return result;
}

// The command ran to its end, the menu came back and took the two -1 that
// leave it: the program is still usable.
void ExpectFinishedAndMenuUsable(const MenuRun &run, const std::string &what)
{
    EXPECT_FALSE(run.session.runaway) << what << ": the command kept reading";
    EXPECT_TRUE(run.script.backAtMenu()) << what << ": the menu did not come back";
    EXPECT_FALSE(run.inputEnded) << what << ": the menu was left through end of input, not -1";
}

struct Prompt {
    size_t printed;      // output before the read of this prompt
    size_t deviceCalls;  // device calls before it
};

// `refused` got a refusal at `prompt` where `plain` got a number: one line
// saying what is expected, the same prompt again, no device call in between,
// and from there on exactly what the plain run printed. Returns the kind of
// number the line asked for, or "" when the check failed.
std::string ExpectRefusedAndReasked(const MenuRun &plain, const Prompt &prompt, const MenuRun &refused,
                                    size_t promptIndex, const std::string &message, const std::string &what)
{
    const std::string &expected = plain.session.output;
    const std::string &actual = refused.session.output;
    if (refused.script.promptReads().size() <= promptIndex + 1) {
        ADD_FAILURE() << what << ": the prompt was not asked again\n" << actual;
        return "";
    }
    const SessionRead &again = refused.session.reads[refused.script.promptReads()[promptIndex + 1]];
    EXPECT_EQ(actual.compare(0, prompt.printed, expected, 0, prompt.printed), 0) << what;
    std::string inserted = actual.substr(prompt.printed, again.printed - prompt.printed);
    size_t lineEnd = inserted.find('\n', 1);
    if (inserted.rfind(message, 0) != 0 || lineEnd == std::string::npos) {
        ADD_FAILURE() << what << ": expected \"" << message << "...\", got\n" << inserted;
        return "";
    }
    std::string reasked = inserted.substr(lineEnd + 1);
    EXPECT_FALSE(reasked.empty()) << what << ": no prompt after the refusal";
    EXPECT_TRUE(prompt.printed >= reasked.size() &&
                expected.compare(prompt.printed - reasked.size(), reasked.size(), reasked) == 0)
        << what << ": not the same prompt again: \"" << reasked << "\"";
    EXPECT_EQ(again.deviceCalls, prompt.deviceCalls) << what << ": the device was called before the answer";
    EXPECT_EQ(actual.substr(again.printed), expected.substr(prompt.printed)) << what;
    ExpectFinishedAndMenuUsable(refused, what);
    size_t kindStart = message.size();
    return inserted.substr(kindStart, inserted.find('.', kindStart) - kindStart);
}

// The last line of the output before `printed`: the prompt being asked.
std::string PromptLine(const std::string &output, size_t printed)
{
    size_t lineStart = output.rfind('\n', printed - 1) + 1;
    return output.substr(lineStart, printed - lineStart);
}

class PromptWalk : public ::testing::TestWithParam<CommandRow> {};

TEST_P(PromptWalk, EveryPromptSurvivesEndOfInputJunkEmptyLinesAndHugeNumbers)
{
    const CommandRow &row = GetParam();
    bool goesOn = kGoOnAfterEndOfInput.count(row.label) != 0;
    std::set<std::string> promptsSeen;
    size_t cases = 0;

    for (const std::string filler : kFillers) {
        MenuRun plain = RunThroughMenu(row, filler);
        ExpectFinishedAndMenuUsable(plain, row.label + " (all answered " + filler + ")");
        // The command was reached: what follows its choice is the command's, not the menu's refusal.
        const std::vector<SessionRead> &reads = plain.session.reads;
        ASSERT_GE(reads.size(), 3u) << row.label;
        std::string afterChoice = plain.session.output.substr(reads[1].printed, reads[2].printed - reads[1].printed);
        ASSERT_NE(afterChoice.rfind("\nSorry. Invalid option selected.", 0), 0u) << row.label << " cannot be reached";
        cases++;
        std::vector<Prompt> prompts;
        for (size_t read : plain.script.promptReads())
            prompts.push_back({plain.session.reads[read].printed, plain.session.reads[read].deviceCalls});

        for (size_t k = 0; k < prompts.size(); k++) {
            const int at = static_cast<int>(k);
            std::string where = row.label + ", prompt " + std::to_string(k + 1) + " (filler " + filler + ")";

            if (plain.script.isChoice(k)) {
                // A picker reads the menu's way: a word that is not a number
                // is choice 0, and end of input is -1, which leaves it.
                for (const char *answer : {"q7junk", "", "99999999999"})
                    ExpectFinishedAndMenuUsable(RunThroughMenu(row, filler, at, answer, "an odd choice"),
                                                where + ", choice \"" + answer + "\"");
                MenuRun ended = RunThroughMenu(row, filler, at, std::nullopt, "end of input");
                EXPECT_TRUE(ended.inputEnded && !ended.session.runaway) << where << ", end of input";
                EXPECT_EQ(ended.deviceCalls, prompts[k].deviceCalls) << where << ": device called after end of input";
                if (!goesOn) {
                    EXPECT_EQ(RunHandlerAbandonedAt(row, filler, at), -1) << where << ": the handler's result";
                }
                promptsSeen.insert(PromptLine(plain.session.output, prompts[k].printed) + "|choice");
                cases += 4;
                continue;
            }

            MenuRun junk = RunThroughMenu(row, filler, at, "q7junk", "junk");
            std::string kind = ExpectRefusedAndReasked(plain, prompts[k], junk, k, "\nNot a number. Please enter ",
                                                       where + ", junk");
            promptsSeen.insert(PromptLine(plain.session.output, prompts[k].printed) + "|" + kind);

            MenuRun empty = RunThroughMenu(row, filler, at, "", "an empty line");
            EXPECT_EQ(empty.session.output, plain.session.output) << where << ": an empty line is not an answer";
            ExpectFinishedAndMenuUsable(empty, where + ", empty line");

            MenuRun ended = RunThroughMenu(row, filler, at, std::nullopt, "end of input");
            EXPECT_TRUE(ended.inputEnded) << where;
            // The handler itself says the command failed: -1, as every abandoned command does.
            if (!goesOn) {
                EXPECT_EQ(RunHandlerAbandonedAt(row, filler, at), -1) << where << ": the handler's result";
            }
            EXPECT_FALSE(ended.session.runaway) << where << ": reading went on after end of input";
            if (goesOn) {
                EXPECT_NE(ended.session.output.find(kAbandoned), std::string::npos) << where;
            } else {
                std::string abandoned = plain.session.output.substr(0, prompts[k].printed) + kAbandoned;
                EXPECT_EQ(ended.session.output.substr(0, abandoned.size()), abandoned)
                    << where << ": end of input must abandon the command and leave the menu";
                std::string finish = ended.session.output.substr(std::min(abandoned.size(), ended.session.output.size()));
                if (finish.empty()) {
                    EXPECT_EQ(ended.deviceCalls, prompts[k].deviceCalls) << where << ": device called after end of input";
                } else {
                    EXPECT_TRUE(kFinishAfterEndOfInput.count(row.label) != 0 &&
                                (Contains(finish, "Restoring original DSD") || Contains(finish, TEXT_KEY_REPLACED) ||
                                 Contains(finish, "WARNING: Original data not restored, because input ended.")))
                        << where << ": after end of input only a restore asked for, or its WARNING:\n" << finish;
                }
            }

            MenuRun huge = RunThroughMenu(row, filler, at, "99999999999", "99999999999");
            if (kind == "a number") {
                ExpectFinishedAndMenuUsable(huge, where + ", 99999999999 as a double");
            } else {
                ExpectRefusedAndReasked(plain, prompts[k], huge, k, "\nOut of range. Please enter " + kind + " ",
                                        where + ", 99999999999");
            }
            cases += 4;

            if (kind == "an unsigned decimal number" || kind == "a hexadecimal number") {
                MenuRun minusOne = RunThroughMenu(row, filler, at, "-1", "-1");
                ExpectFinishedAndMenuUsable(minusOne, where + ", -1 read as 4294967295");
                cases++;
            }
        }
    }
    std::printf("[prompt walk] %s: %zu prompts, %zu runs\n", row.label.c_str(), promptsSeen.size(), cases);
    RecordProperty("prompts", static_cast<int>(promptsSeen.size()));
    RecordProperty("runs", static_cast<int>(cases));
}

// The whole program, stopped by end of input inside the command: it leaves
// through its normal exit, with status 3 when the command was abandoned and 0
// when it needed no answer.
TEST_P(PromptWalk, TheProgramSaysByItsStatusWhetherInputEndedInTheCommand)
{
    const CommandRow &row = GetParam();
    std::string command = "printf '" + std::to_string(row.group) + "\\n" + std::to_string(row.position) +
                          "\\n' | timeout 20 " Q7CAL_INSTANT;
    FILE *pipe = popen(command.c_str(), "r");
    ASSERT_NE(pipe, nullptr) << command;
    std::string text;
    char chunk[4096];
    for (size_t n; (n = std::fread(chunk, 1, sizeof chunk, pipe)) != 0;)
        text.append(chunk, n);
    int status = pclose(pipe);
    ASSERT_TRUE(WIFEXITED(status)) << command;
    EXPECT_EQ(WEXITSTATUS(status), Contains(text, kAbandoned) ? 3 : 0) << command;
    EXPECT_TRUE(EndsWith(text, "\nClosing application...\n")) << text;
}

INSTANTIATE_TEST_SUITE_P(EveryCommand, PromptWalk, ::testing::ValuesIn(CommandRows()),
                         [](const ::testing::TestParamInfo<CommandRow> &info) { return TestNameOf(info.param); });

}  // namespace
