#pragma once

#include <vardel/core/card_data.h>
#include <vardel/core/card_data_struct.h>
#include <vardel/core/error.h>
#include <vardel/core/frame.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vardel {

struct CardLayout;
struct FormatParameters;

/// A card format: the numbers that describe its fields, and the four operations on card data. A
/// bare one holds the values alone and answers the operations with the base behaviour.
///
/// The values are plain: no put checks or recomputes anything. The operations read limits, occupied
/// bytes, character counts and flags at the time of each call, so that changing one changes the
/// format; a value that does not fit its use ends the call in fault 9 (a size or an index), 5 (a
/// text length) or 6 (a number), with nothing changed.
///
/// Byte indexes count from the least significant byte of the card value; -1 means no such field (0
/// in Mifare UID and DongSeo). They and the masks, names, bit counts and totals are for callers: no
/// operation reads them.
class CCardFormatInfo : public ErrorHolder {
 public:
  CCardFormatInfo() = default;
  CCardFormatInfo(const CCardFormatInfo&) = delete;
  CCardFormatInfo& operator=(const CCardFormatInfo&) = delete;
  virtual ~CCardFormatInfo() = default;

  /// Encode with all 32 bytes of the record in reverse order, Mifare UID with its 4 alone. The
  /// decoders of HID 34-bit and DongSeo turn the read around; all others ignore the flag, and so
  /// does the encoder of HID 34-bit.
  bool IsCardArrayReversed = false;
  bool IsSmartCard() const { return isSmartCard_; }

  // Limits of the fields, both included (Mifare UID leaves out MaxCardID itself).
  std::int16_t MinRevision = 0;
  double MinCardID = 0;
  double MinFacility = 0;
  std::int16_t MaxRevision = 0;
  double MaxCardID = 0;
  double MaxFacility = 0;

  // Characters of each field's text; decoded numbers are filled with zeros to so many digits.
  std::int16_t CharCountRevision = 0;
  std::int16_t CharCountCardID = 0;
  std::int16_t CharCountFacility = 0;
  std::int32_t CharCountTotal = 0;

  /// Bytes that the card value occupies.
  std::int16_t ByteCountTotal = 0;
  /// Bits on the card, parity included.
  std::int32_t BitCountTotal = 0;

  // Input mask of each field, one character per position; "" when there is no such field.
  std::string MaskRevision;
  std::string MaskCardID;
  std::string MaskFacility;

  /// A byte value that the format declares for its callers.
  std::int16_t DefaultByte = 0;
  /// Shown for an empty position of a masked input.
  std::string PromptChar = "_";
  /// The pad character of the format's texts; only the Woori Bank encoder fills a field with it.
  std::string DefaultChar;
  /// Built-in and current display name.
  std::string DefaultCardName;
  std::string CardName;

  /// A vardel::CardType and the sub-type within it.
  std::int16_t CardType = 0;
  std::int16_t CardSubType = 0;

  // Bits of each field on the card.
  std::int16_t BitCountRevision = 0;
  std::int16_t BitCountCardID = 0;
  std::int16_t BitCountFacility = 0;

  // Raw bytes that each field touches.
  std::int16_t OccupiedByteRevision = 0;
  std::int16_t OccupiedByteFacility = 0;
  std::int16_t OccupiedByteCardId = 0;

  // First and last raw byte of each field.
  std::int16_t EidxRevision = 0;
  std::int16_t SidxRevision = 0;
  std::int16_t EidxCardID = 0;
  std::int16_t SidxCardID = 0;
  std::int16_t EidxFacility = 0;
  std::int16_t SidxFacility = 0;

  /// Whether the text can stand as a facility code. The base answers false.
  virtual bool IsFacilityValid(std::string_view InData) const;
  /// Whether the text can stand as a card number. The base answers false.
  virtual bool IsCardIDValid(std::string_view InData) const;

  /// Encodes a card. Content errors are recorded on the format and give an all-zero record; success
  /// does not clear an earlier error (DongSeo alone clears first, and may give a record beside an
  /// error). The base gives an all-zero record and records nothing. A null card is fault 91, in
  /// DongSeo with the error pair cleared.
  vardel::CardDataStruct MakeCardData(const CCardData& CardData);
  virtual vardel::CardDataStruct MakeCardData(const CCardData* CardData);

  /// Decodes a read. Too few bytes record "Too Small Card Data" on the result, whose fields stay
  /// empty (in HID 34-bit they are fault 9); a blank read (all bytes 00 or all FF) has empty fields
  /// and no error. Only the base gives nothing. Malformed or short hexadecimal text is fault 13,
  /// and so are bytes that are no array (to HID 34-bit they are a blank read); a null frame is
  /// fault 91. What the frame throws passes to the caller.
  std::optional<CCardData> AnalyzeCardData(const ICardFrame& UserInfo);
  std::optional<CCardData> AnalyzeCardData(const ICardFrame* UserInfo);

 protected:
  /// The parameters have to outlive the object.
  explicit CCardFormatInfo(const FormatParameters& parameters);

 private:
  friend class CCard;
  friend const CardLayout& LayoutOf(const CCardFormatInfo& format);

  /// Encodes into a record of zeros; where a content error is recorded, it stays so in all formats
  /// but DongSeo.
  virtual void Encode(const CCardData& card, vardel::CardDataStruct& record);
  /// Decodes into a new card; false gives none.
  virtual bool Decode(const ICardFrame& frame, CCardData& result);

  const CardLayout* cardLayout_ = nullptr;
  bool isSmartCard_ = false;
};

}  // namespace vardel
