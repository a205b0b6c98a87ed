#include <morvane/gfx/Image.h>
#include <morvane/gfx/detail/Codecs.h>
#include <morvane/gfx/detail/ImageAccess.h>

#include <librsvg/rsvg.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <mutex>

namespace morvane::gfx {

struct Image::Impl {
    cairo_surface_t* surface = nullptr;
    double scale = 1;
    bool opaque = false;
    // The picture resampled to the size it was last drawn at, in device
    // pixels: a list scrolling redraws the same pictures at the same size on
    // every frame. Images are shared across threads, hence the lock.
    mutable std::mutex resampledLock;
    mutable cairo_surface_t* resampled = nullptr;

    Impl(cairo_surface_t* s, double sc, bool op) : surface(s), scale(sc), opaque(op) {}
    ~Impl() {
        cairo_surface_destroy(surface);
        if (resampled) cairo_surface_destroy(resampled);
    }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;
};

namespace detail {

bool pixelCountAllowed(std::int64_t width, std::int64_t height) {
    return width > 0 && height > 0 && width <= Image::kMaxPixels && height <= Image::kMaxPixels &&
           width * height <= Image::kMaxPixels;
}

cairo_surface_t* ImageAccess::surface(const Image& image) {
    return image.impl_ ? image.impl_->surface : nullptr;
}

Image ImageAccess::adopt(cairo_surface_t* surface, double scale, bool opaque) {
    if (!surface) return {};
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        return {};
    }
    if (!(scale > 0) || !std::isfinite(scale)) scale = 1;
    return Image(std::make_shared<const Image::Impl>(surface, scale, opaque));
}

cairo_surface_t* ImageAccess::resampled(const Image& image, int pixelWidth, int pixelHeight) {
    const Image::Impl* impl = image.impl_.get();
    if (!impl) return nullptr;
    std::lock_guard lock(impl->resampledLock);
    cairo_surface_t* cached = impl->resampled;
    if (cached && cairo_image_surface_get_width(cached) == pixelWidth &&
        cairo_image_surface_get_height(cached) == pixelHeight)
        return cairo_surface_reference(cached);
    cairo_surface_t* copy = createSurface(pixelWidth, pixelHeight);
    if (!copy) return nullptr;
    // The same filter and edge rule as a picture drawn straight with a scale.
    cairo_t* cr = cairo_create(copy);
    cairo_pattern_t* pattern = cairo_pattern_create_for_surface(impl->surface);
    cairo_matrix_t m;
    cairo_matrix_init_scale(&m, double(cairo_image_surface_get_width(impl->surface)) / pixelWidth,
                            double(cairo_image_surface_get_height(impl->surface)) / pixelHeight);
    cairo_pattern_set_matrix(pattern, &m);
    cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
    cairo_set_source(cr, pattern);
    cairo_pattern_destroy(pattern);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_paint(cr);
    cairo_destroy(cr);
    cairo_surface_flush(copy);
    if (cached) cairo_surface_destroy(cached);
    impl->resampled = copy;
    return cairo_surface_reference(copy);
}

cairo_surface_t* ImageAccess::createSurface(int pixelWidth, int pixelHeight) {
    if (!pixelCountAllowed(pixelWidth, pixelHeight)) return nullptr;
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, pixelWidth, pixelHeight);
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        return nullptr;
    }
    return surface;
}

} // namespace detail

namespace {

using detail::ImageAccess;

double sanitizedScale(double scale) {
    return scale > 0 && std::isfinite(scale) ? scale : 1;
}

void setError(std::string* error, const std::string& text) {
    if (error) *error = text;
}

} // namespace

Image Image::blank(int pixelWidth, int pixelHeight, double scale) {
    return ImageAccess::adopt(ImageAccess::createSurface(pixelWidth, pixelHeight), scale, false);
}

