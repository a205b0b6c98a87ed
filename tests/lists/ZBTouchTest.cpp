// The contact strip on the headless host: showing and hiding, the two button
// shapes and their numbers, icons by action key, taps, the contrast colour of
// a picture, and what its callback may do.
#include "ListsFixture.h"
#include "Reentrancy.h"
#include "Snapshot.h"

#include <morvane/lists/ZBTouch.h>
#include <morvane/lists/ZBTouchCell.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/util/Colors.h>

#include <cstdint>
#include <vector>

using namespace morvane;
using namespace morvane::test;

namespace {

class ZBTouchTest : public ListsFixture {
  protected:
    void SetUp() override {
        ListsFixture::SetUp();
        list->removeFromSuperview();
        strip = std::make_shared<ZBTouch>(gfx::Rect(300, 20, 60, 400));
        host->root()->addSubview(strip);
        item = Node::make({{"key", "farol"}, {"phone", "+351 289 000 000"}, {"utube", "farol"}});
    }
    void TearDown() override {
        strip.reset();
        ListsFixture::TearDown();
    }
    void settle() {
        host->runUntilIdle();
        sys::Queue::waitIdle();
        host->runUntilIdle();
    }
    std::shared_ptr<ZBTouchCell> button(int index) const {
        return std::dynamic_pointer_cast<ZBTouchCell>(
            strip->tbl()->cellForItem(ui::IndexPath::forItem(index)));
    }
    gfx::Rect frameOf(int index) const { return strip->tbl()->frameForItem(ui::IndexPath::forItem(index)); }

    std::shared_ptr<ZBTouch> strip;
    NodePtr item;
};

} // namespace

TEST_F(ZBTouchTest, shows_one_round_button_per_entry_in_order_and_hides_without_entries) {
    strip->refresh();
    settle();
    EXPECT_TRUE(strip->isHidden());

    strip->setBackgroundColor(Colors::hex("#1D2A44"));
    EXPECT_EQ(strip->backgroundColor(), gfx::Color::clearColor()) << "the strip itself stays clear";
    strip->addObj("phone", item);
    strip->addObj("utube", item);
    strip->refresh();
    settle();
    ASSERT_FALSE(strip->isHidden());
    ASSERT_EQ(strip->tbl()->numberOfItems(0), 2);
    // Squares 0.9 of the width, a quarter of the width apart, rounded down.
    EXPECT_EQ(frameOf(0).size(), gfx::Size(54, 54));
    EXPECT_EQ(frameOf(1).minY() - frameOf(0).maxY(), 15);
    const auto first = button(0);
    ASSERT_TRUE(first);
    EXPECT_TRUE(first->titleLbl()->isHidden());
    EXPECT_EQ(first->layer().cornerRadius(), 27);
    EXPECT_TRUE(sameRect(first->photo()->frame(), {10.8, 10.8, 32.4, 32.4}));
    EXPECT_EQ(first->backgroundColor(), Colors::hex("#1D2A44"));
    EXPECT_EQ(first->layer().shadowColor(), Colors::darkerBy(Colors::hex("#1D2A44"), 0.2));
    // The kit's own icons, named after the action keys.
    ASSERT_FALSE(first->photo()->image().isNull());
    ASSERT_FALSE(button(1)->photo()->image().isNull());
    EXPECT_FALSE(first->photo()->image().isSameAs(button(1)->photo()->image()));

    strip->clear();
    EXPECT_TRUE(strip->isHidden());
}

TEST_F(ZBTouchTest, on_black_the_buttons_are_bars_as_wide_as_the_strip) {
    strip->setCellColor(gfx::Color::blackColor());
    strip->addObj("phone", item);
    strip->addObj("about", item);
    strip->refresh();
    settle();
    EXPECT_EQ(frameOf(0), gfx::Rect(0, 0, 60, 60));
    EXPECT_EQ(frameOf(1).minY(), 68); // 0.02 of 400, rounded down
    // A colour only close to black is not black.
    strip->setCellColor(gfx::Color(0, 0, 0.01));
    settle();
    EXPECT_EQ(frameOf(0).size(), gfx::Size(54, 54));
}

TEST_F(ZBTouchTest, a_tap_reports_the_key_and_the_item_given_and_an_app_picture_replaces_the_kits) {
    resourcePicture("phone", 40, 40, Colors::hex("#E07A5F"));
    std::vector<std::pair<std::string, NodePtr>> taps;
    strip->watchItemSelect(
        [&](const std::string& key, const NodePtr& data) { taps.emplace_back(key, data); });
    const NodePtr other = Node::make({{"key", "spa"}});
    strip->setBackgroundColor(Colors::hex("#F2CC8F"));
    strip->addObj("phone", item);
    strip->addObj("wsite", other);
    strip->refresh();
    settle();
    host->tap(strip->tbl()->convertRectTo(frameOf(1), nullptr).center());
    host->tap(strip->tbl()->convertRectTo(frameOf(0), nullptr).center());
    ASSERT_EQ(taps.size(), 2u);
    EXPECT_EQ(taps[0].first, "wsite");
    EXPECT_EQ(taps[0].second.get(), other.get());
    EXPECT_EQ(taps[1].first, "phone");
    EXPECT_EQ(taps[1].second.get(), item.get());

    const auto picture = button(0)->photo()->image();
    const auto centre = picture.pixelColor(picture.pixelWidth() / 2, picture.pixelHeight() / 2);
    ASSERT_TRUE(centre);
    EXPECT_TRUE(centre->isClose(Colors::hex("#E07A5F"), 0.02));
    morvane::testing::expectImageMatches(ui::Renderer::imageOf(*strip, 2),
                                         "tests/lists/snapshots/touch-strip.png");
}

