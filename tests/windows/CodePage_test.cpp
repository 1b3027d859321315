#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <string>

#include "Differential.h"
#include "persist/Cp1252.h"
#include "text/UtfConvert.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

constexpr UINT kWindows1252 = 1252;

std::string utf8Of(const std::wstring& units) {
    std::string out(units.size() * 4, '\0');
    out.resize(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, units.data(), static_cast<int>(units.size()),
                                                            out.data(), static_cast<int>(out.size()), nullptr, nullptr)));
    return out;
}

// Every byte reads as Windows' own Windows-1252 table reads it, the five undefined bytes included.
TEST(CodePage, EveryByteDecodesAsWindowsDecodesIt) {
    std::size_t differences = 0;
    for (int b = 0; b < 256; ++b) {
        const char byte = static_cast<char>(b);
        wchar_t unit = 0;
        ASSERT_EQ(MultiByteToWideChar(kWindows1252, 0, &byte, 1, &unit, 1), 1);
        const std::string theirs = utf8Of(std::wstring(1, unit));
        if (cp1252ToUtf8(std::string(1, byte)) != theirs) {
            ++differences;
            ADD_FAILURE() << "byte " << b << ": ours " << ::testing::PrintToString(cp1252ToUtf8(std::string(1, byte)))
                          << ", Windows " << ::testing::PrintToString(theirs);
        }
    }
    printCounts("code page bytes", 256, differences);
}

// Every character of the Basic Multilingual Plane is written as Windows writes it without
// best-fit replacements: the byte of the table, or "?" (a best fit would turn a character
// into a different one that then reads back as something else).
TEST(CodePage, EveryCharacterEncodesAsWindowsEncodesIt) {
    std::size_t cases = 0, differences = 0;
    for (char32_t cp = 1; cp < 0x10000; ++cp) {
        if (cp >= 0xD800 && cp <= 0xDFFF) continue;
        const wchar_t unit = static_cast<wchar_t>(cp);
        char theirs[4] = {};
        BOOL usedDefault = FALSE;
        const int length =
            WideCharToMultiByte(kWindows1252, WC_NO_BEST_FIT_CHARS, &unit, 1, theirs, sizeof theirs, "?", &usedDefault);
        std::string text;
        appendUtf8(text, cp);
        ++cases;
        if (utf8ToCp1252(text) != std::string(theirs, static_cast<std::size_t>(length))) {
            if (++differences <= 20)
                ADD_FAILURE() << "U+" << std::hex << static_cast<unsigned>(cp) << ": ours "
                              << ::testing::PrintToString(utf8ToCp1252(text)) << ", Windows "
                              << ::testing::PrintToString(std::string(theirs, static_cast<std::size_t>(length)));
        }
    }
    printCounts("code page characters", cases, differences);
}

}  // namespace
