// The renderer: snapshots of a card (rounded corners, border, shadow, a
// clipped picture) against stored references, and pixel checks of the drawing
// rules: order, clipping, masks, shifts, alpha, hidden and empty views.

#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/ImageContext.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include "UiTestSupport.h"

#include <Snapshot.h>

#include <gtest/gtest.h>

#include <cmath>

namespace morvane::ui {
namespace {

using testing::box;

// A landscape picture with features in every corner, so aspect fill and
// clipping show in the snapshot.
gfx::Image landscape() {
    gfx::ImageContext context({160, 90}, gfx::Opacity::Opaque, 2);
    auto& c = context.canvas();
    c.fillRect({0, 0, 160, 60}, gfx::Color::fromBytes(0x87, 0xce, 0xeb));
    c.fillRect({0, 60, 160, 30}, gfx::Color::fromBytes(0x2e, 0x7d, 0x32));
    c.fillEllipse({115, 8, 30, 30}, gfx::Color::fromBytes(0xff, 0xd5, 0x4f));
    c.fillRect({0, 0, 12, 12}, gfx::Color::redColor());
    c.fillRect({148, 78, 12, 12}, gfx::Color::blueColor());
    return context.takeImage();
}

std::shared_ptr<Window> cardScreen(HeadlessHost& host) {
    host.root()->setBackgroundColor(gfx::Color::fromBytes(0xec, 0xef, 0xf1));
    auto card = box({30, 40, 240, 200}, gfx::Color::whiteColor());
    card->layer().setCornerRadius(18);
    card->layer().setBorderWidth(3);
    card->layer().setBorderColor(gfx::Color::fromBytes(0x37, 0x47, 0x4f));
    card->layer().setShadowOpacity(0.5);
    card->layer().setShadowRadius(8);
    card->layer().setShadowOffset({4, 6});

    auto photo = std::make_shared<ImageView>(gfx::Rect{20, 20, 100, 100});
    photo->setImage(landscape());
    photo->setContentMode(gfx::ContentMode::AspectFill);
    photo->setClipsToBounds(true);
    photo->layer().setCornerRadius(50); // a circle

    auto title = std::make_shared<Label>(gfx::Rect{20, 135, 200, 30});
    title->setText("Harbour View Suite");
    title->setFont(gfx::Font::boldSystemFont(18));
    title->setTextColor(gfx::Color::fromBytes(0x26, 0x32, 0x38));

    // A ribbon that sticks out of the card; cut off only when the card clips.
    auto ribbon = box({190, -10, 80, 40}, gfx::Color::fromBytes(0xd8, 0x1b, 0x60));
    card->setClipsToBounds(false);
    card->addSubview(photo);
    card->addSubview(title);
    card->addSubview(ribbon);
    host.root()->addSubview(card);
    return host.root();
}

TEST(Render, card_snapshots_match_references_at_scales_one_and_three) {
    HeadlessHost host({300, 280});
    cardScreen(host);
    host.runUntilIdle();
    morvane::testing::expectImageMatches(host.snapshot(1), "tests/ui/core/snapshots/card@1x.png");
    morvane::testing::expectImageMatches(host.snapshot(3), "tests/ui/core/snapshots/card@3x.png");
}

TEST(Render, clipped_card_hides_its_shadow_and_cuts_its_children) {
    HeadlessHost host({300, 280});
    cardScreen(host);
    View& card = *host.root()->subviews().front();
    card.setClipsToBounds(true);
    host.runUntilIdle();
    morvane::testing::expectImageMatches(host.snapshot(2), "tests/ui/core/snapshots/card_clipped@2x.png");
}

// Pixel rules, each named by the fault it would catch.
TEST(Render, drawing_rules_hold_pixel_by_pixel) {
    HeadlessHost host({100, 100});
    auto color = [&](int x, int y) { return *host.snapshot(1).pixelColor(x, y); };
    const gfx::Color white = gfx::Color::whiteColor();

    // Children draw above the parent's background, the border above the children.
    auto parent = box({10, 10, 80, 80}, gfx::Color::redColor());
    parent->layer().setBorderWidth(4);
    parent->layer().setBorderColor(gfx::Color::blackColor());
    auto child = box({0, 0, 40, 40}, gfx::Color::blueColor());
    parent->addSubview(child);
    host.root()->addSubview(parent);
    EXPECT_TRUE(color(12, 12).isClose(gfx::Color::blackColor(), 0.01)) << "border on top of the child";
    EXPECT_TRUE(color(20, 20).isClose(gfx::Color::blueColor(), 0.01));
    EXPECT_TRUE(color(60, 60).isClose(gfx::Color::redColor(), 0.01));

    // Hidden views and zero or negative sizes draw nothing, children included.
    parent->setHidden(true);
    EXPECT_TRUE(color(20, 20).isClose(white, 0.01));
    parent->setHidden(false);
    parent->setFrame({10, 10, 0, 80});
    EXPECT_TRUE(color(20, 20).isClose(white, 0.01));
    parent->setFrame({90, 90, -80, -80});
    EXPECT_TRUE(color(20, 20).isClose(white, 0.01));
    EXPECT_TRUE(color(50, 50).isClose(white, 0.01));
    // A view placed at not-a-number or squashed flat draws nothing and spoils nothing else.
    auto broken = box({std::nan(""), 0, 50, 50}, gfx::Color::greenColor());
    auto flat = box({0, 0, 50, 50}, gfx::Color::greenColor());
    flat->setTransform(gfx::Transform::scale(0, 1));
    host.root()->insertSubview(broken, 0);
    host.root()->insertSubview(flat, 0);
    parent->setFrame({10, 10, 80, 80});
    EXPECT_TRUE(color(60, 60).isClose(gfx::Color::redColor(), 0.01));
    EXPECT_TRUE(color(5, 5).isClose(white, 0.01));
    broken->removeFromSuperview();
    flat->removeFromSuperview();
    parent->layer().setBorderWidth(0);

    // A scrolled bounds origin and a sublayer shift move the children only.
    parent->setBounds({20, 0, 80, 80});
    EXPECT_TRUE(color(5 + 10, 20).isClose(gfx::Color::blueColor(), 0.01));
    EXPECT_TRUE(color(35, 20).isClose(gfx::Color::redColor(), 0.01)) << "child moved 20 points left";
    parent->setBounds({0, 0, 80, 80});
    parent->layer().setSublayerTranslation({30, 0});
    EXPECT_TRUE(color(15, 20).isClose(gfx::Color::redColor(), 0.01));
    EXPECT_TRUE(color(75, 20).isClose(gfx::Color::blueColor(), 0.01));
    parent->layer().setSublayerTranslation({});

    // The mask layer cuts the background too (rows show gaps between them).
    parent->layer().setMask(MaskLayer{{5, 5, 70, 70}, 0});
    EXPECT_TRUE(color(12, 50).isClose(white, 0.01));
    EXPECT_TRUE(color(20, 50).isClose(gfx::Color::redColor(), 0.01));
    parent->layer().setMask(std::nullopt);

    // A half-transparent parent fades as a group: where the child covers the
    // parent, the parent does not show through the child.
    parent->setAlpha(0.5);
    gfx::Color overlap = color(20, 20);
    EXPECT_NEAR(overlap.red, 0.5, 0.02);
    EXPECT_NEAR(overlap.blue, 1.0, 0.02);
    parent->setAlpha(1);

    // Scale and turn about the centre (the layer's 3-D scale draws as its x and y).
    parent->setTransform(gfx::Transform::scale3D(0.5, 0.5, 0.5));
    EXPECT_TRUE(color(15, 15).isClose(white, 0.01));
    EXPECT_TRUE(color(32, 32).isClose(gfx::Color::blueColor(), 0.01));
    EXPECT_TRUE(color(65, 65).isClose(gfx::Color::redColor(), 0.01));
}

// Views wholly under an opaque sibling that fills what can be seen are not
// drawn; anything that lets them show through (a fade, a rounded or moving
// cover, one that leaves a strip open) draws them as before.
TEST(Render, views_under_an_opaque_cover_are_skipped_unless_they_could_show) {
    HeadlessHost host({100, 100});
    auto page = box({0, 0, 100, 100}, gfx::Color::redColor());
    for (int i = 0; i < 5; ++i)
        page->addSubview(box({10.0 * i, 10, 8, 8}, gfx::Color::greenColor()));
    auto cover = box({0, 0, 100, 100}, gfx::Color::blueColor());
    cover->addSubview(box({40, 40, 20, 20}, gfx::Color::whiteColor()));
    host.root()->addSubview(page);
    host.root()->addSubview(cover);
    host.runUntilIdle();

    auto drawn = [&] {
        const gfx::Size size = host.root()->bounds().size();
        std::vector<std::uint8_t> pixels(std::size_t(size.width * size.height * 4));
        auto canvas =
            gfx::Canvas::overPixels(pixels.data(), int(size.width), int(size.height), int(size.width) * 4, 1);
        Renderer renderer;
        renderer.render(*host.root(), *canvas);
        return renderer.viewsDrawn();
    };
    EXPECT_EQ(drawn(), 3) << "the window, the cover and its child";
    EXPECT_TRUE(host.snapshot(1).pixelColor(15, 15)->isClose(gfx::Color::blueColor(), 0.01));

    cover->setAlpha(0.99);
    EXPECT_EQ(drawn(), 9);
    cover->setAlpha(1);
    cover->layer().setCornerRadius(4);
    EXPECT_EQ(drawn(), 9);
    cover->layer().setCornerRadius(0);
    cover->setFrame({0, 1, 100, 99});
    EXPECT_EQ(drawn(), 9);
    EXPECT_TRUE(host.snapshot(1).pixelColor(50, 0)->isClose(gfx::Color::redColor(), 0.01));
    View::animate(1, [&] { cover->setFrame({0, 0, 100, 100}); });
    EXPECT_EQ(drawn(), 9) << "while it moves";
    cover->removeAllAnimations();
    cover->setBackgroundColor(gfx::Color(0, 0, 1, 0.5));
    EXPECT_EQ(drawn(), 9);
    EXPECT_TRUE(host.snapshot(1).pixelColor(5, 50)->isClose(gfx::Color(0.5, 0, 0.5, 1), 0.02));
}

// A background under opaque children is filled only around them; where the
// children's edges fall between pixels, the background must still show
// through exactly as when it is painted whole underneath (here by a separate
// backdrop view behind a transparent parent).
TEST(Render, background_hidden_by_opaque_children_draws_the_same_pixels) {
    auto screen = [](bool ownBackground) {
        auto window = Window::create({200, 300});
        gfx::Color tone = gfx::Color::fromBytes(0x2a, 0x9d, 0x8f, 200);
        if (!ownBackground) window->addSubview(box({3.3, 4.7, 190.2, 280.9}, tone));
        auto parent = std::make_shared<View>(gfx::Rect{3.3, 4.7, 190.2, 280.9});
        parent->setBackgroundColor(ownBackground ? tone : gfx::Color::clearColor());
        parent->setBounds({0, 5.15, 190.2, 280.9}); // content shifted by a fraction
        for (int r = 0; r < 12; ++r) {
            // Rows of fractional height, with gaps, one translucent and one rounded (neither hides anything).
            auto row = box({r % 3 * 0.4, 21.3 * r + 0.2, 190.2 - r % 3 * 0.8, 21.3 - (r % 4 == 1 ? 1.1 : 0)},
                           gfx::Color::gray(0.1 + 0.07 * r, r == 5 ? 0.6 : 1));
            if (r == 8) row->layer().setCornerRadius(6);
            parent->addSubview(row);
        }
        parent->addSubview(box({150.35, -3, 60, 40}, gfx::Color::redColor())); // past the parent's edge
        window->addSubview(parent);
        return window;
    };
    for (double scale : {1.0, 2.0, 3.0}) {
        auto own = screen(true), separate = screen(false);
        gfx::ImageContext a({200, 300}, gfx::Opacity::Opaque, scale),
            b({200, 300}, gfx::Opacity::Opaque, scale);
        Renderer renderer;
        renderer.render(*own, a.canvas());
        renderer.render(*separate, b.canvas());
        EXPECT_TRUE(morvane::testing::imagesMatch(a.takeImage(), b.takeImage(), 0, 0.5 / 255))
            << "scale " << scale;
    }
}

TEST(Render, image_of_a_view_is_its_bounds_at_the_scale) {
    auto view = box({50, 50, 30, 20}, gfx::Color::greenColor());
    gfx::Image image = Renderer::imageOf(*view, 2);
    EXPECT_EQ(image.pixelWidth(), 60);
    EXPECT_EQ(image.pixelHeight(), 40);
    EXPECT_TRUE(image.pixelColor(59, 39)->isClose(gfx::Color::greenColor(), 0.01));
    EXPECT_TRUE(Renderer::imageOf(*box({0, 0, 0, 10}, gfx::Color::redColor()), 2).isNull());
}

} // namespace
} // namespace morvane::ui
