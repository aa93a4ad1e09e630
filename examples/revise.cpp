// revise: replaces a text everywhere in a file of any size up to 2^31-1 bytes, in a bounded amount of memory.
//
// With --text the file is a text file in any of the four forms, OLD and NEW are UTF-8, and what is replaced is characters. How
// many of them the forms could not keep is told.
//
// Exit status: 0 done, 1 failed, 2 wrong call. Whatever fails, IN and an OUT that existed are as they were.

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

#include "Losses.h"
#include "System.h"
#include "Texts.h"
#include "tcharvfile/TCharVFile.h"

namespace fs = std::filesystem;

namespace {

constexpr char kUsage[] =
    "usage: revise [--cache KB] [--ignore-case] [--whole-word] [--force]"
    " [--text [--encoding ansi|utf8|utf16|utf16be] [--bom|--no-bom]] OLD NEW IN OUT";

constexpr std::string_view kForms[] = {"ansi", "utf16", "utf16be", "utf8"};  // by the value of Encoding

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
  TString in;
  TString out;
};

std::int16_t CacheSizeOf(const std::string& value) {
  std::int16_t kilobytes = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), kilobytes);
  const bool whole = error == std::errc() && end == value.data() + value.size();
  if (!whole || kilobytes < 0) throw WrongCall("--cache takes 0 to 32767 kilobytes");
  return kilobytes;
}

TCharVFile::Encoding FormOf(const std::string& name) {
  const auto* form = std::find(std::begin(kForms), std::end(kForms), name);
  if (form == std::end(kForms)) throw WrongCall("--encoding takes ansi, utf8, utf16 or utf16be");
  return static_cast<TCharVFile::Encoding>(form - kForms);
}

Options ParseArguments(const Arguments& arguments) {
  Options options;
  std::size_t next = 0;
  bool forTextAlone = false;
  const auto hasNext = [&] { return next + 1 < arguments.size(); };
  for (; next < arguments.size() && arguments[next].starts_with(TSTR("--")); ++next) {
    const std::string option = NativeNameOf(arguments[next]);
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
      options.encoding = FormOf(NativeNameOf(arguments[++next]));
      forTextAlone = true;
    } else if (option == "--cache" && hasNext()) {
      options.cacheKilobytes = CacheSizeOf(NativeNameOf(arguments[++next]));
    } else {
      throw WrongCall(kUsage);
    }
  }
  if (arguments.size() - next != 4 || (forTextAlone && !options.text)) throw WrongCall(kUsage);
  options.oldText = NativeNameOf(arguments[next]);
  options.newText = NativeNameOf(arguments[next + 1]);
  options.in = arguments[next + 2];
  options.out = arguments[next + 3];
  if (options.oldText.empty()) throw WrongCall("OLD is empty");
  return options;
}

std::int32_t CheckedSize(const TString& in) {
  std::error_code error;
  const fs::file_status status = fs::status(PathOf(in), error);
  if (!fs::exists(status)) throw Failure(NativeNameOf(in) + ": not found");
  if (!fs::is_regular_file(status)) throw Failure(NativeNameOf(in) + ": not a file");
  const std::uintmax_t size = fs::file_size(PathOf(in));
  if (size > MaxLen) throw Failure(NativeNameOf(in) + ": over the limit of 2147483647 bytes");
  return static_cast<std::int32_t>(size);
}

/// Shows how far a transfer is, where standard error is a terminal.
class Progress {
 public:
  Progress(const char* what, std::int32_t total) : what_(what), total_(total), shown_(IsTerminal(stderr)) {}
  ~Progress() {
    if (shown_) std::fprintf(stderr, "\r%*s\r", 40, "");
  }
  void Show(std::int32_t done) const {
    if (shown_) std::fprintf(stderr, "\r%s %3d %%", what_, static_cast<int>(100.0 * done / std::max(total_, 1)));
  }

 private:
  const char* what_;
  std::int32_t total_;
  bool shown_;
};

constexpr std::int32_t kStep = 4 << 20;

void LoadFile(VFile& text, const TString& name, std::int32_t size) {
  HFile file;
  file.OpenSeqRead(name.c_str());
  Check(file.res, name);
  const Progress progress("loading", size);
  for (std::int32_t left = size; left > 0; left -= kStep) {
    progress.Show(size - left);
    text.Append(file, std::min(left, kStep));
    Check(text.res, name);
    if (left <= kStep) break;
  }
}

// The file that is being written: removed when the program fails. It may have become read-only like the one that it replaces.
fs::path unfinished;

void RemoveUnfinished() {
  if (unfinished.empty()) return;
  std::error_code error;
  fs::permissions(unfinished, fs::perms::owner_write, fs::perm_options::add, error);
  fs::remove(unfinished, error);
  unfinished.clear();
}

/// The virtual memory ends the program where it cannot go on, such as on a full disk under the swap file.
void OnHalt(const TChar* message) {
  std::fputs("revise: ", stderr);
  for (; *message != 0; ++message) std::fputc(*message == '\n' ? ' ' : static_cast<char>(*message), stderr);
  std::fputc('\n', stderr);
  RemoveUnfinished();
  EndAtOnce(1);
}

