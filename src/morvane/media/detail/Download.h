#pragma once
// The step both photo loaders share: decoding downloaded or cached bytes as a picture.

#include <morvane/gfx/Image.h>

#include <string_view>

namespace morvane::detail {

// The picture in the bytes (scale 1), or a null image.
gfx::Image decodePicture(std::string_view bytes);

} // namespace morvane::detail
