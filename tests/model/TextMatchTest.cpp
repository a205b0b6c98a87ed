// Text ordering and case-free matching, seen through the operations that use
// them (and the ordering helper itself for the UTF-16 corner).

#include "Trees.h"

#include <morvane/model/detail/Text.h>

#include <gtest/gtest.h>

using namespace morvane;
using namespace morvane::testing;

// Catches byte-order comparison: UTF-16 puts supplementary characters (as
// surrogates) before U+E000..U+FFFF, while UTF-8 bytes put them after.
TEST(TextMatch, comparison_follows_utf16_code_units) {
    using detail::compareText;
    const std::string privateUse = "\xEE\x80\x80";  // U+E000
    const std::string replacement = "\xEF\xBF\xBD"; // U+FFFD
    const std::string emoji = "\xF0\x9F\x98\x80";   // U+1F600
    const std::string hangul = "\xED\x9E\xA3";      // U+D7A3, below the surrogates
    EXPECT_LT(compareText(emoji, privateUse), 0);
    EXPECT_LT(compareText(emoji, replacement), 0);
    EXPECT_LT(compareText(hangul, emoji), 0);
    EXPECT_GT(compareText(privateUse, emoji), 0);
    // The ordinary cases: a proper prefix first, then code unit by code unit.
    EXPECT_LT(compareText("ab", "abc"), 0);
    EXPECT_LT(compareText("B", "a"), 0);
    EXPECT_LT(compareText("z", "\xC3\xA9"), 0); // z < é
    EXPECT_EQ(compareText(emoji, emoji), 0);

    auto sorted = list({Value(privateUse), Value(emoji), Value("a")})->sortTextTemp(true);
    EXPECT_EQ(textsOf(sorted), (std::vector<std::string>{"a", emoji, privateUse}));
}

// Catches ASCII-only lowercasing: case-free matches must fold any script.
TEST(TextMatch, case_free_matching_lowercases_unicode) {
    auto tree = node({{"ÉTÉ", "summer"}, {"Straße", "street"}, {"ΣΟΦΙΑ", "wisdom"}});
    EXPECT_EQ(tree->valLikeKey("été").textOr(), "summer");
    EXPECT_EQ(tree->valLikeKey("straße").textOr(), "street");
    EXPECT_EQ(tree->valLikeKey("σοφια").textOr(), "wisdom");
    EXPECT_TRUE(tree->isMatch("ÀLA", "àla", true));
    EXPECT_TRUE(tree->isMatch("Grand Café", "CAFÉ", false));
    EXPECT_FALSE(tree->isMatch("Café", "Cafe", true));
    EXPECT_FALSE(tree->isMatch("Drinks", "ink", true));  // exact is the whole key
    EXPECT_FALSE(tree->isMatch("ink", "Drinks", false)); // like looks in the key
    // A non-ASCII key can lowercase to ASCII (the Kelvin sign becomes "k").
    EXPECT_TRUE(tree->isMatch("\u212Aelvin", "kelvin", true));
    EXPECT_TRUE(tree->isMatch("\u212Aelvin", "KEL", false));
}

// Catches an empty needle matching everything ("like" finds it in no text).
TEST(TextMatch, empty_text_is_like_nothing) {
    auto tree = node({{"name", "x"}, {"sub", node({{"a", "b"}})}});
    EXPECT_FALSE(tree->isMatch("name", "", false));
    EXPECT_FALSE(tree->searchDict("", false));
    EXPECT_EQ(tree->searchNode("", false), nullptr);
    EXPECT_EQ(tree->searchContent("name", ""), nullptr);
    EXPECT_TRUE(tree->txtLikeList("")->empty());
}

TEST(TextMatch, invalid_utf8_is_matched_without_crashing) {
    const std::string broken = "Caf\xC3";
    auto tree = node({{broken, "x"}});
    EXPECT_FALSE(tree->valLikeKey("zzz"));
    EXPECT_EQ(tree->valKey(broken).textOr(), "x");
}
