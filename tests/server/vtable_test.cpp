#include "tests/server/library_types.h"
#include "tests/server/server_host.h"

#include <gtest/gtest.h>

#include <map>

// Every member of every interface of every class, through its vtable.
namespace vardel::server {
namespace {

/// A value, as text, that tells a swapped or cut one apart.
std::string SampleOf(VARTYPE type, const std::string& name) {
  static const std::map<VARTYPE, std::string> samples = {
      {VT_I2, "-12345"}, {VT_I4, "-123456789"}, {VT_R8, "12345678901.5"},
      {VT_UI1, "165"},   {VT_BOOL, "-1"},       {VT_USERDEFINED, "3"}};
  const auto sample = samples.find(type);
  return sample == samples.end() ? name + "\xC3\xA9\xE2\x82\xAC" : sample->second;
}

bool GivesResult(const FUNCDESC& operation) {
  const int last = operation.cParams - 1;
  return last >= 0 &&
         (operation.lprgelemdescParam[last].paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0;
}

class Vtable : public testing::TestWithParam<std::pair<const std::string, CLSID>> {
 protected:
  ~Vtable() override {
    object_ = {};
    SetErrorInfo(0, nullptr);
    EXPECT_EQ(module_.CanUnloadNow(), S_OK) << "an object is left";
  }

  /// What the member gives after the value was put, or "" where it does not take that.
  std::string PutAndGet(const DualInterface& dual, const FUNCDESC& put, const std::string& sample) {
    Variant value;
    value.vt = VT_BSTR;
    value.bstrVal = NewBstr(sample);
    if (FAILED(CallVtable(object_.get(), dual, put, {&value}, nullptr))) return "";
    VariantClear(&value);
    ForEachOperation(dual, [&](const FUNCDESC& get, const std::string&) {
      if (get.memid != put.memid || get.invkind != INVOKE_PROPERTYGET) return;
      EXPECT_EQ(CallVtable(object_.get(), dual, get, {}, &value), S_OK);
    });
    EXPECT_EQ(VariantChangeType(&value, &value, 0, VT_BSTR), S_OK);
    return Utf8(value.bstrVal);
  }

  ServerModule module_;
  ComPtr<IDispatch> object_ = module_.Create<IDispatch>(GetParam().second);
};

TEST_P(Vtable, GivesBackWhatWasPut) {
  for (const DualInterface& dual : InterfacesOf(object_.get())) {
    ForEachOperation(dual, [&](const FUNCDESC& put, const std::string& name) {
      if (put.invkind != INVOKE_PROPERTYPUT || put.cParams != 1) return;
      const VARTYPE type = put.lprgelemdescParam[0].tdesc.vt;
      if (type == VT_PTR) return;  // a record
      const std::string sample = SampleOf(type, name);
      const std::string given = PutAndGet(dual, put, sample);
      // Some members take fewer values: hexadecimal text, a byte.
      EXPECT_TRUE(given == sample || (given.empty() && PutAndGet(dual, put, "10") == "10"))
          << dual.name << "." << name << ": " << given;
    });
  }
}

TEST_P(Vtable, AnswersNullPointersWithAStatus) {
  int operations = 0;
  for (const DualInterface& dual : InterfacesOf(object_.get())) {
    ForEachOperation(dual, [&](const FUNCDESC& operation, const std::string& name) {
      const HRESULT status = CallVtable(object_.get(), dual, operation, {}, nullptr);
      const bool isGet = operation.invkind == INVOKE_PROPERTYGET;
      EXPECT_TRUE(isGet ? status == E_POINTER : FAILED(status) || !GivesResult(operation))
          << dual.name << "." << name << ": " << std::hex << status;
      ++operations;
    });
  }
  EXPECT_GT(operations, 5);
}

INSTANTIATE_TEST_SUITE_P(Of, Vtable, testing::ValuesIn(LibraryClasses()),
                         [](const auto& test) { return test.param.first; });

}  // namespace
}  // namespace vardel::server
