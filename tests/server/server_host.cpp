#include "tests/server/server_host.h"

#include "tests/server/library_types.h"
#include <vardel/core/hex.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <span>

namespace vardel::server {
namespace {

/// What an automation type is: of a pointer, what it leads to.
struct Type {
  VARTYPE vt;
  int pointers = 0;
};
Type TypeOf(const ComPtr<ITypeInfo>& info, const TYPEDESC* type) {
  int pointers = 0;
  for (; type->vt == VT_PTR; type = type->lptdesc) ++pointers;
  if (type->vt != VT_USERDEFINED) return {type->vt, pointers};
  switch (AttributesOf(Referred(info, type->hreftype)).typekind) {
    case TKIND_ENUM:
      return {VT_I4, pointers};
    case TKIND_RECORD:
      return {VT_RECORD, pointers};
    default:
      return {VT_DISPATCH, pointers - 1};
  }
}

VARIANT Pointer(void* pointer) {
  VARIANT passed{};
  passed.vt = sizeof(void*) == 8 ? VT_I8 : VT_I4;
  passed.byref = pointer;
  return passed;
}

/// What an array in a variant holds.
template <class T>
std::span<T> Elements(const VARIANT& value) {
  return {static_cast<T*>(value.parray->pvData), value.parray->rgsabound[0].cElements};
}

}  // namespace

std::vector<DualInterface> InterfacesOf(IDispatch* object) {
  static const std::vector<LibraryType> types = LibraryTypes();
  std::vector<DualInterface> interfaces;
  for (const auto& [info, attributes] : types) {
    ComPtr<IUnknown> implemented;
    if (attributes.typekind == TKIND_DISPATCH &&
        object->QueryInterface(attributes.guid, reinterpret_cast<void**>(implemented.out())) ==
            S_OK) {
      interfaces.insert(interfaces.begin(), {Name(info), attributes.guid, Implemented(info, -1)});
    }
  }
  return interfaces;
}

void ForEachOperation(const DualInterface& dual, const VisitOperation& visit) {
  FUNCDESC* operation = nullptr;
  for (UINT i = 0; SUCCEEDED(dual.info->GetFuncDesc(i, &operation)); ++i) {
    visit(*operation, Name(dual.info, operation->memid));
    dual.info->ReleaseFuncDesc(operation);
  }
}

HRESULT CallVtable(IDispatch* object, const DualInterface& dual, const FUNCDESC& operation,
                   const std::vector<VARIANT*>& arguments, VARIANT* result) {
  std::deque<Variant> values;
  std::deque<VARIANT> passed;
  std::vector<VARTYPE> types;
  std::vector<VARIANT*> places;
  ::CardDataStruct record{};
  VARTYPE resultType = VT_EMPTY;
  for (std::size_t i = 0; i < static_cast<std::size_t>(operation.cParams); ++i) {
    const ELEMDESC& parameter = operation.lprgelemdescParam[i];
    const auto [type, pointers] = TypeOf(dual.info, &parameter.tdesc);
    Variant& value = values.emplace_back();
    if ((parameter.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0) {
      resultType = type;
      void* place = result == nullptr ? nullptr : &result->byref;
      if (place != nullptr && type == VT_VARIANT) place = result;
      if (place != nullptr && type == VT_RECORD) place = record.Bytes;
      passed.push_back(Pointer(place));
    } else if (i >= arguments.size() || arguments[i]->vt == VT_ERROR) {
      passed.push_back(Pointer(nullptr));
      if (pointers == 0) passed.back().vt = type;
    } else {
      EXPECT_EQ(type == VT_RECORD ? VariantCopy(&value, arguments[i])
                                  : VariantChangeType(&value, arguments[i], 0, type),
                S_OK);
      void* const place = type == VT_RECORD ? value.pvRecord : &value.byref;
      passed.push_back(pointers == 0 ? value : Pointer(place));
    }
    types.push_back(passed.back().vt);
    places.push_back(&passed.back());
  }
  ComPtr<IUnknown> instance;
  VARIANT status{};
  Require(object->QueryInterface(dual.id, reinterpret_cast<void**>(instance.out())));
  Require(DispCallFunc(instance.get(), static_cast<ULONG_PTR>(operation.oVft), operation.callconv,
                       VT_ERROR, static_cast<UINT>(places.size()), types.data(), places.data(),
                       &status));
  if (FAILED(status.scode) || result == nullptr) return status.scode;
  if (resultType == VT_RECORD) {
    // The server's own kind of record is had from a raw card.
    const auto raw = ServerModule().Create<::_CCardByteData>(CLSID_CCardByteData);
    raw->put_CardDataStruct(&record);
    return Call(raw.get(), L"CardDataStruct", DISPATCH_PROPERTYGET, {}, result).status;
  }
  if (resultType != VT_VARIANT) result->vt = resultType;
  return status.scode;
}

void ServerHost::New(const std::string& name, const std::string& className) {
  Variant& value = values_[name];
  VariantClear(&value);
  static const auto classes = LibraryClasses();
  value.pdispVal = module_.Create<IDispatch>(classes.at(className)).Detach();
  value.vt = VT_DISPATCH;
}

void ServerHost::Fill(Variant& value, const Word& word) {
  const auto& [text, isText] = word;
  if (isText) {
    value.vt = VT_BSTR;
    value.bstrVal = NewBstr(text);
  } else if (const auto known = values_.find(text); known != values_.end()) {
    VariantCopy(&value, &known->second);
  } else if (text == "True" || text == "False") {
    value.vt = VT_BOOL;
    value.boolVal = text == "True" ? VARIANT_TRUE : VARIANT_FALSE;
  } else if (text == "nothing") {
    value.vt = VT_DISPATCH;
  } else if (text == "missing") {
    value.vt = VT_ERROR;
    value.scode = DISP_E_PARAMNOTFOUND;
  } else {
    value.vt = VT_R8;
    value.dblVal = std::stod(text);
  }
}

Outcome ServerHost::RunLate(const vardel::Call& call, const std::vector<VARIANT*>& arguments,
                            VARIANT* result) {
  IDispatch* const object = values_.at(call.object).pdispVal;
  WORD flags = DISPATCH_METHOD | DISPATCH_PROPERTYGET;
  if (call.isPut) {
    const bool isObject = arguments.back()->vt == VT_DISPATCH;
    flags = isObject ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT;
  } else {
    const Outcome prefixed =
        Call(object, Wide("CCardFormatInfo_" + call.member), flags, arguments, result);
    if (prefixed.status != DISP_E_UNKNOWNNAME) return prefixed;
  }
  return Call(object, Wide(call.member), flags, arguments, call.isPut ? nullptr : result);
}

Outcome ServerHost::RunEarly(const vardel::Call& call, const std::vector<VARIANT*>& arguments,
                             VARIANT* result) {
  IDispatch* const object = values_.at(call.object).pdispVal;
  const int kinds =
      call.isPut ? INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF : INVOKE_FUNC | INVOKE_PROPERTYGET;
  HRESULT status = DISP_E_UNKNOWNNAME;
  for (const DualInterface& dual : InterfacesOf(object)) {
    ForEachOperation(dual, [&](const FUNCDESC& operation, const std::string& name) {
      if (status == DISP_E_UNKNOWNNAME && (operation.invkind & kinds) != 0 &&
          (name == call.member || name == "CCardFormatInfo_" + call.member)) {
        status = CallVtable(object, dual, operation, arguments, result);
      }
    });
  }
  return EarlyOutcome(status);
}

std::string ServerHost::Run(const vardel::Call& call) {
  std::deque<Variant> values;
  std::vector<VARIANT*> arguments;
  for (const Word& word : call.arguments) {
    Fill(values.emplace_back(), word);
    arguments.push_back(&values.back());
  }
  Variant result;
  const Outcome outcome = binding_ == Binding::Late ? RunLate(call, arguments, &result)
                                                    : RunEarly(call, arguments, &result);
  if (outcome.status == DISP_E_EXCEPTION) {
    EXPECT_TRUE(outcome.source.starts_with(L"Vardel.C")) << Utf8(outcome.source);
    EXPECT_FALSE(outcome.description.empty());
    return "fault " + std::to_string(outcome.fault);
  }
  if (FAILED(outcome.status)) return "status " + std::to_string(outcome.status & 0xFFFF);
  if (!call.keepAs.empty()) VariantCopy(&values_[call.keepAs], &result);
  return Show(result);
}

std::string ServerHost::Show(VARIANT& value) const {
  std::string text;
  switch (value.vt) {
    case VT_EMPTY:
      return "";
    case VT_BSTR:
      return ShowText(Utf8(value.bstrVal));
    case VT_BOOL:
      return value.boolVal == VARIANT_TRUE ? "True" : "False";
    case VT_DISPATCH:
      for (const auto& [name, known] : values_) {
        if (known.vt == VT_DISPATCH && known.pdispVal == value.pdispVal) return name;
      }
      return value.pdispVal == nullptr ? "nothing" : "an object";
    case VT_RECORD:
      return ShowRecord({static_cast<std::uint8_t*>(value.pvRecord), 32});
    case VT_ARRAY | VT_UI1:
      return HexText(Elements<std::uint8_t>(value));
    case VT_ARRAY | VT_VARIANT:
      for (VARIANT& each : Elements<VARIANT>(value)) text += (text.empty() ? "" : " ") + Show(each);
      return text;
    default:
      Variant number;
      EXPECT_EQ(VariantChangeType(&number, &value, 0, VT_R8), S_OK) << "of type " << value.vt;
      return ShowNumber(number.dblVal);
  }
}

int ServerHost::FrameKinds(const FrameData& data) const {
  // Our own frame's text and bytes always agree.
  return data.bytes && HexText(*data.bytes) == data.hex ? 3 : 2;
}

void ServerHost::NewFrame(const std::string& name, const FrameData& data, int kind) {
  if (kind == 2) {
    New(name, "CCardFrame");
    Run({name, "RawCardHex", {{data.hex, true}}, true});
    return;
  }
  HostFrame& frame = frames_.emplace_back();
  frame.bytes = data.bytes;
  frame.hex = Wide(data.hex);
  Variant& value = values_[name];
  VariantClear(&value);
  value.vt = VT_DISPATCH;
  value.pdispVal = kind == 0 ? &frame : frame.ByNames().Detach();
}

void ServerHost::Reset() {
  values_.clear();
  frames_.clear();
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(module_.CanUnloadNow(), S_OK) << "an object is left";
}

}  // namespace vardel::server
