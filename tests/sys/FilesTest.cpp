// Files: whole-file writes that a killed writer cannot tear, folders,
// creation dates on the kit's clock, versions, the walk and the inside test
// that links and dots must not fool.
#include <morvane/sys/Clock.h>
#include <morvane/sys/Files.h>
#include <morvane/sys/RunLoop.h>

#include "AppSandbox.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace morvane::sys;
namespace fs = std::filesystem;

namespace {

class FilesTest : public ::testing::Test, protected morvane::test::AppSandbox {
  protected:
    void SetUp() override {
        enterSandbox("files");
        folder = documents; // empty at the start
    }
    void TearDown() override { leaveSandbox(); }
    std::vector<std::string> names(const fs::path& where) {
        std::vector<std::string> result;
        for (auto& entry : fs::directory_iterator(where))
            result.push_back(entry.path().filename().string());
        std::sort(result.begin(), result.end());
        return result;
    }
    fs::path folder;
};

} // namespace

TEST_F(FilesTest, writes_replace_whole_files_and_leave_no_temporaries) {
    std::string bytes("\x89PNG\0\r\n\x1a\0\0binary", 16);
    fs::path file = folder / "picture.png";
    ASSERT_TRUE(Files::write(file, bytes));
    EXPECT_EQ(Files::read(file), bytes);
    ASSERT_TRUE(Files::write(file, std::string_view("short")));
    EXPECT_EQ(Files::read(file), "short");
    EXPECT_EQ(names(folder), std::vector<std::string>{"picture.png"});

    // Failures say why and leave nothing behind.
    std::string error;
    EXPECT_FALSE(Files::write(folder / "missing" / "x.png", std::string_view("x"), &error));
    EXPECT_NE(error.find("missing"), std::string::npos);
    EXPECT_FALSE(Files::write(folder / "", std::string_view("x")));
    EXPECT_FALSE(Files::read(folder / "nothing"));
    EXPECT_FALSE(Files::read(folder)) << "a folder is not a file";
    EXPECT_EQ(names(folder), std::vector<std::string>{"picture.png"});
}

// A writer killed at any moment leaves the previous file or the new one,
// whole: never a mixture or a truncated file under the real name.
TEST_F(FilesTest, a_killed_writer_never_leaves_a_partial_file) {
    fs::path file = folder / "cache.jpg";
    const std::string a(1 << 20, 'a'), b(1 << 20, 'b');
    ASSERT_TRUE(Files::write(file, a));
    for (int round = 0; round < 5; ++round) {
        pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (int i = 0;; ++i)
                Files::write(file, i % 2 ? a : b);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20 + 13 * round));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        auto contents = Files::read(file);
        ASSERT_TRUE(contents);
        EXPECT_TRUE(*contents == a || *contents == b)
            << "round " << round << ": " << contents->size() << " bytes";
    }
}

TEST_F(FilesTest, create_folder_makes_intermediates_and_refuses_files) {
    EXPECT_TRUE(Files::createFolder(folder / "img" / "images" / "food"));
    EXPECT_TRUE(Files::isFolder(folder / "img" / "images"));
    EXPECT_TRUE(Files::createFolder(folder / "img")) << "an existing folder is fine";
    ASSERT_TRUE(Files::write(folder / "plain", std::string_view("x")));
    EXPECT_FALSE(Files::createFolder(folder / "plain"));
    EXPECT_FALSE(Files::createFolder(folder / "plain" / "below"));
    EXPECT_FALSE(Files::createFolder(""));
}

// Creation dates come from the kit's clock at the moment of writing, so a test
// on the manual clock can age files; the modification date is free for the
// picture cache's own stamp and does not disturb the creation date.
TEST_F(FilesTest, creation_date_is_the_moment_of_writing_on_the_kits_clock) {
    const Date start = 1577836800; // 2020-01-01
    Clock::useManual(start);
    fs::path file = folder / "a.png";
    ASSERT_TRUE(Files::write(file, std::string_view("one")));
    ASSERT_TRUE(Files::creationDate(file));
    EXPECT_NEAR(*Files::creationDate(file), start, 1e-3);

    const Date stamp = 631155661; // 1990-01-01T01:01:01
    ASSERT_TRUE(Files::setModificationDate(file, stamp + 0.25));
    EXPECT_NEAR(*Files::modificationDate(file), stamp + 0.25, 1e-6);
    EXPECT_NEAR(*Files::creationDate(file), start, 1e-3);

    RunLoop::main().advance(10 * 86400);
    ASSERT_TRUE(Files::write(file, std::string_view("two")));
    EXPECT_NEAR(*Files::creationDate(file), start + 10 * 86400, 1e-3) << "a rewrite is a new file";

    EXPECT_FALSE(Files::creationDate(folder / "missing"));
    EXPECT_FALSE(Files::modificationDate(folder / "missing"));
    EXPECT_FALSE(Files::setModificationDate(folder / "missing", stamp));
}

