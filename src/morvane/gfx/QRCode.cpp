#include <morvane/gfx/QRCode.h>

#include <morvane/gfx/detail/ImageAccess.h>

#include <ZXing/ReadBarcode.h>
#include <qrencode.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace morvane::gfx {

std::optional<QRCode::Modules> QRCode::encode(std::span<const std::uint8_t> message) {
    if (message.empty()) return std::nullopt;
    // Version 0: the smallest code the message fits.
    QRcode* code = QRcode_encodeData(int(message.size()), message.data(), 0, QR_ECLEVEL_H);
    if (!code) return std::nullopt;
    Modules modules;
    modules.size = code->width;
    modules.dark.resize(std::size_t(code->width) * std::size_t(code->width));
    for (std::size_t i = 0; i < modules.dark.size(); ++i)
        modules.dark[i] = (code->data[i] & 1) != 0; // the low bit is the module's colour
    QRcode_free(code);
    return modules;
}

Image QRCode::draw(const Modules& code, Size size, double scale) {
    if (code.size <= 0 || !(size.width > 0) || !(size.height > 0) || !(scale > 0)) return {};
    const int width = int(std::lround(size.width * scale)), height = int(std::lround(size.height * scale));
    cairo_surface_t* surface = detail::ImageAccess::createSurface(width, height);
    if (!surface) return {};
    const int extent = code.size + 2 * kQuietModules;
    // Every module the same whole number of pixels across and down (the
    // largest that fits), the code centred and the rest white: modules that
    // differ by a pixel are much harder for a reader to sample. Below one
    // pixel a module, positions are rounded down instead.
    const int across = width / extent, down = height / extent;
    const int left = (width - across * extent) / 2, top = (height - down * extent) / 2;
    auto module = [extent](int pixel, int perModule, int offset, int length) {
        if (perModule > 0) return pixel < offset ? -1 : (pixel - offset) / perModule;
        return int(double(pixel) * extent / length);
    };
    auto* pixels = reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(surface));
    const std::size_t stride = std::size_t(cairo_image_surface_get_stride(surface) / 4);
    // The module of each column, worked out once; rows of the same module
    // row are copies of the first one drawn.
    std::vector<int> columns(static_cast<std::size_t>(width));
    for (int x = 0; x < width; ++x)
        columns[std::size_t(x)] = module(x, across, left, width) - kQuietModules;
    int drawnRow = std::numeric_limits<int>::min();
    for (int y = 0; y < height; ++y) {
        std::uint32_t* row = pixels + std::size_t(y) * stride;
        const int my = module(y, down, top, height) - kQuietModules;
        if (my == drawnRow && y > 0) {
            std::memcpy(row, row - stride, std::size_t(width) * 4);
            continue;
        }
        drawnRow = my;
        const bool inside = my >= 0 && my < code.size;
        for (int x = 0; x < width; ++x) {
            const int mx = columns[std::size_t(x)];
            const bool dark = inside && mx >= 0 && mx < code.size && code.at(mx, my);
            row[x] = dark ? 0xFF000000u : 0xFFFFFFFFu;
        }
    }
    cairo_surface_mark_dirty(surface);
    return detail::ImageAccess::adopt(surface, scale, true);
}

std::vector<std::string> QRCode::read(const Image& image) {
    cairo_surface_t* surface = detail::ImageAccess::surface(image);
    if (!surface) return {};
    cairo_surface_flush(surface);
    const ZXing::ImageView view(cairo_image_surface_get_data(surface), cairo_image_surface_get_width(surface),
                                cairo_image_surface_get_height(surface), ZXing::ImageFormat::BGRX,
                                cairo_image_surface_get_stride(surface));
    ZXing::DecodeHints hints;
    hints.setFormats(ZXing::BarcodeFormat::QRCode);
    hints.setTryHarder(true);
    hints.setTryRotate(true);
    std::vector<std::string> texts;
    for (const ZXing::Result& result : ZXing::ReadBarcodes(view, hints)) {
        if (!result.isValid()) continue;
        const auto& bytes = result.bytes();
        texts.emplace_back(bytes.begin(), bytes.end());
    }
    return texts;
}

} // namespace morvane::gfx
