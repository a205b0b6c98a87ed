#include "Programs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

using morvane::test::Outcome;
using morvane::test::shellQuote;

class MorvaneTree : public ::testing::Test {
  protected:
    void SetUp() override {
        dir_ = std::filesystem::temp_directory_path() /
               ("morvane-tree-test-" + std::to_string(::getpid()) + "-" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(dir_);
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }

    std::string file(const std::string& name, const std::string& content) {
        const auto path = dir_ / name;
        std::ofstream(path, std::ios::binary) << content;
        return path.string();
    }

    // Runs the tool with `input` on standard input.
    Outcome run(const std::vector<std::string>& args, const std::string& input = "") {
        std::string command = shellQuote(MORVANE_TREE_BINARY);
        for (const auto& arg : args)
            command += " " + shellQuote(arg);
        command += " < " + shellQuote(file("stdin.json", input));
        return morvane::test::runCommand(command);
    }

    std::filesystem::path dir_;
};

} // namespace

TEST_F(MorvaneTree, check_tells_valid_from_invalid_json_by_mode) {
    const std::string valid = file("valid.json", R"({"a": [1, 2]})");
    const std::string trailing = file("trailing.json", "{\"a\": \"b\",\n }");
    EXPECT_EQ(run({"check", valid}).status, 0);

    const Outcome strict = run({"check", trailing});
    EXPECT_EQ(strict.status, 1);
    // One line, saying where.
    EXPECT_EQ(std::count(strict.out.begin(), strict.out.end(), '\n'), 1);
    EXPECT_NE(strict.out.find("line 2, column 2"), std::string::npos) << strict.out;

    EXPECT_EQ(run({"check", "--lenient", trailing}).status, 0);
    EXPECT_EQ(run({"check", file("bad.json", "[\"\xFF\"]")}).status, 1);
    EXPECT_EQ(run({"check", file("deep.json", std::string(600, '[') + std::string(600, ']'))}).status, 1);
    EXPECT_EQ(run({"check", (dir_ / "missing.json").string()}).status, 1);
    EXPECT_EQ(run({"check"}).status, 2);
}

TEST_F(MorvaneTree, node_operations_by_selector_or_cpp_name_print_json_results) {
    const std::string tree = R"({"city": "Tokyo", "menu": {"Drinks": {"tea": "green"}}, "hid>": {"x": "1"}})";
    EXPECT_EQ(run({"valKey:", "tea"}, tree).out, "\"green\"\n");
    EXPECT_EQ(run({"valKey", "x"}, tree).out, "null\n"); // behind a ">" key
    EXPECT_EQ(run({"searchDict:exact:", "TEA", "false"}, tree).out, "\"green\"\n");
    EXPECT_EQ(run({"nodeKey:", "drinks"}, tree).out, "{\"tea\":\"green\"}\n");
    EXPECT_EQ(run({"containsTxt"}, tree).out, "true\n");
    EXPECT_EQ(run({"asmKey:", R"(["city","food"])"}, tree).out, "\"Tokyo/food\"\n");
    EXPECT_EQ(run({"gatherFloat:", "n"}, R"({"a":{"n":"12.5"},"b":[{"n":"3"}]})").out, "15.5\n");
}

TEST_F(MorvaneTree, in_place_operations_also_print_the_changed_tree) {
    const std::string tree = R"({"key": "/a", "items": [{"$price": "1", "name": "A"}]})";
    const Outcome purged = run({"mutablePurge"}, tree);
    EXPECT_EQ(purged.status, 0);
    EXPECT_EQ(purged.out, "null\n{\"items\":[{\"name\":\"A\"}]}\n");
    // Read-only containers stay as they are.
    EXPECT_EQ(run({"--read-only", "mutablePurge"}, tree).out,
              "null\n{\"key\":\"/a\",\"items\":[{\"$price\":\"1\",\"name\":\"A\"}]}\n");
    // pullIt fills its template argument, which is what gets printed.
    EXPECT_EQ(run({"pullIt:gap:", R"({"t":"city","gone":"nothing"})", " "}, R"({"a":{"city":"Oslo"}})").out,
              "null\n{\"t\":\"Oslo\"}\n");
}

TEST_F(MorvaneTree, list_operations_take_the_list_from_standard_input) {
    const std::string records = R"([{"f":"b","p":"2"},{"f":"a","p":"1"},{"f":"b","p":"3"}])";
    EXPECT_EQ(run({"sort:ascend:", "f", "true"}, records).out,
              "null\n[{\"f\":\"a\",\"p\":\"1\"},{\"f\":\"b\",\"p\":\"2\"},{\"f\":\"b\",\"p\":\"3\"}]\n");
    EXPECT_EQ(run({"countItem:", "f"}, records).out, "2\n");
    EXPECT_EQ(run({"findObj:val:", "f", "b"}, records).out, "{\"f\":\"b\",\"p\":\"3\"}\n");
    // One C++ name, two operations: the list argument picks the one with fields.
    EXPECT_EQ(run({"combineTextWith", "0", R"(["f","p"])"}, records).out, "\"b:2,a:1,b:3\"\n");
    EXPECT_EQ(run({"combineTextWith", "0", "p"}, records).out, "\"2,1,3\"\n");
    // Texts beginning with "--" after the operation are arguments, not options.
    EXPECT_EQ(run({"dataExist:data:", "alias", "--Date--"}, R"([{"alias":"--Date--"}])").out, "true\n");
}

TEST_F(MorvaneTree, booking_samples_need_no_input) {
    const Outcome books = run({"bookData"});
    EXPECT_EQ(books.status, 0);
    EXPECT_EQ(books.out.rfind("[{\"title\":\"Date\",\"alias\":\"--Date--\"", 0), 0u) << books.out;
    EXPECT_EQ(std::count(books.out.begin(), books.out.end(), '{'), 4);
    EXPECT_EQ(run({"defaultDict:", R"({"a": "b", })"}).out, "{\"a\":\"b\"}\n");
}

TEST_F(MorvaneTree, bad_command_lines_and_bad_input_fail_with_a_message) {
    const std::string tree = R"({"a": "b"})";
    Outcome r = run({"noSuchOperation"}, tree);
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.out.find("unknown operation"), std::string::npos);
    r = run({"valKey:"}, tree);
    EXPECT_EQ(r.status, 2);
    EXPECT_NE(r.out.find("valKey: takes: TEXT"), std::string::npos) << r.out;
    EXPECT_EQ(run({"searchDict:exact:", "a", "maybe"}, tree).status, 2);
    EXPECT_EQ(run({"asmKey:", "[not json"}, tree).status, 2);
    EXPECT_EQ(run({"asmKey:", R"({"not":"a list"})"}, tree).status, 2);
    EXPECT_EQ(run({"--bogus", "valKey:", "a"}, tree).status, 2);
    // The input must be JSON, of the kind the operation runs on.
    r = run({"valKey:", "a"}, "{\"a\": ");
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.out.find("input: line 1"), std::string::npos) << r.out;
    EXPECT_EQ(run({"valKey:", "a"}, "[1]").status, 1);
    EXPECT_EQ(run({"countItem:", "a"}, tree).status, 1);
    EXPECT_EQ(run({"valKey:", "a"}, R"({"a":"b",})").status, 1);
    EXPECT_EQ(run({"--lenient", "valKey:", "a"}, R"({"a":"b",})").out, "\"b\"\n");
    EXPECT_EQ(run({"--help"}).status, 0);
}
