#include <vardel/core/bits.h>
#include <vardel/core/byte_array.h>
#include <vardel/core/hex.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/number.h>
#include <vardel/facade/card_matches.h>
#include <vardel/format/format_parameters.h>
#include <vardel/formats/decode.h>
#include <vardel/formats/format_table.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

namespace vardel {
namespace {

bool IsBlank(const CCardFrame& read) {
  // No format looks at more text than the array has bytes.
  const RawBytes bytes = read.RawCardBytes();
  const std::string_view hex =
      read.RawCardHex().substr(0, bytes ? 2 * bytes->size() : std::string_view::npos);
  const auto isAll = [&](std::string_view digits) {
    return hex.find_first_not_of(digits) == std::string_view::npos;
  };
  return (!bytes || decode::IsBlank(*bytes)) && (isAll("0") || isAll("Ff"));
}

/// The bytes that a format with this layout decodes; its own fault where it cannot.
ByteArray BytesFor(const CardLayout& layout, const CCardFrame& read) {
  ByteArray bytes(decode::RequireRawBytes(read));
  if (!layout.IsByteArray) ParseHex(read.RawCardHex(), bytes);
  return bytes;
}

bool HasParity(const CardLayout& layout, const ByteArray& bytes) {
  std::array<std::uint8_t, 8> low{};
  std::ranges::copy_n(bytes.begin(), std::min<std::ptrdiff_t>(std::ssize(bytes), low.size()),
                      low.begin());
  return bits::HasParity(bits::FromBytes(std::span<const std::uint8_t, 8>(low)), layout.Parity);
}

bool HasUnusedSet(const CardLayout& layout, std::span<const std::uint8_t> bytes) {
  const auto whole = static_cast<std::size_t>(layout.Bits / 8);
  if (whole >= bytes.size()) return false;
  const auto behind = bytes.subspan(whole + 1);
  return bytes[whole] >> layout.Bits % 8 != 0 ||
         std::ranges::any_of(behind, [](std::uint8_t byte) { return byte != 0; });
}

bool IsWithinLimits(const CCardFormatInfo& format, const CardLayout& layout,
                    const CCardData& card) {
  // Only its encode holds a number that is the whole read against the limits.
  if (layout.Bits == kWholeRead) {
    return IsNumberWithin(card.CardID, format.MinCardID, format.MaxCardID);
  }
  const auto* const revision = dynamic_cast<const RevisionValidator*>(&format);
  return format.IsFacilityValid(card.Facility) && format.IsCardIDValid(card.CardID) &&
         (revision == nullptr || revision->IsRevisionValid(card.Revision));
}

/// Nothing where the format does not fit all reads.
std::optional<CCardMatch> Match(const CardFormatClass& row, std::span<const CCardFrame> reads) try {
  const auto format = row.Create();
  const CardLayout& layout = LayoutOf(*format);
  CCardMatch match;
  match.ClassName = row.ClassName;
  match.CardType = row.CardType;
  match.CardSubType = row.CardSubType;
  match.HasParity = !layout.Parity.empty();
  for (const CCardFrame& read : reads) {
    const ByteArray bytes = BytesFor(layout, read);
    CCardData card = format->AnalyzeCardData(read).value();
    if (decode::IsBlank(bytes) || card.ErrNumber != 0) return std::nullopt;
    if (match.HasParity && HasParity(layout, bytes)) ++match.ParityHolds;
    if (HasUnusedSet(layout, bytes)) ++match.UnusedSet;
    if (!IsWithinLimits(*format, layout, card)) ++match.BeyondLimits;
    match.Cards.push_back(std::move(card));
  }
  return match;
} catch (const HostFault&) {
  return std::nullopt;
}

/// What comes first is less.
auto Rank(const CCardMatch& match) {
  const std::int32_t broken = match.HasParity ? match.CardCount() - match.ParityHolds : 0;
  const int verdict = broken != 0 ? 2 : match.HasParity ? 0 : 1;
  return std::tuple(verdict, broken, match.UnusedSet, match.BeyondLimits);
}

/// The place of an index in a list; fault 9 where there is none.
std::size_t PlaceIn(std::size_t size, std::int32_t index) {
  const auto place = static_cast<std::size_t>(index);  // a negative one lies far behind
  if (place >= size) throw HostFault(Fault::OutOfRange);
  return place;
}

}  // namespace

CCardData CCardMatch::CardData(std::int32_t Index) const {
  return Cards[PlaceIn(Cards.size(), Index)];
}

void CCardMatches::Add(const ICardFrame* Read) {
  // The formats ask for it again and again, and a fault is theirs then, not the frame's.
  CCardFrame read = CCardFrame::DataOf(RequireObject(Read));
  if (IsBlank(read)) {
    ++blankCount_;
    return;
  }
  reads_.push_back(std::move(read));
  answer_.reset();
}

std::int32_t CCardMatches::ReadCount() const {
  return blankCount_ + static_cast<std::int32_t>(reads_.size());
}

std::shared_ptr<CCardMatch> CCardMatches::Item(std::int32_t Index) const {
  const auto& answer = Answer();
  return {answer, &(*answer)[PlaceIn(answer->size(), Index)]};
}

const std::shared_ptr<std::vector<CCardMatch>>& CCardMatches::Answer() const {
  if (answer_ != nullptr) return answer_;
  auto matches = std::make_shared<std::vector<CCardMatch>>();
  for (const CardFormatClass& row : kFormatTable) {
    if (reads_.empty()) break;
    if (auto match = Match(row, reads_)) matches->push_back(*std::move(match));
  }
  std::ranges::stable_sort(*matches, {}, Rank);
  return answer_ = std::move(matches);
}

CCardMatches MatchCardData(std::span<const ICardFrame* const> Reads) {
  CCardMatches matches;
  for (const ICardFrame* const read : Reads) matches.Add(read);
  return matches;
}

CCardMatches MatchCardData(const ICardFrame& Read) {
  CCardMatches matches;
  matches.Add(Read);
  return matches;
}

}  // namespace vardel
