// The family of editing: five verbs by ten sources, in the order of the header. Each is one call of a primitive.

#include <cstring>

#include "vfile/VFile.h"

namespace {

char AsChar(signed char ch) { return static_cast<char>(ch); }
char AsChar(unsigned char ch) { return static_cast<char>(ch); }

}  // namespace

// ---- Constructors with content ----
//
// Each delegates to that of the empty file: if the change halts by an exception, the destructor runs.

VFile::VFile(signed char ch, std::int32_t count) : VFile(AsChar(ch), count) {}
VFile::VFile(char ch, std::int32_t count) : VFile() { ReplaceCh(0, 0, ch, count); }
VFile::VFile(unsigned char ch, std::int32_t count) : VFile(AsChar(ch), count) {}
VFile::VFile(const char* text) : VFile() { ReplaceStr(0, 0, text); }
VFile::VFile(HANDLE file, std::int32_t count) : VFile() { ReplaceFile(0, 0, file, count); }
VFile::VFile(HFile& file, std::int32_t count) : VFile() { ReplaceFile(0, 0, file, count); }
VFile::VFile(const VFile& source, std::int32_t position, std::int32_t count) : VFile() {
  ReplaceTxt(0, 0, source, position, count);
}

// ---- What the verbs share ----

/// Whether `size` bytes are a count. If not, a change that could begin otherwise is `resTooLong`.
bool VFile::AdmitSize(std::size_t size) {
  if (size <= std::size_t{MaxLen}) return true;
  if (OnOwnerThread() && res == resDone && Admit(true)) res = resTooLong;
  return false;
}

/// `ReplaceBuf` of a terminated string, through the slot.
void VFile::ReplaceStr(std::int32_t position, std::int32_t del, const char* text) {
  const std::size_t size = std::strlen(text);
  if (AdmitSize(size)) ReplaceBuf(position, del, text, static_cast<std::int32_t>(size));
}

/// What a Write takes out: nothing where it inserts, else as much as a Replace.
std::int32_t VFile::WriteDel(std::int32_t overwrite) const { return FlagOn(vfInsert) ? 0 : overwrite; }

// ---- Insert ----

void VFile::InsertByte(unsigned char value) { ReplaceBuf(pos, 0, &value, 1); }
void VFile::InsertBytes(const void* buffer, std::int32_t count) { ReplaceBuf(pos, 0, buffer, count); }
void VFile::InsertWord(short value) { ReplaceBuf(pos, 0, &value, 2); }
void VFile::InsertWord(unsigned short value) { ReplaceBuf(pos, 0, &value, 2); }
void VFile::InsertDWord(int value) { ReplaceBuf(pos, 0, &value, 4); }
void VFile::InsertDWord(unsigned int value) { ReplaceBuf(pos, 0, &value, 4); }
void VFile::InsertQWord(long long value) { ReplaceBuf(pos, 0, &value, 8); }
void VFile::InsertQWord(unsigned long long value) { ReplaceBuf(pos, 0, &value, 8); }
void VFile::Insert(signed char ch, std::int32_t count) { ReplaceCh(pos, 0, AsChar(ch), count); }
void VFile::Insert(char ch, std::int32_t count) { ReplaceCh(pos, 0, ch, count); }
void VFile::Insert(unsigned char ch, std::int32_t count) { ReplaceCh(pos, 0, AsChar(ch), count); }
void VFile::Insert(const char* text) { ReplaceStr(pos, 0, text); }
void VFile::Insert(const VFile& source, std::int32_t position, std::int32_t count) {
  ReplaceTxt(pos, 0, source, position, count);
}
void VFile::InsertFromFile(HANDLE file, std::int32_t count) { ReplaceFile(pos, 0, file, count); }
void VFile::Insert(HFile& file, std::int32_t count) { ReplaceFile(pos, 0, file, count); }

// ---- Replace ----

