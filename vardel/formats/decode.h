#pragma once

#include <vardel/core/bits.h>
#include <vardel/core/byte_array.h>
#include <vardel/core/card_data.h>
#include <vardel/core/frame.h>
#include <vardel/core/host_fault.h>
#include <vardel/format/card_format_info.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

/// The steps that several decoders share.
namespace vardel::decode {

/// Fewest bytes of a read that the proximity formats take, whatever they need.
inline constexpr std::size_t kLeastProximityBytes = 6;
/// The same for the smart-card formats that parse hexadecimal text.
inline constexpr std::size_t kLeastSmartCardBytes = 16;

/// How often a decoder asks the frame for its raw bytes once more, after the text and without using
/// them. A host's frame counts the reads and may refuse any of them, so each format keeps to its
/// number.
struct IdleReads {
  int always;
  int whenReversed;
};

/// The bytes of a read, parsed from the frame's hexadecimal text; its byte array only says how
/// many. Nothing when `result` already is the answer: too few bytes ("Too Small Card Data" is
/// recorded on it) or a blank read (no error). Malformed or short text, or no byte array, is
/// fault 13.
std::optional<ByteArray> ReadBytes(const CCardFormatInfo& format, const ICardFrame& frame,
                                   std::size_t leastBytes, IdleReads idleReads, CCardData& result);

/// The frame's raw bytes; fault 13 when it has no byte array.
std::span<const std::uint8_t> RequireRawBytes(const ICardFrame& frame);

/// Records "Too Small Card Data" on the result.
void RecordTooSmall(CCardData& result);

/// The pattern of a read without a card: all bytes 00 or all FF. No bytes are both.
bool IsBlank(std::span<const std::uint8_t> bytes);

/// Ends in fault 9 where a descriptor's count of occupied bytes is below what the decoder needs.
/// More are no harm: what lies beyond the read is skipped.
inline void RequireOccupied(std::int16_t count, int needed) {
  if (count < needed) throw HostFault(Fault::OutOfRange);
}

/// The card value in the first `Count` bytes, which the read must have.
template <std::size_t Count>
std::uint64_t ValueOf(const ByteArray& bytes) {
  return bits::FromBytes(std::span(bytes).template first<Count>());
}

/// Writes the two numbers into the result, filled with zeros to the format's character counts.
void PutNumbers(const CCardFormatInfo& format, std::uint64_t facility, std::uint64_t cardID,
                CCardData& result);

}  // namespace vardel::decode
