#pragma once

#include <vardel/server/com.h>

#include <exception>
#include <string>

namespace vardel::server {

/// A failure inside a host's own frame object, on its way through the core to the caller.
class FrameFailure : public std::exception {
 public:
  FrameFailure(HRESULT itsStatus, std::wstring itsDescription, std::wstring itsSource)
      : status(itsStatus), description(std::move(itsDescription)), source(std::move(itsSource)) {}
  const char* what() const noexcept override { return "failure in a frame object"; }

  HRESULT status;
  std::wstring description;  // "" where the frame gives none
  std::wstring source;
};

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
