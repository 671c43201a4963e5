// Holds the type library of vardel.dll against the public boundary that interfaces.txt lays down.

#include "tests/server/library_types.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>

namespace vardel::server {
namespace {

using Blocks = std::map<std::string, std::string>;  // by kind and name, such as "interface _CError"
using Info = ComPtr<ITypeInfo>;

std::string IdText(REFGUID id) {
  GUID ours = LIBID_Vardel;
  ours.Data1 = id.Data1;
  wchar_t text[40] = {};
  StringFromGUID2(id, text, 40);
  const std::wstring all = CharLowerW(text);
  return ' ' + Utf8(std::wstring_view(id == ours ? all.substr(1, 8) : all));
}

std::string TypeText(const Info& info, const TYPEDESC& type) {
  static const std::map<int, std::string> names = {
      {VT_BSTR, "text"},       {VT_UI1, "byte"},           {VT_I2, "short"},
      {VT_I4, "long"},         {VT_R8, "double"},          {VT_BOOL, "boolean"},
      {VT_VARIANT, "variant"}, {VT_DISPATCH, "IDispatch*"}};
  if (type.vt == VT_PTR) return TypeText(info, *type.lptdesc) + '*';
  if (type.vt == VT_USERDEFINED) return Name(Referred(info, type.hreftype));
  return names.contains(type.vt) ? names.at(type.vt) : "type " + std::to_string(type.vt);
}

/// Parameters and type.
std::string Signature(const Info& info, const FUNCDESC& operation) {
  std::vector<BSTR> names(static_cast<UINT>(operation.cParams) + 1);
  UINT count = static_cast<UINT>(names.size());
  Require(info->GetNames(operation.memid, names.data(), count, &count));
  std::string parameters, result;
  for (UINT i = 0; i + 1 < names.size(); ++i) {
    const ELEMDESC& parameter = operation.lprgelemdescParam[i];
    const int flags = parameter.paramdesc.wParamFlags;
    std::string type = (flags & PARAMFLAG_FOPT) != 0 ? "optional " : "";
    if ((flags & PARAMFLAG_FOUT) != 0) type += (flags & PARAMFLAG_FIN) != 0 ? "inout " : "out ";
    type += TypeText(info, parameter.tdesc);
    if (IsResult(parameter)) {
      result = ' ' + type.substr(4, type.size() - 5);  // what the out pointer leads to
    } else if (operation.invkind >= INVOKE_PROPERTYPUT && i + 2 == names.size()) {
      result = ' ' + type;
    } else {
      parameters += (i == 0 ? "(" : ", ") + type + ' ' + Utf8(names[i + 1]);
    }
  }
  for (BSTR each : names) SysFreeString(each);
  return parameters + (parameters.empty() ? "" : ")") + result;
}

/// Adds what an interface, a class or a type with members has.
void AddOperations(const DualInterface& dual, std::string& text) {
  static const std::map<int, std::string> kinds = {{INVOKE_FUNC, " method "},
                                                   {INVOKE_PROPERTYGET, " get "},
                                                   {INVOKE_PROPERTYPUT, " put "},
                                                   {INVOKE_PROPERTYPUTREF, " putref "}};
  auto offset = 7 * sizeof(void*);  // after the operations of IDispatch
  ForEachOperation(dual, [&](const FUNCDESC& each, const std::string& name) {
    EXPECT_EQ(each.oVft, std::exchange(offset, offset + sizeof(void*))) << name;
    EXPECT_TRUE(each.callconv == CC_STDCALL && each.elemdescFunc.tdesc.vt == VT_HRESULT) << name;
    text += '\n' + std::to_string(each.memid) + kinds.at(each.invkind) + name;
    text += Signature(dual.info, each);
  });
}
void AddInterfaces(const Info& info, const TYPEATTR& type, std::string& text) {
  EXPECT_TRUE(type.wTypeFlags & TYPEFLAG_FCANCREATE) << text;
  for (int i = 0, flags = 0; i < type.cImplTypes; ++i) {
    Require(info->GetImplTypeFlags(static_cast<UINT>(i), &flags));
    EXPECT_EQ(flags, i == 0 ? IMPLTYPEFLAG_FDEFAULT : 0) << text;
    text += ' ' + Name(Implemented(info, i));
  }
}
void AddMembers(const Info& info, const TYPEATTR& type, std::string& text) {
  if (type.typekind == TKIND_RECORD) text += ' ' + std::to_string(type.cbSizeInstance) + " bytes";
  for (UINT i = 0; i < type.cVars; ++i) {
    VARDESC* each = nullptr;
    Require(info->GetVarDesc(i, &each));
    text += '\n' + Name(info, each->memid);
    if (each->varkind == VAR_CONST) text += ' ' + std::to_string(each->lpvarValue->lVal);
    info->ReleaseVarDesc(each);
  }
}

/// A list's lines with `offset` added to the numbers and the prefix before the names.
std::string Used(const std::string& lines, int offset, const std::string& prefix) {
  std::istringstream list(lines);
  std::string used, kind, rest;
  for (int number = 0; std::getline(list >> number >> kind >> std::ws, rest);) {
    used += '\n' + std::to_string(offset + number) + ' ' + kind + ' ' + prefix + rest;
  }
  return used;
}

Blocks ExpectedBlocks() {
  const std::pair<const char*, const char*> rewritten[] = {
      {"; ", "\n"}, {" = ", "\nuse "}, {"(\\d+) (\\w+)/(\\w+) (.*)", "$1 $2 $4\n$1 $3 $4"}};
  std::stringstream text;
  text << std::ifstream(VARDEL_TESTS "/server/interfaces.txt").rdbuf();
  for (const auto& [from, to] : rewritten) {
    text.str(std::regex_replace(text.str(), std::regex(from), to));
  }
  const std::regex kinds("(library|enum|record|class|interface|list) \\S+");
  Blocks blocks;
  std::string* block = nullptr;
  std::smatch header;
  for (std::string line; std::getline(text, line);) {
    if (line.empty() || line.starts_with('#')) continue;
    if (std::regex_search(line, header, kinds, std::regex_constants::match_continuous)) {
      block = &blocks[header.str()];
      *block = header.suffix();
    } else if (line.starts_with("use ")) {
      std::string use, name, prefix;
      int offset = 0;
      std::istringstream(line) >> use >> name >> offset >> prefix;
      *block += Used(blocks.at("list " + name), offset, prefix);
    } else {
      *block += '\n' + line;
    }
  }
  std::erase_if(blocks, [](const auto& each) { return each.first.starts_with("list "); });
  return blocks;
}

TEST(TypeLibrary, HoldsThePublicBoundaryAndNothingElse) {
  static const std::map<int, std::string> kinds = {{TKIND_ENUM, "enum "},
                                                   {TKIND_RECORD, "record "},
                                                   {TKIND_DISPATCH, "interface "},
                                                   {TKIND_COCLASS, "class "}};
  const auto library = TypeLibrary();
  TLIBATTR* attributes = nullptr;
  Require(library->GetLibAttr(&attributes));
  Blocks built = {{"library " + Name(library), IdText(attributes->guid) + ' ' +
                                                   std::to_string(attributes->wMajorVerNum) + '.' +
                                                   std::to_string(attributes->wMinorVerNum)}};
  library->ReleaseTLibAttr(attributes);
  for (const auto& [info, type] : LibraryTypes()) {
    const std::string name = Name(info);
    std::string& text = built[kinds.at(type.typekind) + name] = IdText(type.guid);
    if (type.typekind == TKIND_COCLASS) AddInterfaces(info, type, text);
    if (type.typekind != TKIND_DISPATCH) {
      AddMembers(info, type, text);
    } else {
      EXPECT_TRUE(type.wTypeFlags & TYPEFLAG_FDUAL) << name;
      AddOperations({name, type.guid, Implemented(info, -1)}, text);
    }
  }

  const Blocks expected = ExpectedBlocks();
  for (const auto& each : built) EXPECT_TRUE(expected.contains(each.first)) << each.first;
  for (const auto& [header, text] : expected) EXPECT_EQ(built[header], text) << header;
}

}  // namespace
}  // namespace vardel::server
