// Holds the type library of vardel.dll against the public boundary that interfaces.txt lays down.

#include "tests/server/server.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <vector>

namespace vardel::server {
namespace {

using Lines = std::vector<std::string>;
using Blocks = std::map<std::string, Lines>;  // by header, such as "interface _CError"
using Info = ComPtr<ITypeInfo>;

void Check(HRESULT status) {
  if (FAILED(status)) throw std::runtime_error("the type library cannot be read");
}

template <class Source>
std::string Name(const ComPtr<Source>& source, MEMBERID member = MEMBERID_NIL) {
  BSTR name = nullptr;
  Check(source->GetDocumentation(member, &name, nullptr, nullptr, nullptr));
  const std::string text = Utf8(name);
  SysFreeString(name);
  return text;
}

/// A description that a type or library lends, given back when no longer held.
template <class Description, class Source>
std::shared_ptr<Description> Lent(const Source& source, auto get, auto release, auto... index) {
  Description* description = nullptr;
  Check((source.get()->*get)(index..., &description));
  return {description, [=](Description* lent) { (source.get()->*release)(lent); }};
}
auto Attributes(const Info& info) {
  return Lent<TYPEATTR>(info, &ITypeInfo::GetTypeAttr, &ITypeInfo::ReleaseTypeAttr);
}

Info Referred(const Info& info, HREFTYPE reference) {
  Info referred;
  Check(info->GetRefTypeInfo(reference, referred.out()));
  return referred;
}
/// Of a dual interface, which the library lists by its dispatch side, -1 is the vtable side.
Info Implemented(const Info& info, int index) {
  HREFTYPE reference = 0;
  Check(info->GetRefTypeOfImplType(static_cast<UINT>(index), &reference));
  return Referred(info, reference);
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

std::string OperationLine(const Info& info, const FUNCDESC& operation) {
  static const std::map<int, std::string> kinds = {{INVOKE_FUNC, "method "},
                                                   {INVOKE_PROPERTYGET, "get "},
                                                   {INVOKE_PROPERTYPUT, "put "},
                                                   {INVOKE_PROPERTYPUTREF, "putref "}};
  std::vector<BSTR> names(static_cast<UINT>(operation.cParams) + 1);
  UINT count = static_cast<UINT>(names.size());
  Check(info->GetNames(operation.memid, names.data(), count, &count));
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

void AddType(Blocks& blocks, const Info& info) {
  const auto type = Attributes(info);
  const auto kind = type->typekind;
  if (kind == TKIND_ENUM) {
    Lines& lines = blocks["enum " + Name(info)];
    for (UINT i = 0; i < type->cVars; ++i) {
      const auto each = Lent<VARDESC>(info, &ITypeInfo::GetVarDesc, &ITypeInfo::ReleaseVarDesc, i);
      lines.push_back(Name(info, each->memid) + " = " + std::to_string(each->lpvarValue->lVal));
    }
  } else if (kind == TKIND_RECORD) {
    blocks["record " + Name(info)] = {std::to_string(type->cbSizeInstance) + " bytes"};
    EXPECT_NE(type->guid, GUID_NULL) << Name(info);
  } else if (kind == TKIND_COCLASS && (type->wTypeFlags & TYPEFLAG_FCANCREATE) != 0) {
    Lines& lines = blocks["class " + Name(info)];
    for (int i = 0, flags = 0; i < type->cImplTypes; ++i) {
      Check(info->GetImplTypeFlags(static_cast<UINT>(i), &flags));
      lines.push_back((flags == IMPLTYPEFLAG_FDEFAULT ? "default " : "") +
                      Name(Implemented(info, i)));
    }
  } else if (kind == TKIND_DISPATCH && (type->wTypeFlags & TYPEFLAG_FDUAL) != 0) {
    Lines& lines = blocks["interface " + Name(info)];
    const Info view = Implemented(info, -1);
    std::map<std::string, MEMBERID> ids;  // operations with the same DISPID also have the same name
    for (UINT i = 0; i < Attributes(view)->cFuncs; ++i) {
      const auto each =
          Lent<FUNCDESC>(view, &ITypeInfo::GetFuncDesc, &ITypeInfo::ReleaseFuncDesc, i);
      lines.push_back(OperationLine(view, *each));
      SCOPED_TRACE(Name(info) + ": " + lines.back());
      EXPECT_EQ(ids.emplace(Name(view, each->memid), each->memid).first->second, each->memid);
      EXPECT_EQ(each->oVft, (7 + i) * sizeof(void*));  // after those of IDispatch
      EXPECT_TRUE(each->callconv == CC_STDCALL && each->elemdescFunc.tdesc.vt == VT_HRESULT);
    }
  } else {
    blocks["a type of unexpected kind: " + Name(info)];
  }
}

Blocks BuiltBlocks() {
  ComPtr<ITypeLib> library;
  Check(LoadTypeLibEx(L"vardel.dll", REGKIND_NONE, library.out()));
  const auto lent = Lent<TLIBATTR>(library, &ITypeLib::GetLibAttr, &ITypeLib::ReleaseTLibAttr);
  Blocks blocks;
  blocks["library " + Name(library)] = {"version " + std::to_string(lent->wMajorVerNum) + '.' +
                                        std::to_string(lent->wMinorVerNum)};
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    Info info;
    Check(library->GetTypeInfo(i, info.out()));
    AddType(blocks, info);
  }
  return blocks;
}

Blocks ExpectedBlocks() {
  std::ifstream file(VARDEL_INTERFACES);
  if (!file) throw std::runtime_error("cannot read " VARDEL_INTERFACES);
  Blocks blocks;
  for (std::string line, header; std::getline(file, line);) {
    if (line.empty() || line.starts_with('#')) {
      header.clear();
    } else if (header.empty()) {
      blocks[header = line];
    } else if (!line.starts_with("use ")) {
      blocks[header].push_back(line);
    } else {
      std::string use, list, prefix;
      std::istringstream(line) >> use >> list >> prefix;
      for (std::string member : blocks.at("list " + list)) {
        blocks[header].push_back(member.insert(member.find(' ') + 1, prefix));
      }
    }
  }
  std::erase_if(blocks, [](const auto& each) { return each.first.starts_with("list "); });
  return blocks;
}

TEST(TypeLibraryTest, HoldsThePublicBoundaryAndNothingElse) {
  Blocks built = BuiltBlocks();
  const Blocks expected = ExpectedBlocks();
  for (const auto& each : built) EXPECT_TRUE(expected.contains(each.first)) << each.first;
  for (const auto& [header, lines] : expected) {
    const Lines& found = built[header];
    for (std::size_t i = 0; i < found.size() || i < lines.size(); ++i) {
      const std::string is = i < found.size() ? found[i] : "nothing";
      const std::string should = i < lines.size() ? lines[i] : "nothing";
      EXPECT_EQ(is, should) << header << ", line " << i + 1;
      if (is != should && found.size() != lines.size()) break;  // the rest has moved
    }
  }
}

}  // namespace
}  // namespace vardel::server
