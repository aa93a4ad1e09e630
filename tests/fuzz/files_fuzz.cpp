// Operations on three files and on strings, which must agree after each.
//
// An input has an operation on each line: a letter, the number of a file, more numbers, and texts. "max", "same" and "end" are
// numbers as well: MaxLen, SameLen and the length of the file. In a text "/" stands for LF, "\" for CR, "_" for a blank.
//
//     b AT DEL COUNT TEXT           ReplaceBuf of COUNT bytes, TEXT again and again; c the same by ReplaceCh
//     h AT DEL COUNT LENGTH TEXT    ReplaceFile of COUNT bytes from a file of LENGTH bytes; p the same from a pipe
//     t AT DEL COUNT SOURCE FROM    ReplaceTxt from the file SOURCE
//     s OFFSET ORIGIN               SetPos; r COUNT: ReadBytes; w: ReadPrevByte; e SIZE: ReadLine
//     f FROM HOW TEXT               Find; HOW is a sum: 1 backward, 2 any case, 4 whole words
//     g 0 HOW TEXT TEXT             ReplaceGlobal
//     l AT                          all that there is about the line at AT
//     d COUNT                       PreChange refuses the change after COUNT others; k ON: read-only
//     = OTHER                       comparison; m, o, u: SetMaxCacheSize, ReleaseCache, Flush

#include <sstream>
#include <sys/mman.h>

#include "fuzz/Fuzz.h"
#include "support/Texts.h"

using fuzz::Check, support::Count, support::I32, support::Size;

namespace {

struct Guarded : support::Peek {
  std::int32_t PreChange(std::int32_t, std::int32_t, std::int32_t) const override {
    return allowed-- == 0 ? resNotSupported : resDone;
  }
  mutable I32 allowed = -1;  // changes before the one that is refused
};

/// A file and all that a user must see of it.
struct Pair {
  I32 Length() const { return Count(bytes.size()); }
  std::string Part(I32 at, I32 count) const { return bytes.substr(Size(std::min(at, Length())), Size(count)); }
  void Move(I32 to, bool atEnd) {
    pos = std::clamp(to, 0, Length());
    eof = atEnd;
  }
  void Seek(I32 to) {
    res = to < 0 ? resCallError : resDone;
    if (res == resDone) Move(to, false);
  }
  void Change(I32 at, I32 del, const std::string& put) {
    at = std::min(at, Length());
    if (std::min(del, Length() - at) > 0 || !put.empty()) {
      Move(at, false);
      if (allowed-- == 0) res = resNotSupported;
      if (res != resDone) return;
      bytes.replace(Size(at), Size(del), put);
    }
    Seek(at + Count(put.size()));
  }
  void Compare() const {
    Check(file.GetPos() == pos && file.res == res && file.eof == eof);
    Check(file.Length() == Length() && file.Bof() == (pos == 0) && file.Eof() == (pos == Length()));
    Check(support::Bytes(file) == bytes);
    file.CheckInvariants();
  }

  Guarded file;
  std::string bytes;
  I32 pos = 0, res = resDone, allowed = -1;
  bool eof = false, readOnly = false;
};

/// The bytes as units of which none but ASCII is part of a word.
TString Units(const std::string& bytes) {
  TString units;
  for (const char byte : bytes) units += static_cast<TChar>(byte < 0 ? 0x2600 + byte : byte);
  return units;
}

struct Machine {
  void Step(const std::string& line) {
    std::istringstream words(line);
    std::string word;
    words >> word;
    const char operation = word.empty() ? '#' : word[0];
    I32 index = 0;
    words >> index;
    words.clear();
    pair = &pairs[index & 1 ? 1 : index & 2];
    std::fill_n(numbers, 5, 0);
    for (std::size_t i = 0; words >> word && (word == "max" || word == "same" || word == "end" || IsNumber(word));) {
      if (i < 5) numbers[i++] = Number(word);
      word.clear();
    }
    text = Text(word);
    word.clear();
    words >> word;
    newText = Text(word).substr(0, 8);
    Run(operation);
    pair->Compare();
    if (pair->Length() > 9000) Empty();
  }

  static bool IsNumber(const std::string& word) { return word[0] == '-' || (word[0] >= '0' && word[0] <= '9'); }
  I32 Number(const std::string& word) const {
    if (!IsNumber(word)) return word == "max" ? MaxLen : word == "same" ? SameLen : pair->Length();
    return static_cast<I32>(std::clamp(std::atoll(word.c_str()), -9999LL, 0x7FFFFFFFLL));
  }
  /// Ends at its first 0 byte.
  static std::string Text(std::string word) {
    for (char& letter : word) letter = letter == '/' ? '\n' : letter == '\\' ? '\r' : letter == '_' ? ' ' : letter;
    return word.c_str();
  }

