#pragma once

#include <vardel/core/byte_array.h>
#include <vardel/core/card_data.h>
#include <vardel/core/card_data_struct.h>
#include <vardel/core/enumerations.h>
#include <vardel/core/frame.h>
#include <vardel/format/card_format_info.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

/// The steps that several formats take alike.
namespace vardel::steps {

// --- bits of a card value; bit 0 is bit 0 of byte 0 ---

constexpr std::uint64_t GetBits(std::uint64_t value, int position, int width) {
  return (value >> position) & ((std::uint64_t{1} << width) - 1);
}

/// 1 when an odd number of the bits is set, 0 when an even number is.
std::uint64_t Parity(std::uint64_t bits);

/// The first bytes (at most 8) as a number, byte 0 least significant.
std::uint64_t LittleEndian(std::span<const std::uint8_t> bytes);

/// A number's bytes, cut or widened to `count` (at most 8) of them, as the number they then are.
std::uint64_t LowBytes(const ByteArray& bytes, std::size_t count);

/// The bytes of a card value, byte 0 least significant.
std::array<std::uint8_t, 8> BytesOf(std::uint64_t value);

// --- encode ---

/// Records a content error on the format and gives the all-zero record that goes with it.
CardDataStruct Reject(CCardFormatInfo& format, std::string_view message);

/// The card's facility code or card number, when it is numeric and within the format's limits;
/// otherwise the error is recorded on the format.
std::optional<double> AcceptFacility(CCardFormatInfo& format, const CCardData& card);
std::optional<double> AcceptCardID(CCardFormatInfo& format, const CCardData& card);

/// Whether the card is of the format's own type pair; otherwise the error is recorded on the
/// format.
bool AcceptType(CCardFormatInfo& format, const CCardData& card, CardType type, int subType);

/// Ends in the faults of NumberToBytes, for formats that convert a field without using its bytes.
void CheckConversion(double number);

/// Closes an encode: the bytes, widened to a full record and turned around when
/// `IsCardArrayReversed` says so. More bytes than a record can index are rejected.
CardDataStruct MakeRecord(CCardFormatInfo& format, std::span<const std::uint8_t> bytes);

// --- decode ---

/// Fewest bytes of a read that the proximity formats take, whatever they need.
inline constexpr std::size_t kMinProximityBytes = 6;
/// The same for the smart-card formats that parse hexadecimal text.
inline constexpr std::size_t kMinSmartCardBytes = 16;

/// How often a decoder reads the raw bytes again, without using them. A host's frame sees, and may
/// refuse, each of these reads.
struct Rereads {
  int always;
  int whenReversed;
};

/// The bytes of a read, parsed from the frame's hexadecimal text; its byte array only says how
/// many. Nothing when `result` already is the answer: too few bytes ("Too Small Card Data" is
/// recorded on it) or a blank read (no error). Malformed or short text, or no byte array, is
/// fault 13.
std::optional<ByteArray> ReadBytes(const CCardFormatInfo& format, const ICardFrame& frame,
                                   std::size_t minBytes, Rereads rereads, CCardData& result);

/// The frame's raw bytes; fault 13 when it has no byte array.
std::span<const std::uint8_t> RequireRawBytes(const ICardFrame& frame);

/// Records "Too Small Card Data" on the result.
void MakeTooSmall(CCardData& result);

/// The pattern of a read without a card: all bytes 00 or all FF. No bytes are both.
bool IsBlank(std::span<const std::uint8_t> bytes);

/// A number of work bytes that the descriptor gives; fault 9 unless it is from `needed` up to the
/// 32 bytes of a record.
int WorkBytes(std::int16_t count, int needed);

/// Writes the two numbers into the result, filled with zeros to the format's character counts;
/// nothing gives "".
void PutNumbers(const CCardFormatInfo& format, std::optional<double> facility,
                std::optional<double> cardID, CCardData& result);

}  // namespace vardel::steps
