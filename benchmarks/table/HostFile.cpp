#include "HostFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "Measuring.h"

namespace {

constexpr std::size_t kPiece = 1 << 16;

/// Gives the bytes of a file to `take`, piece by piece.
template <typename Take>
void ForPieces(const HostFile& file, Take take) {
  std::vector<char> piece(kPiece);
  const std::int64_t size = file.Size();
  for (std::int64_t at = 0; at < size; at += static_cast<std::int64_t>(kPiece)) {
    const auto count = static_cast<std::size_t>(std::min<std::int64_t>(kPiece, size - at));
    file.ReadAt(at, piece.data(), count);
    take(piece.data(), count);
  }
}

}  // namespace

HostFile::HostFile(int descriptor, const std::string& name) : descriptor_(descriptor) {
  Expect(descriptor >= 0, name + ": cannot be opened");
}

HostFile HostFile::Open(const std::string& name) { return HostFile(open(name.c_str(), O_RDONLY | O_CLOEXEC), name); }

HostFile HostFile::Create(const std::string& name) {
  return HostFile(open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600), name);
}

HostFile HostFile::Nameless(const std::string& directory) {
  std::string name = directory + "/swap-XXXXXX";
  HostFile file(mkstemp(name.data()), name);
  unlink(name.c_str());
  return file;
}

HostFile::HostFile(HostFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

HostFile& HostFile::operator=(HostFile&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

HostFile::~HostFile() {
  if (descriptor_ >= 0) close(descriptor_);
}

std::int64_t HostFile::Size() const {
  struct stat status = {};
  Expect(fstat(descriptor_, &status) == 0, "size of a file");
  return status.st_size;
}

std::size_t HostFile::Read(char* bytes, std::size_t count) {
  const ssize_t done = read(descriptor_, bytes, count);
  Expect(done >= 0, "read");
  return static_cast<std::size_t>(done);
}

void HostFile::Write(const char* bytes, std::size_t count) {
  Expect(write(descriptor_, bytes, count) == static_cast<ssize_t>(count), "write");
}

void HostFile::ReadAt(std::int64_t place, char* bytes, std::size_t count) const {
  Expect(pread(descriptor_, bytes, count, place) == static_cast<ssize_t>(count), "read");
}

void HostFile::WritePage(std::int64_t page, const char* bytes) {
  Expect(pwrite(descriptor_, bytes, kPage, page * std::int64_t{kPage}) == std::int64_t{kPage}, "write");
}

Target::Target(const std::string& directory) : name_(directory + "/target-" + std::to_string(getpid())) {}

Target::~Target() { Remove(); }

void Target::Remove() const { unlink(name_.c_str()); }

void Settle(const std::string& directory) {
  const int descriptor = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  Expect(descriptor >= 0 && syncfs(descriptor) == 0, directory + ": cannot be written through");
  close(descriptor);
}

std::string Content(const std::string& name) {
  std::string content;
  const HostFile file = HostFile::Open(name);
  content.reserve(static_cast<std::size_t>(file.Size()));
  ForPieces(file, [&](const char* bytes, std::size_t count) { content.append(bytes, count); });
  return content;
}

std::uint64_t SumOfFile(const std::string& name) { return SumOf(HostFile::Open(name)); }

std::uint64_t SumOf(const HostFile& file) {
  Checksum sum;
  ForPieces(file, [&](const char* bytes, std::size_t count) { sum.Add(bytes, count); });
  return sum.Value();
}

HostFile NamelessCopy(const std::string& directory, const std::string& name) {
  HostFile copy = HostFile::Nameless(directory);
  // In the calls in which a swap file is written: the system keeps what came in larger ones in larger units.
  ForPieces(HostFile::Open(name), [&](const char* bytes, std::size_t count) {
    for (std::size_t at = 0; at < count; at += kPage) copy.Write(bytes + at, std::min<std::size_t>(kPage, count - at));
  });
  return copy;
}
