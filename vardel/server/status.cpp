#include <vardel/core/host_fault.h>
#include <vardel/server/status.h>

#include <stdexcept>

namespace vardel::server {
namespace {

HRESULT Report(HRESULT status, std::wstring description, std::wstring source) {
  ComPtr<ICreateErrorInfo> create;
  if (FAILED(CreateErrorInfo(create.out()))) return status;
  create->SetGUID(IID_IDispatch);
  create->SetDescription(description.data());
  create->SetSource(source.data());
  if (const auto info = create.As<IErrorInfo>()) SetErrorInfo(0, info.get());
  return status;
}

std::wstring TakeText(BSTR text, const wchar_t* otherwise) {
  const std::wstring result = text == nullptr ? L"" : std::wstring(text, SysStringLen(text));
  SysFreeString(text);
  return result.empty() ? otherwise : result;
}

HRESULT ReportFault(HRESULT status, const char* description, const char* className) {
  return Report(status, Wide(description), L"Vardel." + Wide(className));
}

}  // namespace

void ThrowFailure(HRESULT status, const wchar_t* otherwise) {
  ComPtr<IErrorInfo> info;
  BSTR description = nullptr;
  BSTR source = nullptr;
  if (GetErrorInfo(0, info.out()) == S_OK) {
    info->GetDescription(&description);
    info->GetSource(&source);
  }
  std::wstring text = TakeText(description, otherwise);
  throw Failure(status, std::move(text), TakeText(source, L""));
}

void ThrowFailure(EXCEPINFO& exception, const wchar_t* otherwise) {
  if (exception.pfnDeferredFillIn != nullptr) exception.pfnDeferredFillIn(&exception);
  // Either may be the number; a host that gives none still fails.
  HRESULT status = exception.wCode != 0 ? StatusOfFault(exception.wCode) : E_FAIL;
  if (FAILED(exception.scode)) status = exception.scode;
  SysFreeString(exception.bstrHelpFile);
  std::wstring text = TakeText(exception.bstrDescription, otherwise);
  throw Failure(status, std::move(text), TakeText(exception.bstrSource, L""));
}

HRESULT ReportException(const char* className) noexcept {
  try {
    try {
      throw;
    } catch (const HostFault& fault) {
      return ReportFault(StatusOfFault(static_cast<int>(fault.Number())), fault.what(), className);
    } catch (const Failure& failure) {
      return Report(failure.status, failure.description,
                    failure.source.empty() ? L"Vardel." + Wide(className) : failure.source);
    } catch (const std::bad_alloc&) {
      return ReportFault(E_OUTOFMEMORY, HostFault(Fault::OutOfMemory).what(), className);
    } catch (const std::length_error&) {
      return ReportFault(E_OUTOFMEMORY, HostFault(Fault::OutOfMemory).what(), className);
    } catch (const std::exception& other) {
      return ReportFault(E_UNEXPECTED, other.what(), className);
    }
  } catch (...) {
    // Not even the description could be made.
    return E_OUTOFMEMORY;
  }
}

}  // namespace vardel::server
