#include "tests/server/client.h"

#include <gtest/gtest.h>

// Members of every class, by names and through vtables: each reaches its own counterpart in the
// library, and answers, faults and objects come back as the library gives them.
namespace vardel::server {
namespace {

class EveryClass : public testing::TestWithParam<std::pair<const std::string, CLSID>> {
 protected:
  const Client names_{Binding::Names}, vtables_{Binding::Vtables};
  const Value object_ = names_.New(GetParam().first);
};

/// An argument that is left out.
Value Missing() {
  Value value;
  value.vt = VT_ERROR;
  value.scode = DISP_E_PARAMNOTFOUND;
  return value;
}

/// A name without what stands before it in the formats' own interfaces.
std::string Plain(const std::string& name) {
  const auto prefix = name.find("Info_");
  return prefix == name.npos ? name : name.substr(prefix + 5);
}

/// A value that tells properties apart, and what is cut on the way.
Value Sample(VARTYPE type, const std::string& name, int number, bool truth) {
  if (name == "RawCardHex") return "1A2B3C";
  if (name == "ByteOR" || name == "ByteAND") return 100 + number;
  switch (type) {
    case VT_I2:
      return -12000 - number;
    case VT_I4:
      return -123456000 - number;
    case VT_R8:
      return 12345678901.5 + number;
    case VT_UI1:
      return 165;
    case VT_BOOL:
      return truth;
    case VT_USERDEFINED:
      return 3;
    default:
      return name + "\xC3\xA9\xE2\x82\xAC";
  }
}

TEST_P(EveryClass, GivesBackWhatWasPut) {
  for (const auto* client : {&names_, &vtables_}) {
    std::map<std::string, Value> samples;
    // The error pair last: other puts clear it.
    for (const bool isError : {false, true}) {
      for (const DualInterface& dual : InterfacesOf(object_.pdispVal)) {
        ForEachOperation(dual, [&](const FUNCDESC& put, const std::string& name) {
          const bool isPlain = put.cParams == 1 && put.lprgelemdescParam[0].tdesc.vt != VT_PTR;
          if (put.invkind != INVOKE_PROPERTYPUT || !isPlain) return;
          const VARTYPE type = put.lprgelemdescParam[0].tdesc.vt;
          if (Plain(name).starts_with("Err") != isError) return;
          const auto number = static_cast<int>(samples.size());
          const Value sample = Sample(type, Plain(name), number, client == &names_);
          const auto entry = samples.try_emplace(Plain(name), sample).first;
          EXPECT_EQ(client->Put(object_, name, {entry->second}), "") << name;
        });
      }
    }
    for (const DualInterface& dual : InterfacesOf(object_.pdispVal)) {
      ForEachOperation(dual, [&](const FUNCDESC& get, const std::string& name) {
        if (get.invkind != INVOKE_PROPERTYGET || !samples.contains(Plain(name))) return;
        const std::string sample = samples[Plain(name)].Text();
        Value value;
        EXPECT_EQ(CallVtable(object_.pdispVal, dual, get, {}, &value), S_OK);
        EXPECT_EQ(value.Text(), sample) << dual.name << "." << name;
        EXPECT_EQ(names_.Ask(object_, name), sample) << dual.name << "." << name;
      });
    }
  }
}

TEST_P(EveryClass, IsMadeByItsIdAndAnswersNullPointersWithAStatus) {
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(object_.pdispVal->GetTypeInfo(0, 0, info.out()), S_OK);
  EXPECT_EQ(Name(info), "_" + GetParam().first);
  int operations = 0;
  for (const DualInterface& dual : InterfacesOf(object_.pdispVal)) {
    ForEachOperation(dual, [&](const FUNCDESC& operation, const std::string& name) {
      const HRESULT status = CallVtable(object_.pdispVal, dual, operation, {}, nullptr);
      const bool isGet = operation.invkind == INVOKE_PROPERTYGET;
      const int count = operation.cParams;
      const bool hasResult = count > 0 && IsResult(operation.lprgelemdescParam[count - 1]);
      EXPECT_TRUE(isGet ? status == E_POINTER : FAILED(status) || !hasResult)
          << dual.name << "." << name << ": " << std::hex << status;
      ++operations;
    });
  }
  EXPECT_GT(operations, 5);
}

INSTANTIATE_TEST_SUITE_P(Of, EveryClass, testing::ValuesIn(LibraryClasses()),
                         [](const auto& test) { return test.param.first; });

class Members : public testing::TestWithParam<Binding>, protected Client {
 protected:
  Members() : Client(GetParam()) {}