Image Image::fromPixels(const std::uint8_t* data, int pixelWidth, int pixelHeight, std::size_t stride,
                        PixelFormat format, double scale) {
    if (!data || stride < static_cast<std::size_t>(std::max(pixelWidth, 0)) * 4) return {};
    cairo_surface_t* surface = ImageAccess::createSurface(pixelWidth, pixelHeight);
    if (!surface) return {};
    unsigned char* target = cairo_image_surface_get_data(surface);
    int targetStride = cairo_image_surface_get_stride(surface);
    bool opaque = true;
    for (int y = 0; y < pixelHeight; ++y) {
        const std::uint8_t* in = data + y * stride;
        auto* out = reinterpret_cast<std::uint32_t*>(target + static_cast<std::size_t>(y) * targetStride);
        for (int x = 0; x < pixelWidth; ++x, in += 4) {
            std::uint32_t a, r, g, b;
            if (format == PixelFormat::ARGBPremultiplied) {
                a = in[0], r = in[1], g = in[2], b = in[3];
            } else {
                r = in[0], g = in[1], b = in[2], a = in[3];
            }
            if (format == PixelFormat::RGBA && a != 255) {
                r = (r * a + 127) / 255, g = (g * a + 127) / 255, b = (b * a + 127) / 255;
            }
            // Premultiplied input may be inconsistent; keep colour within alpha.
            r = std::min(r, a), g = std::min(g, a), b = std::min(b, a);
            opaque = opaque && a == 255;
            out[x] = a << 24 | r << 16 | g << 8 | b;
        }
    }
    cairo_surface_mark_dirty(surface);
    return ImageAccess::adopt(surface, scale, opaque);
}

ImageCodec Image::codecOf(std::span<const std::uint8_t> bytes) {
    static constexpr std::uint8_t kPng[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    if (bytes.size() >= 8 && std::memcmp(bytes.data(), kPng, 8) == 0) return ImageCodec::PNG;
    if (bytes.size() >= 3 && bytes[0] == 0xFF && bytes[1] == 0xD8 && bytes[2] == 0xFF)
        return ImageCodec::JPEG;
    // SVG is text: look for the root element near the start (after an XML
    // declaration, comments or a doctype).
    std::string_view head(reinterpret_cast<const char*>(bytes.data()),
                          std::min<std::size_t>(bytes.size(), 1024));
    if (head.find("<svg") != std::string_view::npos) return ImageCodec::SVG;
    return ImageCodec::Unknown;
}

Image Image::fromData(std::span<const std::uint8_t> bytes, double scale, std::string* error) {
    switch (codecOf(bytes)) {
    case ImageCodec::PNG:
        return fromPNG(bytes, scale, error);
    case ImageCodec::JPEG:
        return fromJPEG(bytes, scale, error);
    case ImageCodec::SVG:
        return fromSVG(bytes, Size{}, scale, error);
    case ImageCodec::Unknown:
        break;
    }
    setError(error, bytes.empty() ? "no image data" : "not a PNG, JPEG or SVG image");
    return {};
}

Image Image::fromPNG(std::span<const std::uint8_t> bytes, double scale, std::string* error) {
    std::string reason;
    cairo_surface_t* surface = detail::decodePNG(bytes, reason);
    if (!surface) setError(error, reason);
    return ImageAccess::adopt(surface, scale, false);
}

Image Image::fromJPEG(std::span<const std::uint8_t> bytes, double scale, std::string* error) {
    std::string reason;
    cairo_surface_t* surface = detail::decodeJPEG(bytes, reason);
    if (!surface) setError(error, reason);
    return ImageAccess::adopt(surface, scale, true);
}

Image Image::fromSVG(std::span<const std::uint8_t> bytes, Size size, double scale, std::string* error) {
    scale = sanitizedScale(scale);
    GError* gerror = nullptr;
    RsvgHandle* handle = rsvg_handle_new_from_data(bytes.data(), bytes.size(), &gerror);
    if (!handle) {
        setError(error, std::string("unreadable SVG: ") + (gerror ? gerror->message : "unknown error"));
        if (gerror) g_error_free(gerror);
        return {};
    }
    rsvg_handle_set_dpi(handle, 72); // one CSS pixel per point
    if (size.isEmpty()) {
        double width = 0, height = 0;
        if (!rsvg_handle_get_intrinsic_size_in_pixels(handle, &width, &height) || !(width > 0) ||
            !(height > 0)) {
            setError(error, "the SVG has no size of its own; give one");
            g_object_unref(handle);
            return {};
        }
        size = {width, height};
    }
    double pixelWidth = std::ceil(size.width * scale), pixelHeight = std::ceil(size.height * scale);
    if (!(pixelWidth * pixelHeight <= static_cast<double>(kMaxPixels))) {
        setError(error, "the SVG rendering is over the pixel limit");
        g_object_unref(handle);
        return {};
    }
    cairo_surface_t* surface =
        ImageAccess::createSurface(static_cast<int>(pixelWidth), static_cast<int>(pixelHeight));
    if (!surface) {
        setError(error, "cannot allocate the SVG rendering");
        g_object_unref(handle);
        return {};
    }
    cairo_t* cr = cairo_create(surface);
    cairo_scale(cr, scale, scale);
    RsvgRectangle viewport{0, 0, size.width, size.height};
    bool rendered = rsvg_handle_render_document(handle, cr, &viewport, &gerror);
    cairo_destroy(cr);
    g_object_unref(handle);
    if (!rendered) {
        setError(error,
                 std::string("cannot render the SVG: ") + (gerror ? gerror->message : "unknown error"));
        if (gerror) g_error_free(gerror);
        cairo_surface_destroy(surface);
        return {};
    }
    cairo_surface_mark_dirty(surface);
    return ImageAccess::adopt(surface, scale, false);
}

Image Image::fromFile(const std::string& path, double scale, std::string* error) {
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    if (!in) {
        setError(error, "cannot open " + path);
        return {};
    }
    // No picture under the pixel limit needs more bytes than this; a bigger
    // file is not read into memory at all.
    constexpr std::streamoff kMaxFileBytes = 512 << 20;
    std::streamoff length = in.tellg();
    if (length < 0 || length > kMaxFileBytes) {
        setError(error, path + " is too large to be a picture");
        return {};
    }
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(length));
    in.seekg(0);
    if (!in.read(reinterpret_cast<char*>(bytes.data()), length)) {
        setError(error, "cannot read " + path);
        return {};
    }
    return fromData(bytes, scale, error);
}

