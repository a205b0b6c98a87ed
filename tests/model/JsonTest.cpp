#include "Programs.h"

#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>

using namespace morvane;
using morvane::test::readFile;

namespace {

std::string roundTrip(std::string_view text, json::Layout layout = json::Layout::Compact) {
    auto result = json::read(text);
    EXPECT_TRUE(result) << text << ": " << (result.error ? result.error->describe() : "");
    return json::write(result.value, layout);
}

std::string errorOf(std::string_view text, const json::ReadOptions& options = {}) {
    auto result = json::read(text, options);
    EXPECT_FALSE(result) << text;
    EXPECT_TRUE(result.value.isAbsent());
    return result.error ? result.error->message : "";
}

} // namespace

TEST(Json, compact_text_round_trips_unchanged) {
    // Order of keys, integers without fraction, booleans, null, nested empties.
    for (const char* text : {R"({"b":1,"a":[true,false,null],"c":{"d":"x","e":[]},"f":{}})",
                             R"([1,-2,0.5,1e+300])", R"("t\"\\\n\u0001")", "3", "null", "[]"})
        EXPECT_EQ(roundTrip(text), text);
}

TEST(Json, reading_builds_nodes_lists_remembers_booleans_and_can_freeze) {
    auto root = json::parseNode(R"({"n":2,"t":"x","b":true,"z":null,"l":[{"k":"v"}]})");
    ASSERT_TRUE(root);
    EXPECT_EQ(root->get("n").number(), 2);
    EXPECT_FALSE(root->get("n").isBool());
    EXPECT_TRUE(root->get("b").isBool());
    EXPECT_TRUE(root->get("z").isNull());
    EXPECT_EQ(root->get("t"), Value("x"));
    ASSERT_TRUE(root->get("l").isList());
    EXPECT_EQ(root->get("l").list()->at(0).node()->get("k"), Value("v"));
    EXPECT_FALSE(root->isReadOnly());
    EXPECT_EQ(json::parseNode("[1]"), nullptr); // not an object

    // Read-only containers carry the flag at every level.
    json::ReadOptions options;
    options.containers = json::Containers::ReadOnly;
    auto frozen = json::parseNode(R"({"a":{"b":[{"c":"d"}]}})", options);
    ASSERT_TRUE(frozen);
    auto inner = frozen->get("a").node();
    for (bool readOnly : {frozen->isReadOnly(), inner->isReadOnly(), inner->get("b").list()->isReadOnly(),
                          inner->get("b").list()->at(0).node()->isReadOnly()})
        EXPECT_TRUE(readOnly);
    EXPECT_FALSE(frozen->set("x", "y"));
}

TEST(Json, duplicate_keys_keep_the_last_value_at_the_first_position) {
    EXPECT_EQ(roundTrip(R"({"a":1,"b":2,"a":3})"), R"({"a":3,"b":2})");
    // The same through the hash index of a large object.
    std::string text = "{";
    for (int i = 0; i < 40; ++i)
        text += "\"k" + std::to_string(i) + "\":" + std::to_string(i) + ",";
    text += "\"k5\":\"again\"}";
    auto node = json::parseNode(text);
    ASSERT_TRUE(node);
    EXPECT_EQ(node->size(), 40u);
    EXPECT_EQ(node->entries()[5].first, "k5");
    EXPECT_EQ(node->get("k5"), Value("again"));
}

TEST(Json, numbers_keep_their_value) {
    // Exact doubles that need all 17 digits, huge integers, tiny numbers.
    for (const char* text : {"[0.1,0.30000000000000004,2.2250738585072014e-308,5e-324,123456789012345680000]",
                             "[9007199254740993,18446744073709551615,-9223372036854775808]"}) {
        auto list = json::parse(text).list();
        ASSERT_TRUE(list) << text;
        auto back = json::parse(json::write(Value(list))).list();
        ASSERT_TRUE(back);
        for (std::size_t i = 0; i < list->size(); ++i)
            EXPECT_EQ(back->at(i).number(), list->at(i).number()) << text << " #" << i;
    }
    EXPECT_EQ(json::parse("[0.1]").list()->at(0).number(), 0.1);
    // Integers beyond 64 bits are read as the nearest double.
    EXPECT_EQ(json::parse("123456789012345678901234567890").number(), 123456789012345678901234567890.0);
    EXPECT_EQ(roundTrip("[100,-7,4.0]"), "[100,-7,4]");
    EXPECT_EQ(errorOf("[1e400]").empty(), false); // too big for a double: refused, not infinity
}

TEST(Json, writer_skips_absent_and_writes_null_for_what_json_cannot_hold) {
    auto node = Node::make();
    node->set("inf", std::numeric_limits<double>::infinity());
    node->set("nan", std::nan(""));
    node->set("obj", Value::object(42));
    node->set("t", "ok");
    auto list = List::make({Value(), Value::object(1), Value(true)});
    node->set("l", list);
    EXPECT_EQ(json::write(Value(node)),
              R"({"inf":null,"nan":null,"obj":null,"t":"ok","l":[null,null,true]})");
    EXPECT_EQ(json::write(Value()), "null");
}

TEST(Json, writer_escapes_control_characters_and_repairs_invalid_utf8) {
    EXPECT_EQ(json::write(Value(std::string("a\x01\x1f\t\b\f\r\"\\", 9))), R"("a\u0001\u001f\t\b\f\r\"\\")");
    EXPECT_EQ(json::write(Value(std::string("\0x", 2))), R"("\u0000x")");
    // Stray continuation byte, truncated sequence, encoded surrogate, overlong '/'.
    EXPECT_EQ(json::write(Value("a\x80z\xE2\x82")), "\"a\xEF\xBF\xBDz\xEF\xBF\xBD\xEF\xBF\xBD\"");
    EXPECT_EQ(json::write(Value("\xED\xA0\x80|\xC0\xAF")),
              "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD|\xEF\xBF\xBD\xEF\xBF\xBD\"");
    // Valid multi-byte text passes untouched.
    EXPECT_EQ(json::write(Value("é€😀")), "\"é€😀\"");
    EXPECT_TRUE(json::read(json::write(Value("bad\xFF"))));
}

TEST(Json, pretty_layout_indents_and_reads_back_the_same_tree) {
    const char* text = R"({"a":[1,{"b":"c"}],"e":{},"f":[]})";
    const std::string pretty = roundTrip(text, json::Layout::Pretty);
    EXPECT_EQ(pretty,
              "{\n  \"a\": [\n    1,\n    {\n      \"b\": \"c\"\n    }\n  ],\n  \"e\": {},\n  \"f\": []\n}");
    EXPECT_EQ(json::write(json::parse(pretty)), text);
}

TEST(Json, writer_survives_cycles_and_deep_trees_built_in_code) {
    auto node = Node::make();
    node->set("self", node);
    EXPECT_EQ(json::write(Value(node)), R"({"self":null})");
    node->remove("self"); // break the cycle so the Node can be freed

    // Far deeper than the reader allows: the writer must not recurse.
    auto root = List::make();
    auto current = root;
    for (int i = 0; i < 200000; ++i) {
        auto next = List::make();
        current->push(next);
        current = next;
    }
    const std::string text = json::write(Value(root));
    EXPECT_EQ(text.size(), 2u * 200001u);
    // Unwind the chain by hand: a recursive destructor chain this deep would
    // be the test's own fault, not the writer's.
    while (!root->empty()) {
        auto next = root->at(0).list();
        root->clear();
        root = next;
    }
}

TEST(Json, lenient_mode_accepts_trailing_commas_that_strict_mode_refuses) {
    const char* texts[] = {R"({"a":"b", })", "[1,2,]", R"({"l":[{"x":1,},],})"};
    json::ReadOptions lenient;
    lenient.syntax = json::Syntax::Lenient;
    for (const char* text : texts) {
        EXPECT_FALSE(json::read(text)) << text;
        EXPECT_TRUE(json::read(text, lenient)) << text;
    }
    EXPECT_EQ(json::write(json::parse(texts[2], lenient)), R"({"l":[{"x":1}]})");
    // Still not a free-for-all.
    EXPECT_FALSE(json::read("[,]", lenient));
    EXPECT_FALSE(json::read("[1,,]", lenient));
    EXPECT_FALSE(json::read("{,}", lenient));
}

TEST(Json, malformed_text_gives_a_positioned_error) {
    auto result = json::read("{\"a\": 1,\n  \"b\" 2}");
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error->line, 2u);
    EXPECT_EQ(result.error->column, 7u);
    EXPECT_NE(result.error->describe().find("line 2, column 7"), std::string::npos);
    EXPECT_NE(result.error->message.find("colon"), std::string::npos);

    for (const char* text : {"", "   ", "{", "[1,2", "{\"a\":", "\"abc", "tru", "01", "[1]x", "{'a':1}",
                             "[NaN]", "\"tab\there\"", "1 2", "{\"a\"}", "[\"\\x\"]", "-", "1."})
        EXPECT_FALSE(errorOf(text).empty()) << text;
}

