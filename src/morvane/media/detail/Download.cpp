#include <morvane/media/detail/Download.h>
#include <morvane/sys/Fetch.h>
#include <morvane/sys/Log.h>

#include <cstdint>
#include <span>

namespace morvane::detail {

gfx::Image decodePicture(std::string_view bytes) {
    return gfx::Image::fromData(
        std::span<const std::uint8_t>(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()),
        1.0);
}

DownloadedPicture downloadPicture(const std::string& address) {
    sys::FetchResult result = sys::fetch(address);
    if (!result) {
        sys::Log::platform("Got an error: " + result.error);
        return {};
    }
    gfx::Image image = decodePicture(result.body);
    if (image.isNull()) {
        sys::Log::platform("Not a picture, not cached: " + address);
        return {};
    }
    return {std::move(image), std::move(result.body)};
}

} // namespace morvane::detail
