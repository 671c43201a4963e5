#include <vardel/formats/decode.h>
#include <vardel/formats/layout_26bit.h>

namespace vardel::layout_26bit {

void PutFields(const CCardFormatInfo& format, const ByteArray& bytes, CCardData& result) {
  decode::RequireOccupied(format.OccupiedByteCardId, 1);
  decode::RequireOccupied(format.OccupiedByteFacility, 1);

  // Parity and everything above bit 25 are cleared: bits 1 to 24 remain.
  const std::uint64_t value = decode::ValueOf<4>(bytes) & bits::Range(1, 24);
  const auto byteAt = [value](int index) { return index < 4 ? bits::Get(value, 8 * index, 8) : 0; };

  // The card number ends with bit 0 of its last byte; the facility code begins with the other seven
  // bits of that byte and ends with bit 0 of its own last one. Both still have bit 0 of the value,
  // cleared, below them.
  const int shared = format.OccupiedByteCardId - 1;
  const int last = shared + format.OccupiedByteFacility - 1;
  const std::uint64_t cardID = shared < 4 ? bits::Get(value, 0, 8 * shared + 1) : value;
  std::uint64_t facility = byteAt(shared) & 0xFE;
  if (last > shared && last < 4) facility |= (byteAt(last) & 1) << 8 * (last - shared);
  decode::PutNumbers(format, facility >> 1, cardID >> 1, result);
}

}  // namespace vardel::layout_26bit
