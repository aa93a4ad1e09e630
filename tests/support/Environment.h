/// @file
/// The environment's variables, for tests.
#pragma once

#include <filesystem>
#include <optional>

namespace support {

using Value = std::optional<std::filesystem::path>;

Value GetVariable(const char* name);
/// No value unsets it.
void SetVariable(const char* name, const Value& value);

/// While it lives, the variable has the value.
class Variable {
 public:
  Variable(const char* name, const Value& value) : name_(name), old_(GetVariable(name)) { SetVariable(name, value); }
  ~Variable() { SetVariable(name_, old_); }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  const char* const name_;
  const Value old_;
};

}  // namespace support
