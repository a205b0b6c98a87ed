#pragma once
// A fresh application per test: documents and resource folders under a
// temporary root of the test's own, set as the application's folders, with
// the picture caches emptied. Leaving waits for background work, drops what
// it left on the main queue, puts the real clock back and removes the root.
// Fixtures inherit it and call enterSandbox in SetUp, leaveSandbox in TearDown.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Image.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace morvane::test {

class AppSandbox {
  protected:
    // `prefix` names the suite in the root folder's name.
    void enterSandbox(std::string_view prefix);
    void leaveSandbox();
    // A PNG file of one colour in the resource folder, found by `name`.
    void resourcePicture(const std::string& name, int width, int height, const gfx::Color& color) const;

    std::filesystem::path root;      // everything the test may touch
    std::filesystem::path documents; // root/Documents
    std::filesystem::path resources; // root/Resources
};

// A picture of one colour (width and height in pixels).
gfx::Image solidImage(int width, int height, const gfx::Color& color, double scale = 1);
// The same, encoded.
std::string pngBytes(int width, int height, const gfx::Color& color);
std::string jpegBytes(int width, int height, const gfx::Color& color);

} // namespace morvane::test