TEST(Json, hostile_bytes_are_refused_not_trusted) {
    // Invalid UTF-8 in a text, in a key, a raw surrogate; lone escaped surrogates, high and low.
    for (const char* text : {"[\"a\xFFz\"]", "{\"\xC0\xAF\":1}", "[\"\xED\xA0\x80\"]", R"(["\ud800"])",
                             R"(["\udc00x"])", R"({"\udfff":1})"})
        EXPECT_FALSE(errorOf(text).empty()) << text;
    // A proper pair is fine.
    EXPECT_EQ(json::parse(R"(["\ud83d\ude00"])").list()->at(0), Value("😀"));
    // NUL bytes: escaped is a character, raw is an error even after a complete value.
    EXPECT_EQ(json::parse(R"(["a\u0000b"])").list()->at(0).text()->size(), 3u);
    EXPECT_EQ(errorOf(std::string_view("[1]\0[2]", 7)), "Unexpected NUL byte.");
    EXPECT_FALSE(errorOf(std::string_view("[\"a\0b\"]", 7)).empty());
}

TEST(Json, nesting_is_capped_with_a_clear_error) {
    const std::string deep = std::string(100000, '[') + std::string(100000, ']');
    auto result = json::read(deep);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error->message, "Nesting deeper than 512 levels.");
    EXPECT_EQ(result.error->offset, 512u);

    const std::string deepObjects = [] {
        std::string text;
        for (int i = 0; i < 100000; ++i)
            text += "{\"a\":";
        return text;
    }();
    EXPECT_EQ(errorOf(deepObjects), "Nesting deeper than 512 levels.");

    // Exactly at the cap is fine; the cap can be chosen.
    EXPECT_TRUE(json::read(std::string(512, '[') + std::string(512, ']')));
    json::ReadOptions shallow;
    shallow.maxDepth = 2;
    EXPECT_TRUE(json::read("[[1]]", shallow));
    EXPECT_EQ(errorOf("[[[1]]]", shallow), "Nesting deeper than 2 levels.");
}

