#include <morvane/gfx/detail/Codecs.h>
#include <morvane/gfx/detail/ImageAccess.h>

#include <png.h>
#include <turbojpeg.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <csetjmp>
#include <cstring>

namespace morvane::gfx::detail {

namespace {

constexpr bool kLittleEndian = std::endian::native == std::endian::little;

std::uint8_t premultiply(std::uint8_t component, std::uint8_t alpha) {
    unsigned t = component * alpha + 128;
    return static_cast<std::uint8_t>((t + (t >> 8)) >> 8);
}

std::uint8_t unpremultiply(std::uint32_t component, std::uint32_t alpha) {
    return static_cast<std::uint8_t>(std::min<std::uint32_t>(255, (component * 255 + alpha / 2) / alpha));
}

// ---- PNG writing ------------------------------------------------------------
// libpng reports errors with longjmp, so the function that calls setjmp keeps
// only trivially destructible locals; everything C++ lives in the caller.

void appendPngBytes(png_structp png, png_bytep data, png_size_t length) {
    auto* out = static_cast<std::vector<std::uint8_t>*>(png_get_io_ptr(png));
    out->insert(out->end(), data, data + length);
}

void flushNothing(png_structp) {}

bool writePngRows(png_structp png, png_infop info, const unsigned char* pixels, int width, int height,
                  int stride, bool opaque, std::uint8_t* row, std::vector<std::uint8_t>* out) {
    if (setjmp(png_jmpbuf(png))) return false;
    png_set_write_fn(png, out, appendPngBytes, flushNothing);
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8,
                 opaque ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    // Snapshots are written often and read rarely: the fastest zlib level.
    // Without row filters, flat interface colours compress both faster and
    // smaller than with them (measured on a full phone frame: about 10 %
    // smaller and 10 % faster than the "sub" filter); photos would prefer a
    // filter, but they are stored as JPEG.
    png_set_compression_level(png, 1);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
    png_write_info(png, info);
    for (int y = 0; y < height; ++y) {
        const auto* source =
            reinterpret_cast<const std::uint32_t*>(pixels + static_cast<std::size_t>(y) * stride);
        std::uint8_t* target = row;
        for (int x = 0; x < width; ++x) {
            std::uint32_t p = source[x];
            std::uint32_t a = p >> 24, r = (p >> 16) & 0xff, g = (p >> 8) & 0xff, b = p & 0xff;
            if (opaque) {
                target[0] = static_cast<std::uint8_t>(r);
                target[1] = static_cast<std::uint8_t>(g);
                target[2] = static_cast<std::uint8_t>(b);
                target += 3;
                continue;
            }
            if (a == 255) {
                target[0] = static_cast<std::uint8_t>(r);
                target[1] = static_cast<std::uint8_t>(g);
                target[2] = static_cast<std::uint8_t>(b);
            } else if (a == 0) {
                target[0] = target[1] = target[2] = 0;
            } else {
                target[0] = unpremultiply(r, a);
                target[1] = unpremultiply(g, a);
                target[2] = unpremultiply(b, a);
            }
            target[3] = static_cast<std::uint8_t>(a);
            target += 4;
        }
        png_write_row(png, row);
    }
    png_write_end(png, info);
    return true;
}

bool allOpaque(const unsigned char* pixels, int width, int height, int stride) {
    for (int y = 0; y < height; ++y) {
        const auto* row =
            reinterpret_cast<const std::uint32_t*>(pixels + static_cast<std::size_t>(y) * stride);
        std::uint32_t all = 0xff000000u;
        for (int x = 0; x < width; ++x)
            all &= row[x];
        if ((all & 0xff000000u) != 0xff000000u) return false;
    }
    return true;
}

std::uint32_t read16(const std::uint8_t* p, bool bigEndian) {
    return bigEndian ? (p[0] << 8 | p[1]) : (p[1] << 8 | p[0]);
}
std::uint32_t read32(const std::uint8_t* p, bool bigEndian) {
    return bigEndian ? (std::uint32_t(p[0]) << 24 | p[1] << 16 | p[2] << 8 | p[3])
                     : (std::uint32_t(p[3]) << 24 | p[2] << 16 | p[1] << 8 | p[0]);
}

// The orientation tag of a TIFF block (the body of an "Exif" APP1 segment).
int tiffOrientation(const std::uint8_t* tiff, std::size_t size) {
    if (size < 8) return 1;
    bool bigEndian;
    if (tiff[0] == 'M' && tiff[1] == 'M')
        bigEndian = true;
    else if (tiff[0] == 'I' && tiff[1] == 'I')
        bigEndian = false;
    else
        return 1;
    if (read16(tiff + 2, bigEndian) != 42) return 1;
    std::size_t ifd = read32(tiff + 4, bigEndian);
    if (ifd > size || size - ifd < 2) return 1;
    std::size_t count = read16(tiff + ifd, bigEndian);
    for (std::size_t i = 0; i < count; ++i) {
        std::size_t entry = ifd + 2 + 12 * i;
        if (entry + 12 > size) return 1;
        if (read16(tiff + entry, bigEndian) != 0x0112) continue;
        if (read16(tiff + entry + 2, bigEndian) != 3) return 1; // must be a SHORT
        std::uint32_t value = read16(tiff + entry + 8, bigEndian);
        return value >= 1 && value <= 8 ? static_cast<int>(value) : 1;
    }
    return 1;
}

class TurboJpegHandle {
  public:
    explicit TurboJpegHandle(bool compress) : handle_(compress ? tjInitCompress() : tjInitDecompress()) {}
    ~TurboJpegHandle() {
        if (handle_) tjDestroy(handle_);
    }
    TurboJpegHandle(const TurboJpegHandle&) = delete;
    TurboJpegHandle& operator=(const TurboJpegHandle&) = delete;
    tjhandle get() const { return handle_; }

