// revise: replaces a text everywhere in a file of any size up to 2^31-1 bytes, in a bounded amount of memory.
//
// With --text the file is a text file in any of the four forms, OLD and NEW are UTF-8, and what is replaced is characters. How
// many of them the forms could not keep is told.
//
// Exit status: 0 done, 1 failed, 2 wrong call. Whatever fails, IN and an OUT that existed are as they were.

#include <algorithm>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <unistd.h>

#include "Losses.h"
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
  fs::path in;
  fs::path out;
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

Options ParseArguments(int argc, char** argv) {
  Options options;
  int next = 1;
  bool forTextAlone = false;
  for (; next < argc && std::strncmp(argv[next], "--", 2) == 0; ++next) {
    const std::string option = argv[next];
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
    } else if (option == "--encoding" && next + 1 < argc) {
      options.encoding = FormOf(argv[++next]);
      forTextAlone = true;
    } else if (option == "--cache" && next + 1 < argc) {
      options.cacheKilobytes = CacheSizeOf(argv[++next]);
    } else {
      throw WrongCall(kUsage);
    }
  }
  if (argc - next != 4 || (forTextAlone && !options.text)) throw WrongCall(kUsage);
  options.oldText = argv[next];
  options.newText = argv[next + 1];
  options.in = argv[next + 2];
  options.out = argv[next + 3];
  if (options.oldText.empty()) throw WrongCall("OLD is empty");
  return options;
}

std::int32_t CheckedSize(const fs::path& in) {
  std::error_code error;
  const fs::file_status status = fs::status(in, error);
  if (!fs::exists(status)) throw Failure(in.string() + ": not found");
  if (!fs::is_regular_file(status)) throw Failure(in.string() + ": not a file");
  const std::uintmax_t size = fs::file_size(in);
  if (size > MaxLen) throw Failure(in.string() + ": over the limit of 2147483647 bytes");
  return static_cast<std::int32_t>(size);
}

/// Shows how far a transfer is, where standard error is a terminal.
class Progress {
 public:
  Progress(const char* what, std::int32_t total) : what_(what), total_(total), shown_(isatty(STDERR_FILENO) != 0) {}
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

void LoadFile(VFile& text, const fs::path& path, std::int32_t size) {
  HFile file;
  file.OpenSeqRead(NameOf(path.native()).c_str());
  Check(file.res, path);
  const Progress progress("loading", size);
  for (std::int32_t left = size; left > 0; left -= kStep) {
    progress.Show(size - left);
    text.Append(file, std::min(left, kStep));
    Check(text.res, path);
    if (left <= kStep) break;
  }
}

// The file that is being written: removed when the program fails.
char unfinishedName[4096];

void RemoveUnfinished() {
  if (unfinishedName[0] != '\0') std::remove(unfinishedName);
  unfinishedName[0] = '\0';
}

/// The virtual memory ends the program where it cannot go on, such as on a full disk under the swap file.
void OnHalt(const TChar* message) {
  std::fputs("revise: ", stderr);
  for (; *message != 0; ++message) std::fputc(*message == '\n' ? ' ' : static_cast<char>(*message), stderr);
  std::fputc('\n', stderr);
  RemoveUnfinished();
  std::_Exit(1);
}

/// Notes the name of a file that is about to come into being.
void NoteUnfinished(const fs::path& path) { std::snprintf(unfinishedName, sizeof unfinishedName, "%s", path.c_str()); }

void WriteFile(VFile& text, const fs::path& path, bool overwrite) {
  HFile file;
  file.CreateSeqWrite(NameOf(path.native()).c_str(), overwrite);
  Check(file.res, path);
  const Progress progress("saving", text.Length());
  if (!overwrite) NoteUnfinished(path);
  for (text.Reset(); !text.Eof() && text.res == resDone;) {
    progress.Show(text.GetPos());
    text.WriteToFile(file, kStep);
  }
  Check(text.res, path);
  file.Flush();
  Check(file.res, path);
  file.Close();
}

/// Has `write(path, overwrite)` write OUT. An existing file is replaced by a complete one in one step; a device is written as it
/// is.
template <typename Write>
void SaveOut(const fs::path& out, bool force, Write write) {
  if (!force || !fs::exists(out)) {
    write(out, false);
  } else if (!fs::is_regular_file(out)) {
    write(out, true);
  } else {
    const fs::path target = fs::canonical(out);
    const fs::path complete = target.string() + ".revise-" + std::to_string(getpid()) + "~";
    write(complete, false);
    fs::permissions(complete, fs::status(target).permissions());
    fs::rename(complete, target);
  }
  unfinishedName[0] = '\0';
}

/// The swap file has no name any more, but the system still lists it among the open files.
std::uintmax_t SwapFileSize() {
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd", error)) {
    if (fs::read_symlink(entry, error).filename().string().starts_with("~vmem")) return fs::file_size(entry, error);
  }
  return 0;
}

