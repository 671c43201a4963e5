#pragma once

#include <vardel/format/card_format_info.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace vardel {

struct TextLayout;

/// The formats that can say whether a text stands for a revision.
class RevisionValidator {
 public:
  virtual bool IsRevisionValid(std::string_view InData) const = 0;

 protected:
  ~RevisionValidator() = default;
};

/// A format whose facility code and card number are numbers, held against the descriptor's limits.
/// An encode does not look at the card's type; it records "Incorrect Facility Code" or else
/// "Incorrect Card ID". A fraction that does not fit its byte when rounded is fault 6. A read needs
/// 6 bytes, in HID 34-bit 5.
class LimitCheckedFormat : public CCardFormatInfo {
 public:
  /// The text is numeric and MinFacility <= value <= MaxFacility.
  bool IsFacilityValid(std::string_view InData) const override;
  /// The text is numeric and MinCardID <= value <= MaxCardID.
  bool IsCardIDValid(std::string_view InData) const override;

 protected:
  using CCardFormatInfo::CCardFormatInfo;
};

/// A format of cards without a facility code.
class FormatWithoutFacility : public CCardFormatInfo {
 public:
  /// True for every text.
  bool IsFacilityValid(std::string_view InData) const override;

 protected:
  using CCardFormatInfo::CCardFormatInfo;
};

/// A smart-card format whose fields lie on the card as text, one Windows-1252 character per byte.
/// An encode tests the card's type pair alone ("Incorrect Card Type"); a text that is too long
/// gives its first characters, the revision its last two, and a character without a code is
/// fault 6. A read needs 16 bytes. Decoded cards carry type 0 and sub-type 0; their fields are not
/// trimmed, and a zero byte reads as a blank.
class TextFormat : public CCardFormatInfo, public RevisionValidator {
 public:
  /// Without its blanks, the text is neither "" nor "0".
  bool IsFacilityValid(std::string_view InData) const override;
  bool IsCardIDValid(std::string_view InData) const override;
  /// The text is numeric and MinRevision <= value <= MaxRevision.
  bool IsRevisionValid(std::string_view InData) const override;

 protected:
  TextFormat(const FormatParameters& parameters, const TextLayout& layout);

 private:
  void Encode(const CCardData& card, vardel::CardDataStruct& record) override;
  bool Decode(const ICardFrame& frame, CCardData& result) override;

  const TextLayout& layout_;
};

/// EM standard 26-bit: facility code 1..255, card number 1..65535. The ranges given here are the
/// limits of a new format object.
class CCardFormatEM final : public LimitCheckedFormat {
 public:
  CCardFormatEM();

 private:
  void Encode(const CCardData& card, vardel::CardDataStruct& record) override;
  bool Decode(const ICardFrame& frame, CCardData& result) override;
};

/// HID standard 26-bit: facility code 1..255, card number 1..65535. Decoded cards carry type 2 and
/// sub-type 0.
class CCardFormatHIDStandard final : public LimitCheckedFormat {
 public:
  CCardFormatHIDStandard();

 private:
  void Encode(const CCardData& card, vardel::CardDataStruct& record) override;
  bool Decode(const ICardFrame& frame, CCardData& result) override;
};

/// HID full binary 26-bit: the whole value is the card number (1..67108863). It only decodes: every
/// accepted number ends MakeCardData in fault 9, any other records "Incorrect Card ID". A read
/// needs 6 bytes, all of which count. Decoded cards carry type 0 and sub-type 0.
class CCardFormatBinary26 final : public FormatWithoutFacility {
 public:
  CCardFormatBinary26();
  /// True for every text: the encode itself tests the number.
  bool IsCardIDValid(std::string_view InData) const override;

 private:
  void Encode(const CCardData& card, vardel::CardDataStruct& record) override;
  bool Decode(const ICardFrame& frame, CCardData& result) override;
};

/// HID 37-bit: facility code 1..65535, card number 1..524287. Decoded cards carry type 0 and
/// sub-type 0.
class CCardFormat37Bits final : public LimitCheckedFormat {
 public:
  CCardFormat37Bits();

 private:
  void Encode(const CCardData& card, vardel::CardDataStruct& record) override;
  bool Decode(const ICardFrame& frame, CCardData& result) override;
};

