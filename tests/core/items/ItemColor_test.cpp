#include <gtest/gtest.h>

#include <set>

#include "items/ItemColor.h"

using namespace kestrin;

TEST(ItemColor, EveryChannelIsLightAndTheColoursVary) {
    std::mt19937 rng(7);
    std::set<int32_t> seen;
    int lowest = 255, highest = 0;
    for (int i = 0; i < 2000; ++i) {
        const int32_t color = randomItemColor(rng);
        EXPECT_EQ(color & ~0xFFFFFF, 0);
        for (int shift : {0, 8, 16}) {
            const int channel = (color >> shift) & 0xFF;
            lowest = std::min(lowest, channel);
            highest = std::max(highest, channel);
        }
        seen.insert(color);
    }
    EXPECT_EQ(lowest, 127);
    EXPECT_EQ(highest, 227);
    EXPECT_GT(seen.size(), 1900u);
}
