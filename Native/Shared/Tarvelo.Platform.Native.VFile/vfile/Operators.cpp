#include "hsys/NumberText.h"
#include "vfile/VFile.h"

namespace {

using NumberText = hsys::NumberText<char>;

}  // namespace

// ---- Assignment ----

// A file may be its own source.
VFile& VFile::operator=(const VFile& source) {  // NOLINT(bugprone-unhandled-self-assignment)
  ReplaceTxt(0, length, source, 0, MaxLen);
  return *this;
}

VFile& VFile::operator=(const char* text) {
  ReplaceStr(0, length, text);
  return *this;
}

VFile& VFile::operator=(signed char ch) {
  ReplaceBuf(0, length, &ch, 1);
  return *this;
}

VFile& VFile::operator=(char ch) {
  ReplaceBuf(0, length, &ch, 1);
  return *this;
}

VFile& VFile::operator=(unsigned char ch) {
  ReplaceBuf(0, length, &ch, 1);
  return *this;
}

// ---- Reading ----

VFile& VFile::operator>>(signed char& ch) {
  ReadChar(ch);
  return *this;
}

VFile& VFile::operator>>(char& ch) {
  ReadChar(ch);
  return *this;
}

VFile& VFile::operator>>(unsigned char& ch) {
  ReadChar(ch);
  return *this;
}

VFile& VFile::operator>>(VFile& target) {
  target.ReplaceTxt(0, MaxLen, *this, pos, MaxLen);
  if (target.res != resDone) {
    res = target.res;
  } else {
    SetPos(MaxLen);
  }
  return *this;
}

// ---- Writing ----

VFile& VFile::operator<<(signed char ch) { return *this << static_cast<unsigned char>(ch); }
VFile& VFile::operator<<(char ch) { return *this << static_cast<unsigned char>(ch); }

VFile& VFile::operator<<(unsigned char ch) {
  WriteByte(ch);
  return *this;
}

VFile& VFile::operator<<(const char* text) {
  Write(text);
  return *this;
}

VFile& VFile::operator<<(const VFile& source) {
  Write(source, 0, MaxLen);
  return *this;
}

VFile& VFile::operator<<(short value) { return *this << NumberText(value, radix).text; }
VFile& VFile::operator<<(unsigned short value) { return *this << NumberText(value, radix).text; }
VFile& VFile::operator<<(int value) { return *this << NumberText(value, radix).text; }
VFile& VFile::operator<<(unsigned int value) { return *this << NumberText(value, radix).text; }
VFile& VFile::operator<<(long value) { return *this << NumberText(value, radix).text; }
VFile& VFile::operator<<(unsigned long value) { return *this << NumberText(value, radix).text; }
VFile& VFile::operator<<(long long value) { return *this << NumberText(value, radix).text; }
VFile& VFile::operator<<(unsigned long long value) { return *this << NumberText(value, radix).text; }

// ---- Appending ----

VFile& VFile::operator+=(signed char ch) { return *this += static_cast<unsigned char>(ch); }
VFile& VFile::operator+=(char ch) { return *this += static_cast<unsigned char>(ch); }

VFile& VFile::operator+=(unsigned char ch) {
  AppendByte(ch);
  return *this;
}

VFile& VFile::operator+=(const char* text) {
  Append(text);
  return *this;
}

VFile& VFile::operator+=(const VFile& source) {
  Append(source, 0, MaxLen);
  return *this;
}
