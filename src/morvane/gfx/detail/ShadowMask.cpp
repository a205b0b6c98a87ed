#include <morvane/gfx/detail/ShadowMask.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <numbers>
#include <tuple>
#include <vector>

namespace morvane::gfx::detail {

namespace {

constexpr std::size_t kMaxMasks = 64;
constexpr double kMaxMaskPixels = 4e6;
constexpr std::size_t kMaxCacheBytes = 48u << 20;

// Three box blurs approximate a Gaussian; these are the box widths for sigma
// (the usual construction from the ideal averaging filter width).
std::array<int, 3> boxWidths(double sigma) {
    double ideal = std::sqrt(12 * sigma * sigma / 3 + 1);
    int lower = static_cast<int>(std::floor(ideal));
    if (lower % 2 == 0) --lower;
    int upper = lower + 2;
    double m = std::round((12 * sigma * sigma - 3.0 * lower * lower - 12.0 * lower - 9) / (-4.0 * lower - 4));
    std::array<int, 3> widths{};
    for (int i = 0; i < 3; ++i)
        widths[i] = std::max(1, i < m ? lower : upper);
    return widths;
}

// One box pass along rows (step 1) or columns (step = stride), edges treated as zero.
void boxPass(const std::uint8_t* in, std::uint8_t* out, int count, int length, int lineStep, int step,
             int radius) {
    int width = 2 * radius + 1;
    for (int line = 0; line < count; ++line) {
        const std::uint8_t* src = in + static_cast<std::size_t>(line) * lineStep;
        std::uint8_t* dst = out + static_cast<std::size_t>(line) * lineStep;
        int sum = 0;
        for (int i = 0; i < std::min(radius, length); ++i)
            sum += src[i * step];
        for (int i = 0; i < length; ++i) {
            int add = i + radius, drop = i - radius - 1;
            if (add < length) sum += src[add * step];
            if (drop >= 0) sum -= src[drop * step];
            dst[i * step] = static_cast<std::uint8_t>((sum + width / 2) / width);
        }
    }
}

void blur(cairo_surface_t* surface, double sigmaPixels) {
    if (sigmaPixels < 0.3) return;
    cairo_surface_flush(surface);
    int width = cairo_image_surface_get_width(surface);
    int height = cairo_image_surface_get_height(surface);
    int stride = cairo_image_surface_get_stride(surface);
    std::uint8_t* data = cairo_image_surface_get_data(surface);
    std::vector<std::uint8_t> scratch(static_cast<std::size_t>(stride) * height);
    for (int box : boxWidths(sigmaPixels)) {
        int radius = (box - 1) / 2;
        boxPass(data, scratch.data(), height, width, stride, 1, radius);
        boxPass(scratch.data(), data, width, height, 1, stride, radius);
    }
    cairo_surface_mark_dirty(surface);
}

using Key = std::tuple<long, long, long, long, long, std::uint32_t>;

struct Cache {
    std::map<Key, ShadowMask> masks;
    std::size_t bytes = 0;
    ~Cache() { clear(); }
    void clear() {
        for (auto& [key, mask] : masks)
            cairo_surface_destroy(mask.surface);
        masks.clear();
        bytes = 0;
    }
    // Keeps a new mask, starting over when the cache grows past its bounds.
    const ShadowMask& add(const Key& key, const ShadowMask& mask) {
        std::size_t size = static_cast<std::size_t>(cairo_image_surface_get_stride(mask.surface)) *
                           cairo_image_surface_get_height(mask.surface);
        if (masks.size() >= kMaxMasks || bytes + size > kMaxCacheBytes) clear();
        bytes += size;
        return masks.emplace(key, mask).first->second;
    }
};

Cache& lowResolutionCache() {
    thread_local Cache cache;
    return cache;
}

Cache& deviceCache() {
    thread_local Cache cache;
    return cache;
}

Cache& imageCache() {
    thread_local Cache cache;
    return cache;
}

long quantize(double value) {
    return std::lround(value * 64);
}

} // namespace

ShadowMask shadowMask(double width, double height, double cornerRadius, double sigma, double deviceScale) {
    if (!(width > 0) || !(height > 0) || !std::isfinite(width * height)) return {nullptr, 1, 0};
    sigma = std::max(0.0, sigma);
    // A blurred edge has no detail: blur at a resolution where sigma spans a
    // few mask pixels and let the fill scale the mask up bilinearly.
    double maskScale = sigma > 0 ? std::min(deviceScale, std::max(0.25, 4 / sigma)) : deviceScale;
    double padding = std::ceil(3 * sigma);
    double area = (width + 2 * padding) * (height + 2 * padding);
    if (area * maskScale * maskScale > kMaxMaskPixels) maskScale = std::sqrt(kMaxMaskPixels / area);

    Cache& cache = lowResolutionCache();
    Key key{quantize(width), quantize(height),    quantize(cornerRadius),
            quantize(sigma), quantize(maskScale), 0u};
    if (auto found = cache.masks.find(key); found != cache.masks.end()) return found->second;

    int pixelWidth = static_cast<int>(std::ceil((width + 2 * padding) * maskScale));
    int pixelHeight = static_cast<int>(std::ceil((height + 2 * padding) * maskScale));
    cairo_surface_t* surface =
        cairo_image_surface_create(CAIRO_FORMAT_A8, std::max(1, pixelWidth), std::max(1, pixelHeight));
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        return {nullptr, 1, 0};
    }
    cairo_t* cr = cairo_create(surface);
    cairo_scale(cr, maskScale, maskScale);
    double radius = std::clamp(cornerRadius, 0.0, std::min(width, height) / 2);
    double x = padding, y = padding;
    if (radius > 0) {
        constexpr double pi = std::numbers::pi;
        cairo_new_sub_path(cr);
        cairo_arc(cr, x + width - radius, y + radius, radius, -pi / 2, 0);
        cairo_arc(cr, x + width - radius, y + height - radius, radius, 0, pi / 2);
        cairo_arc(cr, x + radius, y + height - radius, radius, pi / 2, pi);
        cairo_arc(cr, x + radius, y + radius, radius, pi, 3 * pi / 2);
        cairo_close_path(cr);
    } else {
        cairo_rectangle(cr, x, y, width, height);
    }
    cairo_fill(cr);
    cairo_destroy(cr);
    blur(surface, sigma * maskScale);
    return cache.add(key, ShadowMask{surface, maskScale, padding});
}

