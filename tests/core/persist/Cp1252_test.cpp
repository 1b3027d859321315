// The files' code page: every byte survives the trip to UTF-8 and back, and what the code page
// cannot hold is written as "?", one for each character or broken byte.
#include "persist/Cp1252.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(Cp1252, EveryByteComesBackFromUtf8) {
    for (int b = 0; b < 256; ++b) {
        const std::string byte(1, static_cast<char>(b));
        EXPECT_EQ(utf8ToCp1252(cp1252ToUtf8(byte)), byte) << b;
    }
}

TEST(Cp1252, WhatTheCodePageCannotHoldBecomesQuestionMarks) {
    const std::pair<std::string, std::string> cases[] = {
        {"\xE2\x82\xAC 5", "\x80 5"},           // the euro sign has a byte of its own
        {"\xE6\x97\xA5", "?"},                  // one character, one mark
        {"\xF4\x8F\xBF\xBF", "?"},              // the last code point
        {"\xF4\x90\x80\x80", "????"},           // beyond it: four broken bytes
        {"\xED\xA0\x80", "???"},                // a surrogate half
        {"\xC0\xAF", "??"},                     // an overlong form
        {"a\xE2\x82", "a??"},                   // cut short
    };
    for (const auto& [utf8, bytes] : cases) EXPECT_EQ(utf8ToCp1252(utf8), bytes);
}

}  // namespace
}  // namespace kestrin
