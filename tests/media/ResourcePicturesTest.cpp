// Pictures found by name in the application's resource folder and the kit's
// own, and names that must never resolve outside them.
#include "MediaFixture.h"

#include <morvane/media/ResourcePictures.h>
#include <morvane/sys/Files.h>

#include <gtest/gtest.h>

#include <fstream>

using namespace morvane;
using morvane::test::jpegBytes;
using morvane::test::MediaFixture;
using morvane::test::pngBytes;
namespace fs = std::filesystem;

namespace {

class ResourcePicturesTest : public MediaFixture {
  protected:
    void put(const fs::path& folder, const std::string& name, const std::string& bytes) {
        std::ofstream(folder / name, std::ios::binary) << bytes;
    }
};

constexpr const char* kSquareSvg = R"(<svg xmlns="http://www.w3.org/2000/svg" width="10" height="20">
<rect width="10" height="20" fill="#00f"/></svg>)";

} // namespace

// Names are tried with each picture extension; SVG is drawn at the size asked.
TEST_F(ResourcePicturesTest, finds_png_jpeg_and_svg_by_name) {
    put(resources, "home.png", pngBytes(12, 8, gfx::Color::redColor()));
    put(resources, "photo.jpg", jpegBytes(30, 20, gfx::Color::greenColor()));
    put(resources, "tall.svg", kSquareSvg);

    EXPECT_EQ(ResourcePictures::named("home").size(), gfx::Size(12, 8))
        << "the app's picture wins over the kit's";
    EXPECT_EQ(ResourcePictures::named("home.png").size(), gfx::Size(12, 8));
    EXPECT_EQ(ResourcePictures::named("photo").size(), gfx::Size(30, 20));

    const gfx::Image own = ResourcePictures::named("tall", {}, 2);
    EXPECT_EQ(own.size(), gfx::Size(10, 20));
    EXPECT_EQ(own.pixelWidth(), 20);
    const gfx::Image fitted = ResourcePictures::named("tall", {40, 40}, 1);
    EXPECT_EQ(fitted.size(), gfx::Size(40, 40));
    EXPECT_TRUE(fitted.pixelColor(20, 20)->isClose(gfx::Color::blueColor(), 0.01));

    EXPECT_TRUE(ResourcePictures::named("nothing").isNull());
    EXPECT_TRUE(ResourcePictures::named("").isNull());
}

// The kit ships its own default pictures, found beside the library.
TEST_F(ResourcePicturesTest, kit_pictures_are_found_without_the_applications_own) {
    ASSERT_FALSE(ResourcePictures::kitFolder().empty());
    for (const char* name :
         {"about", "credit", "person", "home", "phone", "email", "gallery", "airplane2", "airplane2w"}) {
        const gfx::Image image = ResourcePictures::named(name, {}, 1);
        ASSERT_FALSE(image.isNull()) << name;
        EXPECT_EQ(image.size(), gfx::Size(64, 64)) << name;
    }
    // "about" is an outline on a transparent ground, so a tint shows its shape.
    const gfx::Image about = ResourcePictures::named("about", {}, 1);
    EXPECT_EQ(about.pixelColor(0, 0)->alpha, 0);
    EXPECT_GT(about.pixelColor(32, 40)->alpha, 0.9);
}

// A name never reaches outside the two folders, not by path steps, not by links.
TEST_F(ResourcePicturesTest, names_never_resolve_outside_the_resource_folders) {
    put(root, "secret.png", pngBytes(2, 2, gfx::Color::redColor()));
    put(resources, ".hidden.png", pngBytes(2, 2, gfx::Color::redColor()));
    fs::create_symlink(root / "secret.png", resources / "linked.png");
    fs::create_directories(resources / "sub");
    put(resources / "sub", "inner.png", pngBytes(2, 2, gfx::Color::redColor()));

    for (const std::string& name : std::vector<std::string>{
             "../secret", "../secret.png", "linked", "sub/inner", ".hidden", "sub\\inner",
             std::string("home\0.png", 9), (root / "secret.png").string()}) {
        EXPECT_TRUE(ResourcePictures::named(name).isNull()) << name;
        EXPECT_FALSE(ResourcePictures::pathOf(name)) << name;
    }
}
