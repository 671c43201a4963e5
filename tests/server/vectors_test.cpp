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

class ServerFormat : public testing::TestWithParam<Descriptor> {
 protected:
  /// Calls `test` with a client of either kind, and with what stands before a descriptor's members
  /// in the format's own interface and in that which all formats have.
  template <class F>
  static void ForEachWay(F test) {
    for (const Binding binding : {Binding::Names, Binding::Vtables}) {
      for (const std::string prefix : {"", "CCardFormatInfo_"}) {
        SCOPED_TRACE(testing::PrintToString(binding) + " " + prefix);
        test(Client(binding), prefix);
      }
    }
  }

  static int Number(const std::string& member) {
    const auto& values = GetParam().values;
    return std::stoi(std::ranges::find(values, member, &MemberValues::value_type::first)->second);
  }
};

/// An object's answer with the error pair of the same or another object, as the vectors say it.
std::string WithError(const Client& client, const std::string& answer, const Value& object) {
  if (answer.starts_with("fault")) return answer;
  return answer + RecordAnswer({}, std::stoi(client.Ask(object, "ErrNumber")),
                               client.Ask(object, "ErrName"));
}

std::string Encode(const Client& client, const Value& encoder, const std::string& member,
                   const CCardData& data) {
  Value raw;
  const std::string answer = client.Ask(encoder, member, {client.NewCard(data)}, &raw);
  if (raw.vt != VT_DISPATCH) return WithError(client, answer, encoder);
  return WithError(client, client.Ask(raw, "CardDataStruct"), raw);  // the facade's
}

std::string Decode(const Client& client, const Value& decoder, const std::string& member,
                   const Value& frame) {
  Value card;
  const std::string answer = client.Ask(decoder, member, {frame}, &card);
  if (answer != "an object") return answer;
  const auto number = [&](const char* name) { return std::stoi(client.Ask(card, name)); };
  return CardAnswer({.ErrNumber = number("ErrNumber"),
                     .ErrName = client.Ask(card, "ErrName"),
                     .CardType = number("CardType"),
                     .CardSubType = static_cast<std::uint8_t>(number("CardSubType")),
                     .Facility = client.Ask(card, "Facility"),
                     .CardID = client.Ask(card, "CardID"),
                     .Revision = client.Ask(card, "Revision")});
}

bool HasMember(const Value& object, const std::string& name) {
  std::wstring wide = Wide(name);
  wchar_t* names[] = {wide.data()};
  DISPID id = DISPID_UNKNOWN;
  return SUCCEEDED(object.pdispVal->GetIDsOfNames(IID_NULL, names, 1, 0, &id));
}

/// Expects the vector's answer of a format, or of the facade that has it.
void ExpectAnswer(const Client& client, const Value& object, const std::string& prefix,
                  const Vector& vector, int type, int subType) {
  if (vector.operation == "encode") {
    EXPECT_EQ(Encode(client, object, prefix + "MakeCardData", vector.card), vector.answer);
  } else if (vector.operation == "decode") {
    HostFrame host;
    host.type = type;
    host.subType = subType;
    host.bytes = vector.frame.bytes;
    host.hex = Wide(vector.frame.hex);
    std::vector<Value> frames = {&host, host.ByNames().get()};
    if (host.bytes && HexText(*host.bytes) == vector.frame.hex) {
      frames.push_back(client.New("CCardFrame"));
      client.Put(frames[2], "FrameCardType", {type});
      client.Put(frames[2], "FrameCardSubType", {subType});
      client.Put(frames[2], "RawCardHex", {vector.frame.hex});
    }
    for (const Value& frame : frames) {
      EXPECT_EQ(Decode(client, object, prefix + "AnalyzeCardData", frame), vector.answer);
    }
  } else {
    EXPECT_EQ(client.Ask(object, prefix + vector.operation, {vector.text}), vector.answer);
  }
}

TEST_P(ServerFormat, AnswersEveryVector) {
  const std::string& className = GetParam().className;
  const int type = Number("CardType"), subType = Number("CardSubType");
  ForEachWay([&](const Client& client, const std::string& prefix) {
    for (const Vector& vector : Vectors()) {
      if (vector.className != className) continue;
      SCOPED_TRACE(vector.where);
      const auto changed = [&](const Value& format) {
        for (const auto& [name, value] : vector.changes) {
          char* end = nullptr;  // of a number, which the platform does not always read from text
          const double number = std::strtod(value.c_str(), &end);
          const bool isNumber = !value.empty() && *end == '\0';
          EXPECT_EQ(client.Put(format, name, {isNumber ? Value(number) : Value(value)}), "");
        }
        return format;
      };
      const Value format = changed(client.New(className));
      const bool isConversion = !vector.operation.starts_with("Is");
      // Each format has the revision's validator under one of the names at most.
      if (!isConversion && !HasMember(format, prefix + vector.operation)) continue;
      ExpectAnswer(client, format, prefix, vector, type, subType);

      const Value facade = client.New("CCard");
      const bool isOwnPair = vector.operation == "decode" ||
                             (vector.card.CardType == type && vector.card.CardSubType == subType);
      if (!isConversion || !isOwnPair || !prefix.empty() ||
          client.Ask(facade, "IsCardType", {type, subType}) == "False") {
        continue;
      }
      const Value own = changed(client.Take(facade, "CardFormat", {type, subType}));
      ExpectAnswer(client, facade, "", vector, type, subType);
    }
  });
}

TEST_P(ServerFormat, HoldsItsDescriptor) {
  ForEachWay([&](const Client& client, const std::string& prefix) {
    const Value format = client.New(GetParam().className);
    SCOPED_TRACE(GetParam().where);
    if (!HasMember(format, prefix + "ErrName")) return;  // a bare descriptor
    for (const auto& [name, value] : GetParam().values) {
      EXPECT_EQ(client.Ask(format, prefix + name), value) << name;
    }
  });
}

INSTANTIATE_TEST_SUITE_P(Of, ServerFormat, testing::ValuesIn(Descriptors()),
                         [](const auto& test) { return test.param.className; });

}  // namespace
}  // namespace vardel::server
