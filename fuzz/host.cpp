#include "soak/card_samples.h"
#include <vardel/core/byte_array_data.h>
#include <vardel/core/card_byte_data.h>
#include <vardel/core/hex.h>
#include <vardel/core/host_fault.h>
#include <vardel/facade/card.h>
#include <vardel/facade/card_matches.h>
#include <vardel/facade/card_types.h>
#include <vardel/format/descriptor_members.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace vardel;

namespace {

void Check(bool holds, const char* claim) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", claim);
  std::abort();
}

/// An input, taken from front to back. Behind its end everything is 0 and empty.
struct Input {
  std::string_view rest;

  std::string Bytes(std::size_t count) {
    const std::string_view bytes = rest.substr(0, count);
    rest.remove_prefix(bytes.size());
    return std::string(bytes);
  }
  /// A number, truth value or text.
  template <class T>
  T Take() {
    if constexpr (std::is_same_v<T, std::string>) {
      return Text();
    } else {
      std::conditional_t<std::is_same_v<T, bool>, char, T> value{};
      const std::string bytes = Bytes(sizeof(value));
      std::memcpy(&value, bytes.data(), bytes.size());
      return static_cast<T>(value);
    }
  }
  std::uint8_t Byte() { return Take<std::uint8_t>(); }
  /// Any bytes, the digits of a number, what numbers are written with, or, seldom, a long run.
  std::string Text() {
    constexpr std::string_view kNumerals = "0123456789012345.e+- \tEdD1x";
    const std::uint8_t kind = Byte(), length = Byte();
    if (kind == 3) return std::string(length * 256U, Take<char>());
    if (kind % 4 == 1) return std::to_string(Take<std::uint32_t>() >> length % 32);
    std::string text = Bytes(length);
    if (kind % 4 == 0) return text;
    for (char& c : text) c = kNumerals[static_cast<std::uint8_t>(c) % kNumerals.size()];
    return text;
  }
  /// The type pair of any format, of the one at hand for the most part, or any two numbers.
  std::pair<std::int32_t, std::int32_t> Pair(const CardFormatClass* format) {
    const std::size_t choice = Byte();
    const auto rows = CardFormatClasses();
    if (choice < rows.size()) format = &rows[choice];
    if (choice < rows.size() || choice >= 64) return {format->CardType, format->CardSubType};
    const auto type = Take<std::int32_t>();
    return {type, Take<std::int32_t>()};
  }
};

/// A host's frame that helps as little as it may: each read ends the life of what the one before
/// gave, and may give fewer bytes or throw.
class Frame final : public ICardFrame {
 public:
  struct Failure {};
  enum Flag { kIsEM = 1, kShrinks = 2, kFails = 4, kNoBytes = 8, kOwnText = 16, kCuts = 32 };

  Frame(Input& in, const CardFormatClass* format) : pair_(in.Pair(format)), flags_(in.Byte() % 64) {
    if (flags_ & kFails) failAt_ = in.Byte() % 8;
    const std::string bytes = flags_ & kNoBytes ? "" : in.Bytes(in.Byte());
    bytes_ = {bytes.begin(), bytes.end()};
    text_ = flags_ & (kNoBytes | kOwnText) ? in.Text() : HexText(bytes_);
    if (flags_ & kCuts)
      text_.resize(text_.size() - std::min<std::size_t>(text_.size(), in.Byte() % 4));
  }
  /// As it was before the first read.
  void Restart() const { reads_ = 0; }
  /// The bytes, when they and the text agree and every read gives all of them.
  std::vector<std::uint8_t> Steady() const {
    return {bytes_.begin(), flags_ > kIsEM ? bytes_.begin() : bytes_.end()};
  }

  std::int32_t FrameCardType() const override { return pair_.first; }
  std::int32_t FrameCardSubType() const override { return pair_.second; }
  bool IsEMFrame() const override { return flags_ & kIsEM; }
  RawBytes RawCardBytes() const override {
    const std::size_t earlier = Count();
    if (flags_ & kNoBytes) return std::nullopt;
    const std::size_t lost = flags_ & kShrinks ? std::min(earlier, bytes_.size()) : 0;
    given_ = {bytes_.begin(), bytes_.end() - static_cast<std::ptrdiff_t>(lost)};
    return given_;
  }
  std::string_view RawCardHex() const override {
    Count();
    givenText_ = std::vector<char>(text_.begin(), text_.end());
    return {givenText_.data(), givenText_.size()};
  }

