// The store-safety property of the DSD writes, over seeded random requests.
// Each request is one write command (block, bytes, Flash 2.x image, region)
// with random answers, one or two device faults on random calls of the
// command (short reads, flipped bits, failed calls, ignored writes, writes
// that stop part-way or fail part-way, refused keys and keys the device never
// issued, a region size query and an option read that lie), and sometimes
// end of input at a random prompt, or a stop signal at a random call and
// sometimes a second one of another kind after it. Afterwards the stores
// pass the store-safety judgement (support/store_safety.h): every byte holds
// its original value or the written one, and a restore asked for and not
// made is said, never claimed; and a WARNING ends the command with -1.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "Faults.h"
#include "SimControl.h"
#include "commands.h"
#include "console.h"
#include "console_capture.h"
#include "diagnostics.h"
#include "failing_malloc.h"
#include "scripted_session.h"
#include "store_safety.h"

namespace {

namespace control = q7sim::control;
using q7sim::Nvm;

enum class Kind { Block, Bytes, Flash2x, Region };

const char *const kKindNames[] = {"block", "bytes", "Flash 2.x", "region"};

std::string Hex(uint32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "%X", value);
    return text;
}

bool EndsWithText(std::string_view text, std::string_view tail)
{
    return text.size() >= tail.size() && text.substr(text.size() - tail.size()) == tail;
}

struct Request {
    Kind kind;
    uint32_t nvmMode;
    uint32_t section;  // the current section in NVM mode 0; 2 is read-only
    // The answer to each prompt, found by the end of the prompt's text.
    std::vector<std::pair<std::string, std::string>> answers;
    bool autoKey;
    unsigned seed;  // of the C library's generator, for the random data

    int (*Handler() const)(CalInterfaceHandle)
    {
        const decltype(&TestWriteDSDBlock) handlers[] = {TestWriteDSDBlock, TestWriteDSDBytes,
                                                         TestWriteFlash2xBytesWithHeader, TestWriteDSDRegionByID};
        return handlers[static_cast<int>(kind)];
    }
    // The same answers with `prompt` answered `answer` instead.
    Request With(const std::string &prompt, const std::string &answer) const
    {
        Request r = *this;
        for (auto &[suffix, given] : r.answers)
            if (suffix == prompt)
                given = answer;
        return r;
    }
};

const char kRestorePrompt[] = "Restore contents (1=yes/0=no) ? ";
const char kVerifyPrompt[] = "Verify write     (1=yes/0=no) ? ";
const char kAutoKeyPrompt[] = "Auto DSD key (1=yes/0=no) ? ";

Request RandomRequest(std::mt19937 &rng)
{
    auto pick = [&rng](uint32_t low, uint32_t high) { return std::uniform_int_distribution<uint32_t>(low, high)(rng); };
    Request r{};
    r.kind = static_cast<Kind>(pick(0, 3));
    r.nvmMode = r.kind == Kind::Flash2x ? (pick(0, 9) == 0 ? 1 : 0) : pick(0, 2);
    r.section = r.nvmMode == 0 && pick(0, 9) == 0 ? 2 : 0;
    r.autoKey = pick(0, 3) != 0;
    r.seed = pick(1, 1000000);
    auto &a = r.answers;
    switch (r.kind) {
    case Kind::Block:
        a = {{"DSD address (hex) ? ", Hex(4 * pick(0, 0x2000))}, {"Block size (dec)          ? ", std::to_string(pick(0, 32))}};
        break;
    case Kind::Bytes:
        a = {{"DSD address (hex) ? ", Hex(pick(0, 0x8000))}, {"Size in bytes (dec)       ? ", std::to_string(pick(0, 128))}};
        break;
    case Kind::Flash2x: {
        uint32_t offset = pick(0, 1) ? pick(0, 65536) : pick(64000, 65536);
        a = {{"Flash memory offset (hex) ? ", Hex(offset)},
             {"Size in bytes (dec)       ? ", std::to_string(std::min(pick(0, 1024), 65536 - offset))},
             {"Enter write mode (1-2)     ? ", std::to_string(pick(1, 2))},
             {"DSD size in kB (1-63)      ? ", std::to_string(pick(1, 63))},
             {"DSD priority (0-10)        ? ", std::to_string(pick(0, 10))}};
        break;
    }
    case Kind::Region:
        a = {{"Enter region ID (dec)             ? ", std::to_string(pick(1, 11))},
             {"): ", std::to_string(pick(0, 800))}};  // the number of bytes to write
        break;
    }
    a.push_back({kAutoKeyPrompt, r.autoKey ? "1" : "0"});
    a.push_back({kRestorePrompt, pick(0, 3) != 0 ? "1" : "0"});
    a.push_back({kVerifyPrompt, pick(0, 3) != 0 ? "1" : "0"});
    const std::string patterns[][2] = {{"1", ""}, {"3", Hex(pick(0, 0xFFFFFFFF))}, {"2", Hex(pick(0, 0xFFFFFFFF))}};
    const auto &pattern = patterns[pick(0, 2)];
    a.push_back({"Data pattern (0=user 1=random 2=increment 3=constant) ? ", pattern[0]});
    a.push_back({"Constant value (hex) ? ", pattern[1]});
    a.push_back({"Starting value (hex) ? ", pattern[1]});
    a.push_back({"Increment      (hex) ? ", Hex(pick(0, 0xFFFF))});
    return r;
}

