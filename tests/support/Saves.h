/// @file
/// Complete saves in every form, for tests.
#pragma once

#include <optional>
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

  /// How a text is written: in an encoding, or as the bytes of its file.
  struct Form {
    const char* name;
    std::optional<TCharVFile::Encoding> encoding;

    void Save(TCharVFile& text, const TString& target, vf::Saving how) const {
      if (!encoding) return vf::SaveComplete(vfile::Inside::FileOf(text), target, how);
      vf::SaveTextComplete(text, target, *encoding, true, how);
    }
    /// Without being complete.
    void SavePlain(TCharVFile& text, const TString& target) const {
      if (!encoding) return vfile::Inside::FileOf(text).Save(target.c_str(), true);
      text.SaveText(target, true, *encoding, true);
    }
  };
  static constexpr Form kForms[] = {{"bytes", std::nullopt},
                                    {"UTF-16", TCharVFile::encUtf16},
                                    {"UTF-16BE", TCharVFile::encUtf16BE},
                                    {"UTF-8", TCharVFile::encUtf8},
                                    {"ANSI", TCharVFile::encAnsi}};

  /// A text of more than one block, which stands at `kPosition`.
  static TCharVFile Text() {
    TCharVFile text;
    text = TString(1000, 'a') + TString(1000, 'b') + TSTR("\u00E9");
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

  void ExpectAsBefore() const {
    EXPECT_EQ(Names(), before);
    EXPECT_EQ(Content("old"), "old");
  }

  const std::string before = "dir locked old ";
};

}  // namespace support
