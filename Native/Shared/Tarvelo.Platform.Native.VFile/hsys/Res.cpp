#include "hsys/Res.h"

#include <iterator>

#include "host/Host.h"
#include "hsys/ResText.h"
#include "hsys/Strings.h"

namespace {

// Indexed by code.
constexpr const TChar* kTexts[] = {
    TSTR("done"),           TSTR("not done"),          TSTR("call error"),        TSTR("context error"),
    TSTR("read-only"),      TSTR("not enough memory"), TSTR("already exists"),    TSTR("already open"),
    TSTR("illegal drive"),  TSTR("illegal path"),      TSTR("illegal name"),      TSTR("illegal file"),
    TSTR("unknown drive"),  TSTR("unknown path"),      TSTR("not found"),         TSTR("disk full"),
    TSTR("too long"),       TSTR("no permission"),     TSTR("not supported"),     TSTR("not implemented"),
    TSTR("too many files"), TSTR("device off"),        TSTR("disk parity error"), TSTR("hardware error"),
    TSTR("network error"),
};
static_assert(std::size(kTexts) == resNetworkError + 1);

struct HostError {
  std::uint32_t error;
  Res res;
};

// Complete: what is not here is resNotDone.
constexpr HostError kHostErrors[] = {
    {host::ERROR_SUCCESS, resDone},
    {host::ERROR_INVALID_FUNCTION, resCallError},
    {host::ERROR_FILE_NOT_FOUND, resNotFound},
    {host::ERROR_PATH_NOT_FOUND, resIllegalPath},
    {host::ERROR_TOO_MANY_OPEN_FILES, resTooManyFiles},
    {host::ERROR_ACCESS_DENIED, resNoPermission},
    {host::ERROR_INVALID_HANDLE, resCallError},
    {host::ERROR_NOT_ENOUGH_MEMORY, resHeapOverflow},
    {host::ERROR_INVALID_ACCESS, resNoPermission},
    {host::ERROR_OUTOFMEMORY, resHeapOverflow},
    {host::ERROR_INVALID_DRIVE, resIllegalDrive},
    {host::ERROR_WRITE_PROTECT, resReadOnly},
    {host::ERROR_BAD_UNIT, resIllegalDrive},
    {host::ERROR_CRC, resDiskParityError},
    {host::ERROR_SHARING_VIOLATION, resNoPermission},
    {host::ERROR_LOCK_VIOLATION, resNoPermission},
    {host::ERROR_SHARING_BUFFER_EXCEEDED, resTooManyFiles},
    {host::ERROR_HANDLE_DISK_FULL, resDiskFull},
    {host::ERROR_NOT_SUPPORTED, resNotSupported},
    {host::ERROR_REM_NOT_LIST, resDeviceOff},
    {host::ERROR_DUP_NAME, resIllegalName},
    {host::ERROR_BAD_NETPATH, resUnknownPath},
    {host::ERROR_NETWORK_BUSY, resNetworkError},
    {host::ERROR_DEV_NOT_EXIST, resDeviceOff},
    {host::ERROR_NETWORK_ACCESS_DENIED, resNoPermission},
    {host::ERROR_FILE_EXISTS, resAlreadyExists},
    {host::ERROR_INVALID_PARAMETER, resCallError},
    {host::ERROR_DISK_FULL, resDiskFull},
    {host::ERROR_CALL_NOT_IMPLEMENTED, resNotImplemented},
    {host::ERROR_INVALID_NAME, resIllegalName},
    {host::ERROR_BAD_PATHNAME, resIllegalPath},
    {host::ERROR_ALREADY_EXISTS, resAlreadyExists},
    {host::ERROR_DIRECTORY, resUnknownPath},
    {host::ERROR_FILE_INVALID, resIllegalFile},
};

}  // namespace

const TChar* hsys::ResText(std::int32_t code) {
  return code >= resDone && code <= resNetworkError ? kTexts[code] : TSTR("unknown error code");
}

void GetTextResMsg(TChar* buffer, std::uint32_t size, std::int32_t code) {
  AssignStr(buffer, size, hsys::ResText(code));
}

std::int32_t GetFileRes() {
  // The low word alone, so that a number wrapped in a larger code is known as well.
  const std::uint32_t error = host::GetLastError() & 0xFFFF;
  for (const HostError& row : kHostErrors) {
    if (row.error == error) return row.res;
  }
  return resNotDone;
}