// Answers the command's prompts by their text; the key prompt gets a key the
// device really issued. Ends the input at the `endAt`-th read, if any.
class Answers {
public:
    Answers(const Request &r, uint32_t typedKey, std::optional<size_t> endAt = std::nullopt)
        : request_(r), typedKey_(typedKey), endAt_(endAt)
    {
    }
    std::optional<std::string> operator()(std::string_view printed)
    {
        if (endAt_ && reads_ == *endAt_)
            return std::nullopt;
        reads_++;
        if (EndsWithText(printed, "DSD Key (hex)     ? "))
            return Hex(typedKey_);
        for (const auto &[suffix, answer] : request_.answers) {
            if (!EndsWithText(printed, suffix))
                continue;
            if (suffix == kRestorePrompt)
                restoreAnswer_ = answer;
            return answer;
        }
        ADD_FAILURE() << "an unexpected prompt:\n" << printed.substr(printed.size() > 300 ? printed.size() - 300 : 0);
        return std::nullopt;
    }
    size_t reads() const { return reads_; }
    bool restoreAsked() const { return restoreAnswer_ == "1"; }

private:
    Request request_;
    uint32_t typedKey_;
    std::optional<size_t> endAt_;
    size_t reads_ = 0;
    std::string restoreAnswer_;
};

// A fault on one call of the command, armed before it runs.
struct Fault {
    std::string description;
    std::function<void()> arm;
};

const char *const kDataCalls[] = {"Q7_ReadDSDBytes",         "Q7_ReadDSDRegionByID",           "Q7_WriteDSDBytes",
                                  "Q7_WriteDSDRegionByID",   "Q7_WriteFlash2xBytesWithHeader", "Q7_RequestDSDWriteKey",
                                  "Q7_GetDSDRegionSizeByID", "Q7_GetOptionByID"};

