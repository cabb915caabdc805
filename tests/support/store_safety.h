// The store-safety judgement of one DSD write command: nothing changes
// silently. The DSD write safety test applies it to seeded requests, the
// session fuzzer to every write command of its faulted sessions.
#ifndef Q7_TEST_STORE_SAFETY_H
#define Q7_TEST_STORE_SAFETY_H

#include <cstdint>
#include <string>
#include <vector>

#include "Device.h"

// Every DSD store of the device: the NVM sections, then the DSD buffer.
std::vector<uint8_t> DsdStoresOf(q7sim::Device &device);

// The output says that a store may be left changed: the WARNING, a WRITE
// ERROR of the restore, or verify errors that withheld it (a failed data
// write is no such word).
bool SaysAStoreMayBeLeftChanged(const std::string &output);

struct WriteCommandEnd {
    const std::vector<uint8_t> &original;  // the stores before the command
    const std::vector<uint8_t> &after;     // and after it
    // What the complete data write alone leaves in the stores, where it is
    // known (null where not).
    const std::vector<uint8_t> *written;
    const std::string &output;  // what the command printed
    bool restoreAsked;
};

// What is wrong with how the command ended, or "" when nothing is:
//  - a byte holds neither its original value nor the one the data write
//    puts there;
//  - a restore was asked for, the stores are not back to their original
//    contents, and the output does not say so or says the command was
//    SUCCESSFUL.
std::string StoreSafetyViolation(const WriteCommandEnd &end);

#endif
