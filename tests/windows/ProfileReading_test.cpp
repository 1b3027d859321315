#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "Differential.h"
#include "persist/Cp1252.h"
#include "persist/ProfileDocument.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

using Words = std::vector<std::string>;

const Words kSections = {"Alpha", "alpha", "ALPHA", "Beta", "Two Words", "x", ""};
const Words kKeys = {"key", "Key", "KEY", "k2", "two words", ";c", "", "Num"};
const Words kPads = {"", "", " ", "\t", "  \t ", "\x1a", "\v\f"};
const Words kLineEnds = {"\r\n", "\r\n", "\n", "\r", "\r\r\n", "\n\n\r"};
const Words kValues = {"", "v", "a=b", "x;y", "with space", "\"q\"", "'q'", "\"mix'", "\"", "'", "\"\"",
                       "\" sp \"", "\"a\"b\"", "caf\xe9", "\x80uro \xff", "@#@#\"q\""};

std::string randomText(std::mt19937& rng, std::size_t length, const std::string& alphabet) {
    std::string out;
    for (std::size_t i = 0; i < length; ++i) out += alphabet[rng() % alphabet.size()];
    return out;
}

// Numbers as people and programs write them: blanks, signs, prefixes, overflow, trailing text.
std::string integerText(std::mt19937& rng) {
    std::string out = pick(rng, Words{"", "", " ", "\t", " \t"});
    out += pick(rng, Words{"", "", "+", "-", "--", "- ", "+-"});
    out += pick(rng, Words{"", "", "", "0x", "0X", "0o", "0b", "0", "00"});
    if (chance(rng, 15))
        out += pick(rng, Words{"4294967295", "4294967296", "4294967297", "2147483648", "99999999999999999999"});
    else
        out += randomText(rng, rng() % 12, chance(rng, 70) ? "0123456789" : "0123456789abcdefABCDEFxyz");
    out += pick(rng, Words{"", "", "", "abc", " 5", "e3", ".5", "\xe9"});
    return chance(rng, 10) ? "\"" + out + "\"" : out;
}

std::string value(std::mt19937& rng) {
    const int kind = static_cast<int>(rng() % 10);
    if (kind < 3) return integerText(rng);
    if (kind == 3) {  // around the 1,023 characters a 1,024-character buffer holds
        std::string text = randomText(rng, 1018 + rng() % 12, "abcXYZ \xe4");
        return chance(rng, 30) ? "\"" + text + "\"" : text;
    }
    return pick(rng, kValues);
}

std::string sectionLine(std::mt19937& rng) {
    std::string name = pick(rng, kSections);
    if (chance(rng, 5)) return "[" + name;  // no "]": an ordinary line
    std::string line = pick(rng, kPads) + "[" + pick(rng, kPads) + name + pick(rng, kPads) + "]";
    if (chance(rng, 10)) line += pick(rng, Words{" trailing", "]x", "=v"});
    return line;
}

std::string entryLine(std::mt19937& rng) {
    const std::string key = pick(rng, kPads) + pick(rng, kKeys) + pick(rng, kPads);
    if (chance(rng, 10)) return key;  // no "="
    return key + "=" + pick(rng, kPads) + value(rng) + pick(rng, kPads);
}

std::string profileFile(std::mt19937& rng) {
    std::string out;
    const int lines = 1 + static_cast<int>(rng() % 25);
    for (int i = 0; i < lines; ++i) {
        const int kind = static_cast<int>(rng() % 10);
        if (kind < 3) out += sectionLine(rng);
        else if (kind < 8) out += entryLine(rng);
        else if (kind == 8) out += ";" + pick(rng, kValues);
        else out += pick(rng, kPads);
        if (i + 1 < lines || chance(rng, 80)) out += pick(rng, kLineEnds);
    }
    return out;
}

// A list of names as a caller reads it: up to the first empty name (the double zero that
// ends the buffer the listing calls fill). An entry "=value" lists as an empty name.
std::vector<std::string> untilEmpty(std::vector<std::string> names) {
    names.erase(std::find(names.begin(), names.end(), std::string()), names.end());
    return names;
}

std::vector<std::string> splitList(const std::vector<char>& buffer, DWORD length) {
    std::vector<std::string> out;
    for (DWORD i = 0; i < length;) {
        const std::string item(&buffer[i]);
        out.push_back(cp1252ToUtf8(item));
        i += static_cast<DWORD>(item.size()) + 1;
    }
    return untilEmpty(out);
}

