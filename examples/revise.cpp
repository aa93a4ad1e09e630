// revise: replaces a text everywhere in a file of any size up to 2^31-1 bytes, in a bounded amount of memory.
//
// With --text the file is a text file in any of the four forms, OLD and NEW are UTF-8, and what is replaced is characters. How
// many of them the forms could not keep is told.
//
// Exit status: 0 done, 1 failed, 2 wrong call. Whatever fails, IN and an OUT that existed are as they were.

#include <charconv>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

#include "Forms.h"
#include "System.h"
#include "Terminal.h"
#include "hsys/Halt.h"
#include "vf/Saving.h"
#include "vf/Text.h"

namespace fs = std::filesystem;

namespace {

constexpr char kUsage[] =
    "usage: revise [--cache KB] [--ignore-case] [--whole-word] [--force]"
    " [--text [--encoding ansi|utf8|utf16|utf16be] [--bom|--no-bom]] OLD NEW IN OUT";

struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct WrongCall : Failure {
  using Failure::Failure;
};

struct Options {
  std::int16_t cacheKilobytes = 1024;
  bool ignoreCase = false;
  bool wholeWord = false;
  bool force = false;
  bool text = false;
  std::optional<TCharVFile::Encoding> encoding;
  bool bom = true;
  std::string oldText;
  std::string newText;
  vf::Name in;
  vf::Name out;
};

std::int16_t CacheSizeOf(const std::string& value) {
  std::int16_t kilobytes = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), kilobytes);
  const bool whole = error == std::errc() && end == value.data() + value.size();
  if (!whole || kilobytes < 0) throw WrongCall("--cache takes 0 to 32767 kilobytes");
  return kilobytes;
}

TCharVFile::Encoding FormOf(const std::string& name) {
  TCharVFile::Encoding form;
  if (!GetForm(name, form)) throw WrongCall("--encoding takes ansi, utf8, utf16 or utf16be");
  return form;
}

Options ParseArguments(const Arguments& arguments) {
  Options options;
  std::size_t next = 0;
  bool forTextAlone = false;
  const auto hasNext = [&] { return next + 1 < arguments.size(); };
  for (; next < arguments.size() && arguments[next].Units().starts_with(TSTR("--")); ++next) {
    const std::string option = arguments[next].Utf8();
    if (option == "--") {
      ++next;
      break;
    } else if (option == "--ignore-case") {
      options.ignoreCase = true;
    } else if (option == "--whole-word") {
      options.wholeWord = true;
    } else if (option == "--force") {
      options.force = true;
    } else if (option == "--text") {
      options.text = true;
    } else if (option == "--bom" || option == "--no-bom") {
      options.bom = option == "--bom";
      forTextAlone = true;
    } else if (option == "--encoding" && hasNext()) {
      options.encoding = FormOf(arguments[++next].Utf8());
      forTextAlone = true;
    } else if (option == "--cache" && hasNext()) {
      options.cacheKilobytes = CacheSizeOf(arguments[++next].Utf8());
    } else {
      throw WrongCall(kUsage);
    }
  }
  if (arguments.size() - next != 4 || (forTextAlone && !options.text)) throw WrongCall(kUsage);
  options.oldText = arguments[next].Utf8();
  options.newText = arguments[next + 1].Utf8();
  options.in = arguments[next + 2];
  options.out = arguments[next + 3];
  if (options.oldText.empty()) throw WrongCall("OLD is empty");
  return options;
}

std::uintmax_t CheckedSize(const vf::Name& in) {
  std::error_code error;
  const fs::file_status status = fs::status(in.Path(), error);
  if (!fs::exists(status)) throw Failure(in.Utf8() + ": not found");
  if (!fs::is_regular_file(status)) throw Failure(in.Utf8() + ": not a file");
  const std::uintmax_t size = fs::file_size(in.Path());
  if (size > MaxLen) throw Failure(in.Utf8() + ": over the limit of 2147483647 bytes");
  return size;
}

