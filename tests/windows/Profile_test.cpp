// Random profile files read by our reader and by GetPrivateProfileString/Int and the listing
// calls, and random writes through our writer and WritePrivateProfileStringA: same answers,
// same bytes.
#include <windows.h>

#include <algorithm>
#include <cstring>

#include "Differential.h"
#include "persist/Cp1252.h"
#include "persist/ProfileDocument.h"
#include "persist/ProfileWriter.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

const Words kSections = {"Alpha", "alpha", "ALPHA", "Beta", "Two Words", "x", ""};
const Words kKeys = {"key", "Key", "KEY", "k2", "two words", ";c", "", "Num"};  // as files hold them
const Words kPads = {"", "", " ", "\t", "  \t ", "\x1a", "\v\f"};
const Words kValues = {"", "v", "a=b", "x;y", "with space", "\"q\"", "'q'", "\"mix'", "\"", "'", "\"\"", "\" sp \"",
                       "\"a\"b\"", "caf\xe9", "\x80uro \xff", "@#@#\"q\"", "[not a section]", "  lead", "@#@#", "12"};

std::string randomText(std::mt19937& rng, std::size_t length, const std::string& alphabet) {
    std::string out;
    while (out.size() < length) out += alphabet[rng() % alphabet.size()];
    return out;
}

// Numbers as people and programs write them: blanks, signs, prefixes, overflow, trailing
// text; and texts around the 1,023 characters a 1,024-character buffer holds.
std::string value(std::mt19937& rng) {
    if (chance(rng, 10)) {
        const std::string text = randomText(rng, 1018 + rng() % 12, "abcXYZ \xe4");
        return chance(rng, 30) ? "\"" + text + "\"" : text;
    }
    if (chance(rng, 60)) return pick(rng, kValues);
    std::string out = pick(rng, {"", "", " ", "\t"}) + pick(rng, {"", "", "+", "-", "--", "- ", "+-"}) +
                      pick(rng, {"", "", "", "0x", "0X", "0o", "0b", "0", "00"});
    out += chance(rng, 15) ? pick(rng, {"4294967295", "4294967296", "4294967297", "2147483648", "99999999999999999999"})
                           : randomText(rng, rng() % 12, chance(rng, 70) ? "0123456789" : "0123456789abcdefABCDEFxyz");
    out += pick(rng, {"", "", "", "abc", " 5", "e3", ".5", "\xe9"});
    return chance(rng, 10) ? "\"" + out + "\"" : out;
}

std::string profileFile(std::mt19937& rng) {
    std::string out;
    for (int i = 0, lines = 1 + static_cast<int>(rng() % 25); i < lines; ++i) {
        const unsigned kind = rng() % 10;
        if (kind < 3 && chance(rng, 5)) out += "[" + pick(rng, kSections);  // no "]": an ordinary line
        else if (kind < 3) out += pick(rng, kPads) + "[" + pick(rng, kPads) + pick(rng, kSections) + pick(rng, kPads) + "]" +
                                  (chance(rng, 10) ? pick(rng, {" trailing", "]x", "=v"}) : "");
        else if (kind < 8) out += pick(rng, kPads) + pick(rng, kKeys) + pick(rng, kPads) +
                                  (chance(rng, 10) ? "" : "=" + pick(rng, kPads) + value(rng) + pick(rng, kPads));
        else out += kind == 8 ? ";" + pick(rng, kValues) : pick(rng, kPads);
        if (i + 1 < lines || chance(rng, 80)) out += pick(rng, {"\r\n", "\r\n", "\n", "\r", "\r\r\n", "\n\n\r"});
    }
    return out;
}

// A listing as a caller reads it: up to the first empty name (the double zero that ends the
// buffer). An entry "=value" lists as an empty name.
Words untilEmpty(Words names) {
    names.erase(std::find(names.begin(), names.end(), std::string()), names.end());
    return names;
}

Words listed(const std::vector<char>& buffer, DWORD length) {
    Words out;
    for (DWORD i = 0; i < length; i += static_cast<DWORD>(std::strlen(&buffer[i])) + 1) out.push_back(cp1252ToUtf8(&buffer[i]));
    return untilEmpty(out);
}

// Every file gets a name of its own, in a folder removed after the test: the profile functions may
// keep a file they read.
std::string caseFile(const TempDir& dir, std::size_t n) { return (dir / (std::to_string(n) + ".ini")).string(); }