TEST(ZBTouchContrast, a_picture_averaged_to_one_colour_picks_white_on_dark_and_black_on_light) {
    // Left half navy, right half white: the average is a light blue-grey.
    const int w = 400, h = 300;
    std::vector<std::uint8_t> pixels(std::size_t(w * h * 4));
    auto fill = [&](int x0, int x1, std::uint8_t r, std::uint8_t g, std::uint8_t b, std::uint8_t a) {
        for (int y = 0; y < h; ++y)
            for (int x = x0; x < x1; ++x) {
                auto* p = &pixels[std::size_t((y * w + x) * 4)];
                p[0] = r, p[1] = g, p[2] = b, p[3] = a;
            }
    };
    fill(0, w / 2, 0, 0, 128, 255);
    fill(w / 2, w, 255, 255, 255, 255);
    auto image = gfx::Image::fromPixels(pixels.data(), w, h, std::size_t(w * 4), gfx::PixelFormat::RGBA);
    const auto average = image.averageColor();
    ASSERT_TRUE(average);
    EXPECT_TRUE(average->isClose(gfx::Color(0.5, 0.5, 0.751, 1), 0.01));
    EXPECT_EQ(ZBTouch::getContrastColor(image), gfx::Color::blackColor());

    // Transparent pixels add no colour: dark navy, half covered.
    fill(w / 2, w, 0, 0, 0, 0);
    image = gfx::Image::fromPixels(pixels.data(), w, h, std::size_t(w * 4), gfx::PixelFormat::RGBA);
    EXPECT_TRUE(image.averageColor()->isClose(gfx::Color(0, 0, 128 / 255.0, 0.5), 0.01));
    EXPECT_EQ(ZBTouch::getContrastColor(image), gfx::Color::whiteColor());
    EXPECT_EQ(ZBTouch::getContrastColor(gfx::Image()), gfx::Color::blackColor());

    EXPECT_TRUE(ZBTouch::isDark(gfx::Color::gray(0.49)));
    EXPECT_FALSE(ZBTouch::isDark(gfx::Color::gray(0.5)));
    EXPECT_TRUE(ZBTouch::isDark(gfx::Color(0, 0, 1))); // pure blue is dark, pure yellow is not
    EXPECT_FALSE(ZBTouch::isDark(gfx::Color(1, 1, 0)));
}

// Random operations and taps; a tap's callback runs another operation.
TEST(ZBTouchReentrancy, any_operation_from_the_select_callback_is_safe) {
    for (unsigned seed : {41u, 42u}) {
        ReentrancyHarness<ZBTouch> harness(seed);
        const NodePtr item = Node::make({{"key", "farol"}});
        harness.make([item](ReentrancyHarness<ZBTouch>& h) {
            auto strip = std::make_shared<ZBTouch>(gfx::Rect(300, 0, 80, 600));
            strip->watchItemSelect([&h](const std::string&, const NodePtr&) { h.callback("select"); });
            for (const char* key : {"phone", "about", "wsite", "text", "book"})
                strip->addObj(key, item);
            strip->refresh();
            return strip;
        });
        const char* keys[] = {"phone", "about", "wsite", "text", "book", "urlFB", "utube", "nothing"};
        harness.operation("addObj", [&keys, item](ZBTouch& strip, Random& r) {
            strip.addObj(keys[randomInt(r, 0, 7)], item);
        });
        harness.operation("clear", [](ZBTouch& strip, Random& r) {
            if (chance(r, 0.3)) strip.clear();
        });
        harness.operation("refresh", [](ZBTouch& strip, Random&) { strip.refresh(); });
        harness.operation("colour", [](ZBTouch& strip, Random& r) {
            strip.setBackgroundColor(chance(r, 0.5) ? gfx::Color::blackColor() : gfx::Color::grayColor());
        });
        harness.operation("unwatch", [](ZBTouch& strip, Random& r) {
            if (chance(r, 0.1)) strip.watchItemSelect({});
        });
        // Mostly on a button, sometimes anywhere on the strip.
        harness.input("tap", [](ui::HeadlessHost& host, ZBTouch& strip, Random& r) {
            const auto& grid = *strip.tbl();
            const int count = grid.numberOfItems(0);
            if (count > 0 && chance(r, 0.8))
                host.tap(
                    grid.convertRectTo(grid.frameForItem(ui::IndexPath::forItem(randomInt(r, 0, count - 1))),
                                       nullptr)
                        .center());
            else
                host.tap(randomPointIn(r, strip.convertRectTo(strip.bounds(), nullptr)));
        });
        harness.run(ReentrancyHarness<ZBTouch>::steps(1200, 8000));
        EXPECT_GT(harness.callbacks(), 30) << seed;
    }
}