// Wine strips quotes after the cut: a quoted value whose inner text fills the 1,024-character
// buffer exactly (1,023 characters) loses its last character as if it were the closing quote.
// The quotes come off before the cut, so ours keeps all 1,023.
bool isWineQuoteCut(std::optional<std::string_view> raw, const std::string& ours, const std::string& theirs) {
    return raw && stripProfileQuotes(*raw).size() + 2 == raw->size() && utf8Length(*raw) == 1025 &&
           utf8Length(ours) == 1023 && theirs == utf8Prefix(ours, 1022);
}

// The names a lookup may be asked with: every name as written, and padded.
Words queryNames(const Words& names) {
    Words out = names;
    out.push_back(" " + names.front() + "\t");
    return out;
}

TEST(ProfileReading, AnswersAsTheWindowsFunctions) {
    std::mt19937 rng(differentialSeed("profile reading"));
    ScratchFolder folder("kestrin-profile-reading");
    std::size_t cases = 0, differences = 0, wineQuirks = 0;
    const Words defaults = {"def", "def  ", "d\t", ""};
    std::vector<char> buffer(65536);
    for (std::size_t n = 0; n < 2000; ++n) {
        const std::string bytes = profileFile(rng);
        const std::string path = folder.file(n);
        std::ofstream(path, std::ios::binary) << bytes;
        const ProfileDocument doc = ProfileDocument::parse(bytes);
        auto differ = [&](const std::string& what, const auto& ours, const auto& theirs) {
            ++cases;
            if (ours == theirs) return;
            ++differences;
            ADD_FAILURE() << what << ": ours " << ::testing::PrintToString(ours) << ", Windows "
                          << ::testing::PrintToString(theirs) << "\nfile (" << bytes.size()
                          << " bytes): " << ::testing::PrintToString(bytes);
        };
        for (const std::string& section : queryNames(kSections)) {
            if (trimProfileSpace(section).empty()) continue;  // the nameless section is never asked for
            for (const std::string& key : queryNames(kKeys)) {
                if (trimProfileSpace(key).empty()) continue;
                const std::string& def = defaults[rng() % defaults.size()];
                const DWORD length = GetPrivateProfileStringA(section.c_str(), key.c_str(), def.c_str(), buffer.data(),
                                                              1024, path.c_str());
                const std::string ours = doc.getString(section, key, def, 1024);
                const std::string theirs = cp1252ToUtf8(std::string(buffer.data(), length));
                if (isWineQuoteCut(doc.rawValue(section, key), ours, theirs)) {
                    ++wineQuirks;
                    continue;
                }
                differ("[" + section + "] " + key, ours, theirs);
                const auto number = static_cast<int32_t>(GetPrivateProfileIntA(section.c_str(), key.c_str(), 7,
                                                                                path.c_str()));
                differ("int [" + section + "] " + key, doc.getInt(section, key, 7), number);
            }
            // Wine does not trim the section name when it lists keys; Kestrin lists only with
            // the names it wrote, so a padded name is not asked for here.
            if (section != trimProfileSpace(section)) continue;
            const DWORD length = GetPrivateProfileStringA(section.c_str(), nullptr, "", buffer.data(),
                                                          static_cast<DWORD>(buffer.size()), path.c_str());
            differ("keys of [" + section + "]", untilEmpty(doc.keys(section)), splitList(buffer, length));
        }
        // Wine leaves a section headed "[]" out of the listing, as it does the lines before the
        // first header; Kestrin never writes one, so only named sections are compared.
        std::vector<std::string> named = doc.sections();
        std::erase(named, std::string());
        const DWORD length =
            GetPrivateProfileSectionNamesA(buffer.data(), static_cast<DWORD>(buffer.size()), path.c_str());
        differ("sections", named, splitList(buffer, length));
        std::remove(path.c_str());
        if (differences > 20) break;  // enough to see what is wrong
    }
    printCounts("profile reading", cases, differences);
    std::printf("profile reading: %zu quoted values of 1,023 characters that Wine cuts one short\n", wineQuirks);
    EXPECT_EQ(differences, 0u);
}

}  // namespace
