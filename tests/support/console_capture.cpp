#include "console_capture.h"

#include <signal.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "SimControl.h"
#include "console.h"

std::string RunWithInput(const std::string &input, const std::function<void()> &body)
{
    std::fflush(stdout);
    FILE *in = std::tmpfile();
    char *captured = nullptr;
    size_t capturedSize = 0;
    FILE *out = open_memstream(&captured, &capturedSize);
    if (in == nullptr || out == nullptr) {
        ADD_FAILURE() << "cannot redirect the console";
        return "";
    }
    std::fwrite(input.data(), 1, input.size(), in);
    std::rewind(in);

    FILE *savedIn = stdin;
    FILE *savedOut = stdout;
    stdin = in;
    stdout = out;
    ResetInputState();
    body();
    std::fflush(out);
    stdin = savedIn;
    stdout = savedOut;

    std::fclose(in);
    std::fclose(out);
    std::string output(captured, capturedSize);
    std::free(captured);
    return output;
}

HandlerRun RunHandler(int (*handler)(CalInterfaceHandle), CalInterfaceHandle hCal, const std::string &input)
{
    HandlerRun run{0, ""};
    run.output = RunWithInput(input, [&] { run.result = handler(hCal); });
    return run;
}

void SimulatedDeviceTest::SetUp()
{
    q7sim::control::Reset();
    char buffer[128];
    hCal = Q7_GetCalInterface(Q7_INTERFACE_LOCAL, buffer, nullptr);
    ASSERT_NE(hCal, nullptr);
    ASSERT_EQ(Q7_ConnectDevice(hCal), nullptr);
}

void SimulatedDeviceTest::TearDown() { q7sim::control::Reset(); }

q7sim::Device &SimulatedDeviceTest::device() { return *q7sim::control::OpenDevice(); }

std::vector<LoggedCall> LoggedCallsOf(const std::vector<std::string> &operations)
{
    const std::vector<std::string> &calls = q7sim::control::Calls();
    std::vector<LoggedCall> chosen;
    for (size_t i = 0; i < calls.size(); i++)
        if (std::find(operations.begin(), operations.end(), calls[i]) != operations.end())
            chosen.emplace_back(calls[i], q7sim::control::ArgumentsOfCalls()[i]);
    return chosen;
}

std::vector<uint8_t> SimulatedDeviceTest::DsdStores() { return DsdStoresOf(device()); }

std::vector<uint8_t> SimulatedDeviceTest::ReadDsd(uint32_t address, uint32_t count)
{
    std::vector<uint8_t> bytes(count);
    EXPECT_EQ(Text(Q7_ReadDSDBytes(hCal, bytes.data(), count, address)), "(success)");
    return bytes;
}

std::vector<uint8_t> SimulatedDeviceTest::BlockValidity()
{
    std::vector<uint8_t> valid(Q7_DSD_MAX_BLOCKS, 0xEE);
    uint32_t count = 0;
    EXPECT_EQ(Q7_AreDSDChecksumsValid(hCal, valid.data(), &count), nullptr);
    EXPECT_EQ(count, 12u);
    return valid;
}

void CatchStopSignalsInTest()
{
    ReleaseStopSignals();
    CatchStopSignals();
}

void ReleaseStopSignals()
{
    for (int sig : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
        signal(sig, SIG_DFL);
}

std::string Text(ApiStatus status) { return status != nullptr ? status : "(success)"; }

bool Contains(const std::string &text, const std::string &part) { return text.find(part) != std::string::npos; }

bool EndsWith(const std::string &text, const std::string &tail)
{
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

size_t Count(const std::string &text, const std::string &what)
{
    size_t count = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        count++;
    return count;
}
