#include "host/win32/Windows.h"

namespace host {

void MessageBoxW(const TChar* text, const TChar* caption, std::uint32_t style) {
  ::MessageBoxW(nullptr, text, caption, style);
}

}  // namespace host
