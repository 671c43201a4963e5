#pragma once

#include <vardel/core/card_data.h>
#include <vardel/core/card_frame.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace vardel {

/// A format that fits all reads of a CCardMatches, and what speaks for and against it.
class CCardMatch {
 public:
  /// As in CardFormatClasses.
  std::string_view ClassName;
  std::int32_t CardType = 0;
  std::int32_t CardSubType = 0;

  /// The layout has parity bits: all but HID full binary and the smart cards'.
  bool HasParity = false;
  /// Of how many reads every parity bit is right; 0 without parity.
  std::int32_t ParityHolds = 0;
  /// How many reads have bits set that the layout does not use, those of further bytes included.
  /// HID full binary uses all.
  std::int32_t UnusedSet = 0;
  /// How many reads give a field that the format's validators refuse. In HID full binary, whose
  /// validators take any text, it is a card number outside MinCardID to MaxCardID.
  std::int32_t BeyondLimits = 0;

  /// What the format makes of each read that is not blank, in their order. Type and sub-type are as
  /// its decode sets them.
  std::vector<CCardData> Cards;
  std::int32_t CardCount() const { return static_cast<std::int32_t>(Cards.size()); }
  /// A card by its index, from 0; fault 9 where there is none.
  CCardData CardData(std::int32_t Index) const;
};

/// Which formats some reads can be of, when nobody knows. Every format that takes them all is a
/// match; a format that records an error for one of them, or ends in a fault, is none. The formats
/// are new objects with their own values, whatever a host has set in its own.
///
/// One read often fits several layouts: parity that a layout does not have holds in it by chance
/// for a quarter to a half of the cards, and EM and HID standard are the same to the bit. Five to
/// ten reads of different cards tell all others apart.
class CCardMatches {
 public:
  /// Adds a read: its bytes and its text, each of which counts for the formats that decode it. Both
  /// are taken at once, and the frame is not asked again; its type pair does not matter. What the
  /// frame throws passes, and nothing is added then. A null frame is fault 91.
  ///
  /// A read whose bytes and text are both blank (all 00, all FF, or none) is only counted. A format
  /// to which one is blank that is not so for others does not fit.
  void Add(const ICardFrame& Read) { Add(&Read); }
  void Add(const ICardFrame* Read);
  /// Drops all reads.
  void Clear() { *this = {}; }

  /// How many reads were added, and how many of these are blank.
  std::int32_t ReadCount() const;
  std::int32_t BlankCount() const { return blankCount_; }

  /// The formats that fit, the best first: where all parities hold, then where there is none to
  /// check, then where some are broken, the fewer the better; then by the number of reads with
  /// unused bits set; then of those beyond the limits; then as in CardFormatClasses. There is none
  /// while all reads are blank.
  const std::vector<CCardMatch>& Matches() const { return *Answer(); }
  std::int32_t Count() const { return static_cast<std::int32_t>(Matches().size()); }
  /// A match by its index, from 0; fault 9 where there is none. The same object until the next read
  /// is added; who holds it keeps it as it is.
  std::shared_ptr<CCardMatch> Item(std::int32_t Index) const;

 private:
  const std::shared_ptr<std::vector<CCardMatch>>& Answer() const;

  std::vector<CCardFrame> reads_;  // that are not blank
  std::int32_t blankCount_ = 0;
  mutable std::shared_ptr<std::vector<CCardMatch>> answer_;  // null until somebody asks
};

/// What some reads can be: all of them, or one.
CCardMatches MatchCardData(std::span<const ICardFrame* const> Reads);
CCardMatches MatchCardData(const ICardFrame& Read);

}  // namespace vardel
