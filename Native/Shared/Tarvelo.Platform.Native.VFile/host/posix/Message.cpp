// The user reads standard error: caption and text, each on a line of its own, in UTF-8.

#include <cerrno>
#include <string>
#include <unistd.h>

#include "host/Host.h"
#include "host/Utf8.h"

namespace host {
namespace {

/// One line of standard error in UTF-8. Unpaired surrogates show as U+FFFD; what standard error refuses is lost.
class ErrorLine {
 public:
  explicit ErrorLine(const TChar* text) {
    for (std::size_t left = std::char_traits<TChar>::length(text); left > 0;) {
      std::uint32_t character = 0;
      const std::size_t used = DecodeUtf16(text, left, character);
      Put(IsSurrogate(character) ? kReplacementCharacter : character);
      text += used;
      left -= used;
    }
    Put('\n');
    Write();
  }

 private:
  void Put(std::uint32_t character) {
    if (length_ + 4 > sizeof buffer_) Write();
    length_ += EncodeUtf8(buffer_ + length_, character);
  }

  void Write() {
    std::size_t done = 0;
    while (done < length_) {
      const ssize_t put = write(STDERR_FILENO, buffer_ + done, length_ - done);
      if (put > 0) {
        done += static_cast<std::size_t>(put);
      } else if (errno != EINTR) {
        break;
      }
    }
    length_ = 0;
  }

  char buffer_[1024];
  std::size_t length_ = 0;
};

}  // namespace

void MessageBoxW(const TChar* text, const TChar* caption, std::uint32_t /*style*/) {
  ErrorLine{caption};
  ErrorLine{text};
}

}  // namespace host
