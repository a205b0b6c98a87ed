// The picture view and the picture button on the headless host.
#include "MediaFixture.h"

#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/media/ZBImage.h>
#include <morvane/media/ZBImageButton.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include "LoopbackServer.h"

#include <gtest/gtest.h>

using namespace morvane;
using morvane::test::MediaFixture;

namespace {

class ZBImageTest : public MediaFixture {
  protected:
    void SetUp() override {
        MediaFixture::SetUp();
        host = std::make_unique<ui::HeadlessHost>();
        view = std::make_shared<ZBImage>(gfx::Rect(0, 100, 300, 200));
        host->root()->addSubview(view);
        host->runUntilIdle();
    }
    void TearDown() override {
        view.reset();
        host.reset();
        MediaFixture::TearDown();
    }
    bool loading() const {
        return !view->indicator().isHidden() && view->indicator().isAnimating() &&
               view->imageView().isHidden();
    }

    std::unique_ptr<ui::HeadlessHost> host;
    std::shared_ptr<ZBImage> view;
};

} // namespace

// The shape decides: below 0.8 fitted on the picture's corner colour, from
// 0.8 up to 1.2 fitted on clear, from 1.2 on filled. The answer is applied on
// the main queue, not inside the call.
TEST_F(ZBImageTest, pictures_are_fitted_or_filled_by_their_shape) {
    struct Case {
        int width;
        gfx::ContentMode mode;
        gfx::Color background;
    };
    const gfx::Color red = gfx::Color::redColor();
    const Case cases[] = {{79, gfx::ContentMode::AspectFit, red},
                          {80, gfx::ContentMode::AspectFit, gfx::Color::clearColor()},
                          {119, gfx::ContentMode::AspectFit, gfx::Color::clearColor()},
                          {120, gfx::ContentMode::AspectFill, gfx::Color::clearColor()}};
    for (const auto& c : cases) {
        const std::string name = "shape" + std::to_string(c.width);
        resourcePicture(name, c.width, 100, red);
        view->addImage(name, std::nullopt);
        EXPECT_TRUE(loading()) << c.width;
        host->runUntilIdle();
        EXPECT_FALSE(loading()) << c.width;
        EXPECT_FALSE(view->indicator().isAnimating());
        EXPECT_EQ(view->imageView().image().size(), gfx::Size(c.width, 100));
        EXPECT_EQ(view->imageView().contentMode(), c.mode) << c.width;
        EXPECT_TRUE(view->imageView().backgroundColor().isClose(c.background, 0.01)) << c.width;
    }
    EXPECT_EQ(view->imageView().frame(), gfx::Rect(0, 0, 300, 200));
    EXPECT_EQ(view->indicator().frame(), gfx::Rect(0, 0, 300, 200));
    EXPECT_EQ(view->imageView().accessibilityHint(), "icon");
}

// A touch that ends on the view switches fit and fill with a cross-fade; two
// touches bring back the mode from before.
TEST_F(ZBImageTest, two_touches_restore_the_content_mode) {
    resourcePicture("wide", 200, 100, gfx::Color::blueColor());
    view->addImage("wide", std::nullopt);
    host->runUntilIdle();
    ASSERT_EQ(view->imageView().contentMode(), gfx::ContentMode::AspectFill);
    host->tap({150, 200});
    EXPECT_EQ(view->imageView().contentMode(), gfx::ContentMode::AspectFit);
    EXPECT_TRUE(view->imageView().hasAnimations()) << "the change fades in";
    host->advance(0.5);
    EXPECT_FALSE(view->imageView().hasAnimations());
    host->tap({150, 200});
    EXPECT_EQ(view->imageView().contentMode(), gfx::ContentMode::AspectFill);
    host->tap({150, 400}); // outside the view
    EXPECT_EQ(view->imageView().contentMode(), gfx::ContentMode::AspectFill);
}

// A download that fails calls nothing back: the spinner keeps turning. A view
// released before its picture arrives is left alone.
TEST_F(ZBImageTest, failed_downloads_keep_the_spinner_and_gone_views_are_left_alone) {
    test::LoopbackServer server;
    server.respond("/gone.png", {404, "", {}});
    view->addImage(server.address("/gone.png"), std::nullopt);
    sys::Queue::waitIdle();
    host->runUntilIdle();
    EXPECT_TRUE(loading());

    resourcePicture("late", 10, 10, gfx::Color::redColor());
    auto other = std::make_shared<ZBImage>(gfx::Rect(0, 0, 50, 50));
    other->addImage("late", std::nullopt);
    std::weak_ptr<ZBImage> watched = other;
    other.reset();
    EXPECT_TRUE(watched.expired());
    host->runUntilIdle();
}

// The pill: picture at the left tinted white, title at the right, corners of
// half the height; the button never calls its callbacks itself.
TEST_F(ZBImageTest, picture_button_lays_out_a_pill_and_stores_its_callbacks) {
    auto button = std::make_shared<ZBImageButton>(gfx::Color::blueColor(), "Card", "credit");
    button->setFrame({10, 500, 200, 50});
    host->root()->addSubview(button);
    host->runUntilIdle();
    EXPECT_EQ(button->image().frame(), gfx::Rect(20, 10, 40, 30));
    EXPECT_EQ(button->titleLbl().frame(), gfx::Rect(70, 0, 120, 50));
    EXPECT_EQ(button->layer().cornerRadius(), 25);
    EXPECT_TRUE(button->clipsToBounds());
    EXPECT_EQ(button->titleLbl().textColor(), gfx::Color::whiteColor());
    EXPECT_EQ(button->titleLbl().font().pointSize(), gfx::Font::systemFontSize() * 0.95);
    EXPECT_EQ(button->image().contentMode(), gfx::ContentMode::AspectFit);
    // The "credit" card is drawn in black; tinted, its opaque pixels are white.
    const gfx::Image& picture = button->image().image();
    ASSERT_FALSE(picture.isNull());
    const int x = int(20 * picture.scale()), y = int(20 * picture.scale());
    EXPECT_TRUE(picture.pixelColor(x, y)->isClose(gfx::Color::whiteColor(), 0.02));

    int calls = 0;
    auto count = [&calls] { ++calls; };
    button->watch(nullptr, count, count, count, count, count, count, count);
    host->tap({110, 525});
    EXPECT_EQ(calls, 0) << "stored for the application, not called";

    auto standard = std::make_shared<ZBImageButton>(gfx::Rect(0, 0, 100, 30));
    EXPECT_EQ(standard->titleLbl().text(), "credit");
    EXPECT_EQ(standard->backgroundColor(), gfx::Color::brownColor());

    EXPECT_EQ(ZBImageButton::widthAction("Pay now"),
              gfx::TextMetrics::size("Pay now", gfx::Font::systemFont(12)).width);
}
