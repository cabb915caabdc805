#include "VersionInfo.h"

#include <algorithm>
#include <cstring>

namespace q7sim {

void VersionInfo::CopyDriverVersion(char *buffer) const
{
    std::memset(buffer, 0, kDriverTextSize);
    std::memcpy(buffer, driver_.data(), std::min<size_t>(driver_.size(), kDriverTextSize));
}

}  // namespace q7sim
