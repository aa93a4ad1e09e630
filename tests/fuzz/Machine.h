/// @file
/// Operations on three files and on strings, which must agree after each.
///
/// A script has an operation on each line: a letter, the number of a file, more numbers, and texts. "max", "same" and "end" are
/// numbers as well: MaxLen, SameLen and the length of the file. In a text "/" stands for LF, "\" for CR, "_" for a blank, "^" for a "_".
///
///     b AT DEL COUNT TEXT           ReplaceBuf of COUNT bytes, TEXT again and again; c the same by ReplaceCh
///     h AT DEL COUNT LENGTH TEXT    ReplaceFile of COUNT bytes from a file of LENGTH bytes; p, q the same from the handle of
///                                   a pipe, and from a file on it
///     t AT DEL COUNT SOURCE FROM    ReplaceTxt from the file SOURCE
///     s OFFSET ORIGIN               SetPos
///     r COUNT, x AT COUNT, e SIZE   ReadBytes, ReadTxt, ReadLine; n, w: the next and the previous byte, i: the next
///                                   of a text
///     f FROM HOW TEXT               Find; HOW is a sum: 1 backward, 2 any case, 4 whole words
///     v FROM HOW AT COUNT PLACE     Find of what stands at AT, with an "a" in place of its byte PLACE
///     g 0 HOW TEXT TEXT             ReplaceGlobal
///     l AT                          all that there is about the line at AT
///     y COUNT TEXT                  as many blocks of 1 to 9 bytes at the end
///     d COUNT                       PreChange refuses the change after COUNT others; k 1: read-only
///     = OTHER                       comparison
///     m SIZE                        SetMaxCacheSize, 0 to 3 or, for some numbers, 70; o: ReleaseCache; u: Flush
#pragma once

#include <sstream>

#include "fuzz/Fuzz.h"
#include "hsys/WrapAdd.h"
#include "support/Texts.h"
#include "vfile/PositionIndex.h"

namespace fuzz {

using support::Count, support::I32, support::Size;

struct Guarded : support::Peek {
  using VFile::blockCount, VFile::index;

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
    I32 before = 0;
    for (const BlkDesc* p = file.first; p != file.cur.ptr; p = p->next) before += p->len;
    Check(file.cur.base == before && before + file.cur.ix == pos);
    Check(file.index == nullptr || file.index->BrokenRule(file.first, file.cur.ptr) == nullptr);
    file.CheckInvariants();
  }

  Guarded file;
  std::string bytes;
  I32 pos = 0, res = resDone, allowed = -1;
  bool eof = false, readOnly = false;
};

/// The bytes as units of which none but ASCII is part of a word.
inline TString Units(const std::string& bytes) {
  TString units;
  for (const char byte : bytes) units += static_cast<TChar>(byte < 0 ? 0x2600 + byte : byte);
  return units;
}

struct Machine {
  void Step(const std::string& line) {
    std::istringstream words(line);
    char operation = '#';
    I32 file = 0;
    words >> operation >> file;
    words.clear();
    pair = &Nth(file);
    std::fill_n(numbers, 5, 0);
    std::string word;
    for (std::size_t i = 0; words >> word && IsNumber(word); ++i) {
      if (i < 5) numbers[i] = Number(word);
      word.clear();
    }
    text = Text(word);
    word.clear();
    words >> word;
    newText = Text(word).substr(0, 8);
    Run(operation);
    pair->Compare();
    if (pair->Length() > most) Empty();
  }

  Pair& Nth(I32 number) { return pairs[(number & 1) != 0 ? 1 : number & 2]; }
  static bool IsNumber(const std::string& word) {
    return word == "max" || word == "same" || word == "end" || word[0] == '-' || (word[0] >= '0' && word[0] <= '9');
  }
  I32 Number(const std::string& word) const {
    if (word[0] > '9') return word == "max" ? MaxLen : word == "same" ? SameLen : pair->Length();
    return static_cast<I32>(std::clamp(std::atoll(word.c_str()), -9999LL, 0x7FFFFFFFLL));
  }
  /// Ends at its first 0 byte.
  static std::string Text(std::string word) {
    for (char& letter : word)
      letter = letter == '/' ? '\n' : letter == '\\' ? '\r' : letter == '_' ? ' ' : letter == '^' ? '_' : letter;
    return word.c_str();
  }
  static bool IsOneOf(const char* operations, char operation) {
    return std::string(operations).find(operation) != std::string::npos;
  }

