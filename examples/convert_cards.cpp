// An example host: encodes the cards of one file and decodes the reads of another.
//
//   convert_cards cards.csv reads.csv
//
// docs/convert_cards.md says what the files hold and what is printed.

#include <vardel/core/card_frame.h>
#include <vardel/core/host_fault.h>
#include <vardel/facade/card.h>
#include <vardel/facade/card_matches.h>
#include <vardel/formats/card_formats.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using Cells = std::vector<std::string>;

/// What is wrong with a line that is no card and no read.
struct BadLine : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The lines of a file, without a byte-order mark and without the carriage returns.
std::vector<std::string> ReadLines(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    if (lines.empty() && line.starts_with("\xEF\xBB\xBF")) line.erase(0, 3);
    if (line.ends_with('\r')) line.pop_back();
    lines.push_back(line);
  }
  if (!stream.eof()) throw std::runtime_error("cannot read " + path);
  return lines;
}

/// The cells of a line. One that holds a separator is in quotes, and a quote in it is doubled.
Cells SplitLine(const std::string& line, char separator) {
  Cells cells(1);
  bool isQuoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '"') {
      const bool isDoubled = isQuoted && i + 1 < line.size() && line[i + 1] == '"';
      if (isDoubled) {
        cells.back() += line[++i];
      } else {
        isQuoted = !isQuoted;
      }
    } else if (line[i] == separator && !isQuoted) {
      cells.emplace_back();
    } else {
      cells.back() += line[i];
    }
  }
  if (isQuoted) throw BadLine("a quote is not closed");
  return cells;
}

bool IsSameName(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return 'A' <= c && c <= 'Z' ? c + ('a' - 'A') : c; };
  return std::ranges::equal(a, b, {}, lower, lower);
}

