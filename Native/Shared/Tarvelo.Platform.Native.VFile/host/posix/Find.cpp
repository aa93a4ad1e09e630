// A search takes the directory as it stands at its first find, and delivers in ascending order of units. Case counts, and so does a dot at
// the beginning; "*.*" is every name.

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "host/Utf8.h"
#include "host/posix/PosixNames.h"

namespace host {
namespace {

/// Behind the character at `text`, which is no terminator.
const TChar* Behind(const TChar* text) {
  std::uint32_t character = 0;
  return text + DecodeUtf16(text, text[1] == 0 ? 1 : 2, character);
}

/// Whether the name matches the pattern. Of several "*" only the last one reached can have to take more, so that one place to go
/// back to is enough.
bool Matches(const TChar* pattern, const TChar* name) {
  const TChar* behindStar = nullptr;
  const TChar* taken = nullptr;
  while (*name != 0) {
    if (*pattern == '*') {
      behindStar = ++pattern;
      taken = name;
    } else if (*pattern == '?') {
      ++pattern;
      name = Behind(name);
    } else if (*pattern == *name) {
      ++pattern;
      ++name;
    } else if (behindStar != nullptr) {
      pattern = behindStar;
      name = taken = Behind(taken);
    } else {
      return false;
    }
  }
  while (*pattern == '*') ++pattern;
  return *pattern == 0;
}

struct DirCloser {
  void operator()(DIR* directory) const { closedir(directory); }
};

/// The names that matched when the search began, and how far it is.
class Search {
 public:
  /// Reads the directory of the pattern; gives the error.
  std::uint32_t Read(const TString& pattern);
  bool Next(_wfinddata64i32_t& data);

 private:
  TString text_;                    // the names, each terminated
  std::vector<std::size_t> names_;  // where they begin in it, in order
  std::size_t next_ = 0;
};

std::uint32_t Search::Read(const TString& pattern) {
  const auto behindDirectory = std::find_if(pattern.rbegin(), pattern.rend(), posix::IsSeparator).base();
  TString last(behindDirectory, pattern.end());
  const TString directoryName(pattern.begin(), behindDirectory);
  // A name that begins like a drive is delivered without that.
  const std::size_t drive = directoryName.empty() ? posix::DriveLength(last.c_str()) : 0;
  if (last.compare(drive, TString::npos, TSTR("*.*")) == 0) last.resize(drive + 1);

  const posix::NativeName native(directoryName.empty() ? TSTR(".") : directoryName.c_str());
  if (native.Error() != ERROR_SUCCESS) return native.Error();
  const std::unique_ptr<DIR, DirCloser> directory(opendir(native.Text()));
  if (directory == nullptr) return posix::ErrorFromErrno(errno, native);
  for (;;) {
    errno = 0;
    const dirent* entry = readdir(directory.get());
    if (entry == nullptr) break;
    TChar name[NAME_MAX + 1];
    const std::size_t length =
        UnitsFromBytes(name, NAME_MAX, entry->d_name, std::strlen(entry->d_name), Backslash::kIsOrdinary);
    name[std::min<std::size_t>(length, NAME_MAX)] = 0;
    if (!Matches(last.c_str(), name)) continue;
    names_.push_back(text_.size());
    text_.append(name + drive).push_back(0);
  }
  if (errno != 0) return posix::ErrorFromErrno(errno);
  std::sort(names_.begin(), names_.end(), [this](std::size_t a, std::size_t b) {
    return std::basic_string_view<TChar>(&text_[a]) < std::basic_string_view<TChar>(&text_[b]);
  });
  return names_.empty() ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
}

bool Search::Next(_wfinddata64i32_t& data) {
  if (next_ == names_.size()) return false;
  const TChar* name = &text_[names_[next_++]];
  std::copy(name, name + std::char_traits<TChar>::length(name) + 1, data.name);
  return true;
}

}  // namespace

std::intptr_t _wfindfirst64i32(const TChar* pattern, _wfinddata64i32_t* data) {
  std::uint32_t error = ERROR_NOT_ENOUGH_MEMORY;
  try {
    auto search = std::make_unique<Search>();
    error = search->Read(pattern == nullptr ? TSTR("") : pattern);
    if (error == ERROR_SUCCESS && search->Next(*data)) return reinterpret_cast<std::intptr_t>(search.release());
  } catch (const std::bad_alloc&) {
    error = ERROR_NOT_ENOUGH_MEMORY;
  }
  SetLastError(error);
  return -1;
}

int _wfindnext64i32(std::intptr_t find, _wfinddata64i32_t* data) {
  return reinterpret_cast<Search*>(find)->Next(*data) ? 0 : -1;
}

int _findclose(std::intptr_t find) {
  delete reinterpret_cast<Search*>(find);
  return 0;
}

}  // namespace host
