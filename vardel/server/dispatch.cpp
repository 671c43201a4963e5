#include <vardel/core/host_fault.h>
#include <vardel/server/dispatch.h>
#include <vardel/server/record_info.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

namespace vardel::server {
namespace {

bool IsOmitted(const VARIANT& argument) {
  return argument.vt == VT_ERROR && argument.scode == DISP_E_PARAMNOTFOUND;
}

/// An argument as the vtable takes it, and what it needs until the call is over.
struct Argument {
  Variant value;  // by value, or what `passed` points to
  vardel::CardDataStruct record;
  VARIANT passed{};
};

HRESULT ConvertObject(const VARIANT& source, const Parameter& parameter, Variant& value) {
  IUnknown* object = nullptr;
  switch (source.vt) {
    case VT_NULL:
      break;
    case VT_DISPATCH:
    case VT_UNKNOWN:
      object = source.punkVal;
      break;
    case VT_BYREF | VT_DISPATCH:
    case VT_BYREF | VT_UNKNOWN:
      object = *source.ppunkVal;
      break;
    default:
      return DISP_E_TYPEMISMATCH;
  }
  value.vt = VT_DISPATCH;
  value.pdispVal = nullptr;
  if (object == nullptr) return S_OK;
  const HRESULT status =
      object->QueryInterface(parameter.guid, reinterpret_cast<void**>(&value.pdispVal));
  return SUCCEEDED(status) ? S_OK : DISP_E_TYPEMISMATCH;
}

HRESULT Convert(const VARIANT& given, const Parameter& parameter, Argument& argument) {
  const VARIANT* const unwrapped = ValueOf(given);
  if (unwrapped == nullptr) return DISP_E_TYPEMISMATCH;
  const VARIANT& source = *unwrapped;
  if (IsOmitted(source)) {
    if (!parameter.isOptional) return DISP_E_PARAMNOTOPTIONAL;
    argument.passed.vt = VT_BYREF | VT_UI1;
    argument.passed.byref = nullptr;
    return S_OK;
  }
  if (parameter.type == VT_RECORD) {
    argument.passed.vt = VT_BYREF | VT_UI1;
    argument.passed.byref = argument.record.Bytes.data();
    return ConvertToRecord(source, argument.record);
  }

  const HRESULT status = parameter.type == VT_DISPATCH
                             ? ConvertObject(source, parameter, argument.value)
                             : ChangeType(argument.value, source, parameter.type);
  if (FAILED(status)) return status;
  if (parameter.isByRef) {
    argument.passed.vt = static_cast<VARTYPE>(VT_BYREF | parameter.type);
    argument.passed.byref = &argument.value.llVal;
  } else {
    argument.passed = argument.value;
  }
  return S_OK;
}

/// Which kind of member the flags ask for; a host that only says "put" may mean either.
bool Matches(INVOKEKIND kind, WORD flags) {
  if ((kind & flags) != 0) return true;
  return kind == INVOKE_PROPERTYPUTREF && (flags & DISPATCH_PROPERTYPUT) != 0;
}

/// The arguments in the order of the parameters; null for an omitted one. They come last first,
/// named ones before all others.
HRESULT Order(const DISPPARAMS& params, const Member& member, std::vector<const VARIANT*>& ordered,
              UINT* argumentError) {
  const std::size_t count = member.parameters.size();
  ordered.assign(count, nullptr);
  if (params.cArgs > count || params.cNamedArgs > params.cArgs) return DISP_E_BADPARAMCOUNT;
  if ((params.rgvarg == nullptr && params.cArgs > 0) ||
      (params.rgdispidNamedArgs == nullptr && params.cNamedArgs > 0)) {
    return E_INVALIDARG;
  }
  const UINT positional = params.cArgs - params.cNamedArgs;
  for (UINT i = 0; i < positional; ++i) ordered[i] = &params.rgvarg[params.cArgs - 1 - i];
  for (UINT i = 0; i < params.cNamedArgs; ++i) {
    const DISPID name = params.rgdispidNamedArgs[i];
    const std::size_t place =
        name == DISPID_PROPERTYPUT ? count - 1 : static_cast<std::size_t>(name);
    if (place >= count || ordered[place] != nullptr) {
      if (argumentError != nullptr) *argumentError = i;
      return DISP_E_PARAMNOTFOUND;
    }
    ordered[place] = &params.rgvarg[i];
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (ordered[i] == nullptr && !member.parameters[i].isOptional) return DISP_E_BADPARAMCOUNT;
  }
  return S_OK;
}

HRESULT Call(const DispatchTarget& target, const Member& member, const DISPPARAMS& params,
             VARIANT* result, EXCEPINFO* exception, UINT* argumentError) {
  std::vector<const VARIANT*> given;
  if (const HRESULT status = Order(params, member, given, argumentError); FAILED(status)) {
    return status;
  }
  Variant omitted;
  omitted.vt = VT_ERROR;
  omitted.scode = DISP_E_PARAMNOTFOUND;
  std::vector<Argument> arguments(given.size());
  for (std::size_t i = 0; i < given.size(); ++i) {
    const VARIANT* const source = given[i] == nullptr ? &omitted : given[i];
    const HRESULT status = Convert(*source, member.parameters[i], arguments[i]);
    if (FAILED(status) && argumentError != nullptr && given[i] != nullptr) {
      *argumentError = static_cast<UINT>(given[i] - params.rgvarg);
    }
    if (status == DISP_E_TYPEMISMATCH) throw HostFault(Fault::TypeMismatch);
    if (status == DISP_E_OVERFLOW) throw HostFault(Fault::Overflow);
    if (FAILED(status)) return status;
  }

  std::vector<VARTYPE> types;
  std::vector<VARIANTARG*> passed;
  for (Argument& argument : arguments) {
    types.push_back(argument.passed.vt);
    passed.push_back(&argument.passed);
  }
  Variant answer;
  VARIANT answerPointer{};
  std::optional<NewRecord> record;
  if (member.result.type == VT_RECORD) {
    answerPointer.vt = VT_BYREF | VT_UI1;
    answerPointer.byref = record.emplace().bytes();
  } else if (member.result.type != VT_EMPTY) {
    const bool isVariant = member.result.type == VT_VARIANT;
    answerPointer.vt = static_cast<VARTYPE>(VT_BYREF | member.result.type);
    answerPointer.byref = isVariant ? static_cast<void*>(&answer) : &answer.llVal;
    answer.llVal = 0;
  }
  if (member.result.type != VT_EMPTY) {
    types.push_back(answerPointer.vt);
    passed.push_back(&answerPointer);
  }

  SetErrorInfo(0, nullptr);
  VARIANT returned{};
  const HRESULT called =
      DispCallFunc(target.object, member.vtableOffset, CC_STDCALL, VT_I4,
                   static_cast<UINT>(passed.size()), types.data(), passed.data(), &returned);
  if (FAILED(called)) return called;
  if (FAILED(returned.lVal)) return RaiseException(returned.lVal, exception);
  if (record) {
    if (result != nullptr) record->HandTo(*result);
    return S_OK;
  }
  if (answer.vt == VT_EMPTY && member.result.type != VT_VARIANT) answer.vt = member.result.type;
  if (result != nullptr) {
    *result = answer;
    answer.vt = VT_EMPTY;
  }
  return S_OK;
}

}  // namespace

HRESULT RaiseException(HRESULT status, EXCEPINFO* exception) {
  ComPtr<IErrorInfo> info;
  GetErrorInfo(0, info.out());
  if (exception != nullptr) {
    *exception = {};
    exception->scode = status;
    if (info) {
      info->GetSource(&exception->bstrSource);
      info->GetDescription(&exception->bstrDescription);
    }
  }
  return DISP_E_EXCEPTION;
}

HRESULT GetIDsOfNames(std::span<const DispatchTarget> targets, REFIID riid, LPOLESTR* names,
                      UINT count, DISPID* ids) {
  if (riid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (names == nullptr || ids == nullptr || count == 0) return E_POINTER;
  if (std::find(names, names + count, nullptr) != names + count) return E_INVALIDARG;
  std::fill_n(ids, count, DISPID_UNKNOWN);
  for (const DispatchTarget& target : targets) {
    const Member* const member = target.table.Find(names[0]);
    if (member == nullptr) continue;
    ids[0] = member->id;
    HRESULT status = S_OK;
    for (UINT i = 1; i < count; ++i) {
      const auto& parameters = member->parameters;
      const auto found = std::ranges::find_if(
          parameters, [&](const Parameter& p) { return EqualNames(p.name, names[i]); });
      if (found == parameters.end()) {
        status = DISP_E_UNKNOWNNAME;
      } else {
        ids[i] = static_cast<DISPID>(found - parameters.begin());
      }
    }
    return status;
  }
  return DISP_E_UNKNOWNNAME;
}

HRESULT Invoke(std::span<const DispatchTarget> targets, DISPID id, REFIID riid, WORD flags,
               DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception, UINT* argumentError) {
  if (riid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (params == nullptr) return E_POINTER;
  for (const DispatchTarget& target : targets) {
    const auto& members = target.table.members();
    const auto found = std::ranges::find_if(
        members, [&](const Member& m) { return m.id == id && Matches(m.kind, flags); });
    if (found != members.end()) {
      return Call(target, *found, *params, result, exception, argumentError);
    }
  }
  return DISP_E_MEMBERNOTFOUND;
}

}  // namespace vardel::server
