#pragma once
// Resource pictures: the pictures an application ships, looked up by name
// ("home", "person", "about") the way a phone platform finds its named images.
// A name is looked up in the application's resource folder (sys::App), then
// among the kit's own default pictures, installed with the library under
// share/morvane/images. For each folder the name is tried as given when it
// carries an extension, then with .png, .jpg, .jpeg and .svg. An SVG is
// rendered at the size asked (its own size when none is given). The kit's
// folder is found from the library's own location (MORVANE_KIT_IMAGES_DIR
// overrides it).
//
// A name is a plain file name: one with "/", "\", a NUL or a leading "."
// names no resource picture, and no lookup ever resolves outside the two
// folders, links included. Results are kept in a small cache, so asking again
// is cheap. Safe from any thread.

#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Image.h>

#include <filesystem>
#include <optional>
#include <string_view>

namespace morvane {

class ResourcePictures {
  public:
    ResourcePictures() = delete;

    // The picture of that name; the null image when there is none. PNG and
    // JPEG pictures come at scale 1; an SVG is rendered into `size` points at
    // `scale` (0: the screen scale).
    static gfx::Image named(std::string_view name, gfx::Size size = {}, double scale = 0);
    // Where the picture of that name would be read from; nothing when there is none.
    static std::optional<std::filesystem::path> pathOf(std::string_view name);

    // The folder of the kit's own default pictures; empty when it cannot be found.
    static std::filesystem::path kitFolder();

    // Forgets the pictures kept so far (after resource files changed).
    static void clearCache();
};

} // namespace morvane
