#include <algorithm>
#include <cstring>

#include "vfile/LineEnds.h"
#include "vfile/VFile.h"
#include "vmem/VMem.h"

using vfile::kCr;
using vfile::kLf;

namespace {

/// Calls a reader of bytes for another 8-bit type.
template <typename Char, typename Reader>
auto ReadAs(Char& ch, Reader reader) {
  return reader(reinterpret_cast<unsigned char&>(ch));
}

}  // namespace

// ---- Hot paths: a byte of a block that is in the buffer ----

void VFile::ReadByte(unsigned char& byte) {
  if (cur.ix >= cur.ptr->len && !StepForward()) [[unlikely]] {
    byte = 0;
    eof = true;
    return;
  }
  if (LoadBuf()) [[likely]] {
    byte = buf[cur.ix];
  } else if (!CopyUnbuffered(cur.ix, &byte, 1)) {
    byte = 0;
    eof = true;
    return;
  }
  Skip(1);
}

void VFile::ReadPrevByte(unsigned char& byte) {
  if (cur.ix < 1 && !StepBackward()) [[unlikely]] {
    byte = 0;
    eof = true;
    return;
  }
  if (LoadBuf()) [[likely]] {
    byte = buf[cur.ix - 1];
  } else if (!CopyUnbuffered(cur.ix - 1, &byte, 1)) {
    byte = 0;
    eof = true;
    return;
  }
  Skip(-1);
}

/// `ReadBytes` of a value, which mostly lies in the buffer.
template <typename Value>
void VFile::ReadValue(Value& value) {
  constexpr std::int32_t kWidth = sizeof value;
  if (bufValid && cur.ptr->len - cur.ix >= kWidth) [[likely]] {
    std::memcpy(&value, buf + cur.ix, sizeof value);
    Skip(kWidth);
  } else {
    ReadBytes(&value, kWidth);
  }
}

std::int32_t VFile::ReadBytes(void* buffer, std::int32_t count) {
  if (count < 0 || (buffer == nullptr && count > 0)) {
    res = resCallError;
    return 0;
  }
  auto* target = static_cast<unsigned char*>(buffer);
  std::int32_t got = 0;
  while (got < count) {
    if (!StepForward()) {
      eof = true;
      return got;
    }
    const std::int32_t n = std::min(cur.ptr->len - cur.ix, count - got);
    if (bufValid) {
      std::memcpy(target + got, buf + cur.ix, static_cast<std::size_t>(n));
    } else if (!vm->GetBlock(cur.ptr->addr + cur.ix, target + got, n)) {
      Refuse();
      eof = true;
      return got;
    }
    got += n;
    Skip(n);
  }
  eof = false;
  return got;
}

// ---- Typed ----

void VFile::ReadChar(signed char& ch) {
  ReadAs(ch, [this](unsigned char& byte) { ReadByte(byte); });
}
void VFile::ReadChar(char& ch) {
  ReadAs(ch, [this](unsigned char& byte) { ReadByte(byte); });
}
void VFile::ReadChar(unsigned char& ch) { ReadByte(ch); }
void VFile::ReadPrevChar(signed char& ch) {
  ReadAs(ch, [this](unsigned char& byte) { ReadPrevByte(byte); });
}
void VFile::ReadPrevChar(char& ch) {
  ReadAs(ch, [this](unsigned char& byte) { ReadPrevByte(byte); });
}
void VFile::ReadPrevChar(unsigned char& ch) { ReadPrevByte(ch); }

void VFile::ReadWord(short& value) { ReadValue(value); }
void VFile::ReadWord(unsigned short& value) { ReadValue(value); }
void VFile::ReadDWord(int& value) { ReadValue(value); }
void VFile::ReadDWord(unsigned int& value) { ReadValue(value); }
void VFile::ReadQWord(long long& value) { ReadValue(value); }
void VFile::ReadQWord(unsigned long long& value) { ReadValue(value); }
#if LONG_MAX > INT_MAX
void VFile::ReadQWord(long& value) { ReadValue(value); }
void VFile::ReadQWord(unsigned long& value) { ReadValue(value); }
#else
void VFile::ReadDWord(long& value) { ReadValue(value); }
void VFile::ReadDWord(unsigned long& value) { ReadValue(value); }
#endif

// ---- Text ----

/// Consumes the LF of a CR LF whose CR has been read; gives whether there was one.
bool VFile::SkipLf() {
  const std::int32_t behindCr = pos;
  const std::int32_t standing = res;
  unsigned char byte;
  res = resDone;
  ReadByte(byte);
  if (res != resDone) return false;
  if (byte == kLf && !eof) {
    res = standing;
    return true;
  }
  SetPos(behindCr);
  return false;
}

std::int32_t VFile::Read(unsigned char& ch) {
  ReadByte(ch);
  if (eof) return 0;
  if (ch != kCr) return 1;
  ch = kLf;
  return SkipLf() ? 2 : 1;
}

std::int32_t VFile::Read(signed char& ch) {
  return ReadAs(ch, [this](unsigned char& byte) { return Read(byte); });
}

std::int32_t VFile::Read(char& ch) {
  return ReadAs(ch, [this](unsigned char& byte) { return Read(byte); });
}

std::int32_t VFile::ReadTxt(char* buffer, std::int32_t size, std::int32_t position, std::int32_t count) {
  if (buffer == nullptr || size <= 0 || position < 0 || count < 0) {
    res = resCallError;
    return 0;
  }
  position = std::min(position, length);
  count = std::min(count, length - position);
  SetPos(position);
  const std::int32_t got = ReadBytes(buffer, std::min(count, size - 1));
  buffer[got] = '\0';
  return got;
}

std::int32_t VFile::ReadLine(char* buffer, std::int32_t size) {
  if (buffer == nullptr || size < 1) {
    res = resCallError;
    return 0;
  }
  std::int32_t stored = 0;
  RunBuffer spare;
  for (;;) {
    const Run run = RunForward(spare);
    if (run.count == 0) {
      eof = true;
      break;
    }
    const std::int32_t n = vfile::FindEol(run.bytes, run.count);
    const std::int32_t part = std::min(n, size - 1 - stored);
    std::memcpy(buffer + stored, run.bytes, static_cast<std::size_t>(part));
    stored += part;
    Skip(n);
    if (n == run.count) continue;
    const bool isCr = run.bytes[n] == kCr;
    Skip(1);
    if (isCr) SkipLf();
    break;
  }
  buffer[stored] = '\0';
  return stored;
}
