#include "tests/cases/cases.h"

#include <vardel/core/hex.h>
#include <vardel/core/number.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace vardel {
namespace {

std::string Unescaped(std::string_view text) {
  std::string result;
  for (; !text.empty(); text.remove_prefix(1)) {
    std::uint8_t byte = static_cast<std::uint8_t>(text.front());
    if (text.starts_with("\\x")) {
      ParseHex(text.substr(2, 2), {&byte, 1});
      text.remove_prefix(3);
    }
    result += static_cast<char>(byte);
  }
  return result;
}

Words Split(std::string_view line) {
  Words words;
  while (true) {
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    if (line.empty() || line.front() == '#') return words;
    const bool isText = line.front() == '"';
    if (isText) line.remove_prefix(1);
    const std::size_t end = line.find(isText ? '"' : ' ');
    if (isText && end == line.npos) throw std::runtime_error("an open quote");
    const std::string_view word = line.substr(0, end);
    words.push_back({isText ? Unescaped(word) : std::string(word), isText});
    line.remove_prefix(std::min(word.size() + isText, line.size()));
  }
}

/// Takes the words before the given one, and that one with them; all when it is not there.
Words TakeUntil(Words& words, std::string_view mark) {
  const auto at = std::ranges::find_if(
      words, [&](const Word& word) { return !word.isText && word.text == mark; });
  Words taken(words.begin(), at);
  words.erase(words.begin(), at == words.end() ? at : at + 1);
  return taken;
}

std::vector<std::uint8_t> Bytes(const Words& words) {
  std::vector<std::uint8_t> bytes;
  for (const auto& [text, isText] : words) {
    if (text.front() == '\'') {
      bytes.insert(bytes.end(), text.begin() + 1, text.end() - 1);
      continue;
    }
    const std::string digits = text.substr(0, text.find('*'));
    std::vector<std::uint8_t> part((digits.size() + 1) / 2);
    ParseHex(digits, part);
    const int count = digits == text ? 1 : std::stoi(text.substr(digits.size() + 1));
    for (int i = 0; i < count; ++i) bytes.insert(bytes.end(), part.begin(), part.end());
  }
  return bytes;
}

std::string Show(const Words& words) {
  std::string text;
  for (const Word& word : words) {
    text += (text.empty() ? "" : " ") + (word.isText ? ShowText(word.text) : word.text);
  }
  return text;
}

class Runner {
 public:
  explicit Runner(CaseHost& host) : host_(host) {}

  void RunLine(const std::string& line) {
    Words words = Split(line);
    if (words.empty()) return;
    Words head = TakeUntil(words, "=>");
    const std::string keyword = head[0].text;
    if (keyword == "format") {
      format_ = head.at(1).text;
    } else if (keyword == "set") {
      settings_.push_back({head.at(1).text, head.at(2)});
    } else if (keyword == "reset") {
      settings_.clear();
      host_.Reset();
    } else if (keyword == "encode") {
      Encode({head.begin() + 1, head.end()}, words);
    } else if (keyword == "decode") {
      Decode({head.begin() + 1, head.end()}, words);
    } else {
      Statement(std::move(head), words);
    }
  }

 private:
  std::string Get(const std::string& object, const std::string& member) {
    return host_.Run({object, member});
  }
  std::string Err(const std::string& object) {
    const std::string number = Get(object, "ErrNumber");
    return number.starts_with("fault") ? number : number + " " + Get(object, "ErrName");
  }
  std::string Card(const std::string& object) {
    std::string text = Get(object, "CardType") + "/" + Get(object, "CardSubType");
    for (const char* member : {"Facility", "CardID", "Revision"}) text += " " + Get(object, member);
    return text;
  }
  void Put(const std::string& object, const std::string& member, const Word& value) {
    EXPECT_EQ(host_.Run({object, member, {value}, true}), "") << member;
  }

  /// The two words of TYPE/SUB.
  static Words TypeOf(const Word& pair) {
    const std::size_t slash = pair.text.find('/');
    return {{pair.text.substr(0, slash)}, {pair.text.substr(slash + 1)}};
  }
  /// A new card of TYPE/SUB FACILITY CARDID REVISION.
  void NewCard(const std::string& name, const Words& fields) {
    Words values = TypeOf(fields.at(0));
    values.insert(values.end(), fields.begin() + 1, fields.end());
    host_.New(name, "CCardData");
    std::size_t i = 0;
    for (const char* member : {"CardType", "CardSubType", "Facility", "CardID", "Revision"}) {
      Put(name, member, values.at(i++));
    }
  }

  void ApplySettings(const std::string& format) {
    for (const auto& [name, value] : settings_) Put(format, name, value);
  }
  void NewFormat() {
    host_.New("format", format_);
    ApplySettings("format");
  }

  static bool IsFault(const std::string& answer) {
    return answer.starts_with("fault") || answer.starts_with("status");
  }