  private:
    tjhandle handle_;
};

} // namespace

// ---- PNG ----------------------------------------------------------------------

cairo_surface_t* decodePNG(std::span<const std::uint8_t> bytes, std::string& error) {
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&image, bytes.data(), bytes.size())) {
        error = std::string("unreadable PNG: ") + image.message;
        png_image_free(&image);
        return nullptr;
    }
    if (!pixelCountAllowed(image.width, image.height)) {
        error = "PNG of " + std::to_string(image.width) + " x " + std::to_string(image.height) +
                " pixels is over the pixel limit";
        png_image_free(&image);
        return nullptr;
    }
    // Read straight into the surface in the byte order of a native 32-bit ARGB
    // value, then premultiply in place.
    image.format = kLittleEndian ? PNG_FORMAT_BGRA : PNG_FORMAT_ARGB;
    int width = static_cast<int>(image.width), height = static_cast<int>(image.height);
    cairo_surface_t* surface = ImageAccess::createSurface(width, height);
    if (!surface) {
        error = "out of memory for the PNG's pixels";
        png_image_free(&image);
        return nullptr;
    }
    unsigned char* data = cairo_image_surface_get_data(surface);
    int stride = cairo_image_surface_get_stride(surface);
    if (!png_image_finish_read(&image, nullptr, data, stride, nullptr)) {
        error = std::string("corrupt PNG: ") + image.message;
        png_image_free(&image);
        cairo_surface_destroy(surface);
        return nullptr;
    }
    for (int y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(data + static_cast<std::size_t>(y) * stride);
        for (int x = 0; x < width; ++x) {
            std::uint32_t p = row[x];
            std::uint8_t a = static_cast<std::uint8_t>(p >> 24);
            if (a == 255) continue;
            if (a == 0) {
                row[x] = 0;
                continue;
            }
            row[x] = std::uint32_t(a) << 24 | std::uint32_t(premultiply((p >> 16) & 0xff, a)) << 16 |
                     std::uint32_t(premultiply((p >> 8) & 0xff, a)) << 8 | premultiply(p & 0xff, a);
        }
    }
    cairo_surface_mark_dirty(surface);
    return surface;
}

