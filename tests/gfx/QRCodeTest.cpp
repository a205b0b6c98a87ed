// QR codes written and read back: messages of every kind up to the capacity
// of a level-H code, drawn at several sizes, and pictures of codes that a
// camera would take badly (small, turned, noisy).
#include "Programs.h"

#include <morvane/gfx/ImageContext.h>
#include <morvane/gfx/QRCode.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <numbers>
#include <random>

using namespace morvane::gfx;

namespace {

std::span<const std::uint8_t> bytesOf(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string randomMessage(std::mt19937& random, std::size_t length) {
    // JSON-like text with accented letters, other scripts and emoji.
    const char* pieces[] = {"{\"nm\":", "\"Yayoi\"", "é", "ß", "東京", "🍣", ",", "}", "0", " ", "\\n"};
    std::string text;
    while (text.size() < length)
        text += pieces[std::uniform_int_distribution<int>(0, 10)(random)];
    return text;
}

// The code drawn at `points` and copied onto a white page `margin` points
// larger on each side, turned by `degrees`, with `noise` of the page's
// pixels set to random greys.
Image photographed(const Image& code, Size points, double degrees, double noise, unsigned seed) {
    const double margin = 40;
    ImageContext context(Size{points.width + 2 * margin, points.height + 2 * margin}, Opacity::Opaque, 1);
    Canvas& canvas = context.canvas();
    canvas.fillRect(Rect{0, 0, points.width + 2 * margin, points.height + 2 * margin}, Color::whiteColor());
    canvas.translate(margin + points.width / 2, margin + points.height / 2);
    canvas.rotate(degrees * std::numbers::pi / 180);
    canvas.drawImage(code, Rect{-points.width / 2, -points.height / 2, points.width, points.height});
    canvas.rotate(-degrees * std::numbers::pi / 180);
    canvas.translate(-(margin + points.width / 2), -(margin + points.height / 2));
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> unit(0, 1);
    const int dots = int(noise * (points.width + 2 * margin) * (points.height + 2 * margin));
    for (int i = 0; i < dots; ++i) {
        const double grey = unit(random);
        canvas.fillRect(Rect{std::floor(unit(random) * (points.width + 2 * margin)),
                             std::floor(unit(random) * (points.height + 2 * margin)), 1, 1},
                        Color(grey, grey, grey));
    }
    return context.takeImage();
}

// The picture out of focus: shrunk to a third and stretched back, smoothed
// both ways, so every module edge is a ramp of greys several pixels wide.
Image blurred(const Image& photo) {
    const Size full = photo.size(), small{full.width / 3, full.height / 3};
    ImageContext shrink(small, Opacity::Opaque, 1);
    shrink.canvas().drawImage(photo, Rect{0, 0, small.width, small.height});
    ImageContext grow(full, Opacity::Opaque, 1);
    grow.canvas().drawImage(shrink.takeImage(), Rect{0, 0, full.width, full.height});
    return grow.takeImage();
}

} // namespace

// Random messages, short to the largest a level-H code holds, come back byte
// for byte from codes drawn square, stretched and at two scales.
TEST(QRCode, messages_come_back_byte_for_byte_at_any_drawn_size) {
    std::mt19937 random(7);
    const std::size_t lengths[] = {1, 40, 300, 900};
    const Size sizes[] = {{200, 200}, {260, 180}};
    for (std::size_t length : lengths) {
        const std::string message = randomMessage(random, length);
        const auto code = QRCode::encode(bytesOf(message));
        ASSERT_TRUE(code) << length;
        for (const Size& size : sizes)
            for (double scale : {2.0, 3.0}) {
                const auto read = QRCode::read(QRCode::draw(*code, size, scale));
                ASSERT_EQ(read.size(), 1u) << length << " bytes at " << size.width << "x" << size.height;
                EXPECT_EQ(read[0], message);
            }
    }
    // The capacity of level H in byte mode, and one byte past it.
    const std::string largest(1273, 'x');
    const auto full = QRCode::encode(bytesOf(largest));
    ASSERT_TRUE(full);
    EXPECT_EQ(full->size, 177) << "the largest version";
    EXPECT_EQ(QRCode::read(QRCode::draw(*full, {400, 400}, 2)), std::vector<std::string>{largest});
    EXPECT_FALSE(QRCode::encode(bytesOf(largest + "x")));
    EXPECT_FALSE(QRCode::encode({}));
}

// A code taken small, turned 10 and 35 degrees, on a noisy page, is still
// read, also out of focus; a page without a code gives nothing.
TEST(QRCode, codes_photographed_badly_are_still_read) {
    const std::string message =
        R"({"nm":"Yayoi","bg":"K40918","fbase":"World/THA/Bangkok/Central/Food/Thai/Yayoi"})";
    const auto code = QRCode::encode(bytesOf(message));
    ASSERT_TRUE(code);
    const Image drawn = QRCode::draw(*code, {300, 300}, 2);
    for (double degrees : {0.0, 10.0, 35.0}) {
        const Image photo = photographed(drawn, {150, 150}, degrees, 0.02, unsigned(degrees));
        EXPECT_EQ(QRCode::read(photo), std::vector<std::string>{message}) << degrees << " degrees";
    }
    const Image soft = blurred(photographed(drawn, {300, 300}, 10, 0.02, 4));
    EXPECT_EQ(QRCode::read(soft), std::vector<std::string>{message}) << "out of focus";
    EXPECT_TRUE(QRCode::read(photographed(Image::blank(10, 10), {150, 150}, 0, 0.05, 1)).empty());
    EXPECT_TRUE(QRCode::read(Image()).empty());
}

// Another reader, written apart from the one the kit uses (zbar), reads the
// kit's codes byte for byte: the codes follow the standard, not just our reader.
TEST(QRCode, an_independent_reader_reads_the_kits_codes) {
    std::mt19937 random(11);
    const auto folder = std::filesystem::temp_directory_path() / "morvane-zbar";
    std::filesystem::create_directories(folder);
    int index = 0;
    for (std::size_t length : {12, 250, 1000}) {
        const std::string message = randomMessage(random, length);
        const auto code = QRCode::encode(bytesOf(message));
        ASSERT_TRUE(code);
        for (const Size& size : {Size{240, 240}, Size{300, 220}}) {
            const auto path = folder / ("code" + std::to_string(index++) + ".png");
            const auto png = QRCode::draw(*code, size, 3).pngData();
            std::ofstream(path, std::ios::binary)
                .write(reinterpret_cast<const char*>(png.data()), std::streamsize(png.size()));
            // Only what it read goes to the file; its complaints (no D-Bus here) do not.
            const auto text = folder / "read.txt";
            const auto outcome = morvane::test::runCommand("zbarimg --nodbus --quiet --raw -Sbinary " +
                                                           morvane::test::shellQuote(path.string()) + " >" +
                                                           morvane::test::shellQuote(text.string()));
            ASSERT_EQ(outcome.status, 0) << outcome.out;
            std::string read = morvane::test::readFile(text);
            if (!read.empty() && read.back() == '\n' && read.size() == message.size() + 1) read.pop_back();
            EXPECT_EQ(read, message) << length << " bytes at " << size.width << "x" << size.height;
        }
    }
    std::filesystem::remove_all(folder);
}
