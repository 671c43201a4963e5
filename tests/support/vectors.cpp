#include "tests/support/vectors.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace vardel {
namespace {

/// The words of one line; a quoted text is one word, without its quotes and escapes.
class Words {
 public:
  Words(std::string line, int number) : line_(std::move(line)), number_(number) {}

  bool AtEnd() {
    while (at_ < line_.size() && line_[at_] == ' ') ++at_;
    return at_ == line_.size() || line_[at_] == '#';
  }

  std::string Next() {
    if (AtEnd()) Fail("a word is missing");
    if (line_[at_] == '"') return Quoted();
    const std::size_t end = std::min(line_.find(' ', at_), line_.size());
    std::string word = line_.substr(at_, end - at_);
    at_ = end;
    return word;
  }

  /// Takes the next word if it is `word`.
  bool Take(std::string_view word) {
    const std::size_t start = at_;
    if (!AtEnd() && Next() == word) return true;
    at_ = start;
    return false;
  }

  int Int() {
    const std::string word = Next();
    std::size_t used = 0;
    const int value = std::stoi(word, &used, 10);
    if (used != word.size()) Fail("not a number: " + word);
    return value;
  }

  /// Bytes up to the end of the line or one of the words that may follow them.
  std::vector<std::uint8_t> Bytes() {
    std::vector<std::uint8_t> bytes;
    while (!AtEnd() && line_.compare(at_, 2, "=>") != 0 && line_.compare(at_, 4, "text") != 0) {
      const std::string word = Next();
      if (word.front() == '\'') {
        if (word.size() < 2 || word.back() != '\'') Fail("an open quote: " + word);
        bytes.insert(bytes.end(), word.begin() + 1, word.end() - 1);
      } else if (const auto star = word.find('*'); star != std::string::npos) {
        bytes.insert(bytes.end(), std::stoul(word.substr(star + 1)), HexByte(word.substr(0, star)));
      } else {
        for (std::size_t i = 0; i < word.size(); i += 2)
          bytes.push_back(HexByte(word.substr(i, 2)));
      }
    }
    return bytes;
  }

  [[noreturn]] void Fail(const std::string& what) const {
    throw std::runtime_error("line " + std::to_string(number_) + ": " + what);
  }

 private:
  std::uint8_t HexByte(const std::string& digits) const {
    std::size_t used = 0;
    const unsigned long value = digits.size() == 2 ? std::stoul(digits, &used, 16) : 0;
    if (used != 2) Fail("not a byte: " + digits);
    return static_cast<std::uint8_t>(value);
  }

  std::string Quoted() {
    std::string text;
    for (++at_; at_ < line_.size() && line_[at_] != '"'; ++at_) {
      if (line_.compare(at_, 2, "\\u") != 0) {
        text += line_[at_];
        continue;
      }
      const unsigned long code = std::stoul(line_.substr(at_ + 2, 4), nullptr, 16);
      if (code < 0x80) {
        text += static_cast<char>(code);
      } else if (code < 0x800) {
        text += {static_cast<char>(0xC0 | code >> 6), static_cast<char>(0x80 | (code & 0x3F))};
      } else {
        text += {static_cast<char>(0xE0 | code >> 12), static_cast<char>(0x80 | (code >> 6 & 0x3F)),
                 static_cast<char>(0x80 | (code & 0x3F))};
      }
      at_ += 5;
    }
    if (at_ == line_.size()) Fail("an open quote");
    ++at_;
    return text;
  }

  std::string line_;
  int number_;
  std::size_t at_ = 0;
};

void ReadCard(Words& words, CCardData& card) {
  const std::string pair = words.Next();
  const std::size_t slash = pair.find('/');
  if (slash == std::string::npos) words.Fail("not a type pair: " + pair);
  card.CardType = std::stoi(pair.substr(0, slash));
  card.CardSubType = static_cast<std::uint8_t>(std::stoi(pair.substr(slash + 1)));
  card.Facility = words.Next();
  card.CardID = words.Next();
  card.Revision = words.Next();
}

void ReadRecord(Words& words, CardDataStruct& record) {
  const std::vector<std::uint8_t> bytes = words.Bytes();
  if (bytes.empty() || bytes.size() > record.Bytes.size()) words.Fail("not a record");
  std::copy(bytes.begin(), bytes.end(), record.Bytes.begin());
}

void ReadFrame(Words& words, VectorCase& c) {
  if (!words.Take("none")) c.bytes = words.Bytes();
  if (words.Take("text")) {
    c.hex = words.Next();
    return;
  }
  if (!c.bytes) words.Fail("a frame without bytes needs a text");
  for (const std::uint8_t byte : *c.bytes) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    c.hex += {kDigits[byte >> 4], kDigits[byte & 0xF]};
  }
}

VectorCase ReadCase(const std::string& keyword, Words& words) {
  VectorCase c;
  if (keyword == "encode") {
    c.kind = CaseKind::Encode;
    ReadCard(words, c.card);
  } else if (keyword == "decode") {
    c.kind = CaseKind::Decode;
    ReadFrame(words, c);
  } else if (keyword == "valid") {
    c.kind = CaseKind::Valid;
    const std::string field = words.Next();
    c.name = field == "facility" ? "IsFacilityValid"
             : field == "cardid" ? "IsCardIDValid"
                                 : "IsRevisionValid";
    c.text = words.Next();
  } else {
    words.Fail("unknown keyword: " + keyword);
  }

  if (!words.Take("=>")) words.Fail("=> is missing");
  if (words.Take("fault")) {
    c.fault = words.Int();
    return c;
  }
  if (words.Take("error")) {
    c.error = words.Next();
    if (words.AtEnd() && c.kind == CaseKind::Encode) return c;
  }
  if (c.kind == CaseKind::Encode) {
    ReadRecord(words, c.record);
  } else if (c.kind == CaseKind::Decode) {
    ReadCard(words, c.card);
  } else {
    c.isValid = words.Take("yes");
    if (!c.isValid && !words.Take("no")) words.Fail("yes or no is missing");
  }
  return c;
}

}  // namespace

VectorFile ReadVectors(const std::string& path) {
  std::ifstream stream(path);
  if (!stream) throw std::runtime_error("cannot read " + path);
  VectorFile file;
  std::vector<std::pair<std::string, std::string>> settings;
  std::string line;
  for (int number = 1; std::getline(stream, line); ++number) {
    Words words(line, number);
    if (words.AtEnd()) continue;
    const std::string keyword = words.Next();
    if (keyword == "format") {
      file.format = words.Next();
    } else if (keyword == "set") {
      const std::string name = words.Next();
      settings.emplace_back(name, words.Next());
    } else if (keyword == "reset") {
      settings.clear();
    } else if (keyword == "param") {
      VectorCase c;
      c.kind = CaseKind::Param;
      c.line = number;
      c.name = words.Next();
      c.text = words.Next();
      file.cases.push_back(std::move(c));
    } else {
      VectorCase c = ReadCase(keyword, words);
      c.line = number;
      c.settings = settings;
      file.cases.push_back(std::move(c));
    }
    if (!words.AtEnd()) words.Fail("more than a case");
  }
  return file;
}

std::vector<std::string> VectorPaths(const std::string& folder) {
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".vec") paths.push_back(entry.path().string());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

}  // namespace vardel
