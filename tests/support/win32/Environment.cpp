// The C runtime's copy of the environment, in which the library looks.

#include "support/Environment.h"

#include <cstdlib>

support::Value support::GetVariable(const char* name) {
  const wchar_t* value = _wgetenv(std::filesystem::path(name).c_str());
  return value != nullptr ? Value(value) : std::nullopt;
}

void support::SetVariable(const char* name, const Value& value) {
  _wputenv_s(std::filesystem::path(name).c_str(), value ? value->c_str() : L"");
}
