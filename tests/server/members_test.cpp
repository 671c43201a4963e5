#include "tests/server/client.h"
#include <vardel/core/card_frame.h>
#include <vardel/facade/card_matches.h>

#include <gtest/gtest.h>

#include <sstream>

// Members of every class, by names and through vtables: each reaches its own counterpart in the
// library, and answers, faults and objects come back as the library gives them.
namespace vardel::server {
namespace {

class EveryClass : public testing::TestWithParam<std::pair<const std::string, CLSID>> {
 protected:
  const Client names_{Binding::Names}, vtables_{Binding::Vtables};
  const Value object_ = names_.New(GetParam().first);
};

/// A name without what stands before it in the formats' own interfaces.
std::string Plain(const std::string& name) {
  const auto prefix = name.find("Info_");
  return prefix == name.npos ? name : name.substr(prefix + 5);
}

/// A value that tells the properties apart, and what is cut on the way.
Value Sample(VARTYPE type, const std::string& name, int number, bool truth) {
  if (name == "RawCardHex") return "1A2B3C";
  if (name == "ByteOR" || name == "ByteAND") return 100 + number;
  const std::map<VARTYPE, Value> samples = {{VT_I2, -12000 - number},
                                            {VT_I4, -123456000 - number},
                                            {VT_R8, 12345678901.5 + number},
                                            {VT_UI1, 165},
                                            {VT_BOOL, truth},
                                            {VT_USERDEFINED, 3},
                                            {VT_BSTR, name + "\xC3\xA9\xE2\x82\xAC"}};
  return samples.at(type);
}

TEST_P(EveryClass, GivesBackWhatWasPut) {
  for (const auto* client : {&names_, &vtables_}) {
    std::map<std::string, Value> samples;
    for (const bool isError : {false, true}) {  // the error pair last: other puts clear it
      ForEachOperation(object_.pdispVal, [&](const auto&, const auto& put, const auto& name) {
        if (put.invkind != INVOKE_PROPERTYPUT || Plain(name).starts_with("Err") != isError) return;
        const VARTYPE type = put.lprgelemdescParam[0].tdesc.vt;
        if (put.cParams != 1 || type == VT_PTR) return;
        const auto number = static_cast<int>(samples.size());
        const Value sample = Sample(type, Plain(name), number, client == &names_);
        const auto kept = samples.try_emplace(Plain(name), sample).first;
        EXPECT_EQ(client->Put(object_, name, {kept->second}), "") << name;
      });
    }
    ForEachOperation(object_.pdispVal, [&](const auto& dual, const auto& get, const auto& name) {
      if (get.invkind != INVOKE_PROPERTYGET || !samples.contains(Plain(name))) return;
      Value value;
      EXPECT_EQ(CallVtable(object_.pdispVal, dual, get, {}, &value), S_OK);
      EXPECT_EQ(value.Text(), samples[Plain(name)].Text()) << dual.name << "." << name;
      EXPECT_EQ(value.Text(), names_.Ask(object_, name)) << dual.name << "." << name;
    });
  }
}

TEST_P(EveryClass, IsMadeByItsIdAndAnswersNullPointersWithAStatus) {
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(object_.pdispVal->GetTypeInfo(0, 0, info.out()), S_OK);
  EXPECT_EQ(Name(info), "_" + GetParam().first);
  int operations = 0;
  ForEachOperation(object_.pdispVal, [&](const auto& dual, const auto& each, const auto& name) {
    const HRESULT status = CallVtable(object_.pdispVal, dual, each, {}, nullptr);
    const bool isGet = each.invkind == INVOKE_PROPERTYGET;
    const bool hasResult = each.cParams > 0 && IsResult(each.lprgelemdescParam[each.cParams - 1]);
    EXPECT_TRUE(isGet ? status == E_POINTER : FAILED(status) || !hasResult)
        << dual.name << "." << name << ": " << std::hex << status;
    ++operations;
  });
  EXPECT_GT(operations, 5);
}

INSTANTIATE_TEST_SUITE_P(Of, EveryClass, testing::ValuesIn(LibraryClasses()),
                         [](const auto& test) { return test.param.first; });

const Value kNothing = static_cast<IDispatch*>(nullptr);
const Value kMissing = VARIANT{{{VT_ERROR, 0, 0, 0, {.scode = DISP_E_PARAMNOTFOUND}}}};

class Members : public testing::TestWithParam<Binding>, protected Client {
 protected:
  Members() : Client(GetParam()) {}

