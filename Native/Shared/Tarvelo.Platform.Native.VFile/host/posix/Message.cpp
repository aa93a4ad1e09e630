#include <cerrno>
#include <unistd.h>

#include "host/posix/PosixNames.h"

namespace host {
namespace {

/// One line of standard error in UTF-8. Unpaired surrogates show as U+FFFD; what standard error refuses is lost.
class ErrorLine {
 public:
  explicit ErrorLine(const TChar* text) {
    for (; *text != 0; ++text) {
      std::uint32_t codePoint = *text;
      const bool high = codePoint >= 0xD800 && codePoint <= 0xDBFF;
      if (high && text[1] >= 0xDC00 && text[1] <= 0xDFFF) {
        codePoint = 0x10000 + ((codePoint - 0xD800) << 10) + (static_cast<std::uint32_t>(*++text) - 0xDC00);
      } else if (codePoint >= 0xD800 && codePoint <= 0xDFFF) {
        codePoint = 0xFFFD;
      }
      Put(codePoint);
    }
    Put('\n');
    Write();
  }

 private:
  void Put(std::uint32_t codePoint) {
    if (length_ + 4 > sizeof buffer_) Write();
    length_ += posix::EncodeUtf8(buffer_ + length_, codePoint);
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
