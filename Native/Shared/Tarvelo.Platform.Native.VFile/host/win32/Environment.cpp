#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "host/win32/Windows.h"

namespace host {

int _wgetenv_s(std::size_t* required, TChar* buffer, std::size_t size, const TChar* name) {
  *required = 0;
  const int error = ::_wgetenv_s(required, buffer, size, win32::NameOf(name));
  // A variable that is not set is no failure.
  return *required == 0 ? 0 : error;
}

std::size_t GetLastResortTempDirectory(TChar* buffer, std::size_t size) {
  static constexpr TChar kRoot[] = L"C:\\";
  if (size < std::size(kRoot)) return 0;
  std::copy(std::begin(kRoot), std::end(kRoot), buffer);
  return std::size(kRoot) - 1;
}

}  // namespace host
