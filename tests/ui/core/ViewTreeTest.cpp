// The view tree and layout: adoption rules, child order, window membership,
// coordinates through frames, transforms, bounds origins and sublayer shifts,
// and the bounded layout passes.

#include "UiTestSupport.h"

#include <morvane/sys/Log.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <gtest/gtest.h>

namespace morvane::ui {
namespace {

using testing::makeView;
using testing::RecordingView;

std::vector<View*> children(const View& view) {
    std::vector<View*> out;
    for (auto& child : view.subviews())
        out.push_back(child.get());
    return out;
}

TEST(ViewTree, adding_a_view_to_itself_or_its_descendant_is_refused_and_logged) {
    sys::Log::Capture log;
    auto parent = makeView({0, 0, 100, 100});
    auto child = makeView({0, 0, 50, 50});
    auto grandchild = makeView({0, 0, 10, 10});
    parent->addSubview(child);
    child->addSubview(grandchild);

    parent->addSubview(parent);
    grandchild->addSubview(parent);
    grandchild->insertSubview(child, 0);

    EXPECT_EQ(parent->superview(), nullptr);
    EXPECT_EQ(child->superview(), parent.get());
    EXPECT_TRUE(grandchild->subviews().empty());
    EXPECT_EQ(log.texts().size(), 3u);
    EXPECT_TRUE(log.contains("View: refused to add a view to itself"));
    EXPECT_TRUE(log.contains("View: refused to add a view to one of its own descendants"));
}

TEST(ViewTree, child_order_follows_insertions_moves_and_reparenting) {
    auto parent = makeView({0, 0, 100, 100});
    auto a = makeView({}), b = makeView({}), c = makeView({});
    parent->addSubview(a);
    parent->addSubview(b);
    parent->insertSubviewAbove(c, a.get());
    EXPECT_EQ(children(*parent), (std::vector<View*>{a.get(), c.get(), b.get()}));

    parent->bringSubviewToFront(a.get());
    EXPECT_EQ(children(*parent), (std::vector<View*>{c.get(), b.get(), a.get()}));
    parent->sendSubviewToBack(a.get());
    EXPECT_EQ(children(*parent), (std::vector<View*>{a.get(), c.get(), b.get()}));

    // Re-adding a child moves it to the front without duplicating it.
    parent->addSubview(a);
    EXPECT_EQ(children(*parent), (std::vector<View*>{c.get(), b.get(), a.get()}));

    // Adding to another parent takes the view from its old one.
    auto other = makeView({});
    other->addSubview(b);
    EXPECT_EQ(children(*parent), (std::vector<View*>{c.get(), a.get()}));
    EXPECT_EQ(b->superview(), other.get());

    // A child whose parent dies is left without a dangling back reference.
    parent.reset();
    EXPECT_EQ(a->superview(), nullptr);
}

TEST(ViewTree, focus_belongs_to_the_window_and_leaves_with_the_view) {
    struct Field : View {
        using View::View;
        bool canBecomeFirstResponder() const override { return true; }
        std::string typed;
        void insertText(std::string_view text) override { typed += text; }
    };
    HeadlessHost host;
    auto container = makeView({0, 0, 200, 200});
    auto field = std::make_shared<Field>(gfx::Rect{0, 0, 100, 30});
    auto loose = std::make_shared<Field>(gfx::Rect{0, 0, 100, 30});

    EXPECT_FALSE(field->becomeFirstResponder()) << "a view outside any window cannot take the focus";
    container->addSubview(field);
    host.root()->addSubview(container);
    EXPECT_FALSE(container->becomeFirstResponder()) << "a plain view does not take the focus";
    ASSERT_TRUE(field->becomeFirstResponder());
    EXPECT_TRUE(field->isFirstResponder());

    host.typeText("ab");
    EXPECT_EQ(field->typed, "ab");

    // Removing an ancestor takes the focus away; typing then goes nowhere.
    container->removeFromSuperview();
    EXPECT_EQ(host.root()->firstResponder(), nullptr);
    host.typeText("c");
    EXPECT_EQ(field->typed, "ab");
    EXPECT_FALSE(loose->isFirstResponder());
}

TEST(ViewGeometry, points_convert_through_frames_transforms_bounds_origins_and_shifts) {
    auto root = makeView({0, 0, 400, 800});
    auto outer = makeView({100, 200, 200, 200});
    auto inner = makeView({10, 20, 50, 50});
    root->addSubview(outer);
    outer->addSubview(inner);

    EXPECT_EQ(inner->convertPointTo({0, 0}, root.get()), (gfx::Point{110, 220}));
    EXPECT_EQ(root->convertPointTo({110, 220}, inner.get()), (gfx::Point{0, 0}));

    // Scrolling: the bounds origin moves every child the other way.
    outer->setBounds({0, 50, 200, 200});
    EXPECT_EQ(inner->convertPointTo({0, 0}, nullptr), (gfx::Point{110, 170}));
    EXPECT_EQ(outer->frame(), (gfx::Rect{100, 200, 200, 200})) << "the frame does not scroll";

    // A shift of the sublayers moves children, not the view itself.
    outer->layer().setSublayerTranslation({5, 0});
    EXPECT_EQ(inner->convertPointTo({0, 0}, nullptr), (gfx::Point{115, 170}));
    outer->layer().setSublayerTranslation({0, 0});
    outer->setBounds({0, 0, 200, 200});

    // A scale about the centre keeps the centre and changes the frame.
    outer->setTransform(gfx::Transform::scale(0.5, 0.5));
    EXPECT_EQ(outer->center(), (gfx::Point{200, 300}));
    EXPECT_EQ(outer->frame(), (gfx::Rect{150, 250, 100, 100}));
    EXPECT_EQ(inner->convertPointTo({0, 0}, nullptr), (gfx::Point{155, 260}));
    gfx::Point back = inner->convertPointFrom({155, 260}, nullptr);
    EXPECT_NEAR(back.x, 0, 1e-9);
    EXPECT_NEAR(back.y, 0, 1e-9);
}

TEST(ViewLayout, layout_runs_on_size_changes_and_on_request_only) {
    std::vector<std::string> journal;
    auto parent = std::make_shared<RecordingView>("parent", journal, gfx::Rect{0, 0, 100, 100});
    auto child = std::make_shared<RecordingView>("child", journal, gfx::Rect{0, 0, 10, 10});
    parent->addSubview(child);
    parent->layoutIfNeeded();
    EXPECT_EQ(journal, (std::vector<std::string>{"parent:layout", "child:layout"}));

    journal.clear();
    parent->layoutIfNeeded();
    child->setCenter({40, 40}); // a move is no reason to lay out again
    parent->layoutIfNeeded();
    EXPECT_TRUE(journal.empty());

    child->setFrame({0, 0, 20, 10});
    parent->layoutIfNeeded();
    EXPECT_EQ(journal, (std::vector<std::string>{"child:layout"}));

    journal.clear();
    parent->setNeedsLayout();
    parent->setNeedsLayout();
    parent->layoutIfNeeded();
    EXPECT_EQ(journal, (std::vector<std::string>{"parent:layout"}));
}

TEST(ViewLayout, runaway_layout_stops_after_bounded_passes_with_a_warning) {
    struct Restless : View {
        using View::View;
        int runs = 0;
        void layoutSubviews() override {
            ++runs;
            setNeedsLayout(); // asks again every time
            if (superview()) superview()->setNeedsLayout();
        }
    };
    sys::Log::Capture log;
    HeadlessHost host;
    auto restless = std::make_shared<Restless>(gfx::Rect{0, 0, 50, 50});
    host.root()->addSubview(restless);
    host.runUntilIdle();

    EXPECT_GT(restless->runs, 1);
    EXPECT_LE(restless->runs, 64);
    ASSERT_FALSE(log.texts().empty());
    EXPECT_NE(log.texts().front().find("layout did not settle"), std::string::npos);

    // The next round starts afresh rather than looping for ever.
    int before = restless->runs;
    host.runUntilIdle();
    EXPECT_EQ(restless->runs, before);
}

} // namespace
} // namespace morvane::ui