// A fault of a kind the call can show, on the `nth` call of `operation`.
Fault RandomFault(std::mt19937 &rng, const std::string &operation, unsigned nth)
{
    auto pick = [&rng](uint32_t low, uint32_t high) { return std::uniform_int_distribution<uint32_t>(low, high)(rng); };
    const char *op = nullptr;
    for (const char *call : kDataCalls)
        if (operation == call)
            op = call;
    std::string at = " on " + operation + " call " + std::to_string(nth);
    if (operation == "Q7_RequestDSDWriteKey") {
        if (pick(0, 1))
            return {"forged key" + at, [nth] { control::ForgeWriteKey(nth); }};
        return {"refused key" + at, [op, nth] { control::FailCall(op, nth, "DSD write key refused"); }};
    }
    if (operation == "Q7_GetDSDRegionSizeByID" || operation == "Q7_GetOptionByID") {
        // A region is at least 56 bytes; an answer may be too small or too large.
        double offset = operation == "Q7_GetOptionByID" ? 1.0 : pick(0, 1) ? -double(pick(1, 50)) : pick(1, 200);
        return {"lying answer" + at, [op, offset] { control::SkewOutput(op, 0, offset); }};
    }
    uint32_t bytes = pick(0, 1) ? pick(0, 8) : pick(0, 1024);
    if (operation.rfind("Q7_Read", 0) == 0) {
        switch (pick(0, 2)) {
        case 0:
            return {"short read of " + std::to_string(bytes) + at, [op, nth, bytes] { control::ShortRead(op, nth, bytes); }};
        case 1: {
            uint8_t mask = static_cast<uint8_t>(1u << pick(0, 7));
            uint32_t index = pick(0, 65535);
            return {"flipped bit" + at, [op, nth, index, mask] { control::FlipBitOnRead(op, nth, index, mask); }};
        }
        default:
            return {"failed read" + at, [op, nth] { control::FailCall(op, nth, "NVM read timed out"); }};
        }
    }
    switch (pick(0, 3)) {
    case 0:
        return {"ignored write" + at, [op, nth] { control::IgnoreWrite(op, nth); }};
    case 1:
        return {"write stopped after " + std::to_string(bytes) + at,
                [op, nth, bytes] { control::StopWriteAfter(op, nth, bytes); }};
    case 2:
        return {"write failed after " + std::to_string(bytes) + at,
                [op, nth, bytes] { control::FailWriteAfter(op, nth, bytes); }};
    default:
        return {"failed write" + at, [op, nth] { control::FailCall(op, nth, "NVM write failed"); }};
    }
}

class DsdWriteSafetyTest : public SimulatedDeviceTest {
protected:
    void SetUp() override
    {
        SimulatedDeviceTest::SetUp();
        CatchStopSignalsInTest();
        factory_ = DsdStores();
    }
    void TearDown() override
    {
        ReleaseStopSignals();
        SimulatedDeviceTest::TearDown();
    }

    // The factory's stores, no faults, the request's NVM mode and current
    // section (a fresh device each time would be much slower).
    void Prepare(const Request &r)
    {
        q7sim::Faults().Clear();
        const uint8_t *bytes = factory_.data();
        for (uint32_t section = 0; section < Nvm::kSectionCount; section++, bytes += Nvm::kSectionSize)
            std::copy(bytes, bytes + Nvm::kSectionSize, device().dsd.nvm.Section(section));
        std::copy(bytes, bytes + q7sim::Dsd::kBufferSize, device().dsd.Area(q7sim::Dsd::kNvmModeBuffer).bytes);
        ASSERT_EQ(Q7_SetOptionByID(hCal, Q7_OPTION_NVM_MODE, r.nvmMode), nullptr);
        ASSERT_EQ(Q7_SelectCurrentDSDSection(hCal, r.section), nullptr);
    }

    struct Run {
        Session session;
        int result = 0;
        bool restoreAsked = false;
        size_t reads = 0;
    };
    // A key for the key prompt, issued before the command runs.
    uint32_t TypedKey(const Request &r) { return r.autoKey ? 0 : Q7_RequestDSDWriteKey(hCal); }

    Run RunRequest(const Request &r, uint32_t typedKey, std::optional<size_t> endAt = std::nullopt)
    {
        std::srand(r.seed);
        Answers answers(r, typedKey, endAt);
        Run run;
        run.session = RunSession("a DSD write", std::ref(answers), [&] { run.result = r.Handler()(hCal); });
        run.restoreAsked = answers.restoreAsked();
        run.reads = answers.reads();
        return run;
    }

    std::vector<uint8_t> factory_;
};

