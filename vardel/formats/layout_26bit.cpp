#include <vardel/formats/layout_26bit.h>
#include <vardel/formats/steps.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace vardel::layout_26bit {

CardDataStruct Encode(CCardFormatInfo& format, const steps::Fields& fields) {
  constexpr double kFacilityWeight = 1 << 17;
  const double sum = kFacilityWeight * fields.facility + (fields.cardID + fields.cardID);
  std::uint64_t value = steps::NumberBytes(sum, 4);
  const std::uint64_t odd = 1 ^ steps::Parity(steps::GetBits(value, 0, 13));
  const std::uint64_t even = steps::Parity(steps::GetBits(value, 13, 12));
  value |= odd | even << 25;
  return steps::MakeRecord(format, value);
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
  double facility = static_cast<double>(byteAt(shared) & 0xFE);
  if (facilityBytes > 1) {
    double weight = 1;
    for (int i = 1; i < facilityBytes; ++i) weight *= 256;
    facility += static_cast<double>(byteAt(shared + facilityBytes - 1) & 1) * weight;
  }
  steps::PutNumbers(format, facility / 2, static_cast<double>(cardID) / 2, result);
}

}  // namespace vardel::layout_26bit
