// The basic controls driven through the headless host: segmented control,
// toolbar with the Done item, activity indicator, label and button layout,
// and a snapshot of them together.

#include <morvane/gfx/TextMetrics.h>
#include <morvane/ui/controls/ActivityIndicator.h>
#include <morvane/ui/controls/BarButtonItem.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/controls/SegmentedControl.h>
#include <morvane/ui/controls/Toolbar.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/core/detail/Animator.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <Snapshot.h>

#include <gtest/gtest.h>

namespace morvane::ui {
namespace {

TEST(SegmentedControl, touch_selects_segment_and_reports_only_real_changes) {
    HeadlessHost host;
    auto control = std::make_shared<SegmentedControl>(std::vector<std::string>{"Arrivals", "Departures"});
    control->setFrame({0, 100, 200, 32});
    host.root()->addSubview(control);
    std::vector<int> reported;
    control->addAction(ControlEvent::ValueChanged, [&](Control& sender) {
        reported.push_back(static_cast<SegmentedControl&>(sender).selectedSegmentIndex());
    });

    EXPECT_EQ(control->selectedSegmentIndex(), SegmentedControl::kNoSegment);
    host.tap({150, 110});
    host.tap({150, 110}); // the same segment again: no change
    host.tap({20, 110});
    EXPECT_EQ(reported, (std::vector<int>{1, 0}));

    // Set from code: silent until the program fires the action itself.
    control->setSelectedSegmentIndex(1);
    control->setSelectedSegmentIndex(5); // out of range: ignored
    EXPECT_EQ(control->selectedSegmentIndex(), 1);
    EXPECT_EQ(reported.size(), 2u);
    control->sendActions(ControlEvent::ValueChanged);
    EXPECT_EQ(reported.back(), 1);

    control->insertSegment("All", 0);
    EXPECT_EQ(control->selectedSegmentIndex(), 2) << "the selection stays on its segment";
    EXPECT_EQ(control->titleForSegment(2), "Departures");
    EXPECT_EQ(control->titleForSegment(3), std::nullopt);
}

TEST(Toolbar, flexible_space_pushes_done_to_the_right_and_done_runs_its_action) {
    HeadlessHost host;
    int done = 0;
    auto toolbar = std::make_shared<Toolbar>(gfx::Rect{0, 400, 390, Toolbar::kDefaultHeight});
    toolbar->setItems(
        {BarButtonItem::flexibleSpace(),
         BarButtonItem::systemItem(BarButtonItem::SystemItem::Done, [&](BarButtonItem&) { ++done; })});
    host.root()->addSubview(toolbar);
    host.runUntilIdle();

    EXPECT_EQ(toolbar->buttonForItem(0), nullptr);
    Button* button = toolbar->buttonForItem(1);
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->currentTitle(), "Done");
    EXPECT_NEAR(button->frame().x + button->frame().width, 390 - 16, 1e-9);
    EXPECT_GT(button->frame().x, 300);

