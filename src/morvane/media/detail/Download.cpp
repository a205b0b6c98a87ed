#include <morvane/media/detail/Download.h>

#include <cstdint>
#include <span>

namespace morvane::detail {

gfx::Image decodePicture(std::string_view bytes) {
    return gfx::Image::fromData(
        std::span<const std::uint8_t>(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()),
        1.0);
}

} // namespace morvane::detail
