#pragma once
// The steps both photo loaders share: decoding bytes as a picture, and
// fetching an address and decoding what comes back.

#include <morvane/gfx/Image.h>

#include <string>
#include <string_view>

namespace morvane::detail {

// The picture in the bytes, or a null image.
gfx::Image decodePicture(std::string_view bytes);

struct DownloadedPicture {
    gfx::Image image; // null when the fetch failed or the bytes are no picture
    std::string bytes;
};

// Fetches the address on the calling thread; a failure is logged ("Got an
// error: ..." or "Not a picture, not cached: ...") and gives a null image.
DownloadedPicture downloadPicture(const std::string& address);

} // namespace morvane::detail