    host.tap(button->convertPointTo(button->bounds().center(), nullptr));
    host.tap({50, 420}); // the space does nothing
    EXPECT_EQ(done, 1);
}

TEST(ActivityIndicator, shows_only_while_animating_and_keeps_frames_coming) {
    auto spinner = std::make_shared<ActivityIndicator>(ActivityIndicator::Style::Large);
    EXPECT_EQ(spinner->bounds().size(), (gfx::Size{37, 37}));
    EXPECT_TRUE(spinner->isHidden());
    int before = detail::Animator::continuousCount();
    spinner->startAnimating();
    spinner->startAnimating();
    EXPECT_FALSE(spinner->isHidden());
    EXPECT_EQ(detail::Animator::continuousCount(), before + 1);
    spinner->stopAnimating();
    EXPECT_TRUE(spinner->isHidden());
    EXPECT_EQ(detail::Animator::continuousCount(), before);
    spinner->startAnimating();
    spinner.reset(); // dropped while spinning: stops asking for frames
    EXPECT_EQ(detail::Animator::continuousCount(), before);
}

TEST(ActivityIndicator, turns_with_the_clock) {
    HeadlessHost host({60, 60});
    auto spinner = std::make_shared<ActivityIndicator>(ActivityIndicator::Style::Large);
    spinner->setColor(gfx::Color::blackColor());
    spinner->setCenter({30, 30});
    host.root()->addSubview(spinner);
    spinner->startAnimating();
    host.runUntilIdle();
    auto first = host.snapshot(2).pngData();
    host.advance(1.0 / 12);
    auto second = host.snapshot(2).pngData();
    host.advance(11.0 / 12);
    auto fullTurn = host.snapshot(2).pngData();
    EXPECT_NE(first, second);
    EXPECT_EQ(first, fullTurn);
    spinner->stopAnimating();
}

TEST(Button, lays_out_image_and_title_by_content_alignment) {
    auto button = std::make_shared<Button>(gfx::Rect{0, 0, 200, 50});
    button->setTitle("Pay");
    button->titleLabel()->setFont(gfx::Font::systemFont(17));
    gfx::Size text = gfx::TextMetrics::size("Pay", gfx::Font::systemFont(17));
    button->layoutIfNeeded();
    EXPECT_NEAR(button->titleLabel()->frame().midX(), 100, 1e-6);
    EXPECT_NEAR(button->titleLabel()->frame().midY(), 25, 1e-6);

    button->setContentHorizontalAlignment(ContentHorizontalAlignment::Left);
    button->setContentVerticalAlignment(ContentVerticalAlignment::Bottom);
    button->layoutIfNeeded();
    EXPECT_NEAR(button->titleLabel()->frame().x, 0, 1e-9);
    EXPECT_NEAR(button->titleLabel()->frame().y + button->titleLabel()->frame().height, 50, 1e-9);
    EXPECT_NEAR(button->titleLabel()->frame().width, text.width, 1e-6);

    // Per-state titles fall back to the normal one.
    button->setTitle("Paying", ControlState::Highlighted);
    EXPECT_EQ(button->titleForState(ControlState::Selected), "Pay");
    button->setHighlighted(true);
    EXPECT_EQ(button->titleLabel()->text(), "Paying");
}

TEST(Controls, snapshot_of_controls_together) {
    HeadlessHost host({320, 260});
    auto root = host.root();
    root->setBackgroundColor(gfx::Color::gray(0.95));

    auto label = std::make_shared<Label>(gfx::Rect{16, 10, 288, 50});
    label->setNumberOfLines(2);
    gfx::AttributedText text("10:45 ", gfx::Font::boldSystemFont(20), gfx::Color::blackColor());
    text.append("CET", gfx::Font::systemFont(12), gfx::Color::grayColor());
    label->setAttributedText(text);
    root->addSubview(label);

    auto segments = std::make_shared<SegmentedControl>(std::vector<std::string>{"Arrivals", "Departures"});
    segments->setFrame({16, 70, 288, 32});
    segments->setSelectedSegmentIndex(1);
    segments->setTitleTextAttributes({gfx::Font::boldSystemFont(13), gfx::Color::blueColor()},
                                     ControlState::Selected);
    root->addSubview(segments);

    auto button = std::make_shared<Button>(gfx::Rect{16, 115, 140, 44});
    button->setBackgroundColor(gfx::Color::fromBytes(0x1e, 0x88, 0xe5));
    button->layer().setCornerRadius(22);
    button->setTitle("Search");
    button->titleLabel()->setFont(gfx::Font::boldSystemFont(17));
    root->addSubview(button);

    auto pressed = std::make_shared<Button>(gfx::Rect{164, 115, 140, 44});
    pressed->setBackgroundColor(gfx::Color::fromBytes(0x1e, 0x88, 0xe5));
    pressed->layer().setCornerRadius(22);
    pressed->setTitle("Pressed");
    pressed->setHighlighted(true);
    root->addSubview(pressed);

    auto toolbar = std::make_shared<Toolbar>(gfx::Rect{0, 216, 320, 44});
    toolbar->setItems(
        {BarButtonItem::flexibleSpace(), BarButtonItem::systemItem(BarButtonItem::SystemItem::Done)});
    root->addSubview(toolbar);

    host.runUntilIdle();
    morvane::testing::expectImageMatches(host.snapshot(2), "tests/ui/controls/snapshots/controls@2x.png");
}

} // namespace
} // namespace morvane::ui
