// The application's identifier and the folders it names, from the
// environment or the application's own overrides.
#include <morvane/sys/App.h>
#include <morvane/sys/Log.h>

#include <gtest/gtest.h>

#include <cstdlib>

using namespace morvane::sys;

namespace {

// Restores the environment and the overrides a test changed.
class AppTest : public ::testing::Test {
  protected:
    void SetUp() override {
        unsetenv("MORVANE_DOCUMENTS_DIR");
        unsetenv("MORVANE_DATA_DIR");
        setenv("XDG_DATA_HOME", "/xdg/data", 1);
        App::setIdentifier("com.example.gallery");
    }
    void TearDown() override {
        App::setDocumentsFolder({});
        App::setDataFolder({});
        unsetenv("MORVANE_DOCUMENTS_DIR");
        unsetenv("XDG_DATA_HOME");
    }
};

} // namespace

TEST_F(AppTest, folders_follow_the_identifier_environment_and_overrides_in_that_order) {
    EXPECT_EQ(App::documentsFolder(), "/xdg/data/com.example.gallery/Documents");
    EXPECT_EQ(App::dataFolder(), "/xdg/data/com.example.gallery");

    setenv("XDG_DATA_HOME", "relative/not/allowed", 1);
    setenv("HOME", "/home/guest", 1);
    EXPECT_EQ(App::documentsFolder(), "/home/guest/.local/share/com.example.gallery/Documents");

    setenv("MORVANE_DOCUMENTS_DIR", "/tmp/docs", 1);
    EXPECT_EQ(App::documentsFolder(), "/tmp/docs");
    App::setDocumentsFolder("/test/docs");
    EXPECT_EQ(App::documentsFolder(), "/test/docs");
    App::setDocumentsFolder({});
    EXPECT_EQ(App::documentsFolder(), "/tmp/docs");
}

// The identifier names folders: a path in disguise must not get through.
TEST_F(AppTest, identifiers_that_are_not_plain_names_are_refused) {
    Log::Capture log;
    for (const char* bad : {"", "..", "../escape", "com/example", "with space", "."})
        EXPECT_FALSE(App::setIdentifier(bad)) << bad;
    EXPECT_EQ(App::identifier(), "com.example.gallery");
    EXPECT_EQ(log.texts().size(), 6u);
    EXPECT_TRUE(App::setIdentifier("com.example.Osaka"));
    EXPECT_EQ(App::identifier(), "com.example.Osaka");
}