  /// Answers side by side; in a braced list one is got after the other.
  static std::string Join(const std::vector<std::string>& answers) {
    std::string all = answers[0];
    for (std::size_t i = 1; i < answers.size(); ++i) all += "|" + answers[i];
    return all;
  }
  std::string Get(const Value& object, const std::vector<std::string>& members) const {
    std::vector<std::string> answers;
    for (const std::string& member : members) answers.push_back(Ask(object, member));
    return Join(answers);
  }
  std::string Error(const Value& object) const { return Get(object, {"ErrNumber", "ErrName"}); }
  Value Card(int type, std::uint8_t subType, const char* facility, const char* number,
             const char* revision = "") const {
    return NewCard({0, "", type, subType, facility, number, revision});
  }
};

const Value kNothing = static_cast<IDispatch*>(nullptr);

TEST_P(Members, OfAnErrorShareItWithEveryHolder) {
  const Value error = New("CError");
  EXPECT_EQ(Ask(error, "MakeErr", {5, "any code"}), "");
  for (const char* holder : {"CCardByteData", "CByteArrayData", "CCardType", "CCardTypes"}) {
    SCOPED_TRACE(holder);
    const Value object = New(holder), own = Take(object, "Error");
    EXPECT_EQ(Take(object, "Error"), own);
    EXPECT_EQ(Join({Ask(object, "MakeErr", {7, "own"}), Error(own)}), "|7|own");
    EXPECT_EQ(Join({Ask(object, "InitErr"), Error(own)}), "|0|");
    EXPECT_EQ(Put(object, "Error", {error}), "");
    EXPECT_EQ(Take(object, "Error"), error);
    EXPECT_EQ(Error(object), "5|any code");
    EXPECT_EQ(Put(object, "Error", {New("CCardData")}), "fault 13");
    EXPECT_EQ(Put(object, "Error", {kNothing}), "");
    EXPECT_EQ(Get(object, {"Error", "ErrName", "ErrNumber", "InitErr"}),
              "nothing|fault 91|fault 91|fault 91");
    EXPECT_EQ(Ask(object, "MakeErr", {1, "x"}), "fault 91");
    EXPECT_EQ(Put(object, "ErrName", {"x"}), "fault 91");
    EXPECT_EQ(Put(object, "ErrNumber", {1}), "fault 91");
  }
  EXPECT_EQ(Join({Ask(error, "InitErr"), Error(error)}), "|0|");
}

TEST_P(Members, OfRawDataAndFrames) {
  const Value raw = New("CCardByteData"), copy = New("CCardByteData"), frame = New("CCardFrame");
  EXPECT_EQ(Ask(raw, "InitCardData", {3}), "");
  EXPECT_EQ(Get(raw, {"CardType", "CardDataByteCount"}), "3|32");
  for (const int index : {0, 2, 32}) {
    EXPECT_EQ(Put(raw, "CardArrDataByIndex", {index, 254 - index}), "");
  }
  EXPECT_EQ(Ask(raw, "CardArrDataByIndex", {2}), "252");
  EXPECT_EQ(Join({Ask(raw, "InitCardData", {Missing()}), Error(raw)}), "|-1|Incorrect Card Type");
  const Value record = Take(raw, "CardDataStruct");
  EXPECT_EQ(Join({Put(copy, "CardDataStruct", {record}), Ask(copy, "CardDataStruct")}), "|FE00FC");
  EXPECT_EQ(Join({Put(frame, "CardDataStruct", {record}), Ask(frame, "RawCardBytes")}), "|FE00FC");
  EXPECT_EQ(Ask(frame, "RawCardHex"), "FE00FC" + std::string(58, '0'));
  EXPECT_EQ(Put(frame, "RawCardHex", {"0aF1"}), "");
  EXPECT_EQ(Put(frame, "RawCardHex", {"123"}), "fault 13");
  EXPECT_EQ(Get(frame, {"RawCardHex", "RawCardBytes"}), "0aF1|0AF1");

  const Value summary = New("CByteArrayData");
  EXPECT_EQ(Join({Put(summary, "ByteCount", {-2}), Error(summary)}), "|-1|Incorrect Byte Count");
  EXPECT_EQ(Put(summary, "ByteOR", {256}), "fault 6");
  EXPECT_EQ(Put(summary, "ByteOR", {18}), "");
  EXPECT_EQ(Get(summary, {"LastArrayIndex", "HexCharCount", "IsAvailable"}), "-3|0|False");
  EXPECT_EQ(Put(summary, "ByteAND", {0}), "");
  EXPECT_EQ(Get(summary, {"IsAvailable", "InitData", "ByteCount"}), "True||0");
}

TEST_P(Members, OfTheFacade) {
  const Value facade = New("CCard");
  EXPECT_EQ(Ask(facade, "CardTypeCount"), "3");
  EXPECT_EQ(Ask(facade, "IsExisted", {2, 4}) + Ask(facade, "IsExisted", {4, 2}), "TrueFalse");
  EXPECT_EQ(Ask(facade, "IsCardMainType", {3}) + Ask(facade, "IsCardMainType", {4}), "TrueFalse");
  EXPECT_EQ(Ask(facade, "IsCardType", {2, 5}) + Ask(facade, "IsCardType", {2, 4}), "TrueFalse");
  for (const char* check : {"IsSmartCardData", "IsSecurityCardData"}) {
    EXPECT_EQ(Ask(facade, check, {"12"}), "fault 424");
  }
  EXPECT_EQ(Ask(facade, "CardFormat", {3, 3}), "fault 424");
  const Value format = Take(facade, "CardFormat", {2, 1});
  EXPECT_EQ(Take(facade, "CardFormatByCode", {513}), format);
  EXPECT_FALSE(Take(New("CCard"), "CardFormatByCode", {513}) == format);

  Value raw = Take(facade, "MakeCardData", {Card(2, 1, "1", "0")});
  EXPECT_EQ(Error(facade), "0|");
  EXPECT_EQ(Error(format), "-1|Incorrect Card ID");
  raw = Take(facade, "MakeCardData", {Card(2, 1, "1", "1")});
  EXPECT_EQ(Get(raw, {"CardType", "CardSubType", "CardDataStruct"}), "2|1|02000202");
  EXPECT_EQ(Error(raw), "-1|Incorrect Card ID") << "a format keeps its error";
  EXPECT_EQ(Join({Ask(format, "InitErr"), Error(format)}), "|0|");
  raw = Take(facade, "MakeCardData", {Card(2, 3, "1", "1")});
  EXPECT_EQ(Error(facade) + Error(raw), "-1|Unknown Card Type0|");

  const Value frame = New("CCardFrame");
  EXPECT_EQ(Put(frame, "RawCardHex", {"020002020000"}), "");
  const std::vector<std::string> fields = {"CardType", "Facility", "CardID"};
  EXPECT_EQ(Get(Take(facade, "AnalyzeCardData", {frame}), fields), "0||");
  EXPECT_EQ(Put(frame, "IsEMFrame", {true}), "");
  EXPECT_EQ(Get(Take(facade, "AnalyzeCardData", {frame}), fields), "1|001|00001");
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
  EXPECT_EQ(Get(format, {"MaxFacility", "CCardFormatInfo_MaxFacility"}), "300|300");
  EXPECT_EQ(Get(New("CCardFormatHIDCorp1000"), {"Sidx2ndCardID", "Eidx2ndCardID"}), "3|4");
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
  EXPECT_EQ(Get(entry, {"ShortName", "TypeName"}), "s|t");
  EXPECT_EQ(Ask(types, "LetCardTypeName", {2, 3, "x"}), "-1");

  EXPECT_EQ(Join({Ask(types, "IsExisted", {2, 3}), Ask(types, "Add", {added, 515})}), "False|True");
  EXPECT_EQ(Join({Ask(types, "IsExisted", {2, 3}), Ask(types, "Add", {added, 257})}), "True|False");
  EXPECT_EQ(Take(types, "CardTypeByCode", {515}), added);
  EXPECT_EQ(Join({Ask(types, "CardTypeByCode", {516}), Error(types)}),
            "an object|-1|Unknown Card Type");
  EXPECT_EQ(Ask(Take(types, "CardTypeByType", {2, 4}), "IsAvailable"), "False");
  EXPECT_EQ(Ask(types, "Count"), "10");
  EXPECT_EQ(Ask(entry, "MakeErr", {5, "old"}), "");
  EXPECT_EQ(Get(entry, {"TypeCode", "CardType", "CardSubType"}), "513|2|1");
  EXPECT_EQ(Get(entry, {"InitData", "TypeCode", "CardType", "ErrNumber"}), "|0|2|5");
  EXPECT_EQ(Join({Ask(entry, "initAll"), Error(entry)}), "|0|");
}

TEST_P(Members, EndWithFaultsThatSayWhatAndWhere) {
  const struct {
    std::string className, member;
    Value argument;
    long number;
    std::wstring description;
  } rows[] = {
      {"CCardFormatDongSeo", "MakeCardData", Card(3, 5, "", "1", "5"), 5,
       L"Invalid procedure call or argument"},
      {"CCard", "CardFormatByCode", 0, 424, L"Object required"},
      {"CCardFormatEM", "MakeCardData", Card(1, 1, "1", "255.5"), 6, L"Overflow"},
      {"CCardFormatBinary26", "MakeCardData", Card(2, 2, "", "15.5"), 9, L"Subscript out of range"},
      {"CCardFormatUID32BIts", "MakeCardData", Card(3, 1, "", ""), 13, L"Type mismatch"},
      {"CCardFormatInfo", "MakeCardData", kNothing, 91, L"Object variable not set"},
  };
  for (const auto& row : rows) {
    Value none;
    const Outcome outcome = Try(New(row.className), row.member, kGets, {row.argument}, &none);
    EXPECT_EQ(outcome.status, DISP_E_EXCEPTION);
    EXPECT_EQ(outcome.fault, row.number);
    EXPECT_EQ(outcome.description, row.description);
    EXPECT_EQ(outcome.source, L"Vardel." + Wide(row.className));
  }
}

INSTANTIATE_TEST_SUITE_P(By, Members, testing::Values(Binding::Names, Binding::Vtables),
                         testing::PrintToStringParamName());

// Scripts pass what they have.
class MembersByNames : public Members {};

TEST_P(MembersByNames, ConvertArgumentsOrRefuseThem) {
  const Value facade = New("CCard"), card = New("CCardData"), raw = New("CCardByteData");
  const struct {
    Value object;
    const char* member;
    std::vector<Value> arguments;
    const char* answer;
    bool isPut = false;
  } rows[] = {
      {facade, "CardFormatByCode", {"513"}, "an object"},
      {facade, "CardFormatByCode", {513.4}, "an object"},
      {facade, "CardFormatByCode", {3e9}, "fault 6"},
      {facade, "IsCardType", {true, 1}, "False"},
      {facade, "CardFormat", {"two", 1}, "fault 13"},
      {facade, "CardFormat", {2, card}, "fault 13"},
      {facade, "MakeCardData", {1}, "fault 13"},
      {facade, "AnalyzeCardData", {1}, "fault 13"},
      {facade, "NoSuchMember", {}, "status 6"},
      {facade, "CardFormat", {2}, "status 14"},
      {facade, "CardFormat", {2, 1, 1}, "status 14"},
      {facade, "CardFormat", {2, Missing()}, "status 15"},
      {facade, "CardTypeCount", {1}, "status 3", true},
      {card, "CardSubType", {256}, "fault 6", true},
      {card, "CardSubType", {-1}, "fault 6", true},
      {card, "CardSubType", {"one"}, "fault 13", true},
      {card, "CardSubType", {kNothing}, "status 3", true},
      {card, "CardSubType", {}, "0"},
      {card, "CardID", {12345}, "", true},
      {card, "CardID", {}, "12345"},
      {raw, "CardDataStruct", {"0102"}, "fault 13", true},
      {raw, "CardDataStruct", {raw}, "status 3", true},
      // A smart card's maximum can be put under its plain name alone.
      {New("CCardFormatLG"), "MaxFacility", {5}, "", true},
      {New("CCardFormatLG"), "CCardFormatInfo_MaxFacility", {5}, "status 3", true},
  };
  for (const auto& [object, member, arguments, answer, isPut] : rows) {
    const auto call = isPut ? Put(object, member, arguments) : Ask(object, member, arguments);
    EXPECT_EQ(call, answer) << member << testing::PrintToString(arguments);
  }
}

INSTANTIATE_TEST_SUITE_P(All, MembersByNames, testing::Values(Binding::Names));

}  // namespace
}  // namespace vardel::server
