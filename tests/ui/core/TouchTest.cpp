// Hit testing and touch delivery: which view a point lands on, how touches
// travel, buttons pressed inside vs. released outside, tap recognisers, and
// callbacks that tear down views in the middle of the dispatch.

#include "UiTestSupport.h"

#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/core/TapGestureRecognizer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <gtest/gtest.h>

namespace morvane::ui {
namespace {

using testing::makeView;
using testing::RecordingView;

TEST(HitTest, frontmost_visible_interactive_view_wins_through_nesting_and_transforms) {
    auto root = makeView({0, 0, 400, 400});
    auto back = makeView({0, 0, 200, 200});
    auto front = makeView({100, 100, 200, 200});
    auto nested = makeView({50, 50, 20, 20}); // at (150, 150) in the root
    root->addSubview(back);
    root->addSubview(front);
    front->addSubview(nested);

    EXPECT_EQ(root->hitTest({50, 50}), back.get());
    EXPECT_EQ(root->hitTest({150, 150}), nested.get()) << "the deepest view under the point";
    EXPECT_EQ(root->hitTest({120, 120}), front.get()) << "the front sibling wins where they overlap";
    EXPECT_EQ(root->hitTest({390, 390}), root.get());
    EXPECT_EQ(root->hitTest({-1, 10}), nullptr);

    // Hidden, non-interactive and transparent views are skipped with their children.
    front->setHidden(true);
    EXPECT_EQ(root->hitTest({150, 150}), back.get());
    front->setHidden(false);
    front->setUserInteractionEnabled(false);
    EXPECT_EQ(root->hitTest({150, 150}), back.get());
    front->setUserInteractionEnabled(true);
    front->setAlpha(0);
    EXPECT_EQ(root->hitTest({150, 150}), back.get());
    front->setAlpha(1);

    // A child sticking out of its parent is not hit outside the parent.
    auto outside = makeView({190, 190, 50, 50});
    front->addSubview(outside);
    EXPECT_EQ(root->hitTest({295, 295}), outside.get());
    EXPECT_EQ(root->hitTest({305, 305}), root.get());

    // Scaled to half about its centre (200, 200): front now covers 150...250.
    front->setTransform(gfx::Transform::scale(0.5, 0.5));
    EXPECT_EQ(root->hitTest({140, 140}), back.get());
    EXPECT_EQ(root->hitTest({178, 178}), nested.get()) << "nested sits at 175...185 once scaled";
    EXPECT_EQ(root->hitTest({245, 160}), front.get());

    // Scrolled contents: the bounds origin moves the children under the finger.
    front->setTransform({});
    front->setBounds({0, 40, 200, 200});
    EXPECT_EQ(root->hitTest({155, 115}), nested.get());
}

TEST(Touches, go_to_the_view_they_began_on_and_unhandled_ones_climb_to_the_parent) {
    std::vector<std::string> journal;
    HeadlessHost host;
    auto card = std::make_shared<RecordingView>("card", journal, gfx::Rect{50, 100, 200, 200});
    auto plain = makeView({10, 10, 50, 50}); // does not override the handlers
    host.root()->addSubview(card);
    card->addSubview(plain);
    host.runUntilIdle();
    journal.clear();

    host.touchDown({70, 120});
    host.touchMove({300, 600}); // leaves the card; still its touch
    host.touchUp({300, 600});
    EXPECT_EQ(journal, (std::vector<std::string>{"card:began", "card:moved", "card:ended"}));
    EXPECT_EQ(card->lastLocation, (gfx::Point{250, 500})) << "locations come in the card's coordinates";
}

TEST(Touches, button_fires_touch_up_inside_only_when_released_inside) {
    HeadlessHost host;
    auto button = std::make_shared<Button>(gfx::Rect{100, 100, 100, 40});
    button->setTitle("Go");
    host.root()->addSubview(button);
    std::vector<std::string> events;
    button->addAction(ControlEvent::TouchDown, [&](Control&) { events.push_back("down"); });
    button->addAction(ControlEvent::TouchUpInside, [&](Control&) { events.push_back("inside"); });
    button->addAction(ControlEvent::TouchUpOutside, [&](Control&) { events.push_back("outside"); });

    host.touchDown({150, 120});
    EXPECT_TRUE(button->isHighlighted());
    host.touchMove({300, 300});
    EXPECT_FALSE(button->isHighlighted()) << "the pressed look follows the finger out";
    host.touchUp({300, 300});
    host.tap({150, 120});
    EXPECT_EQ(events, (std::vector<std::string>{"down", "outside", "down", "inside"}));

    // A tap on the title label presses the button: labels pass touches through.
    events.clear();
    gfx::Point onTitle =
        button->titleLabel()->convertPointTo(button->titleLabel()->bounds().center(), nullptr);
    host.tap(onTitle);
    EXPECT_EQ(events, (std::vector<std::string>{"down", "inside"}));

    // Disabled: no actions at all.
    events.clear();
    button->setEnabled(false);
    host.tap({150, 120});
    EXPECT_TRUE(events.empty());
}

TEST(Touches, tap_recognizer_fires_on_taps_cancels_the_touch_and_leaves_controls_alone) {
    std::vector<std::string> journal;
    HeadlessHost host;
    auto card = std::make_shared<RecordingView>("card", journal, gfx::Rect{0, 100, 300, 300});
    auto button = std::make_shared<Button>(gfx::Rect{10, 10, 80, 40});
    card->addSubview(button);
    host.root()->addSubview(card);
    int taps = 0, presses = 0;
    gfx::Point where;
    card->addGestureRecognizer(TapGestureRecognizer::create([&](GestureRecognizer& r) {
        ++taps;
        where = r.locationIn(r.view());
    }));
    button->addAction(ControlEvent::TouchUpInside, [&](Control&) { ++presses; });
    host.runUntilIdle();
    journal.clear();

    host.tap({150, 300});
    EXPECT_EQ(taps, 1);
    EXPECT_EQ(where, (gfx::Point{150, 200}));
    EXPECT_EQ(journal, (std::vector<std::string>{"card:began", "card:cancelled"}));

    // Moving too far is no tap: the view gets its ended touch.
    journal.clear();
    host.touchDown({150, 300});
    host.touchUp({150, 340});
    EXPECT_EQ(taps, 1);
    EXPECT_EQ(journal, (std::vector<std::string>{"card:began", "card:ended"}));

    host.tap({50, 130}); // on the button
    EXPECT_EQ(presses, 1);
    EXPECT_EQ(taps, 1);
}

// A drag recogniser of the kind a scroll view uses: it claims the touch once
// the finger has moved far enough.
class DragRecognizer : public GestureRecognizer {
  public:
    std::vector<State> steps;

