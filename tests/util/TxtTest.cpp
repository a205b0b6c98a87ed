// The text helpers: splitting, prices, brackets, blanks, title case, storage
// paths and addresses, the typing formatters, UTF-16 positions, ill-formed
// UTF-8 and the debug lines.
#include <morvane/model/List.h>
#include <morvane/sys/Log.h>
#include <morvane/util/Txt.h>

#include <gtest/gtest.h>

#include <string>

using morvane::Txt;

namespace {

// The split family differs only in which piece it keeps; a slip between first
// and last occurrence, overlapping matches or an empty separator shows here.
TEST(Txt, split_family_keeps_the_right_piece) {
    EXPECT_EQ(Txt::splitBy("a-b-c", "-"), "c");
    EXPECT_EQ(Txt::splitLastBy("a-b-c", "-"), "c");
    EXPECT_EQ(Txt::prefix("a-b-c", "-"), "a");
    EXPECT_EQ(Txt::DELsplitBy("a-b-c", "-"), "b-c");
    for (const char* separator : {"-", ""}) {
        EXPECT_EQ(Txt::splitBy("abc", separator), "abc");
        EXPECT_EQ(Txt::prefix("abc", separator), "abc");
        EXPECT_EQ(Txt::DELsplitBy("abc", separator), "abc");
        EXPECT_EQ(Txt::DELsplitBy("", separator), "");
    }
    EXPECT_EQ(Txt::splitBy("a-b-", "-"), "");
    EXPECT_EQ(Txt::DELsplitBy("a--b", "-"), "b"); // empty pieces after the first cut are dropped
    EXPECT_EQ(Txt::DELsplitBy("a-b--c", "-"), "b--c");
    EXPECT_EQ(Txt::splitBy("aaa", "aa"), "a"); // from the start, no overlap: "", "a"
    EXPECT_EQ(Txt::prefix("x::y::z", "::"), "x");
    // A surrogate-pair separator matches whole characters only.
    EXPECT_EQ(Txt::splitBy("Tokyo🛫Osaka🛫Nagoya", "🛫"), "Nagoya");
    EXPECT_EQ(Txt::splitBy("a😀b", "🛫"), "a😀b");
}

TEST(Txt, price_characters_are_ascii_digits_and_points) {
    EXPECT_EQ(Txt::toPrice("$12.50 USD"), "12.50");
    EXPECT_EQ(Txt::toPrice("free"), "");
    EXPECT_EQ(Txt::toPrice("１２٣4"), "4"); // full-width and Arabic-Indic digits are not "0"-"9"
    EXPECT_EQ(Txt::acceptOnly("1,234.5€"), "1234.5");
    EXPECT_TRUE(Txt::charOK("."));
    EXPECT_FALSE(Txt::charOK(""));
    EXPECT_FALSE(Txt::charOK("77"));
    EXPECT_FALSE(Txt::charOK("٣"));
}

TEST(Txt, removeParen_removes_only_groups_with_content) {
    EXPECT_EQ(Txt::removeParen("Tokyo (Haneda)"), "Tokyo ");
    EXPECT_EQ(Txt::removeParen("Tokyo ()"), "Tokyo ()");
    EXPECT_EQ(Txt::removeParen("a(b)c(d)e"), "ace");
    EXPECT_EQ(Txt::removeParen("x((y))z"), "x)z"); // a group ends at the first ")"
    EXPECT_EQ(Txt::removeParen("open (never closed"), "open (never closed");
    EXPECT_EQ(Txt::removeParen("(東京)駅"), "駅");
    EXPECT_EQ(Txt::removeParen("(a) b (c"), " b (c");
    // Many "(" without a ")" after them must not take quadratic time.
    const std::string opens(200000, '(');
    EXPECT_EQ(Txt::removeParen("(x)" + opens), opens);
}

TEST(Txt, trim_removes_unicode_blanks_at_both_ends_only) {
    EXPECT_EQ(Txt::trim("  a b \n"), "a b");
    EXPECT_EQ(Txt::trim("\t\r\n"), "");
    EXPECT_EQ(Txt::trim("\u00A0\u3000Kyoto\u2028"), "Kyoto");
    EXPECT_EQ(Txt::trim(" e\u0301 "), "e\u0301"); // a combining mark is not a blank
}

TEST(Txt, cap_title_cases_each_piece_and_rejoins) {
    EXPECT_EQ(Txt::cap("SAN FRANCISCO", " "), "San Francisco");
    EXPECT_EQ(Txt::cap("tokyo-haneda", "-"), "Tokyo-Haneda");
    EXPECT_EQ(Txt::cap("new york", ""), "New York");
    // An empty first piece drops the separator after it; later ones keep theirs.
    EXPECT_EQ(Txt::cap("-abc", "-"), "Abc");
    EXPECT_EQ(Txt::cap("a--b", "-"), "A--B");
    // Unicode words: accents, the titlecase digraph, and no Turkish dotted I.
    EXPECT_EQ(Txt::cap("élan vital", "-"), "Élan Vital");
    EXPECT_EQ(Txt::cap("ǆungla", " "), "ǅungla");
    EXPECT_EQ(Txt::cap("istanbul", " "), "Istanbul");
}

// Storage paths are lower-case labels; an address joins the base with one slash.
TEST(Txt, storage_paths_are_lower_case_labels) {
    EXPECT_EQ(Txt::attach("1-Japan", "2-Tokyo (Haneda)"), "japan/tokyo_"); // no trim
    EXPECT_EQ(Txt::attach("1-Île de France", "2-Orly"), "île_de_france/orly");
    EXPECT_EQ(Txt::attachArray("World", {"THA", "1-Bangkok", ".jpg"}), "world/tha/bangkok.jpg");
    EXPECT_EQ(Txt::attachArray("World", {"THA", "2-Central (old town)", ".jpg"}), "world/tha/central_.jpg");
    EXPECT_EQ(Txt::attachArray(" World", {"(x)"}), "world/"); // trimmed before blanks turn into "_"
    EXPECT_EQ(Txt::attachArray("World", morvane::List::make({"THA", 3, ".png"})), "world/tha.png");
    EXPECT_EQ(Txt::attachArray("World", morvane::ListPtr{}), "world");
    Txt::setRealtimeBase("https://example-db.invalid//");
    EXPECT_EQ(Txt::attachURL("menu/items"), "https://example-db.invalid/menu/items");
}

TEST(Txt, flightFormat_splits_airline_and_number_as_typed) {
    EXPECT_EQ(Txt::flightFormat("as1144"), "AS 1144");
    EXPECT_EQ(Txt::flightFormat("a s 11"), "AS 11");
    EXPECT_EQ(Txt::flightFormat("as"), "AS");
    EXPECT_EQ(Txt::flightFormat("   "), "");
    // It runs on every keystroke, so its own output must come back unchanged.
    EXPECT_EQ(Txt::flightFormat(Txt::flightFormat("ua 90x")), "UA 90X");
    // Positions are UTF-16 units: an emoji is the whole airline part, and a cut
    // through one leaves replacement characters, never a broken byte sequence.
    EXPECT_EQ(Txt::flightFormat("😀12"), "😀 12");
    EXPECT_EQ(Txt::flightFormat("a😀1"), "A\uFFFD \uFFFD1");
}

TEST(Txt, phoneFormat_groups_three_three_four) {
    EXPECT_EQ(Txt::phoneFormat("1234567890"), "123 456-7890");
    EXPECT_EQ(Txt::phoneFormat("12345"), "123 45");
    EXPECT_EQ(Txt::phoneFormat("(123) 456"), "123 456");
    EXPECT_EQ(Txt::phoneFormat("123456789012"), "123 456-7890");
    EXPECT_EQ(Txt::phoneFormat("call me"), "");
    EXPECT_EQ(Txt::phoneFormat("1.2.3.4"), "1.2 .3.-4");
}

TEST(Txt, acceptChr_clips_positions_and_counts_utf16_units) {
    EXPECT_EQ(Txt::acceptChr("abcdef", 1, 3), "bcd");
    EXPECT_EQ(Txt::acceptChr("abcdef", 4, 100), "ef");
    EXPECT_EQ(Txt::acceptChr("abcdef", -5, 0), "a");
    EXPECT_EQ(Txt::acceptChr("abcdef", 3, 2), "");
    EXPECT_EQ(Txt::acceptChr("", 0, 0), "");
    EXPECT_EQ(Txt::acceptChr("x", INT64_MIN, INT64_MAX), "x");
    EXPECT_EQ(Txt::acceptChr("e\u0301x", 2, 2), "x");
    EXPECT_EQ(Txt::acceptChr("😀x", 2, 2), "x");
}

TEST(Txt, ill_formed_utf8_is_replaced_never_passed_on) {
    const std::string bad = "ab\xff\xc3(c)\xe2\x82";
    EXPECT_EQ(Txt::removeParen(bad), "ab\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(Txt::prefix(bad, "\xff"), "ab"); // the separator is replaced alike
    EXPECT_EQ(Txt::cap("\xc0x", " "), "\uFFFDX");
    EXPECT_EQ(Txt::trim(" \xff "), "\uFFFD");
}

TEST(Txt, debug_lines_carry_tag_file_and_line) {
    using morvane::sys::Log;
    Log::Capture capture;
    Txt::println("hello", std::nullopt, "/src/app/menu.m", 42);
    Txt::println("x", "TAG", std::nullopt, -1);
    Txt::printIt("hello", "/src/app/menu.m", 42);
    EXPECT_EQ(capture.texts(Log::Channel::StandardError),
              (std::vector<std::string>{"-zd menu.m@42: hello\n", "TAG @-1: x\n"}));
    EXPECT_EQ(capture.texts(Log::Channel::Platform), (std::vector<std::string>{"zed menu.m:42>hello"}));
}

} // namespace
