// Windows-1252 and the language libraries' string tables, against Windows' own code page
// conversions and LoadStringA/LoadStringW; the translator given the module handles of
// libraries a host loaded itself.
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <numeric>

#include "Differential.h"
#include "persist/Cp1252.h"
#include "text/CatalogRegistry.h"
#include "text/PeStringTable.h"
#include "text/Translator.h"
#include "text/UtfConvert.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

std::string narrowOf(UINT codePage, const std::wstring& units) {
    std::string out(units.size() * 4, '\0');
    out.resize(static_cast<std::size_t>(WideCharToMultiByte(codePage, 0, units.data(), static_cast<int>(units.size()), out.data(),
                                                            static_cast<int>(out.size()), nullptr, nullptr)));
    return out;
}

// Every byte reads as Windows' Windows-1252 table reads it, the five undefined bytes included;
// every character of the Basic Multilingual Plane is written as Windows writes it without
// best-fit replacements: the byte of the table, or "?" (a best fit would turn a character into
// a different one that then reads back as something else).
TEST(CodePage, EveryByteAndCharacterConvertsAsWindowsConvertsThem) {
    Tally bytes("code page bytes"), characters("code page characters");
    for (int b = 0; b < 256; ++b) {
        const char byte = static_cast<char>(b);
        wchar_t unit = 0;
        ASSERT_EQ(MultiByteToWideChar(1252, 0, &byte, 1, &unit, 1), 1);
        bytes.same(cp1252ToUtf8(std::string(1, byte)), narrowOf(CP_UTF8, std::wstring(1, unit)), "byte " + std::to_string(b));
    }
    for (char32_t cp = 1; cp < 0x10000; ++cp) {
        if (cp >= 0xD800 && cp <= 0xDFFF) continue;
        const wchar_t unit = static_cast<wchar_t>(cp);
        char theirs[4] = {};
        const int length = WideCharToMultiByte(1252, WC_NO_BEST_FIT_CHARS, &unit, 1, theirs, sizeof theirs, "?", nullptr);
        std::string text;
        appendUtf8(text, cp);
        characters.same(utf8ToCp1252(text), std::string(theirs, static_cast<std::size_t>(length)), "U+" + std::to_string(cp));
    }
}

std::filesystem::path fixture(const char* name) { return std::filesystem::path(KESTRIN_FIXTURES) / "lang" / name; }

