#include <bit>

#include "host/win32/Windows.h"

namespace host {

std::uint32_t GetTickCount() { return ::GetTickCount(); }

void GetLocalTime(SYSTEMTIME* time) {
  ::SYSTEMTIME now;
  ::GetLocalTime(&now);
  *time = std::bit_cast<SYSTEMTIME>(now);
}

bool SetLocalTime(const SYSTEMTIME* time) {
  const auto wanted = std::bit_cast<::SYSTEMTIME>(*time);
  return ::SetLocalTime(&wanted) != FALSE;
}

}  // namespace host
