#include "host/win32/Windows.h"

namespace host {

bool CopyFileW(const TChar* source, const TChar* target, bool failIfExists) {
  return ::CopyFileW(win32::NameOf(source), win32::NameOf(target), failIfExists) != FALSE;
}

bool MoveFileW(const TChar* oldName, const TChar* newName) {
  return ::MoveFileW(win32::NameOf(oldName), win32::NameOf(newName)) != FALSE;
}

bool DeleteFileW(const TChar* name) { return ::DeleteFileW(win32::NameOf(name)) != FALSE; }

}  // namespace host