std::vector<std::uint8_t> encodePNG(cairo_surface_t* surface) {
    std::vector<std::uint8_t> out;
    if (!surface) return out;
    cairo_surface_flush(surface);
    int width = cairo_image_surface_get_width(surface);
    int height = cairo_image_surface_get_height(surface);
    int stride = cairo_image_surface_get_stride(surface);
    const unsigned char* pixels = cairo_image_surface_get_data(surface);
    if (!pixels || width <= 0 || height <= 0) return out;
    bool opaque = allOpaque(pixels, width, height, stride);
    std::vector<std::uint8_t> row(static_cast<std::size_t>(width) * 4);
    out.reserve(static_cast<std::size_t>(width) * height / 4);
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    if (!png) return out;
    png_infop info = png_create_info_struct(png);
    bool written = info && writePngRows(png, info, pixels, width, height, stride, opaque, row.data(), &out);
    png_destroy_write_struct(&png, info ? &info : nullptr);
    if (!written) out.clear();
    return out;
}

// ---- JPEG ---------------------------------------------------------------------

int jpegOrientation(std::span<const std::uint8_t> bytes) {
    const std::uint8_t* p = bytes.data();
    std::size_t size = bytes.size();
    if (size < 4 || p[0] != 0xFF || p[1] != 0xD8) return 1;
    std::size_t pos = 2;
    while (pos + 4 <= size) {
        if (p[pos] != 0xFF) return 1;
        std::uint8_t marker = p[pos + 1];
        if (marker == 0xFF) { // fill byte
            ++pos;
            continue;
        }
        if (marker == 0xD9 || marker == 0xDA) return 1; // end of image or start of scan: no EXIF
        std::size_t length = read16(p + pos + 2, true);
        if (length < 2 || pos + 2 + length > size) return 1;
        const std::uint8_t* body = p + pos + 4;
        std::size_t bodySize = length - 2;
        if (marker == 0xE1 && bodySize >= 6 && std::memcmp(body, "Exif\0\0", 6) == 0)
            return tiffOrientation(body + 6, bodySize - 6);
        pos += 2 + length;
    }
    return 1;
}

cairo_surface_t* applyOrientation(cairo_surface_t* surface, int orientation) {
    int width = cairo_image_surface_get_width(surface);
    int height = cairo_image_surface_get_height(surface);
    bool swaps = orientation >= 5;
    int outWidth = swaps ? height : width, outHeight = swaps ? width : height;
    cairo_surface_t* out = ImageAccess::createSurface(outWidth, outHeight);
    if (!out) return nullptr;
    cairo_surface_flush(surface);
    const unsigned char* source = cairo_image_surface_get_data(surface);
    int sourceStride = cairo_image_surface_get_stride(surface);
    unsigned char* target = cairo_image_surface_get_data(out);
    int targetStride = cairo_image_surface_get_stride(out);
    for (int y = 0; y < outHeight; ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(target + static_cast<std::size_t>(y) * targetStride);
        for (int x = 0; x < outWidth; ++x) {
            // Where the upright pixel (x, y) is stored in the file's pixel grid.
            int sx = x, sy = y;
            switch (orientation) {
            case 2:
                sx = width - 1 - x;
                break;
            case 3:
                sx = width - 1 - x;
                sy = height - 1 - y;
                break;
            case 4:
                sy = height - 1 - y;
                break;
            case 5:
                sx = y;
                sy = x;
                break;
            case 6:
                sx = y;
                sy = height - 1 - x;
                break;
            case 7:
                sx = width - 1 - y;
                sy = height - 1 - x;
                break;
            case 8:
                sx = width - 1 - y;
                sy = x;
                break;
            default:
                break;
            }
            row[x] = reinterpret_cast<const std::uint32_t*>(source +
                                                            static_cast<std::size_t>(sy) * sourceStride)[sx];
        }
    }
    cairo_surface_mark_dirty(out);
    return out;
}

