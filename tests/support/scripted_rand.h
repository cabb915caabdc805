// The C library's rand as the program's code meets it in the test program,
// which is linked with --wrap=rand: the values queued here come first, then
// the generator's own.
#ifndef Q7_TEST_SCRIPTED_RAND_H
#define Q7_TEST_SCRIPTED_RAND_H

#include <vector>

// The next draws of rand, in order.
void ScriptRand(const std::vector<int> &values);

#endif
