// Draws a phone screen the way the list screens look (390 x 844 points at
// scale 3: a header with a shadow, a two-column grid of ten tiles with circular
// pictures, bold and italic texts, a strip of four round buttons) and times the
// frame, the PNG and JPEG codecs on it, and a repeated text measurement.
//
//   morvane_bench_gfx [frame.png]   (optionally writes the last frame)

#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/ImageContext.h>
#include <morvane/gfx/TextMetrics.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

using namespace morvane::gfx;
using Clock = std::chrono::steady_clock;

namespace {

constexpr Size kScreen{390, 844};
constexpr double kScale = 3;
constexpr int kTiles = 10;
constexpr double kMargin = 12;
constexpr double kHeaderHeight = 110;
constexpr double kPictureSide = 64;

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// Milliseconds per run of `work`, median over `runs`; the fastest run goes to
// `fastest` when given (on a shared machine it shows the cost without waiting).
double timeMedian(int runs, const std::function<void()>& work, double* fastest = nullptr) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        auto start = Clock::now();
        work();
        times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    if (fastest) *fastest = *std::min_element(times.begin(), times.end());
    return median(times);
}

// A photo-like picture: colour bands, a sun and some noise-free texture,
// encoded as JPEG and decoded again, as a downloaded picture would arrive.
Image photo(int index) {
    ImageContext context(Size{800, 600}, Opacity::Opaque, 1);
    Canvas& canvas = context.canvas();
    for (int band = 0; band < 12; ++band) {
        double t = band / 12.0;
        canvas.fillRect(Rect{0, band * 50.0, 800, 50},
                        Color(0.2 + 0.6 * t, 0.3 + 0.05 * index, 0.8 - 0.5 * t));
    }
    canvas.fillEllipse(Rect{200.0 + index * 30, 120, 260, 260}, Color(1, 0.85, 0.3));
    for (int i = 0; i < 40; ++i)
        canvas.fillRect(Rect{i * 20.0, 500.0 - (i * 37 % 90), 12, 100}, Color::gray(0.1 + i % 5 * 0.1));
    return Image::fromJPEG(context.takeImage().jpegData(0.85));
}

struct Tile {
    Rect frame;
    Image picture;       // the downloaded picture
    Image cachedPicture; // scaled and clipped for the tile at the screen scale
    std::string name, body, price;
};

Rect pictureFrame(const Tile& tile) {
    return Rect{tile.frame.x + 10, tile.frame.y + 10, kPictureSide, kPictureSide};
}

// What an image view keeps between frames: the picture already scaled into
// its circle at the device scale, so a frame copies pixels 1:1.
Image scaledCircle(const Image& picture, double side, double scale) {
    ImageContext context(Size{side, side}, Opacity::Transparent, scale);
    Canvas& canvas = context.canvas();
    canvas.clipToRoundedRect(Rect{0, 0, side, side}, side / 2);
    canvas.drawImage(picture, Rect{0, 0, side, side}, ContentMode::AspectFill);
    return context.takeImage();
}

void drawFrame(Canvas& canvas, const std::vector<Tile>& tiles, bool usePictureCache) {
    const Color background(0.1, 0.16, 0.26);
    const Color tileColor = Color(0.2, 0.28, 0.42);
    const double f = Font::systemFontSize();
    canvas.fillRect(Rect{Point{}, kScreen}, background);

    // Header with a shadow.
    Rect header{0, 0, kScreen.width, kHeaderHeight};
    canvas.drawShadow(header, 0, Shadow{Color::blackColor(), 0.5, 6, Size{0, 3}});
    canvas.fillRect(header, Color(0.16, 0.24, 0.38));
    TextStyle title{Font::boldSystemFont(1.5 * f), Color::whiteColor()};
    title.alignment = TextAlignment::Center;
    canvas.drawText("Harbour Hotel", Rect{20, 44, kScreen.width - 40, 32}, title);
    TextStyle subtitle{Font::italicSystemFont(0.8 * f), Color::lightTextColor()};
    subtitle.alignment = TextAlignment::Center;
    canvas.drawText("Breakfast · Lunch · Dinner · Bar", Rect{20, 78, kScreen.width - 40, 20}, subtitle);

    TextStyle nameStyle{Font::boldSystemFont(0.9 * f), Color::whiteColor()};
    TextStyle bodyStyle{Font::italicSystemFont(0.7 * f), Color::lightTextColor()};
    bodyStyle.numberOfLines = 2;
    TextStyle priceStyle{Font::boldSystemFont(0.9 * f), Color::yellowColor()};
    priceStyle.alignment = TextAlignment::Right;
    for (const Tile& tile : tiles) {
        if (!canvas.isVisible(tile.frame)) continue;
        auto saved = canvas.saved();
        canvas.fillRoundedRect(tile.frame, 12, tileColor);
        Rect picture = pictureFrame(tile);
        if (usePictureCache) {
            canvas.drawImage(tile.cachedPicture, picture.origin());
        } else {
            auto clip = canvas.saved();
            canvas.clipToRoundedRect(picture, kPictureSide / 2);
            canvas.drawImage(tile.picture, picture, ContentMode::AspectFill);
        }
        canvas.strokeEllipse(picture, Color::whiteColor(), 1.5);
        double textX = picture.maxX() + 8;
        double textWidth = tile.frame.maxX() - textX - 8;
        canvas.drawText(tile.price, Rect{textX, picture.y + 2, textWidth, 20}, priceStyle);
        canvas.drawText(tile.name, Rect{tile.frame.x + 10, picture.maxY() + 6, tile.frame.width - 20, 20},
                        nameStyle);
        canvas.drawText(tile.body, Rect{tile.frame.x + 10, picture.maxY() + 26, tile.frame.width - 20, 28},
                        bodyStyle);
    }

    // A strip of four round buttons.
    const char* symbols[] = {"←", "✓", "✘", "↑"};
    double side = 52, gap = (kScreen.width - 4 * side) / 5;
    TextStyle symbolStyle{Font::boldSystemFont(1.2 * f), Color::blackColor()};
    symbolStyle.alignment = TextAlignment::Center;
    symbolStyle.verticalAlignment = VerticalAlignment::Center;
    for (int i = 0; i < 4; ++i) {
        Rect button{gap + i * (side + gap), kScreen.height - side - 24, side, side};
        canvas.drawShadow(button, side / 2, Shadow{Color::blackColor(), 0.4, 4, Size{0, 2}});
        canvas.fillEllipse(button, Color(0.9, 0.9, 0.95));
        canvas.drawText(symbols[i], button, symbolStyle);
    }
}

