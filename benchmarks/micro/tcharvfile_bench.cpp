// Text files in the four forms, against iconv and ICU on the same bytes in memory; search by unit against the standard string.

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <iconv.h>
#include <random>
#include <string>
#include <unicode/ustring.h>
#include <unistd.h>

#include "tcharvfile/TCharVFile.h"

namespace {

constexpr std::int64_t kBytes = 64 << 20;

/// About 64 MiB of UTF-16: mostly ASCII in lines, some other scripts; no letter z.
const std::u16string& Text() {
  static const std::u16string text = [] {
    std::mt19937 random(3);
    std::u16string units;
    while (units.size() < static_cast<std::size_t>(kBytes / 2)) {
      const auto value = random() % 40;
      if (value < 25) {
        units += static_cast<char16_t>('a' + value);
      } else if (value < 37) {
        units += value == 36 ? u'\n' : u' ';
      } else {
        units += value == 37 ? u"\u00FC" : value == 38 ? u"\u65E5" : u"\U0001D11E";
      }
    }
    return units;
  }();
  return text;
}

/// A file for the runs, made from the text in the form of the argument, with its mark where it has one.
class Prepared {
 public:
  explicit Prepared(benchmark::State& state) : form(static_cast<TCharVFile::Encoding>(state.range(0))) {
    VFileSettings();
    close(mkstemp(name_.data()));
    name = {name_.begin(), name_.end()};
    text.InsertTChars(Text().data(), static_cast<std::int32_t>(Text().size()));
    text.SaveText(name, true, form, true);
    if (text.res != resDone) std::abort();
  }
  ~Prepared() { unlink(name_.c_str()); }

  TCharVFile::Encoding form;
  TString name;
  TCharVFile text;

 private:
  static void VFileSettings() { TCharVFile::SetMaxCacheSize(1024); }
  std::string name_ = "/var/tmp/vfile-bench-XXXXXX";
};

void LoadText(benchmark::State& state) {
  const Prepared prepared(state);
  for (auto _ : state) {
    TCharVFile text;
    text.LoadText(prepared.name, FILE_SHARE_READ);
    if (text.TCharLength() != static_cast<std::int32_t>(Text().size())) state.SkipWithError("not loaded");
  }
  state.SetBytesProcessed(state.iterations() * kBytes);
}
BENCHMARK(LoadText)->ArgName("form")->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

void SaveText(benchmark::State& state) {
  Prepared prepared(state);
  for (auto _ : state) prepared.text.SaveText(prepared.name, true, prepared.form, true);
  state.SetBytesProcessed(state.iterations() * kBytes);
}
BENCHMARK(SaveText)->ArgName("form")->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

std::string Convert(const char* to, const char* from, const char* bytes, std::size_t length) {
  std::string out(length * 2, '\0');
  const iconv_t converter = iconv_open(to, from);
  char* in = const_cast<char*>(bytes);
  char* next = out.data();
  std::size_t room = out.size();
  if (iconv(converter, &in, &length, &next, &room) == static_cast<std::size_t>(-1)) std::abort();
  iconv_close(converter);
  out.resize(out.size() - room);
  return out;
}

std::string Utf8() {
  return Convert("UTF-8", "UTF-16LE", reinterpret_cast<const char*>(Text().data()), Text().size() * 2);
}

void Utf8ToUtf16ByIconv(benchmark::State& state) {
  const std::string bytes = Utf8();
  for (auto _ : state) benchmark::DoNotOptimize(Convert("UTF-16LE", "UTF-8", bytes.data(), bytes.size()));
  state.SetBytesProcessed(state.iterations() * kBytes);
}
BENCHMARK(Utf8ToUtf16ByIconv)->Unit(benchmark::kMillisecond);

void Utf16ToUtf8ByIconv(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(Utf8());
  state.SetBytesProcessed(state.iterations() * kBytes);
}
BENCHMARK(Utf16ToUtf8ByIconv)->Unit(benchmark::kMillisecond);

void Utf8ToUtf16ByIcu(benchmark::State& state) {
  const std::string bytes = Utf8();
  for (auto _ : state) {
    std::u16string units(bytes.size(), u'\0');
    std::int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8(units.data(), static_cast<std::int32_t>(units.size()), &length, bytes.data(),
                  static_cast<std::int32_t>(bytes.size()), &error);
    benchmark::DoNotOptimize(units);
  }
  state.SetBytesProcessed(state.iterations() * kBytes);
}
BENCHMARK(Utf8ToUtf16ByIcu)->Unit(benchmark::kMillisecond);

void Utf16ToUtf8ByIcu(benchmark::State& state) {
  for (auto _ : state) {
    std::string bytes(Text().size() * 3, '\0');
    std::int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strToUTF8(bytes.data(), static_cast<std::int32_t>(bytes.size()), &length, Text().data(),
                static_cast<std::int32_t>(Text().size()), &error);
    benchmark::DoNotOptimize(bytes);
  }
  state.SetBytesProcessed(state.iterations() * kBytes);
}
BENCHMARK(Utf16ToUtf8ByIcu)->Unit(benchmark::kMillisecond);

void FindAbsentTChars(benchmark::State& state) {
  TCharVFile::SetMaxCacheSize(70);
  TCharVFile text;
  text.InsertTChars(Text().data(), static_cast<std::int32_t>(Text().size()));
  for (auto _ : state) {
    std::int32_t at = 0;
    if (text.FindTChars(at, u"zebra", false, false)) state.SkipWithError("found");
  }
  state.SetBytesProcessed(state.iterations() * kBytes);
}
BENCHMARK(FindAbsentTChars)->Unit(benchmark::kMillisecond);

void FindAbsentByStringView(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(std::u16string_view(Text()).find(u"zebra"));
  state.SetBytesProcessed(state.iterations() * kBytes);
}
BENCHMARK(FindAbsentByStringView)->Unit(benchmark::kMillisecond);

}  // namespace