  protected:
    void touchBegan(const Touch& touch) override { start_ = touch.windowLocation(); }
    void touchMoved(const Touch& touch) override {
        if (state() == State::Possible && touch.windowLocation().distanceTo(start_) < 10) return;
        setState(state() == State::Possible ? State::Began : State::Changed);
        steps.push_back(state());
    }
    void touchEnded(const Touch&) override {
        setState(state() == State::Possible ? State::Failed : State::Ended);
        if (state() == State::Ended) steps.push_back(state());
    }

  private:
    gfx::Point start_;
};

TEST(Touches, a_drag_recognizer_takes_over_a_touch_that_began_on_a_button) {
    HeadlessHost host;
    auto list = makeView({0, 0, 390, 600});
    auto button = std::make_shared<Button>(gfx::Rect{20, 20, 200, 60});
    list->addSubview(button);
    host.root()->addSubview(list);
    auto drag = std::make_shared<DragRecognizer>();
    int actions = 0;
    drag->addTarget([&](GestureRecognizer&) { ++actions; });
    list->addGestureRecognizer(drag);
    std::vector<std::string> events;
    button->addAction(ControlEvent::TouchUpInside, [&](Control&) { events.push_back("inside"); });
    button->addAction(ControlEvent::TouchCancel, [&](Control&) { events.push_back("cancel"); });

    host.touchDown({100, 50});
    host.touchMove({100, 55}); // within the slop: still the button's
    EXPECT_TRUE(button->isHighlighted());
    host.touchMove({100, 90});
    host.touchMove({100, 150});
    host.touchUp({100, 150});
    EXPECT_EQ(events, (std::vector<std::string>{"cancel"}));
    EXPECT_EQ(drag->steps, (std::vector<GestureRecognizer::State>{GestureRecognizer::State::Began,
                                                                  GestureRecognizer::State::Changed,
                                                                  GestureRecognizer::State::Ended}));
    EXPECT_EQ(actions, 3);
    EXPECT_FALSE(button->isHighlighted());

    // A touch that stays put is the button's press; the drag recogniser fails quietly.
    host.tap({100, 50});
    EXPECT_EQ(events, (std::vector<std::string>{"cancel", "inside"}));
    EXPECT_EQ(actions, 3);
}

TEST(Touches, callbacks_that_remove_and_drop_views_mid_dispatch_do_not_crash) {
    HeadlessHost host;
    std::weak_ptr<Button> watch;
    std::weak_ptr<View> cardWatch;
    int pressed = 0;
    {
        auto card = makeView({0, 0, 390, 400});
        auto button = std::make_shared<Button>(gfx::Rect{10, 10, 100, 40});
        card->addSubview(button);
        host.root()->addSubview(card);
        // The action removes the button's whole screen; nothing else holds it.
        button->addAction(ControlEvent::TouchUpInside,
                          [&pressed, weakCard = std::weak_ptr<View>(card)](Control&) {
                              ++pressed;
                              if (auto c = weakCard.lock()) c->removeFromSuperview();
                          });
        button->addAction(ControlEvent::TouchUpInside, [&pressed](Control& sender) {
            ++pressed; // later actions still run and may touch the sender
            sender.setHidden(true);
        });
        watch = button;
        cardWatch = card;
    }
    host.tap({50, 30});
    EXPECT_EQ(pressed, 2);
    EXPECT_TRUE(watch.expired()) << "the screen is released once the dispatch is over";
    EXPECT_TRUE(cardWatch.expired());

    // A recognizer that removes its own view, and a view that removes itself on touch down.
    auto tappable = makeView({0, 0, 100, 100});
    host.root()->addSubview(tappable);
    std::weak_ptr<View> tappableWatch = tappable;
    tappable->addGestureRecognizer(TapGestureRecognizer::create([](GestureRecognizer& r) {
        if (r.view()) r.view()->removeFromSuperview();
    }));
    tappable.reset();
    host.tap({50, 50});
    EXPECT_TRUE(tappableWatch.expired());

    struct Vanishing : View {
        using View::View;
        void touchesBegan(const Touches&) override { removeFromSuperview(); }
    };
    host.root()->addSubview(std::make_shared<Vanishing>(gfx::Rect{0, 0, 100, 100}));
    host.tap({50, 50});
    EXPECT_TRUE(host.root()->subviews().empty());
}

TEST(Typing, text_and_keys_reach_the_focused_view_and_climb_when_unhandled) {
    struct Field : View {
        using View::View;
        bool canBecomeFirstResponder() const override { return true; }
        std::string text;
        void insertText(std::string_view typed) override { text += typed; }
    };
    struct Form : View {
        using View::View;
        std::vector<Key> keys;
        bool keyPressed(Key key) override {
            keys.push_back(key);
            return true;
        }
    };
    HeadlessHost host;
    auto form = std::make_shared<Form>(gfx::Rect{0, 0, 390, 400});
    auto first = std::make_shared<Field>(gfx::Rect{0, 0, 200, 40});
    auto second = std::make_shared<Field>(gfx::Rect{0, 50, 200, 40});
    form->addSubview(first);
    form->addSubview(second);
    host.root()->addSubview(form);

    EXPECT_FALSE(host.pressKey(Key::Return)) << "no focus, no key";
    first->becomeFirstResponder();
    host.typeText("Zürich ");
    second->becomeFirstResponder();
    host.typeText("QR1");
    EXPECT_TRUE(host.pressKey(Key::Tab)); // the field ignores keys; its form takes them
    EXPECT_EQ(first->text, "Zürich ");
    EXPECT_EQ(second->text, "QR1");
    EXPECT_EQ(form->keys, (std::vector<Key>{Key::Tab}));

    EXPECT_TRUE(form->endEditing());
    EXPECT_EQ(host.root()->firstResponder(), nullptr);
}

} // namespace
} // namespace morvane::ui
