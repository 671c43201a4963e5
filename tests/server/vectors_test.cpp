#include "tests/vectors.h"

#include "tests/server/client.h"
#include <vardel/core/hex.h>

#include <gtest/gtest.h>

// The library's vectors through the server: hosts of every kind see what C++ hosts see.
namespace vardel {
void PrintTo(const Descriptor& descriptor, std::ostream* out) { *out << descriptor.where; }
}  // namespace vardel

namespace vardel::server {
namespace {

constexpr char kOwn[] = "CCardFormatInfo_";  // in a format's own interface, before a general name
constexpr const char* kEarly = nullptr;      // no name at all

/// Calls a member of a format through its vtable, as programs in C++ do.
Outcome CallEarly(const Value& object, const std::string& member, const Value& argument,
                  Value* result) {
  const auto format = object.As<::_CCardFormatInfo>();
  HRESULT status = S_OK;
  if (member == "MakeCardData") {
    auto card = argument.As<::_CCardData>();  // the call's to replace, and so is a frame
    ::CardDataStruct record{};
    status = format->MakeCardData(card.out(), &record);
    *result = NewByteArray(record.Bytes);
  } else if (member == "AnalyzeCardData") {
    auto frame = argument.As<IDispatch>();
    ComPtr<::_CCardData> card;
    status = format->AnalyzeCardData(frame.out(), card.out());
    *result = card.get();
  } else {
    VARIANT_BOOL isValid = VARIANT_FALSE;
    status = member == "IsFacilityValid" ? format->IsFacilityValid(argument.bstrVal, &isValid)
                                         : format->IsCardIDValid(argument.bstrVal, &isValid);
    *result = isValid == VARIANT_TRUE;
  }
  return EarlyOutcome(status);
}

/// What a format, or the facade that has it, answers, as the vectors say it.
std::string Answer(const Client& client, const Value& object, const char* prefix,
                   const std::string& member, const Value& argument) {
  Value result;
  const Outcome outcome =
      prefix == kEarly ? CallEarly(object, member, argument, &result)
                       : client.Try(object, prefix + member, Client::kGets, {argument}, &result);
  if (!outcome.failure.empty()) return outcome.failure;
  std::string answer = result.Text();
  if (result.vt == VT_BOOL) return answer;
  if (member == "AnalyzeCardData") {
    answer = client.Ask(result, "CardType") + "/" + client.Ask(result, "CardSubType");
    for (const char* field : {"Facility", "CardID", "Revision"}) {
      answer += " '" + client.Ask(result, field) + "'";
    }
  } else if (result.vt == VT_DISPATCH) {
    answer = client.Ask(result, "CardDataStruct");  // the facade's
  }
  const Value& holder = result.vt == VT_DISPATCH ? result : object;
  const int number = std::stoi(client.Ask(holder, "ErrNumber"));
  return answer + RecordAnswer({}, number, client.Ask(holder, "ErrName"));
}

/// `pair` is the format's.
void ExpectAnswer(const Client& client, const Value& object, const char* prefix,
                  const Vector& vector, const std::vector<Value>& pair) {
  if (vector.operation == "encode") {
    const Value card = client.NewCard(vector.card);
    EXPECT_EQ(Answer(client, object, prefix, "MakeCardData", card), vector.answer);
  } else if (vector.operation == "decode") {
    HostFrame host;
    host.type = pair[0].lVal;
    host.subType = pair[1].lVal;
    host.bytes = vector.frame.bytes;
    host.hex = Wide(vector.frame.hex);
    std::vector<Value> frames = {&host, host.ByNames()};
    if (host.bytes && HexText(*host.bytes) == vector.frame.hex) {
      const Value& own = frames.emplace_back(client.New("CCardFrame"));
      client.Put(own, "FrameCardType", {pair[0]});
      client.Put(own, "FrameCardSubType", {pair[1]});
      client.Put(own, "RawCardHex", {vector.frame.hex});
    }
    for (const Value& frame : frames) {
      EXPECT_EQ(Answer(client, object, prefix, "AnalyzeCardData", frame), vector.answer);
    }
  } else {
    // The revision's validator stands in own interfaces alone, in one under the prefix.
    const bool is34Bits = vector.className == "CCardFormat34Bits";
    if (vector.operation == "IsRevisionValid") prefix = is34Bits ? kOwn : "";
    EXPECT_EQ(Answer(client, object, prefix, vector.operation, vector.text), vector.answer);
  }
}

const Value& Changed(const Client& client, const Value& format, const Vector& vector) {
  for (const auto& [name, text] : vector.changes) {
    const auto number = ParseAnyNumber(text);  // the platform does not read every one from text
    EXPECT_EQ(client.Put(format, name, {number ? Value(*number) : Value(text)}), "");
  }
  return format;
}

class ServerFormat : public testing::TestWithParam<Descriptor> {};

TEST_P(ServerFormat, HoldsItsDescriptorAndAnswersEveryVector) {
  const auto& [where, className, values] = GetParam();
  const Client client;
  const std::string own = className == "CCardFormatInfo" ? "" : kOwn;
  const Value untouched = client.New(className);
  for (const auto& [name, value] : values) {
    EXPECT_EQ(client.Ask(untouched, name), value) << where << " " << name;
    EXPECT_EQ(client.Ask(untouched, own + name), value) << where << " " << name;
  }
  const std::vector<Value> pair = {std::stoi(client.Ask(untouched, "CardType")),
                                   std::stoi(client.Ask(untouched, "CardSubType"))};
  for (const Vector& vector : Vectors()) {
    if (vector.className != className) continue;
    SCOPED_TRACE(vector.where);
    for (const char* prefix : {kEarly, "", own.c_str()}) {
      const Value format = client.New(className);
      ExpectAnswer(client, Changed(client, format, vector), prefix, vector, pair);
    }
    const CCardData& card = vector.card;
    const bool isOwn = vector.operation == "decode" ||
                       (card.CardType == pair[0].lVal && card.CardSubType == pair[1].lVal);
    const bool isValidator = vector.operation.starts_with("Is");
    const Value facade = client.New("CCard");
    if (!isOwn || isValidator || client.Ask(facade, "IsCardType", pair) == "False") continue;
    const Value format = Changed(client, client.Take(facade, "CardFormat", pair), vector);
    ExpectAnswer(client, facade, "", vector, pair);
  }
}

INSTANTIATE_TEST_SUITE_P(Of, ServerFormat, testing::ValuesIn(Descriptors()),
                         [](const auto& test) { return test.param.className; });

}  // namespace
}  // namespace vardel::server
