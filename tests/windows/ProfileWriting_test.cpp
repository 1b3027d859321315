#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "Differential.h"
#include "persist/Cp1252.h"
#include "persist/ProfileWriter.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

using Words = std::vector<std::string>;

// Windows-1252 bytes, as a host would pass them to the Windows function.
const Words kSections = {"App1", "app1", "APP1", "Second", "Sec 3", "Fourth"};
const Words kKeys = {"key1", "KEY1", "Key2", "key 3", "k4", "Num"};
const Words kValues = {"v",          "",          "\"quoted\"", "@#@#\"quoted\"", "'single'", "a=b",
                       "  lead",     "x;y",       "caf\xe9",    "@#@#",           "\"",        "[not a section]",
                       "\x80 \xff",  "\t tab lead", "12"};

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string randomValue(std::mt19937& rng) {
    if (!chance(rng, 5)) return pick(rng, kValues);
    return std::string(1000 + rng() % 100, static_cast<char>('a' + rng() % 26));
}

TEST(ProfileWriting, WritesTheBytesOfTheWindowsFunction) {
    std::mt19937 rng(differentialSeed("profile writing"));
    ScratchFolder folder("kestrin-profile-writing");
    std::size_t cases = 0, differences = 0, writes = 0;
    for (std::size_t n = 0; n < 1000 && differences <= 20; ++n) {
        const std::string path = folder.file(n);
        ProfileWriter ours;
        std::string calls;
        const int count = 1 + static_cast<int>(rng() % 40);
        for (int i = 0; i < count; ++i) {
            const std::string& section = pick(rng, kSections);
            const std::string& key = pick(rng, kKeys);
            const std::string value = randomValue(rng);
            ours.write(cp1252ToUtf8(section), cp1252ToUtf8(key), cp1252ToUtf8(value));
            ASSERT_TRUE(WritePrivateProfileStringA(section.c_str(), key.c_str(), value.c_str(), path.c_str()));
            calls += "[" + section + "] " + key + "=" + value.substr(0, 20) + "\n";
            ++writes;
        }
        ++cases;
        const std::string theirs = readFile(path);
        if (ours.bytes() != theirs) {
            ++differences;
            ADD_FAILURE() << "ours:\n" << ::testing::PrintToString(ours.bytes()) << "\nWindows:\n"
                          << ::testing::PrintToString(theirs) << "\nwrites:\n" << calls;
        }
        std::remove(path.c_str());
    }
    std::printf("profile writing: %zu single writes\n", writes);
    printCounts("profile writing", cases, differences);
    EXPECT_EQ(differences, 0u);
}

}  // namespace
