// Test-only control of the simulated device. The program never includes this
// header: it reaches the device through the Cal API alone.
#ifndef Q7SIM_SIMCONTROL_H
#define Q7SIM_SIMCONTROL_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace q7sim {

class Device;

namespace control {

// Closes the interface, clears every fault and the call log: the next
// Q7_GetCalInterface opens a factory-fresh device.
void Reset();
// The next `count` calls of `operation` (e.g. "Q7_SetBandConfig") fail with `text`.
// "Q7_GetCalInterface" fails by returning a null handle.
void FailNext(const char *operation, unsigned count, const char *text);
// Only the `nthCall`-th call of `operation` (1 = the next) fails with `text`,
// e.g. the second Q7_WriteDSDBytes of a block write: the restoring write.
void FailCall(const char *operation, unsigned nthCall, const char *text);
// Q7_RequestDSDWriteKey refuses the next `count` requests: it answers key 0.
void RefuseWriteKeys(unsigned count);
// The `nthCall`-th Q7_RequestDSDWriteKey (1 = the next) answers a nonzero key
// that the device never issued, and so refuses to write with.
void ForgeWriteKey(unsigned nthCall);

// DSD data faults, each on the `nthCall`-th call (1 = the next) of a read
// ("Q7_ReadDSDBytes", "Q7_ReadDSDRegionByID") or a write ("Q7_WriteDSDBytes",
// "Q7_WriteFlash2xBytesWithHeader", "Q7_WriteDSDRegionByID") that reaches the
// connected device; the call itself succeeds.
// The read hands back `mask` flipped in byte `byteIndex` (modulo the count
// read); the DSD keeps its contents.
void FlipBitOnRead(const char *operation, unsigned nthCall, uint32_t byteIndex, uint8_t mask);
// The read delivers only its first `bytes` bytes (the rest of the caller's
// buffer keeps what it held); a region read reports at most that many.
void ShortRead(const char *operation, unsigned nthCall, uint32_t bytes);
// The write reports success and its full count but changes nothing.
void IgnoreWrite(const char *operation, unsigned nthCall);
// The write stops after `changedBytes` changed bytes, in address order, and
// reports at most that many bytes written.
void StopWriteAfter(const char *operation, unsigned nthCall, uint32_t changedBytes);
// The write changes its first `changedBytes` changed bytes, in address order,
// then fails with "NVM write failed after N bytes".
void FailWriteAfter(const char *operation, unsigned nthCall, uint32_t changedBytes);
// `hook` is called with the Q7_ name of every call, before the call acts,
// until Reset: for a test that acts at the moment of a call (a signal, say).
void OnEveryCall(std::function<void(const std::string &operation)> hook);
// Logs, from now until Reset, the Q7_ name of every call that FailNext and
// FailCall can fail, in call order, and its arguments.
void RecordCalls();
const std::vector<std::string> &Calls();
// The value arguments of each call in Calls(), at the same index, in the
// order the Cal API declares them; the handle, out-pointers and buffers are
// left out: {bank, register, timing} for Q7_ReadRFICRegister.
const std::vector<std::vector<double>> &ArgumentsOfCalls();
// Q7_ConnectDevice succeeds only from this attempt on; 0 means never.
void ConnectSucceedsAtAttempt(unsigned attempt);
// ---- Read-back faults: a device whose settings do not read back as written ----
// The next `count` calls of `operation` (e.g. "Q7_SetBandConfig") answer
// success and change nothing: a setting the device silently ignores.
void IgnoreNext(const char *operation, unsigned count);
// `operation` reports its out-value number `output` (0 = its first
// out-pointer) with `offset` added, until Reset: a read-back that is off.
// Taken by Q7_GetBandConfig, Q7_GetRxGainState, Q7_GetTxAttn,
// Q7_GetTxOutputPower, Q7_GetTxDiversitySwitch, Q7_GetDSDRegionSizeByID and
// Q7_GetOptionByID; an offset must keep an unsigned value at 0 or above.
void SkewOutput(const char *operation, unsigned output, double offset);
// GPIO `pin` reads as `level` (0 or 1) whatever drives it, until Reset.
void StickGpioPin(unsigned pin, unsigned level);
// ---- end of read-back faults ----

// The device behind the open interface, or null; for tests of the model.
Device *OpenDevice();

}  // namespace control
}  // namespace q7sim

#endif