  /// Takes the error message that an answer may begin with; gives the error pair.
  static std::string TakeError(Words& answer) {
    if (answer.empty() || answer[0].text != "error") return "0 \"\"";
    const std::string error = "-1 " + ShowText(answer.at(1).text);
    answer.erase(answer.begin(), answer.begin() + 2);
    return error;
  }

  void Encode(const Words& card, Words answer) {
    const std::string error = TakeError(answer);
    const bool isFault = !answer.empty() && answer[0].text == "fault";
    const std::string expected = isFault ? Show(answer) : ShowRecord(Bytes(answer));
    NewFormat();
    NewCard("card", card);
    EXPECT_EQ(host_.Run({"format", "MakeCardData", {{"card"}}}), expected);
    EXPECT_EQ(Err("format"), error);

    host_.New("facade", "CCard");
    const Words type = TypeOf(card.at(0));
    if (host_.Run({"facade", "IsCardType", type}) != "True") return;
    host_.Run({"facade", "CardFormat", type, false, "registered"});
    ApplySettings("registered");
    const std::string result = host_.Run({"facade", "MakeCardData", {{"card"}}, false, "raw"});
    EXPECT_EQ(IsFault(result), isFault) << result;
    EXPECT_EQ(isFault ? result : Get("raw", "CardDataStruct"), expected);
    EXPECT_EQ(isFault ? error : Err("raw"), error);
    EXPECT_EQ(Err("facade"), "0 \"\"");
  }

  void Decode(Words frame, Words answer) {
    FrameData data;
    const Words bytes = TakeUntil(frame, "text");
    if (bytes.empty() || bytes[0].text != "none") data.bytes = Bytes(bytes);
    data.hex = frame.empty() ? HexText(data.bytes.value()) : frame[0].text;
    const std::string error = TakeError(answer);
    for (int kind = 0; kind < host_.FrameKinds(data); ++kind) {
      SCOPED_TRACE("frame of kind " + std::to_string(kind));
      NewFormat();
      host_.NewFrame("frame", data, kind);
      const std::string result =
          host_.Run({"format", "AnalyzeCardData", {{"frame"}}, false, "result"});
      EXPECT_EQ(Err("format"), "0 \"\"") << "a decoder records on its result alone";
      if (!answer.empty() && answer[0].text == "fault") {
        EXPECT_EQ(result, Show(answer));
      } else {
        EXPECT_FALSE(IsFault(result)) << result;
        EXPECT_EQ(Card("result"), Show(answer));
        EXPECT_EQ(Err("result"), error);
      }
    }
  }

  void Statement(Words words, const Words& answer) {
    std::string name;
    if (words.size() > 2 && words[1].text == "=") {
      name = words[0].text;
      words.erase(words.begin(), words.begin() + 2);
    }
    const std::string what = words.at(0).text;
    words.erase(words.begin());
    const std::size_t dot = what.find('.');
    if (what == "card") return NewCard(name, words);
    if (dot == what.npos) return host_.New(name, what);

    Call call{what.substr(0, dot), what.substr(dot + 1), TakeUntil(words, ":="), false, name};
    if (call.object == "format" && !format_.empty()) NewFormat();
    call.isPut = !words.empty();
    call.arguments.insert(call.arguments.end(), words.begin(), words.end());
    const std::string result = call.member == "Err"    ? Err(call.object)
                               : call.member == "Card" ? Card(call.object)
                                                       : host_.Run(call);
    if (name.empty() || !answer.empty()) {
      EXPECT_EQ(result, Show(answer));
    } else {
      EXPECT_FALSE(IsFault(result)) << result;
    }
  }

  CaseHost& host_;
  std::string format_;
  std::vector<std::pair<std::string, Word>> settings_;
};

}  // namespace

std::string ShowText(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    const auto byte = static_cast<std::uint8_t>(c);
    const bool isPlain = byte >= ' ' && c != '"' && c != '\\';
    result += isPlain ? std::string(1, c) : "\\x" + HexText({&byte, 1});
  }
  return result + "\"";
}

std::string ShowNumber(double number) {
  const double size = std::fabs(number);
  char fraction[40] = {};
  if (size != std::floor(size)) std::to_chars(fraction, std::end(fraction), size);
  return (number < 0 ? "-" : "") + (*fraction != 0 ? fraction : NumberText(size));
}

std::string ShowRecord(std::span<const std::uint8_t> bytes) {
  while (bytes.size() > 1 && bytes.back() == 0) bytes = bytes.first(bytes.size() - 1);
  return bytes.empty() ? "00" : HexText(bytes);
}

void RunCases(const std::string& path, CaseHost& host) {
  std::ifstream file(path);
  ASSERT_TRUE(file) << path;
  Runner runner(host);
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    SCOPED_TRACE(path + ":" + std::to_string(number) + ": " + line);
    ASSERT_NO_THROW(runner.RunLine(line));
  }
  host.Reset();
}

std::vector<std::string> CaseFiles(const std::string& folder) {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(VARDEL_TESTS "/" + folder)) {
    if (entry.path().extension() == ".vec") files.push_back(entry.path().string());
  }
  std::ranges::sort(files);
  return files;
}

}  // namespace vardel
