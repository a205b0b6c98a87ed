#include "SamplePictures.h"

#include <morvane/gfx/Image.h>

#include <cstdint>
#include <fstream>
#include <span>
#include <sstream>
#include <string_view>

namespace gallery {

namespace {

struct Source {
    std::string_view file;
    bool png; // a few places come as PNG so both decoders take part
};

// Wide, square, a little wider than square, and tall pictures, so that the
// row cells show each of their fit and fill rules.
constexpr Source kSources[] = {
    {"harbour", false}, {"tower", false},   {"cafe", true},   {"market", false}, {"museum", true},
    {"park", false},    {"bakery", false},  {"hotel", true},  {"bistro", false}, {"beach", false},
    {"bridge", false},  {"painting", true}, {"guest", false},
};

std::string bytesOf(const std::vector<std::uint8_t>& data) {
    return std::string(data.begin(), data.end());
}

// The encoded picture, or "" when the SVG cannot be drawn.
std::string encode(const std::string& svg, bool png, int* width, int* height, std::string* error) {
    const auto bytes =
        std::span<const std::uint8_t>(reinterpret_cast<const std::uint8_t*>(svg.data()), svg.size());
    const morvane::gfx::Image image = morvane::gfx::Image::fromSVG(bytes, {}, 1, error);
    if (image.isNull()) return {};
    *width = image.pixelWidth();
    *height = image.pixelHeight();
    return bytesOf(png ? image.pngData() : image.jpegData(0.88));
}

} // namespace

std::string SamplePictures::evening(std::string svg) {
    // The drawings share two sky colours; dusk swaps them for warm ones.
    const std::pair<std::string_view, std::string_view> swaps[] = {{"#8ecae6", "#f4845f"},
                                                                   {"#bde0fe", "#f7b267"}};
    for (const auto& [day, dusk] : swaps)
        for (std::size_t at = svg.find(day); at != std::string::npos; at = svg.find(day, at + dusk.size()))
            svg.replace(at, day.size(), dusk);
    return svg;
}

std::vector<SamplePicture> SamplePictures::render(const std::filesystem::path& folder, std::string* error) {
    std::vector<SamplePicture> pictures;
    for (const Source& source : kSources) {
        const auto file = folder / (std::string(source.file) + ".svg");
        std::ifstream in(file, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        if (!in || text.str().empty()) {
            if (error) *error = "cannot read " + file.string();
            return {};
        }
        SamplePicture picture;
        picture.path = "/pictures/" + std::string(source.file) + (source.png ? ".png" : ".jpg");
        picture.contentType = source.png ? "image/png" : "image/jpeg";
        std::string why;
        picture.day = encode(text.str(), source.png, &picture.width, &picture.height, &why);
        int width = 0, height = 0;
        picture.evening = encode(evening(text.str()), source.png, &width, &height, &why);
        if (picture.day.empty() || picture.evening.empty()) {
            if (error) *error = "cannot draw " + file.string() + (why.empty() ? "" : ": " + why);
            return {};
        }
        pictures.push_back(std::move(picture));
    }
    return pictures;
}

} // namespace gallery
