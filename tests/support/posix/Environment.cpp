#include "support/Environment.h"

#include <cstdlib>

support::Value support::GetVariable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? Value(value) : std::nullopt;
}

void support::SetVariable(const char* name, const Value& value) {
  value ? setenv(name, value->c_str(), 1) : unsetenv(name);
}