std::optional<std::int32_t> WholeNumber(std::string_view text) {
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

/// A card type, by its number or by its name.
std::optional<std::int32_t> CardTypeOf(std::string_view text) {
  struct Name {
    std::string_view name;
    std::int32_t type;
  };
  constexpr std::array<Name, 3> kNames = {
      {{"EM", vardel::CARD_EM}, {"HID", vardel::CARD_HID}, {"Mifare", vardel::CARD_MIFARE}}};
  for (const auto& [name, type] : kNames) {
    if (IsSameName(text, name)) return type;
  }
  return WholeNumber(text);
}

std::int32_t RequireCardType(const std::string& text) {
  if (const auto type = CardTypeOf(text)) return *type;
  throw BadLine("type '" + text + "' is neither a whole number nor EM, HID or Mifare");
}

/// A sub-type as wide as `Number`.
template <class Number>
Number RequireSubType(const std::string& text) {
  using Limits = std::numeric_limits<Number>;
  const auto value = WholeNumber(text);
  if (value && Limits::min() <= *value && *value <= Limits::max()) {
    return static_cast<Number>(*value);
  }
  throw BadLine("sub-type '" + text + "' is not a whole number from " +
                std::to_string(Limits::min()) + " to " + std::to_string(Limits::max()));
}

bool RequireFlag(const std::string& text) {
  if (text == "1" || IsSameName(text, "true")) return true;
  if (text.empty() || text == "0" || IsSameName(text, "false")) return false;
  throw BadLine("EM flag '" + text + "' is neither 0 nor 1");
}

/// The format for a type pair that the facade does not convert by itself: the facade's own object
/// for HID 37-bit and Corporate 1000, a new one for LG and Woori Bank, none for an unknown pair.
std::shared_ptr<vardel::CCardFormatInfo> FormatOutsideFacade(const vardel::CCard& facade, int type,
                                                             int subType) {
  if (facade.IsCardType(type, subType)) return nullptr;
  if (facade.IsExisted(type, subType)) return facade.CardFormat(type, subType);
  for (const vardel::CardFormatClass& row : vardel::CardFormatClasses()) {
    if (row.CardType == type && row.CardSubType == subType) return row.Create();
  }
  return nullptr;
}

std::string Encode(vardel::CCard& facade, const Cells& row, std::string& error) {
  vardel::CCardData card;
  card.CardType = RequireCardType(row[0]);
  card.CardSubType = RequireSubType<std::uint8_t>(row[1]);
  card.Facility = row[2];
  card.CardID = row[3];
  card.Revision = row[4];

  vardel::CardDataStruct record;
  if (const auto format = FormatOutsideFacade(facade, card.CardType, card.CardSubType)) {
    format->InitErr();  // a format keeps its last error until someone clears it
    record = format->MakeCardData(card);
    error = format->ErrName();
  } else {
    if (facade.IsExisted(card.CardType, card.CardSubType)) {
      facade.CardFormat(card.CardType, card.CardSubType)->InitErr();
    }
    const vardel::CCardByteData raw = facade.MakeCardData(card);
    record = raw.CardDataStruct;
    error = facade.ErrNumber != 0 ? facade.ErrName : raw.ErrName();
  }
  std::ostringstream text;
  text << std::hex << std::uppercase << std::setfill('0');
  for (const std::uint8_t byte : record.Bytes) text << std::setw(2) << int{byte};
  return text.str();
}

/// The reads of each type pair that no format has, and what they can be.
using Unknown = std::map<std::pair<std::int32_t, std::int32_t>, vardel::CCardMatches>;

std::string FieldsOf(const vardel::CCardData& card) {
  return "facility '" + card.Facility + "' card ID '" + card.CardID + "' revision '" +
         card.Revision + "'";
}

std::string Decode(const vardel::CCard& facade, const Cells& row, Unknown& unknown,
                   std::string& error) {
  const auto type = RequireCardType(row[0]);
  const auto subType = RequireSubType<std::int32_t>(row[1]);
  const bool isEMFrame = RequireFlag(row[2]);
  const vardel::CCardFrame frame(type, subType, row[3], isEMFrame);
  const auto format = FormatOutsideFacade(facade, type, subType);
  if (format == nullptr && !isEMFrame && !facade.IsCardType(type, subType)) {
    unknown[{type, subType}].Add(frame);
  }
  const vardel::CCardData card = format == nullptr || isEMFrame
                                     ? facade.AnalyzeCardData(frame)
                                     : format->AnalyzeCardData(frame).value();
  error = card.ErrName;
  if (card.Facility.empty() && card.CardID.empty()) return "(blank)";
  return FieldsOf(card);
}

void PrintMatches(const Unknown& unknown) {
  for (const auto& [pair, matches] : unknown) {
    std::cout << "\n"
              << matches.ReadCount() << " reads of type " << pair.first << ", sub-type "
              << pair.second << ", " << matches.BlankCount() << " of them blank, could be\n";
    for (const vardel::CCardMatch& match : matches.Matches()) {
      const std::string parity =
          match.HasParity ? "parity holds in " + std::to_string(match.ParityHolds) : "no parity";
      std::cout << "  " << std::setw(24) << match.ClassName << std::setw(20) << parity
                << "unused bits in " << match.UnusedSet << ", beyond limits " << match.BeyondLimits;
      // Beyond the limits is what does not make sense, unprintable characters among it.
      if (match.BeyondLimits == 0) std::cout << ": " << FieldsOf(match.Cards.front());
      std::cout << "\n";
    }
  }
}

/// What became of the lines of a file.
struct Totals {
  int converted = 0;
  int errors = 0;
  int faults = 0;
  int badLines = 0;
};

std::ostream& operator<<(std::ostream& out, const Totals& totals) {
  return out << totals.converted << " converted, " << totals.errors << " errors, " << totals.faults
             << " faults, " << totals.badLines << " bad lines";
}

/// Prints each line of a file with what `convert` makes of it: a result or a recorded error. The
/// first line that is not blank is the heading, unless it begins with a card type.
template <class Convert>
Totals PrintFile(const std::string& path, const std::vector<std::string>& lines,
                 std::size_t columns, std::string_view result, Convert convert) {
  Totals totals;
  const auto print = [](std::string_view number, std::string_view what, std::string_view line) {
    std::cout << std::right << std::setw(4) << number << "  " << std::left << std::setw(66) << what
              << line << "\n";
  };
  print("line", result, path);
  const std::size_t mark = lines.empty() ? std::string::npos : lines[0].find_first_of(",;\t");
  const char separator = mark == std::string::npos ? ',' : lines[0][mark];
  bool isFirst = true;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    std::string what;
    try {
      Cells row = SplitLine(lines[i], separator);
      while (!row.empty() && row.back().empty()) row.pop_back();
      if (row.empty()) continue;
      if (std::exchange(isFirst, false) && !CardTypeOf(row[0])) continue;
      if (row.size() > columns) throw BadLine("more than " + std::to_string(columns) + " cells");
      row.resize(columns);
      std::string error;
      what = convert(row, error);
      if (error.empty()) {
        ++totals.converted;
      } else {
        ++totals.errors;
        what = "error: " + error;
      }
    } catch (const BadLine& bad) {
      ++totals.badLines;
      what = path + ":" + std::to_string(i + 1) + ": " + bad.what();
    } catch (const vardel::HostFault& fault) {
      ++totals.faults;
      what = "fault " + std::to_string(static_cast<int>(fault.Number())) + ": " + fault.what();
    }
    print(std::to_string(i + 1), what + " ", lines[i]);
  }
  return totals;
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 3) {
    std::cerr << "usage: convert_cards cards.csv reads.csv\n";
    return 2;
  }
  const auto cardLines = ReadLines(argv[1]);
  const auto readLines = ReadLines(argv[2]);
  vardel::CCard facade;
  const Totals cards =
      PrintFile(argv[1], cardLines, 5, "bytes of the card",
                [&](const Cells& row, std::string& error) { return Encode(facade, row, error); });
  std::cout << "\n";
  Unknown unknown;
  const Totals reads = PrintFile(argv[2], readLines, 4, "card", [&](const Cells& row, auto& error) {
    return Decode(facade, row, unknown, error);
  });
  PrintMatches(unknown);
  std::cout << "\ncards: " << cards << "\nreads: " << reads << "\n";
  return cards.badLines + reads.badLines == 0 ? 0 : 1;
} catch (const std::exception& failure) {
  std::cerr << "convert_cards: " << failure.what() << "\n";
  return 2;
}
