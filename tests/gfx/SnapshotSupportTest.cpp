#include <morvane/gfx/ImageContext.h>

#include <Snapshot.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

using namespace morvane::gfx;

namespace {

Image square(Color color, double size) {
    ImageContext context(Size{size, size}, Opacity::Transparent, 1);
    context.canvas().fillRect(Rect{0, 0, size, size}, color);
    return context.takeImage();
}

} // namespace

// The comparison other suites rely on: a missing reference is written, equal
// images match, a changed or resized image does not, and a small share of
// differing pixels is tolerated.
TEST(SnapshotSupport, compares_within_tolerance_and_writes_missing_references) {
    if (const char* update = std::getenv("MORVANE_UPDATE_SNAPSHOTS"); update && std::string(update) == "1")
        GTEST_SKIP() << "references are being rewritten, so nothing can mismatch";
    auto reference = std::filesystem::temp_directory_path() / "morvane-snapshot-support" / "square.png";
    std::filesystem::remove(reference);
    Image red = square(Color::redColor(), 20);
    ASSERT_TRUE(morvane::testing::imageMatches(red, reference.string()));
    ASSERT_TRUE(std::filesystem::exists(reference));

    EXPECT_TRUE(morvane::testing::imageMatches(red, reference.string()));
    EXPECT_FALSE(morvane::testing::imageMatches(square(Color::blueColor(), 20), reference.string()));
    EXPECT_FALSE(morvane::testing::imageMatches(square(Color::redColor(), 21), reference.string()));
    EXPECT_TRUE(morvane::testing::imageMatches(square(Color(0.97, 0.02, 0), 20), reference.string()))
        << "within the channel tolerance";

    ImageContext context(Size{20, 20}, Opacity::Transparent, 1);
    context.canvas().drawImage(red, Point{});
    context.canvas().fillRect(Rect{0, 0, 2, 1}, Color::blueColor()); // 2 of 400 pixels
    Image speck = context.takeImage();
    EXPECT_TRUE(morvane::testing::imageMatches(speck, reference.string(), 0.01));
    EXPECT_FALSE(morvane::testing::imageMatches(speck, reference.string(), 0.001));
    EXPECT_FALSE(morvane::testing::imageMatches(Image(), reference.string()));
    std::filesystem::remove_all(reference.parent_path());
}
