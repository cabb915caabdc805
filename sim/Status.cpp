#include "Status.h"

#include <cstdarg>
#include <cstdio>

namespace q7sim {

Status Status::Errorf(const char *format, ...)
{
    char text[256];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    return Status(text);
}

}  // namespace q7sim
