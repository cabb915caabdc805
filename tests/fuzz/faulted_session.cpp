#include "faulted_session.h"

#include <signal.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <vector>

#include "SimControl.h"
#include "automated.h"
#include "connection.h"
#include "console.h"
#include "host_time.h"
#include "menu.h"
#include "printed_texts.h"
#include "store_safety.h"

namespace {

namespace control = q7sim::control;

// The operations a fault can strike: the calls of the DSD writes first, then
// the read-backs that the automated run judges and the settings they read.
// The first entry names none in particular: the fault then strikes the
// CALL-th call of any of them.
const char kAnyOperation[] = "(any)";
const char *const kOperations[] = {
    kAnyOperation,                     // 0
    "Q7_WriteDSDBytes",                // 1
    "Q7_WriteDSDRegionByID",           // 2
    "Q7_WriteFlash2xBytesWithHeader",  // 3
    "Q7_ReadDSDBytes",                 // 4
    "Q7_ReadDSDRegionByID",            // 5
    "Q7_RequestDSDWriteKey",           // 6
    "Q7_GetDSDRegionSizeByID",         // 7
    "Q7_GetOptionByID",                // 8
    "Q7_GetBandConfig",                // 9
    "Q7_SetBandConfig",                // 10
    "Q7_GetRxGainState",               // 11
    "Q7_SetRxGainState",               // 12
    "Q7_GetTxAttn",                    // 13
    "Q7_SetTxAttn",                    // 14
    "Q7_GetTxOutputPower",             // 15
    "Q7_SetTxOutputPower",             // 16
    "Q7_GetTxDiversitySwitch",         // 17
    "Q7_SetTxDiversitySwitch",         // 18
    "Q7_ReadRFICRegister",             // 19
    "Q7_WriteRFICRegister",            // 20
    "Q7_ReadGPIOState",                // 21
    "Q7_SetGPIOPinState",              // 22
    "Q7_GetDeviceMode",                // 23
    "Q7_SetDeviceMode",                // 24
};
// The read-backs whose first out-value can lie (SkewOutput).
const char *const kSkewable[] = {"Q7_GetDSDRegionSizeByID", "Q7_GetOptionByID", "Q7_GetBandConfig",
                                 "Q7_GetRxGainState",       "Q7_GetTxAttn",     "Q7_GetTxOutputPower",
                                 "Q7_GetTxDiversitySwitch"};

enum Kind { kFail, kShort, kIgnore, kFlip, kLie, kKinds };

// 0: no stop; -1: end of input; else the signal.
const int kStops[] = {0, -1, SIGINT, SIGTERM, SIGHUP, SIGQUIT};
const int kStopSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

const char kRestorePrompt[] = "Restore contents (1=yes/0=no) ? ";

template <size_t N>
bool OneOf(const std::string &operation, const char *const (&names)[N])
{
    return std::find(std::begin(names), std::end(names), operation) != std::end(names);
}

bool IsDsdRead(const std::string &op) { return op == "Q7_ReadDSDBytes" || op == "Q7_ReadDSDRegionByID"; }
bool IsDsdWrite(const std::string &op)
{
    return op == "Q7_WriteDSDBytes" || op == "Q7_WriteDSDRegionByID" || op == "Q7_WriteFlash2xBytesWithHeader";
}
// An operation that hands back what the device holds.
bool IsRead(const std::string &op)
{
    return op.rfind("Q7_Get", 0) == 0 || op.rfind("Q7_Read", 0) == 0 || op.rfind("Q7_Is", 0) == 0 ||
           op.rfind("Q7_Are", 0) == 0;
}

struct FaultChoice {
    const char *operation;
    unsigned call;
    Kind kind;
    uint32_t amount;
    int stop;
    unsigned stopCall;
};

// The numbers of the input's first line; returns that line's length.
size_t ParseFaultLine(const uint8_t *data, size_t size, FaultChoice *choice)
{
    uint32_t numbers[6] = {};
    size_t count = 0;
    size_t i = 0;
    for (bool inNumber = false; i < size && data[i] != '\n'; i++) {
        bool digit = data[i] >= '0' && data[i] <= '9';
        if (digit && count < 6)
            numbers[count] = numbers[count] % 100000000u * 10u + (data[i] - '0');  // below 10^9
        if (!digit && inNumber)
            count++;
        inNumber = digit;
    }
    choice->operation = kOperations[numbers[0] % std::size(kOperations)];
    choice->call = std::max(numbers[1], 1u);
    choice->kind = static_cast<Kind>(numbers[2] % kKinds);
    choice->amount = numbers[3];
    choice->stop = kStops[numbers[4] % std::size(kStops)];
    choice->stopCall = std::max(numbers[5], 1u);
    return i < size ? i + 1 : i;
}

// The kind of fault the operation can show: a DSD read can come back short
// or with a bit flipped, a DSD write can stop short, a key request can hand
// out a key that the device never issued (its flip), a read-back with a skew
// can lie; any call can fail or be ignored. Otherwise the call fails.
Kind KindFor(Kind kind, const std::string &op)
{
    bool fits = kind == kFail || kind == kIgnore || (kind == kShort && (IsDsdRead(op) || IsDsdWrite(op))) ||
                (kind == kFlip && (IsDsdRead(op) || op == "Q7_RequestDSDWriteKey")) ||
                (kind == kLie && OneOf(op, kSkewable));
    return fits ? kind : kFail;
}

// Arms a fault of the kind on the call about to be made (1 = this one).
void ArmFault(Kind kind, uint32_t amount, const char *op)
{
    switch (kind) {
    case kFail:
        if (IsDsdWrite(op) && amount != 0)
            control::FailWriteAfter(op, 1, amount);
        else
            control::FailNext(op, 1, "injected device fault");
        break;
    case kShort:
        if (IsDsdRead(op))
            control::ShortRead(op, 1, amount);
        else
            control::StopWriteAfter(op, 1, amount);
        break;
    case kIgnore:
        if (IsDsdWrite(op))
            control::IgnoreWrite(op, 1);
        else
            control::IgnoreNext(op, 1);
        break;
    case kFlip:
        if (IsDsdRead(op))
            control::FlipBitOnRead(op, 1, amount, static_cast<uint8_t>(1u << (amount % 8)));
        else
            control::ForgeWriteKey(1);
        break;
    case kLie: {
        // Region sizes (56 bytes at least) may lie either way; other values
        // only upward, so that an unsigned one stays one.
        bool down = std::string_view(op) == "Q7_GetDSDRegionSizeByID" && amount % 2 != 0;
        control::SkewOutput(op, 0, down ? -double(amount / 2 % 50 + 1) : double(amount % 200 + 1));
        break;
    }
    case kKinds:
        break;
    }
}

std::vector<uint8_t> Stores()
{
    q7sim::Device *device = control::OpenDevice();
    return device != nullptr ? DsdStoresOf(*device) : std::vector<uint8_t>();
}

// What one session has seen so far; the input stream and the device-call hook
// both report here.
struct Run {
    FaultChoice choice{};
    const uint8_t *input = nullptr;
    size_t inputSize = 0;
    size_t inputRead = 0;
    bool inputEnded = false;
    char *printed = nullptr;  // the output, as open_memstream publishes it
    size_t printedSize = 0;
    // The output's length when each input byte was read: which question a
    // byte answered.
    std::vector<size_t> printedAtByte;
    unsigned calls = 0;
    unsigned callsOfOperation = 0;
    bool faulted = false;
    size_t lastMenuRead = 0;
    // The command that writes the DSD: its output from the menu read that
    // chose it, and the stores before its first write.
    struct WriteCommand {
        size_t start;
        std::vector<uint8_t> original;
    };
    std::optional<WriteCommand> command;
    // Where the output stood at a read that failed.
    std::optional<size_t> failedReadAt;
    std::string finding;

