#include "scripted_rand.h"

#include <deque>

namespace {

std::deque<int> gs_script;

}  // namespace

extern "C" int __real_rand(void);

extern "C" int __wrap_rand(void)
{
    if (gs_script.empty())
        return __real_rand();
    int value = gs_script.front();
    gs_script.pop_front();
    return value;
}

void ScriptRand(const std::vector<int> &values) { gs_script.assign(values.begin(), values.end()); }