// Every id of each library, read by our reader and by LoadStringA/LoadStringW with the
// 256-character buffer hosts use. Windows may cut a text between the halves of a surrogate
// pair and keep the lone half; our reader cuts before the pair instead.
TEST(LanguageLibraries, AnswerAsLoadString) {
    for (const char* name : {"strings32.dll", "strings64.dll", "standard.dll", "custom.dll"}) {
        std::string error;
        const auto ours = PeStringTable::parse(readBytes(fixture(name)), &error);
        ASSERT_TRUE(ours) << name << ": " << error;
        const HMODULE module = LoadLibraryExW(fixture(name).wstring().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
        ASSERT_NE(module, nullptr) << name << ": LoadLibraryExW failed: " << GetLastError();
        Tally tally(name);
        std::size_t found = 0;
        for (UINT id = 0; id <= 0xFFFF; ++id) {
            char narrow[256];
            wchar_t units[256];
            const int narrowLength = LoadStringA(module, id, narrow, 256), unitLength = LoadStringW(module, id, units, 256);
            const auto text = ours->lookup(static_cast<int32_t>(id));
            const std::wstring whole(units, static_cast<std::size_t>(unitLength));
            std::string theirs = narrowOf(CP_UTF8, whole);
            if (text && whole.size() == 255 && whole.back() >= 0xD800 && whole.back() <= 0xDBFF &&
                *text == narrowOf(CP_UTF8, whole.substr(0, 254)))
                theirs = *text;
            found += text.has_value();
            const std::string narrowText(narrow, static_cast<std::size_t>(std::max(narrowLength, 0)));
            tally.same(text ? "text " + *text + " / " + narrowOf(CP_ACP, whole).substr(0, 255) : std::string("none"),
                       narrowLength > 0 ? "text " + theirs + " / " + narrowText : "none", "id " + std::to_string(id));
        }
        FreeLibrary(module);
        EXPECT_GT(found, 0u) << name;
    }
}

template <class T>
LanguageHandle handleOf(T* pointer) { return reinterpret_cast<LanguageHandle>(pointer); }

// For every id (and ids beyond 16 bits), the translator given the module handles a host loaded
// gives what it gives with registry handles of the same files: the custom library before the
// standard one, an empty custom text passed over, texts cut at 255 units, the default and the
// marker. The low two bits of a handle only say how the library was loaded, so the handles
// with them cleared or set give the same texts.
TEST(ModuleHandles, GiveTheTextsTheRegistryGivesForTheSameFiles) {
    // How a host loads its two libraries itself: LoadLibraryExW with these flags (0 loads as LoadLibraryW does).
    // The 64-bit fixtures share one preferred base and cannot be relocated: one is loaded as a library.
    constexpr DWORD DataFile = LOAD_LIBRARY_AS_DATAFILE, ImageResource = LOAD_LIBRARY_AS_IMAGE_RESOURCE;
    // The standard library, its flags and the custom library's flags.
    const std::tuple<const char*, DWORD, DWORD> loads[] = {
        {"standard.dll", DataFile, DataFile}, {"strings32.dll", DataFile, DataFile},
        {"standard.dll", ImageResource, ImageResource}, {"strings64.dll", ImageResource, ImageResource},
        {"strings64.dll", 0, DataFile}};
    std::vector<int32_t> ids(0x10000);
    std::iota(ids.begin(), ids.end(), 0);
    ids.insert(ids.end(), {3104 + 0x10000, 3105 - 0x20000, 1 + 0x7FFF0000, INT32_MIN + 2});
    Tally tally("module handles");
    const auto loaded = [](const char* name, DWORD flags) {
        return handleOf(LoadLibraryExW(fixture(name).wstring().c_str(), nullptr, flags));
    };
    for (const auto& [standardName, standardFlags, customFlags] : loads) {
        const LanguageHandle standard = loaded(standardName, standardFlags), custom = loaded("custom.dll", customFlags);
        ASSERT_TRUE(standard && custom) << standardName << ": error " << GetLastError();
        CatalogRegistry registry;
        const LanguageHandle standardFile = registry.open(fixture(standardName));
        const LanguageHandle customFile = registry.open(fixture("custom.dll"));
        ASSERT_TRUE(standardFile && customFile);
        const LanguageHandle low = 3;
        // {custom, standard} as modules (or registry handles) against the same files in the registry.
        using Pair = std::pair<LanguageHandle, LanguageHandle>;
        const Pair bothFiles{customFile, standardFile};
        const Pair given[][2] = {{{custom, standard}, bothFiles}, {{0, standard}, {0, standardFile}},
                                 {{custom, 0}, {customFile, 0}}, {{custom, standardFile}, bothFiles},
                                 {{custom & ~low, standard & ~low}, bothFiles}, {{custom | low, standard | low}, bothFiles}};
        std::size_t texts = 0;
        for (const auto& [modules, files] : given) {
            tally.subject = std::string(standardName) + " loaded with " + std::to_string(standardFlags) + ", handles " +
                            std::to_string(modules.first) + " and " + std::to_string(modules.second);
            Translator fromModules(&registry), fromFiles(&registry);
            fromModules.setCustomLanguageDLL(modules.first);
            fromModules.setLanguageDLL(modules.second);
            fromFiles.setCustomLanguageDLL(files.first);
            fromFiles.setLanguageDLL(files.second);
            for (const int32_t id : ids) {
                const std::string_view fallback = id % 2 ? "<Default>" : "";
                const std::string expected = fromFiles.text(id, fallback);
                texts += expected != fallback && expected != Translator::NotFoundText;
                tally.same(fromModules.text(id, fallback), expected, "id " + std::to_string(id));
            }
        }
        FreeLibrary(reinterpret_cast<HMODULE>(custom));
        FreeLibrary(reinterpret_cast<HMODULE>(standard));
        EXPECT_GT(texts, 0u) << standardName;
    }
}

// A number that is no loaded library is passed over without being read through: the default
// or the marker, or the registry's library given beside it. Among them copies of a library in
// memory of the program's own, which LoadString would read as the library.
TEST(NumbersThatAreNoModule, GiveTheFallbacksWithoutBeingReadThrough) {
    const std::wstring path = fixture("strings64.dll").wstring();
    const std::string file = readBytes(fixture("strings64.dll"));
    const HMODULE freed = LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_TRUE(freed && FreeLibrary(freed));
    const HMODULE loaded = LoadLibraryW(path.c_str());
    ASSERT_NE(loaded, nullptr);
    // Copies of the file and of the loaded image in memory the program allocated itself.
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(
        reinterpret_cast<const char*>(loaded) + reinterpret_cast<const IMAGE_DOS_HEADER*>(loaded)->e_lfanew);
    const std::string_view originals[] = {file, {reinterpret_cast<const char*>(loaded), headers->OptionalHeader.SizeOfImage}};
    void* copies[2] = {};
    for (std::size_t i = 0; i < 2; ++i) {
        copies[i] = VirtualAlloc(nullptr, originals[i].size(), MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
        ASSERT_NE(copies[i], nullptr);
        std::memcpy(copies[i], originals[i].data(), originals[i].size());
    }
    int onStack = 0;
    CatalogRegistry registry;
    const LanguageHandle standard = registry.open(fixture("strings32.dll"));
    const std::pair<const char*, LanguageHandle> handles[] = {
        {"a made-up number", 0x12345678}, {"-1", -1}, {"the largest", INTPTR_MAX}, {"the smallest", INTPTR_MIN},
        {"a heap address", handleOf(file.data())}, {"a stack address", handleOf(&onStack)},
        {"a copy of a library file", handleOf(copies[0]) | 1}, {"a copy of a loaded library", handleOf(copies[1])},
        {"a freed library", handleOf(freed)}, {"a place inside a library", handleOf(loaded) + 0x1000},
        {"a registry handle never given", standard + 1}, {"the program's own module", handleOf(GetModuleHandleW(nullptr))}};
    for (const auto& [what, handle] : handles) {
        Translator translator(&registry);
        translator.setCustomLanguageDLL(handle);
        translator.setLanguageDLL(handle);
        EXPECT_EQ(std::tuple(translator.text(0, "<Zero>"), translator.text(1), translator.text(3104, "")),
                  std::tuple("<Zero>", Translator::NotFoundText, Translator::NotFoundText))
            << what;
        translator.setLanguageDLL(standard);
        EXPECT_EQ(std::tuple(translator.text(0, "<Zero>"), translator.text(15)), std::tuple("Zero", "Fifteen"))
            << what;
    }
    FreeLibrary(loaded);
    for (void* copy : copies) VirtualFree(copy, 0, MEM_RELEASE);
}

}  // namespace
