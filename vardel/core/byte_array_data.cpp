#include <vardel/core/byte_array_data.h>
#include <vardel/core/host_fault.h>
#include <vardel/core/number.h>

#include <limits>

namespace vardel {

void CByteArrayData::InitData() {
  byteCount_ = 0;
  lastArrayIndex_ = -1;
}

void CByteArrayData::ByteCount(std::int32_t count) {
  if (count < 0) MakeErr(kContentError, message::kIncorrectByteCount);
  byteCount_ = count;
  byteAnd_ = 255;
  byteOr_ = 0;
  if (count == std::numeric_limits<std::int32_t>::min()) throw HostFault(Fault::Overflow);
  lastArrayIndex_ = count - 1;
}

void CByteArrayData::ByteOR(std::int32_t value) { byteOr_ = ToByte(value); }

void CByteArrayData::ByteAND(std::int32_t value) { byteAnd_ = ToByte(value); }

}  // namespace vardel
