#include <morvane/gfx/ImageContext.h>
#include <morvane/gfx/TextMetrics.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace morvane::gfx;

namespace {

Image picture(double shade) {
    ImageContext context(Size{40, 30}, Opacity::Transparent, 2);
    context.canvas().fillRect(Rect{0, 0, 40, 30}, Color(shade, 0.5, 1 - shade));
    context.canvas().fillEllipse(Rect{5, 5, 20, 20}, Color::whiteColor().withAlpha(0.5));
    return context.takeImage();
}

} // namespace

// Downloads decode on background queues while the main thread draws pictures
// that are already there: decoding, encoding and drawing shared images on
// several threads at once must not race.
TEST(ImageThreads, decode_encode_and_draw_on_several_threads) {
    Image shared = picture(0.3);
    auto png = shared.pngData();
    auto jpeg = shared.jpegData(0.9);
    std::vector<std::thread> workers;
    std::vector<int> decoded(4, 0);
    for (int t = 0; t < 4; ++t) {
        workers.emplace_back([&, t] {
            for (int i = 0; i < 20; ++i) {
                Image fromPng = Image::fromPNG(png, 2);
                Image fromJpeg = Image::fromJPEG(jpeg, 2);
                if (fromPng.pixelWidth() == 80 && fromJpeg.pixelHeight() == 60) ++decoded[t];
                (void)picture(0.1 * t).pngData();
                ImageContext context(Size{40, 30}, Opacity::Opaque, 1);
                // Each thread at its own size: the copy kept for one size is replaced by another.
                context.canvas().drawImage(shared, Rect{0, 0, 40.0 - t, 30}, ContentMode::AspectFill);
                (void)shared.pixelColor(3, 3);
            }
        });
    }
    for (std::thread& worker : workers)
        worker.join();
    for (int count : decoded)
        EXPECT_EQ(count, 20);
}

// Text engines are per thread: another thread measures the same text to the
// same size without disturbing this thread's cache.
TEST(ImageThreads, text_measures_alike_on_another_thread) {
    Font font = Font::systemFont(17);
    Size here = TextMetrics::size("Sample Text", font);
    Size there;
    std::thread other([&] { there = TextMetrics::size("Sample Text", font); });
    other.join();
    EXPECT_EQ(here, there);
    EXPECT_EQ(TextMetrics::size("Sample Text", font), here);
}