/// HID Corporate 1000, 35-bit: facility code 1..65535, of which a card keeps the low 12 bits; card
/// number 1..524287. Decoded cards carry type 0 and sub-type 0.
class CCardFormatHIDCorp1000 final : public LimitCheckedFormat {
 public:
  CCardFormatHIDCorp1000();
  /// First and last byte of a second run of the card number, for callers only.
  std::int16_t Sidx2ndCardID() const { return 3; }
  std::int16_t Eidx2ndCardID() const { return 4; }

 private:
  void Encode(const CCardData& card, vardel::CardDataStruct& record) override;
  bool Decode(const ICardFrame& frame, CCardData& result) override;
};

/// HID 34-bit: facility code 1..65535, card number 1..65535. It decodes the raw bytes, not their
/// text; a read of fewer than 5 bytes that is not blank is fault 9.
class CCardFormat34Bits final : public LimitCheckedFormat, public RevisionValidator {
 public:
  CCardFormat34Bits();
  /// True for every text: there is no revision.
  bool IsRevisionValid(std::string_view InData) const override;

 private:
  void Encode(const CCardData& card, vardel::CardDataStruct& record) override;
  bool Decode(const ICardFrame& frame, CCardData& result) override;
};

/// Mifare 32-bit UID: the card number is the UID; there is no facility code and no revision. An
/// encode checks the card's type pair ("Incorrect Card Type") and no range: the number is taken
/// modulo 2^32, a negative one is fault 6, text that is not numeric is fault 13. A read needs 16
/// bytes, of which the first 4 count, least significant first.
class CCardFormatUID32BIts final : public FormatWithoutFacility, public RevisionValidator {
 public:
  CCardFormatUID32BIts();
  /// The text is numeric and MinCardID <= value < MaxCardID: the upper limit is not included.
  bool IsCardIDValid(std::string_view InData) const override;
  /// True for every text.
  bool IsRevisionValid(std::string_view InData) const override;

 private:
  void Encode(const CCardData& card, vardel::CardDataStruct& record) override;
  bool Decode(const ICardFrame& frame, CCardData& result) override;
};

/// DongSeo hospital: 8 characters card number, 2 revision, both stored backwards, one Windows-1252
/// character per byte. An encode clears the error pair first and tests the card's type pair
/// ("Incorrect Card Type"); a bad card number is recorded ("Incorrect Card ID") and the record
/// still made, a bad revision is silently left out, a valid one of one character is fault 5, a
/// character without a code fault 6. It decodes the raw bytes, not their text: "Too Small Card
/// Data" for 8 or fewer, fault 9 for 9 that are not blank. There is no facility code, though a mask
/// stands there; the revision has none.
class CCardFormatDongSeo final : public FormatWithoutFacility, public RevisionValidator {
 public:
  CCardFormatDongSeo();
  using CCardFormatInfo::MakeCardData;
  /// Clears the error pair even when there is no card.
  vardel::CardDataStruct MakeCardData(const CCardData* CardData) override;
  /// Trimmed, the text has 1 to CharCountCardID characters and is not a zero. Letters are valid.
  bool IsCardIDValid(std::string_view InData) const override;
  /// The text is numeric and MinRevision <= value <= MaxRevision.
  bool IsRevisionValid(std::string_view InData) const override;

 private:
  void Encode(const CCardData& card, vardel::CardDataStruct& record) override;
  bool Decode(const ICardFrame& frame, CCardData& result) override;
};

/// LG smart card: 6 characters facility code, 8 card number, 2 revision, filled with "0" on the
/// left. Not in the facade.
class CCardFormatLG final : public TextFormat {
 public:
  CCardFormatLG();
};

/// Woori Bank smart card: 1 character facility code, 13 card number, 2 revision; the last two
/// filled with blanks on the right, and blanks stored as 0. Not in the facade.
class CCardFormatWoori final : public TextFormat {
 public:
  CCardFormatWoori();
};

/// One row of the list of formats.
struct CardFormatClass {
  std::string_view ClassName;
  std::int32_t CardType;
  std::int32_t CardSubType;
  /// The facade hands it out; the other formats are created by hosts themselves.
  bool IsInFacade;
  /// The facade converts cards of this pair, as IsValidTypePair says.
  bool IsConverted;
  std::shared_ptr<CCardFormatInfo> (*Create)();
};

/// All formats, those of the facade first and in its order.
std::span<const CardFormatClass> CardFormatClasses();

}  // namespace vardel
