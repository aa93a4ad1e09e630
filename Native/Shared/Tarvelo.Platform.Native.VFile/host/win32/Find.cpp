#include <algorithm>
#include <io.h>
#include <iterator>
#include <wchar.h>

#include "host/win32/Windows.h"

namespace host {
namespace {

/// The system's record holds more than the name.
void TakeName(const ::_wfinddata64i32_t& found, _wfinddata64i32_t* data) {
  static_assert(sizeof found.name <= sizeof data->name);
  std::copy(std::begin(found.name), std::end(found.name), data->name);
}

}  // namespace

std::intptr_t _wfindfirst64i32(const TChar* pattern, _wfinddata64i32_t* data) {
  ::_wfinddata64i32_t found;
  const std::intptr_t find = ::_wfindfirst64i32(win32::NameOf(pattern), &found);
  if (find != -1) TakeName(found, data);
  return find;
}

int _wfindnext64i32(std::intptr_t find, _wfinddata64i32_t* data) {
  ::_wfinddata64i32_t found;
  const int result = ::_wfindnext64i32(find, &found);
  if (result == 0) TakeName(found, data);
  return result;
}

int _findclose(std::intptr_t find) { return ::_findclose(find); }

}  // namespace host