TEST_F(DsdWriteSafetyTest, NoStoreIsLeftChangedWithoutAWordWhateverTheDeviceDoes)
{
    std::mt19937 rng(20261123u);
    // How often each outcome came up: a run that never reached them proves nothing.
    std::map<std::string, int> seen;
    auto pick = [&rng](uint32_t low, uint32_t high) { return std::uniform_int_distribution<uint32_t>(low, high)(rng); };
    for (int i = 0; i < 400; i++) {
        Request r = RandomRequest(rng);

        // What a complete data write alone leaves in the stores: the same
        // answers and random data, no restore, no verification, no fault.
        Prepare(r);
        RunRequest(r.With(kRestorePrompt, "0").With(kVerifyPrompt, "0").With(kAutoKeyPrompt, "1"), 0);
        const std::vector<uint8_t> written = DsdStores();

        // The calls and the reads of the request on a healthy device.
        Prepare(r);
        uint32_t typedKey = TypedKey(r);
        control::RecordCalls();
        size_t reads = RunRequest(r, typedKey).reads;
        std::vector<std::pair<std::string, unsigned>> dataCalls;
        std::map<std::string, unsigned> seen;
        for (const std::string &call : control::Calls())
            if (std::find(std::begin(kDataCalls), std::end(kDataCalls), call) != std::end(kDataCalls))
                dataCalls.push_back({call, ++seen[call]});
        const size_t calls = control::Calls().size();

        Prepare(r);
        typedKey = TypedKey(r);
        const std::vector<uint8_t> original = DsdStores();
        std::string what = std::string(kKindNames[static_cast<int>(r.kind)]) + " write, NVM mode " +
                           std::to_string(r.nvmMode) + ", section " + std::to_string(r.section);
        for (unsigned f = pick(0, 9) == 0 ? 0 : pick(1, 2); f > 0 && !dataCalls.empty(); f--) {
            const auto &[operation, nth] = dataCalls[pick(0, static_cast<uint32_t>(dataCalls.size() - 1))];
            Fault fault = RandomFault(rng, operation, nth);
            fault.arm();
            what += "; " + fault.description;
        }
        std::optional<size_t> endAt;
        switch (pick(0, 2)) {
        case 0:
            endAt = pick(0, static_cast<uint32_t>(reads));
            what += "; input ends at read " + std::to_string(*endAt + 1);
            break;
        case 1: {
            // A signal, and sometimes a second of another kind later, while the
            // command finishes what it must (a restore, say).
            const int signals[] = {SIGINT, SIGTERM, SIGHUP};
            uint32_t first = pick(0, 2);
            int sig = signals[first];
            int second = pick(0, 1) ? signals[(first + pick(1, 2)) % 3] : 0;
            unsigned at = pick(1, static_cast<uint32_t>(calls));
            unsigned secondAt = at + pick(1, static_cast<uint32_t>(calls));
            unsigned count = 0;
            control::OnEveryCall([sig, at, second, secondAt, count](const std::string &) mutable {
                ++count;
                if (count == at)
                    raise(sig);
                if (second != 0 && count == secondAt)
                    raise(second);
            });
            what += "; signal " + std::to_string(sig) + " at call " + std::to_string(at);
            if (second != 0)
                what += " and signal " + std::to_string(second) + " at call " + std::to_string(secondAt);
            break;
        }
        default:
            break;
        }
        Run run = RunRequest(r, typedKey, endAt);
        const std::vector<uint8_t> after = DsdStores();
        const std::string &output = run.session.output;

        SCOPED_TRACE("request " + std::to_string(i) + ": " + what + "\noutput:\n" + output.substr(0, 4000));
        EXPECT_EQ(StoreSafetyViolation({original, after, &written, output, run.restoreAsked}), "");

        bool warned = Contains(output, "\nWARNING: Original data not restored, because ");
        if (warned) {
            EXPECT_EQ(run.result, -1);
        }
        seen["a WARNING"] += warned;
        seen["a WRITE ERROR"] += Contains(output, "WRITE ERROR: ");
        seen["a store left changed after a restore was asked for"] += run.restoreAsked && after != original;
        seen["a restore confirmed"] += run.restoreAsked && !warned && Contains(output, "Restoring original");
        seen["the original read twice in disagreement"] += Contains(output, "read differently twice");
        seen["an interrupted session"] += Contains(output, "Interrupted by SIG");
        seen["a size query that disagrees with the read"] += Contains(output, "size query answered");
        seen["a failed write looked at"] += Contains(output, "The DSD range is unchanged.");
        if (HasFailure())
            break;
    }
    for (const auto &[outcome, count] : seen)
        EXPECT_GE(count, 10) << outcome;
}