void VFile::ReplaceByte(unsigned char value) { ReplaceBuf(pos, 1, &value, 1); }
void VFile::ReplaceBytes(const void* buffer, std::int32_t count) { ReplaceBuf(pos, count, buffer, count); }
void VFile::ReplaceWord(short value) { ReplaceBuf(pos, 2, &value, 2); }
void VFile::ReplaceWord(unsigned short value) { ReplaceBuf(pos, 2, &value, 2); }
void VFile::ReplaceDWord(int value) { ReplaceBuf(pos, 4, &value, 4); }
void VFile::ReplaceDWord(unsigned int value) { ReplaceBuf(pos, 4, &value, 4); }
void VFile::ReplaceQWord(long long value) { ReplaceBuf(pos, 8, &value, 8); }
void VFile::ReplaceQWord(unsigned long long value) { ReplaceBuf(pos, 8, &value, 8); }
void VFile::Replace(signed char ch, std::int32_t count) { ReplaceCh(pos, count, AsChar(ch), count); }
void VFile::Replace(char ch, std::int32_t count) { ReplaceCh(pos, count, ch, count); }
void VFile::Replace(unsigned char ch, std::int32_t count) { ReplaceCh(pos, count, AsChar(ch), count); }
void VFile::Replace(const char* text) { ReplaceStr(pos, SameLen, text); }
void VFile::Replace(const VFile& source, std::int32_t position, std::int32_t count) {
  ReplaceTxt(pos, SameLen, source, position, count);
}
void VFile::ReplaceFromFile(HANDLE file, std::int32_t count) { ReplaceFile(pos, SameLen, file, count); }
void VFile::Replace(HFile& file, std::int32_t count) { ReplaceFile(pos, SameLen, file, count); }

// ---- Write ----

void VFile::WriteByte(unsigned char value) { ReplaceBuf(pos, WriteDel(1), &value, 1); }
void VFile::WriteBytes(const void* buffer, std::int32_t count) { ReplaceBuf(pos, WriteDel(count), buffer, count); }
void VFile::WriteWord(short value) { ReplaceBuf(pos, WriteDel(2), &value, 2); }
void VFile::WriteWord(unsigned short value) { ReplaceBuf(pos, WriteDel(2), &value, 2); }
void VFile::WriteDWord(int value) { ReplaceBuf(pos, WriteDel(4), &value, 4); }
void VFile::WriteDWord(unsigned int value) { ReplaceBuf(pos, WriteDel(4), &value, 4); }
void VFile::WriteQWord(long long value) { ReplaceBuf(pos, WriteDel(8), &value, 8); }
void VFile::WriteQWord(unsigned long long value) { ReplaceBuf(pos, WriteDel(8), &value, 8); }
void VFile::Write(signed char ch, std::int32_t count) { ReplaceCh(pos, WriteDel(count), AsChar(ch), count); }
void VFile::Write(char ch, std::int32_t count) { ReplaceCh(pos, WriteDel(count), ch, count); }
void VFile::Write(unsigned char ch, std::int32_t count) { ReplaceCh(pos, WriteDel(count), AsChar(ch), count); }
void VFile::Write(const char* text) { ReplaceStr(pos, WriteDel(SameLen), text); }
void VFile::Write(const VFile& source, std::int32_t position, std::int32_t count) {
  ReplaceTxt(pos, WriteDel(SameLen), source, position, count);
}
void VFile::WriteFromFile(HANDLE file, std::int32_t count) { ReplaceFile(pos, WriteDel(SameLen), file, count); }
void VFile::Write(HFile& file, std::int32_t count) { ReplaceFile(pos, WriteDel(SameLen), file, count); }

// ---- Append ----

void VFile::AppendByte(unsigned char value) { ReplaceBuf(length, 0, &value, 1); }
void VFile::AppendBytes(const void* buffer, std::int32_t count) { ReplaceBuf(length, 0, buffer, count); }
void VFile::AppendWord(short value) { ReplaceBuf(length, 0, &value, 2); }
void VFile::AppendWord(unsigned short value) { ReplaceBuf(length, 0, &value, 2); }
void VFile::AppendDWord(int value) { ReplaceBuf(length, 0, &value, 4); }
void VFile::AppendDWord(unsigned int value) { ReplaceBuf(length, 0, &value, 4); }
void VFile::AppendQWord(long long value) { ReplaceBuf(length, 0, &value, 8); }
void VFile::AppendQWord(unsigned long long value) { ReplaceBuf(length, 0, &value, 8); }
void VFile::Append(signed char ch, std::int32_t count) { ReplaceCh(length, 0, AsChar(ch), count); }
void VFile::Append(char ch, std::int32_t count) { ReplaceCh(length, 0, ch, count); }
void VFile::Append(unsigned char ch, std::int32_t count) { ReplaceCh(length, 0, AsChar(ch), count); }
void VFile::Append(const char* text) { ReplaceStr(length, 0, text); }
void VFile::Append(const VFile& source, std::int32_t position, std::int32_t count) {
  ReplaceTxt(length, 0, source, position, count);
}
void VFile::AppendFromFile(HANDLE file, std::int32_t count) { ReplaceFile(length, 0, file, count); }
void VFile::Append(HFile& file, std::int32_t count) { ReplaceFile(length, 0, file, count); }

