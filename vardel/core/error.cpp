#include <vardel/core/error.h>
#include <vardel/core/host_fault.h>

#include <utility>

namespace vardel {

void CError::MakeErr(std::int32_t ErrCode, std::string_view ErrMsg) {
  ErrName = ErrMsg;  // first: where there is no memory for it, nothing changes
  ErrNumber = ErrCode;
}

std::shared_ptr<CError> ErrorHolder::Error() {
  if (auto* own = std::get_if<CError>(&error_)) {
    error_ = std::make_shared<CError>(std::move(*own));
  }
  return std::get<std::shared_ptr<CError>>(error_);
}

ErrorHolder::ErrorHolder(const ErrorHolder& other) { *this = other; }

ErrorHolder& ErrorHolder::operator=(const ErrorHolder& other) {
  const auto* shared = std::get_if<std::shared_ptr<CError>>(&other.error_);
  if (shared != nullptr && *shared == nullptr) {
    error_ = std::shared_ptr<CError>();
  } else {
    error_ = CError(other.Contained());
  }
  return *this;
}

const CError& ErrorHolder::Shared() const {
  return RequireObject(std::get<std::shared_ptr<CError>>(error_).get());
}

}  // namespace vardel
