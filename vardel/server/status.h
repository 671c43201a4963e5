#pragma once

#include <vardel/server/com.h>

#include <exception>
#include <string>

namespace vardel::server {

/// A failure that has a status and a description of its own, such as that of a host's frame object,
/// on its way through the core to the caller.
class Failure : public std::exception {
 public:
  Failure(HRESULT itsStatus, std::wstring itsDescription, std::wstring itsSource)
      : status(itsStatus), description(std::move(itsDescription)), source(std::move(itsSource)) {}
  const char* what() const noexcept override { return "failure in a host's object"; }

  HRESULT status;
  std::wstring description;
  std::wstring source;  // "" for the class that was called
};

/// Throws the failure of a host's object, with this thread's error information or, where there is
/// none, the given description.
[[noreturn]] void ThrowFailure(HRESULT status, const wchar_t* otherwise);
/// The same for what a late-bound call raised, which it takes over.
[[noreturn]] void ThrowFailure(EXCEPINFO& exception, const wchar_t* otherwise);

/// The status of a host fault: 0x800A0000 + its number.
constexpr HRESULT StatusOfFault(int number) {
  constexpr auto kFaults = static_cast<HRESULT>(0x800A0000U);
  return kFaults + number;
}

/// Turns the exception being handled into a status, with description and source left as this
/// thread's error information. `className` is the class without its library's name.
HRESULT ReportException(const char* className) noexcept;

/// Runs a call at the boundary: no exception passes.
template <class Call>
HRESULT Guard(const char* className, Call&& call) noexcept {
  try {
    call();
    return S_OK;
  } catch (...) {
    return ReportException(className);
  }
}

}  // namespace vardel::server