// Each allocation that a write makes, failed in turn (the test program's
// malloc fails on request) in a write that asks for a restore: the command
// says so and ends with -1, claims no success, and leaves every store as it
// was or says that it may not have.
TEST_F(DsdWriteSafetyTest, AWriteWhoseAllocationFailsClaimsNothing)
{
    struct Case {
        int (*handler)(CalInterfaceHandle);
        const char *answers;
    } cases[] = {
        {TestWriteDSDBlock, "100\n4\n1\n1\n3\n5A\n1\n"},
        {TestWriteDSDBytes, "100\n4\n1\n1\n3\n77\n1\n"},
        {TestWriteFlash2xBytesWithHeader, "100\n16\n1\n4\n3\n1\n1\n3\n5A\n1\n"},
        {TestWriteDSDRegionByID, "7\n1\n10\n1\n1\n"},
    };
    for (const Case &c : cases) {
        CountAllocations();
        EXPECT_EQ(RunHandler(c.handler, hCal, c.answers).result, 0);
        const unsigned allocations = StopCountingAllocations();
        EXPECT_GT(allocations, 0u) << c.answers;
        for (unsigned failing = 1; failing <= allocations; failing++) {
            const std::vector<uint8_t> before = DsdStores();
            CountAllocations(failing);
            HandlerRun run = RunHandler(c.handler, hCal, c.answers);
            StopCountingAllocations();
            SCOPED_TRACE("allocation " + std::to_string(failing) + " failed, answers " + c.answers + "\noutput:\n" +
                         run.output);
            EXPECT_TRUE(Contains(run.output, "\nERROR: Data block memory allocation failed\n"));
            EXPECT_EQ(run.result, -1);
            EXPECT_FALSE(Contains(run.output, " was SUCCESSFUL."));
            EXPECT_TRUE(DsdStores() == before || SaysAStoreMayBeLeftChanged(run.output));
        }
    }
    // The NVM mode test, whose images cannot be allocated, touches nothing.
    const std::vector<uint8_t> before = DsdStores();
    CountAllocations(1);
    HandlerRun run = RunHandler(NvmModeTest, hCal, "0\n");
    StopCountingAllocations();
    EXPECT_EQ(run.result, -1);
    EXPECT_TRUE(EndsWith(run.output, "\nERROR: Not enough memory for the NVM mode test\n")) << run.output;
    EXPECT_TRUE(DsdStores() == before);
}

