#include <vardel/core/host_fault.h>
#include <vardel/server/foreign_objects.h>
#include <vardel/server/status.h>

namespace vardel::server {
namespace {

void Require(HRESULT status) {
  if (FAILED(status)) ThrowFailure(status, L"A member of the card object failed");
}

std::string Text(::_CCardData& card, HRESULT (STDMETHODCALLTYPE ::_CCardData::*get)(BSTR*)) {
  Variant text;
  text.vt = VT_BSTR;
  Require((card.*get)(&text.bstrVal));
  return Utf8(text.bstrVal);
}

}  // namespace

std::shared_ptr<vardel::CCardData> FromElsewhere(::_CCardData& card) {
  SetErrorInfo(0, nullptr);
  auto copy = std::make_shared<vardel::CCardData>();
  ::CardType type{};
  Require(card.get_CardType(&type));
  copy->CardType = type;
  Require(card.get_CardSubType(&copy->CardSubType));
  copy->Facility = Text(card, &::_CCardData::get_Facility);
  copy->CardID = Text(card, &::_CCardData::get_CardID);
  copy->Revision = Text(card, &::_CCardData::get_Revision);
  return copy;
}

std::nullptr_t FromElsewhere(IDispatch& /*object*/) {
  throw Failure(StatusOfFault(static_cast<int>(Fault::TypeMismatch)),
                L"Type mismatch: an object of another apartment, or of another copy of the "
                L"library, cannot be shared",
                L"");
}

}  // namespace vardel::server
