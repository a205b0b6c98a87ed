// The two toasts on the headless host and its manual clock: slides, the alert
// sound once the message has arrived, the done callback, the choice bar
// hiding before it reports, layout, snapshots and re-entrancy.
#include "MediaFixture.h"
#include "Rects.h"
#include "Reentrancy.h"
#include "Snapshot.h"

#include <morvane/media/Toast.h>
#include <morvane/media/ToastPhoto.h>
#include <morvane/sys/Queue.h>
#include <morvane/sys/Sound.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <cmath>
#include <cstdlib>

using namespace morvane;
using namespace morvane::test;

namespace {

class ToastTest : public MediaFixture {
  protected:
    void SetUp() override {
        // A device that plays into nothing, so the sound path runs everywhere.
        setenv("SDL_AUDIODRIVER", "dummy", 1);
        MediaFixture::SetUp();
        host = std::make_unique<ui::HeadlessHost>();
    }
    void TearDown() override {
        host.reset();
        sys::Queue::waitIdle();
        sys::Sound::waitUntilQuiet();
        MediaFixture::TearDown();
    }
    std::unique_ptr<ui::HeadlessHost> host;
};

} // namespace

// Up by its height over 2.5 s, the alert once there, then down and faded
// over 1.5 s, and only then the done callback; a second show in quick
// succession goes up once more, and one without a callback completes quietly.
TEST_F(ToastTest, the_toast_rises_sounds_falls_and_reports) {
    auto toast = std::make_shared<Toast>(gfx::Rect(0, 844, 390, 56));
    host->root()->addSubview(toast);
    EXPECT_TRUE(toast->isHidden());
    int done = 0;
    const int alerts = sys::Sound::alertsAsked();
    toast->show("Saved for later", [&](const std::string& a, const std::string& b) {
        EXPECT_EQ(a + b, "");
        ++done;
    });
    EXPECT_FALSE(toast->isHidden());
    EXPECT_EQ(toast->msg()->text(), "Saved for later");
    EXPECT_DOUBLE_EQ(toast->center().y, 844 + 28 - 56);
    host->advance(2.4);
    sys::Queue::waitIdle();
    EXPECT_EQ(sys::Sound::alertsAsked(), alerts) << "not before it has arrived";
    host->advance(0.2);
    sys::Queue::waitIdle();
    EXPECT_EQ(sys::Sound::alertsAsked(), alerts + 1);
    EXPECT_DOUBLE_EQ(toast->alpha(), 0);
    EXPECT_DOUBLE_EQ(toast->center().y, 844 + 28);
    host->advance(1.3);
    EXPECT_EQ(done, 0) << "not before it has gone";
    host->advance(0.3);
    EXPECT_EQ(done, 1);
    EXPECT_FALSE(toast->isHidden());

    toast->show("One");
    toast->show("Two");
    EXPECT_DOUBLE_EQ(toast->center().y, 844 + 28 - 2 * 56);
    host->advance(5);
    EXPECT_EQ(done, 1);
}

// A choice starts the slide away before the callback runs; the callback may
// release the bar. show moves up, hide down and out.
TEST_F(ToastTest, the_photo_bar_hides_before_it_reports_the_choice) {
    auto bar = std::make_shared<ToastPhoto>(gfx::Rect(0, 844, 390, 70));
    host->root()->addSubview(bar);
    std::vector<std::string> choices;
    bar->watch(
        7,
        [&](const std::string& text) {
            choices.push_back("photo:" + text + ":" + std::to_string(bar->alpha()));
        },
        [&](const std::string&) {
            choices.push_back("camera");
            bar->removeFromSuperview();
            bar.reset();
        });
    bar->show();
    host->advance(2.6);
    EXPECT_DOUBLE_EQ(bar->center().y, 844 + 35 - 70);
    host->tap(centreOf(*bar->photo()));
    EXPECT_EQ(choices, (std::vector<std::string>{"photo::0.000000"}));
    host->advance(1.6);
    EXPECT_DOUBLE_EQ(bar->center().y, 844 + 35);
    bar->photoAction(); // a hide while down moves it down once more
    EXPECT_DOUBLE_EQ(bar->center().y, 844 + 35 + 70);
    bar->show();
    bar->show();
    host->advance(2.6);
    host->tap(centreOf(*bar->camera()));
    host->advance(2);
    EXPECT_EQ(choices.back(), "camera");
    EXPECT_FALSE(bar);
}

