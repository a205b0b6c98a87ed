// Animations on the manual clock: model values are final at once, the screen
// moves between the old and new values, completions run in time order on the
// main queue, and a later animation starts from what the screen shows.

#include <morvane/sys/Clock.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include "UiTestSupport.h"

#include <Snapshot.h>

#include <gtest/gtest.h>

namespace morvane::ui {
namespace {

using testing::box;

TEST(Animation, model_is_final_at_once_while_the_screen_moves_by_the_clock) {
    HeadlessHost host;
    auto view = box({0, 0, 100, 100}, gfx::Color::redColor());
    host.root()->addSubview(view);
    std::vector<bool> finished;

    View::animate(
        2.0,
        [&] {
            view->setCenter({250, 50});
            view->setAlpha(0);
        },
        [&](bool done) { finished.push_back(done); });

    EXPECT_EQ(view->center(), (gfx::Point{250, 50}));
    EXPECT_EQ(view->alpha(), 0);
    EXPECT_EQ(view->presentation().center, (gfx::Point{50, 50})) << "the screen starts where it was";
    EXPECT_TRUE(view->hasAnimations());

    host.advance(1.0);
    EXPECT_TRUE(finished.empty());
    EXPECT_NEAR(view->presentation().center.x, 150, 1e-9) << "half the time, half the way (ease in-out)";
    EXPECT_NEAR(view->presentation().alpha, 0.5, 1e-9);
    host.advance(0.5);
    EXPECT_GT(view->presentation().center.x, 150);
    EXPECT_LT(view->presentation().center.x, 250);

    host.advance(0.5);
    EXPECT_EQ(finished, (std::vector<bool>{true}));
    EXPECT_EQ(view->presentation().center, (gfx::Point{250, 50}));
    EXPECT_FALSE(view->hasAnimations());
}

TEST(Animation, completions_run_in_time_order_and_chained_animations_follow_on) {
    HeadlessHost host;
    auto strip = box({0, 800, 390, 40}, gfx::Color::blueColor());
    host.root()->addSubview(strip);
    std::vector<std::string> order;
    double start = sys::Clock::now();
    std::vector<double> times;

    View::animate(
        2.0,
        [&] {
            strip->setCenter({195, 760});
        },
        [&](bool) {
            order.push_back("rise");
            times.push_back(sys::Clock::now() - start);
            View::animate(
                1.0, [&] { strip->setAlpha(0); },
                [&](bool) {
                    order.push_back("fade");
                    times.push_back(sys::Clock::now() - start);
                    strip->setHidden(true);
                });
        });
    View::animate(
        0.5, [&] {},
        [&](bool) {
            order.push_back("short");
            times.push_back(sys::Clock::now() - start);
        });
    View::animate(
        0, [&] { strip->setTag(7); }, [&](bool) { order.push_back("instant"); });
    EXPECT_TRUE(order.empty()) << "completions never run inside animate()";

    host.runUntilIdle();
    EXPECT_EQ(order, (std::vector<std::string>{"instant"}));
    host.advance(5);
    EXPECT_EQ(order, (std::vector<std::string>{"instant", "short", "rise", "fade"}));
    EXPECT_EQ(times, (std::vector<double>{0.5, 2.0, 3.0}));
    EXPECT_TRUE(strip->isHidden());
}

TEST(Animation, a_later_animation_starts_from_the_screen_and_removal_finishes_with_false) {
    HeadlessHost host;
    auto view = box({0, 0, 100, 100}, gfx::Color::greenColor());
    host.root()->addSubview(view);
    View::animate(1.0, [&] { view->setCenter({150, 50}); });
    host.advance(0.5);
    gfx::Point midway = view->presentation().center;
    EXPECT_NEAR(midway.x, 100, 1e-9);

    View::animate(1.0, [&] { view->setCenter({50, 50}); });
    EXPECT_EQ(view->presentation().center, midway) << "no jump back to the old start or the old end";
    host.advance(0.5);
    EXPECT_NEAR(view->presentation().center.x, 75, 1e-9);

    // A change outside any animation shows at once.
    view->setCenter({10, 10});
    EXPECT_EQ(view->presentation().center, (gfx::Point{10, 10}));

    // The grow-from-nothing pattern: a scale of zero set plainly, then animated back.
    view->setTransform(gfx::Transform::scale(0, 0));
    std::vector<bool> results;
    View::animate(
        1.5, [&] { view->setTransform({}); }, [&](bool done) { results.push_back(done); });
    EXPECT_EQ(view->presentation().transform, gfx::Transform::scale(0, 0));
    host.advance(0.75);
    EXPECT_NEAR(view->presentation().transform.a, 0.5, 1e-9);
    view->removeAllAnimations();
    EXPECT_TRUE(view->presentation().transform.isIdentity());
    host.runUntilIdle();
    EXPECT_EQ(results, (std::vector<bool>{false}));
    host.advance(2);
    EXPECT_EQ(results, (std::vector<bool>{false})) << "a completion runs once";
}

TEST(Animation, cross_dissolve_shows_the_old_look_fading_out_and_finishes) {
    HeadlessHost host({100, 100});
    auto view = box({0, 0, 100, 100}, gfx::Color::redColor());
    host.root()->addSubview(view);
    host.runUntilIdle();
    bool done = false;
    View::transition(
        view, 0.5, Transition::CrossDissolve, [&] { view->setBackgroundColor(gfx::Color::blueColor()); },
        [&](bool f) { done = f; });
    EXPECT_EQ(view->backgroundColor(), gfx::Color::blueColor());

    auto at = [&](double x) { return *host.snapshot(1).pixelColor(static_cast<int>(x), 50); };
    EXPECT_TRUE(at(50).isClose(gfx::Color::redColor(), 0.02)) << "the old look at the start";
    host.advance(0.25);
    gfx::Color mid = at(50);
    EXPECT_NEAR(mid.red, 0.5, 0.1);
    EXPECT_NEAR(mid.blue, 0.5, 0.1);
    host.advance(0.25);
    EXPECT_TRUE(at(50).isClose(gfx::Color::blueColor(), 0.02));
    EXPECT_TRUE(done);
}

TEST(Animation, mid_animation_snapshot_matches_reference) {
    HeadlessHost host({200, 200});
    auto card = box({20, 20, 60, 60}, gfx::Color::fromBytes(0x1e, 0x88, 0xe5));
    card->layer().setCornerRadius(10);
    auto badge = box({130, 130, 40, 40}, gfx::Color::fromBytes(0xef, 0x6c, 0x00));
    host.root()->addSubview(card);
    host.root()->addSubview(badge);
    host.runUntilIdle();
    View::animate(1.0, [&] {
        card->setFrame({120, 20, 60, 60});
        badge->setAlpha(0);
        badge->setTransform(gfx::Transform::scale(2, 2));
    });
    host.advance(0.5);
    morvane::testing::expectImageMatches(host.snapshot(2), "tests/ui/core/snapshots/mid_animation@2x.png");
}

} // namespace
} // namespace morvane::ui
