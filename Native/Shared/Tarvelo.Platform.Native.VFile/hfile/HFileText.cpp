#include <algorithm>
#include <cstring>

#include "hfile/HFile.h"
#include "hsys/NumberText.h"

namespace {

using NumberText = hsys::NumberText<char>;

constexpr char kCr = 13;
constexpr char kLf = 10;

}  // namespace

// ---- Values ----

void HFile::ReadByte(unsigned char& value) { ReadBytes(&value, sizeof value); }
void HFile::ReadChar(signed char& ch) { ReadBytes(&ch, sizeof ch); }
void HFile::ReadChar(char& ch) { ReadBytes(&ch, sizeof ch); }
void HFile::ReadChar(unsigned char& ch) { ReadBytes(&ch, sizeof ch); }
void HFile::ReadWord(short& value) { ReadBytes(&value, sizeof value); }
void HFile::ReadWord(unsigned short& value) { ReadBytes(&value, sizeof value); }
void HFile::ReadDWord(int& value) { ReadBytes(&value, sizeof value); }
void HFile::ReadDWord(unsigned int& value) { ReadBytes(&value, sizeof value); }
void HFile::ReadQWord(long long& value) { ReadBytes(&value, sizeof value); }
void HFile::ReadQWord(unsigned long long& value) { ReadBytes(&value, sizeof value); }

void HFile::WriteByte(unsigned char value) { WriteBytes(&value, sizeof value); }
void HFile::WriteChar(signed char ch) { WriteBytes(&ch, sizeof ch); }
void HFile::WriteChar(char ch) { WriteBytes(&ch, sizeof ch); }
void HFile::WriteChar(unsigned char ch) { WriteBytes(&ch, sizeof ch); }
void HFile::WriteWord(short value) { WriteBytes(&value, sizeof value); }
void HFile::WriteWord(unsigned short value) { WriteBytes(&value, sizeof value); }
void HFile::WriteDWord(int value) { WriteBytes(&value, sizeof value); }
void HFile::WriteDWord(unsigned int value) { WriteBytes(&value, sizeof value); }
void HFile::WriteQWord(long long value) { WriteBytes(&value, sizeof value); }
void HFile::WriteQWord(unsigned long long value) { WriteBytes(&value, sizeof value); }

#if LONG_MAX > INT_MAX
void HFile::ReadQWord(long& value) { ReadBytes(&value, sizeof value); }
void HFile::ReadQWord(unsigned long& value) { ReadBytes(&value, sizeof value); }
void HFile::WriteQWord(long value) { WriteBytes(&value, sizeof value); }
void HFile::WriteQWord(unsigned long value) { WriteBytes(&value, sizeof value); }
#else
void HFile::ReadDWord(long& value) { ReadBytes(&value, sizeof value); }
void HFile::ReadDWord(unsigned long& value) { ReadBytes(&value, sizeof value); }
void HFile::WriteDWord(long value) { WriteBytes(&value, sizeof value); }
void HFile::WriteDWord(unsigned long value) { WriteBytes(&value, sizeof value); }
#endif

// ---- Text ----

void HFile::Write(signed char ch, std::int32_t count) { Write(static_cast<char>(ch), count); }
void HFile::Write(unsigned char ch, std::int32_t count) { Write(static_cast<char>(ch), count); }
void HFile::Write(const char* text) {
  const std::size_t size = std::strlen(text);
  if (size <= std::size_t{INT32_MAX}) return WriteBytes(text, static_cast<std::int32_t>(size));
  if (res == resDone) res = IsOpen() ? resTooLong : resCallError;
}
void HFile::WriteLn() { WriteBytes("\r\n", 2); }

std::int32_t HFile::ReadTxt(char* buffer, std::int32_t size, std::int32_t position, std::int32_t count) {
  if (res != resDone) return 0;
  if (buffer == nullptr || size < 1 || position < 0 || count < 0) {
    res = resCallError;
    return 0;
  }
  const std::int32_t length = Length();
  position = std::min(position, length);
  count = std::min({count, length - position, size - 1});
  SetPos(position);
  const std::int32_t got = ReadBytes(buffer, count);
  buffer[got] = '\0';
  return got;
}

std::int32_t HFile::ReadLine(char* buffer, std::int32_t size) {
  if (res != resDone) return 0;
  if (buffer == nullptr || size < 1) {
    res = resCallError;
    return 0;
  }
  std::int32_t stored = 0;
  for (;;) {
    char ch;
    ReadBytes(&ch, 1);
    if (res != resDone || eof || ch == kLf) break;
    if (ch == kCr) {
      const std::int32_t behindCr = GetPos();
      ReadBytes(&ch, 1);
      if (res != resDone || eof || ch != kLf) SetPos(behindCr);
      break;
    }
    if (stored < size - 1) buffer[stored++] = ch;
  }
  buffer[stored] = '\0';
  return stored;
}

// ---- Operators ----

HFile& HFile::operator>>(signed char& ch) {
  ReadChar(ch);
  return *this;
}

HFile& HFile::operator>>(char& ch) {
  ReadChar(ch);
  return *this;
}

HFile& HFile::operator>>(unsigned char& ch) {
  ReadChar(ch);
  return *this;
}

HFile& HFile::operator<<(signed char ch) { return *this << static_cast<char>(ch); }
HFile& HFile::operator<<(unsigned char ch) { return *this << static_cast<char>(ch); }

HFile& HFile::operator<<(char ch) {
  WriteChar(ch);
  return *this;
}

HFile& HFile::operator<<(const char* text) {
  Write(text);
  return *this;
}

HFile& HFile::operator<<(short value) { return *this << NumberText(value, radix).text; }
HFile& HFile::operator<<(unsigned short value) { return *this << NumberText(value, radix).text; }
HFile& HFile::operator<<(int value) { return *this << NumberText(value, radix).text; }
HFile& HFile::operator<<(unsigned int value) { return *this << NumberText(value, radix).text; }
HFile& HFile::operator<<(long value) { return *this << NumberText(value, radix).text; }
HFile& HFile::operator<<(unsigned long value) { return *this << NumberText(value, radix).text; }
HFile& HFile::operator<<(long long value) { return *this << NumberText(value, radix).text; }
HFile& HFile::operator<<(unsigned long long value) { return *this << NumberText(value, radix).text; }
