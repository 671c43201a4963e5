#include <vardel/core/error.h>
#include <vardel/core/hex.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/number.h>
#include <vardel/formats/decode.h>

#include <cstring>

namespace vardel::decode {

std::optional<ByteArray> ReadBytes(const CCardFormatInfo& format, const ICardFrame& frame,
                                   std::size_t leastBytes, IdleReads idleReads, CCardData& result) {
  // Made where it is returned: a copy would have to wait for the bytes just stored.
  std::optional<ByteArray> bytes(std::in_place, RequireRawBytes(frame).size());
  if (bytes->size() < leastBytes) {
    RecordTooSmall(result);
    bytes.reset();
    return bytes;
  }
  ParseHex(frame.RawCardHex(), *bytes);
  if (IsBlank(*bytes)) {
    bytes.reset();
    return bytes;
  }
  const int count = idleReads.always + (format.IsCardArrayReversed ? idleReads.whenReversed : 0);
  for (int i = 0; i < count; ++i) RequireRawBytes(frame);
  return bytes;
}

std::span<const std::uint8_t> RequireRawBytes(const ICardFrame& frame) {
  const RawBytes bytes = frame.RawCardBytes();
  if (!bytes) throw HostFault(Fault::TypeMismatch);
  return *bytes;
}

void RecordTooSmall(CCardData& result) {
  result.ErrNumber = kContentError;
  result.ErrName = message::kTooSmallCardData;
}

bool IsBlank(std::span<const std::uint8_t> bytes) {
  // All bytes are alike, and like the first.
  if (bytes.empty()) return true;
  const std::uint8_t first = bytes.front();
  return (first == 0 || first == 0xFF) &&
         std::memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0;
}

void PutNumbers(const CCardFormatInfo& format, std::uint64_t facility, std::uint64_t cardID,
                CCardData& result) {
  AssignNumber(result.Facility, facility, format.CharCountFacility);
  AssignNumber(result.CardID, cardID, format.CharCountCardID);
}

}  // namespace vardel::decode
