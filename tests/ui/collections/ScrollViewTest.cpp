#include <morvane/ui/collections/ScrollView.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <gtest/gtest.h>

namespace morvane::ui {
namespace {

struct Journal : ScrollViewDelegate {
    std::vector<std::string> calls;
    int scrolls = 0;
    void scrollViewDidScroll(ScrollView&) override { ++scrolls; }
    void scrollViewWillBeginDragging(ScrollView&) override { calls.push_back("willBeginDragging"); }
    void scrollViewDidEndDragging(ScrollView&, bool decelerate) override {
        calls.push_back(decelerate ? "didEndDragging+glide" : "didEndDragging");
    }
    void scrollViewDidEndDecelerating(ScrollView&) override { calls.push_back("didEndDecelerating"); }
};

struct ScrollFixture : ::testing::Test {
    HeadlessHost host;
    Journal journal;
    std::shared_ptr<ScrollView> scroll = std::make_shared<ScrollView>(gfx::Rect{0, 0, 390, 600});
    std::shared_ptr<View> child = std::make_shared<View>(gfx::Rect{0, 1000, 390, 50});
    void SetUp() override {
        scroll->setContentSize({390, 3000});
        scroll->setDelegate(&journal);
        scroll->addSubview(child);
        host.root()->addSubview(scroll);
        host.runUntilIdle();
    }
};

TEST_F(ScrollFixture, dragging_moves_the_content_under_the_finger_then_glides_to_rest) {
    host.drag({200, 500}, {200, 300}, 0.1, 5);
    EXPECT_NEAR(scroll->contentOffset().y, 200, 0.5);
    // The child moved with the content: window position = content position - offset.
    EXPECT_NEAR(child->convertPointTo({0, 0}, nullptr).y, 800, 0.5);
    host.advance(5);
    EXPECT_EQ(journal.calls,
              (std::vector<std::string>{"willBeginDragging", "didEndDragging+glide", "didEndDecelerating"}));
    EXPECT_GT(scroll->contentOffset().y, 400);
    EXPECT_LE(scroll->contentOffset().y, scroll->maximumContentOffset().y);
    EXPECT_FALSE(scroll->isDecelerating());

    // A touch catches a glide where it is.
    host.drag({200, 500}, {200, 100}, 0.1, 5);
    host.advance(0.1);
    double caught = scroll->contentOffset().y;
    host.touchDown({200, 300});
    host.advance(1);
    EXPECT_EQ(scroll->contentOffset().y, caught);
    host.touchUp({200, 300});
}

TEST_F(ScrollFixture, a_drag_starting_on_a_button_scrolls_and_a_tap_still_presses) {
    auto button = std::make_shared<Button>();
    button->setFrame({50, 100, 200, 60});
    int presses = 0;
    button->addAction(ControlEvent::TouchUpInside, [&](Control&) { ++presses; });
    scroll->addSubview(button);
    host.runUntilIdle();
    host.drag({150, 130}, {150, 30}, 0.5, 10);
    EXPECT_NEAR(scroll->contentOffset().y, 100, 0.5);
    EXPECT_EQ(presses, 0);
    EXPECT_FALSE(button->isHighlighted()) << "the button was told its touch is gone";
    host.advance(2);
    scroll->setContentOffset({0, 0});
    host.tap({150, 130});
    EXPECT_EQ(presses, 1);
}

TEST_F(ScrollFixture, edges_bounce_or_stop_and_disabled_scrolling_stays_put) {
    scroll->setContentOffset(scroll->maximumContentOffset());
    host.drag({200, 300}, {200, 100}, 0.5, 10);
    EXPECT_GT(scroll->contentOffset().y, scroll->maximumContentOffset().y) << "rubber band past the end";
    EXPECT_LT(scroll->contentOffset().y, scroll->maximumContentOffset().y + 200) << "at half speed";
    host.advance(2);
    EXPECT_EQ(scroll->contentOffset().y, scroll->maximumContentOffset().y);

    scroll->setBounces(false);
    scroll->setContentOffset({0, 0});
    host.drag({200, 100}, {200, 400}, 0.5, 10);
    EXPECT_EQ(scroll->contentOffset().y, 0);

    scroll->setScrollEnabled(false);
    host.drag({200, 500}, {200, 100}, 0.1, 5);
    host.advance(1);
    EXPECT_EQ(scroll->contentOffset().y, 0);

    // Animated moves arrive after their third of a second; a short content does not scroll.
    scroll->setContentOffset({0, 700}, true);
    EXPECT_EQ(scroll->contentOffset().y, 0);
    host.advance(0.5);
    EXPECT_EQ(scroll->contentOffset().y, 700);
    scroll->setScrollEnabled(true);
    scroll->setContentSize({390, 300});
    EXPECT_EQ(scroll->contentOffset().y, 0);
    EXPECT_EQ(scroll->maximumContentOffset().y, 0);
}

} // namespace
} // namespace morvane::ui
