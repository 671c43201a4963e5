#include "tests/vectors.h"

#include "tests/server/client.h"
#include "tests/server/test_frame.h"
#include <vardel/core/hex.h>

#include <gtest/gtest.h>

// The library's vectors through the server: hosts of every kind see what C++ hosts see.
namespace vardel {
void PrintTo(const Descriptor& descriptor, std::ostream* out) { *out << descriptor.where; }
}  // namespace vardel

namespace vardel::server {
namespace {

/// An answer with the error pair of the object that has it, as the vectors say it.
std::string WithError(const Client& client, const std::string& answer, const Value& holder) {
  const int number = std::stoi(client.Ask(holder, "ErrNumber"));
  return answer + RecordAnswer({}, number, client.Ask(holder, "ErrName"));
}

std::string Encode(const Client& client, const Value& encoder, const std::string& member,
                   const CCardData& data) {
  Value raw;
  const std::string answer = client.Ask(encoder, member, {client.NewCard(data)}, &raw);
  if (raw.vt == VT_EMPTY) return answer;  // a fault
  if (raw.vt != VT_DISPATCH) return WithError(client, answer, encoder);
  return WithError(client, client.Ask(raw, "CardDataStruct"), raw);  // the facade's
}

std::string Decode(const Client& client, const Value& decoder, const std::string& member,
                   const Value& frame) {
  Value card;
  const std::string answer = client.Ask(decoder, member, {frame}, &card);
  if (card.vt == VT_EMPTY) return answer;
  const auto number = [&](const char* name) { return std::stoi(client.Ask(card, name)); };
  const auto subType = static_cast<std::uint8_t>(number("CardSubType"));
  return CardAnswer({number("ErrNumber"), client.Ask(card, "ErrName"), number("CardType"), subType,
                     client.Ask(card, "Facility"), client.Ask(card, "CardID"),
                     client.Ask(card, "Revision")});
}

/// Expects the vector's answer of a format, or of the facade that has it; `pair` is the format's.
void ExpectAnswer(const Client& client, const Value& object, const std::string& prefix,
                  const Vector& vector, const std::vector<Value>& pair) {
  if (vector.operation == "encode") {
    EXPECT_EQ(Encode(client, object, prefix + "MakeCardData", vector.card), vector.answer);
  } else if (vector.operation == "decode") {
    HostFrame host;
    host.type = pair[0].lVal;
    host.subType = pair[1].lVal;
    host.bytes = vector.frame.bytes;
    host.hex = Wide(vector.frame.hex);
    std::vector<Value> frames = {&host, host.ByNames().get()};
    if (host.bytes && HexText(*host.bytes) == vector.frame.hex) {
      const Value& own = frames.emplace_back(client.New("CCardFrame"));
      client.Put(own, "FrameCardType", {pair[0]});
      client.Put(own, "FrameCardSubType", {pair[1]});
      client.Put(own, "RawCardHex", {vector.frame.hex});
    }
    for (const Value& frame : frames) {
      EXPECT_EQ(Decode(client, object, prefix + "AnalyzeCardData", frame), vector.answer);
    }
  } else {
    // The revision's validator stands in own interfaces alone, in one under the prefix.
    const bool isRevision = vector.operation == "IsRevisionValid";
    const bool is34Bits = vector.className == "CCardFormat34Bits";
    const std::string own = is34Bits ? "CCardFormatInfo_" : "";
    const std::string member = (isRevision ? own : prefix) + vector.operation;
    EXPECT_EQ(client.Ask(object, member, {vector.text}), vector.answer);
  }
}

const Value& Changed(const Client& client, const Value& format, const Vector& vector) {
  for (const auto& [name, text] : vector.changes) {
    char* end = nullptr;  // of a number, which the platform does not always read from text
    const double number = std::strtod(text.c_str(), &end);
    const bool isNumber = !text.empty() && *end == '\0';
    EXPECT_EQ(client.Put(format, name, {isNumber ? Value(number) : Value(text)}), "");
  }
  return format;
}

class ServerFormat : public testing::TestWithParam<Descriptor> {};

TEST_P(ServerFormat, HoldsItsDescriptorAndAnswersEveryVector) {
  const auto& [where, className, values] = GetParam();
  // The format's own interface has a prefix before the members of that which all formats have.
  for (const std::string prefix : {"", className == "CCardFormatInfo" ? "" : "CCardFormatInfo_"}) {
    for (const Binding binding : {Binding::Names, Binding::Vtables}) {
      const Client client(binding);
      const Value untouched = client.New(className);
      for (const auto& [name, value] : values) {
        EXPECT_EQ(client.Ask(untouched, prefix + name), value) << where << " " << name;
      }
      const std::vector<Value> pair = {std::stoi(client.Ask(untouched, "CardType")),
                                       std::stoi(client.Ask(untouched, "CardSubType"))};
      for (const Vector& vector : Vectors()) {
        if (vector.className != className) continue;
        SCOPED_TRACE(vector.where + " " + testing::PrintToString(binding) + " " + prefix);
        const Value format = client.New(className), facade = client.New("CCard");
        ExpectAnswer(client, Changed(client, format, vector), prefix, vector, pair);

        const CCardData& card = vector.card;
        const bool isOwn = vector.operation == "decode" ||
                           (card.CardType == pair[0].lVal && card.CardSubType == pair[1].lVal);
        const bool isValidator = vector.operation.starts_with("Is");
        if (!isOwn || isValidator || client.Ask(facade, "IsCardType", pair) == "False") continue;
        const Value own = Changed(client, client.Take(facade, "CardFormat", pair), vector);
        ExpectAnswer(client, facade, "", vector, pair);
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Of, ServerFormat, testing::ValuesIn(Descriptors()),
                         [](const auto& test) { return test.param.className; });

}  // namespace
}  // namespace vardel::server
