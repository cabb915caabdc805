#include "Interface.h"

#include <memory>

namespace q7sim {

const char kInvalidHandleText[] = "Invalid Cal API interface handle";
const char kGarbledChannelText[] = "Device channel garbled by bytes that the library did not send";
const char kNotConnectedText[] = "Device not connected";

namespace {
std::unique_ptr<Q7_CalInterface> g_interface;
}

Q7_CalInterface *OpenInterface()
{
    if (!g_interface)
        g_interface = std::make_unique<Q7_CalInterface>();
    return g_interface.get();
}

void CloseInterface() { g_interface.reset(); }

Q7_CalInterface *CurrentInterface() { return g_interface.get(); }

Q7_CalInterface *FindInterface(CalInterfaceHandle handle)
{
    return handle != nullptr && handle == g_interface.get() ? handle : nullptr;
}

}  // namespace q7sim