  void Run(char operation) {
    const I32 number = numbers[0];
    if (std::string("bchpt").find(operation) != std::string::npos) Change(operation);
    if (std::string("srwe").find(operation) != std::string::npos) Read(operation, number % 4000);
    if (operation == 'f') Find(number);
    if (operation == 'g') ReplaceGlobal();
    if (operation == 'l') Lines(number);
    if (operation == 'd') pair->allowed = pair->file.allowed = number;
    if (operation == 'k') pair->file.SetFlag(vfReadOnly, number != 0);
    if (operation == 'k' && pair->res == resDone) pair->readOnly = number != 0;
    if (operation == 'm') VFile::SetMaxCacheSize(static_cast<std::int16_t>(number & 3));
    if (operation == 'o') VFile::ReleaseCache();
    if (operation == 'u') pair->file.Flush();
    if (operation == '=') {
      const Pair& other = pairs[number & 1];
      Check((pair->file == other.file) == (pair->bytes == other.bytes));
      Check((pair->file < other.file) == (pair->bytes < other.bytes));
    }
  }

  void Change(char kind) {
    auto [at, del, count, length, from] = numbers;
    if (kind == 'b' || kind == 'c') length = count %= 4000;
    const Pair& source = pairs[length & 1];
    std::string put;
    while (kind != 't' && Count(put.size()) < length % 4000) put += kind == 'c' ? "c" : text + ".";
    if (kind == 't') put = source.Part(std::max(from, 0), std::max(count, 0));
    if (kind != 't') put.resize(Size(std::max(length % 4000, 0)));
    if (kind == 'b') pair->file.ReplaceBuf(at, del, put.data(), count);
    if (kind == 'c') pair->file.ReplaceCh(at, del, 'c', count);
    if (kind == 't') pair->file.ReplaceTxt(at, del, source.file, from, count);
    if (kind == 'p') pair->file.ReplaceFile(at, del, support::Pipe(put).Handle(), count);
    if (kind == 'h') {
      const int descriptor = memfd_create("source", 0);
      HFile file(host::HandleFromDescriptor(descriptor));
      Check(pwrite(descriptor, put.data(), put.size(), 0) == Count(put.size()));
      pair->file.ReplaceFile(at, del, file, count);
    }
    if (pair->res != resDone) return;
    const bool valid = at >= 0 && (del >= 0 || del == SameLen) && count >= 0 && (kind != 't' || from >= 0);
    const bool isShort = (kind == 'p' || kind == 'h') && count != MaxLen && count > Count(put.size());
    pair->res = !valid ? resCallError : pair->readOnly ? resReadOnly : isShort ? resNotDone : resDone;
    if (pair->res != resDone) return;
    put.resize(std::min(put.size(), Size(count)));
    // ReplaceCh makes changes of a block each, of which the first takes something out.
    const I32 piece = kind == 'c' && count > 0 ? BlkSize : std::max(count, 1);
    for (I32 done = 0; done == 0 || (done < Count(put.size()) && pair->res == resDone); done += piece) {
      const std::string part = put.substr(Size(done), Size(piece));
      pair->Change(std::min(at, pair->Length()) + (at < pair->Length() ? done : 0),
                   done > 0         ? 0
                   : del == SameLen ? Count(part.size())
                                    : del,
                   part);
    }
  }

  void Read(char kind, I32 count) {
    Pair& p = *pair;
    char buffer[4000] = {7};
    if (kind == 's') {
      const std::int64_t bases[] = {0, p.pos, p.Length(), -1 - std::int64_t{MaxLen}};
      const std::int64_t to = bases[std::min(numbers[1] & 0xFF, 3)] + numbers[0];
      p.file.SetPos(numbers[0], std::min(numbers[1] & 0xFF, 3));
      p.Seek(to > MaxLen || to < 0 ? -1 : static_cast<I32>(to));
    } else if (kind == 'w') {
      p.file.ReadPrevChar(buffer[0]);
      Check(buffer[0] == (p.pos == 0 ? '\0' : p.bytes[Size(p.pos - 1)]));
      p.Move(p.pos - 1, p.pos == 0);
    } else if (count < 0 || (count == 0 && kind == 'e')) {
      Check((kind == 'r' ? p.file.ReadBytes(buffer, count) : p.file.ReadLine(buffer, count)) == 0);
      p.res = resCallError;
    } else if (kind == 'r') {
      const std::string part = p.Part(p.pos, count);
      Check(p.file.ReadBytes(buffer, count) == Count(part.size()) &&
            part.compare(0, part.size(), buffer, part.size()) == 0);
      p.Move(p.pos + Count(part.size()), Count(part.size()) < count);
    } else {
      const std::size_t found = p.bytes.find_first_of("\r\n", Size(p.pos));
      const I32 end = found == std::string::npos ? p.Length() : Count(found);
      const std::string line = p.Part(p.pos, std::min(end - p.pos, count - 1));
      Check(p.file.ReadLine(buffer, count) == Count(line.size()) &&
            line.compare(0, line.size(), buffer, line.size()) == 0);
      const bool isPair = p.Part(end, 2) == "\r\n";
      // Behind a lone CR the position is set.
      if (p.Part(end, 1) == "\r" && !isPair) return p.Seek(end + 1);
      p.Move(end + (isPair ? 2 : 1), end == p.Length());
    }
  }

