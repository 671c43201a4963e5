#include <vardel/core/text.h>
#include <vardel/server/com.h>

#include <algorithm>
#include <array>
#include <atomic>

namespace vardel::server {
namespace {

/// What a thread has to itself, more or less: two of very many may share one.
constexpr std::size_t kUnit = 64;  // bytes of a cache line
struct alignas(kUnit) Place {
  std::atomic<long> uses;
  std::array<std::atomic<void*>, 4> free;  // memory of 1 to 4 units
};
std::array<Place, 64> places;

/// Where memory of a size waits for its next use; null for sizes that do not wait.
std::atomic<void*>* WaitingPlace(std::size_t size) {
  auto& free = places[PlaceOfThread()].free;
  const std::size_t units = (size - 1) / kUnit;
  return units < free.size() ? &free[units] : nullptr;
}

constexpr bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void AppendUtf8(std::string& text, char32_t character) {
  constexpr char32_t kLimits[] = {0x80, 0x800, 0x10000};
  constexpr unsigned kLeads[] = {0x00, 0xC0, 0xE0, 0xF0};
  int more = 0;
  while (more < 3 && character >= kLimits[more]) ++more;
  text += static_cast<char>(kLeads[more] | (character >> 6 * more));
  while (more-- > 0) text += static_cast<char>(0x80 | ((character >> 6 * more) & 0x3F));
}

/// The surrogate that the text begins with in its three-byte form, or 0.
char32_t LeadingSurrogate(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  if (text.size() < 3 || byte(0) != 0xED || (byte(1) & 0xE0) != 0xA0 || (byte(2) & 0xC0) != 0x80) {
    return 0;
  }
  return 0xD000 | (byte(1) & 0x3FU) << 6 | (byte(2) & 0x3FU);
}

}  // namespace

HRESULT ChangeType(VARIANT& to, const VARIANT& from, VARTYPE type) {
  constexpr LCID kUsEnglish = 0x0409;
  return VariantChangeTypeEx(&to, const_cast<VARIANT*>(&from), kUsEnglish, VARIANT_NOUSEROVERRIDE,
                             type);
}

const VARIANT* ValueOf(const VARIANT& variant) {
  const VARIANT* value = &variant;
  if (variant.vt == (VT_BYREF | VT_VARIANT)) {
    value = variant.pvarVal;
    if (value == nullptr || value->vt == variant.vt) return nullptr;
  }
  const bool leadsNowhere =
      (value->vt & VT_BYREF) != 0 && value->vt != (VT_BYREF | VT_RECORD) && value->byref == nullptr;
  return leadsNowhere ? nullptr : value;
}

std::string Utf8(std::wstring_view text) {
  std::string utf8(text.size(), '\0');
  unsigned seen = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    seen |= text[i];
    utf8[i] = static_cast<char>(text[i]);
  }
  if (seen < 0x80) return utf8;

  utf8.clear();
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t character = text[i];
    if (IsHighSurrogate(character) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      character = 0x10000 + ((character - 0xD800) << 10) + (text[++i] - 0xDC00U);
    }
    AppendUtf8(utf8, character);
  }
  return utf8;
}

std::string Utf8(BSTR text) {
  return text == nullptr ? std::string() : Utf8(std::wstring_view(text, SysStringLen(text)));
}

std::wstring Wide(std::string_view text) {
  std::wstring wide;
  wide.reserve(text.size());
  while (!text.empty()) {
    char32_t character = LeadingSurrogate(text);
    if (character != 0) {
      text.remove_prefix(3);
    } else {
      character = TakeChar(text);
    }
    if (character >= 0x10000) {
      wide += static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10));
      character = 0xDC00 + ((character - 0x10000) & 0x3FF);
    }
    wide += static_cast<wchar_t>(character);
  }
  return wide;
}

BSTR NewBstr(std::string_view text) {
  if (std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
    BSTR result = SysAllocStringLen(nullptr, static_cast<UINT>(text.size()));
    if (result == nullptr) throw std::bad_alloc();
    std::ranges::copy(text, result);
    return result;
  }
  const std::wstring wide = Wide(text);
  BSTR result = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  if (result == nullptr) throw std::bad_alloc();
  return result;
}

unsigned PlaceOfThread() {
  return GetCurrentThreadId() / 4 % places.size();  // thread numbers are multiples of 4
}
void AddModuleUse(unsigned place) { ++places[place].uses; }
void ReleaseModuleUse(unsigned place) { --places[place].uses; }
bool IsModuleInUse() {
  return std::ranges::any_of(places, [](const Place& place) { return place.uses != 0; });
}

void* TakeMemory(std::size_t size) {
  std::atomic<void*>* const waiting = WaitingPlace(size);
  if (waiting == nullptr) return ::operator new(size);
  void* const memory = waiting->exchange(nullptr);
  return memory != nullptr ? memory : ::operator new((size + kUnit - 1) / kUnit * kUnit);
}

void GiveBackMemory(void* memory, std::size_t size) noexcept {
  std::atomic<void*>* const waiting = WaitingPlace(size);
  ::operator delete(waiting == nullptr ? memory : waiting->exchange(memory));
}

void DropMemory() noexcept {
  for (Place& place : places) {
    for (auto& waiting : place.free) ::operator delete(waiting.exchange(nullptr));
  }
}

std::wstring ModulePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length =
        GetModuleFileNameW(moduleInstance, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(2 * path.size());
  }
}

}  // namespace vardel::server
