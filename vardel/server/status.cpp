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

HRESULT ReportFault(HRESULT status, const char* description, const char* className) {
  return Report(status, Wide(description), L"Vardel." + Wide(className));
}

}  // namespace

HRESULT ReportException(const char* className) noexcept {
  try {
    try {
      throw;
    } catch (const HostFault& fault) {
      return ReportFault(StatusOfFault(static_cast<int>(fault.Number())), fault.what(), className);
    } catch (const FrameFailure& failure) {
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