void goal(const char* name, double measured, double target, bool met, const char* unit) {
    std::printf("GOAL %s measured=%.3f%s target=%g%s met=%s\n", name, measured, unit, target, unit,
                met ? "yes" : "no");
}

} // namespace

int main(int argc, char** argv) {
    std::vector<Tile> tiles;
    const char* names[] = {"Harbour Suite", "Garden Room",  "Sea Terrace", "Spa Day",   "Sunset Bar",
                           "Kids Club",     "Rooftop Pool", "Wine Cellar", "Boat Trip", "Late Checkout"};
    double tileWidth = (kScreen.width - 3 * kMargin) / 2, tileHeight = 134;
    for (int i = 0; i < kTiles; ++i) {
        Tile tile;
        tile.frame = Rect{kMargin + (i % 2) * (tileWidth + kMargin),
                          kHeaderHeight + kMargin + (i / 2) * (tileHeight + kMargin), tileWidth, tileHeight};
        tile.picture = photo(i);
        tile.cachedPicture = scaledCircle(tile.picture, kPictureSide, kScale);
        tile.name = names[i];
        tile.body = "Open daily from seven; ask the front desk for a table by the window";
        tile.price = "€ " + std::to_string(40 + i * 15);
        tiles.push_back(std::move(tile));
    }

    ImageContext frame(kScreen, Opacity::Opaque, kScale);
    Canvas& canvas = frame.canvas();
    for (int i = 0; i < 5; ++i)
        drawFrame(canvas, tiles, true); // warm caches and pages
    double fastestFrameMs = 0;
    double frameMs = timeMedian(
        100, [&] { drawFrame(canvas, tiles, true); }, &fastestFrameMs);
    double uncachedMs = timeMedian(20, [&] { drawFrame(canvas, tiles, false); });
    drawFrame(canvas, tiles, true);
    Image shot = frame.image();

    std::vector<std::uint8_t> png, jpeg;
    double pngEncodeMs = timeMedian(7, [&] { png = shot.pngData(); });
    double pngDecodeMs = timeMedian(7, [&] { (void)Image::fromPNG(png); });
    double jpegEncodeMs = timeMedian(7, [&] { jpeg = shot.jpegData(0.8); });
    double jpegDecodeMs = timeMedian(7, [&] { (void)Image::fromJPEG(jpeg); });
    bool roundTrips = Image::fromPNG(png).pixelWidth() == 1170 && Image::fromJPEG(jpeg).pixelHeight() == 2532;

    Font font = Font::systemFont(17);
    TextMetrics::size("Sample Text", font); // first measurement lays the text out
    constexpr int kMeasurements = 2'000'000;
    double sink = 0;
    auto start = Clock::now();
    for (int i = 0; i < kMeasurements; ++i)
        sink += TextMetrics::size("Sample Text", font).height;
    double measureUs =
        std::chrono::duration<double, std::micro>(Clock::now() - start).count() / kMeasurements;
    auto firstStart = Clock::now();
    TextMetrics::clearCache();
    TextMetrics::size("Sample Text", font);
    double firstMeasureUs = std::chrono::duration<double, std::micro>(Clock::now() - firstStart).count();

    if (argc > 1) {
        std::ofstream out(argv[1], std::ios::binary);
        out.write(reinterpret_cast<const char*>(png.data()), static_cast<std::streamsize>(png.size()));
    }

    std::printf("frame %d x %d pixels: median %.3f ms (fastest %.3f ms) with cached pictures, %.3f ms median "
                "scaling the pictures each frame\n",
                shot.pixelWidth(), shot.pixelHeight(), frameMs, fastestFrameMs, uncachedMs);
    std::printf("PNG  encode %.2f ms (%zu bytes), decode %.2f ms\n", pngEncodeMs, png.size(), pngDecodeMs);
    std::printf("JPEG encode %.2f ms (%zu bytes, quality 0.8), decode %.2f ms; round trips %s\n",
                jpegEncodeMs, jpeg.size(), jpegDecodeMs, roundTrips ? "ok" : "FAILED");
    std::printf("text measurement: %.4f us cached, %.1f us first time (check %.0f)\n", measureUs,
                firstMeasureUs, sink / kMeasurements);
    goal("gfx_frame_median", frameMs, 5, frameMs <= 5, "ms");
    goal("gfx_png_snapshot", pngEncodeMs, 50, pngEncodeMs <= 50 && roundTrips, "ms");
    goal("gfx_cached_text_measurement", measureUs, 1, measureUs < 1, "us");
    return 0;
}
