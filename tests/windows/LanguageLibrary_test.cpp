#include <gtest/gtest.h>
#include <windows.h>

#include <fstream>
#include <iterator>
#include <string>

#include "Differential.h"
#include "text/PeStringTable.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

std::wstring wide(const std::string& utf8) {
    std::wstring out(utf8.size(), L'\0');
    out.resize(static_cast<std::size_t>(
        MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), out.data(), static_cast<int>(out.size()))));
    return out;
}

std::string ansi(const std::wstring& text) {
    std::string out(text.size() * 2, '\0');
    out.resize(static_cast<std::size_t>(WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                                            out.data(), static_cast<int>(out.size()), nullptr, nullptr)));
    return out;
}

bool isHighSurrogate(wchar_t c) { return c >= 0xD800 && c <= 0xDBFF; }

class LanguageLibrary : public ::testing::TestWithParam<const char*> {};

// Every id of the library, read by our reader and by LoadStringA/LoadStringW with the
// 256-character buffer hosts use. Windows may cut a text between the halves of a surrogate
// pair and keep the lone half; our reader cuts before the pair instead.
TEST_P(LanguageLibrary, AnswersAsLoadString) {
    const std::string path = std::string(KESTRIN_FIXTURES) + "/lang/" + GetParam();
    std::ifstream in(path, std::ios::binary);
    const std::string image{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    std::string error;
    const auto ours = PeStringTable::parse(image, &error);
    ASSERT_TRUE(ours) << error;
    const HMODULE module = LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(module, nullptr) << "LoadLibraryExA failed: " << GetLastError();

    std::size_t cases = 0, found = 0, differences = 0, pairsKept = 0;
    for (UINT id = 0; id <= 0xFFFF; ++id) {
        char narrow[256];
        wchar_t units[256];
        const int narrowLength = LoadStringA(module, id, narrow, 256);
        const int unitLength = LoadStringW(module, id, units, 256);
        const auto text = ours->lookup(static_cast<int32_t>(id));
        ++cases;
        const std::wstring whole(units, static_cast<std::size_t>(unitLength));
        std::wstring theirs = whole;
        const std::wstring mine = text ? wide(*text) : std::wstring();
        if (theirs.size() == 255 && isHighSurrogate(theirs.back()) && mine == theirs.substr(0, 254)) {
            ++pairsKept;
            theirs.pop_back();
        }
        const bool same = (narrowLength > 0) == text.has_value() && mine == theirs &&
                          std::string(narrow, static_cast<std::size_t>(narrowLength)) == ansi(whole).substr(0, 255);
        if (text) ++found;
        if (!same) {
            ++differences;
            ADD_FAILURE() << GetParam() << " id " << id << ": ours " << ::testing::PrintToString(text.value_or("(none)"))
                          << ", LoadStringA " << ::testing::PrintToString(std::string(narrow, narrowLength))
                          << " (" << narrowLength << "), LoadStringW " << unitLength << " units";
        }
    }
    FreeLibrary(module);
    std::printf("%s: %zu ids, %zu texts, %zu cut inside a surrogate pair, %zu differences\n", GetParam(), cases, found,
                pairsKept, differences);
    EXPECT_GT(found, 0u);
    EXPECT_EQ(differences, 0u);
}

INSTANTIATE_TEST_SUITE_P(Fixtures, LanguageLibrary,
                         ::testing::Values("strings32.dll", "strings64.dll", "standard.dll", "custom.dll"),
                         [](const auto& param) {
                             std::string name = param.param;
                             return name.substr(0, name.find('.'));
                         });

}  // namespace
