#ifdef _WIN32
#include <windows.h>

#include <cstring>

#include "text/ModuleStrings.h"
#include "text/UtfConvert.h"

namespace kestrin {

namespace {

bool isReadable(DWORD protect) {
    if (protect & (PAGE_GUARD | PAGE_NOACCESS)) return false;
    return (protect & (PAGE_READONLY | PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE |
                       PAGE_EXECUTE_WRITECOPY)) != 0;
}

// The handle to give LoadString when handle names a library mapped into this process, else
// nullptr. Any other number (a freed library, heap or stack memory, a copy of a library's
// bytes, a place inside a library) is turned away before LoadString could read through it.
// The low two bits of a module handle tell how it was loaded (1 a data file, 2 an image
// resource); the handle given on is decided by what the memory really holds, so a data file's
// raw layout is never read as an image's.
HMODULE loadedLibrary(LanguageHandle handle) {
    const auto base = static_cast<std::uintptr_t>(handle) & ~std::uintptr_t{3};
    if (base == 0) return nullptr;
    MEMORY_BASIC_INFORMATION region{};
    if (VirtualQuery(reinterpret_cast<const void*>(base), &region, sizeof region) != sizeof region) return nullptr;
    if (region.State != MEM_COMMIT || !isReadable(region.Protect) ||
        (region.Type != MEM_IMAGE && region.Type != MEM_MAPPED) ||
        reinterpret_cast<std::uintptr_t>(region.AllocationBase) != base)
        return nullptr;
    // The DOS header and the PE signature it points to, both inside the readable region.
    const auto* bytes = static_cast<const unsigned char*>(region.BaseAddress);
    const std::size_t readable = region.RegionSize;
    if (readable < 0x40 || bytes[0] != 'M' || bytes[1] != 'Z') return nullptr;
    uint32_t peOffset = 0;
    std::memcpy(&peOffset, bytes + 0x3C, sizeof peOffset);
    if (peOffset > readable - 4 || std::memcmp(bytes + peOffset, "PE\0\0", 4) != 0) return nullptr;
    const std::uintptr_t layout = region.Type == MEM_MAPPED ? 1 : static_cast<std::uintptr_t>(handle) & 2;
    return reinterpret_cast<HMODULE>(base | layout);
}

}  // namespace

std::optional<std::string> moduleString(LanguageHandle handle, int32_t id) {
    const HMODULE module = loadedLibrary(handle);
    if (!module) return std::nullopt;
    // A buffer size of 0 gives the text where the library holds it, with its whole length.
    const wchar_t* text = nullptr;
    const int length = LoadStringW(module, static_cast<UINT>(id) & 0xFFFF, reinterpret_cast<LPWSTR>(&text), 0);
    if (length <= 0 || text == nullptr) return std::nullopt;
    std::u16string units(static_cast<std::size_t>(length), u'\0');
    std::memcpy(units.data(), text, units.size() * sizeof(char16_t));
    return utf16ToUtf8(cutUtf16(units));
}

}  // namespace kestrin
#endif  // _WIN32