 private:
  std::size_t Count() const {
    if (reads_ + 1 == failAt_) throw Failure();
    return reads_++;
  }

  std::pair<std::int32_t, std::int32_t> pair_;
  int flags_;
  std::size_t failAt_ = 0;
  std::vector<std::uint8_t> bytes_;
  std::string text_;
  mutable std::size_t reads_ = 0;
  mutable std::vector<std::uint8_t> given_;
  mutable std::vector<char> givenText_;
};

/// How a call ends: 0 as it should, -1 in the frame's failure, otherwise in that host fault.
/// Anything else that leaves the library ends the program.
template <class Call>
int EndOf(const Call& call) try {
  call();
  return 0;
} catch (const HostFault& fault) {
  const auto number = static_cast<int>(fault.Number());
  constexpr int kKnown[] = {5, 6, 9, 13, 91, 424};
  Check(std::ranges::find(kKnown, number) != std::end(kKnown), "the fault is a known one");
  return number;
} catch (const Frame::Failure&) {
  return -1;
}

/// What a conversion gives: how it ends, a record or the fields of a card, and an error pair.
struct Answer {
  int end = 0;
  CardDataStruct record{};
  std::int32_t errNumber = 0, type = 0, subType = 0;
  std::string errName{}, facility{}, cardID{}, revision{};

  bool operator==(const Answer&) const = default;
};

/// Asks twice, which has to give the same.
template <class Conversion>
Answer Ask(const Conversion& conversion) {
  const auto once = [&] {
    Answer answer;
    const int end = EndOf([&] { conversion(answer); });
    return end == 0 ? answer : Answer{end};
  };
  const Answer answer = once();
  Check(answer == once(), "a second call gives the same");
  return answer;
}

/// What an encode gave, beside the error pair of its format or result.
Answer Made(const CardDataStruct& record, const ErrorHolder& holder, int end = 0) {
  return {end, record, holder.ErrNumber(), 0, 0, holder.ErrName()};
}

template <class Decoder>
Answer AskDecoder(Decoder& decoder, const Frame& frame) {
  return Ask([&](Answer& answer) {
    frame.Restart();
    const CCardData c = std::optional<CCardData>(decoder.AnalyzeCardData(frame)).value();
    answer = {0,         {},         c.ErrNumber, c.CardType, c.CardSubType,
              c.ErrName, c.Facility, c.CardID,    c.Revision};
  });
}

/// An error that the library does not record.
constexpr std::int32_t kEarlier = -7;

/// A host that calls anything and puts anything anywhere.
struct Host {
  Input in;
  const CardFormatClass* row = nullptr;
  std::shared_ptr<CCardFormatInfo> format{};
  CCard facade{};
  CCardTypes types{};
  CCardMatches matches{};
  CCardByteData bytes{};
  CByteArrayData description{};
  CCardFrame frame{};
  std::shared_ptr<CCardType> entry = std::make_shared<CCardType>();
  std::shared_ptr<CError> error{};
  std::int32_t type = 0, subType = 0, code = 0;
  std::string key{};

  /// Any format, by its type and sub-type, which no further format changes, else by its place.
  void Create() {
    const auto rows = CardFormatClasses();
    const std::uint8_t pair = in.Byte();
    const auto isIt = [&](const auto& each) {
      return each.CardType * 16 + each.CardSubType == pair;
    };
    const auto found = std::ranges::find_if(rows, isIt);
    row = found != rows.end() ? &*found : &rows[pair % rows.size()];
    format = row->Create();
  }
  ErrorHolder& Holder() {
    ErrorHolder* const holders[] = {&*format, &types, &bytes, &description, &*entry};
    return *holders[in.Byte() % std::size(holders)];
  }
  CCardData Card() {
    const auto [cardType, cardSubType] = in.Pair(row);
    const std::string facility = in.Text(), cardID = in.Text();
    return {0, "", cardType, static_cast<std::uint8_t>(cardSubType), facility, cardID, in.Text()};
  }
  /// The bits of the format's numbers; null for full binary and texts.
  const NumberLayout* Layout() const {
    const auto name = row->ClassName.substr(11);
    const auto* const layout = std::ranges::find(kNumberLayouts, name, &NumberLayout::name);
    return layout == std::end(kNumberLayouts) ? nullptr : layout;
  }
};

