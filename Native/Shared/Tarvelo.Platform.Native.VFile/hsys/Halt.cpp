#include "hsys/Halt.h"

#include <cstddef>
#include <cstdlib>

#include "host/Host.h"

namespace {

void DefaultHaltProc(const TChar* message) {
  host::MessageBoxW(message, TSTR("Program halted"), host::MB_ICONHAND | host::MB_TASKMODAL);
  std::abort();
}

// Set at compile time, so that a halt works before any initialization has run.
constinit HaltProc haltProc = DefaultHaltProc;

/// A halt message under construction, on the stack. What passes 255 units is cut.
class Message {
 public:
  Message& operator<<(const TChar* text) {
    for (; *text != 0 && length_ + 1 < kSize; ++text) units_[length_++] = *text;
    units_[length_] = 0;
    return *this;
  }

  Message& operator<<(std::int32_t number) {
    char digits[12];
    host::_itoa_s(number, digits, sizeof digits, 10);
    TChar text[12];
    std::size_t i = 0;
    do text[i] = static_cast<unsigned char>(digits[i]);
    while (digits[i++] != '\0');
    return *this << text;
  }

  const TChar* Text() const { return units_; }

 private:
  static constexpr std::size_t kSize = 256;
  TChar units_[kSize];
  std::size_t length_ = 0;
};

}  // namespace

void Halt(const TChar* msg) { haltProc(msg); }

void Halt(const TChar* module, const TChar* msg) {
  Message message;
  Halt((message << module << TSTR(": ") << msg).Text());
}

void Halt(const TChar* module, const TChar* proc, const TChar* msg) {
  Message message;
  Halt((message << module << TSTR(", ") << proc << TSTR("():\n") << msg).Text());
}

void HaltA(const TChar* module, std::int32_t line) {
  Message message;
  Halt((message << module << TSTR(", line ") << line << TSTR(":\nAssertion failure")).Text());
}

void HaltA(const TChar* module, const TChar* proc, std::int32_t line) {
  Message message;
  Halt((message << module << TSTR(", ") << proc << TSTR("(), line ") << line << TSTR(":\nAssertion failure")).Text());
}

void Fatal(const TChar* module, std::int32_t code) {
  Message message;
  Halt((message << TSTR("Fatal Error ") << code << TSTR(" in module ") << module << TSTR(" ")).Text());
}

void InstallHaltProc(HaltProc proc) { haltProc = proc; }

void DeinstallHaltProc() { haltProc = DefaultHaltProc; }
