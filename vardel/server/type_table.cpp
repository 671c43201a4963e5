#include <vardel/server/type_table.h>

#include <algorithm>
#include <mutex>
#include <stdexcept>

namespace vardel::server {
namespace {

void Require(HRESULT status) {
  if (FAILED(status)) throw std::runtime_error("the type library cannot be read");
}

/// Loaded and dropped by one thread at a time: a platform may find a library that is just going
/// (Wine 8 does).
std::mutex loading;
ITypeLib* keptLibrary = nullptr;

/// The attributes of a type, given back at the end.
class Attributes {
 public:
  explicit Attributes(ITypeInfo* info) : info_(info) { Require(info->GetTypeAttr(&attributes_)); }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  ~Attributes() { info_->ReleaseTypeAttr(attributes_); }
  const TYPEATTR* operator->() const { return attributes_; }

 private:
  ITypeInfo* info_;
  TYPEATTR* attributes_ = nullptr;
};

bool IsNameLess(std::wstring_view left, std::wstring_view right) {
  return CompareNames(left, right) < 0;
}

/// The type behind any pointers; an interface's first pointer belongs to its value.
Parameter Describe(ITypeInfo* info, const TYPEDESC& type) {
  const TYPEDESC* inner = &type;
  int pointers = 0;
  for (; inner->vt == VT_PTR; inner = inner->lptdesc) ++pointers;

  Parameter parameter;
  parameter.type = inner->vt;
  if (inner->vt == VT_USERDEFINED) {
    ComPtr<ITypeInfo> used;
    Require(info->GetRefTypeInfo(inner->hreftype, used.out()));
    const Attributes attributes(used.get());
    parameter.guid = attributes->guid;
    switch (attributes->typekind) {
      case TKIND_ENUM:
        parameter.type = VT_I4;
        break;
      case TKIND_RECORD:
        parameter.type = VT_RECORD;
        break;
      default:
        parameter.type = VT_DISPATCH;
    }
  } else if (inner->vt == VT_DISPATCH) {
    parameter.guid = IID_IDispatch;
    ++pointers;  // IDispatch* is one type
  }
  if (parameter.type == VT_DISPATCH) --pointers;
  parameter.isByRef = pointers > 0;
  return parameter;
}

Member Describe(ITypeInfo* info, const FUNCDESC& function) {
  Member member;
  member.id = function.memid;
  member.kind = function.invkind;
  member.vtableOffset = static_cast<std::size_t>(function.oVft);

  std::vector<BSTR> names(static_cast<std::size_t>(function.cParams) + 1);
  UINT count = 0;
  Require(info->GetNames(function.memid, names.data(), static_cast<UINT>(names.size()), &count));
  const auto takeName = [&](std::size_t i) {
    std::wstring name = names[i] == nullptr ? L"" : names[i];
    SysFreeString(names[i]);
    return name;
  };
  member.name = takeName(0);
  for (SHORT i = 0; i < function.cParams; ++i) {
    const ELEMDESC& element = function.lprgelemdescParam[i];
    Parameter parameter = Describe(info, element.tdesc);
    parameter.name = takeName(static_cast<std::size_t>(i) + 1);
    parameter.isOptional = (element.paramdesc.wParamFlags & PARAMFLAG_FOPT) != 0;
    if ((element.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0) {
      member.result = std::move(parameter);
    } else {
      member.takesDouble |= parameter.type == VT_R8 && !parameter.isByRef;
      member.parameters.push_back(std::move(parameter));
    }
  }
  const bool isPlainPut = member.parameters.size() == 1 && member.result.type == VT_EMPTY;
  if (member.parameters.size() > kMaxParameters || (member.takesDouble && !isPlainPut)) {
    throw std::logic_error("a member that cannot be called late-bound");
  }
  return member;
}

}  // namespace

ComPtr<ITypeLib> LoadTypeLibrary() {
  const std::lock_guard lock(loading);
  if (keptLibrary == nullptr) {
    Require(LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, &keptLibrary));
  }
  return ComPtr<ITypeLib>::Share(keptLibrary);
}

void DropTypeLibrary() {
  const std::lock_guard lock(loading);
  if (ITypeLib* const library = std::exchange(keptLibrary, nullptr)) library->Release();
}

ComPtr<ITypeInfo> LoadTypeInfo(REFGUID guid) {
  ComPtr<ITypeInfo> info;
  Require(LoadTypeLibrary()->GetTypeInfoOfGuid(guid, info.out()));
  return info;
}

HRESULT GiveTypeInfo(REFGUID guid, ITypeInfo** info) noexcept {
  *info = nullptr;
  try {
    *info = LoadTypeInfo(guid).Detach();
    return S_OK;
  } catch (const std::exception&) {
    return TYPE_E_CANTLOADLIBRARY;
  }
}

ComPtr<ITypeInfo> LoadClassInfo(std::wstring_view name) {
  const auto library = LoadTypeLibrary();
  TYPEKIND kind{};
  for (UINT i = 0; SUCCEEDED(library->GetTypeInfoType(i, &kind)); ++i) {
    if (kind != TKIND_COCLASS) continue;
    ComPtr<ITypeInfo> info;
    BSTR text = nullptr;
    Require(library->GetTypeInfo(i, info.out()));
    Require(info->GetDocumentation(MEMBERID_NIL, &text, nullptr, nullptr, nullptr));
    const bool isIt = EqualNames(text, name);
    SysFreeString(text);
    if (isIt) return info;
  }
  throw std::runtime_error("the type library lacks a class");
}

TypeTable::TypeTable(REFIID iid) {
  // The library gives the late-bound view of a dual interface; the vtable is in the other one.
  const ComPtr<ITypeInfo> dispatch = LoadTypeInfo(iid);
  HREFTYPE vtableView = 0;
  Require(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &vtableView));
  ComPtr<ITypeInfo> info;
  Require(dispatch->GetRefTypeInfo(vtableView, info.out()));
  const UINT count = Attributes(info.get())->cFuncs;
  for (UINT i = 0; i < count; ++i) {
    FUNCDESC* function = nullptr;
    Require(info->GetFuncDesc(i, &function));
    members_.push_back(Describe(info.get(), *function));
    info->ReleaseFuncDesc(function);
  }
  std::ranges::stable_sort(members_, {}, &Member::id);
  for (const Member& member : members_) byName_.push_back(&member);
  std::ranges::stable_sort(byName_, IsNameLess, &Member::name);
}

const Member* TypeTable::Find(std::wstring_view name) const {
  const auto found = std::ranges::lower_bound(byName_, name, IsNameLess, &Member::name);
  return found == byName_.end() || !EqualNames((*found)->name, name) ? nullptr : *found;
}

const Member* TypeTable::Find(DISPID id, WORD flags) const {
  auto member = std::ranges::lower_bound(members_, id, {}, &Member::id);
  for (; member != members_.end() && member->id == id; ++member) {
    // A host that only says "put" may mean either kind of it.
    const bool isPut = member->kind == INVOKE_PROPERTYPUTREF && (flags & DISPATCH_PROPERTYPUT) != 0;
    if ((member->kind & flags) != 0 || isPut) return &*member;
  }
  return nullptr;
}

int CompareNames(std::wstring_view left, std::wstring_view right) {
  return CompareStringOrdinal(left.data(), static_cast<int>(left.size()), right.data(),
                              static_cast<int>(right.size()), TRUE) -
         CSTR_EQUAL;
}

bool EqualNames(std::wstring_view left, std::wstring_view right) {
  return CompareNames(left, right) == 0;
}

}  // namespace vardel::server
