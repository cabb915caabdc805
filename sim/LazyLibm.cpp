// The device models need the C math library, the first screen does not. Loaded
// with the simulated device, libm alone adds about 600 KB to the program's
// resident size at start (its relocations touch pages all over it), a third of
// the whole. These forwarders, private to this library and also reached from
// the standard random distributions, load libm on the first call instead: the
// results are libm's own.
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace {

void *Libm()
{
    static void *const handle = [] {
        void *opened = dlopen("libm.so.6", RTLD_NOW | RTLD_LOCAL);
        if (opened == nullptr) {
            std::fprintf(stderr, "Simulated device: cannot load the math library: %s\n", dlerror());
            std::abort();
        }
        return opened;
    }();
    return handle;
}

template <typename Function>
Function Resolve(const char *name)
{
    void *symbol = dlsym(Libm(), name);
    if (symbol == nullptr) {
        std::fprintf(stderr, "Simulated device: the math library has no %s\n", name);
        std::abort();
    }
    return reinterpret_cast<Function>(symbol);
}

}  // namespace

// Hidden: they serve this library's own calls and interpose nothing else. (The
// file is compiled with -fno-builtin, or the compiler's own declarations of
// these names would keep their default visibility.)
#define Q7SIM_HIDDEN __attribute__((visibility("hidden")))

#define Q7SIM_LAZY_LIBM(Result, name, Argument)                                      \
    extern "C" Q7SIM_HIDDEN Result name(Argument x)                                 \
    {                                                                              \
        static Result (*const function)(Argument) = Resolve<Result (*)(Argument)>(#name); \
        return function(x);                                                        \
    }

Q7SIM_LAZY_LIBM(double, exp, double)
Q7SIM_LAZY_LIBM(double, log, double)
Q7SIM_LAZY_LIBM(double, log10, double)
Q7SIM_LAZY_LIBM(double, sin, double)
Q7SIM_LAZY_LIBM(double, sqrt, double)
Q7SIM_LAZY_LIBM(double, round, double)
Q7SIM_LAZY_LIBM(long, lround, double)
Q7SIM_LAZY_LIBM(double, lgamma, double)

extern "C" Q7SIM_HIDDEN double pow(double x, double y)
{
    static double (*const function)(double, double) = Resolve<double (*)(double, double)>("pow");
    return function(x, y);
}
