// A draft is a file beside the one that it is for, "~save<number>-<number>.tmp". The file that it replaces is open until then, so that nobody
// else opens it; `ReplaceFileW` keeps its attributes, access list and streams. A process that is ended leaves the other name. A link
// that leads nowhere is ERROR_FILE_NOT_FOUND.

#include <cwchar>
#include <new>
#include <utility>

#include "host/win32/Windows.h"

namespace host {
namespace {

constexpr std::size_t kMostOfName = 32768;

/// An open file that is closed again.
class Opened {
 public:
  explicit Opened(HANDLE handle) : handle_(handle) {}
  ~Opened() { Close(); }
  Opened(const Opened&) = delete;
  Opened& operator=(const Opened&) = delete;

  bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE Get() const { return handle_; }
  void Take(HANDLE handle) { handle_ = handle; }
  HANDLE Release() { return std::exchange(handle_, INVALID_HANDLE_VALUE); }
  bool Close() { return !IsOpen() || ::CloseHandle(Release()); }

 private:
  HANDLE handle_;
};

HANDLE Open(const wchar_t* name, DWORD share, DWORD disposition) {
  return ::CreateFileW(name, GENERIC_WRITE, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

bool Fail(DWORD error) {
  ::SetLastError(error);
  return false;
}

/// Whether a call that gives the units which it wrote, and more than there is room for where they did not fit, succeeded.
bool Fits(DWORD count) { return count > 0 && (count < kMostOfName || Fail(ERROR_FILENAME_EXCED_RANGE)); }

}  // namespace

class Draft::State {
 public:
  explicit State(bool overwrite) : overwrite_(overwrite) {}
  ~State() {
    file_.Close();
    if (hasName_) ::DeleteFileW(temporary_);
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  HANDLE File() const { return file_.Get(); }
  bool Begin(const wchar_t* name);
  bool Complete(bool onDisk);

 private:
  bool Find(const wchar_t* name);
  bool FindOver(const wchar_t* name);
  bool Make();
  bool GiveName(bool onDisk);

  const bool overwrite_;
  bool replaces_ = false;
  bool inPlace_ = false;
  Opened old_{INVALID_HANDLE_VALUE};
  Opened file_{INVALID_HANDLE_VALUE};
  wchar_t target_[kMostOfName];     // in full
  wchar_t temporary_[kMostOfName];  // what the file is called
  bool hasName_ = false;            // whether it is
};

bool Draft::State::Begin(const wchar_t* name) {
  if (!(overwrite_ ? FindOver(name) : Find(name))) return false;
  return inPlace_ || Make();
}

/// Finds what a name in full is for a file that is not there. Its last step has to be one of a file.
bool Draft::State::Find(const wchar_t* name) {
  const DWORD attributes = ::GetFileAttributesW(name);
  if (attributes != INVALID_FILE_ATTRIBUTES) return Fail(overwrite_ ? ERROR_FILE_NOT_FOUND : ERROR_FILE_EXISTS);
  if (::GetLastError() != ERROR_FILE_NOT_FOUND) return false;
  if (!Fits(::GetFullPathNameW(name, kMostOfName, target_, nullptr))) return false;
  const std::size_t length = std::wcslen(target_);
  return target_[length - 1] != L'\\' || Fail(ERROR_INVALID_NAME);
}

/// Opens what is there, or finds where nothing is.
bool Draft::State::FindOver(const wchar_t* name) {
  old_.Take(Open(name, 0, OPEN_EXISTING));
  if (!old_.IsOpen()) return ::GetLastError() == ERROR_FILE_NOT_FOUND && Find(name);
  if (::GetFileType(old_.Get()) != FILE_TYPE_DISK) {
    file_.Take(old_.Release());
    inPlace_ = true;
    return true;
  }
  replaces_ = true;
  // A link has another name at its end; other names need not be asked for, which not every volume can answer.
  const DWORD attributes = ::GetFileAttributesW(name);
  const bool isLink = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  return Fits(isLink ? ::GetFinalPathNameByHandleW(old_.Get(), target_, kMostOfName, 0)
                     : ::GetFullPathNameW(name, kMostOfName, target_, nullptr));
}

/// Makes the file in the directory of the target.
bool Draft::State::Make() {
  const wchar_t* last = std::wcsrchr(target_, L'\\');
  const std::size_t start = last == nullptr ? 0 : static_cast<std::size_t>(last + 1 - target_);
  std::wmemcpy(temporary_, target_, start);
  for (unsigned i = 0; i < 1000; ++i) {
    const int length = std::swprintf(temporary_ + start, kMostOfName - start, L"~save%lu-%u.tmp",
                                     static_cast<unsigned long>(::GetCurrentThreadId()), i);
    if (length < 0) return Fail(ERROR_FILENAME_EXCED_RANGE);
    file_.Take(Open(temporary_, 0, CREATE_NEW));
    hasName_ = file_.IsOpen();
    if (hasName_ || ::GetLastError() != ERROR_FILE_EXISTS) return hasName_;
  }
  return false;
}

bool Draft::State::Complete(bool onDisk) {
  if (onDisk && !::FlushFileBuffers(file_.Get())) return inPlace_ && ::GetLastError() == ERROR_INVALID_FUNCTION;
  if (inPlace_) return true;
  if (!file_.Close() || !GiveName(onDisk)) return false;
  hasName_ = false;
  if (!onDisk || !replaces_) return true;
  // The system has no such wish for what replaces a file; to flush that writes its name as well.
  const Opened named(Open(target_, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, OPEN_EXISTING));
  return named.IsOpen() && ::FlushFileBuffers(named.Get());
}

bool Draft::State::GiveName(bool onDisk) {
  const DWORD flags = onDisk ? MOVEFILE_WRITE_THROUGH : 0;
  if (!replaces_) {
    if (::MoveFileExW(temporary_, target_, flags)) return true;
    const bool taken = ::GetLastError() == ERROR_ALREADY_EXISTS;
    return taken && Fail(overwrite_ ? ERROR_SHARING_VIOLATION : ERROR_FILE_EXISTS);
  }
  old_.Close();
  if (::ReplaceFileW(target_, temporary_, nullptr, 0, nullptr, nullptr)) return true;
  const DWORD error = ::GetLastError();
  // Somebody came in between.
  if (error == ERROR_UNABLE_TO_REMOVE_REPLACED) return Fail(ERROR_SHARING_VIOLATION);
  if (error != ERROR_UNABLE_TO_MOVE_REPLACEMENT) return false;
  // The old file is gone and nothing has its name: the draft is all there is.
  if (::MoveFileExW(temporary_, target_, flags)) return true;
  hasName_ = false;
  return false;
}

Draft::Draft(const TChar* name, bool overwrite) : state_(new (std::nothrow) State(overwrite)) {
  if (state_ == nullptr) {
    ::SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  } else if (!state_->Begin(win32::NameOf(name))) {
    const DWORD error = ::GetLastError();
    delete state_;
    state_ = nullptr;
    ::SetLastError(error);
  }
}

Draft::~Draft() { delete state_; }

HANDLE Draft::File() const { return state_ != nullptr ? state_->File() : INVALID_HANDLE_VALUE; }

bool Draft::Complete(bool onDisk) { return state_->Complete(onDisk); }

}  // namespace host