Size Image::size() const {
    if (!impl_) return {};
    return {pixelWidth() / impl_->scale, pixelHeight() / impl_->scale};
}

double Image::scale() const {
    return impl_ ? impl_->scale : 1;
}
int Image::pixelWidth() const {
    return impl_ ? cairo_image_surface_get_width(impl_->surface) : 0;
}
int Image::pixelHeight() const {
    return impl_ ? cairo_image_surface_get_height(impl_->surface) : 0;
}
bool Image::isOpaque() const {
    return impl_ && impl_->opaque;
}

Image Image::withScale(double scale) const {
    if (!impl_) return {};
    return ImageAccess::adopt(cairo_surface_reference(impl_->surface), scale, impl_->opaque);
}

std::vector<std::uint8_t> Image::pixels(PixelFormat format) const {
    std::vector<std::uint8_t> out;
    if (!impl_) return out;
    int width = pixelWidth(), height = pixelHeight();
    cairo_surface_flush(impl_->surface);
    const unsigned char* data = cairo_image_surface_get_data(impl_->surface);
    int stride = cairo_image_surface_get_stride(impl_->surface);
    out.resize(static_cast<std::size_t>(width) * height * 4);
    std::uint8_t* target = out.data();
    for (int y = 0; y < height; ++y) {
        const auto* row = reinterpret_cast<const std::uint32_t*>(data + static_cast<std::size_t>(y) * stride);
        for (int x = 0; x < width; ++x, target += 4) {
            std::uint32_t p = row[x];
            std::uint32_t a = p >> 24, r = (p >> 16) & 0xff, g = (p >> 8) & 0xff, b = p & 0xff;
            switch (format) {
            case PixelFormat::ARGBPremultiplied:
                target[0] = std::uint8_t(a), target[1] = std::uint8_t(r), target[2] = std::uint8_t(g);
                target[3] = std::uint8_t(b);
                break;
            case PixelFormat::RGBA:
                if (a != 0 && a != 255) {
                    r = std::min<std::uint32_t>(255, (r * 255 + a / 2) / a);
                    g = std::min<std::uint32_t>(255, (g * 255 + a / 2) / a);
                    b = std::min<std::uint32_t>(255, (b * 255 + a / 2) / a);
                }
                [[fallthrough]];
            case PixelFormat::RGBAPremultiplied:
                target[0] = std::uint8_t(r), target[1] = std::uint8_t(g), target[2] = std::uint8_t(b);
                target[3] = std::uint8_t(a);
                break;
            }
        }
    }
    return out;
}