// Standard output that dies in the middle of a write: it is a pipe read by a
// real child process (cat) that reads all until it is killed at the moment of
// a chosen device call, so that every write before that call succeeds and
// every one after it fails, however slowly the program runs. Every line that
// says the device was left changed reaches standard error then, where the
// engineer can still read it.
TEST_F(DsdWriteSafetyTest, WhatTheDeviceWasLeftWithReachesStderrOnceStdoutHasDied)
{
    struct Case {
        const char *what;
        int (*handler)(CalInterfaceHandle);
        const char *answers;
        std::function<void()> arm;
        const char *deathAt;  // stdout is gone from the first call of this operation on
        std::vector<std::string> stderrLines;
    } cases[] = {
        {"a refused restore key", TestWriteDSDBlock, "100\n2\n1\n1\n3\n5A\n1\n", [] { control::ForgeWriteKey(2); },
         "Q7_WriteDSDBytes", {"q7cal: WRITE ERROR: "}},
        {"verify errors that withheld the restore", TestWriteDSDBlock, "100\n2\n1\n1\n3\n5A\n1\n",
         [] { control::FlipBitOnRead("Q7_ReadDSDBytes", 3, 0, 0x01); }, "Q7_ReadDSDBytes#3", {"q7cal: 1 verify errors."}},
        {"a byte write's verify errors that withheld the restore", TestWriteDSDBytes, "100\n4\n1\n1\n3\n77\n1\n",
         [] { control::FlipBitOnRead("Q7_ReadDSDBytes", 3, 0, 0x01); }, "Q7_ReadDSDBytes#3",
         {"q7cal: 1 verify errors.",
          "q7cal: WARNING: Original data not restored, because verify error count > 0."}},
        {"a data write that failed part-way", TestWriteDSDRegionByID, "5\n1\n20\n",
         [] { control::FailWriteAfter("Q7_WriteDSDRegionByID", 1, 5); }, "Q7_WriteDSDRegionByID",
         {"q7cal: WRITE ERROR: NVM write failed after 5 bytes",
          "q7cal: WARNING: Original data not restored, because the failed write changed the range before the restore "
          "question."}},
        {"a restore that did not read back", TestWriteDSDBytes, "100\n4\n1\n1\n3\n77\n1\n",
         [] { control::FailCall("Q7_ReadDSDBytes", 3, "NVM read timed out"); }, "Q7_WriteDSDBytes",
         {"q7cal: READ ERROR: NVM read timed out",
          "q7cal: WARNING: Original data not restored, because the restored data could not be read back."}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        int toReader[2];
        ASSERT_EQ(pipe(toReader), 0);
        pid_t reader = fork();
        ASSERT_GE(reader, 0);
        if (reader == 0) {
            dup2(toReader[0], STDIN_FILENO);
            close(toReader[0]);
            close(toReader[1]);
            execlp("sh", "sh", "-c", "exec cat >/dev/null", static_cast<char *>(nullptr));
            _exit(127);
        }
        close(toReader[0]);
        std::string target = c.deathAt;
        unsigned nth = 1;
        if (size_t hash = target.find('#'); hash != std::string::npos) {
            nth = static_cast<unsigned>(std::stoul(target.substr(hash + 1)));
            target.erase(hash);
        }
        c.arm();
        unsigned seenCalls = 0;
        bool readerGone = false;
        control::OnEveryCall([&](const std::string &operation) {
            if (operation == target && ++seenCalls == nth) {
                kill(reader, SIGKILL);
                readerGone = waitpid(reader, nullptr, 0) == reader;  // its end of the pipe is closed
            }
        });

        FILE *answers = std::tmpfile();
        FILE *errors = std::tmpfile();
        std::fputs(c.answers, answers);
        std::rewind(answers);
        std::fflush(stdout);
        std::fflush(stderr);
        FILE *savedIn = stdin, *savedOut = stdout;
        int savedErr = dup(STDERR_FILENO);
        dup2(fileno(errors), STDERR_FILENO);
        stdin = answers;
        stdout = fdopen(toReader[1], "w");
        ResetInputState();
        int result = c.handler(hCal);
        FinishOutput();
        std::fclose(stdout);
        stdin = savedIn;
        stdout = savedOut;
        std::fflush(stderr);
        dup2(savedErr, STDERR_FILENO);
        close(savedErr);
        EXPECT_TRUE(readerGone) << "the call at which the reader goes was never made";
        if (!readerGone)
            waitpid(reader, nullptr, 0);  // it reads to the end of the closed pipe

        std::string said(1024, '\0');
        std::rewind(errors);
        said.resize(std::fread(&said[0], 1, said.size(), errors));
        std::fclose(answers);
        std::fclose(errors);
        EXPECT_EQ(result, -1);
        for (const std::string &line : c.stderrLines)
            EXPECT_TRUE(Contains(said, line + "\n") || Contains(said, line)) << "stderr:\n" << said;
        EXPECT_TRUE(Contains(said, "q7cal: write error on standard output: ")) << said;
        control::Reset();
        SimulatedDeviceTest::SetUp();
    }
}

}  // namespace
