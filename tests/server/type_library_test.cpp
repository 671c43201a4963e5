// Holds the type library of vardel.dll against the public boundary that interfaces.txt lays down.

#include "tests/server/library_types.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <sstream>

namespace vardel::server {
namespace {

using Blocks = std::map<std::string, std::string>;  // lines by header, such as "interface _CError"
using Info = ComPtr<ITypeInfo>;

std::string TypeText(const Info& info, const TYPEDESC& type) {
  static const std::map<int, std::string> names = {
      {VT_BSTR, "text"},       {VT_UI1, "byte"},           {VT_I2, "short"},
      {VT_I4, "long"},         {VT_R8, "double"},          {VT_BOOL, "boolean"},
      {VT_VARIANT, "variant"}, {VT_DISPATCH, "IDispatch*"}};
  if (type.vt == VT_PTR) return TypeText(info, *type.lptdesc) + '*';
  if (type.vt == VT_USERDEFINED) return Name(Referred(info, type.hreftype));
  return names.contains(type.vt) ? names.at(type.vt) : "type " + std::to_string(type.vt);
}

std::string OperationLine(const Info& info, const FUNCDESC& operation) {
  static const std::map<int, std::string> kinds = {{INVOKE_FUNC, "method "},
                                                   {INVOKE_PROPERTYGET, "get "},
                                                   {INVOKE_PROPERTYPUT, "put "},
                                                   {INVOKE_PROPERTYPUTREF, "putref "}};
  std::vector<BSTR> names(static_cast<UINT>(operation.cParams) + 1);
  UINT count = static_cast<UINT>(names.size());
  Require(info->GetNames(operation.memid, names.data(), count, &count));
  std::string line = kinds.at(operation.invkind) + Utf8(names[0]) + '(';
  std::string result = ")";
  for (UINT i = 0; i + 1 < names.size(); ++i) {
    const ELEMDESC& parameter = operation.lprgelemdescParam[i];
    const int flags = parameter.paramdesc.wParamFlags;
    const std::string type = TypeText(info, parameter.tdesc);
    if ((flags & PARAMFLAG_FRETVAL) != 0) {
      result += ' ' + type.substr(0, type.size() - 1);  // what the pointer leads to
      continue;
    }
    if (i > 0) line += ", ";
    if ((flags & PARAMFLAG_FOPT) != 0) line += "optional ";
    if ((flags & PARAMFLAG_FOUT) != 0) line += (flags & PARAMFLAG_FIN) != 0 ? "inout " : "out ";
    line += type;
    const bool isPutValue = operation.invkind >= INVOKE_PROPERTYPUT && i + 2 == names.size();
    if (!isPutValue) line += ' ' + Utf8(names[i + 1]);
  }
  for (BSTR name : names) SysFreeString(name);
  return line + result;
}

std::string OperationLines(const Info& info) {
  std::string lines;
  std::map<std::string, MEMBERID> ids;  // operations with the same DISPID also have the same name
  FUNCDESC* each = nullptr;
  for (UINT i = 0; SUCCEEDED(info->GetFuncDesc(i, &each)); ++i) {
    const std::string line = OperationLine(info, *each);
    SCOPED_TRACE(Name(info) + ": " + line);
    EXPECT_EQ(ids.emplace(Name(info, each->memid), each->memid).first->second, each->memid);
    EXPECT_EQ(each->oVft, (7 + i) * sizeof(void*));  // after those of IDispatch
    EXPECT_TRUE(each->callconv == CC_STDCALL && each->elemdescFunc.tdesc.vt == VT_HRESULT);
    info->ReleaseFuncDesc(each);
    lines += line + '\n';
  }
  return lines;
}

/// The header and the lines of a type.
std::pair<std::string, std::string> Block(const Info& info, const TYPEATTR& type) {
  std::string lines;
  if (type.typekind == TKIND_ENUM) {
    for (UINT i = 0; i < type.cVars; ++i) {
      VARDESC* each = nullptr;
      Require(info->GetVarDesc(i, &each));
      lines += Name(info, each->memid) + " = " + std::to_string(each->lpvarValue->lVal) + '\n';
      info->ReleaseVarDesc(each);
    }
    return {"enum " + Name(info), lines};
  }
  if (type.typekind == TKIND_RECORD && type.guid != GUID_NULL) {
    return {"record " + Name(info), std::to_string(type.cbSizeInstance) + " bytes\n"};
  }
  if (type.typekind == TKIND_COCLASS && (type.wTypeFlags & TYPEFLAG_FCANCREATE) != 0) {
    for (int i = 0, flags = 0; i < type.cImplTypes; ++i) {
      Require(info->GetImplTypeFlags(static_cast<UINT>(i), &flags));
      lines += flags == IMPLTYPEFLAG_FDEFAULT ? "default " : "";
      lines += Name(Implemented(info, i)) + '\n';
    }
    return {"class " + Name(info), lines};
  }
  if (type.typekind == TKIND_DISPATCH && (type.wTypeFlags & TYPEFLAG_FDUAL) != 0) {
    return {"interface " + Name(info), OperationLines(Implemented(info, -1))};
  }
  return {"a type of unexpected kind: " + Name(info), ""};
}

Blocks ExpectedBlocks() {
  std::ifstream file(VARDEL_TESTS "/server/interfaces.txt");
  Blocks blocks;
  for (std::string line, header; std::getline(file, line);) {
    if (line.empty() || line.starts_with('#')) {
      header.clear();
    } else if (header.empty()) {
      blocks[header = line];
    } else if (line.starts_with("use ")) {
      std::string use, list, prefix;
      std::istringstream(line) >> use >> list >> prefix;
      static const std::regex firstWord("(^|\n)(\\w+ )");
      blocks[header] += std::regex_replace(blocks.at("list " + list), firstWord, "$1$2" + prefix);
    } else {
      blocks[header] += line + '\n';
    }
  }
  std::erase_if(blocks, [](const auto& each) { return each.first.starts_with("list "); });
  return blocks;
}

TEST(TypeLibraryTest, HoldsThePublicBoundaryAndNothingElse) {
  const auto library = TypeLibrary();
  TLIBATTR* version = nullptr;
  Require(library->GetLibAttr(&version));
  Blocks built = {{"library " + Name(library), "version " + std::to_string(version->wMajorVerNum) +
                                                   '.' + std::to_string(version->wMinorVerNum) +
                                                   '\n'}};
  library->ReleaseTLibAttr(version);
  for (const auto& [info, type] : LibraryTypes()) built.insert(Block(info, type));

  const Blocks expected = ExpectedBlocks();
  for (const auto& each : built) EXPECT_TRUE(expected.contains(each.first)) << each.first;
  for (const auto& [header, lines] : expected) EXPECT_EQ(built[header], lines) << header;
}

}  // namespace
}  // namespace vardel::server
