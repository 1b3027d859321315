// Windows-1252 and the language libraries' string tables, against Windows' own code page
// conversions and LoadStringA/LoadStringW.
#include <windows.h>

#include <fstream>
#include <iterator>

#include "Differential.h"
#include "persist/Cp1252.h"
#include "text/PeStringTable.h"
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
        BOOL usedDefault = FALSE;
        const int length = WideCharToMultiByte(1252, WC_NO_BEST_FIT_CHARS, &unit, 1, theirs, sizeof theirs, "?", &usedDefault);
        std::string text;
        appendUtf8(text, cp);
        characters.same(utf8ToCp1252(text), std::string(theirs, static_cast<std::size_t>(length)), "U+" + std::to_string(cp));
    }
}

class LanguageLibrary : public ::testing::TestWithParam<const char*> {};

// Every id of the library, read by our reader and by LoadStringA/LoadStringW with the
// 256-character buffer hosts use. Windows may cut a text between the halves of a surrogate
// pair and keep the lone half; our reader cuts before the pair instead.
TEST_P(LanguageLibrary, AnswersAsLoadString) {
    const std::string path = std::string(KESTRIN_FIXTURES) + "/lang/" + GetParam();
    std::ifstream in(path, std::ios::binary);
    std::string error;
    const std::string image{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    const auto ours = PeStringTable::parse(image, &error);
    ASSERT_TRUE(ours) << error;
    const HMODULE module = LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(module, nullptr) << "LoadLibraryExA failed: " << GetLastError();
    Tally tally(GetParam());
    std::size_t found = 0, pairsKept = 0;
    for (UINT id = 0; id <= 0xFFFF; ++id) {
        char narrow[256];
        wchar_t units[256];
        const int narrowLength = LoadStringA(module, id, narrow, 256), unitLength = LoadStringW(module, id, units, 256);
        const auto text = ours->lookup(static_cast<int32_t>(id));
        const std::wstring whole(units, static_cast<std::size_t>(unitLength));
        std::string theirs = narrowOf(CP_UTF8, whole);
        if (text && whole.size() == 255 && whole.back() >= 0xD800 && whole.back() <= 0xDBFF &&
            *text == narrowOf(CP_UTF8, whole.substr(0, 254))) {
            ++pairsKept;
            theirs = *text;
        }
        found += text.has_value();
        tally.same(
            text ? "text " + *text + " / " + narrowOf(CP_ACP, whole).substr(0, 255) : std::string("none"),
            narrowLength > 0 ? "text " + theirs + " / " + std::string(narrow, static_cast<std::size_t>(narrowLength)) : "none",
            "id " + std::to_string(id));
    }
    FreeLibrary(module);
    std::printf("%s: %zu texts, %zu cut inside a surrogate pair\n", GetParam(), found, pairsKept);
    EXPECT_GT(found, 0u);
}

INSTANTIATE_TEST_SUITE_P(Fixtures, LanguageLibrary,
                         ::testing::Values("strings32.dll", "strings64.dll", "standard.dll", "custom.dll"),
                         [](const auto& param) {
                             return std::string(param.param).substr(0, std::string(param.param).find('.'));
                         });

}  // namespace