  void Run(char operation) {
    const I32 number = numbers[0];
    if (IsOneOf("bchpqt", operation)) Change(operation);
    if (IsOneOf("nrwx", operation)) Read(operation);
    if (operation == 'e') ReadLine(number % 4000);
    if (operation == 'i') ReadText();
    if (operation == 's') SetPos(number, std::min(numbers[1] & 0xFF, 3));
    if (operation == 'f') Find(number);
    if (operation == 'v') FindAlmost(numbers[2], numbers[3] % 60, Size(numbers[4]));
    if (operation == 'y') AppendBlocks(number % 2000);
    if (operation == 'g') ReplaceGlobal();
    if (operation == 'l') Lines(number);
    if (operation == 'd') pair->allowed = pair->file.allowed = std::max(number, -1);
    if (operation == 'k') pair->file.SetFlag(vfReadOnly, number == 1);
    if (operation == 'k' && pair->res == resDone) pair->readOnly = number == 1;
    if (operation == 'm') VFile::SetMaxCacheSize(static_cast<std::int16_t>((number & 4) != 0 ? 70 : number & 3));
    if (operation == 'o') VFile::ReleaseCache();
    if (operation == 'u') pair->file.Flush();
    if (operation == '=') {
      const Pair& other = Nth(number);
      Check((pair->file == other.file) == (pair->bytes == other.bytes));
      Check((pair->file < other.file) == (pair->bytes < other.bytes));
      other.Compare();
    }
  }

  /// The text again and again, with bytes between that tell one place from another.
  std::string Repeated(I32 size) const {
    std::string bytes;
    while (Count(bytes.size()) < size) bytes += text + static_cast<char>('!' + bytes.size() % 15);
    return bytes.substr(0, Size(size));
  }

  void Change(char kind) {
    auto [at, del, count, length, from] = numbers;
    const bool reads = IsOneOf("hpq", kind);
    if (kind == 'b' || kind == 'c') length = count %= 4000;
    const Pair& source = Nth(length);
    length = std::max(length % 4000, 0);
    std::string put = kind == 'c' ? std::string(Size(length), 'c') : Repeated(length);
    if (kind == 't') put = source.Part(std::max(from, 0), std::max(count, 0));
    if (kind == 'b') pair->file.ReplaceBuf(at, del, put.data(), count);
    if (kind == 'c') pair->file.ReplaceCh(at, del, 'c', count);
    if (kind == 't') pair->file.ReplaceTxt(at, del, source.file, from, count);
    if (reads) Insert(kind, at, del, count, put);
    if (pair->res != resDone) return;
    const bool valid = at >= 0 && (del >= 0 || del == SameLen) && count >= 0 && (kind != 't' || from >= 0);
    const bool isShort = reads && count != MaxLen && count > Count(put.size());
    pair->res = !valid ? resCallError : pair->readOnly ? resReadOnly : isShort ? resNotDone : resDone;
    if (pair->res != resDone) return;
    put.resize(std::min(put.size(), Size(count)));
    // ReplaceCh makes changes of a block each, of which the first takes something out.
    const I32 piece = kind == 'c' && count > 0 ? BlkSize : std::max(count, 1);
    const bool inside = at < pair->Length();
    for (I32 done = 0; done == 0 || (done < Count(put.size()) && pair->res == resDone); done += piece) {
      const std::string part = put.substr(Size(done), Size(piece));
      const I32 out = del == SameLen ? Count(part.size()) : del;
      pair->Change(inside ? at + done : pair->Length(), done > 0 ? 0 : out, part);
    }
  }

  /// ReplaceFile from a file of the host that holds `content`.
  void Insert(char kind, I32 at, I32 del, I32 count, const std::string& content) {
    const HANDLE handle = kind == 'h' ? support::OpenRegular(content) : support::OpenPipe(content);
    HFile file(handle);
    if (kind == 'p') {
      pair->file.ReplaceFile(at, del, handle, count);
    } else {
      pair->file.ReplaceFile(at, del, file, count);
    }
  }

  void AppendBlocks(I32 count) {
    for (; count > 0; --count) {
      numbers[0] = pair->Length();
      numbers[1] = 0;
      numbers[2] = numbers[3] = 1 + count % 9;
      Change('p');
    }
  }

  void SetPos(I32 offset, I32 origin) {
    const std::int64_t bases[] = {0, pair->pos, pair->Length(), -1 - std::int64_t{MaxLen}};
    const std::int64_t to = bases[origin] + offset;
    pair->file.SetPos(offset, origin);
    pair->Seek(to > MaxLen || to < 0 ? -1 : static_cast<I32>(to));
  }

