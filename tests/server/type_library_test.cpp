// Holds the type library of vardel.dll against the public boundary that interfaces.txt lays down.

#include "tests/server/server.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <regex>
#include <sstream>

namespace vardel::server {
namespace {

std::string IdText(REFGUID id) {
  const std::string text = Utf8(Text(id));
  return ' ' + (text.ends_with("-93AD-4C1F-8B26-D04FA1E37C58}") ? text.substr(1, 8) : text);
}

std::string TypeText(const ComPtr<ITypeInfo>& info, const TYPEDESC& type) {
  static const std::map<int, std::string> names = {
      {VT_BSTR, "text"},       {VT_UI1, "byte"},           {VT_I2, "short"},
      {VT_I4, "long"},         {VT_R8, "double"},          {VT_BOOL, "boolean"},
      {VT_VARIANT, "variant"}, {VT_DISPATCH, "IDispatch*"}};
  if (type.vt == VT_PTR) return TypeText(info, *type.lptdesc) + '*';
  if (type.vt == VT_USERDEFINED) return Name(Referred(info, type.hreftype));
  return names.contains(type.vt) ? names.at(type.vt) : "type " + std::to_string(type.vt);
}

/// Parameters and type.
std::string Signature(const Operation& operation) {
  std::vector<BSTR> names(static_cast<UINT>(operation->cParams) + 1);
  UINT count = static_cast<UINT>(names.size());
  Require(operation.info->GetNames(operation->memid, names.data(), count, &count));
  std::string parameters, result;
  for (UINT i = 0; i + 1 < names.size(); ++i) {
    const ELEMDESC& parameter = operation->lprgelemdescParam[i];
    const int flags = parameter.paramdesc.wParamFlags;
    // A platform's dispatcher leaves out only what has a default.
    constexpr int kOptional = PARAMFLAG_FOPT | PARAMFLAG_FHASDEFAULT;
    std::string type = (flags & kOptional) == kOptional ? "optional " : "";
    if ((flags & PARAMFLAG_FOUT) != 0) type += (flags & PARAMFLAG_FIN) != 0 ? "inout " : "out ";
    type += TypeText(operation.info, parameter.tdesc);
    if (IsResult(parameter)) {
      result = ' ' + type.substr(4, type.size() - 5);  // what the out pointer leads to
    } else if (operation->invkind >= INVOKE_PROPERTYPUT && i + 2 == names.size()) {
      result = ' ' + type;
    } else {
      parameters += (i == 0 ? "(" : ", ") + type + ' ' + Utf8(names[i + 1]);
    }
  }
  for (BSTR each : names) SysFreeString(each);
  return parameters + (parameters.empty() ? "" : ")") + result;
}

/// Number, name and signature of an operation, or of a value's put and get, and which of them it
/// is.
using Entries = std::vector<std::pair<std::string, std::string>>;

Entries EntriesOf(const std::vector<Operation>& operations, const std::string& prefix = "",
                  int more = 0) {
  static const std::map<int, std::string> kinds = {{INVOKE_FUNC, "method"},
                                                   {INVOKE_PROPERTYGET, "get"},
                                                   {INVOKE_PROPERTYPUT, "put"},
                                                   {INVOKE_PROPERTYPUTREF, "putref"}};
  Entries entries;
  auto offset = 7 * sizeof(void*);  // after the operations of IDispatch
  for (const Operation& each : operations) {
    EXPECT_EQ(each->oVft, std::exchange(offset, offset + sizeof(void*))) << each.name;
    EXPECT_TRUE(each->callconv == CC_STDCALL && each->elemdescFunc.tdesc.vt == VT_HRESULT);
    const std::string number = std::to_string(each->memid + more), kind = kinds.at(each->invkind);
    const std::string text = number + ' ' + prefix + each.name + Signature(each);
    const bool isSame = !entries.empty() && entries.back().first == text;
    if (isSame) entries.back().second += '/' + kind;
    if (!isSame) entries.emplace_back(text, kind);
  }
  return entries;
}

/// The lines of an interface, where `general` ones are those of _CCardFormatInfo.
std::string Lines(const Entries& entries, const Entries& general) {
  std::string lines, lastKinds;
  int last = 0;
  for (const auto& [text, kinds] : entries) {
    const bool isGeneral = std::ranges::count(general, text, &Entries::value_type::first) != 0;
    const int number = std::stoi(text) - 100;
    if (!isGeneral || kinds != lastKinds || number < last) lines += '\n' + kinds;
    lines += ' ' + (isGeneral ? std::to_string(number) : text);
    lastKinds = isGeneral ? kinds : "";
    last = number;
  }
  return lines;
}

std::string Interfaces(const LibraryType& type) {
  std::string names;
  EXPECT_TRUE(type.attributes.wTypeFlags & TYPEFLAG_FCANCREATE) << type.name;
  for (int i = 0, flags = 0; i < type.attributes.cImplTypes; ++i) {
    Require(type.info->GetImplTypeFlags(static_cast<UINT>(i), &flags));
    EXPECT_EQ(flags, i == 0 ? IMPLTYPEFLAG_FDEFAULT : 0) << type.name;
    names += ' ' + Name(Implemented(type.info, i));
  }
  return names;
}
std::string Variables(const LibraryType& type) {
  const bool isRecord = type.attributes.typekind == TKIND_RECORD;
  std::string lines;
  if (isRecord) lines = ' ' + std::to_string(type.attributes.cbSizeInstance) + " bytes";
  for (UINT i = 0; i < type.attributes.cVars; ++i) {
    VARDESC* each = nullptr;
    Require(type.info->GetVarDesc(i, &each));
    lines += '\n' + Name(type.info, each->memid);
    if (!isRecord) lines += ' ' + std::to_string(each->lpvarValue->lVal);
    type.info->ReleaseVarDesc(each);
  }
  return lines;
}

std::string LibraryText() {
  const auto library = TypeLibrary();
  TLIBATTR* attributes = nullptr;
  Require(library->GetLibAttr(&attributes));
  const std::string text = "library " + Name(library) + IdText(attributes->guid) + ' ' +
                           std::to_string(attributes->wMajorVerNum) + '.' +
                           std::to_string(attributes->wMinorVerNum);
  library->ReleaseTLibAttr(attributes);
  return text;
}

TEST(TypeLibrary, HoldsThePublicBoundaryAndNothingElse) {
  static const std::map<int, std::string> kinds = {{TKIND_ENUM, "enum "},
                                                   {TKIND_RECORD, "record "},
                                                   {TKIND_DISPATCH, "interface "},
                                                   {TKIND_COCLASS, "class "}};
  const auto info = std::ranges::find(LibraryTypes(), "_CCardFormatInfo", &LibraryType::name);
  const Entries general = EntriesOf(info->operations, "CCardFormatInfo_", 100);
  const std::string all = Lines(general, general);
  std::string built = LibraryText();
  for (const LibraryType& type : LibraryTypes()) {
    built += '\n' + kinds.at(type.attributes.typekind) + type.name + IdText(type.attributes.guid);
    if (type.attributes.typekind == TKIND_COCLASS) built += Interfaces(type);
    if (!type.isInterface) built += Variables(type);
    if (!type.isInterface) continue;
    EXPECT_TRUE(type.attributes.wTypeFlags & TYPEFLAG_FDUAL) << type.name;
    const std::string own = Lines(EntriesOf(type.operations), general);
    built += own.starts_with(all) ? "\nall" + own.substr(all.size()) : own;
  }

  std::istringstream lines(built);
  std::ifstream file(VARDEL_TESTS "/server/interfaces.txt");
  std::string line, published;
  while (std::getline(file >> std::ws, published)) {
    if (published.starts_with('#')) continue;
    std::istringstream items(std::regex_replace(published, std::regex("; "), "\n"));
    for (std::string item; std::getline(items, item);) {
      const std::string before = line;
      std::getline(lines, line);
      ASSERT_EQ(line, item) << "after " << before;
    }
  }
  EXPECT_FALSE(std::getline(lines, line)) << line;
}

TEST(TypeLibrary, HasNoClassThatHostsAreNotTold) {
  for (const char* path : {"/../docs/hosts.md", "/../examples/scripts/objects.vbs"}) {
    std::ifstream file(std::string(VARDEL_TESTS) + path);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    for (const auto& [name, id] : LibraryClasses()) {
      EXPECT_TRUE(std::regex_search(text, std::regex("\\b" + name + "\\b"))) << path << name;
    }
  }
}

}  // namespace
}  // namespace vardel::server