    size_t Printed()
    {
        std::fflush(stdout);
        return printedSize;
    }
    std::string_view Output(size_t from, size_t to) const { return std::string_view(printed + from, to - from); }

    // The answer to the last restore question of [start, end): the first word
    // read while that question was the last thing printed. The program asks
    // again after anything that is not a number, so an answer it went on with
    // asks for a restore when it has a digit other than 0.
    bool RestoreAsked(size_t start, size_t end) const
    {
        std::string_view said = Output(start, end);
        size_t at = said.rfind(kRestorePrompt);
        if (at == std::string_view::npos)
            return false;
        at += sizeof kRestorePrompt - 1;
        std::string_view after = said.substr(at);
        if (after.rfind("\nNot a number.", 0) == 0 || after.rfind("\nOut of range.", 0) == 0)
            return false;  // refused, and the session ended before another answer
        std::string word;
        for (size_t i = 0; i < printedAtByte.size(); i++) {
            if (printedAtByte[i] != start + at)
                continue;
            bool blank = std::isspace(input[i]) != 0;
            if (blank && !word.empty())
                break;
            if (!blank)
                word += static_cast<char>(input[i]);
        }
        return word.find_first_of("123456789") != std::string::npos;
    }

    void EndWriteCommand(size_t end)
    {
        if (!command)
            return;
        const std::vector<uint8_t> after = Stores();
        const std::string output(Output(command->start, end));
        std::string violation =
            StoreSafetyViolation({command->original, after, nullptr, output, RestoreAsked(command->start, end)});
        if (!violation.empty())
            finding += "a DSD write: " + violation + "\n";
        command.reset();
    }

    // From a read that failed to the next read, nothing may pass.
    void JudgeVerdicts(size_t end)
    {
        std::string_view said = Output(*failedReadAt, end);
        if (said.find("PASS\n") != std::string_view::npos ||
            said.find("\n0" TEXT_VERIFY_ERRORS) != std::string_view::npos)
            finding += "a verdict passed on a read that failed\n";
        failedReadAt.reset();
    }

