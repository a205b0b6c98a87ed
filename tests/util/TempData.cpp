// Points the application's data and documents folders at a fresh temporary
// folder for the whole run, so tests that save settings never touch the
// user's own store.
#include <morvane/sys/App.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

class TempData : public testing::Environment {
  public:
    void SetUp() override {
        folder_ = std::filesystem::temp_directory_path() / ("morvane-util-" + std::to_string(getpid()));
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        morvane::sys::App::setDataFolder(folder_ / "data");
        morvane::sys::App::setDocumentsFolder(folder_ / "Documents");
    }
    void TearDown() override {
        morvane::sys::App::setDataFolder({});
        morvane::sys::App::setDocumentsFolder({});
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

  private:
    std::filesystem::path folder_;
};

const auto* const registered = testing::AddGlobalTestEnvironment(new TempData);

} // namespace
