// The settings store: values that survive reopening and a killed writer,
// damaged files moved aside, a store that cannot be opened, the standard one.
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/sys/App.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Settings.h>

#include "AppSandbox.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

using namespace morvane;
using namespace morvane::sys;
namespace fs = std::filesystem;

namespace {

class SettingsTest : public ::testing::Test, protected morvane::test::AppSandbox {
  protected:
    void SetUp() override {
        enterSandbox("settings");
        folder = root;
        file = folder / "data" / "Settings.sqlite";
    }
    void TearDown() override { leaveSandbox(); }

    // Opening the damaged file says so once, keeps it aside and starts empty.
    void expectMovedAsideAndReplaced() {
        Log::Capture log;
        Settings store(file);
        ASSERT_EQ(log.texts().size(), 1u);
        EXPECT_NE(log.texts()[0].find("damaged"), std::string::npos) << log.texts()[0];
        EXPECT_EQ(asideFiles().size(), 1u);
        EXPECT_TRUE(store.keys().empty());
        EXPECT_TRUE(store.setText("after", "recovery"));
        EXPECT_EQ(Settings(file).text("after"), "recovery");
    }

    std::vector<std::string> asideFiles() {
        std::vector<std::string> result;
        for (auto& entry : fs::directory_iterator(file.parent_path()))
            if (entry.path().filename().string().find(".damaged-") != std::string::npos)
                result.push_back(entry.path().filename().string());
        return result;
    }

    fs::path folder, file;
};

} // namespace

TEST_F(SettingsTest, values_survive_reopening_and_missing_keys_give_nothing) {
    {
        Settings store(file); // the folder does not exist yet
        EXPECT_TRUE(store.setText("deviceTokenSave", "abc123"));
        EXPECT_TRUE(store.setText("airportCity", "Bangkok"));
        EXPECT_TRUE(store.setValue("apple-pay-manual", Value("card")));
        EXPECT_TRUE(store.setText("airportCity", "Haneda")) << "saving again replaces";
        EXPECT_TRUE(store.setText("gone", "soon"));
        EXPECT_TRUE(store.setValue("gone", Value())) << "the absent value removes the key";
        EXPECT_TRUE(store.setText("", "an empty key is a key"));
        EXPECT_TRUE(store.setText("unicode ключ", std::string("z\xC3\xBC\0rich", 8)));
        EXPECT_TRUE(store.synchronize());
    }
    Settings store(file);
    EXPECT_EQ(store.text("deviceTokenSave"), "abc123");
    EXPECT_EQ(store.text("airportCity"), "Haneda");
    EXPECT_EQ(store.value("apple-pay-manual"), Value("card"));
    EXPECT_EQ(store.text(""), "an empty key is a key");
    EXPECT_EQ(store.text("unicode ключ"), std::string("z\xC3\xBC\0rich", 8));
    EXPECT_EQ(store.text("gone"), std::nullopt);
    EXPECT_TRUE(store.value("never written").isAbsent());
    EXPECT_EQ(store.keys(), (std::vector<std::string>{"", "airportCity", "apple-pay-manual",
                                                      "deviceTokenSave", "unicode ключ"}));
    EXPECT_TRUE(store.remove("airportCity"));
    EXPECT_EQ(Settings(file).text("airportCity"), std::nullopt);
}

// NodeTree values come back equal, with flags still flags, and as copies:
// changing what was read does not change what is stored.
TEST_F(SettingsTest, node_tree_values_round_trip_as_copies) {
    auto airports = List::make({Value(Node::make({{"code", Value("BKK")}, {"hub", Value(true)}})),
                                Value(Node::make({{"code", Value("HND")}, {"gates", Value(114)}}))});
    auto user =
        Node::make({{"name", Value("Ana")}, {"visits", Value(List::make({Value(1.5), Value::null()}))}});
    {
        Settings store(file);
        EXPECT_TRUE(store.setValue("airportMutable", Value(airports)));
        EXPECT_TRUE(store.setValue("usrSignin", Value(user)));
        EXPECT_TRUE(store.setValue("count", Value(3)));
        EXPECT_TRUE(store.setValue("flag", Value(false)));
        Log::Capture log;
        EXPECT_FALSE(store.setValue("colour", Value::object(42)));
        EXPECT_EQ(log.texts().size(), 1u);
    }
    Settings store(file);
    Value read = store.value("airportMutable");
    ASSERT_TRUE(read.isList());
    EXPECT_EQ(read, Value(airports));
    EXPECT_EQ(store.value("usrSignin"), Value(user));
    EXPECT_EQ(store.value("count"), Value(3));
    EXPECT_TRUE(store.value("flag").isBool());
    EXPECT_EQ(store.text("usrSignin"), std::nullopt) << "a Node is not a text";
    EXPECT_TRUE(store.value("colour").isAbsent());

    read.list()->push(Value("extra"));
    EXPECT_EQ(store.value("airportMutable"), Value(airports));
}