/// The value of a numeric text, not by way of the library, and whether two limits let it pass.
struct Number {
  Number(std::string text, double min, double max) {
    isNumber = text.find_first_not_of(" \t+-.0123456789eEdD") == std::string::npos;
    text.erase(text.find_last_not_of(" \t") + 1);
    for (char& c : text) c = c == 'd' || c == 'D' ? 'e' : c;
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    isNumber = isNumber && !text.empty() && *end == '\0' && std::isfinite(value);
    isValid = isNumber && value >= min && value <= max;
    isWhole = value >= 0 && value < 0x1p53 && value == std::floor(value);
  }
  double value;
  bool isNumber, isValid, isWhole;
};

/// An encode of numbers by a format that has an error object.
void CheckNumbers(const Host& h, const CCardData& card, Answer made) {
  const CCardFormatInfo& format = *h.format;
  const NumberLayout* const layout = h.Layout();
  const bool isUid = format.IsSmartCard(), isBinary = layout == nullptr;
  const Number facility = isUid || isBinary
                              ? Number("1", 1, 1)
                              : Number(card.Facility, format.MinFacility, format.MaxFacility);
  const Number cardID(card.CardID, format.MinCardID, format.MaxCardID);
  const bool isBelow = !isUid || cardID.value != format.MaxCardID;
  const bool isCardID = isBinary || (cardID.isValid && isBelow);
  Check(format.IsFacilityValid(card.Facility) == facility.isValid, "limits of facility codes");
  Check(format.IsCardIDValid(card.CardID) == isCardID, "limits of card numbers");
  // As a limit, what is not a number means no limit to some encodes.
  for (const double limit :
       {format.MinFacility, format.MaxFacility, format.MinCardID, format.MaxCardID})
    if (std::isnan(limit)) return;

  const bool isAccepted = facility.isValid && (isUid || cardID.isValid);
  const bool areWhole = facility.isWhole && cardID.isWhole;
  if (made.end == 6) return Check(facility.isValid && !areWhole, "whole numbers fit");
  const auto name = facility.isValid ? message::kIncorrectCardID : message::kIncorrectFacilityCode;
  Check(made.errName == (isAccepted ? "" : name), "the first field outside its limits is refused");
  const int end = isBinary ? 9 : isUid && !cardID.isNumber ? 13 : 0;
  Check(!isAccepted || made.end == end, "an accepted card makes a record, but in full binary");
  if (!isAccepted || end != 0 || !areWhole) return;

  if (format.IsCardArrayReversed && layout->name != "34Bits")
    std::ranges::reverse(std::span(made.record.Bytes).first(isUid ? 4 : 32));
  // A facility code above its bits may spill, but not into itself or the card number.
  const double id = isUid ? std::fmod(cardID.value, 0x1p32) : cardID.value;
  if (id > static_cast<double>(layout->maxCardID) || facility.value >= 0x1p31) return;
  const auto code = static_cast<std::uint64_t>(facility.value);
  const auto [sent, expected, record] =
      NumberCard(*layout, code % (layout->maxFacility + 1), static_cast<std::uint64_t>(id));
  Check(code > layout->maxFacility || made.record == record, "bits lie where they belong");
  CCardFrame frame;
  frame.CardDataStruct(made.record);
  const CCardData read = h.row->Create()->AnalyzeCardData(frame).value();
  const bool isBack = read.Facility == expected.Facility && read.CardID == expected.CardID;
  Check(isBack || record == CardDataStruct(), "accepted whole numbers come back");
}