std::optional<Color> Image::pixelColor(int x, int y) const {
    if (!impl_ || x < 0 || y < 0 || x >= pixelWidth() || y >= pixelHeight()) return std::nullopt;
    cairo_surface_flush(impl_->surface);
    const unsigned char* data = cairo_image_surface_get_data(impl_->surface);
    int stride = cairo_image_surface_get_stride(impl_->surface);
    std::uint32_t p = reinterpret_cast<const std::uint32_t*>(data + static_cast<std::size_t>(y) * stride)[x];
    double a = (p >> 24) / 255.0;
    if (a == 0) return Color::clearColor();
    auto component = [&](int shift) { return ((p >> shift) & 0xff) / 255.0 / a; };
    return Color{component(16), component(8), component(0), a};
}

std::optional<std::array<std::uint8_t, 4>> Image::pixelBytes(int x, int y, PixelFormat format) const {
    if (!impl_ || x < 0 || y < 0 || x >= pixelWidth() || y >= pixelHeight()) return std::nullopt;
    cairo_surface_flush(impl_->surface);
    const unsigned char* data = cairo_image_surface_get_data(impl_->surface);
    int stride = cairo_image_surface_get_stride(impl_->surface);
    std::uint32_t p = reinterpret_cast<const std::uint32_t*>(data + static_cast<std::size_t>(y) * stride)[x];
    std::uint32_t a = p >> 24, r = (p >> 16) & 0xff, g = (p >> 8) & 0xff, b = p & 0xff;
    switch (format) {
    case PixelFormat::ARGBPremultiplied:
        return std::array<std::uint8_t, 4>{std::uint8_t(a), std::uint8_t(r), std::uint8_t(g),
                                           std::uint8_t(b)};
    case PixelFormat::RGBA:
        // The same rounding as pixels() uses, so both agree byte for byte.
        if (a != 0 && a != 255) {
            r = std::min<std::uint32_t>(255, (r * 255 + a / 2) / a);
            g = std::min<std::uint32_t>(255, (g * 255 + a / 2) / a);
            b = std::min<std::uint32_t>(255, (b * 255 + a / 2) / a);
        }
        break;
    case PixelFormat::RGBAPremultiplied:
        break;
    }
    return std::array<std::uint8_t, 4>{std::uint8_t(r), std::uint8_t(g), std::uint8_t(b), std::uint8_t(a)};
}

std::optional<Color> Image::averageColor() const {
    if (!impl_) return std::nullopt;
    cairo_surface_flush(impl_->surface);
    const unsigned char* data = cairo_image_surface_get_data(impl_->surface);
    const int stride = cairo_image_surface_get_stride(impl_->surface);
    const int w = pixelWidth(), h = pixelHeight();
    if (w <= 0 || h <= 0) return std::nullopt;
    // Premultiplied sums, so a transparent pixel adds no colour; a row's sums
    // fit in 64 bits for any picture the decoders accept.
    std::uint64_t a = 0, r = 0, g = 0, b = 0;
    for (int y = 0; y < h; ++y) {
        const auto* row = reinterpret_cast<const std::uint32_t*>(data + static_cast<std::size_t>(y) * stride);
        for (int x = 0; x < w; ++x) {
            const std::uint32_t p = row[x];
            a += p >> 24;
            r += (p >> 16) & 0xff;
            g += (p >> 8) & 0xff;
            b += p & 0xff;
        }
    }
    if (a == 0) return Color::clearColor();
    const double count = double(w) * double(h);
    return Color(double(r) / double(a), double(g) / double(a), double(b) / double(a),
                 double(a) / (count * 255));
}

std::vector<std::uint8_t> Image::pngData() const {
    return impl_ ? detail::encodePNG(impl_->surface) : std::vector<std::uint8_t>{};
}

std::vector<std::uint8_t> Image::jpegData(double quality) const {
    return impl_ ? detail::encodeJPEG(impl_->surface, quality) : std::vector<std::uint8_t>{};
}

} // namespace morvane::gfx
