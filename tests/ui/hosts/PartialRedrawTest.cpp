// Frames drawn in parts: after every kind of change a host's kept frame,
// where only the changed areas were drawn again, must have exactly the pixels
// of the same state drawn whole. Also: a frame with no change draws nothing,
// a small change draws a small area, and the region arithmetic underneath.

#include <morvane/gfx/ImageContext.h>
#include <morvane/sys/Clock.h>
#include <morvane/ui/collections/ScrollView.h>
#include <morvane/ui/controls/ActivityIndicator.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/core/DirtyRegion.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>
#include <morvane/ui/text/TextField.h>

#include "UiTestSupport.h"

#include <Snapshot.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <string>

namespace morvane::ui {
namespace {

using testing::box;

constexpr double kScale = 2;

gfx::Image stripes() {
    gfx::ImageContext context({60, 30}, gfx::Opacity::Opaque, 2);
    context.canvas().fillRect({0, 0, 60, 15}, gfx::Color::fromBytes(0x1d, 0x35, 0x57));
    context.canvas().fillRect({0, 15, 60, 15}, gfx::Color::fromBytes(0xe6, 0x39, 0x46));
    return context.takeImage();
}

class PartialRedrawTest : public ::testing::Test {
  protected:
    // Draws the next frame in parts and compares it with the state drawn whole.
    // Fills, pictures and text come out the same to the bit. A shape that
    // Cairo rasterises (a turned rectangle, a circular clip) is cut by Cairo
    // where a clip edge crosses it, and steps along its edges from there, so
    // the same shape under another clip (a part's edge, or the scroll view's
    // edge before a scroll moved it) may differ in the antialiasing of its
    // edge pixels: a few pixels may differ, none by much.
    ::testing::AssertionResult frameMatchesWhole(double scale = kScale) {
        host.runUntilIdle();
        host.drawFrame(scale);
        gfx::Image frame = host.frameImage();
        gfx::Image whole = host.snapshot(scale);
        auto nearlyAll = morvane::testing::imagesMatch(frame, whole, 5e-4, 1.5 / 255);
        if (!nearlyAll) return nearlyAll;
        return morvane::testing::imagesMatch(frame, whole, 0, 0.3);
    }

