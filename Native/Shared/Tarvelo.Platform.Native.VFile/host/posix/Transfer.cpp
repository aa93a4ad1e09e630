// A write goes on until all is written or the system refuses; what got out before a refusal is a success with a smaller count,
// so that the next call meets the reason.

#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

#include "host/posix/Descriptor.h"

namespace host {
namespace {

using posix::ErrorFromErrno;
using posix::Fail;

/// EBADF of a transfer says either that there is no such file or that it was opened for the other direction.
std::uint32_t TransferError(int error, int descriptor) {
  if (error == EBADF && fcntl(descriptor, F_GETFL) >= 0) return ERROR_ACCESS_DENIED;
  return ErrorFromErrno(error);
}

/// Whether the file is open for writing; otherwise the last error tells why not.
bool IsWritable(int descriptor) {
  const int flags = fcntl(descriptor, F_GETFL);
  if (flags < 0) return Fail(ErrorFromErrno(errno));
  return (flags & O_ACCMODE) != O_RDONLY || Fail(ERROR_ACCESS_DENIED);
}

off_t PlaceOf(const OVERLAPPED& at) { return static_cast<off_t>(std::uint64_t{at.OffsetHigh} << 32 | at.Offset); }

bool IsRegular(int descriptor) {
  struct stat status;
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

/// Reads by `call`, which reads what is left behind the bytes read. The system gives less than it was asked for at the end of a
/// regular file, but also because one call has a bound; others give what they have. A failure behind bytes read is one, since
/// a short read that succeeds means the end.
template <typename Call>
bool Read(int descriptor, std::uint32_t count, std::uint32_t* done, Call call) {
  std::uint32_t read = 0;
  ssize_t got = 0;
  do {
    got = call(read);
    if (got > 0) read += static_cast<std::uint32_t>(got);
  } while ((got < 0 && errno == EINTR) || (got > 0 && read < count && IsRegular(descriptor)));
  *done = read;
  return got >= 0 || Fail(TransferError(errno, descriptor));
}

/// Writes by `call`, which writes what is left behind the bytes written.
template <typename Call>
bool Write(int descriptor, std::uint32_t count, std::uint32_t* done, Call call) {
  std::uint32_t written = 0;
  ssize_t put = 0;
  do {
    put = call(written);
    if (put > 0) written += static_cast<std::uint32_t>(put);
  } while (written < count && (put > 0 || (put < 0 && errno == EINTR)));
  *done = written;
  return put >= 0 || written > 0 || Fail(TransferError(errno, descriptor));
}

}  // namespace

bool ReadFile(HANDLE file, void* buffer, std::uint32_t count, std::uint32_t* done) {
  const int descriptor = DescriptorFromHandle(file);
  auto* bytes = static_cast<char*>(buffer);
  return Read(descriptor, count, done, [&](std::uint32_t got) { return read(descriptor, bytes + got, count - got); });
}

bool ReadFile(HANDLE file, void* buffer, std::uint32_t count, std::uint32_t* done, const OVERLAPPED& at) {
  const int descriptor = DescriptorFromHandle(file);
  auto* bytes = static_cast<char*>(buffer);
  return Read(descriptor, count, done, [&](std::uint32_t got) {
    return pread(descriptor, bytes + got, count - got, PlaceOf(at) + static_cast<off_t>(got));
  });
}

bool WriteFile(HANDLE file, const void* buffer, std::uint32_t count, std::uint32_t* done) {
  const int descriptor = DescriptorFromHandle(file);
  const auto* bytes = static_cast<const char*>(buffer);
  return Write(descriptor, count, done,
               [&](std::uint32_t written) { return write(descriptor, bytes + written, count - written); });
}

bool WriteFile(HANDLE file, const void* buffer, std::uint32_t count, std::uint32_t* done, const OVERLAPPED& at) {
  const int descriptor = DescriptorFromHandle(file);
  const auto* bytes = static_cast<const char*>(buffer);
  return Write(descriptor, count, done, [&](std::uint32_t written) {
    return pwrite(descriptor, bytes + written, count - written, PlaceOf(at) + static_cast<off_t>(written));
  });
}

std::uint32_t SetFilePointer(HANDLE file, std::int32_t distance, std::uint32_t origin) {
  const int descriptor = DescriptorFromHandle(file);
  const auto refuse = [](std::uint32_t error) {
    SetLastError(error);
    return INVALID_SET_FILE_POINTER;
  };
  off_t from = 0;
  struct stat status;
  switch (origin) {
    case FILE_BEGIN:
      break;
    case FILE_CURRENT:
      from = lseek(descriptor, 0, SEEK_CUR);
      if (from < 0) return refuse(ErrorFromErrno(errno));
      break;
    case FILE_END:
      if (fstat(descriptor, &status) != 0) return refuse(ErrorFromErrno(errno));
      from = status.st_size;
      break;
    default:
      return refuse(ERROR_INVALID_PARAMETER);
  }
  const off_t target = from + distance;
  if (target < 0) return refuse(ERROR_NEGATIVE_SEEK);
  if (target > std::numeric_limits<std::uint32_t>::max()) return refuse(ERROR_INVALID_PARAMETER);
  if (lseek(descriptor, target, SEEK_SET) < 0) return refuse(ErrorFromErrno(errno));
  const auto position = static_cast<std::uint32_t>(target);
  if (position == INVALID_SET_FILE_POINTER) SetLastError(ERROR_SUCCESS);
  return position;
}

std::uint32_t GetFileSize(HANDLE file) {
  struct stat status;
  if (fstat(DescriptorFromHandle(file), &status) != 0) {
    SetLastError(ErrorFromErrno(errno));
    return INVALID_FILE_SIZE;
  }
  return static_cast<std::uint32_t>(status.st_size);
}

bool GetFileSizeEx(HANDLE file, std::int64_t* size) {
  struct stat status;
  if (fstat(DescriptorFromHandle(file), &status) != 0) return Fail(ErrorFromErrno(errno));
  *size = status.st_size;
  return true;
}

std::uint32_t GetFileType(HANDLE file) {
  struct stat status;
  if (fstat(DescriptorFromHandle(file), &status) != 0) {
    SetLastError(ErrorFromErrno(errno));
    return FILE_TYPE_UNKNOWN;
  }
  return S_ISREG(status.st_mode) ? FILE_TYPE_DISK : FILE_TYPE_UNKNOWN;
}

bool SetEndOfFile(HANDLE file) {
  const int descriptor = DescriptorFromHandle(file);
  if (!IsWritable(descriptor)) return false;
  const off_t position = lseek(descriptor, 0, SEEK_CUR);
  if (position < 0) return Fail(ErrorFromErrno(errno));
  int result;
  do {
    result = ftruncate(descriptor, position);
  } while (result != 0 && errno == EINTR);
  return result == 0 || Fail(ErrorFromErrno(errno));
}

bool FlushFileBuffers(HANDLE file) {
  const int descriptor = DescriptorFromHandle(file);
  return IsWritable(descriptor) && (posix::WriteThrough(descriptor) || Fail(ErrorFromErrno(errno)));
}

}  // namespace host