// A version names one written file: dating and reading keep it, every
// rewrite (even of the same bytes, at the same moment of a stopped clock)
// and a removal change it. Copies decoded from a file rely on that.
TEST_F(FilesTest, versions_change_with_every_write_and_only_then) {
    Clock::useManual(1577836800);
    fs::path file = folder / "v.png";
    ASSERT_TRUE(Files::write(file, std::string_view("same")));
    const auto first = Files::version(file);
    ASSERT_TRUE(first);
    ASSERT_TRUE(Files::setModificationDate(file, 631155661));
    Files::Version read;
    EXPECT_EQ(Files::read(file, read), "same");
    EXPECT_EQ(read, *first);
    EXPECT_EQ(Files::version(file), first);

    ASSERT_TRUE(Files::write(file, std::string_view("same")));
    EXPECT_NE(Files::version(file), first);
    ASSERT_TRUE(Files::remove(file));
    EXPECT_FALSE(Files::version(file));
    EXPECT_FALSE(Files::read(file, read));
}

TEST_F(FilesTest, files_written_by_others_use_the_file_systems_dates) {
    fs::path file = folder / "foreign.txt";
    std::ofstream(file) << "written elsewhere";
    Date now = Clock::date();
    ASSERT_TRUE(Files::creationDate(file));
    EXPECT_NEAR(*Files::creationDate(file), now, 5);
    Files::setModificationDate(file, 1000);
    EXPECT_NEAR(*Files::creationDate(file), now, 5) << "birth time, where recorded, ignores the stamp";
}

TEST_F(FilesTest, walk_is_depth_first_and_does_not_follow_links) {
    Files::createFolder(folder / "img" / "b");
    Files::createFolder(folder / "img" / "a");
    Files::createFolder(folder / "outside");
    Files::write(folder / "img" / "a" / "1.png", std::string_view("1"));
    Files::write(folder / "img" / "b" / "2.png", std::string_view("2"));
    Files::write(folder / "img" / "top.png", std::string_view("t"));
    Files::write(folder / "outside" / "secret", std::string_view("s"));
    fs::create_directory_symlink(folder / "outside", folder / "img" / "link");

    std::vector<std::string> seen;
    for (const auto& entry : Files::walk(folder / "img"))
        seen.push_back(entry.path.lexically_relative(folder).string() + (entry.isFolder ? "/" : ""));
    EXPECT_EQ(seen, (std::vector<std::string>{"img/a/", "img/a/1.png", "img/b/", "img/b/2.png", "img/link",
                                              "img/top.png"}));
    EXPECT_TRUE(Files::walk(folder / "missing").empty());

    // Removing the link removes the link only.
    std::string error;
    EXPECT_TRUE(Files::remove(folder / "img" / "link", &error));
    EXPECT_TRUE(Files::exists(folder / "outside" / "secret"));
    EXPECT_FALSE(Files::remove(folder / "img" / "link", &error));
    EXPECT_FALSE(error.empty());
    EXPECT_FALSE(Files::remove(folder / "img" / "a")) << "a folder with contents stays";
}

TEST_F(FilesTest, walk_survives_a_deep_tree) {
    fs::path deep = folder;
    for (int i = 0; i < 1000; ++i)
        deep /= "d";
    ASSERT_TRUE(Files::createFolder(deep));
    Files::write(deep / "leaf", std::string_view("x"));
    auto entries = Files::walk(folder);
    ASSERT_EQ(entries.size(), 1001u);
    EXPECT_EQ(entries.back().path, deep / "leaf");
}

TEST_F(FilesTest, is_inside_sees_through_links_and_dots) {
    Files::createFolder(folder / "docs" / "img");
    Files::createFolder(folder / "elsewhere");
    fs::create_directory_symlink(folder / "elsewhere", folder / "docs" / "img" / "escape");
    EXPECT_TRUE(Files::isInside(folder / "docs" / "img" / "new.png", folder / "docs"));
    EXPECT_TRUE(Files::isInside(folder / "docs" / "not" / "yet" / "there.png", folder / "docs"));
    EXPECT_FALSE(Files::isInside(folder / "docs" / ".." / "elsewhere" / "x", folder / "docs"));
    EXPECT_FALSE(Files::isInside(folder / "docs" / "img" / "escape" / "x", folder / "docs"));
    EXPECT_FALSE(Files::isInside(folder / "docsx" / "x", folder / "docs"));
}
