#include <vardel/formats/layout_26bit.h>
#include <vardel/formats/steps.h>

#include <cstdint>
#include <span>

namespace vardel::layout_26bit {

void Encode(const CCardFormatInfo& format, const steps::Fields& fields, CardDataStruct& record) {
  std::uint64_t value = steps::PackFields(fields, 17, 4);
  const std::uint64_t odd = 1 ^ steps::Parity(steps::GetBits(value, 0, 13));
  const std::uint64_t even = steps::Parity(steps::GetBits(value, 13, 12));
  value |= odd | even << 25;
  steps::PutRecord(format, value, record);
}

void PutFields(const CCardFormatInfo& format, const ByteArray& bytes, CCardData& result) {
  const int cardBytes = format.OccupiedByteCardId;
  const int facilityBytes = format.OccupiedByteFacility;
  steps::RequireBytes(format.OccupiedByteCardId, 1);
  steps::RequireBytes(format.OccupiedByteFacility, 1);

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
  std::uint64_t facility = byteAt(shared) & 0xFE;
  if (facilityBytes > 1 && (byteAt(shared + facilityBytes - 1) & 1) != 0) {
    facility |= std::uint64_t{1} << 8 * (facilityBytes - 1);  // within the value's four bytes
  }
  steps::PutNumbers(format, facility >> 1, cardID >> 1, result);
}

}  // namespace vardel::layout_26bit
