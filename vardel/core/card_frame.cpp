#include <vardel/core/card_frame.h>
#include <vardel/core/hex.h>
#include <vardel/core/host_fault.h>

#include <utility>

namespace vardel {

CCardFrame::CCardFrame(std::int32_t cardType, std::int32_t cardSubType, std::string_view rawCardHex,
                       bool isEMFrame)
    : cardType_(cardType), cardSubType_(cardSubType), isEMFrame_(isEMFrame) {
  RawCardHex(rawCardHex);
}

CCardFrame CCardFrame::DataOf(const ICardFrame& frame) {
  CCardFrame copy;
  const RawBytes bytes = frame.RawCardBytes();
  copy.bytes_ = bytes ? std::optional<ByteArray>(*bytes) : std::nullopt;
  copy.hex_ = frame.RawCardHex();
  return copy;
}

void CCardFrame::RawCardHex(std::string_view hex) {
  if (hex.size() % 2 != 0) throw HostFault(Fault::TypeMismatch);
  ByteArray bytes(hex.size() / 2);
  ParseHex(hex, bytes);
  hex_ = hex;
  bytes_ = std::move(bytes);
}

void CCardFrame::CardDataStruct(const vardel::CardDataStruct& record) {
  RawCardHex(HexText(record.Bytes));
}

}  // namespace vardel