  void Lines(I32 at) {
    VFile& file = pair->file;
    const std::string& bytes = pair->bytes;
    I32 start = 0, size = 0, eolSize = 0;
    file.LineSize(at, start, size, eolSize);
    if (at < 0) return void(pair->res = resCallError);
    Check(file.res == resDone);
    std::size_t first = 0, end = 0, behind = 0;
    do {
      first = behind;
      end = std::min(bytes.find_first_of("\r\n", first), bytes.size());
      behind = end + (bytes.compare(end, 2, "\r\n") == 0 ? 2 : end < bytes.size() ? 1 : 0);
    } while (behind != end && Size(at) >= behind);
    Check(Size(start) == first && Size(start + size) == behind && Size(eolSize) == behind - end);
    Check(Size(file.LineStart(at)) == first && Size(file.LineEnd(at, false)) == end);
    Check(Size(file.LineEnd(at, true)) == behind);
    Check(Size(file.LineIndent(at)) == std::min(bytes.find_first_not_of(' ', first), end) - first);
    const I32 place = std::min(at, pair->Length());
    Check(file.AfterCRLF(at) == (place > 1 && pair->Part(place - 2, 2) == "\r\n"));
    Check(file.BeforeCRLF(at) == (pair->Part(place, 2) == "\r\n"));
    Check(file.BetweenCRLF(at) == (at > 0 && pair->Part(at - 1, 2) == "\r\n"));
    Rewind();
  }

  void Find(I32 from) {
    const bool back = (numbers[1] & 1) != 0, ignoreCase = (numbers[1] & 2) != 0, wholeWord = (numbers[1] & 4) != 0;
    I32 at = from;
    const bool found = (pair->file.*(back ? &VFile::FindBack : &VFile::Find))(at, text.c_str(), ignoreCase, wholeWord);
    if (from < 0) return void(pair->res = resCallError);
    int place = from;
    if (!text.empty()) {
      place = support::NaiveFind(Units(pair->bytes), Units(text), from, back, ignoreCase, wholeWord);
      Check(!found || at == place + (back ? 0 : Count(text.size())));
    }
    Check(found == (place >= 0) && (!text.empty() || at == from));
    Rewind();
  }

  void ReplaceGlobal() {
    const bool ignoreCase = (numbers[1] & 2) != 0, wholeWord = (numbers[1] & 4) != 0;
    const I32 count = pair->file.ReplaceGlobal(text.c_str(), newText.c_str(), ignoreCase, wholeWord);
    if (text.empty()) return void(pair->res = resCallError);
    I32 expected = 0;
    pair->res = resDone;
    TString units = Units(pair->bytes);
    const TString wanted = Units(text);
    for (I32 at = 0; (at = support::NaiveFind(units, wanted, at, false, ignoreCase, wholeWord)) >= 0; ++expected) {
      if (pair->readOnly) pair->res = resReadOnly;
      if (pair->res == resDone) pair->Change(at, Count(text.size()), newText);
      if (pair->res != resDone) break;
      units.replace(Size(at), text.size(), Units(newText));
      at = pair->pos;
    }
    Check(count == expected && pair->file.res == pair->res);
    Rewind();
  }

  void Rewind() {
    pair->file.Reset();
    pair->Seek(0);
  }
  void Empty() {
    Rewind();
    pair->file.allowed = pair->allowed = -1;
    pair->file.SetFlags(0);
    pair->readOnly = false;
    pair->file.Truncate();
    pair->bytes.clear();
  }

  Pair pairs[3];
  Pair* pair = pairs;
  I32 numbers[5];
  std::string text, newText;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  VFile::SetMaxCacheSize(2);
  Machine machine;
  std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
  for (std::string line; std::getline(lines, line);) machine.Step(line);
  for (const Pair& pair : machine.pairs) pair.Compare();
  return 0;
}
