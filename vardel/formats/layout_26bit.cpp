#include <vardel/format/mod_card.h>
#include <vardel/formats/layout_26bit.h>
#include <vardel/formats/steps.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

namespace vardel::layout_26bit {

CardDataStruct Encode(CCardFormatInfo& format, double facility, double cardID) {
  const double sum = std::exp2(17) * facility + (cardID + cardID);
  std::uint64_t value = steps::LowBytes(NumberToBytes(sum), 4);
  const std::uint64_t odd = 1 ^ steps::Parity(steps::GetBits(value, 0, 13));
  const std::uint64_t even = steps::Parity(steps::GetBits(value, 13, 12));
  value |= odd | even << 25;
  return steps::MakeRecord(format, steps::BytesOf(value));
}

void PutFields(const CCardFormatInfo& format, const ByteArray& bytes, CCardData& result) {
  const int cardBytes = steps::WorkBytes(format.OccupiedByteCardId, 1);
  const int facilityBytes = steps::WorkBytes(format.OccupiedByteFacility, 1);

  // Parity and everything above bit 25 are cleared: bits 1 to 24 remain.
  const std::uint64_t value = steps::LittleEndian(std::span(bytes).first(4)) & 0x01FFFFFE;
  const auto byteAt = [value](int index) {
    return index < 4 ? steps::GetBits(value, 8 * index, 8) : 0;
  };

  // The card number ends with bit 0 of its last byte; the facility code begins with the other seven
  // bits of that byte and ends with bit 0 of its own last one. Both still have bit 0 of the value,
  // cleared, below them.
  const int shared = cardBytes - 1;
  const std::uint64_t cardID = shared < 4 ? steps::GetBits(value, 0, 8 * shared + 1) : value;
  auto facility = static_cast<double>(byteAt(shared) & 0xFE);
  if (facilityBytes > 1) {
    const std::uint64_t top = byteAt(shared + facilityBytes - 1) & 1;
    facility += static_cast<double>(top) * std::exp2(8 * (facilityBytes - 1));
  }
  steps::PutNumbers(format, facility / 2, static_cast<double>(cardID) / 2, result);
}

}  // namespace vardel::layout_26bit
