/// @file
/// The library as a program has it that does not link it: loaded and unloaded by name.
#pragma once

namespace support {

class Library {
 public:
  Library();
  ~Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  bool IsThreadInitialized() const { return Call("_Z25VFile_IsThreadInitializedv"); }
  bool InitializeThread() const { return Call("_Z22VFile_InitializeThreadv"); }
  void* Handle() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

  /// Whether the process has it.
  static bool IsLoaded();

 private:
  bool Call(const char* name) const { return reinterpret_cast<bool (*)()>(Find(name))(); }
  void* Find(const char* name) const;

  void* const handle_;
};

}  // namespace support
