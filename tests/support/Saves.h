/// @file
/// Complete saves in every form, for tests.
#pragma once

#include <set>
#include <string>

#include "support/Files.h"
#include "tcharvfile/Inside.h"
#include "vf/Saving.h"

namespace support {

/// A fixture with files and a directory in a scratch directory.
struct Saves : InDirectory {
  Saves() {
    std::filesystem::create_directory(Path("dir"));
    Put("old", "old");
    Put("locked", "locked");
    SetReadOnly(Path("locked"), true);
  }

  /// A way to save, and the one that is not complete.
  struct Form {
    const char* name;
    void (*save)(TCharVFile& text, const TString& name, vf::Saving how);
    void (*plainSave)(TCharVFile& text, const TString& name, bool overwrite);
  };
  static void SaveBytes(TCharVFile& text, const TString& name, vf::Saving how) {
    vf::SaveComplete(vfile::Inside::FileOf(text), name, how);
  }
  static void SaveBytesPlain(TCharVFile& text, const TString& name, bool overwrite) {
    vfile::Inside::FileOf(text).Save(name.c_str(), overwrite);
  }
  template <TCharVFile::Encoding kEncoding>
  static void SaveText(TCharVFile& text, const TString& name, vf::Saving how) {
    vf::SaveTextComplete(text, name, kEncoding, true, how);
  }
  template <TCharVFile::Encoding kEncoding>
  static void SaveTextPlain(TCharVFile& text, const TString& name, bool overwrite) {
    text.SaveText(name, overwrite, kEncoding, true);
  }
  static constexpr Form kForms[] = {
      {"bytes", SaveBytes, SaveBytesPlain},
      {"UTF-16", SaveText<TCharVFile::encUtf16>, SaveTextPlain<TCharVFile::encUtf16>},
      {"UTF-16BE", SaveText<TCharVFile::encUtf16BE>, SaveTextPlain<TCharVFile::encUtf16BE>},
      {"UTF-8", SaveText<TCharVFile::encUtf8>, SaveTextPlain<TCharVFile::encUtf8>},
      {"ANSI", SaveText<TCharVFile::encAnsi>, SaveTextPlain<TCharVFile::encAnsi>},
  };

  /// A text of more than one block, which stands at `kPosition`.
  static TCharVFile Text() {
    TString units;
    for (int i = 0; i < 2000; ++i) units += static_cast<TChar>('a' + i % 26);
    TCharVFile text;
    text = units + TSTR("\u00E9");
    text.SetTCharPos(kPosition);
    return text;
  }
  static constexpr std::int32_t kPosition = 5;

  /// The names in the directory and below it.
  std::string Names() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(Directory())) {
      names.insert(entry.path().lexically_relative(Directory()).generic_string());
    }
    std::string all;
    for (const std::string& name : names) all += name + " ";
    return all;
  }

  const std::string before = "dir locked old ";
};

}  // namespace support