  void Read(char kind) {
    char buffer[4000] = {7};
    const I32 from = kind == 'x' ? numbers[0] : pair->pos;
    const I32 count = numbers[kind == 'x' ? 1 : 0] % 4000;
    I32 got = 1;
    std::string expected(1, '\0');
    if (kind == 'n' || kind == 'w') {
      kind == 'n' ? pair->file.ReadChar(buffer[0]) : pair->file.ReadPrevChar(buffer[0]);
      pair->Move(kind == 'n' ? from + 1 : from - 1, from == (kind == 'n' ? pair->Length() : 0));
      if (!pair->eof) expected = pair->Part(std::min(from, pair->pos), 1);
    } else {
      got = kind == 'r' ? pair->file.ReadBytes(buffer, count) : pair->file.ReadTxt(buffer, 4000, from, count);
      const bool valid = count >= 0 && from >= 0;
      expected = valid ? pair->Part(from, count) : "";
      if (kind == 'x' || !valid) pair->Seek(valid ? from : -1);
      if (valid) pair->Move(pair->pos + Count(expected.size()), kind == 'r' && Count(expected.size()) < count);
    }
    Check(std::string(buffer, Size(got)) == expected);
  }

  void ReadText() {
    const std::string expected = pair->Part(pair->pos, 1);
    const bool isPair = pair->Part(pair->pos, 2) == "\r\n";
    char letter = 7;
    const I32 got = pair->file.Read(letter);
    Check(got == Count(expected.size()) + (isPair ? 1 : 0));
    Check(letter == (expected.empty() ? '\0' : expected == "\r" ? '\n' : expected[0]));
    // Behind a lone CR the position is set.
    if (expected == "\r" && !isPair) return pair->Seek(pair->pos + 1);
    pair->Move(pair->pos + std::max(got, 1), expected.empty());
  }

  void ReadLine(I32 size) {
    char buffer[4000];
    const I32 got = pair->file.ReadLine(buffer, size);
    if (size <= 0) {
      Check(got == 0);
      pair->res = resCallError;
      return;
    }
    const I32 end = Count(std::min(pair->bytes.find_first_of("\r\n", Size(pair->pos)), pair->bytes.size()));
    Check(std::string(buffer, Size(got)) == pair->Part(pair->pos, std::min(end - pair->pos, size - 1)));
    const bool isPair = pair->Part(end, 2) == "\r\n";
    // Behind a lone CR the position is set.
    if (pair->Part(end, 1) == "\r" && !isPair) return pair->Seek(end + 1);
    pair->Move(end + (isPair ? 2 : 1), end == pair->Length());
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
    const I32 place = std::min(at, pair->Length());
    // Where the file ends is as if each byte had been read for itself.
    const auto stands = [&](std::size_t to, bool atEnd) {
      Check(file.GetPos() == Count(to) && file.eof == atEnd && file.res == resDone);
    };
    const bool loneCr = behind > end && bytes[behind - 1] == '\r';
    const bool atEnd = behind == end || (loneCr && behind == bytes.size());
    stands(behind + (loneCr && !atEnd ? 1 : 0), atEnd);
    Check(Size(file.LineEnd(at, false)) == end && Size(file.LineEnd(at, true)) == behind);
    stands(behind + (loneCr && !atEnd ? 1 : 0), atEnd);
    const std::size_t indented = std::min(bytes.find_first_not_of(' ', first), end);
    Check(Size(file.LineIndent(at)) == indented - first);
    stands(indented + (indented < bytes.size() ? 1 : 0), indented == bytes.size());
    Check(Size(file.LineStart(at)) == first);
    if (first > 0 && Size(place) == first && bytes[first - 1] == '\r') {
      stands(std::min(first + 1, bytes.size()), first == bytes.size());
    } else if (place > 0) {
      stands(first > 0 ? first - 1 : 0, first == 0);
    }
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
    if (text.empty()) return Check(found && at == from);
    const int place = support::NaiveFind(Units(pair->bytes), Units(text), from, back, ignoreCase, wholeWord);
    const I32 end = place + (back ? 0 : Count(text.size()));
    Check(found == (place >= 0) && at == (found ? end : back ? -1 : hsys::WrapAdd(std::max(from, pair->Length()), 1)));
    if (from > pair->Length()) return Rewind();
    // The last byte read was the one on one side of the match, or there was none.
    const bool behind = found ? back == wholeWord : !back;
    const I32 last = found ? place + (behind ? Count(text.size()) : 0) : at;
    pair->res = resDone;
    pair->Move(behind ? last + 1 : last - 1, !found || last == (behind ? pair->Length() : 0));
  }

  void FindAlmost(I32 at, I32 count, std::size_t place) {
    text = pair->Part(std::max(at, 0), std::max(count, 0));
    if (place < text.size()) text[place] = 'a';
    text = text.c_str();
    Find(numbers[0]);
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
  I32 most = 9000;  // bytes of a file, which is emptied above
  std::string text, newText;
};

}  // namespace fuzz