void WriteFile(VFile& text, const TString& name, bool overwrite) {
  HFile file;
  const fs::path path = PathOf(name);
  file.CreateSeqWrite(name.c_str(), overwrite);
  Check(file.res, name);
  const Progress progress("saving", text.Length());
  if (!overwrite) unfinished = path;
  for (text.Reset(); !text.Eof() && text.res == resDone;) {
    progress.Show(text.GetPos());
    text.WriteToFile(file, kStep);
  }
  Check(text.res, name);
  file.Flush();
  Check(file.res, name);
  file.Close();
}

/// Has `write(name, overwrite)` write OUT. An existing file is replaced by a complete one in one step; a device is written as it
/// is.
template <typename Write>
void SaveOut(const TString& out, bool force, Write write) {
  const fs::path path = PathOf(out);
  if (!force || !fs::exists(path)) {
    write(out, false);
  } else if (!fs::is_regular_file(path)) {
    write(out, true);
  } else {
    const fs::path target = fs::canonical(path);
    fs::path complete = target;
    complete += ".revise-" + std::to_string(ProcessId()) + "~";
    write(NameOfPath(complete), false);
    fs::permissions(complete, fs::status(target).permissions());
    fs::rename(complete, target);
  }
  unfinished.clear();
}

/// What the virtual memory takes, while there is a file.
void ReportSpace() {
  std::printf("cache %d of %d KB", VFile::GetCacheSize(), VFile::GetMaxCacheSize());
  std::printf(", swap file %ju bytes", SwapFileSize().value_or(0));
  if (const auto peak = PeakMemory()) std::printf(", peak memory %ju KB", *peak / 1024);
  std::putchar('\n');
}

/// Gives the number of replacements, and the bytes that came out.
std::int32_t ReviseBytes(const Options& options, std::int32_t size, std::uintmax_t& written) {
  VFile text;
  LoadFile(text, options.in, size);
  const std::int32_t count =
      text.ReplaceGlobal(options.oldText.c_str(), options.newText.c_str(), options.ignoreCase, options.wholeWord);
  Check(text.res, options.in);
  written = static_cast<std::uintmax_t>(text.Length());
  SaveOut(options.out, options.force, [&](const TString& name, bool overwrite) { WriteFile(text, name, overwrite); });
  ReportSpace();
  return count;
}

std::int32_t ReviseText(const Options& options, std::uintmax_t& written) {
  TCharVFile text;
  TCharVFile::Encoding form;
  text.LoadText(options.in, form, FILE_SHARE_READ);
  Check(text.res, options.in);
  TellLossOfLoading(text, options.in, form);
  const std::int32_t count = text.ReplaceGlobalTChars(
      UnitsOf(options.oldText).c_str(), UnitsOf(options.newText).c_str(), options.ignoreCase, options.wholeWord);
  Check(text.res, options.in);
  const TCharVFile::Encoding target = options.encoding.value_or(form);
  SaveOut(options.out, options.force, [&](const TString& name, bool overwrite) {
    const fs::path path = PathOf(name);
    // A name that exists is never taken, so what is there after a failure is this program's.
    if (!overwrite && !fs::exists(path)) unfinished = path;
    text.SaveText(name, overwrite, target, options.bom);
    if (text.res == resAlreadyExists) unfinished.clear();
    Check(text.res, name);
    TellLossOfSaving(text, name, target, options.out);
    written = fs::is_regular_file(path) ? fs::file_size(path) : 0;
  });
  std::printf("%s became %s\n", kForms[form].data(), kForms[target].data());
  ReportSpace();
  return count;
}

void Revise(const Options& options) {
  const auto start = std::chrono::steady_clock::now();
  const std::int32_t size = CheckedSize(options.in);
  const fs::path out = PathOf(options.out);
  if (fs::exists(out)) {
    const std::string shown = NativeNameOf(options.out);
    if (fs::equivalent(PathOf(options.in), out)) throw Failure("IN and OUT are the same file");
    if (fs::is_directory(out)) throw Failure(shown + ": is a directory");
    if (!options.force) throw Failure(shown + ": already exists (--force replaces it)");
  }
  VFile::SetMaxCacheSize(options.cacheKilobytes);
  std::uintmax_t written = 0;
  const std::int32_t count = options.text ? ReviseText(options, written) : ReviseBytes(options, size, written);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  std::printf("in %d bytes, out %ju bytes, %d replacements, %.2f s\n", size, written, count, seconds.count());
}

}  // namespace

int Run(const Arguments& arguments) {
  InstallHaltProc(OnHalt);
  int status = 0;
  try {
    Revise(ParseArguments(arguments));
  } catch (const WrongCall& wrong) {
    std::fprintf(stderr, "revise: %s\n", wrong.what());
    status = 2;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "revise: %s\n", failure.what());
    status = 1;
  }
  RemoveUnfinished();
  return status;
}
