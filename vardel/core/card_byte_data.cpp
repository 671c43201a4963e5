#include <vardel/core/card_byte_data.h>
#include <vardel/core/host_fault.h>

#include <cstddef>
#include <new>

namespace vardel {

void CCardByteData::InitCardData(std::int32_t ParamCardType) try {
  InitErr();
  CardType(ParamCardType);
  if (ErrNumber() == 0) CardDataStruct = {};
} catch (const HostFault&) {
  // There is no error object, and so none to record that on.
} catch (const std::bad_alloc&) {
  // A text short enough to need no memory.
  MakeErr(kContentError, HostFault(Fault::OutOfMemory).what());
}

std::int32_t CCardByteData::CardDataByteCount() const {
  return static_cast<std::int32_t>(CardDataStruct.Bytes.size());
}

std::uint8_t CCardByteData::CardArrDataByIndex(std::int32_t ArrIndex) const {
  if (ArrIndex < 0 || ArrIndex >= CardDataByteCount()) return 0;
  return CardDataStruct.Bytes[static_cast<std::size_t>(ArrIndex)];
}

void CCardByteData::CardArrDataByIndex(std::int32_t ArrIndex, std::uint8_t value) {
  InitErr();
  if (ArrIndex < 0 || ArrIndex >= CardDataByteCount()) return;
  CardDataStruct.Bytes[static_cast<std::size_t>(ArrIndex)] = value;
}

}  // namespace vardel
