#include <morvane/model/List.h>
#include <morvane/sys/Log.h>
#include <morvane/util/Txt.h>

#include <gtest/gtest.h>

#include <string>

using morvane::Txt;

namespace {

// The split family disagrees only on which piece it keeps; a slip between
// "first" and "last" occurrence, or overlapping matches, shows up here.
TEST(Txt, split_family_keeps_the_right_piece) {
    EXPECT_EQ(Txt::splitBy("a-b-c", "-"), "c");
    EXPECT_EQ(Txt::splitLastBy("a-b-c", "-"), "c");
    EXPECT_EQ(Txt::prefix("a-b-c", "-"), "a");
    EXPECT_EQ(Txt::DELsplitBy("a-b-c", "-"), "b-c");

    EXPECT_EQ(Txt::splitBy("abc", "-"), "abc");
    EXPECT_EQ(Txt::prefix("abc", "-"), "abc");
    EXPECT_EQ(Txt::DELsplitBy("abc", "-"), "abc");

    // A trailing separator leaves an empty last piece.
    EXPECT_EQ(Txt::splitBy("a-b-", "-"), "");
    // Leading empty pieces after the first separator are not kept.
    EXPECT_EQ(Txt::DELsplitBy("a--b", "-"), "b");
    EXPECT_EQ(Txt::DELsplitBy("a-b--c", "-"), "b--c");
    // Pieces are found from the start without overlap: "aaa" by "aa" is "", "a".
    EXPECT_EQ(Txt::splitBy("aaa", "aa"), "a");
    EXPECT_EQ(Txt::splitBy("x::y::z", "::"), "z");
    EXPECT_EQ(Txt::prefix("x::y::z", "::"), "x");
}

TEST(Txt, empty_texts_and_separators_split_nothing) {
    EXPECT_EQ(Txt::splitBy("", "-"), "");
    EXPECT_EQ(Txt::prefix("", "-"), "");
    EXPECT_EQ(Txt::DELsplitBy("", "-"), "");
    EXPECT_EQ(Txt::splitBy("a-b", ""), "a-b");
    EXPECT_EQ(Txt::prefix("a-b", ""), "a-b");
    EXPECT_EQ(Txt::DELsplitBy("a-b", ""), "a-b");
    EXPECT_EQ(Txt::cap("new york", ""), "New York");
    EXPECT_EQ(Txt::splitBy("-", "-"), "");
    EXPECT_EQ(Txt::DELsplitBy("-", "-"), "");
}

TEST(Txt, separators_outside_the_basic_plane_split_whole_characters) {
    // "🛫" is a surrogate pair; splitting must not cut it or mistake one half
    // of another pair for it.
    EXPECT_EQ(Txt::splitBy("Tokyo🛫Osaka🛫Nagoya", "🛫"), "Nagoya");
    EXPECT_EQ(Txt::prefix("Tokyo🛫Osaka", "🛫"), "Tokyo");
    EXPECT_EQ(Txt::splitBy("a😀b", "🛫"), "a😀b");
}

TEST(Txt, toPrice_keeps_digits_and_points_in_order) {
    EXPECT_EQ(Txt::toPrice("$12.50 USD"), "12.50");
    EXPECT_EQ(Txt::toPrice("free"), "");
    EXPECT_EQ(Txt::toPrice(""), "");
    // Full-width and Arabic-Indic digits are not the characters "0"-"9".
    EXPECT_EQ(Txt::toPrice("１２٣4"), "4");
    EXPECT_EQ(Txt::acceptOnly("1,234.5€"), "1234.5");
}

TEST(Txt, charOK_accepts_exactly_one_price_character) {
    EXPECT_TRUE(Txt::charOK("7"));
    EXPECT_TRUE(Txt::charOK("."));
    EXPECT_FALSE(Txt::charOK(""));
    EXPECT_FALSE(Txt::charOK("77"));
    EXPECT_FALSE(Txt::charOK(","));
    EXPECT_FALSE(Txt::charOK("٣"));
}

TEST(Txt, removeParen_removes_only_groups_with_content) {
    EXPECT_EQ(Txt::removeParen("Tokyo (Haneda)"), "Tokyo ");
    EXPECT_EQ(Txt::removeParen("Tokyo ()"), "Tokyo ()");
    EXPECT_EQ(Txt::removeParen("a(b)c(d)e"), "ace");
    // The group ends at the first ")" so nesting leaves the outer tail.
    EXPECT_EQ(Txt::removeParen("x((y))z"), "x)z");
    EXPECT_EQ(Txt::removeParen("open (never closed"), "open (never closed");
    EXPECT_EQ(Txt::removeParen("(東京)駅"), "駅");
    EXPECT_EQ(Txt::removeParen(""), "");
}

TEST(Txt, trim_removes_white_space_and_breaks_at_both_ends_only) {
    EXPECT_EQ(Txt::trim("  a b \n"), "a b");
    EXPECT_EQ(Txt::trim("\t\r\n"), "");
    EXPECT_EQ(Txt::trim(""), "");
    EXPECT_EQ(Txt::trim("x"), "x");
    // No-break space, ideographic space and the line separator count as blanks.
    EXPECT_EQ(Txt::trim("\u00A0\u3000Kyoto\u2028"), "Kyoto");
    // A combining mark at the edge is not white space.
    EXPECT_EQ(Txt::trim(" e\u0301 "), "e\u0301");
}

TEST(Txt, cap_title_cases_each_piece_and_rejoins) {
    EXPECT_EQ(Txt::cap("new york", " "), "New York");
    EXPECT_EQ(Txt::cap("SAN FRANCISCO", " "), "San Francisco");
    EXPECT_EQ(Txt::cap("tokyo-haneda", "-"), "Tokyo-Haneda");
    // An empty first piece drops the separator after it; later empty pieces keep theirs.
    EXPECT_EQ(Txt::cap("-abc", "-"), "Abc");
    EXPECT_EQ(Txt::cap("a--b", "-"), "A--B");
    EXPECT_EQ(Txt::cap("", " "), "");
    EXPECT_EQ(Txt::cap("é", " "), "É");
    // Titlecasing is per word even inside a piece, and Unicode-aware.
    EXPECT_EQ(Txt::cap("élan vital", "-"), "Élan Vital");
    EXPECT_EQ(Txt::cap("ǆungla", " "), "ǅungla");
    // The root locale: "i" becomes "I", not the Turkish dotted capital.
    EXPECT_EQ(Txt::cap("istanbul", " "), "Istanbul");
}

TEST(Txt, attach_builds_lower_case_paths_without_trimming) {
    EXPECT_EQ(Txt::attach("1-Japan", "2-Tokyo (Haneda)"), "japan/tokyo_");
    EXPECT_EQ(Txt::attach("Japan", "Osaka"), "japan/osaka");
    EXPECT_EQ(Txt::attach("", ""), "/");
    EXPECT_EQ(Txt::attach("1-Île de France", "2-Orly"), "île_de_france/orly");
}

TEST(Txt, attachArray_appends_extensions_and_trims) {
    EXPECT_EQ(Txt::attachArray("World", {"THA", "1-Bangkok", ".jpg"}), "world/tha/bangkok.jpg");
    EXPECT_EQ(Txt::attachArray("World", {"THA", "2-Central (old town)", ".jpg"}), "world/tha/central_.jpg");
    EXPECT_EQ(Txt::attachArray("World", std::vector<std::string>{}), "world");
    // The trim happens after the group is removed, before blanks turn into "_".
    EXPECT_EQ(Txt::attachArray(" World", {"(x)"}), "world/");

    auto list = morvane::List::make({"THA", 3, "1-Bangkok", ".png"});
    EXPECT_EQ(Txt::attachArray("World", list), "world/tha/bangkok.png");
    EXPECT_EQ(Txt::attachArray("World", morvane::ListPtr{}), "world");
}

TEST(Txt, flightFormat_splits_airline_and_number_as_typed) {
    EXPECT_EQ(Txt::flightFormat("as1144"), "AS 1144");
    EXPECT_EQ(Txt::flightFormat("a s 11"), "AS 11");
    EXPECT_EQ(Txt::flightFormat("a"), "A");
    EXPECT_EQ(Txt::flightFormat("as"), "AS");
    EXPECT_EQ(Txt::flightFormat("as1"), "AS 1");
    EXPECT_EQ(Txt::flightFormat(""), "");
    EXPECT_EQ(Txt::flightFormat("   "), "");
    // Reformatting its own output changes nothing (it runs on every keystroke).
    EXPECT_EQ(Txt::flightFormat(Txt::flightFormat("ua 90x")), "UA 90X");
}

TEST(Txt, flightFormat_counts_utf16_units) {
    // A character outside the basic plane takes two units: the airline part is
    // that one character and the number starts after it.
    EXPECT_EQ(Txt::flightFormat("😀12"), "😀 12");
    // A cut through a pair leaves replacement characters, never a bad byte.
    EXPECT_EQ(Txt::flightFormat("a😀1"), "A\uFFFD \uFFFD1");
}

TEST(Txt, phoneFormat_groups_three_three_four) {
    EXPECT_EQ(Txt::phoneFormat("1234567890"), "123 456-7890");
    EXPECT_EQ(Txt::phoneFormat("12345"), "123 45");
    EXPECT_EQ(Txt::phoneFormat("(123) 456"), "123 456");
    EXPECT_EQ(Txt::phoneFormat("123456789012"), "123 456-7890");
    EXPECT_EQ(Txt::phoneFormat("1234567"), "123 456-7");
    EXPECT_EQ(Txt::phoneFormat("12"), "12");
    EXPECT_EQ(Txt::phoneFormat("call me"), "");
    EXPECT_EQ(Txt::phoneFormat("1.2.3.4"), "1.2 .3.-4");
}

TEST(Txt, acceptChr_clips_positions_to_the_text) {
    EXPECT_EQ(Txt::acceptChr("abcdef", 1, 3), "bcd");
    EXPECT_EQ(Txt::acceptChr("abcdef", 4, 100), "ef");
    EXPECT_EQ(Txt::acceptChr("abcdef", -5, 0), "a");
    EXPECT_EQ(Txt::acceptChr("abcdef", 3, 2), "");
    EXPECT_EQ(Txt::acceptChr("abcdef", 6, 9), "");
    EXPECT_EQ(Txt::acceptChr("", 0, 0), "");
    EXPECT_EQ(Txt::acceptChr("x", INT64_MIN, INT64_MAX), "x");
    // Positions are UTF-16 units: "é" precomposed is one, "e"+U+0301 is two.
    EXPECT_EQ(Txt::acceptChr("\u00e9x", 1, 1), "x");
    EXPECT_EQ(Txt::acceptChr("e\u0301x", 2, 2), "x");
    EXPECT_EQ(Txt::acceptChr("😀x", 2, 2), "x");
}

TEST(Txt, ill_formed_utf8_is_replaced_never_passed_on) {
    const std::string bad = "ab\xff\xc3(c)\xe2\x82";
    EXPECT_EQ(Txt::removeParen(bad), "ab\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(Txt::prefix(bad, "("), "ab\uFFFD\uFFFD");
    // An ill-formed separator is U+FFFD too, and matches the replaced bytes.
    EXPECT_EQ(Txt::prefix(bad, "\xff"), "ab");
    EXPECT_EQ(Txt::toPrice("1\xff"
                           "2"),
              "12");
    EXPECT_EQ(Txt::cap("\xc0x", " "), "\uFFFDX");
    EXPECT_EQ(Txt::trim(" \xff "), "\uFFFD");
}

TEST(Txt, attachURL_joins_the_base_address_with_one_slash) {
    Txt::setRealtimeBase("https://example-db.invalid/");
    EXPECT_EQ(Txt::realtimeBase(), "https://example-db.invalid");
    EXPECT_EQ(Txt::attachURL("menu/items"), "https://example-db.invalid/menu/items");
    Txt::setRealtimeBase("https://example-db.invalid//");
    EXPECT_EQ(Txt::attachURL(""), "https://example-db.invalid/");
}

TEST(Txt, debug_lines_carry_tag_file_and_line) {
    using morvane::sys::Log;
    Log::Capture capture;
    Txt::println("hello", std::nullopt, "/src/app/menu.m", 42);
    Txt::println("x", "TAG", std::nullopt, -1);
    Txt::println("y", "", "menu.m", 7);
    Txt::printIt("hello", "/src/app/menu.m", 42);
    Txt::printIt("bad\xff", "", 0);
    EXPECT_EQ(capture.texts(Log::Channel::StandardError),
              (std::vector<std::string>{"-zd menu.m@42: hello\n", "TAG @-1: x\n", " menu.m@7: y\n"}));
    EXPECT_EQ(capture.texts(Log::Channel::Platform),
              (std::vector<std::string>{"zed menu.m:42>hello", "zed :0>bad\uFFFD"}));
}

} // namespace
