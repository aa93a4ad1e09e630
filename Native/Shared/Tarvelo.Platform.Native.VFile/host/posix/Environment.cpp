#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "host/posix/PosixNames.h"

namespace host {
namespace {

/// A value of the environment as units with terminator. `required` is the size it takes.
int CopyValue(const char* value, TChar* buffer, std::size_t size, std::size_t& required) {
  required = 0;
  if (value != nullptr) {
    const std::size_t length = std::strlen(value);
    required = UnitsFromBytes(buffer, size, value, length, Backslash::kSeparates) + 1;
  }
  if (size == 0) return required == 0 ? 0 : ERANGE;
  const bool fits = required <= size;
  buffer[fits && required > 0 ? required - 1 : 0] = 0;
  return fits ? 0 : ERANGE;
}

}  // namespace

int _wgetenv_s(std::size_t* required, TChar* buffer, std::size_t size, const TChar* name) {
  const posix::NativeName native(name);
  return CopyValue(native.Error() == 0 ? std::getenv(native.Text()) : nullptr, buffer, size, *required);
}

std::size_t GetLastResortTempDirectory(TChar* buffer, std::size_t size) {
  std::size_t required = 0;
  const bool fromEnvironment = CopyValue(std::getenv("TMPDIR"), buffer, size, required) == 0 && required > 1;
  const std::uint32_t attributes = fromEnvironment ? GetFileAttributesW(buffer) : INVALID_FILE_ATTRIBUTES;
  const bool directory = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  if (directory && _waccess(buffer, 6) == 0) return required - 1;
  // Disk, where "/tmp" may be memory.
  return CopyValue("/var/tmp/", buffer, size, required) == 0 ? required - 1 : 0;
}

}  // namespace host
