/// @file
/// Halts in tests: thrown as an exception, or noted by a procedure that returns.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "hsys/HSys.h"

namespace support {

/// A halt as an exception.
struct Halted {
  std::string message;
};

inline std::string Narrow(const TChar* units) {
  std::string text;
  for (; *units != 0; ++units) text += static_cast<char>(*units);
  return text;
}

/// While it lives, halts are thrown.
class ThrowHalts {
 public:
  ThrowHalts() {
    InstallHaltProc([](const TChar* message) { throw Halted{Narrow(message)}; });
  }
  ~ThrowHalts() { DeinstallHaltProc(); }
};

/// While it lives, halts are noted and return.
class NoteHalts {
 public:
  NoteHalts() {
    Noted().clear();
    InstallHaltProc([](const TChar* message) { Noted().push_back(Narrow(message)); });
  }
  ~NoteHalts() { DeinstallHaltProc(); }

  static std::vector<std::string>& Noted() {
    static std::vector<std::string> messages;
    return messages;
  }
};

/// The message with which the call halts; empty if it does not. Needs no other procedure to be installed.
template <typename Call>
std::string HaltOf(Call call) {
  const ThrowHalts throwing;
  try {
    call();
  } catch (const Halted& halted) {
    return halted.message;
  }
  return {};
}

/// Whether the message is an assertion under the module's word, with some source line.
inline bool IsAssertion(const std::string& message, const std::string& module) {
  const std::string head = module + ", line ";
  const std::string tail = ":\nAssertion failure";
  return message.starts_with(head) && message.ends_with(tail) && message.size() > head.size() + tail.size();
}

}  // namespace support

#define EXPECT_ASSERTION(module, ...) \
  EXPECT_PRED2(support::IsAssertion, support::HaltOf([&] { __VA_ARGS__; }), std::string(module))
#define EXPECT_HALT(message, ...) EXPECT_EQ(support::HaltOf([&] { __VA_ARGS__; }), std::string(message))
