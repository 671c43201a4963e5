#include "tests/vectors.h"

#include "tests/server/client.h"
#include <vardel/core/hex.h>

#include <gtest/gtest.h>

// The library's vectors through the server: hosts of every kind see what C++ hosts see.
namespace vardel::server {
namespace {

constexpr char kOwn[] = "CCardFormatInfo_";  // in a format's own interface, before a general name
constexpr const char* kEarly = nullptr;      // no name at all

/// Calls a member of a format or the facade through its vtable, as programs in C++ do.
Outcome CallEarly(const Value& object, const std::string& member, const Value& argument,
                  Value* result) {
  const auto format = object.As<::_CCardFormatInfo>();
  const auto facade = object.As<::_CCard>();
  ComPtr<::_CCardData> card;
  HRESULT status = S_OK;
  if (member == "MakeCardData") {
    ComPtr<::_CCardByteData> raw;
    ::CardDataStruct record{};
    card = argument.As<::_CCardData>();  // the call's to replace, and so is a frame
    status = facade ? facade->MakeCardData(card.out(), raw.out())
                    : format->MakeCardData(card.out(), &record);
    *result = facade ? Value(raw.get()) : Value(NewByteArray(record.Bytes));
  } else if (member == "AnalyzeCardData") {
    auto frame = argument.As<IDispatch>();
    status = facade ? facade->AnalyzeCardData(frame.out(), card.out())
                    : format->AnalyzeCardData(frame.out(), card.out());
    *result = card.get();
  } else {
    VARIANT_BOOL isValid = VARIANT_FALSE;
    status = member == "IsFacilityValid" ? format->IsFacilityValid(argument.bstrVal, &isValid)
                                         : format->IsCardIDValid(argument.bstrVal, &isValid);
    *result = isValid == VARIANT_TRUE;
  }
  return EarlyOutcome(status);
}

class ServerFormat : public testing::TestWithParam<Descriptor>, protected Client {
 protected:
  /// What a format, or the facade that has it, answers, as the vectors say it.
  std::string Answer(const Value& object, const char* prefix, const std::string& member,
                     const Value& argument) const {
    Value result;
    const Outcome outcome = prefix == kEarly
                                ? CallEarly(object, member, argument, &result)
                                : Try(object, prefix + member, kGets, {argument}, &result);
    if (!outcome.failure.empty()) return outcome.failure;
    std::string answer = result.Text();
    if (result.vt == VT_BOOL) return answer;
    if (member == "AnalyzeCardData") {
      answer = Ask(result, "CardType") + "/" + Ask(result, "CardSubType");
      for (const char* field : {"Facility", "CardID", "Revision"}) {
        answer += " '" + Ask(result, field) + "'";
      }
    } else if (result.vt == VT_DISPATCH) {
      answer = Ask(result, "CardDataStruct");  // the facade's
    }
    const Value& holder = result.vt == VT_DISPATCH ? result : object;
    const int number = std::stoi(Ask(holder, "ErrNumber"));
    return answer + RecordAnswer({}, number, Ask(holder, "ErrName"));
  }

  void ExpectAnswer(const Value& object, const char* prefix, const Vector& vector) const {
    if (vector.operation == "encode") {
      EXPECT_EQ(Answer(object, prefix, "MakeCardData", NewCard(vector.card)), vector.answer);
    } else if (vector.operation == "decode") {
      HostFrame host;
      host.type = type_;
      host.subType = subType_;
      host.bytes = vector.frame.bytes;
      host.hex = Wide(vector.frame.hex);
      std::vector<Value> frames = {&host, host.ByNames()};
      if (host.bytes && HexText(*host.bytes) == vector.frame.hex) {
        const Value& own = frames.emplace_back(New("CCardFrame"));
        Put(own, "FrameCardType", {type_});
        Put(own, "FrameCardSubType", {subType_});
        Put(own, "RawCardHex", {vector.frame.hex});
      }
      for (const Value& frame : frames) {
        EXPECT_EQ(Answer(object, prefix, "AnalyzeCardData", frame), vector.answer);
      }
    } else {
      // The revision's validator stands in own interfaces alone, in one under the prefix.
      const bool is34Bits = vector.className == "CCardFormat34Bits";
      if (vector.operation == "IsRevisionValid") prefix = is34Bits ? kOwn : "";
      EXPECT_EQ(Answer(object, prefix, vector.operation, vector.text), vector.answer);
    }
  }

  Value Changed(Value format, const Vector& vector) const {
    for (const auto& [name, text] : vector.changes) {
      const auto number = ParseAnyNumber(text);  // the platform does not read every one from text
      EXPECT_EQ(Put(format, name, {number ? Value(*number) : Value(text)}), "");
    }
    return format;
  }

  const Value untouched_ = New(GetParam().className);
  const int type_ = std::stoi(Ask(untouched_, "CardType"));
  const int subType_ = std::stoi(Ask(untouched_, "CardSubType"));
};

TEST_P(ServerFormat, HoldsItsDescriptorAndAnswersEveryVector) {
  const auto& [where, className, values] = GetParam();
  const std::string own = className == "CCardFormatInfo" ? "" : kOwn;
  for (const auto& [name, value] : values) {
    EXPECT_EQ(Ask(untouched_, name), value) << where << " " << name;
    EXPECT_EQ(Ask(untouched_, own + name), value) << where << " " << name;
  }
  for (const Vector& vector : Vectors()) {
    if (vector.className != className) continue;
    SCOPED_TRACE(vector.where);
    for (const char* prefix : {kEarly, "", own.c_str()}) {
      ExpectAnswer(Changed(New(className), vector), prefix, vector);
    }
    const CCardData& card = vector.card;
    const bool isOwn =
        vector.operation == "decode" || (card.CardType == type_ && card.CardSubType == subType_);
    const Value facade = New("CCard");
    if (!isOwn || Ask(facade, "IsCardType", {type_, subType_}) == "False") continue;
    const Value format = Changed(Take(facade, "CardFormat", {type_, subType_}), vector);
    ExpectAnswer(facade, kEarly, vector);
    ExpectAnswer(facade, "", vector);
  }
}

INSTANTIATE_TEST_SUITE_P(Of, ServerFormat, testing::ValuesIn(Descriptors()),
                         [](const auto& test) { return test.param.className; });

}  // namespace
}  // namespace vardel::server