    // A screen with something of every kind: nested and clipped views, a
    // shadowed card, a rotated badge, a faded group, a mask, text, a
    // picture that overflows its view, and a scroll view with content.
    void buildScreen() {
        auto root = host.root();
        root->setBackgroundColor(gfx::Color::fromBytes(0xf1, 0xfa, 0xee));
        card = box({20, 30, 220, 160}, gfx::Color::whiteColor());
        card->layer().setCornerRadius(14);
        card->layer().setShadowOpacity(0.4);
        card->layer().setShadowRadius(6);
        card->layer().setShadowOffset({3, 5});
        card->layer().setBorderWidth(1.5);
        card->layer().setBorderColor(gfx::Color::darkGrayColor());
        root->addSubview(card);
        title = std::make_shared<Label>(gfx::Rect{14, 12, 190, 24});
        title->setText("Harbour Terrace");
        title->setFont(gfx::Font::boldSystemFont(17));
        card->addSubview(title);
        // Sticks out of the card, which does not clip.
        ribbon = box({180, -8, 60, 22}, gfx::Color::fromBytes(0xe6, 0x39, 0x46));
        card->addSubview(ribbon);
        picture = std::make_shared<ImageView>(gfx::Rect{14, 50, 70, 70});
        picture->setImage(stripes());
        picture->setContentMode(gfx::ContentMode::AspectFill); // spills past its bounds
        card->addSubview(picture);

        badge = box({270, 40, 80, 40}, gfx::Color::fromBytes(0x45, 0x7b, 0x9d));
        badge->layer().setCornerRadius(8);
        badge->setTransform(gfx::Transform::rotation(0.3));
        root->addSubview(badge);

        group = box({260, 120, 100, 80}, gfx::Color::fromBytes(0xa8, 0xda, 0xdc));
        group->setAlpha(0.6);
        group->addSubview(box({10, 10, 50, 50}, gfx::Color::blackColor()));
        group->layer().setMask(MaskLayer{{5, 5, 90, 70}, 10});
        root->addSubview(group);

        scroll = std::make_shared<ScrollView>(gfx::Rect{20, 230, 350, 300});
        scroll->setBackgroundColor(gfx::Color::fromBytes(0x1d, 0x35, 0x57));
        scroll->setContentSize({350, 1200});
        for (int i = 0; i < 12; ++i) {
            auto row = box({10, 10 + 100.0 * i, 330, 90}, gfx::Color::gray(0.2 + 0.06 * i));
            row->layer().setCornerRadius(6);
            auto label = std::make_shared<Label>(gfx::Rect{12, 30, 200, 30});
            label->setText("Row " + std::to_string(i));
            label->setTextColor(gfx::Color::whiteColor());
            row->addSubview(label);
            auto photo = std::make_shared<ImageView>(gfx::Rect{250.3, 7.7, 75.4, 75.4});
            photo->setImage(stripes());
            photo->setContentMode(gfx::ContentMode::AspectFill);
            photo->setClipsToBounds(true);
            photo->layer().setCornerRadius(37.7); // a circle, cut by the scroll view's edges as it scrolls
            row->addSubview(photo);
            scroll->addSubview(row);
            rows.push_back(row);
        }
        root->addSubview(scroll);

        field = std::make_shared<TextField>(gfx::Rect{20, 560, 350, 40});
        field->setBorderStyle(TextField::BorderStyle::RoundedRect);
        field->setPlaceholder("Guest name");
        root->addSubview(field);
    }

