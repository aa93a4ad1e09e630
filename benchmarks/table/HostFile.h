// Files of the system, in the calls that a program without the library would make.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

constexpr std::int64_t kPage = 1024;

/// An open file, closed at its end. A call that fails throws.
class HostFile {
 public:
  static HostFile Open(const std::string& name);
  static HostFile Create(const std::string& name);
  /// A file without a name in that directory, as a swap file is.
  static HostFile Nameless(const std::string& directory);
  HostFile(HostFile&& other) noexcept;
  HostFile& operator=(HostFile&& other) noexcept;
  ~HostFile();

  std::int64_t Size() const;
  /// Gives the bytes read, fewer than asked at the end alone.
  std::size_t Read(char* bytes, std::size_t count);
  void Write(const char* bytes, std::size_t count);
  void ReadAt(std::int64_t place, char* bytes, std::size_t count) const;
  void ReadPage(std::int64_t page, char* bytes) const { ReadAt(page * kPage, bytes, kPage); }
  void WritePage(std::int64_t page, const char* bytes);

 private:
  explicit HostFile(int descriptor, const std::string& name);
  int descriptor_;
};

/// The name of a file that is written anew in each round. The file goes with it.
class Target {
 public:
  explicit Target(const std::string& directory);
  ~Target();
  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;
  void Remove() const;
  const std::string& Name() const { return name_; }

 private:
  const std::string name_;
};

/// The bytes of a file.
std::string Content(const std::string& name);
std::uint64_t SumOf(const std::string& name);
std::uint64_t SumOf(const HostFile& file);
/// A nameless file with the bytes of another.
HostFile NamelessCopy(const std::string& directory, const std::string& name);