void Encode(Host& h) {
  const CCardData card = h.Card();
  const Answer made = Ask([&](Answer& answer) {
    EndOf([&] { h.format->MakeErr(kEarlier, ""); });
    const int end = EndOf([&] { answer.record = h.format->MakeCardData(card); });
    answer = Made(answer.record, *h.format, end);
  });
  if (made.end == 91) return Check(h.format->Error() == nullptr, "an error object is there");
  const bool isDongSeo = h.row->ClassName == "CCardFormatDongSeo";
  const bool isError = !made.errName.empty();
  const bool isOwn = card.CardType == h.row->CardType && card.CardSubType == h.row->CardSubType;
  const bool isRefused = h.format->IsSmartCard() && !isOwn;
  const std::int32_t unset = isDongSeo ? 0 : kEarlier;
  Check(made.errNumber == (isError ? -1 : unset), "DongSeo alone clears an earlier error");
  Check((made.errName == message::kIncorrectCardType) == isRefused, "smart cards refuse types");
  Check(!isError || (isDongSeo && !isRefused) || (made.end == 0 && made.record == CardDataStruct()),
        "an error goes with a blank record");
  if (!isRefused && (h.Layout() || !h.format->IsSmartCard())) CheckNumbers(h, card, made);
}

void EncodeByFacade(Host& h) {
  const CCardData card = h.Card();
  const bool isType = h.facade.IsCardType(card.CardType, card.CardSubType);
  const Answer expected = Ask([&](Answer& answer) {
    if (!isType) return;
    const auto format = h.facade.CardFormat(card.CardType, card.CardSubType);
    answer = Made(format->MakeCardData(card), *format);
  });
  const Answer made = Ask([&](Answer& answer) {
    h.bytes = h.facade.MakeCardData(card);
    answer = Made(h.bytes.CardDataStruct, h.bytes);
  });
  Check(made == expected, "the facade encodes as its format");
  const bool isKnown = h.facade.ErrNumber == 0 && h.facade.ErrName.empty();
  const bool isUnknown = h.facade.ErrNumber == -1 && h.facade.ErrName == message::kUnknownCardType;
  Check(isType ? isKnown : isUnknown, "an unknown card is recorded on the facade");
}

void Decode(Host& h) {
  const Frame frame(h.in, h.row);
  CCardFormatInfo& format = *h.format;
  EndOf([&] { format.MakeErr(kEarlier, ""); });
  const Answer card = AskDecoder(format, frame);
  EndOf([&] { Check(format.ErrNumber() == kEarlier, "a decode leaves the format's error alone"); });
  const bool isEmpty = (card.facility + card.cardID + card.revision).empty();
  const bool isError = !card.errName.empty();
  Check(card.errNumber == (isError ? -1 : 0), "an error has number -1");
  Check(isEmpty || !isError, "an error goes with empty fields");

  // The rest is about steady reads, while no value that a decoder goes by is out of place.
  std::vector<std::uint8_t> bytes = frame.Steady();
  if (bytes.size() < 16 || format.CharCountFacility < 0 || format.CharCountCardID < 0) return;
  for (auto count : {&CCardFormatInfo::OccupiedByteFacility, &CCardFormatInfo::OccupiedByteCardId,
                     &CCardFormatInfo::OccupiedByteRevision})
    if (format.*count != (*h.row->Create()).*count) return;
  Check(card.end == 0 && !isError, "a steady read of 16 bytes decodes");
  const auto alike = std::ranges::count(bytes, bytes[0]);
  const bool isBlank = (bytes[0] == 0 || bytes[0] == 255) && alike == std::ssize(bytes);
  // Full binary has no number where all bytes together are too large for a double.
  Check(isEmpty == isBlank || bytes.size() >= 128, "only blank reads have empty fields");
  const NumberLayout* const layout = h.Layout();
  const bool isUid = format.IsSmartCard();
  if (isEmpty || (isUid && layout == nullptr)) return;

  const auto check = [](const std::string& text, std::int16_t count) {
    const bool areDigits = text.find_first_not_of("0123456789") == std::string::npos;
    Check(areDigits && std::ssize(text) >= count, "numbers are filled up with zeros");
  };
  check(card.cardID, isUid ? 1 : format.CharCountCardID);
  check(card.facility, isUid || layout == nullptr ? 0 : format.CharCountFacility);
  if (layout == nullptr) return;
  if (layout->name == "34Bits" && format.IsCardArrayReversed) std::ranges::reverse(bytes);
  const auto facility = isUid ? 0 : std::stoull(card.facility);
  const CardDataStruct record = NumberCard(*layout, facility, std::stoull(card.cardID)).record;
  for (std::size_t k = 0; k < layout->ruler.size(); ++k) {
    const int other = (record.Bytes[k / 8] ^ bytes[k / 8]) >> k % 8 & 1;
    Check(layout->ruler[k] == '-' || other == 0, "the fields hold the bits of the read");
  }
}