/// What the virtual memory takes, while there is a file.
void ReportSpace() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  std::printf("cache %d of %d KB, swap file %ju bytes, peak memory %ld KB\n", VFile::GetCacheSize(),
              VFile::GetMaxCacheSize(), SwapFileSize(), usage.ru_maxrss);
}

/// Gives the number of replacements, and the bytes that came out.
std::int32_t ReviseBytes(const Options& options, std::int32_t size, std::uintmax_t& written) {
  VFile text;
  LoadFile(text, options.in, size);
  const std::int32_t count =
      text.ReplaceGlobal(options.oldText.c_str(), options.newText.c_str(), options.ignoreCase, options.wholeWord);
  Check(text.res, options.in);
  written = static_cast<std::uintmax_t>(text.Length());
  SaveOut(options.out, options.force, [&](const fs::path& path, bool overwrite) { WriteFile(text, path, overwrite); });
  ReportSpace();
  return count;
}

std::int32_t ReviseText(const Options& options, std::uintmax_t& written) {
  TCharVFile text;
  TCharVFile::Encoding form;
  text.LoadText(NameOf(options.in.native()), form, FILE_SHARE_READ);
  Check(text.res, options.in);
  TellLossOfLoading(text, options.in, form);
  const std::int32_t count = text.ReplaceGlobalTChars(
      UnitsOf(options.oldText).c_str(), UnitsOf(options.newText).c_str(), options.ignoreCase, options.wholeWord);
  Check(text.res, options.in);
  const TCharVFile::Encoding target = options.encoding.value_or(form);
  SaveOut(options.out, options.force, [&](const fs::path& path, bool overwrite) {
    // A name that exists is never taken, so what is there after a failure is this program's.
    if (!overwrite && !fs::exists(path)) NoteUnfinished(path);
    text.SaveText(NameOf(path.native()), overwrite, target, options.bom);
    if (text.res == resAlreadyExists) unfinishedName[0] = '\0';
    Check(text.res, path);
    TellLossOfSaving(text, path, target, options.out);
    written = fs::is_regular_file(path) ? fs::file_size(path) : 0;
  });
  std::printf("%s became %s\n", kForms[form].data(), kForms[target].data());
  ReportSpace();
  return count;
}

void Revise(const Options& options) {
  const auto start = std::chrono::steady_clock::now();
  const std::int32_t size = CheckedSize(options.in);
  if (fs::exists(options.out)) {
    if (fs::equivalent(options.in, options.out)) throw Failure("IN and OUT are the same file");
    if (fs::is_directory(options.out)) throw Failure(options.out.string() + ": is a directory");
    if (!options.force) throw Failure(options.out.string() + ": already exists (--force replaces it)");
  }
  VFile::SetMaxCacheSize(options.cacheKilobytes);
  std::uintmax_t written = 0;
  const std::int32_t count = options.text ? ReviseText(options, written) : ReviseBytes(options, size, written);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  std::printf("in %d bytes, out %ju bytes, %d replacements, %.2f s\n", size, written, count, seconds.count());
}

}  // namespace

int main(int argc, char** argv) {
  // A file-size limit is a failure like a full disk.
  std::signal(SIGXFSZ, SIG_IGN);
  InstallHaltProc(OnHalt);
  int status = 0;
  try {
    Revise(ParseArguments(argc, argv));
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
