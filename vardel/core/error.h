#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace vardel {

/// The texts that the library records, always with number kContentError.
namespace message {
inline constexpr std::string_view kUnknownCardType = "Unknown Card Type";
inline constexpr std::string_view kIncorrectCardType = "Incorrect Card Type";
inline constexpr std::string_view kIncorrectFacilityCode = "Incorrect Facility Code";
inline constexpr std::string_view kIncorrectCardID = "Incorrect Card ID";
inline constexpr std::string_view kTooSmallCardData = "Too Small Card Data";
inline constexpr std::string_view kIncorrectByteCount = "Incorrect Byte Count";
inline constexpr std::string_view kNoCardTypeToAdd = "No card type to add";
inline constexpr std::string_view kCardTypeCodePresent = "The card type code is already present";
// Reserved beside the others; no operation comes to record them.
inline constexpr std::string_view kExceedLimit = "Wrong Card ID : Exceed Limit";
inline constexpr std::string_view kIncorrectCardRevision = "Incorrect Card Revision";
}  // namespace message

/// Number of every recorded content error.
inline constexpr std::int32_t kContentError = -1;

/// An error record. MakeErr needs memory for a long text; without it nothing changes.
class CError {
 public:
  /// Message of the last recorded error; "" when there is none.
  std::string ErrName;
  /// 0 = no error, -1 = an error was recorded.
  std::int32_t ErrNumber = 0;

  /// Back to (0, "").
  void InitErr() {
    ErrNumber = 0;
    ErrName.clear();
  }
  /// Stores both as given; the code is not checked.
  void MakeErr(std::int32_t ErrCode, std::string_view ErrMsg);
};

/// The error members of a class that contains a CError. The contained object can be handed out and
/// replaced, so that several objects share one record; until someone asks for it, it lives inside
/// its owner. While the contained object is null, every member here but `Error` ends in fault 91,
/// and so does every member of the owner that clears or records an error.
///
/// A copy takes the error's content into a CError of its own: copies never share a record.
class ErrorHolder {
 public:
  /// As the contained object's pair: "" and 0 when there is no error. A put checks nothing.
  const std::string& ErrName() const { return Contained().ErrName; }
  void ErrName(std::string_view name) { Contained().ErrName = name; }
  std::int32_t ErrNumber() const { return Contained().ErrNumber; }
  void ErrNumber(std::int32_t number) { Contained().ErrNumber = number; }

  /// The contained object itself; null after a null put.
  std::shared_ptr<CError> Error();
  /// Replaces the contained object by the caller's.
  void Error(std::shared_ptr<CError> error) { error_ = std::move(error); }

  /// As the contained object's.
  void InitErr() { Contained().InitErr(); }
  void MakeErr(std::int32_t ErrCode, std::string_view ErrMsg) {
    Contained().MakeErr(ErrCode, ErrMsg);
  }

 protected:
  ErrorHolder() = default;
  ErrorHolder(const ErrorHolder& other);
  ErrorHolder(ErrorHolder&&) noexcept = default;
  ErrorHolder& operator=(const ErrorHolder& other);
  ErrorHolder& operator=(ErrorHolder&&) noexcept = default;
  ~ErrorHolder() = default;

 private:
  const CError& Contained() const {
    const auto* const own = std::get_if<CError>(&error_);
    return own != nullptr ? *own : Shared();
  }
  const CError& Shared() const;
  CError& Contained() { return const_cast<CError&>(std::as_const(*this).Contained()); }

  std::variant<CError, std::shared_ptr<CError>> error_;
};

}  // namespace vardel
