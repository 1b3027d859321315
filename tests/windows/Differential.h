#pragma once
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "support/TestSupport.h"

namespace kestrin::test {

using Words = std::vector<std::string>;

// A random generator seeded with KESTRIN_SEED when set, else a fresh seed; printed so a run
// can be repeated.
inline std::mt19937 seeded(const char* what) {
    const char* given = std::getenv("KESTRIN_SEED");
    const uint32_t seed = given ? static_cast<uint32_t>(std::strtoul(given, nullptr, 10)) : std::random_device{}();
    std::printf("%s: seed %u (KESTRIN_SEED=%u repeats it)\n", what, seed, seed);
    return std::mt19937(seed);
}

inline const std::string& pick(std::mt19937& rng, const Words& items) { return items[rng() % items.size()]; }
inline bool chance(std::mt19937& rng, unsigned percent) { return rng() % 100 < percent; }

// Counts what a differential test compares with Windows; reports the first differences and,
// at the end, the counts, and fails unless there was none.
struct Tally {
    explicit Tally(const char* name) : what(name) {}
    const char* what;
    std::string subject;  // the input of the current case, shown with its differences
    std::size_t cases = 0, differences = 0;

    template <class Ours, class Theirs>
    void same(const Ours& ours, const Theirs& theirs, const std::string& context) {
        ++cases;
        if (!(ours == theirs) && ++differences <= 20)
            ADD_FAILURE() << what << ", " << context << ": ours " << ::testing::PrintToString(ours) << ", Windows "
                          << ::testing::PrintToString(theirs) << "\nin " << ::testing::PrintToString(subject);
    }
    ~Tally() {
        std::printf("%s: %zu cases, %zu differences\n", what, cases, differences);
        EXPECT_EQ(differences, 0u) << what;
    }
};

}  // namespace kestrin::test