    void OnCall(const std::string &operation)
    {
        calls++;
        if (choice.stop != 0 && calls == choice.stopCall) {
            faulted = true;
            if (choice.stop < 0)
                inputEnded = true;
            else
                raise(choice.stop);
        }
        if (IsDsdWrite(operation) && !command)
            command = WriteCommand{lastMenuRead, Stores()};
        if (failedReadAt && IsRead(operation))
            JudgeVerdicts(Printed());
        bool chosen = choice.operation == kAnyOperation ? OneOf(operation, kOperations) : operation == choice.operation;
        if (chosen && ++callsOfOperation == choice.call) {
            faulted = true;
            Kind kind = KindFor(choice.kind, operation);
            ArmFault(kind, choice.amount, operation.c_str());
            // Only a failed read is watched: a flipped bit is no sure wrong value
            // (a read of no bytes has none to flip).
            if (kind == kFail && IsRead(operation))
                failedReadAt = Printed();
        }
    }
};

// The program reads its input one byte at a time from here, so each byte is
// known to answer what was printed before it.
ssize_t ReadInput(void *cookie, char *buffer, size_t size)
{
    Run &run = *static_cast<Run *>(cookie);
    size_t printed = run.Printed();
    std::string_view said = run.Output(0, printed);
    if (said.size() >= sizeof TEXT_MENU_PROMPT - 1 &&
        said.substr(said.size() - (sizeof TEXT_MENU_PROMPT - 1)) == TEXT_MENU_PROMPT) {
        run.EndWriteCommand(printed);
        run.lastMenuRead = printed;
    }
    if (run.inputEnded || run.inputRead == run.inputSize || size == 0)
        return 0;
    buffer[0] = static_cast<char>(run.input[run.inputRead++]);
    run.printedAtByte.push_back(printed);
    return 1;
}

// The program's stop-signal handlers while a session runs, as its main puts
// them in place; the caller's back afterwards, and a stop signal that the
// input did not plant passed on to them (a fuzzer stopped from outside).
class ProgramSignals {
public:
    explicit ProgramSignals(int planted) : planted_(planted)
    {
        static struct sigaction s_program[std::size(kStopSignals)];
        static bool s_known = false;
        for (size_t i = 0; i < std::size(kStopSignals); i++)
            sigaction(kStopSignals[i], nullptr, &saved_[i]);
        if (!s_known) {
            CatchStopSignals();  // also, once, its own stdout stream: before any capture
            for (size_t i = 0; i < std::size(kStopSignals); i++)
                sigaction(kStopSignals[i], nullptr, &s_program[i]);
            s_known = true;
        }
        for (size_t i = 0; i < std::size(kStopSignals); i++)
            sigaction(kStopSignals[i], &s_program[i], nullptr);
    }
    ~ProgramSignals()
    {
        for (size_t i = 0; i < std::size(kStopSignals); i++)
            sigaction(kStopSignals[i], &saved_[i], nullptr);
        if (StopSignal() != 0 && StopSignal() != planted_)
            raise(StopSignal());
    }
    ProgramSignals(const ProgramSignals &) = delete;
    ProgramSignals &operator=(const ProgramSignals &) = delete;

private:
    int planted_;
    struct sigaction saved_[std::size(kStopSignals)];
};

// Instead of the wall clock: the sleep accuracy test reads it a million times.
double CountingClockMs(void)
{
    static double s_dNowMs = 0.0;
    return s_dNowMs += 0.001;
}

void NoSleep(uint32_t) {}

}  // namespace

FaultedSession RunFaultedSession(const uint8_t *data, size_t size)
{
    Run run;
    size_t header = ParseFaultLine(data, size, &run.choice);
    run.input = data + header;
    run.inputSize = size - header;

    ProgramSignals signals(run.choice.stop);
    const SleepFunction savedSleep = gs_pfnSleepMs;
    const ClockFunction savedClock = gs_pfnClockMs;
    gs_pfnSleepMs = NoSleep;
    gs_pfnClockMs = CountingClockMs;
    control::Reset();
    control::OnEveryCall([&run](const std::string &operation) { run.OnCall(operation); });
    std::srand(1);
    u32DeviceModeStackPointer = 0;  // as at program start

    cookie_io_functions_t functions{ReadInput, nullptr, nullptr, nullptr};
    FILE *input = fopencookie(&run, "r", functions);
    FILE *output = open_memstream(&run.printed, &run.printedSize);
    if (input == nullptr || output == nullptr)
        std::abort();
    std::fflush(stdout);
    FILE *savedIn = stdin;
    FILE *savedOut = stdout;
    stdin = input;
    stdout = output;
    ResetInputState();

    CalInterfaceHandle hCal = SelectInterface(&gs_u32InterfaceType);
    RunMenu(hCal);
    run.EndWriteCommand(run.Printed());
    if (run.failedReadAt)
        run.JudgeVerdicts(run.Printed());
    CloseApplication(hCal);

    std::fflush(stdout);
    stdin = savedIn;
    stdout = savedOut;
    control::Reset();  // the hook refers to this run
    gs_pfnSleepMs = savedSleep;
    gs_pfnClockMs = savedClock;
    std::fclose(input);
    std::fclose(output);

    FaultedSession session;
    session.faulted = run.faulted;
    session.finding = run.finding;
    session.output.assign(run.printed, run.printedSize);
    std::free(run.printed);
    return session;
}
