// An example host: encodes the cards of one file and decodes the reads of another.
//
//   convert_cards cards.csv reads.csv
//
// cards.csv: type, sub-type, facility, card ID, revision; what an operator types.
// reads.csv: frame type, sub-type, EM flag (0 or 1), hexadecimal text; what a reader delivers.

#include <vardel/core/card_frame.h>
#include <vardel/core/host_fault.h>
#include <vardel/facade/card.h>
#include <vardel/formats/card_formats.h>

#include <fstream>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Totals {
  int rows = 0;
  int converted = 0;
  int errors = 0;
  int faults = 0;
};

/// The rows of a file, without its heading; every row has `columns` of them.
std::vector<std::vector<std::string>> ReadRows(const char* path, std::size_t columns) {
  std::ifstream stream(path);
  if (!stream) throw std::runtime_error(std::string("cannot read ") + path);
  std::vector<std::vector<std::string>> rows;
  std::string line;
  std::getline(stream, line);
  while (std::getline(stream, line)) {
    std::istringstream cells(line);
    std::vector<std::string> row;
    for (std::string cell; std::getline(cells, cell, ',');) row.push_back(cell);
    row.resize(columns);
    rows.push_back(row);
  }
  return rows;
}

/// Prints one row with what `convert` makes of it: a result, or a recorded error.
template <class Convert>
void PrintRow(const std::vector<std::string>& row, Totals& totals, Convert convert) {
  std::string joined;
  for (const std::string& cell : row) joined += (joined.empty() ? "" : ",") + cell;
  if (joined.size() > 40) joined.replace(37, std::string::npos, "...");
  std::cout << std::left << std::setw(42) << joined;
  ++totals.rows;
  try {
    std::string error;
    const std::string result = convert(error);
    if (error.empty()) {
      ++totals.converted;
      std::cout << result << "\n";
    } else {
      ++totals.errors;
      std::cout << "error: " << error << "\n";
    }
  } catch (const vardel::HostFault& fault) {
    ++totals.faults;
    std::cout << "fault " << static_cast<int>(fault.Number()) << ": " << fault.what() << "\n";
  }
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

std::string Encode(vardel::CCard& facade, const std::vector<std::string>& row, std::string& error) {
  vardel::CCardData card;
  card.CardType = std::stoi(row[0]);
  card.CardSubType = static_cast<std::uint8_t>(std::stoi(row[1]));
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
  for (std::size_t i = 0; i < 16; ++i) text << std::setw(2) << int{record.Bytes[i]} << " ";
  return text.str() + "...";
}

std::string Decode(const vardel::CCard& facade, const std::vector<std::string>& row,
                   std::string& error) {
  const vardel::CCardFrame frame(std::stoi(row[0]), std::stoi(row[1]), row[3], row[2] == "1");
  const auto format = FormatOutsideFacade(facade, frame.FrameCardType(), frame.FrameCardSubType());
  const vardel::CCardData card = format == nullptr || frame.IsEMFrame()
                                     ? facade.AnalyzeCardData(frame)
                                     : format->AnalyzeCardData(frame).value();
  error = card.ErrName;
  if (card.Facility.empty() && card.CardID.empty()) return "(blank)";
  return "facility '" + card.Facility + "' card ID '" + card.CardID + "' revision '" +
         card.Revision + "'";
}

void PrintTotals(const char* what, const Totals& totals) {
  std::cout << totals.rows << " " << what << ": " << totals.converted << " converted, "
            << totals.errors << " errors, " << totals.faults << " faults";
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 3) {
    std::cerr << "usage: convert_cards cards.csv reads.csv\n";
    return 2;
  }
  vardel::CCard facade;
  Totals cards;
  std::cout << "Cards to encode\n";
  for (const auto& row : ReadRows(argv[1], 5)) {
    PrintRow(row, cards, [&](std::string& error) { return Encode(facade, row, error); });
  }
  Totals reads;
  std::cout << "\nReads to decode\n";
  for (const auto& row : ReadRows(argv[2], 4)) {
    PrintRow(row, reads, [&](std::string& error) { return Decode(facade, row, error); });
  }
  std::cout << "\n";
  PrintTotals("cards", cards);
  std::cout << "; ";
  PrintTotals("reads", reads);
  std::cout << "\n";
  return 0;
} catch (const std::exception& failure) {
  std::cerr << "convert_cards: " << failure.what() << "\n";
  return 1;
}
