/// @file
/// Handles that are no files.
#pragma once

#include <string>
#include <utility>

#include "host/Host.h"

namespace support {

/// The reading end of a new pipe that holds `content`, at most a few thousand bytes, and then ends. The caller owns it.
HANDLE OpenPipe(const std::string& content);

/// The ends of a channel, for reading and for writing, in which what each write brought is read by itself. The caller owns them.
std::pair<HANDLE, HANDLE> OpenChannel();

/// A pipe that holds `content`, at most a few thousand bytes.
class Pipe {
 public:
  explicit Pipe(const std::string& content) : handle_(OpenPipe(content)) {}
  ~Pipe() { host::CloseHandle(handle_); }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  HANDLE Handle() const { return handle_; }

 private:
  const HANDLE handle_;
};

}  // namespace support
