#include "hfile/HFile.h"
#include "host/Host.h"
#include "hsys/HostNames.h"

namespace {

/// Whether the host finds the name and its attributes have the bit.
bool HasAttribute(const TChar* name, std::uint32_t attribute) {
  const std::uint32_t attributes = host::GetFileAttributesW(name);
  return attributes != host::INVALID_FILE_ATTRIBUTES && (attributes & attribute) != 0;
}

}  // namespace

bool HFile::Exists(const TChar* name) {
  // Where no name comes out, and the halt for a null one returned, there is no file.
  TChar full[hsys::kNameSize] = {};
  GetFullName(full, hsys::kNameSize, name);
  return full[0] != 0 && host::_waccess(full, 0) == 0;
}

bool HFile::IsReadOnly(const TChar* name) { return HasAttribute(name, host::FILE_ATTRIBUTE_READONLY); }

bool HFile::IsDirectory(const TChar* name) { return HasAttribute(name, host::FILE_ATTRIBUTE_DIRECTORY); }

bool HFile::SetReadOnly(const TChar* name, bool readOnly) {
  const std::uint32_t attributes = host::GetFileAttributesW(name);
  if (attributes == host::INVALID_FILE_ATTRIBUTES) return false;
  if (((attributes & host::FILE_ATTRIBUTE_READONLY) != 0) == readOnly) return true;
  return host::SetFileAttributesW(name, attributes ^ host::FILE_ATTRIBUTE_READONLY);
}

bool HFile::Copy(const TChar* source, const TChar* target, std::int32_t& result, bool overwrite) {
  const bool done = host::CopyFileW(source, target, !overwrite);
  result = done ? std::int32_t{resDone} : GetFileRes();
  return done;
}

bool HFile::Copy(const TChar* source, const TChar* target, bool overwrite) {
  return host::CopyFileW(source, target, !overwrite);
}

bool HFile::Rename(const TChar* oldName, const TChar* newName, std::int32_t& result) {
  const bool done = host::MoveFileW(oldName, newName);
  result = done ? std::int32_t{resDone} : GetFileRes();
  return done;
}

bool HFile::Rename(const TChar* oldName, const TChar* newName) { return host::MoveFileW(oldName, newName); }

bool HFile::Remove(const TChar* name, std::int32_t& result) {
  const bool done = host::DeleteFileW(name);
  result = done ? std::int32_t{resDone} : GetFileRes();
  return done;
}

bool HFile::Remove(const TChar* name) { return host::DeleteFileW(name); }
