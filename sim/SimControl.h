// Test-only control of the simulated device. The program never includes this
// header: it reaches the device through the Cal API alone.
#ifndef Q7SIM_SIMCONTROL_H
#define Q7SIM_SIMCONTROL_H

#include <string>
#include <vector>

namespace q7sim {

class Device;

namespace control {

// Closes the interface, clears every fault and the call log: the next
// Q7_GetCalInterface opens a factory-fresh device.
void Reset();
// The next `count` calls of `operation` (e.g. "Q7_SetBandConfig") fail with
// `text`, once `skip` calls of it have gone through.
// "Q7_GetCalInterface" fails by returning a null handle.
void FailNext(const char *operation, unsigned count, const char *text, unsigned skip = 0);
// Logs, from now until Reset, the Q7_ name of every call that FailNext can
// fail, in call order.
void RecordCalls();
const std::vector<std::string> &Calls();
// Q7_ConnectDevice succeeds only from this attempt on; 0 means never.
void ConnectSucceedsAtAttempt(unsigned attempt);
// The device behind the open interface, or null; for tests of the model.
Device *OpenDevice();

}  // namespace control
}  // namespace q7sim

#endif
