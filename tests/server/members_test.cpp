#include "tests/server/client.h"
#include <vardel/core/card_frame.h>
#include <vardel/facade/card_matches.h>

#include <gtest/gtest.h>

#include <ocidl.h>

#include <functional>
#include <tuple>

// Members of every class: each reaches its own counterpart in the library, and answers, faults and
// objects come back as the library gives them.
namespace vardel::server {
namespace {

class EveryClass : public testing::TestWithParam<std::pair<const std::string, CLSID>>,
                   protected Client {
 protected:
  /// Visits the operations of all interfaces.
  void ForEach(const std::function<void(const Operation&, IDispatch*)>& visit) const {
    for (const LibraryType& type : InterfacesOf(object_.pdispVal)) {
      const auto face = Query(object_.pdispVal, type.attributes.guid);
      for (const Operation& operation : type.operations) visit(operation, face.get());
    }
  }

  const Value object_ = New(GetParam().first);
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
  for (const bool truth : {true, false}) {
    std::map<std::string, Value> samples;
    for (const bool isError : {false, true}) {  // the error pair last: other puts clear it
      ForEach([&](const Operation& put, IDispatch*) {
        const std::string name = Plain(put.name);
        if (put->invkind != INVOKE_PROPERTYPUT || name.starts_with("Err") != isError) return;
        const VARTYPE type = put->lprgelemdescParam[0].tdesc.vt;
        if (put->cParams != 1 || type == VT_PTR) return;
        const auto number = static_cast<int>(samples.size());
        samples.try_emplace(name, Sample(type, name, number, truth));
        EXPECT_EQ(Put(object_, put.name, {samples[name]}), "") << put.name;
      });
    }
    ForEach([&](const Operation& get, IDispatch*) {
      if (get->invkind != INVOKE_PROPERTYGET || !samples.contains(Plain(get.name))) return;
      EXPECT_EQ(Ask(object_, get.name), samples[Plain(get.name)].Text()) << get.name;
    });
  }
}

TEST_P(EveryClass, AnswersNullPointersWithAStatus) {
  int count = 0;
  ForEach([&](const Operation& each, IDispatch* face) {
    VARIANT null{}, status{};
    const auto parameters = static_cast<UINT>(each->cParams);
    std::vector<VARIANT*> arguments(parameters, &null);
    std::vector<VARTYPE> types(parameters,
                               static_cast<VARTYPE>(sizeof(void*) == 8 ? VT_I8 : VT_I4));
    if (parameters == 1 && each->lprgelemdescParam->tdesc.vt == VT_R8) types[0] = VT_R8;
    ASSERT_EQ(DispCallFunc(face, static_cast<ULONG_PTR>(each->oVft), CC_STDCALL, VT_ERROR,
                           parameters, types.data(), arguments.data(), &status),
              S_OK);
    const bool isGet = each->invkind == INVOKE_PROPERTYGET;
    const bool hasResult = parameters > 0 && IsResult(each->lprgelemdescParam[parameters - 1]);
    EXPECT_TRUE(isGet ? status.scode == E_POINTER : FAILED(status.scode) || !hasResult)
        << each.name;
    ++count;
  });
  EXPECT_GT(count, 5);
}

TEST_P(EveryClass, IsOneObjectThatDescribesItself) {
  ComPtr<ITypeInfo> ofClass, byDefault;
  ASSERT_EQ(object_.As<IProvideClassInfo>()->GetClassInfo(ofClass.out()), S_OK);
  ASSERT_EQ(object_.pdispVal->GetTypeInfo(0, 0, byDefault.out()), S_OK);
  EXPECT_EQ(Name(ofClass) + Name(byDefault), GetParam().first + "_" + GetParam().first);
  const auto supports = object_.As<ISupportErrorInfo>();
  EXPECT_EQ(supports->InterfaceSupportsErrorInfo(IID_IClassFactory), S_FALSE);
  for (const LibraryType& type : InterfacesOf(object_.pdispVal)) {
    const auto face = Query(object_.pdispVal, type.attributes.guid);
    ComPtr<ITypeInfo> info;
    ASSERT_EQ(face->GetTypeInfo(0, 0, info.out()), S_OK);
    EXPECT_EQ(Name(info), type.name);
    EXPECT_EQ(supports->InterfaceSupportsErrorInfo(type.attributes.guid), S_OK) << type.name;
    EXPECT_TRUE(Value(face.get()) == object_) << type.name;
    EXPECT_EQ(face.As<IDispatch>().get(), object_.pdispVal) << type.name;
  }
}

INSTANTIATE_TEST_SUITE_P(Of, EveryClass, testing::ValuesIn(LibraryClasses()),
                         [](const auto& test) { return test.param.first; });

// What the scripts of examples/scripts do not ask.
class Members : public testing::Test, protected Client {
 protected:
  /// What members without arguments give, one called after the other.
  std::string Get(const Value& object, const std::vector<std::string>& members) const {
    std::string answers;
    for (const auto& member : members) answers += Ask(object, member) + "|";
    return answers;
  }
  std::string Error(const Value& object) const { return Get(object, {"ErrNumber", "ErrName"}); }
};

TEST_F(Members, OfAnErrorShareItWithEveryHolder) {
  const Value error = New("CError");
  for (const char* holder : {"CCardByteData", "CByteArrayData", "CCardType", "CCardTypes"}) {
    SCOPED_TRACE(holder);
    const Value object = New(holder), own = Take(object, "Error");
    EXPECT_EQ(Take(object, "Error"), own);
    EXPECT_EQ(Ask(own, "MakeErr", {7, "own"}), "");
    EXPECT_EQ(Error(object), "7|own|");
    EXPECT_EQ(Put(object, "Error", {error}), "");
    EXPECT_EQ(Ask(object, "MakeErr", {5, "any code"}), "");
    EXPECT_EQ(Error(error), "5|any code|");
    EXPECT_EQ(Take(object, "Error"), error);
    EXPECT_EQ(Get(object, {"InitErr", "ErrNumber", "ErrName"}), "|0||");
    EXPECT_EQ(Put(object, "Error", {New("CCardData")}), "fault 13");
    EXPECT_EQ(Put(object, "Error", {kNothing}), "");
    EXPECT_EQ(Get(object, {"Error", "InitErr", "ErrName"}), "nothing|fault 91|fault 91|");
  }
}

TEST_F(Members, OfTheFacadeAndFormats) {
  Value facade = New("CCard");
  EXPECT_EQ(Get(facade, {"CardTypeCount"}) + Ask(facade, "IsCardMainType", {4}), "3|False");
  EXPECT_EQ(Ask(facade, "IsExisted", {2, 4}) + Ask(facade, "IsExisted", {4, 2}), "TrueFalse");
  EXPECT_EQ(Ask(facade, "IsCardType", {2, 5}) + Ask(facade, "IsCardType", {2, 4}), "TrueFalse");
  EXPECT_EQ(Ask(facade, "IsSmartCardData", {"12"}), "fault 424");
  EXPECT_EQ(Error(Take(facade, "MakeCardData", {NewCard({0, "", 2, 3, "1", "1", ""})})), "0||");
  EXPECT_EQ(Error(facade), "-1|Unknown Card Type|");

  EXPECT_EQ(Put(Take(facade, "CardFormat", {2, 1}), "MaxFacility", {300}), "");
  const Value format = Take(facade, "CardFormatByCode", {513});  // kept by the facade meanwhile
  EXPECT_FALSE(Take(New("CCard"), "CardFormat", {2, 1}) == format);
  const Value raw = Take(facade, "MakeCardData", {NewCard({0, "", 2, 1, "1", "0", ""})});
  EXPECT_EQ(Error(raw) + Error(format), "-1|Incorrect Card ID|-1|Incorrect Card ID|");
  facade = {};
  EXPECT_EQ(Get(format, {"MaxFacility", "CCardFormatInfo_MaxFacility"}), "300|300|");
  EXPECT_EQ(Get(New("CCardFormatHIDCorp1000"), {"Sidx2ndCardID", "Eidx2ndCardID"}), "3|4|");
}

TEST_F(Members, RefuseOtherObjectsThanTheOneThatIsDueAndNone) {
  const Value facade = New("CCard"), card = New("CCardData"), types = New("CCardTypes");
  for (const Value& object : {facade, New("CCardFormatEM")}) {
    EXPECT_EQ(Ask(object, "MakeCardData", {facade}), "fault 13");
    EXPECT_EQ(Ask(object, "MakeCardData", {kNothing}), "fault 91");
    EXPECT_EQ(Ask(object, "AnalyzeCardData", {card}), "fault 438");
    EXPECT_EQ(Ask(object, "AnalyzeCardData", {kNothing}), "fault 91");
  }
  EXPECT_EQ(Ask(types, "Add", {card, 515}), "fault 13");
  const Value bare = New("CCardFormatInfo");  // has nothing to give
  EXPECT_EQ(Ask(bare, "MakeCardData", {card}), "");
  EXPECT_EQ(Ask(bare, "AnalyzeCardData", {New("CCardFrame")}), "nothing");
}

TEST_F(Members, OfTheRegistryAndItsEntries) {
  const Value types = New("CCardTypes"), entry = Take(types, "CardTypeByType", {2, 1});
  EXPECT_EQ(Take(types, "CardTypeByCode", {513}), entry);
  EXPECT_EQ(Ask(types, "LetShortName", {2, 1, "short"}), "0");
  EXPECT_EQ(Ask(types, "GetShortName", {2, 1}) + Ask(types, "GetShortName", {1, 2}), "short");
  EXPECT_EQ(Ask(types, "CardTypeByCode", {516}), "an object");
  EXPECT_EQ(Error(types), "-1|Unknown Card Type|");
  EXPECT_EQ(Ask(types, "IsExisted", {1, 2}) + Ask(types, "IsExisted", {2, 1}), "FalseTrue");
  EXPECT_EQ(Get(entry, {"CardType", "TypeCode", "InitData", "TypeCode"}), "2|513||0|");
}

TEST_F(Members, OfMatchesAreThoseOfTheLibrary) {
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
    ComPtr<::_CCardMatch> early;
    EXPECT_EQ(matches.As<::_CCardMatches>()->get_Item(i, early.out()), S_OK);
    EXPECT_EQ(match, Value(early.get()));
    const CCardMatch& other = *expected.Item(i);
    const std::tuple<const char*, HRESULT (STDMETHODCALLTYPE ::_CCardMatch::*)(LONG*), LONG>
        rows[] = {{"CardType", &::_CCardMatch::get_CardType, other.CardType},
                  {"CardSubType", &::_CCardMatch::get_CardSubType, other.CardSubType},
                  {"ParityHolds", &::_CCardMatch::get_ParityHolds, other.ParityHolds},
                  {"UnusedSet", &::_CCardMatch::get_UnusedSet, other.UnusedSet},
                  {"BeyondLimits", &::_CCardMatch::get_BeyondLimits, other.BeyondLimits},
                  {"CardCount", &::_CCardMatch::get_CardCount, 2}};
    for (const auto& [name, get, number] : rows) {
      LONG value = -1;
      EXPECT_EQ((early.get()->*get)(&value), S_OK);
      EXPECT_EQ(value, number) << name;
      EXPECT_EQ(Ask(match, name), std::to_string(number)) << name;
    }
    EXPECT_EQ(Ask(match, "ClassName") + Ask(match, "HasParity"),
              std::string(other.ClassName) + ValueText(other.HasParity));
    EXPECT_EQ(Ask(Take(match, "CardData", {1}), "CardID"), other.Cards[1].CardID);
    EXPECT_EQ(Ask(match, "CardData", {2}), "fault 9");
  }
  const Value first = Take(matches, "Item", {0});
  EXPECT_EQ(Get(matches, {"Clear", "Count"}) + Get(first, {"CardCount"}), "|0|2|");
}

}  // namespace
}  // namespace vardel::server
