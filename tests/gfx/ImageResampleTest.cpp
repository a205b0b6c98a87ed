// A picture drawn scaled is resampled once to its size in device pixels and
// kept with the image for the next draw of that size: what a scrolling list
// draws on every frame.
#include "Snapshot.h"

#include <morvane/gfx/ImageContext.h>

#include <gtest/gtest.h>

using namespace morvane::gfx;

namespace {

Image picture() {
    ImageContext context(Size{60, 40}, Opacity::Transparent, 1);
    context.canvas().fillRect(Rect{0, 0, 60, 40}, Color(0.2, 0.5, 0.9));
    context.canvas().fillEllipse(Rect{10, 5, 30, 30}, Color::whiteColor().withAlpha(0.7));
    return context.takeImage();
}

// The picture drawn into a fresh context at scale 3.
Image drawn(const Image& image, const Rect& rect) {
    ImageContext context(Size{80, 80}, Opacity::Opaque, 3);
    context.canvas().clear(Color::blackColor());
    context.canvas().drawImage(image, rect, ContentMode::AspectFill);
    return context.takeImage();
}

} // namespace

// Drawn at one size, then another, then the first again, the kept copy must
// never be used for the wrong size: each draw matches the same picture drawn
// for the first time (a copy with nothing kept), at whole and part points.
TEST(ImageResample, a_kept_copy_serves_only_its_own_size) {
    const Image image = picture();
    const Rect sizes[] = {{10, 10, 30, 20}, {5.2, 7.7, 61.3, 40.1}, {10, 10, 30, 20}, {0.4, 0.4, 12, 8}};
    for (const Rect& rect : sizes) {
        const Image fresh = Image::fromPNG(image.pngData(), 1);
        EXPECT_TRUE(morvane::testing::imagesMatch(drawn(image, rect), drawn(fresh, rect), 0, 0))
            << rect.x << "," << rect.y << " " << rect.width << "x" << rect.height;
    }
}
