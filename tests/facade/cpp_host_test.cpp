#include "tests/support/test_frame.h"
#include <vardel/core/card_frame.h>
#include <vardel/core/number.h>
#include <vardel/facade/card.h>
#include <vardel/format/mod_card.h>
#include <vardel/formats/card_formats.h>

#include <gtest/gtest.h>

#include <cmath>

// What only C++ hosts can do: copy objects, bring frames of their own, give values that no text
// says.
namespace vardel {
namespace {

/// The number of the fault that ends the call, or 0.
int FaultOf(const auto& call) try {
  call();
  return 0;
} catch (const HostFault& fault) {
  return static_cast<int>(fault.Number());
}

TEST(CppHost, FindsExactlyTheFormatsOfTheFacadeList) {
  const CCard facade;
  for (std::int32_t code = -1100; code <= 1100; ++code) {
    bool expected = false;
    for (const CardFormatClass& row : CardFormatClasses()) {
      expected |= row.IsInFacade && row.CardType * 256 + row.CardSubType == code;
    }
    EXPECT_EQ(facade.IsExisted(0, code), expected) << code;
    EXPECT_EQ(FaultOf([&] { facade.CardFormatByCode(code); }), expected ? 0 : 424) << code;
  }
}

TEST(CppHost, GetsCopiesThatShareNothing) {
  CCardByteData original, assigned;
  original.MakeErr(-1, "original");
  const std::shared_ptr<CError> error = original.Error(), replaced = assigned.Error();
  const CCardByteData copy = original;
  assigned = original;
  error->MakeErr(-1, "changed");
  replaced->MakeErr(-1, "changed");
  EXPECT_EQ(copy.ErrName(), "original");
  EXPECT_EQ(assigned.ErrName(), "original");
  original.Error(nullptr);
  EXPECT_EQ(FaultOf([&] { CCardByteData(original).ErrName(); }), 91);
  assigned = original;
  EXPECT_EQ(assigned.Error(), nullptr);

  CCardFrame frame(CARD_HID, CARD_SUB_HID_STD, std::string(100, '7'));
  const CCardFrame kept = frame;
  frame.RawCardHex(frame.RawCardHex().substr(2, 4));  // a part of its own text
  EXPECT_EQ(frame.RawCardHex(), "7777");
  EXPECT_EQ(kept.RawCardBytes()->size(), 50U);
  CCardFrame source = kept;
  const CCardFrame target = std::move(source);
  EXPECT_EQ(source.RawCardBytes()->size(), 0U);
}

TEST(CppHost, HasItsFrameReadAsOftenAsTheFormatSays) {
  struct Row {
    std::string_view format;
    int plain, reversed;
  };
  constexpr Row kRows[] = {{"CCardFormatEM", 2, 3},          {"CCardFormatHIDStandard", 1, 2},
                           {"CCardFormatBinary26", 1, 2},    {"CCardFormat37Bits", 2, 3},
                           {"CCardFormatHIDCorp1000", 2, 3}, {"CCardFormat34Bits", 2, 2},
                           {"CCardFormatUID32BIts", 2, 2},   {"CCardFormatDongSeo", 1, 1},
                           {"CCardFormatLG", 2, 2},          {"CCardFormatWoori", 2, 2}};
  for (const CardFormatClass& listed : CardFormatClasses()) {
    const Row* row = kRows;
    while (row->format != listed.ClassName) ASSERT_NE(++row, std::end(kRows)) << listed.ClassName;
    const auto format = listed.Create();
    const TestFrame frame(std::vector<std::uint8_t>(16, 1), std::string(32, '1'));
    format->AnalyzeCardData(frame);
    EXPECT_EQ(frame.byteReads, row->plain) << row->format;
    format->IsCardArrayReversed = true;
    format->AnalyzeCardData(frame);
    EXPECT_EQ(frame.byteReads - row->plain, row->reversed) << row->format;
  }
}

TEST(CppHost, SeesItsFramesOwnFailureAndTheFiller) {
  struct Refusal {};
  struct RefusingFrame : TestFrame {
    using TestFrame::TestFrame;
    std::string_view RawCardHex() const override { throw Refusal(); }
  };
  const CCard facade;
  RefusingFrame frame(std::vector<std::uint8_t>(6), "");
  frame.type = CARD_HID;
  frame.subType = CARD_SUB_HID_STD;
  EXPECT_THROW(facade.AnalyzeCardData(frame), Refusal);
  EXPECT_EQ(LibraryFiller().Length, 64);
  EXPECT_EQ(LibraryFiller().Text, std::string(64, '0'));
}

TEST(CppHost, HasDigitsReadToTheirEndAndNoFurther) {
  for (std::size_t size = 1; size <= 16; ++size) {
    for (std::size_t place = 0; place < size; ++place) {
      std::vector<char> text(size, '9');  // a read beyond it would leave this allocation
      const std::string_view digits(text.data(), size);
      for (int code = 0; code < 256; ++code) {
        text[place] = static_cast<char>(code);
        std::int64_t value = -1;
        const bool isShort = size <= 15 && code >= '0' && code <= '9';
        ASSERT_EQ(ParseDigits(digits, value), isShort) << digits;
        ASSERT_EQ(value, isShort ? std::stoll(std::string(digits)) : -1) << digits;
      }
    }
  }
}

TEST(CppHost, MayGiveAnyNumberAndAnyCountOfBytes) {
  for (const double value : {HUGE_VAL, NAN + 0., 0x1p1023, -0x1p1023}) {
    const int fault = value == 0x1p1023 ? 0 : 6;
    EXPECT_EQ(FaultOf([&] { NumberToBytes(value); }), fault) << value;
    EXPECT_EQ(FaultOf([&] { NumberToBytesByByte(value); }), fault) << value;
  }
  using Bytes = std::vector<std::uint8_t>;
  EXPECT_EQ(std::stod(ByteArrayToNumberText(Bytes(127, 255))), 0x1p1016);
  for (const std::size_t count : {128U, 129U, 1000U}) {
    const std::string text = ByteArrayToNumberText(Bytes(count, 255));
    EXPECT_EQ(text.find_first_not_of("0123456789"), std::string::npos) << text;
  }
}

}  // namespace
}  // namespace vardel
