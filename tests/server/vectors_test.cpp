#include "tests/support/vectors.h"

#include "tests/server/server.h"
#include "tests/server/test_frame.h"
#include <vardel/core/hex.h>
#include <vardel/core/number.h>

#include <gtest/gtest.h>

// Every conformance case, late-bound through the server: what a script sees is what the library
// does.
namespace vardel::server {
namespace {

const ServerModule& Module() {
  static const ServerModule module;
  return module;
}

struct Text : Variant {
  explicit Text(const std::string& text) {
    vt = VT_BSTR;
    bstrVal = NewBstr(text);
  }
};

struct Number : Variant {
  explicit Number(double number) {
    vt = VT_R8;
    dblVal = number;
  }
};

/// An automation object by the names of its members.
class Script {
 public:
  explicit Script(ComPtr<IDispatch> object) : object_(std::move(object)) {}
  explicit Script(const std::string& className)
      : object_(Module().Create<IDispatch>(ClassId(Wide(className)))) {}

  IDispatch* get() const { return object_.get(); }

  void Put(const std::string& name, VARIANT& value) const {
    const Outcome outcome = Call(get(), Wide(name), DISPATCH_PROPERTYPUT, {&value}, nullptr);
    EXPECT_EQ(outcome.status, S_OK) << name;
  }

  std::string Get(const std::string& name) const {
    Variant value;
    const Outcome outcome = Call(get(), Wide(name), DISPATCH_PROPERTYGET, {}, &value);
    EXPECT_EQ(outcome.status, S_OK) << name;
    return Show(value);
  }

  static std::string Show(Variant& value) {
    if (value.vt == VT_R8) {
      const bool isNegative = value.dblVal < 0;
      return (isNegative ? "-" : "") + NumberText(isNegative ? -value.dblVal : value.dblVal);
    }
    EXPECT_EQ(VariantChangeType(&value, &value, 0, VT_BSTR), S_OK);
    return Utf8(value.bstrVal);
  }

 private:
  ComPtr<IDispatch> object_;
};

Script CardOf(const CCardData& card) {
  Script script("CCardData");
  Number type(card.CardType), subType(card.CardSubType);
  Text facility(card.Facility), cardID(card.CardID), revision(card.Revision);
  script.Put("CardType", type);
  script.Put("CardSubType", subType);
  script.Put("Facility", facility);
  script.Put("CardID", cardID);
  script.Put("Revision", revision);
  return script;
}

struct Reference : Variant {
  explicit Reference(IDispatch* object) {
    vt = VT_DISPATCH;
    pdispVal = object;
    object->AddRef();
  }
};

void ExpectFault(const Outcome& outcome, int fault, const std::string& format) {
  EXPECT_EQ(outcome.status, fault == 0 ? S_OK : DISP_E_EXCEPTION);
  EXPECT_EQ(outcome.fault, fault);
  if (fault != 0) {
    EXPECT_EQ(Utf8(outcome.source), "Vardel." + format);
    EXPECT_FALSE(outcome.description.empty());
  }
}

class ServerVectors : public testing::TestWithParam<std::string> {
 protected:
  void RunEncode(const VectorCase& c, const Script& format) const {
    const Script card = CardOf(c.card);
    Reference argument(card.get());
    Variant record;
    ExpectFault(
        Call(format.get(), L"CCardFormatInfo_MakeCardData", DISPATCH_METHOD, {&argument}, &record),
        c.fault, file_.format);
    EXPECT_EQ(format.Get("CCardFormatInfo_ErrName"), c.error);
    EXPECT_EQ(format.Get("CCardFormatInfo_ErrNumber"), c.error.empty() ? "0" : "-1");
    if (c.fault != 0) return;
    // As a script keeps it: a variable, put into a raw card and read byte by byte.
    ASSERT_EQ(record.vt, VT_RECORD);
    Variant variable;
    ASSERT_EQ(VariantCopy(&variable, &record), S_OK);
    const Script raw("CCardByteData");
    raw.Put("CardDataStruct", variable);
    for (LONG i = 0; i < 32; ++i) {
      Number index(static_cast<double>(i));
      Variant byte;
      Call(raw.get(), L"CardArrDataByIndex", DISPATCH_PROPERTYGET, {&index}, &byte);
      EXPECT_EQ(byte.bVal, c.record.Bytes[static_cast<std::size_t>(i)]) << "byte " << i;
    }
  }

