// Virtual files with every lifetime that all hosts have: static objects made before `main` and destroyed after it, and objects on
// another thread.

#include <cstdio>
#include <string>
#include <thread>

#include "Host.h"
#include "tcharvfile/TCharVFile.h"

namespace {

VFile atStart("made before main");

/// A derived class, which the compiler gives an assignment of its own.
class CountingFile : public VFile {
 public:
  int changes = 0;

 protected:
  void PostChange(std::int32_t pos, std::int32_t del, std::int32_t ins) override {
    VFile::PostChange(pos, del, ins);
    ++changes;
  }
};

class DerivedText : public TCharVFile {};

}  // namespace

std::string ContentOf(VFile& file) {
  std::string content(static_cast<std::size_t>(file.Length()), '\0');
  file.Reset();
  file.ReadBytes(content.data(), file.Length());
  return content;
}

int main() {
  static VFile inMain("abc");
  inMain.Insert(inMain, 0, MaxLen);
  bool good = ContentOf(inMain) == "abcabc" && ContentOf(atStart) == "made before main";

  CountingFile counting;
  CountingFile assigned;
  counting << "abc";
  assigned = counting;
  good = good && assigned.changes == 1 && ContentOf(assigned) == "abc";

  DerivedText text;
  text << TSTR("abc");
  good = good && text.ToString() == TSTR("abc");

  std::thread([&] {
    VFile inThread("x");
    inThread << 42;
    good = good && ContentOf(inThread) == "x42";
  }).join();
  good = HostGood() && good;
  std::puts(good ? "good" : "bad");
  return good ? 0 : 1;
}