void DecodeByFacade(Host& h) {
  const Frame frame(h.in, h.row);
  const bool isType = h.facade.IsCardType(frame.FrameCardType(), frame.FrameCardSubType());
  const auto format = isType ? h.facade.CardFormat(frame.FrameCardType(), frame.FrameCardSubType())
                             : h.facade.CardFormat(CARD_EM, CARD_SUB_EM_STD_26BITS);
  const bool isDecoded = isType || frame.IsEMFrame();
  Check(AskDecoder(h.facade, frame) == (isDecoded ? AskDecoder(*format, frame) : Answer()),
        "the facade decodes as its format");
}

/// Adds a read to the earlier ones; a steady one is asked about by itself, too.
void Match(Host& h) {
  const Frame frame(h.in, h.row);
  const int reads = h.matches.ReadCount();
  const int end = EndOf([&] { h.matches.Add(frame); });
  Check(end <= 0 && h.matches.ReadCount() == reads + (end == 0), "a read fails or is added");
  for (const CCardMatch& match : h.matches.Matches()) {
    const int count = match.CardCount();
    Check(count == h.matches.ReadCount() - h.matches.BlankCount(), "a match takes all reads");
    Check(match.ParityHolds <= (match.HasParity ? count : 0) && match.UnusedSet <= count &&
              match.BeyondLimits <= count,
          "a match counts its reads");
  }

  const std::vector<std::uint8_t> bytes = frame.Steady();
  if (bytes.size() < 16) return;
  const CCardMatches one = MatchCardData(frame);
  const auto own = std::ranges::find(one.Matches(), h.row->ClassName, &CCardMatch::ClassName);
  const bool isMatch = own != one.Matches().end();
  Check(isMatch == (one.BlankCount() == 0), "16 bytes that are not blank fit all formats");
  if (!isMatch) return;
  const Answer card = AskDecoder(*h.row->Create(), frame);
  Check(own->Cards[0].Facility == card.facility && own->Cards[0].CardID == card.cardID &&
            own->Cards[0].Revision == card.revision,
        "a match gives what its format decodes");
  const NumberLayout* const layout = h.Layout();
  Check(own->HasParity == (layout != nullptr && !layout->parities.empty()), "who has parity");
  if (!own->HasParity) return;
  const auto record =
      NumberCard(*layout, std::stoull(card.facility), std::stoull(card.cardID)).record;
  int others = 0;
  for (std::size_t k = 0; k < layout->ruler.size(); ++k) {
    others += (record.Bytes[k / 8] ^ bytes[k / 8]) >> k % 8 & 1;
  }
  Check(own->ParityHolds == (others == 0), "parity holds where all bits are as in a new card");
}

// The steps that an input is made of: conversions, the members of a format, and all other calls.
using Step = void (*)(Host&);
constexpr Step kConversions[] = {Encode, Decode, EncodeByFacade, DecodeByFacade, Match};

#define FIELD(id, name, type) \
  [](Host& h) { h.format->name = h.in.Take<decltype(h.format->name)>(); },
#define PUT(id, name, type) FIELD(id, name, type)
#define GET(id, name, type)
#define ACCESSOR(id, name, type) \
  [](Host& h) { h.format->name(h.in.Take<std::decay_t<decltype(h.format->name())>>()); },
#define READONLY(id, name, type) [](Host& h) { h.format->name(); },
#define INIT(id, name) READONLY(id, name, )
#define VALIDATOR(id, name) [](Host& h) { h.format->name(h.in.Text()); },
#define ENCODER(id, name) [](Host& h) { h.format->name(nullptr); },
#define DECODER(id, name) ENCODER(id, name)
constexpr Step kMembers[] = {DESCRIPTOR_MEMBERS()};

