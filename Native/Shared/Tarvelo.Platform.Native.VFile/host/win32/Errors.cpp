#include "host/win32/Windows.h"

namespace host {

std::uint32_t GetLastError() { return ::GetLastError(); }

void SetLastError(std::uint32_t error) { ::SetLastError(error); }

}  // namespace host