cairo_surface_t* decodeJPEG(std::span<const std::uint8_t> bytes, std::string& error) {
    TurboJpegHandle handle(false);
    if (!handle.get()) {
        error = "JPEG decoder unavailable";
        return nullptr;
    }
    // TurboJPEG takes a non-const pointer but does not write through it.
    auto* data = const_cast<unsigned char*>(bytes.data());
    auto size = static_cast<unsigned long>(bytes.size());
    int width = 0, height = 0, subsampling = 0, colorspace = 0;
    if (bytes.empty() ||
        tjDecompressHeader3(handle.get(), data, size, &width, &height, &subsampling, &colorspace) != 0) {
        error = std::string("unreadable JPEG: ") + tjGetErrorStr2(handle.get());
        return nullptr;
    }
    if (!pixelCountAllowed(width, height)) {
        error = "JPEG of " + std::to_string(width) + " x " + std::to_string(height) +
                " pixels is over the pixel limit";
        return nullptr;
    }
    cairo_surface_t* surface = ImageAccess::createSurface(width, height);
    if (!surface) {
        error = "out of memory for the JPEG's pixels";
        return nullptr;
    }
    int format = kLittleEndian ? TJPF_BGRA : TJPF_ARGB; // alpha comes out as 0xFF
    if (tjDecompress2(handle.get(), data, size, cairo_image_surface_get_data(surface), width,
                      cairo_image_surface_get_stride(surface), height, format, 0) != 0) {
        // Fatal errors fail; of the warnings only a truncated stream does: the
        // other warnings (stray bytes between markers) are common in camera
        // files whose pictures are whole.
        std::string reason = tjGetErrorStr2(handle.get());
        if (tjGetErrorCode(handle.get()) == TJERR_FATAL ||
            reason.find("Premature end") != std::string::npos) {
            error = "corrupt JPEG: " + reason;
            cairo_surface_destroy(surface);
            return nullptr;
        }
    }
    cairo_surface_mark_dirty(surface);
    int orientation = jpegOrientation(bytes);
    if (orientation != 1) {
        cairo_surface_t* upright = applyOrientation(surface, orientation);
        cairo_surface_destroy(surface);
        if (!upright) error = "out of memory turning the JPEG upright";
        return upright;
    }
    return surface;
}

std::vector<std::uint8_t> encodeJPEG(cairo_surface_t* surface, double quality) {
    std::vector<std::uint8_t> out;
    if (!surface) return out;
    cairo_surface_flush(surface);
    TurboJpegHandle handle(true);
    if (!handle.get()) return out;
    int width = cairo_image_surface_get_width(surface);
    int height = cairo_image_surface_get_height(surface);
    if (width <= 0 || height <= 0) return out;
    // Quality 0...1 maps onto TurboJPEG's 1...100; NaN counts as the lowest.
    int level = std::isnan(quality) ? 1 : static_cast<int>(std::lround(std::clamp(quality, 0.0, 1.0) * 100));
    level = std::clamp(level, 1, 100);
    unsigned char* jpeg = nullptr;
    unsigned long jpegSize = 0;
    // JPEG has no alpha: premultiplied pixels read as colour over black.
    int format = kLittleEndian ? TJPF_BGRX : TJPF_XRGB;
    if (tjCompress2(handle.get(), cairo_image_surface_get_data(surface), width,
                    cairo_image_surface_get_stride(surface), height, format, &jpeg, &jpegSize, TJSAMP_420,
                    level, 0) == 0)
        out.assign(jpeg, jpeg + jpegSize);
    tjFree(jpeg);
    return out;
}

} // namespace morvane::gfx::detail