constexpr Step kOthers[] = {
    [](Host& h) { h.Create(); },
    [](Host& h) { h.format = h.facade.CardFormat(h.row->CardType, h.row->CardSubType); },
    [](Host& h) { std::tie(h.type, h.subType) = h.in.Pair(h.row); },
    [](Host& h) { h.code = h.in.Take<std::int32_t>(), h.key = std::to_string(h.code); },
    [](Host& h) { h.key = h.in.Text(); },
    [](Host& h) {
      auto* const format = dynamic_cast<RevisionValidator*>(h.format.get());
      if (format != nullptr) format->IsRevisionValid(h.key);
    },
    // Error objects go from one owner to another.
    [](Host& h) { h.error = h.Holder().Error(); },
    [](Host& h) { h.Holder().Error(h.error); },
    [](Host& h) { h.Holder().Error(nullptr); },
    [](Host& h) { h.Holder().MakeErr(h.code, h.key); },
    [](Host& h) { h.Holder().InitErr(); },
    // The facade.
    [](Host& h) { h.facade.IsExisted(h.type, h.subType), h.facade.CardFormat(h.type, h.subType); },
    [](Host& h) { h.facade.IsCardMainType(h.type), h.facade.CardFormatByCode(h.code); },
    [](Host& h) { h.facade.IsSmartCardData(h.key); },
    [](Host& h) { h.facade.IsSecurityCardData(h.key); },
    [](Host& h) { h.facade.ErrName = h.key, h.facade.ErrNumber = h.code; },
    [](Host& h) { h.facade.MakeCardData(nullptr); },
    [](Host& h) { h.facade.AnalyzeCardData(nullptr); },
    // The registry and its entries.
    [](Host& h) { h.types.Add(h.in.Take<bool>() ? h.entry : nullptr, h.code); },
    [](Host& h) { h.entry = std::make_shared<CCardType>(*h.entry); },
    [](Host& h) { h.entry = h.types.CardTypeByCode(h.code); },
    [](Host& h) { h.entry = h.types.CardTypeByType(h.type, h.subType); },
    [](Host& h) { h.entry = h.types.AllCardTypes().back(); },
    [](Host& h) { h.entry->initAll(); },
    [](Host& h) {
      const auto count = h.types.Count();
      Check(std::ssize(h.types.CardTypeCodes()) == count, "every entry has a code");
    },
    [](Host& h) { h.types.DefaultShortName(h.key), h.types.DefaultName(h.key); },
    [](Host& h) { h.types.ShortName(h.key, h.in.Text()), h.types.ShortName(h.key); },
    [](Host& h) { h.types.CardTypeName(h.key, h.in.Text()), h.types.CardTypeName(h.key); },
    [](Host& h) { h.types.LetShortName(h.type, h.subType, h.in.Text()); },
    [](Host& h) { h.types.LetCardTypeName(h.type, h.subType, h.in.Text()); },
    [](Host& h) { h.types.IsExisted(h.type, h.subType), h.types.GetShortName(h.type, h.subType); },
    [](Host& h) { h.types.GetDefaultShortName(h.type, h.subType); },
    [](Host& h) { h.types.GetDefaultName(h.type, h.subType); },
    [](Host& h) { h.types.GetCardTypeName(h.type, h.subType); },
    // Records and their descriptions.
    [](Host& h) { h.bytes.InitCardData(h.code), h.bytes.CardType(h.type); },
    [](Host& h) { h.bytes.CardSubType(h.in.Byte()); },
    [](Host& h) { h.bytes.CardArrDataByIndex(h.code, h.bytes.CardArrDataByIndex(h.code)); },
    [](Host& h) { h.description.ByteCount(h.code); },
    [](Host& h) { h.description.ByteOR(h.code), h.description.ByteAND(h.code); },
    [](Host& h) { h.frame.RawCardHex(h.key); },
    [](Host& h) { h.frame.CardDataStruct(h.bytes.CardDataStruct); },
    [](Host& h) { h.format->AnalyzeCardData(h.frame); },
    // What the reads so far can be.
    [](Host& h) { h.matches.Item(h.type)->CardData(h.subType); },
    [](Host& h) { h.matches.Clear(); },
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // A step's byte modulo 3 picks the list, what is left the step.
  constexpr std::span<const Step> kLists[] = {kConversions, kMembers, kOthers};
  Host host{{{reinterpret_cast<const char*>(data), size}}};
  host.Create();
  for (int i = 0; i < 100 && !host.in.rest.empty(); ++i) {
    const std::size_t step = host.in.Byte();
    const auto list = kLists[step % 3];
    EndOf([&] { list[step / 3 % list.size()](host); });
  }
  return 0;
}