  void RunDecode(const VectorCase& c, const Script& format, IDispatch* frame) const {
    Reference argument(frame);
    Variant result;
    ExpectFault(Call(format.get(), L"CCardFormatInfo_AnalyzeCardData", DISPATCH_METHOD, {&argument},
                     &result),
                c.fault, file_.format);
    if (c.fault != 0) return;
    ASSERT_EQ(result.vt, VT_DISPATCH);
    const Script card(ComPtr<IDispatch>::Share(result.pdispVal));
    EXPECT_EQ(card.Get("CardType"), std::to_string(c.card.CardType));
    EXPECT_EQ(card.Get("CardSubType"), std::to_string(c.card.CardSubType));
    EXPECT_EQ(card.Get("Facility"), c.card.Facility);
    EXPECT_EQ(card.Get("CardID"), c.card.CardID);
    EXPECT_EQ(card.Get("Revision"), c.card.Revision);
    EXPECT_EQ(card.Get("ErrName"), c.error);
    EXPECT_EQ(card.Get("ErrNumber"), c.error.empty() ? "0" : "-1");
  }

  /// With a frame of each kind that a host may have.
  void RunDecodes(const VectorCase& c, const Script& format) const {
    for (const auto kind : {HostFrame::Kind::Interface, HostFrame::Kind::Names}) {
      SCOPED_TRACE(kind == HostFrame::Kind::Names ? "frame by names" : "frame by interface");
      HostFrame frame(kind);
      frame.bytes = c.bytes;
      frame.hex = Wide(c.hex);
      RunDecode(c, format, &frame);
    }
    // Our own frame's text and bytes always agree.
    if (!c.bytes || HexText(*c.bytes) != c.hex) return;
    const Script frame("CCardFrame");
    Text hex(c.hex);
    frame.Put("RawCardHex", hex);
    RunDecode(c, format, frame.get());
  }

  void RunValid(const VectorCase& c, const Script& format) const {
    const bool isOwnMember = c.name == "IsRevisionValid" && file_.format != "CCardFormat34Bits";
    Text text(c.text);
    Variant result;
    const std::string name = (isOwnMember ? "" : "CCardFormatInfo_") + c.name;
    const Outcome outcome = Call(format.get(), Wide(name), DISPATCH_METHOD, {&text}, &result);
    EXPECT_EQ(outcome.status, S_OK);
    EXPECT_EQ(result.boolVal, c.isValid ? VARIANT_TRUE : VARIANT_FALSE);
  }

  VectorFile file_ = ReadVectors(GetParam());
};

TEST_P(ServerVectors, HoldForTheirClass) {
  for (const VectorCase& c : file_.cases) {
    SCOPED_TRACE(GetParam() + ":" + std::to_string(c.line));
    const Script format(file_.format);
    for (const auto& [name, value] : c.settings) {
      if (const auto number = ParseNumber(value); number && name != "DefaultChar") {
        Number argument(*number);
        format.Put(name, argument);
      } else {
        Text argument(value);
        format.Put(name, argument);
      }
    }
    switch (c.kind) {
      case CaseKind::Param:
        EXPECT_EQ(format.Get("CCardFormatInfo_" + c.name), c.text);
        break;
      case CaseKind::Encode:
        RunEncode(c, format);
        break;
      case CaseKind::Decode:
        RunDecodes(c, format);
        break;
      case CaseKind::Valid:
        RunValid(c, format);
        break;
    }
  }
  EXPECT_EQ(Module().CanUnloadNow(), S_OK) << "an object is left";
}

std::string TestName(const testing::TestParamInfo<std::string>& info) {
  return ReadVectors(info.param).format;
}
INSTANTIATE_TEST_SUITE_P(Of, ServerVectors, testing::ValuesIn(VectorPaths(VARDEL_VECTORS)),
                         TestName);

}  // namespace
}  // namespace vardel::server
