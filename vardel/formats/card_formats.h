#pragma once

#include <vardel/format/card_format_info.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

namespace vardel {

/// A format whose facility code and card number are numbers, held against the descriptor's limits.
class LimitCheckedFormat : public CCardFormatInfo {
 public:
  /// The text is numeric and MinFacility <= value <= MaxFacility.
  bool IsFacilityValid(std::string_view InData) const override;
  /// The text is numeric and MinCardID <= value <= MaxCardID.
  bool IsCardIDValid(std::string_view InData) const override;

 protected:
  using CCardFormatInfo::CCardFormatInfo;
};

/// HID standard 26-bit: facility code 1..255, card number 1..65535. Decoded cards carry type 2 and
/// sub-type 0.
class CCardFormatHIDStandard final : public LimitCheckedFormat {
 public:
  CCardFormatHIDStandard();

 private:
  vardel::CardDataStruct Encode(const CCardData& card) override;
  std::optional<CCardData> Decode(const ICardFrame& frame) override;
};

/// One row of the list of formats.
struct CardFormatClass {
  std::string_view ClassName;
  std::int32_t CardType;
  std::int32_t CardSubType;
  /// The facade hands it out; the other formats are created by hosts themselves.
  bool IsInFacade;
  std::shared_ptr<CCardFormatInfo> (*Create)();
};

/// All formats, those of the facade first and in its order.
std::span<const CardFormatClass> CardFormatClasses();

}  // namespace vardel
