#include <gtest/gtest.h>

#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "console.h"
#include "console_capture.h"

namespace {

// The choices ReadChoice returns for the words of `input`, one call per word.
std::vector<int> Choices(const std::string &input, int calls)
{
    std::vector<int> choices;
    RunWithInput(input, [&] {
        for (int i = 0; i < calls; i++)
            choices.push_back(ReadChoice());
    });
    return choices;
}

TEST(ReadChoice, TakesTheNumberAtTheStartOfEachWordAndSkipsEmptyLines)
{
    EXPECT_EQ(Choices("7abc\n   7\n-2 abc 0 +3\n", 6), (std::vector<int>{7, 7, -2, 0, 0, 3}));
    EXPECT_EQ(Choices("\n\n\n  4\n", 1), (std::vector<int>{4}));
    // Over-long and out-of-range words are one invalid choice each.
    EXPECT_EQ(Choices(std::string(60, '1') + " 5\n99999999999\n", 3), (std::vector<int>{0, 5, 0}));
    // A word is read to 49 characters: a 50th digit is never seen.
    EXPECT_EQ(Choices(std::string(48, '0') + "7 " + std::string(49, '0') + "7\n", 2), (std::vector<int>{7, 0}));
    // A word with a NUL byte in it is no number at all.
    EXPECT_EQ(Choices(std::string("1\0\0\08 5\n", 8), 2), (std::vector<int>{0, 5}));
}

TEST(PadString, RefusesNullLongTextsAndWidthsAboveItsBuffer)
{
    EXPECT_EQ(PadString(nullptr, ' ', 10), nullptr);
    std::string eightyOne(81, 'x');
    EXPECT_EQ(PadString(eightyOne.c_str(), ' ', 30), nullptr);
    EXPECT_EQ(PadString("abc", ' ', 81), nullptr);
    std::string eighty(80, 'y');
    EXPECT_EQ(std::string(PadString(eighty.c_str(), ' ', 80)), eighty);
}

TEST(PressEnterToContinue, ReturnsAfterAnySingleCharacterAndEachPauseTakesOneLine)
{
    // A pause answered with text: the next pause drops the rest of that line
    // and takes one of its own, so the script stays in step.
    int next = 0;
    std::string output = RunWithInput("x\ny\n5\n", [&] {
        PressEnterToContinue();
        PressEnterToContinue();
        next = ReadChoice();
    });
    EXPECT_EQ(output, "\nPress Enter to continue\n\nPress Enter to continue\n");
    EXPECT_EQ(next, 5);
}

// Each answer is tried once per line: the reader's verdict, then the value
// it settles on from the last line.
TEST(Readers, RefuseNumbersThatDoNotFitOrCarryTrailingText)
{
    struct Case {
        std::string input;
        std::function<bool(std::string &)> read;  // reads and renders the value
        std::vector<std::string> refusals;        // the refusal lines, in order
        std::string value;
    };
    auto unsignedValue = [](std::string &text) {
        uint32_t value = 0;
        bool read = ReadUnsigned(&value, "> ");
        text = std::to_string(value);
        return read;
    };
    auto signedValue = [](std::string &text) {
        int32_t value = 0;
        bool read = ReadSigned(&value, "> ");
        text = std::to_string(value);
        return read;
    };
    auto hexValue = [](std::string &text) {
        uint32_t value = 0;
        bool read = ReadHex(&value, "> ");
        text = std::to_string(value);
        return read;
    };
    auto doubleValue = [](std::string &text) {
        double value = 0;
        bool read = ReadDouble(&value, "> ");
        text = std::to_string(value);
        return read;
    };
    const std::string notUnsigned = "\nNot a number. Please enter an unsigned decimal number.\n";
    const std::string bigUnsigned = "\nOut of range. Please enter an unsigned decimal number up to 4294967295.\n";
    const std::string bigSigned = "\nOut of range. Please enter a decimal number from -2147483648 to 2147483647.\n";
    const std::string notHex = "\nNot a number. Please enter a hexadecimal number.\n";
    const std::string bigHex = "\nOut of range. Please enter a hexadecimal number up to FFFFFFFF.\n";
    const std::vector<Case> cases = {
        {"4294967296\n4294967295\n", unsignedValue, {bigUnsigned}, "4294967295"},
        {"12abc\n0x1F\n- 5\n-5\n", unsignedValue, {notUnsigned, notUnsigned, notUnsigned}, "4294967291"},
        {std::string(70, '1') + "\n7\n", unsignedValue, {notUnsigned}, "7"},
        // No answer lies 64 KiB into its line: what does is no text.
        {std::string(65536, ' ') + "5\n7\n", unsignedValue, {notUnsigned}, "7"},
        {"2147483648\n-2147483649\n-2147483648\n", signedValue, {bigSigned, bigSigned}, "-2147483648"},
        {"1FFFFFFFF\n0x7E1A0D5D\n", hexValue, {bigHex}, "2115636573"},
        {"-1\n", hexValue, {}, "4294967295"},
        {std::string("10\0zz\n1\0\0\08\n3\n", 13), hexValue, {notHex, notHex}, "3"},
        {"1e-400\n", doubleValue, {}, "0.000000"},  // too small for a double: it reads as 0
        {"1e999\n0x1p-2\n", doubleValue, {"\nOut of range. Please enter a number within the range of a double.\n"},
         "0.250000"},
    };
    for (const Case &c : cases) {
        std::string value;
        bool read = false;
        std::string output = RunWithInput(c.input, [&] { read = c.read(value); });
        std::string expected;
        for (const std::string &refusal : c.refusals)
            expected += "> " + refusal;
        EXPECT_TRUE(read) << c.input;
        EXPECT_EQ(output, expected + "> ") << c.input;
        EXPECT_EQ(value, c.value) << c.input;
    }
}

// A stop signal, or standard output that can no longer be written, ends the
// session at the next read as end of input does; the abandon line says which,
// once.
TEST(SessionEnd, AStopSignalOrAFailedOutputEndsInputAtTheNextRead)
{
    CatchStopSignalsInTest();
    uint32_t value = 5;
    std::string output = RunWithInput("7\n8\n", [&] {
        raise(SIGTERM);
        EXPECT_FALSE(ReadUnsigned(&value, "N? "));
        EXPECT_EQ(AbandonCommand(), -1);
        EXPECT_EQ(ReadChoice(), -1);
        EXPECT_EQ(StopSignal(), SIGTERM);
    });
    ReleaseStopSignals();
    EXPECT_EQ(output, "\nInterrupted by SIGTERM: command abandoned.\n");
    EXPECT_EQ(value, 5u);

    bool written = true;
    RunWithInput("7\n", [&] {
        FILE *captured = stdout;
        stdout = std::fopen("/dev/full", "w");
        ASSERT_NE(stdout, nullptr);
        setvbuf(stdout, nullptr, _IONBF, 0);  // the write fails at once, the flush has nothing left
        EXPECT_FALSE(ReadUnsigned(&value, "N? "));
        EXPECT_TRUE(SessionEnded());
        EXPECT_STREQ(WhyCommandEnded(), "standard output could not be written");
        written = FinishOutput();
        std::fclose(stdout);
        stdout = captured;
    });
    EXPECT_FALSE(written);
    EXPECT_EQ(value, 5u);
}

// A signal that comes just after the session was looked at, before a read of
// a pipe began: the pipe's writer stays, yet the read finds end of input.
TEST(SessionEnd, AStopSignalEndsPipedInputSoALateReadDoesNotWait)
{
    int pipeEnds[2];
    ASSERT_EQ(pipe(pipeEnds), 0);
    int savedInput = dup(STDIN_FILENO);
    dup2(pipeEnds[0], STDIN_FILENO);
    close(pipeEnds[0]);
    CatchStopSignalsInTest();
    raise(SIGTERM);
    ReleaseStopSignals();
    struct pollfd input = {STDIN_FILENO, POLLIN, 0};
    char c = 0;
    if (poll(&input, 1, 0) == 1)
        EXPECT_EQ(read(STDIN_FILENO, &c, 1), 0);
    else
        ADD_FAILURE() << "a read would wait for the pipe's writer";
    dup2(savedInput, STDIN_FILENO);
    close(savedInput);
    close(pipeEnds[1]);
    ResetInputState();
}

}  // namespace