  /// What members without arguments give, one called after the other.
  std::string Get(const Value& object, const std::vector<std::string>& members) const {
    std::string answers;
    for (const auto& member : members) answers += Ask(object, member) + "|";
    return answers;
  }
  std::string Error(const Value& object) const { return Get(object, {"ErrNumber", "ErrName"}); }
  Value Card(int type, std::uint8_t subType, const char* facility, const char* number,
             const char* revision = "") const {
    return NewCard({0, "", type, subType, facility, number, revision});
  }
};

TEST_P(Members, OfAnErrorShareItWithEveryHolder) {
  const Value error = New("CError");
  EXPECT_EQ(Ask(error, "MakeErr", {5, "any code"}), "");
  for (const char* holder : {"CCardByteData", "CByteArrayData", "CCardType", "CCardTypes"}) {
    SCOPED_TRACE(holder);
    const Value object = New(holder), own = Take(object, "Error");
    EXPECT_EQ(Take(object, "Error"), own);
    EXPECT_EQ(Ask(object, "MakeErr", {7, "own"}), "");
    EXPECT_EQ(Error(own), "7|own|");
    EXPECT_EQ(Get(object, {"InitErr", "ErrNumber", "ErrName"}), "|0||");
    EXPECT_EQ(Put(object, "Error", {error}), "");
    EXPECT_EQ(Take(object, "Error"), error);
    EXPECT_EQ(Error(object), "5|any code|");
    EXPECT_EQ(Put(object, "Error", {New("CCardData")}), "fault 13");
    EXPECT_EQ(Put(object, "Error", {kNothing}), "");
    EXPECT_EQ(Get(object, {"Error", "InitErr"}) + Error(object),
              "nothing|fault 91|fault 91|fault 91|");
    EXPECT_EQ(Ask(object, "MakeErr", {1, "x"}), "fault 91");
    EXPECT_EQ(Put(object, "ErrName", {"x"}), "fault 91");
    EXPECT_EQ(Put(object, "ErrNumber", {1}), "fault 91");
  }
  EXPECT_EQ(Get(error, {"InitErr", "ErrNumber", "ErrName"}), "|0||");
}

TEST_P(Members, OfRawDataAndFrames) {
  const Value raw = New("CCardByteData"), copy = New("CCardByteData"), frame = New("CCardFrame");
  EXPECT_EQ(Ask(raw, "InitCardData", {3}), "");
  EXPECT_EQ(Get(raw, {"CardType", "CardDataByteCount"}), "3|32|");
  for (const int index : {0, 2, 32}) {
    EXPECT_EQ(Put(raw, "CardArrDataByIndex", {index, 254 - index}), "");
  }
  EXPECT_EQ(Ask(raw, "CardArrDataByIndex", {2}), "252");
  EXPECT_EQ(Ask(raw, "InitCardData", {kMissing}), "");
  EXPECT_EQ(Error(raw), "-1|Incorrect Card Type|");
  const Value record = Take(raw, "CardDataStruct");
  EXPECT_EQ(Put(copy, "CardDataStruct", {record}), "");
  EXPECT_EQ(Ask(copy, "CardDataStruct"), "FE00FC");
  EXPECT_EQ(Put(frame, "CardDataStruct", {record}), "");
  EXPECT_EQ(Get(frame, {"RawCardBytes", "RawCardHex"}),
            "FE00FC|FE00FC" + std::string(58, '0') + "|");
  EXPECT_EQ(Put(frame, "RawCardHex", {"0aF1"}), "");
  EXPECT_EQ(Put(frame, "RawCardHex", {"123"}), "fault 13");
  EXPECT_EQ(Get(frame, {"RawCardHex", "RawCardBytes"}), "0aF1|0AF1|");

  const Value summary = New("CByteArrayData");
  EXPECT_EQ(Put(summary, "ByteCount", {-2}), "");
  EXPECT_EQ(Error(summary), "-1|Incorrect Byte Count|");
  EXPECT_EQ(Put(summary, "ByteOR", {256}), "fault 6");
  EXPECT_EQ(Put(summary, "ByteOR", {18}), "");
  EXPECT_EQ(Get(summary, {"LastArrayIndex", "HexCharCount", "IsAvailable"}), "-3|0|False|");
  EXPECT_EQ(Put(summary, "ByteAND", {0}), "");
  EXPECT_EQ(Get(summary, {"IsAvailable", "InitData", "ByteCount"}), "True||0|");
}

TEST_P(Members, OfTheFacade) {
  const Value facade = New("CCard");
  EXPECT_EQ(Ask(facade, "CardTypeCount"), "3");
  EXPECT_EQ(Ask(facade, "IsExisted", {2, 4}) + Ask(facade, "IsExisted", {4, 2}), "TrueFalse");
  EXPECT_EQ(Ask(facade, "IsCardMainType", {3}) + Ask(facade, "IsCardMainType", {4}), "TrueFalse");
  EXPECT_EQ(Ask(facade, "IsCardType", {2, 5}) + Ask(facade, "IsCardType", {2, 4}), "TrueFalse");
  EXPECT_EQ(Ask(facade, "IsSmartCardData", {"12"}), "fault 424");
  EXPECT_EQ(Ask(facade, "IsSecurityCardData", {"12"}), "fault 424");
  EXPECT_EQ(Ask(facade, "CardFormat", {3, 3}), "fault 424");
  const Value format = Take(facade, "CardFormat", {2, 1});
  EXPECT_EQ(Take(facade, "CardFormatByCode", {513}), format);
  EXPECT_FALSE(Take(New("CCard"), "CardFormatByCode", {513}) == format);

  EXPECT_EQ(Ask(facade, "MakeCardData", {Card(2, 1, "1", "0")}), "an object");
  EXPECT_EQ(Error(facade) + Error(format), "0||-1|Incorrect Card ID|");
  const Value raw = Take(facade, "MakeCardData", {Card(2, 1, "1", "1")});
  EXPECT_EQ(Get(raw, {"CardType", "CardSubType", "CardDataStruct"}), "2|1|02000202|");
  EXPECT_EQ(Error(raw), "-1|Incorrect Card ID|") << "a format keeps its error";
  EXPECT_EQ(Get(format, {"InitErr", "ErrNumber", "ErrName"}), "|0||");
  EXPECT_EQ(Error(Take(facade, "MakeCardData", {Card(2, 3, "1", "1")})), "0||");
  EXPECT_EQ(Error(facade), "-1|Unknown Card Type|");

  const Value frame = New("CCardFrame");
  EXPECT_EQ(Put(frame, "RawCardHex", {"020002020000"}), "");
  for (const bool isEM : {false, true}) {
    EXPECT_EQ(Put(frame, "IsEMFrame", {isEM}), "");
    EXPECT_EQ(Get(Take(facade, "AnalyzeCardData", {frame}), {"CardType", "CardID"}),
              isEM ? "1|00001|" : "0||");
  }
}

TEST_P(Members, RefuseOtherObjectsThanTheOneThatIsDueAndNone) {
  const Value facade = New("CCard"), card = New("CCardData"), types = New("CCardTypes");
  for (const int code : {513, 773}) {
    for (const Value& object : {facade, Take(facade, "CardFormatByCode", {code})}) {
      EXPECT_EQ(Ask(object, "MakeCardData", {facade}), "fault 13");
      EXPECT_EQ(Ask(object, "MakeCardData", {kNothing}), "fault 91");
      EXPECT_EQ(Ask(object, "AnalyzeCardData", {card}), "fault 438");
      EXPECT_EQ(Ask(object, "AnalyzeCardData", {kNothing}), "fault 91");
    }
  }
  EXPECT_EQ(Ask(types, "Add", {card, 515}), "fault 13");
  EXPECT_EQ(Ask(types, "Add", {kNothing, 515}), "False");
  const Value bare = New("CCardFormatInfo");  // has nothing to give
  EXPECT_EQ(Ask(bare, "MakeCardData", {card}), "");
  EXPECT_EQ(Ask(bare, "AnalyzeCardData", {New("CCardFrame")}), "nothing");
  EXPECT_EQ(Ask(bare, "IsFacilityValid", {"0"}) + Ask(bare, "IsCardIDValid", {"0"}), "FalseFalse");
}

TEST_P(Members, OfFormats) {
  Value facade = New("CCard");
  EXPECT_EQ(Put(Take(facade, "CardFormatByCode", {513}), "MaxFacility", {300}), "");
  const Value format = Take(facade, "CardFormatByCode", {513});  // kept by the facade meanwhile
  facade = {};
  EXPECT_EQ(Get(format, {"MaxFacility", "CCardFormatInfo_MaxFacility"}), "300|300|");
  EXPECT_EQ(Get(New("CCardFormatHIDCorp1000"), {"Sidx2ndCardID", "Eidx2ndCardID"}), "3|4|");
  EXPECT_EQ(Ask(New("CCardFormat34Bits"), "CCardFormatInfo_IsRevisionValid", {"1"}), "True");
  EXPECT_EQ(Ask(New("CCardFormatUID32BIts"), "IsRevisionValid", {"99999"}), "True");
  for (const char* name : {"CCardFormatLG", "CCardFormatWoori", "CCardFormatDongSeo"}) {
    EXPECT_EQ(Ask(New(name), "IsRevisionValid", {"1"}), "True") << name;
    EXPECT_EQ(Ask(New(name), "IsRevisionValid", {"99999"}), "False") << name;
  }
}

TEST_P(Members, OfTheRegistryAndItsEntries) {
  const Value types = New("CCardTypes"), added = New("CCardType");
  const Value entry = Take(types, "CardTypeByCode", {513});
  EXPECT_EQ(Take(types, "CardTypeByType", {2, 1}), entry);
  EXPECT_EQ(Ask(types, "CardTypeCodes"), "256 257 512 513 514 517 768 769 773 ");
  EXPECT_EQ(Value(Take(types, "AllCardTypes").Elements<VARIANT>()[3]), entry);
  EXPECT_EQ(Ask(types, "LetShortName", {2, 1, "short"}), "0");
  EXPECT_EQ(Put(types, "CardTypeName", {"513", "name"}), "");
  // Four names that differ, each reached in three ways.
  const char* const names[][4] = {
      {"ShortName", "ShortName", "GetShortName", "short"},
      {"TypeName", "CardTypeName", "GetCardTypeName", "name"},
      {"DefaultShortName", "DefaultShortName", "GetDefaultShortName", "HID STD"},
      {"DefaultName", "DefaultName", "GetDefaultName", "HID Standard"}};
  for (const auto& [ofEntry, byCode, byType, name] : names) {
    EXPECT_EQ(Ask(entry, ofEntry), name);
    EXPECT_EQ(Ask(types, byCode, {"513"}), name);
    EXPECT_EQ(Ask(types, byType, {2, 1}), name);
    EXPECT_EQ(Ask(types, byType, {1, 2}), "") << byType;
  }
  EXPECT_EQ(Put(types, "ShortName", {"513", "s"}), "");
  EXPECT_EQ(Ask(types, "LetCardTypeName", {2, 1, "t"}), "0");
  EXPECT_EQ(Get(entry, {"ShortName", "TypeName"}), "s|t|");
  EXPECT_EQ(Ask(types, "LetCardTypeName", {2, 3, "x"}), "-1");

  EXPECT_EQ(Ask(types, "IsExisted", {2, 3}), "False");
  EXPECT_EQ(Ask(types, "Add", {added, 515}), "True");
  EXPECT_EQ(Ask(types, "IsExisted", {2, 3}), "True");
  EXPECT_EQ(Ask(types, "Add", {added, 257}), "False");
  EXPECT_EQ(Take(types, "CardTypeByCode", {515}), added);
  EXPECT_EQ(Ask(types, "CardTypeByCode", {516}), "an object");
  EXPECT_EQ(Error(types), "-1|Unknown Card Type|");
  EXPECT_EQ(Ask(Take(types, "CardTypeByType", {2, 4}), "IsAvailable"), "False");
  EXPECT_EQ(Ask(types, "Count"), "10");
  EXPECT_EQ(Ask(entry, "MakeErr", {5, "old"}), "");
  EXPECT_EQ(Get(entry, {"TypeCode", "CardType", "CardSubType"}), "513|2|1|");
  EXPECT_EQ(Get(entry, {"InitData", "TypeCode", "CardType", "ErrNumber"}), "|0|2|5|");
  EXPECT_EQ(Get(entry, {"initAll", "ErrNumber"}), "|0|");
}

TEST_P(Members, OfMatchesAreThoseOfTheLibrary) {
  const Value matches = New("CCardMatches"), frame = New("CCardFrame");
  vardel::CCardMatches expected;
  for (const char* hex :
       {"7360C802000000000000000000000001", "30303030313230303030303334353037", "000000"}) {
    EXPECT_EQ(Put(frame, "RawCardHex", {hex}) + Ask(matches, "Add", {frame}), "");
    expected.Add(CCardFrame(0, 0, hex));
  }
  EXPECT_EQ(Ask(matches, "Add", {kNothing}), "fault 91");
  EXPECT_EQ(Ask(matches, "Add", {New("CCardData")}), "fault 438");
  EXPECT_EQ(Get(matches, {"ReadCount", "BlankCount", "Count"}), "3|1|10|");
  for (int i = 0; i < 10; ++i) {
    const Value match = Take(matches, "Item", {i});
    EXPECT_EQ(match, Take(matches, "Item", {i}));
    const CCardMatch& other = *expected.Item(i);
    std::ostringstream text;
    text << other.ClassName << '|' << other.CardType << '|' << other.CardSubType << '|'
         << ValueText(other.HasParity) << '|' << other.ParityHolds << '|' << other.UnusedSet << '|'
         << other.BeyondLimits << '|' << other.CardCount() << '|';
    EXPECT_EQ(Get(match, {"ClassName", "CardType", "CardSubType", "HasParity", "ParityHolds",
                          "UnusedSet", "BeyondLimits", "CardCount"}),
              text.str());
    EXPECT_EQ(Ask(Take(match, "CardData", {1}), "CardID"), other.Cards[1].CardID);
    EXPECT_EQ(Ask(match, "CardData", {2}), "fault 9");
  }
  const Value first = Take(matches, "Item", {0});
  EXPECT_EQ(Get(matches, {"Clear", "Count"}) + Get(first, {"CardCount"}), "|0|2|");
}

TEST_P(Members, EndWithFaultsThatSayWhatAndWhere) {
  const struct {
    std::string className;
    Value card;
    long number;
    std::wstring description;
  } rows[] = {
      {"CCardFormatDongSeo", Card(3, 5, "", "1", "5"), 5, L"Invalid procedure call or argument"},
      {"CCardFormatEM", Card(1, 1, "1", "255.5"), 6, L"Overflow"},
      {"CCardFormatBinary26", Card(2, 2, "", "15.5"), 9, L"Subscript out of range"},
      {"CCardFormatUID32BIts", Card(3, 1, "", ""), 13, L"Type mismatch"},
      {"CCard", kNothing, 91, L"Object variable not set"}};
  for (const auto& row : rows) {
    Value none;
    const Outcome outcome = Try(New(row.className), "MakeCardData", kGets, {row.card}, &none);
    EXPECT_EQ(outcome.status, DISP_E_EXCEPTION);
    EXPECT_EQ(outcome.fault, row.number);
    EXPECT_EQ(outcome.description, row.description);
    EXPECT_EQ(outcome.source, L"Vardel." + Wide(row.className));
  }
}

INSTANTIATE_TEST_SUITE_P(By, Members, testing::Values(Binding::Names, Binding::Vtables),
                         testing::PrintToStringParamName());

class MembersByNames : public Members {};

TEST_P(MembersByNames, ConvertArgumentsOrRefuseThem) {
  const Value facade = New("CCard"), card = New("CCardData"), raw = New("CCardByteData");
  const std::tuple<const char*, std::vector<Value>, const char*> asked[] = {
      {"CardFormatByCode", {"513"}, "an object"}, {"CardFormatByCode", {513.4}, "an object"},
      {"CardFormatByCode", {3e9}, "fault 6"},     {"CardFormat", {"two", 1}, "fault 13"},
      {"CardFormat", {2, card}, "fault 13"},      {"IsCardType", {true, 1}, "False"},
      {"MakeCardData", {1}, "fault 13"},          {"AnalyzeCardData", {1}, "fault 13"},
      {"NoSuchMember", {}, "status 6"},           {"CardFormat", {2}, "status 14"},
      {"CardFormat", {2, 1, 1}, "status 14"},     {"CardFormat", {2, kMissing}, "status 15"}};
  for (const auto& [member, arguments, answer] : asked) {
    EXPECT_EQ(Ask(facade, member, arguments), answer) << member;
  }
  const std::tuple<Value, const char*, Value, const char*> puts[] = {
      {card, "CardSubType", 256, "fault 6"},       {card, "CardSubType", -1, "fault 6"},
      {card, "CardSubType", "one", "fault 13"},    {card, "CardSubType", kNothing, "status 3"},
      {raw, "CardDataStruct", "0102", "fault 13"}, {raw, "CardDataStruct", raw, "status 3"},
      {facade, "CardTypeCount", 1, "status 3"},    {card, "CardID", 12345, ""}};
  for (const auto& [object, member, value, answer] : puts) {
    EXPECT_EQ(Put(object, member, {value}), answer) << member << " " << value.Text();
  }
  EXPECT_EQ(Get(card, {"CardSubType", "CardID"}), "0|12345|");
}

INSTANTIATE_TEST_SUITE_P(By, MembersByNames, testing::Values(Binding::Names),
                         testing::PrintToStringParamName());

}  // namespace
}  // namespace vardel::server