    HeadlessHost host;
    std::shared_ptr<View> card, ribbon, badge, group;
    std::shared_ptr<Label> title;
    std::shared_ptr<ImageView> picture;
    std::shared_ptr<ScrollView> scroll;
    std::shared_ptr<TextField> field;
    std::vector<std::shared_ptr<View>> rows;
};

// Each change must leave its old area drawn over and its new one drawn: a
// missed old area leaves a ghost, a missed new area leaves a hole.
TEST_F(PartialRedrawTest, geometry_changes_match_a_whole_redraw) {
    buildScreen();
    ASSERT_TRUE(frameMatchesWhole());
    card->setFrame({40, 50, 200, 150});
    EXPECT_TRUE(frameMatchesWhole()) << "moved and resized";
    ribbon->setCenter({10, 150}); // a child outside a non-clipping parent
    EXPECT_TRUE(frameMatchesWhole()) << "child moved outside its parent";
    badge->setTransform(gfx::Transform::rotation(-0.7).scaled(1.3, 0.8));
    EXPECT_TRUE(frameMatchesWhole()) << "transformed";
    scroll->setContentOffset({0, 137.5});
    EXPECT_TRUE(frameMatchesWhole()) << "scrolled";
    scroll->setContentOffset({0, 555});
    EXPECT_TRUE(frameMatchesWhole()) << "scrolled far";
    card->layer().setSublayerTranslation({12, -4});
    EXPECT_TRUE(frameMatchesWhole()) << "content shifted";
    host.root()->setBounds({0, 30, 390, 844}); // the whole window's content moves
    EXPECT_TRUE(frameMatchesWhole()) << "root scrolled";
}

TEST_F(PartialRedrawTest, appearance_changes_match_a_whole_redraw) {
    buildScreen();
    ASSERT_TRUE(frameMatchesWhole());
    card->setHidden(true);
    EXPECT_TRUE(frameMatchesWhole()) << "hidden";
    card->setHidden(false);
    EXPECT_TRUE(frameMatchesWhole()) << "shown again";
    group->setAlpha(0.2);
    EXPECT_TRUE(frameMatchesWhole()) << "alpha";
    card->layer().setShadowRadius(20);
    card->layer().setShadowOffset({-10, 14});
    EXPECT_TRUE(frameMatchesWhole()) << "shadow grew";
    card->layer().setShadowOpacity(0);
    EXPECT_TRUE(frameMatchesWhole()) << "shadow gone";
    group->layer().setMask(MaskLayer{{40, 30, 60, 50}, 0});
    EXPECT_TRUE(frameMatchesWhole()) << "mask";
    card->setClipsToBounds(true);
    EXPECT_TRUE(frameMatchesWhole()) << "clipping cuts the ribbon";
    rows[1]->setBackgroundColor(gfx::Color::redColor());
    title->setText("Ribeira, open until midnight and later");
    picture->setContentMode(gfx::ContentMode::Center);
    EXPECT_TRUE(frameMatchesWhole()) << "content of several views";
    field->becomeFirstResponder();
    host.typeText("Ana");
    EXPECT_TRUE(frameMatchesWhole()) << "typed";
}

TEST_F(PartialRedrawTest, tree_changes_match_a_whole_redraw) {
    buildScreen();
    ASSERT_TRUE(frameMatchesWhole());
    ribbon->removeFromSuperview();
    EXPECT_TRUE(frameMatchesWhole()) << "removed";
    badge->addSubview(ribbon); // back, inside a rotated parent
    EXPECT_TRUE(frameMatchesWhole()) << "added to another parent";
    host.root()->bringSubviewToFront(card.get());
    EXPECT_TRUE(frameMatchesWhole()) << "brought to the front";
    host.root()->sendSubviewToBack(card.get());
    EXPECT_TRUE(frameMatchesWhole()) << "sent to the back";
    scroll->removeFromSuperview();
    group->addSubview(scroll); // a large view into a small masked, faded one
    EXPECT_TRUE(frameMatchesWhole()) << "moved into a masked group";
    group->removeFromSuperview();
    EXPECT_TRUE(frameMatchesWhole()) << "a subtree removed";
}

// A scroll moves the pixels already drawn and draws the strip it uncovers;
// views over the scroll view, views inside that change as it scrolls, and
// views taken out of it must still come out right.
TEST_F(PartialRedrawTest, scrolled_content_moves_and_matches_a_whole_redraw) {
    buildScreen();
    auto floating = box({300, 400, 60, 60}, gfx::Color::fromBytes(0xe6, 0x39, 0x46));
    floating->layer().setCornerRadius(30);
    host.root()->addSubview(floating); // over the scroll view
    ASSERT_TRUE(frameMatchesWhole());

    scroll->setContentOffset({0, 37});
    host.runUntilIdle();
    Renderer::Frame pure = host.drawFrame(kScale);
    EXPECT_TRUE(morvane::testing::imagesMatch(host.frameImage(), host.snapshot(kScale), 5e-4, 1.5 / 255));
    EXPECT_GE(pure.moved.area(), 349.0 * 262) << "the pixels that stay in view move";
    EXPECT_LT(pure.drawn.area(), 350.0 * 37 + 2 * 60 * 60 + 800)
        << "the uncovered strip and the view over it";

    for (int step = 0; step < 12; ++step) {
        scroll->setContentOffset({0, 37.0 * (step % 5) + (step % 3 == 2 ? 0.25 : 0)});
        if (step == 3) rows[2]->setBackgroundColor(gfx::Color::fromBytes(0xff, 0xd5, 0x4f));
        if (step == 5) rows[3]->removeFromSuperview();
        if (step == 7) floating->setCenter({200, 300});
        if (step == 9) rows[4]->setFrame({40, 20, 200, 60}); // moves within the content
        if (step == 10) scroll->setContentOffset({0, 1});    // then back: two slides in one frame
        EXPECT_TRUE(frameMatchesWhole()) << "step " << step;
    }
    EXPECT_TRUE(frameMatchesWhole(3)) << "at scale 3";
    // A label draws its text where its bounds are, whatever their origin:
    // moving the origin must not slide the pixels of its text.
    auto note = std::make_shared<Label>(gfx::Rect{30, 620, 200, 40});
    note->setText("Breakfast until ten");
    note->setBackgroundColor(gfx::Color::whiteColor());
    note->setClipsToBounds(true);
    host.root()->addSubview(note);
    EXPECT_TRUE(frameMatchesWhole(3));
    note->setBounds({0, 5, 200, 40});
    EXPECT_TRUE(frameMatchesWhole(3)) << "a label's origin moved";
    for (int step = 0; step < 6; ++step) {
        scroll->setContentOffset({0, 100.0 + 37 * step});
        EXPECT_TRUE(frameMatchesWhole(3)) << "scale 3, step " << step;
    }
}

// Animations change the screen with no property set while they run; every
// frame on the way, and the one after the end, must be right.
TEST_F(PartialRedrawTest, animation_frames_match_a_whole_redraw) {
    buildScreen();
    ASSERT_TRUE(frameMatchesWhole());
    View::animate(0.3, [&] {
        card->setFrame({120, 300, 180, 120});
        group->setAlpha(1);
        badge->setTransform(gfx::Transform::identity());
    });
    auto spinner = std::make_shared<ActivityIndicator>(ActivityIndicator::Style::Large);
    spinner->setCenter({300, 650});
    host.root()->addSubview(spinner);
    spinner->startAnimating();
    for (int step = 0; step < 8; ++step) {
        host.advance(0.05);
        EXPECT_TRUE(frameMatchesWhole()) << "step " << step;
    }
    View::transition(field, 0.2, Transition::CrossDissolve, [&] { field->setText("Check-in at noon"); });
    for (int step = 0; step < 5; ++step) {
        host.advance(0.05);
        EXPECT_TRUE(frameMatchesWhole()) << "dissolve step " << step;
    }
    spinner->stopAnimating();
    EXPECT_TRUE(frameMatchesWhole()) << "spinner stopped";
}

// Random changes to random views of the screen, several per frame, at two
// scales: whatever the mix, the kept frame equals the whole redraw.
TEST_F(PartialRedrawTest, random_changes_match_a_whole_redraw) {
    buildScreen();
    std::vector<std::shared_ptr<View>> views{card, ribbon, badge, group, scroll, field, title, picture};
    views.insert(views.end(), rows.begin(), rows.end());
    std::mt19937 random(2024);
    auto pick = [&](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); };
    auto number = [&](double lo, double hi) {
        return std::uniform_real_distribution<double>(lo, hi)(random);
    };
    std::vector<std::function<void(View&)>> changes{
        [&](View& v) {
            v.setCenter({number(-20, 400), number(-20, 860)});
        },
        [&](View& v) {
            v.setBounds({v.bounds().x, v.bounds().y, number(5, 200), number(5, 200)});
        },
        [&](View& v) { v.setHidden(!v.isHidden()); },
        [&](View& v) { v.setAlpha(number(0, 1)); },
        [&](View& v) { v.setBackgroundColor(gfx::Color(number(0, 1), number(0, 1), number(0, 1), 1)); },
        [&](View& v) { v.setTransform(gfx::Transform::rotation(number(-1, 1))); },
        [&](View& v) { v.layer().setCornerRadius(number(0, 20)); },
        [&](View& v) { v.setClipsToBounds(!v.clipsToBounds()); },
        [&](View&) {
            scroll->setContentOffset({0, number(0, 900)});
        },
        [&](View& v) {
            // Moves the view under another one (never under itself or its own subtree).
            auto& parent = views[pick(views.size())];
            if (!parent->isDescendantOf(&v)) parent->addSubview(v.shared_from_this());
        },
        [&](View& v) { v.removeFromSuperview(); },
        [&](View& v) {
            if (v.superview() == nullptr) host.root()->insertSubview(v.shared_from_this(), pick(4));
        },
    };
    for (int frame = 0; frame < 40; ++frame) {
        int count = 1 + static_cast<int>(pick(3));
        for (int i = 0; i < count; ++i)
            changes[pick(changes.size())](*views[pick(views.size())]);
        double scale = frame < 20 ? 2 : 3;
        ASSERT_TRUE(frameMatchesWhole(scale)) << "frame " << frame;
    }
}

TEST_F(PartialRedrawTest, frames_draw_only_what_changed) {
    buildScreen();
    host.runUntilIdle();
    Renderer::Frame first = host.drawFrame(kScale);
    EXPECT_EQ(first.drawn.bounds(), (gfx::Rect{0, 0, 390, 844})) << "the first frame is drawn whole";
    EXPECT_TRUE(host.drawFrame(kScale).isEmpty()) << "nothing changed, nothing drawn";
    // A layout pass that puts everything where it was changes nothing on screen.
    for (auto& row : rows)
        row->setNeedsLayout();
    host.runUntilIdle();
    EXPECT_TRUE(host.drawFrame(kScale).isEmpty());

    title->setText("Ribeira");
    DirtyRegion text = host.drawFrame(kScale).drawn;
    ASSERT_FALSE(text.isEmpty());
    gfx::Rect label = title->convertRectTo(title->bounds(), nullptr);
    EXPECT_TRUE(text.bounds().contains(label));
    EXPECT_LT(text.area(), label.insetBy(-4, -4).area()) << "a label's text redraws the label only";

    // A move redraws where the view was and where it is, not the space between.
    ribbon->setCenter({30, 150});
    DirtyRegion moved = host.drawFrame(kScale).drawn;
    EXPECT_LT(moved.area(), 2 * 64.0 * 26.0);

    // Another scale needs every pixel again.
    EXPECT_EQ(host.drawFrame(3).drawn.bounds(), (gfx::Rect{0, 0, 390, 844}));
}

// Every rectangle added stays covered, the list stays short, and aligned
// regions have edges on device pixels.
TEST(DirtyRegion, covers_what_was_added_in_few_pixel_aligned_rectangles) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> pos(0, 380), size(0.2, 80);
    for (int round = 0; round < 50; ++round) {
        DirtyRegion region;
        std::vector<gfx::Rect> added;
        int count = 1 + round % 12;
        for (int i = 0; i < count; ++i) {
            gfx::Rect r{pos(random), pos(random), size(random), size(random)};
            region.add(r);
            added.push_back(r);
        }
        EXPECT_LE(region.rects().size(), DirtyRegion::kMaxRects);
        gfx::Rect limit{0, 0, 390, 400};
        DirtyRegion aligned = region.pixelAligned(3, limit);
        for (const gfx::Rect& r : added) {
            // Corners and centre of each added rectangle lie in some kept one.
            for (gfx::Point p : {gfx::Point{r.x + 0.01, r.y + 0.01}, r.center(),
                                 gfx::Point{r.maxX() - 0.01, r.maxY() - 0.01}}) {
                auto inside = [&](const DirtyRegion& d) {
                    for (const gfx::Rect& k : d.rects())
                        if (k.contains(p)) return true;
                    return false;
                };
                EXPECT_TRUE(inside(region));
                if (limit.contains(p)) {
                    EXPECT_TRUE(inside(aligned));
                }
            }
        }
        for (const gfx::Rect& k : aligned.rects()) {
            for (double edge : {k.x, k.y, k.maxX(), k.maxY()})
                EXPECT_NEAR(edge * 3, std::round(edge * 3), 1e-6);
            EXPECT_TRUE(limit.contains(k));
        }
    }
    DirtyRegion empty;
    empty.add({10, 10, 0, 5});
    empty.add({0, 0, NAN, 4});
    EXPECT_TRUE(empty.isEmpty());
}

} // namespace
} // namespace morvane::ui