// The shared sample documents sit beside the repository; a checkout without
// them skips these tests and says where it looked.
#define SKIP_WITHOUT_SHARED_DATA()                                                                           \
    if (!std::filesystem::is_directory(MORVANE_SHARED_DATA_DIR "/json"))                                     \
    GTEST_SKIP() << "no shared sample data in " MORVANE_SHARED_DATA_DIR                                      \
                    "/json (configure with -DMORVANE_SHARED_DATA_DIR=...)"

TEST(Json, sample_documents_survive_a_round_trip_and_their_truncations_fail_cleanly) {
    SKIP_WITHOUT_SHARED_DATA();
    for (const char* name : {"canada", "citm_catalog", "github_events", "twitter"}) {
        const std::string text = readFile(std::string(MORVANE_SHARED_DATA_DIR "/json/") + name + ".json");
        auto first = json::read(text);
        ASSERT_TRUE(first) << name << ": " << first.error->describe();
        const std::string compact = json::write(first.value);
        auto second = json::read(compact);
        ASSERT_TRUE(second) << name;
        EXPECT_TRUE(first.value == second.value) << name;
        EXPECT_EQ(json::write(second.value), compact) << name;
        EXPECT_TRUE(json::parse(json::write(first.value, json::Layout::Pretty)) == first.value) << name;
        // Strict text takes the fast reader, lenient text the other one: they must agree.
        json::ReadOptions lenient;
        lenient.syntax = json::Syntax::Lenient;
        EXPECT_TRUE(json::parse(text, lenient) == first.value) << name;
        // Only a cut right after the root's closing bracket would be valid.
        if (std::string_view(name) == "github_events") {
            for (std::size_t cut = 0; cut < text.size(); cut += 97)
                EXPECT_FALSE(json::read(std::string_view(text).substr(0, cut))) << cut;
        }
    }
}

TEST(Json, both_readers_agree_on_mangled_text) {
    // Strict text normally goes to the fast reader; a depth limit beyond its
    // reach sends it to the other one. Whatever the bytes, both must accept
    // the same texts and build the same trees.
    json::ReadOptions viaFast;
    json::ReadOptions viaOther;
    viaOther.maxDepth = 5000;
    const std::string base =
        R"({"a":[1,-2.5e3,true,null,{"b":"\u00e9\u20ac\ud83d\ude00"}],"c":"x\ty","d":{}})";
    // clang-format off
    const std::string noise[] = {"\xEF\xBB\xBF", ",", "]", "}", "\"", "\\", "\\u", "\xC3", "\xFF", "0", "-", "e",
                                 ".", " ", "\n", "\x01", "tru", "{\"a\":1}", "1e999", "99999999999999999999"};
    // clang-format on
    std::uint32_t seed = 12345;
    auto random = [&seed](std::uint32_t bound) {
        seed = seed * 1664525u + 1013904223u;
        return (seed >> 8) % bound;
    };
    int accepted = 0;
    for (int round = 0; round < 3000; ++round) {
        std::string text = base;
        for (int edits = 1 + random(3); edits > 0; --edits) {
            const std::size_t at = random(static_cast<std::uint32_t>(text.size() + 1));
            switch (random(3)) {
            case 0:
                text.insert(at, noise[random(std::size(noise))]);
                break;
            case 1:
                if (at < text.size()) text.erase(at, 1 + random(3));
                break;
            default:
                if (at < text.size()) text[at] = noise[random(std::size(noise))][0];
            }
        }
        const auto fast = json::read(text, viaFast);
        const auto other = json::read(text, viaOther);
        ASSERT_EQ(static_cast<bool>(fast), static_cast<bool>(other)) << text;
        if (fast) {
            ++accepted;
            ASSERT_TRUE(fast.value == other.value) << text;
            ASSERT_EQ(json::write(fast.value), json::write(other.value)) << text;
        }
    }
    EXPECT_GT(accepted, 100); // the mangling leaves enough valid texts to compare
}
