#pragma once
// QR codes: a message encoded in byte mode at error correction level H (a
// code that survives a quarter of its surface damaged), drawn black on white,
// and codes read back from a picture. Built on libqrencode and ZXing.
//
//   if (auto code = gfx::QRCode::encode(bytes))
//       image = gfx::QRCode::draw(*code, {200, 200}, 3);
//   for (const std::string& text : gfx::QRCode::read(photo)) ...
//
// Safe from any thread.

#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Image.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace morvane::gfx {

class QRCode {
  public:
    QRCode() = delete;

    // The code's modules, `size` by `size`, row by row; true is dark.
    struct Modules {
        int size = 0;
        std::vector<bool> dark;
        bool at(int x, int y) const { return dark[std::size_t(y) * std::size_t(size) + std::size_t(x)]; }
    };

    // White modules drawn around the code, so that a reader finds its edge
    // whatever it is drawn on.
    static constexpr int kQuietModules = 2;

    // The code of the message; nothing when it does not fit a code at level H
    // (1,273 bytes at the most) or is empty.
    static std::optional<Modules> encode(std::span<const std::uint8_t> message);
    // The code with its quiet zone over `size` points at `scale`: each module
    // as many whole pixels wide as fit the width and as high as fit the
    // height (not square when the size is not), the code centred on white.
    static Image draw(const Modules& code, Size size, double scale);
    // The messages of the QR codes the picture shows, as their bytes.
    static std::vector<std::string> read(const Image& image);
};

} // namespace morvane::gfx
