#include <vardel/facade/card_type.h>

namespace vardel {

void CCardType::initAll() {
  InitErr();
  InitData();
}

void CCardType::InitData() {
  typeCode_ = 0;
  ShortName.clear();
  TypeName.clear();
  defaultShortName_.clear();
  defaultName_.clear();
  IsAvailable = true;
}

}  // namespace vardel