// ---- Prepend ----

void VFile::PrependByte(unsigned char value) { ReplaceBuf(0, 0, &value, 1); }
void VFile::PrependBytes(const void* buffer, std::int32_t count) { ReplaceBuf(0, 0, buffer, count); }
void VFile::PrependWord(short value) { ReplaceBuf(0, 0, &value, 2); }
void VFile::PrependWord(unsigned short value) { ReplaceBuf(0, 0, &value, 2); }
void VFile::PrependDWord(int value) { ReplaceBuf(0, 0, &value, 4); }
void VFile::PrependDWord(unsigned int value) { ReplaceBuf(0, 0, &value, 4); }
void VFile::PrependQWord(long long value) { ReplaceBuf(0, 0, &value, 8); }
void VFile::PrependQWord(unsigned long long value) { ReplaceBuf(0, 0, &value, 8); }
void VFile::Prepend(signed char ch, std::int32_t count) { ReplaceCh(0, 0, AsChar(ch), count); }
void VFile::Prepend(char ch, std::int32_t count) { ReplaceCh(0, 0, ch, count); }
void VFile::Prepend(unsigned char ch, std::int32_t count) { ReplaceCh(0, 0, AsChar(ch), count); }
void VFile::Prepend(const char* text) { ReplaceStr(0, 0, text); }
void VFile::Prepend(const VFile& source, std::int32_t position, std::int32_t count) {
  ReplaceTxt(0, 0, source, position, count);
}
void VFile::PrependFromFile(HANDLE file, std::int32_t count) { ReplaceFile(0, 0, file, count); }
void VFile::Prepend(HFile& file, std::int32_t count) { ReplaceFile(0, 0, file, count); }

// ---- `long`, with the type of its width ----

#if LONG_MAX > INT_MAX
void VFile::InsertQWord(long value) { ReplaceBuf(pos, 0, &value, 8); }
void VFile::InsertQWord(unsigned long value) { ReplaceBuf(pos, 0, &value, 8); }
void VFile::ReplaceQWord(long value) { ReplaceBuf(pos, 8, &value, 8); }
void VFile::ReplaceQWord(unsigned long value) { ReplaceBuf(pos, 8, &value, 8); }
void VFile::WriteQWord(long value) { ReplaceBuf(pos, WriteDel(8), &value, 8); }
void VFile::WriteQWord(unsigned long value) { ReplaceBuf(pos, WriteDel(8), &value, 8); }
void VFile::AppendQWord(long value) { ReplaceBuf(length, 0, &value, 8); }
void VFile::AppendQWord(unsigned long value) { ReplaceBuf(length, 0, &value, 8); }
void VFile::PrependQWord(long value) { ReplaceBuf(0, 0, &value, 8); }
void VFile::PrependQWord(unsigned long value) { ReplaceBuf(0, 0, &value, 8); }
#else
void VFile::InsertDWord(long value) { ReplaceBuf(pos, 0, &value, 4); }
void VFile::InsertDWord(unsigned long value) { ReplaceBuf(pos, 0, &value, 4); }
void VFile::ReplaceDWord(long value) { ReplaceBuf(pos, 4, &value, 4); }
void VFile::ReplaceDWord(unsigned long value) { ReplaceBuf(pos, 4, &value, 4); }
void VFile::WriteDWord(long value) { ReplaceBuf(pos, WriteDel(4), &value, 4); }
void VFile::WriteDWord(unsigned long value) { ReplaceBuf(pos, WriteDel(4), &value, 4); }
void VFile::AppendDWord(long value) { ReplaceBuf(length, 0, &value, 4); }
void VFile::AppendDWord(unsigned long value) { ReplaceBuf(length, 0, &value, 4); }
void VFile::PrependDWord(long value) { ReplaceBuf(0, 0, &value, 4); }
void VFile::PrependDWord(unsigned long value) { ReplaceBuf(0, 0, &value, 4); }
#endif

// ---- Second names, cutting ----

void VFile::ReadFromFile(HANDLE file, std::int32_t count) { WriteFromFile(file, count); }
void VFile::ReadFromFile(HFile& file, std::int32_t count) { Write(file, count); }

void VFile::Delete(std::int32_t position, std::int32_t count) { ReplaceBuf(position, count, nullptr, 0); }
void VFile::Truncate() { ReplaceBuf(pos, MaxLen, nullptr, 0); }
