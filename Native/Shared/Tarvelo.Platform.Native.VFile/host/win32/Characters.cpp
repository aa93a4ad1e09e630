#include <cwctype>

#include "host/win32/Windows.h"

namespace host {

bool iswalnum(TChar unit) { return ::iswalnum(unit) != 0; }

bool iswdigit(TChar unit) { return ::iswdigit(unit) != 0; }

}  // namespace host
