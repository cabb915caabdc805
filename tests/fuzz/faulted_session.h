// One whole session of the program, from start-up to "Closing application...",
// against a factory-fresh simulated device with one device fault and one stop
// that the input chooses; judged afterwards for what a crash does not show.
//
// The input's first line chooses them, six numbers (a missing one is 0):
//     OPERATION CALL KIND AMOUNT STOP STOPCALL
//  - the CALL-th call (0 or 1: the first) of the operation that OPERATION
//    picks (modulo the table of faulted_session.cpp, whose entry 0 stands for
//    any of them) suffers the KIND picked of: fail, short, ignore, flip, lie;
//    AMOUNT is the bytes a short read or write delivers, the byte whose bit a
//    flip turns, and how much a size lies;
//  - STOP picks none, end of input, SIGINT, SIGTERM, SIGHUP or SIGQUIT, which
//    comes at the STOPCALL-th device call of the session (0 or 1: the first).
// The rest of the input is the session's standard input. Sleeps return at
// once and the clock only counts: a session takes a few milliseconds under
// the sanitizers.
//
// The judges:
//  - each command that wrote the DSD passes the store-safety judgement
//    (support/store_safety.h): the stores end as the engineer asked, or the
//    command says they did not;
//  - a verdict is a value read back: from a read that failed up to the next
//    read, no PASS line and no "0 verify errors.".
#ifndef Q7_TEST_FAULTED_SESSION_H
#define Q7_TEST_FAULTED_SESSION_H

#include <cstddef>
#include <cstdint>
#include <string>

struct FaultedSession {
    bool faulted = false;  // the fault struck or the stop came
    std::string finding;   // what the judges found; empty when nothing
    std::string output;    // what the program printed
};

FaultedSession RunFaultedSession(const uint8_t *data, size_t size);

#endif