// A bar narrower and taller than the usual ones shows a constant where a
// proportion belongs. Frames go through centre and bounds.
TEST_F(ToastTest, layout_follows_the_bar_height) {
    const double w = 320, h = 80;
    Toast toast({0, 0, w, h});
    ToastPhoto bar({0, 0, w, h});
    toast.layoutIfNeeded();
    bar.layoutIfNeeded();
    EXPECT_TRUE(sameRect(toast.cart()->frame(), gfx::Rect(0.14 * h, 0.13 * h, 0.74 * h, 0.74 * h)));
    EXPECT_TRUE(sameRect(toast.msg()->frame(), gfx::Rect(1.1 * h, 0, w - h, h)));
    EXPECT_TRUE(sameRect(bar.icon()->frame(), gfx::Rect(0.14 * h, 0.13 * h, 0.74 * h, 0.74 * h)));
    EXPECT_TRUE(sameRect(bar.photo()->frame(), gfx::Rect(0.25 * w, 0.3 * h, 0.25 * w, 0.4 * h)));
    EXPECT_TRUE(sameRect(bar.camera()->frame(), gfx::Rect(0.6 * w, 0.3 * h, 0.25 * w, 0.4 * h)));
    EXPECT_DOUBLE_EQ(bar.camera()->layer().cornerRadius(), 0.1 * h);
}

TEST_F(ToastTest, both_toasts_match_their_snapshots) {
    auto toast = std::make_shared<Toast>(gfx::Rect(0, 0, 390, 56));
    auto bar = std::make_shared<ToastPhoto>(gfx::Rect(0, 0, 390, 70));
    toast->setHidden(false);
    toast->msg()->setText("Table for two at 20:00 is confirmed");
    bar->setHidden(false);
    morvane::testing::expectImageMatches(ui::Renderer::imageOf(*toast, 2),
                                         "tests/media/snapshots/toast@2x.png");
    morvane::testing::expectImageMatches(ui::Renderer::imageOf(*bar, 2),
                                         "tests/media/snapshots/toast-photo@2x.png");
}

// Every callback (photo, camera; done) runs another operation of the bar,
// release included, while taps and the clock run.
TEST(ToastReentrancy, any_operation_from_a_choice_callback_is_safe) {
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    ReentrancyHarness<ToastPhoto> bars(51);
    bars.make([](ReentrancyHarness<ToastPhoto>& h) {
        auto bar = std::make_shared<ToastPhoto>(gfx::Rect(0, 700, 390, 70));
        bar->watch(
            0, [&h](const std::string&) { h.callback("photo"); },
            [&h](const std::string&) { h.callback("camera"); });
        return bar;
    });
    bars.operation("show", [](ToastPhoto& bar, Random&) { bar.show(); });
    bars.operation("hide", [](ToastPhoto& bar, Random&) { bar.hide(); });
    bars.operation("photo", [](ToastPhoto& bar, Random&) { bar.photoAction(); });
    bars.operation("camera", [](ToastPhoto& bar, Random&) { bar.cameraAction(); });
    bars.operation("watch none", [](ToastPhoto& bar, Random&) { bar.watch(0, {}, {}); });
    bars.tapAnywhere();
    bars.run(ReentrancyHarness<ToastPhoto>::steps(600, 4000));
    EXPECT_GT(bars.callbacks(), 20);
}

TEST(ToastReentrancy, any_operation_from_the_done_callback_is_safe) {
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    ReentrancyHarness<Toast> toasts(52);
    toasts.make([](ReentrancyHarness<Toast>& h) {
        auto toast = std::make_shared<Toast>(gfx::Rect(0, 700, 390, 56));
        toast->show("First", [&h](const std::string&, const std::string&) { h.callback("done"); });
        return toast;
    });
    toasts.operation("show", [&toasts](Toast& toast, Random&) {
        toast.show("Again", [&toasts](const std::string&, const std::string&) { toasts.callback("done"); });
    });
    toasts.operation("show quietly", [](Toast& toast, Random&) { toast.show("Quiet"); });
    toasts.run(ReentrancyHarness<Toast>::steps(600, 4000));
    EXPECT_GT(toasts.callbacks(), 10);
    sys::Queue::waitIdle();
    sys::Sound::waitUntilQuiet();
}