TEST(ProfileReading, AnswersAsTheWindowsFunctions) {
    std::mt19937 rng = seeded("profile reading");
    Tally tally("profile reading");
    const TempDir dir;
    std::vector<char> buffer(65536);
    for (std::size_t n = 0; n < 2000 && tally.differences <= 20; ++n) {
        const std::string bytes = profileFile(rng), path = caseFile(dir, n);
        writeBytes(path, bytes);
        const ProfileDocument doc = ProfileDocument::parse(bytes);
        tally.subject = bytes;
        // Every name as written and one padded; the nameless section is never asked for.
        for (const std::string section : {"Alpha", "alpha", "ALPHA", "Beta", "Two Words", "x", " Alpha\t"}) {
            for (const std::string key : {"key", "Key", "KEY", "k2", "two words", ";c", "Num", " key\t"}) {
                const std::string def = pick(rng, {"def", "def  ", "d\t", ""});
                const DWORD length =
                    GetPrivateProfileStringA(section.c_str(), key.c_str(), def.c_str(), buffer.data(), 1024, path.c_str());
                const std::string ours = doc.getString(section, key, def, 1024),
                                  theirs = cp1252ToUtf8(std::string(buffer.data(), length));
                // Wine strips quotes after the cut: a quoted value of exactly 1,023 characters
                // loses its last one as if it were the closing quote. Ours keeps all 1,023.
                const auto raw = doc.rawValue(section, key);
                if (raw && stripProfileQuotes(*raw).size() + 2 == raw->size() && utf8Length(*raw) == 1025 &&
                    utf8Length(ours) == 1023 && theirs == utf8Prefix(ours, 1022))
                    continue;
                tally.same(ours, theirs, "[" + section + "] " + key);
                tally.same(doc.getInt(section, key, 7),
                           static_cast<int32_t>(GetPrivateProfileIntA(section.c_str(), key.c_str(), 7, path.c_str())),
                           "int [" + section + "] " + key);
            }
            // Wine does not trim the section name when it lists keys; Kestrin lists only with
            // the names it wrote, so a padded name is not asked for here.
            if (section[0] == ' ') continue;
            const DWORD length = GetPrivateProfileStringA(section.c_str(), nullptr, "", buffer.data(),
                                                          static_cast<DWORD>(buffer.size()), path.c_str());
            tally.same(untilEmpty(doc.keys(section)), listed(buffer, length), "keys of [" + section + "]");
        }
        // Wine leaves a section headed "[]" out of the listing, as it does the lines before the
        // first header; Kestrin never writes one, so only named sections are compared.
        Words named = doc.sections();
        std::erase(named, std::string());
        const DWORD length = GetPrivateProfileSectionNamesA(buffer.data(), static_cast<DWORD>(buffer.size()), path.c_str());
        tally.same(named, listed(buffer, length), "sections");
    }
}

// Windows-1252 bytes, as a host passes them to the Windows function.
TEST(ProfileWriting, WritesTheBytesOfTheWindowsFunction) {
    std::mt19937 rng = seeded("profile writing");
    Tally tally("profile writing");
    const TempDir dir;
    for (std::size_t n = 0; n < 1000 && tally.differences <= 20; ++n) {
        const std::string path = caseFile(dir, n);
        ProfileWriter ours;
        tally.subject.clear();
        for (int i = 0, count = 1 + static_cast<int>(rng() % 40); i < count; ++i) {
            const std::string section = pick(rng, {"App1", "app1", "APP1", "Second", "Sec 3", "Fourth"});
            const std::string key = pick(rng, {"key1", "KEY1", "Key2", "key 3", "k4", "Num"});
            const std::string value =
                chance(rng, 5) ? std::string(1000 + rng() % 100, static_cast<char>('a' + rng() % 26))
                               : pick(rng, {"v", "", "\"quoted\"", "@#@#\"quoted\"", "'single'", "a=b", "  lead", "x;y",
                                            "caf\xe9", "@#@#", "\"", "[not a section]", "\x80 \xff", "\t tab lead", "12"});
            ours.write(cp1252ToUtf8(section), cp1252ToUtf8(key), cp1252ToUtf8(value));
            ASSERT_TRUE(WritePrivateProfileStringA(section.c_str(), key.c_str(), value.c_str(), path.c_str()));
            tally.subject += "[" + section + "] " + key + "=" + value.substr(0, 20) + "\n";
        }
        tally.same(ours.bytes(), readBytes(path), "the writes");
    }
}

}  // namespace