ShadowMask deviceShadowMask(double width, double height, double cornerRadius, double sigma,
                            double deviceScale) {
    Cache& cache = deviceCache();
    Key key{quantize(width), quantize(height),      quantize(cornerRadius),
            quantize(sigma), quantize(deviceScale), 0u};
    if (auto found = cache.masks.find(key); found != cache.masks.end()) return found->second;
    ShadowMask low = shadowMask(width, height, cornerRadius, sigma, deviceScale);
    if (!low.surface) return low;
    if (low.maskScale == deviceScale) {
        cairo_surface_reference(low.surface);
        return cache.add(key, low);
    }
    double area = (width + 2 * low.padding) * (height + 2 * low.padding) * deviceScale * deviceScale;
    if (area > kMaxMaskPixels * 4) return low; // too big to keep at full resolution
    int pixelWidth = static_cast<int>(std::ceil((width + 2 * low.padding) * deviceScale));
    int pixelHeight = static_cast<int>(std::ceil((height + 2 * low.padding) * deviceScale));
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_A8, pixelWidth, pixelHeight);
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        return low;
    }
    cairo_t* cr = cairo_create(surface);
    cairo_scale(cr, deviceScale / low.maskScale, deviceScale / low.maskScale);
    cairo_set_source_surface(cr, low.surface, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_BILINEAR);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_paint(cr);
    cairo_destroy(cr);
    return cache.add(key, ShadowMask{surface, deviceScale, low.padding});
}

} // namespace morvane::gfx::detail

namespace morvane::gfx::detail {

ShadowMask deviceShadowImage(double width, double height, double cornerRadius, double sigma,
                             double deviceScale, std::uint32_t premultipliedColor) {
    Cache& cache = imageCache();
    Key key{quantize(width), quantize(height),      quantize(cornerRadius),
            quantize(sigma), quantize(deviceScale), premultipliedColor};
    if (auto found = cache.masks.find(key); found != cache.masks.end()) return found->second;
    ShadowMask mask = deviceShadowMask(width, height, cornerRadius, sigma, deviceScale);
    if (!mask.surface || mask.maskScale != deviceScale) return {nullptr, 1, 0};
    cairo_surface_flush(mask.surface);
    int pixelWidth = cairo_image_surface_get_width(mask.surface);
    int pixelHeight = cairo_image_surface_get_height(mask.surface);
    cairo_surface_t* image = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, pixelWidth, pixelHeight);
    if (cairo_surface_status(image) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(image);
        return {nullptr, 1, 0};
    }
    const std::uint8_t* in = cairo_image_surface_get_data(mask.surface);
    int inStride = cairo_image_surface_get_stride(mask.surface);
    std::uint8_t* out = cairo_image_surface_get_data(image);
    int outStride = cairo_image_surface_get_stride(image);
    std::uint32_t channels[4] = {premultipliedColor >> 24, (premultipliedColor >> 16) & 0xff,
                                 (premultipliedColor >> 8) & 0xff, premultipliedColor & 0xff};
    for (int y = 0; y < pixelHeight; ++y) {
        const std::uint8_t* coverage = in + static_cast<std::size_t>(y) * inStride;
        auto* row = reinterpret_cast<std::uint32_t*>(out + static_cast<std::size_t>(y) * outStride);
        for (int x = 0; x < pixelWidth; ++x) {
            std::uint32_t c = coverage[x], pixel = 0;
            for (int i = 0; i < 4; ++i)
                pixel = pixel << 8 | (channels[i] * c + 127) / 255;
            row[x] = pixel;
        }
    }
    cairo_surface_mark_dirty(image);
    return cache.add(key, ShadowMask{image, deviceScale, mask.padding});
}

} // namespace morvane::gfx::detail