// A writer killed with SIGKILL in the middle of saving: every save that had
// returned (and told the parent so) is in the store afterwards, and the store
// opens cleanly.
TEST_F(SettingsTest, saves_that_returned_survive_a_killed_writer) {
    int acks[2];
    ASSERT_EQ(pipe(acks), 0);
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        close(acks[0]);
        Settings store(file);
        for (int i = 0;; ++i) {
            std::string key = "key" + std::to_string(i);
            if (!store.setText(key, "value" + std::to_string(i))) _exit(2);
            if (write(acks[1], &i, sizeof i) != sizeof i) _exit(3);
        }
    }
    close(acks[1]);
    int last = -1, got = 0;
    while (last < 300 && read(acks[0], &got, sizeof got) == sizeof got)
        last = got;
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << "the writer ran until it was killed";
    while (read(acks[0], &got, sizeof got) == sizeof got)
        last = got; // acks still in the pipe
    close(acks[0]);
    ASSERT_GE(last, 300);

    Log::Capture log;
    Settings store(file);
    for (int i = 0; i <= last; ++i)
        ASSERT_EQ(store.text("key" + std::to_string(i)), "value" + std::to_string(i)) << "save " << i;
    EXPECT_TRUE(log.texts().empty()) << "no damage reported";
    EXPECT_TRUE(asideFiles().empty());
}

TEST_F(SettingsTest, a_file_that_is_not_a_store_is_moved_aside_and_replaced) {
    fs::create_directories(file.parent_path());
    std::ofstream(file) << std::string(8192, 'Z');
    expectMovedAsideAndReplaced();
}

// Damage inside an otherwise valid database (a torn page) is found by the
// check at opening, not later in some read.
TEST_F(SettingsTest, a_store_with_damaged_pages_is_moved_aside_and_replaced) {
    {
        Settings store(file);
        for (int i = 0; i < 400; ++i)
            store.setText("key" + std::to_string(i), std::string(200, char('a' + i % 26)));
    }
    ASSERT_GT(fs::file_size(file), 3 * 4096u);
    {
        std::fstream damage(file, std::ios::in | std::ios::out | std::ios::binary);
        damage.seekp(4096);
        std::string garbage(2 * 4096, '\x5a');
        damage.write(garbage.data(), std::streamsize(garbage.size()));
    }
    expectMovedAsideAndReplaced();
}

TEST_F(SettingsTest, a_store_that_cannot_be_opened_works_in_memory_for_the_run) {
    fs::create_directories(folder);
    std::ofstream(folder / "data") << "a file where the folder should be";
    Log::Capture log;
    Settings store(file);
    EXPECT_EQ(log.texts().size(), 1u);
    EXPECT_TRUE(store.setText("k", "v"));
    EXPECT_EQ(store.text("k"), "v");
}

TEST_F(SettingsTest, the_standard_store_lives_in_the_data_folder) {
    App::setDataFolder(folder / "one");
    auto first = Settings::standard();
    EXPECT_EQ(first->file(), folder / "one" / "Settings.sqlite");
    EXPECT_EQ(Settings::standard(), first) << "one store per application";
    first->setText("usr", "x");
    App::setDataFolder(folder / "two");
    EXPECT_EQ(Settings::standard()->text("usr"), std::nullopt);
    App::setDataFolder(folder / "one");
    EXPECT_EQ(Settings::standard()->text("usr"), "x");
    App::setDataFolder({});
}
