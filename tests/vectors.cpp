#include "tests/vectors.h"

#include <vardel/core/hex.h>

#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace vardel {
namespace {

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream rest(text + separator);
  for (std::string part; std::getline(rest, part, separator);) parts.push_back(part);
  return parts;
}

/// A table's rows by the names of their columns, with their place as `where`.
std::vector<std::map<std::string, std::string>> Rows(const std::string& name) {
  std::vector<std::map<std::string, std::string>> rows;
  std::ifstream file(VARDEL_TESTS "/" + name);
  std::string line;
  std::getline(file, line);
  const std::vector<std::string> header = Split(line, ',');
  while (std::getline(file, line)) {
    auto& row = rows.emplace_back();
    row["where"] = name + ":" + std::to_string(rows.size() + 1);
    const std::vector<std::string> cells = Split(line, ',');
    if (cells.size() != header.size()) throw std::runtime_error(row["where"] + ": cells");
    for (std::size_t i = 0; i < cells.size(); ++i) row[header[i]] = cells[i];
  }
  if (rows.empty()) throw std::runtime_error(name + ": no rows");
  return rows;
}

std::vector<std::uint8_t> Bytes(const std::string& hex) {
  std::vector<std::uint8_t> bytes(hex.size() / 2);
  ParseHex(hex, bytes);
  return bytes;
}

/// A text in which \xNN stands for a byte that is hard to read or means something to the table.
std::string Unescaped(std::string text) {
  for (std::size_t at = 0; (at = text.find("\\x", at)) != text.npos; ++at) {
    text.replace(at, 4, 1, static_cast<char>(Bytes(text.substr(at + 2, 2)).at(0)));
  }
  return text;
}

std::string ErrorAnswer(std::int32_t number, std::string_view name) {
  if (number == 0 && name.empty()) return "";
  return " error " + std::to_string(number) + " " + std::string(name);
}

}  // namespace

std::vector<Vector> Vectors() {
  std::vector<Vector> vectors;
  for (auto& row : Rows("vectors.csv")) {
    const std::string failure = row["failure"], operation = row["operation"];
    const bool isFault = failure.starts_with("fault"), isError = !failure.empty() && !isFault;
    const auto type = Split(row["type"].empty() ? "0/0" : row["type"], '/');
    const CCardData card{
        isError ? -1 : 0,           isError ? failure : "",
        std::stoi(type.at(0)),      static_cast<std::uint8_t>(std::stoi(type.at(1))),
        Unescaped(row["facility"]), Unescaped(row["card number"]),
        Unescaped(row["revision"])};
    Vector vector{row["where"], operation, "CCardFormat" + row["format"], {}, card, {},
                  {},           failure};
    vector.text = card.Facility + card.CardID + card.Revision;
    for (const std::string& change : Split(row["changes"], ';')) {
      const auto parts = Split(change, '=');
      if (!change.empty()) vector.changes.emplace_back(parts.at(0), parts.at(1));
    }
    if (operation == "decode") {
      const auto parts = Split(row["raw"], '/');
      if (parts[0] != "none") vector.frame.bytes = Bytes(parts[0]);
      vector.frame.hex = parts.back();
      if (!isFault) vector.answer = CardAnswer(card);
    } else if (!isFault) {
      vector.answer = row["raw"] + ErrorAnswer(card.ErrNumber, card.ErrName);
    }
    vectors.push_back(std::move(vector));
  }
  return vectors;
}

std::vector<Descriptor> Descriptors() {
  std::vector<Descriptor> descriptors;
  for (auto& row : Rows("descriptors.csv")) {
    const std::string where = row.extract("where").mapped();
    const std::string className = "CCardFormat" + row.extract("format").mapped();
    descriptors.push_back({where, className, {row.begin(), row.end()}});
  }
  return descriptors;
}

std::string RecordAnswer(std::span<const std::uint8_t> record, std::int32_t errNumber,
                         std::string_view errName) {
  while (!record.empty() && record.back() == 0) record = record.first(record.size() - 1);
  return HexText(record) + ErrorAnswer(errNumber, errName);
}

std::string CardAnswer(const CCardData& card) {
  return std::to_string(card.CardType) + "/" + std::to_string(card.CardSubType) + " '" +
         card.Facility + "' '" + card.CardID + "' '" + card.Revision + "'" +
         ErrorAnswer(card.ErrNumber, card.ErrName);
}

std::string FaultAnswer(std::int32_t number) { return "fault " + std::to_string(number); }

}  // namespace vardel
