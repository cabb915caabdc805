// Runs code with standard input read from a string and standard output
// captured, as a scripted session at the console would.
#ifndef Q7_TEST_CONSOLE_CAPTURE_H
#define Q7_TEST_CONSOLE_CAPTURE_H

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "Device.h"
#include "Q7CalAPI.h"
#include "store_safety.h"

// What `body` printed while reading `input` (a fresh input stream: the
// console's end-of-input state is reset first).
std::string RunWithInput(const std::string &input, const std::function<void()> &body);

struct HandlerRun {
    int result;
    std::string output;
};

// Calls the handler with the handle, answering its prompts from `input`.
HandlerRun RunHandler(int (*handler)(CalInterfaceHandle), CalInterfaceHandle hCal, const std::string &input = "");

// A factory-fresh simulated device, opened and connected; reset afterwards.
class SimulatedDeviceTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
    // The device behind hCal, for forcing values and checking its state.
    q7sim::Device &device();
    // Every DSD store of the device: the three NVM sections, then the DSD buffer.
    std::vector<uint8_t> DsdStores();
    // What Q7_ReadDSDBytes reads at the address (the read must succeed).
    std::vector<uint8_t> ReadDsd(uint32_t address, uint32_t count);
    // Q7_AreDSDChecksumsValid's verdict on each of the 12 blocks.
    std::vector<uint8_t> BlockValidity();

    CalInterfaceHandle hCal = nullptr;
};

// The logged calls (q7sim::control::RecordCalls) of the named operations, in
// call order, each with its value arguments.
using LoggedCall = std::pair<std::string, std::vector<double>>;
std::vector<LoggedCall> LoggedCallsOf(const std::vector<std::string> &operations);

// The program's stop-signal handlers, installed even where the test runner
// ignores a signal; and the default actions back.
void CatchStopSignalsInTest();
void ReleaseStopSignals();

// A Cal API status as text: "(success)" for success.
std::string Text(ApiStatus status);
bool Contains(const std::string &text, const std::string &part);
bool EndsWith(const std::string &text, const std::string &tail);
// How often `what` occurs in `text`, overlaps included.
size_t Count(const std::string &text, const std::string &what);

#endif
