#include "tests/support/vectors.h"

#include "tests/support/fault_of.h"
#include "tests/support/test_frame.h"
#include <vardel/core/number.h>
#include <vardel/facade/card.h>
#include <vardel/formats/card_formats.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <type_traits>

namespace vardel {
namespace {

std::string Show(const std::string& text) { return text; }
std::string Show(bool flag) { return flag ? "-1" : "0"; }
template <class Number>
std::string Show(Number number) {
  return (number < 0 ? "-" : "") + NumberText(number < 0 ? -number : number);
}

template <class T>
void Store(T& member, const std::string& text) {
  if constexpr (std::is_same_v<T, std::string>) {
    member = text;
  } else {
    member = static_cast<T>(std::stod(text));
  }
}

/// Gets and puts of the descriptor's values by name.
struct Member {
  std::function<std::string(const CCardFormatInfo&)> get;
  std::function<void(CCardFormatInfo&, const std::string&)> put;
};

const std::map<std::string, Member>& Members() {
  static const std::map<std::string, Member> members = {
#define FIELD(id, name, type)                                        \
  {#name,                                                            \
   {[](const CCardFormatInfo& format) { return Show(format.name); }, \
    [](CCardFormatInfo& format, const std::string& text) { Store(format.name, text); }}},
#define ACCESSOR(id, name, type) READONLY(id, name, type)
#define READONLY(id, name, type) \
  {#name, {[](const CCardFormatInfo& format) { return Show(format.name()); }, nullptr}},
#define PUT(id, name, type)
#define GET(id, name, type) FIELD(id, name, type)
#define INIT(id, name)
#define VALIDATOR(id, name)
#define ENCODER(id, name)
#define DECODER(id, name)
#include <vardel/format/descriptor_members.inc>
  };
  return members;
}

class FormatVectors : public testing::TestWithParam<std::string> {
 protected:
  static void Apply(const VectorCase& c, CCardFormatInfo& format) {
    for (const auto& [name, value] : c.settings) Members().at(name).put(format, value);
  }

  static void RunEncode(const VectorCase& c, CCardFormatInfo& format) {
    CardDataStruct record;
    EXPECT_EQ(FaultOf([&] { record = format.MakeCardData(c.card); }), c.fault);
    EXPECT_EQ(record.Bytes, c.record.Bytes);
    EXPECT_EQ(format.ErrName(), c.error);
    EXPECT_EQ(format.ErrNumber(), c.error.empty() ? 0 : -1);
  }

  static void RunDecode(const VectorCase& c, CCardFormatInfo& format) {
    const TestFrame frame(c.bytes, c.hex);
    CCardData card;
    EXPECT_EQ(FaultOf([&] { card = format.AnalyzeCardData(frame).value(); }), c.fault);
    EXPECT_EQ(card.CardType, c.card.CardType);
    EXPECT_EQ(card.CardSubType, c.card.CardSubType);
    EXPECT_EQ(card.Facility, c.card.Facility);
    EXPECT_EQ(card.CardID, c.card.CardID);
    EXPECT_EQ(card.Revision, c.card.Revision);
    EXPECT_EQ(card.ErrName, c.error);
    EXPECT_EQ(card.ErrNumber, c.error.empty() ? 0 : -1);
    EXPECT_EQ(format.ErrNumber(), 0) << "a decoder records on its result alone";
  }

  static void RunValid(const VectorCase& c, const CCardFormatInfo& format) {
    const bool isValid =
        c.name == "IsFacilityValid" ? format.IsFacilityValid(c.text)
        : c.name == "IsCardIDValid"
            ? format.IsCardIDValid(c.text)
            : dynamic_cast<const RevisionValidator&>(format).IsRevisionValid(c.text);
    EXPECT_EQ(isValid, c.isValid);
  }

  /// The same encode through the facade, where it takes such cards.
  static void RunFacade(const VectorCase& c) {
    CCard facade;
    if (!facade.IsCardType(c.card.CardType, c.card.CardSubType)) return;
    const auto format = facade.CardFormat(c.card.CardType, c.card.CardSubType);
    Apply(c, *format);
    CCardByteData raw;
    EXPECT_EQ(FaultOf([&] { raw = facade.MakeCardData(c.card); }), c.fault);
    EXPECT_EQ(raw.CardDataStruct.Bytes, c.record.Bytes);
    EXPECT_EQ(raw.ErrName(), c.error);
    EXPECT_EQ(facade.ErrNumber, 0);
  }
};

TEST_P(FormatVectors, HoldForTheirFormat) {
  const VectorFile file = ReadVectors(GetParam());
  const auto classes = CardFormatClasses();
  const auto row = std::ranges::find(classes, file.format, &CardFormatClass::ClassName);
  ASSERT_NE(row, classes.end()) << file.format;
  for (const VectorCase& c : file.cases) {
    SCOPED_TRACE(GetParam() + ":" + std::to_string(c.line));
    const auto format = row->Create();
    Apply(c, *format);
    switch (c.kind) {
      case CaseKind::Param:
        EXPECT_EQ(Members().at(c.name).get(*format), c.text);
        break;
      case CaseKind::Encode:
        RunEncode(c, *format);
        RunFacade(c);
        break;
      case CaseKind::Decode:
        RunDecode(c, *format);
        break;
      case CaseKind::Valid:
        RunValid(c, *format);
        break;
    }
  }
}

std::string TestName(const testing::TestParamInfo<std::string>& info) {
  return ReadVectors(info.param).format;
}
INSTANTIATE_TEST_SUITE_P(Of, FormatVectors, testing::ValuesIn(VectorPaths(VARDEL_VECTORS)),
                         TestName);

TEST(FormatVectorFiles, CoverEveryFormatWithEveryKindOfCaseAndEveryParameter) {
  std::map<std::string, VectorFile> files;
  for (const std::string& path : VectorPaths(VARDEL_VECTORS)) {
    VectorFile file = ReadVectors(path);
    files.emplace(file.format, std::move(file));
  }
  for (const CardFormatClass& row : CardFormatClasses()) {
    SCOPED_TRACE(row.ClassName);
    const auto file = files.find(std::string(row.ClassName));
    ASSERT_NE(file, files.end());
    for (const CaseKind kind : {CaseKind::Encode, CaseKind::Decode, CaseKind::Valid}) {
      EXPECT_GE(std::ranges::count(file->second.cases, kind, &VectorCase::kind), 2);
    }
    for (const auto& member : Members()) {
      EXPECT_EQ(std::ranges::count_if(file->second.cases,
                                      [&](const VectorCase& c) {
                                        return c.kind == CaseKind::Param && c.name == member.first;
                                      }),
                1)
          << member.first;
    }
  }
}

}  // namespace
}  // namespace vardel