void CheckOut(const Options& options) {
  const fs::path out = options.out.Path();
  if (!fs::exists(out)) return;
  if (fs::equivalent(options.in.Path(), out)) throw Failure("IN and OUT are the same file");
  if (fs::is_directory(out)) throw Failure(options.out.Utf8() + ": is a directory");
  if (!options.force) throw Failure(options.out.Utf8() + ": already exists (--force replaces it)");
}

TString UnitsOf(const std::string& argument) {
  const TString units = vf::UnitsOf(argument);
  if (vf::Utf8Of(units) != argument) throw Failure(argument + ": not UTF-8");
  return units;
}

/// What the virtual memory takes, while there is a file.
void ReportSpace() {
  std::printf("cache %d of %d KB", VFile::GetCacheSize(), VFile::GetMaxCacheSize());
  std::printf(", swap file %ju bytes", SwapFileSize().value_or(0));
  if (const auto peak = PeakMemory()) std::printf(", peak memory %ju KB", *peak / 1024);
  std::putchar('\n');
}

/// Gives the number of replacements.
std::int32_t ReviseBytes(const Options& options) {
  VFile text;
  Shown shown(text, "loading");
  text.Load(options.in, FILE_SHARE_READ);
  vf::Check(text.res, options.in);
  shown.Next("replacing");
  const std::int32_t count =
      text.ReplaceGlobal(options.oldText.c_str(), options.newText.c_str(), options.ignoreCase, options.wholeWord);
  vf::Check(text.res, options.in);
  shown.Next("saving");
  vf::SaveComplete(text, options.out, {.overwrite = options.force});
  vf::Check(text.res, options.out);
  shown.Wipe();
  ReportSpace();
  return count;
}

std::int32_t ReviseText(const Options& options) {
  TCharVFile text;
  TCharVFile::Encoding form;
  Shown shown(text, "loading");
  const vf::Losses lostIn = vf::LoadText(text, options.in, form, FILE_SHARE_READ);
  vf::Check(text.res, options.in);
  shown.Next("replacing");
  const std::int32_t count = text.ReplaceGlobalTChars(
      UnitsOf(options.oldText).c_str(), UnitsOf(options.newText).c_str(), options.ignoreCase, options.wholeWord);
  vf::Check(text.res, options.in);
  shown.Next("saving");
  const TCharVFile::Encoding target = options.encoding.value_or(form);
  const vf::Losses lostOut = vf::SaveTextComplete(text, options.out, target, options.bom, {.overwrite = options.force});
  vf::Check(text.res, options.out);
  shown.Wipe();
  Tell(lostIn, options.in);
  Tell(lostOut, options.out);
  std::printf("%s became %s\n", kForms[form].data(), kForms[target].data());
  ReportSpace();
  return count;
}

void Revise(const Options& options) {
  const auto start = std::chrono::steady_clock::now();
  const std::uintmax_t size = CheckedSize(options.in);
  CheckOut(options);
  VFile::SetMaxCacheSize(options.cacheKilobytes);
  const std::int32_t count = options.text ? ReviseText(options) : ReviseBytes(options);
  const fs::path out = options.out.Path();
  const std::uintmax_t written = fs::is_regular_file(out) ? fs::file_size(out) : 0;
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  std::printf("in %ju bytes, out %ju bytes, %d replacements, %.2f s\n", size, written, count, seconds.count());
}

}  // namespace

int Run(const Arguments& arguments) {
  // Where the virtual memory cannot go on, such as on a full disk under the swap file.
  InstallHaltProc([](const TChar* message) {
    std::string line = vf::Utf8Of(message);
    std::replace(line.begin(), line.end(), '\n', ' ');
    throw Failure(line);
  });
  try {
    Revise(ParseArguments(arguments));
    return 0;
  } catch (const WrongCall& wrong) {
    std::fprintf(stderr, "revise: %s\n", wrong.what());
    return 2;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "revise: %s\n", failure.what());
    return 1;
  }
}
