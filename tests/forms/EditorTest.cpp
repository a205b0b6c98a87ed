// The input fields, the editor panels and the data input bars on the
// headless host: typing and validation, the order of resigning and
// reporting, layouts, the slides on the manual clock, and re-entrancy.
#include "AppSandbox.h"
#include "Rects.h"
#include "Reentrancy.h"
#include "Snapshot.h"

#include <morvane/forms/CTextview.h>
#include <morvane/forms/NTextview.h>
#include <morvane/forms/UIDataInput.h>
#include <morvane/forms/ZBDataInput.h>
#include <morvane/forms/ZBInput.h>
#include <morvane/forms/ZBTextview.h>
#include <morvane/gfx/Font.h>
#include <morvane/model/List.h>
#include <morvane/sys/Log.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace morvane;
using namespace morvane::test;

namespace {

class EditorTest : public ::testing::Test, protected AppSandbox {
  protected:
    void SetUp() override {
        enterSandbox("editors");
        host = std::make_unique<ui::HeadlessHost>();
    }
    void TearDown() override {
        host.reset();
        leaveSandbox();
    }
    void focus(ui::View& view) {
        host->tap(view.convertRectTo(view.bounds(), nullptr).center());
        ASSERT_TRUE(view.isFirstResponder());
    }
    std::unique_ptr<ui::HeadlessHost> host;
};

} // namespace

// The caption comes with the first character and goes with the last; return
// inserts a line end and says so; a failed validation never refuses, it logs,
// colours the error line and raises a toast.
TEST_F(EditorTest, the_input_field_validates_every_change_and_refuses_none) {
    auto field = ZBInput::initWithName("Note", "email", false);
    field->setFrame({20, 100, 350, 300});
    host->root()->addSubview(field);
    host->runUntilIdle();
    std::vector<std::string> seen;
    field->watchAction(0, [&](const std::string& caption, const std::string& text) -> Value {
        seen.push_back(caption + ":" + text);
        if (text.size() > 2) return List::make({Value("Too long"), Value::object(gfx::Color::blueColor())});
        return {};
    });
    focus(*field->txt());
    sys::Log::Capture log;
    host->typeText("a");
    EXPECT_FALSE(field->title()->isHidden());
    host->pressKey(ui::Key::Return);
    EXPECT_TRUE(log.contains("Enter \n"));
    host->typeText("b");
    EXPECT_EQ(field->txt()->text(), "a\nb");
    EXPECT_EQ(seen, (std::vector<std::string>{"Note:a", "Note:a\n", "Note:a\nb"}));
    EXPECT_TRUE(log.contains("error : Too long"));
    EXPECT_EQ(field->error()->backgroundColor(), gfx::Color::blueColor());
    EXPECT_TRUE(field->error()->isHidden());
    EXPECT_EQ(field->toaster()->text(), "Too long");
    for (int i = 0; i < 3; ++i)
        host->pressKey(ui::Key::Backspace);
    EXPECT_EQ(field->txt()->text(), "");
    EXPECT_TRUE(field->title()->isHidden());

    const double s = 1.2 * gfx::Font::systemFontSize();
    EXPECT_TRUE(sameRect(field->txt()->frame(), {7, 1.1 * s, 336, 300 - 2.5 * s}));
    EXPECT_EQ(field->txt()->textContainerInset(), (gfx::Insets{0.5 * s, 2.1 * s, 0, 2}));
    ASSERT_TRUE(field->photo());
    EXPECT_TRUE(sameRect(field->photo()->frame(), {10.5, 1.1 * s, 1.5 * s, 2 * s}));
    EXPECT_TRUE(sameRect(field->error()->frame(), {7, field->txt()->frame().maxY(), 336, s}));
    EXPECT_FALSE(CTextview::initWithName("Note", "no-such-picture", false)->photo());
}

// Each button gives up the keyboard before it reports: Save the text as it
// stands (line ends included), DELETE and Cancel true, never a save.
TEST_F(EditorTest, each_panel_button_ends_the_editing_and_reports_once) {
    auto panel = ZBTextview::initWithData("Guest note", "Note", "not used");
    panel->setFrame({20, 100, 350, 300});
    host->root()->addSubview(panel);
    host->runUntilIdle();
    EXPECT_EQ(panel->title()->currentTitle(), "Guest note");
    EXPECT_EQ(panel->inputTxt()->title()->text(), "Note");
    std::vector<std::string> reports;
    bool editingWhenReported = true;
    auto report = [&](std::string what) {
        editingWhenReported = editingWhenReported && panel->inputTxt()->txt()->isFirstResponder();
        reports.push_back(std::move(what));
    };
    panel->watchAction(
        0, [&](const std::string& text) { report("save " + text); },
        [&](bool v) { report(v ? "delete" : "?"); }, [&](bool v) { report(v ? "cancel" : "?"); });
    panel->addData("Window seat,\nquiet table");
    for (auto* button : {panel->saveBtn().get(), panel->deleteBtn().get(), panel->cancelBtn().get()}) {
        focus(*panel->inputTxt()->txt());
        host->tap(button->convertRectTo(button->bounds(), nullptr).center());
    }
    EXPECT_EQ(reports, (std::vector<std::string>{"save Window seat,\nquiet table", "delete", "cancel"}));
    EXPECT_FALSE(editingWhenReported);
    panel->watchAction(0, {}, {}, {});
    panel->saveAction(); // no callbacks: nothing
}

// 300 x 240 at a system font of 17: b = 47.6 units; the proportional panel by fractions.
TEST_F(EditorTest, panel_layouts) {
    const double b = 2.8 * gfx::Font::systemFontSize();
    auto units = ZBTextview::initWithData("Data", "Item");
    units->setFrame({0, 0, 300, 240});
    auto shares = NTextview::initWithData("Data", "Item");
    shares->setFrame({0, 300, 300, 240});
    host->root()->addSubview(units);
    host->root()->addSubview(shares);
    host->runUntilIdle();
    EXPECT_TRUE(sameRect(units->saveBtn()->frame(), {300 - 4 * b, 240 - 2.4 * b, 3 * b, b}));
    EXPECT_TRUE(sameRect(units->deleteBtn()->frame(), {0, 240 - 1.2 * b, 300, 1.2 * b}));
    EXPECT_TRUE(sameRect(units->cancelBtn()->frame(), {300 - 7.2 * b, 240 - 2.4 * b, 3 * b, b}));
    EXPECT_TRUE(sameRect(units->inputTxt()->frame(), {15, b, 270, 240 - 3.1 * b}));
    EXPECT_DOUBLE_EQ(units->layer().cornerRadius(), 6);
    EXPECT_TRUE(sameRect(shares->login()->frame(), {165, 153.6, 120, 36}));
    EXPECT_TRUE(sameRect(shares->cancelBtn()->frame(), {36, 153.6, 120, 36}));
    EXPECT_TRUE(sameRect(shares->deleteBtn()->frame(), {0, 196.8, 300, 45.6}));
    EXPECT_TRUE(sameRect(shares->usr()->frame(), {15, 36, 270, 120}));
    EXPECT_DOUBLE_EQ(shares->layer().cornerRadius(), 12);
}

// In from below the bottom edge over 1 s to rest at 0.15 of the height;
// out again over 1 s on a choice, the owner told as the slide starts and the
// bar hidden when it ends. A second show starts again from the bottom; a
// show during a slide-out keeps the bar.
TEST_F(EditorTest, the_bars_slide_their_panel_in_and_out_and_report_the_choice) {
    auto owner = std::make_shared<ui::View>(gfx::Rect{0, 0, 400, 600});
    host->root()->addSubview(owner);
    auto bar = ZBDataInput::initWithData("a", "b", "c");
    auto other = UIDataInput::initWithData();
    for (const auto& b : std::initializer_list<std::shared_ptr<detail::DataInputBar>>{bar, other}) {
        b->setFrame(owner->bounds());
        b->setHidden(true);
        owner->addSubview(b);
    }
    host->runUntilIdle();
    EXPECT_EQ(bar->nTextview()->title()->currentTitle(), "Data");
    EXPECT_EQ(bar->nTextview()->inputTxt()->title()->text(), "Item");
    std::vector<std::string> told;
    bool visibleWhenTold = false;
    bar->watchAction(
        0,
        [&](const std::string& text) {
            visibleWhenTold = !bar->isHidden();
            told.push_back("save " + text);
        },
        [&](bool v) { told.push_back(v ? "delete" : "?"); },
        [&](bool v) { told.push_back(v ? "cancel" : "?"); });

    bar->addData("Mesa 4");
    bar->show(*owner);
    EXPECT_EQ(owner->subviews().back().get(), bar.get());
    EXPECT_FALSE(bar->isHidden());
    EXPECT_NEAR(bar->nTextview()->presentation().frame().y, 600, 1e-6);
    host->advance(0.5);
    bar->show(*owner);
    EXPECT_NEAR(bar->nTextview()->presentation().frame().y, 600, 1e-6)
        << "a second show starts from the bottom";
    host->advance(1.0);
    EXPECT_TRUE(sameRect(bar->nTextview()->frame(), {40, 90, 320, 240}));

    bar->nTextview()->saveAction();
    EXPECT_EQ(told, std::vector<std::string>{"save Mesa 4"});
    EXPECT_TRUE(visibleWhenTold);
    host->advance(0.5);
    EXPECT_FALSE(bar->isHidden());
    host->advance(0.6);
    EXPECT_TRUE(bar->isHidden());

    bar->show(*owner);
    host->advance(1.0);
    bar->nTextview()->cancelAction();
    host->advance(0.5);
    bar->show(*owner); // overtakes the slide-out
    host->advance(1.0);
    EXPECT_FALSE(bar->isHidden());
    bar->nTextview()->deleteAction();
    EXPECT_EQ(told, (std::vector<std::string>{"save Mesa 4", "cancel", "delete"}));

    other->show(*owner);
    host->advance(1.0);
    EXPECT_TRUE(sameRect(other->nTextview()->frame(), {60, 90, 280, 240}));
    EXPECT_EQ(other->nTextview()->usr()->title()->text(), "Item");
}

TEST_F(EditorTest, editor_panel_snapshot) {
    auto panel = ZBTextview::initWithData("Guest note", "Note");
    panel->setFrame({0, 0, 350, 300});
    host->root()->addSubview(panel);
    panel->addData("Window seat, quiet table.\nArriving at 21:30.");
    host->runUntilIdle();
    morvane::testing::expectImageMatches(ui::Renderer::imageOf(*panel, 2),
                                         "tests/forms/snapshots/editor-panel@2x.png");
}

// Every callback may run any operation of its component, release included.
TEST_F(EditorTest, any_operation_from_an_input_field_callback_is_safe) {
    host.reset();
    ReentrancyHarness<ZBInput> fields(73);
    fields.make([](ReentrancyHarness<ZBInput>& h) {
        auto field = ZBInput::initWithName("Note", "email", false);
        field->setFrame({20, 100, 350, 300});
        field->watchAction(0, [&h](const std::string&, const std::string& text) -> Value {
            h.callback("text");
            if (text.size() % 2) return List::make({Value("Odd"), Value::object(gfx::Color::redColor())});
            return {};
        });
        return field;
    });
    fields.operation("resign", [](ZBInput& f, Random&) { f.resign(); });
    fields.operation("error", [](ZBInput& f, Random&) { f.addError("Wrong", gfx::Color::redColor()); });
    fields.operation("toast", [](ZBInput& f, Random&) { f.toast("Hello"); });
    fields.operation("set text", [](ZBInput& f, Random&) { f.txt()->setText("abc"); });
    fields.input("tap", [](ui::HeadlessHost& host, ZBInput& f, Random&) {
        host.tap(f.txt()->convertRectTo(f.txt()->bounds(), nullptr).center());
    });
    fields.input("type", [](ui::HeadlessHost& host, ZBInput&, Random&) { host.typeText("ab"); });
    fields.input("return", [](ui::HeadlessHost& host, ZBInput&, Random&) { host.pressKey(ui::Key::Return); });
    fields.run(ReentrancyHarness<ZBInput>::steps(600, 5000));
    EXPECT_GT(fields.callbacks(), 10);
}

template <class Bar> void runBarHarness(unsigned seed) {
    ReentrancyHarness<Bar> bars(seed);
    bars.make([](ReentrancyHarness<Bar>& h) {
        auto bar = Bar::initWithData();
        bar->setFrame({0, 0, 390, 700});
        bar->watchAction(
            0, [&h](const std::string&) { h.callback("save"); }, [&h](bool) { h.callback("delete"); },
            [&h](bool) { h.callback("cancel"); });
        return bar;
    });
    bars.operation("show", [](Bar& b, Random&) {
        if (auto* owner = b.superview()) b.show(*owner);
    });
    bars.operation("out", [](Bar& b, Random&) { b.minimize(true); });
    bars.operation("in", [](Bar& b, Random&) { b.minimize(false); });
    bars.operation("data", [](Bar& b, Random&) { b.addData("Mesa 4"); });
    bars.operation("save", [](Bar& b, Random&) { b.nTextview()->saveAction(); });
    bars.operation("delete", [](Bar& b, Random&) { b.nTextview()->deleteAction(); });
    bars.operation("cancel", [](Bar& b, Random&) { b.nTextview()->cancelAction(); });
    bars.input("tap", [](ui::HeadlessHost& host, Bar& b, Random& r) {
        host.tap(randomPointIn(r, b.convertRectTo(b.bounds(), nullptr)));
    });
    bars.input("wait", [](ui::HeadlessHost& host, Bar&, Random&) { host.advance(0.6); });
    bars.run(ReentrancyHarness<Bar>::steps(600, 5000));
    EXPECT_GT(bars.callbacks(), 30);
}

TEST_F(EditorTest, any_operation_from_a_bar_callback_is_safe) {
    host.reset();
    runBarHarness<ZBDataInput>(74);
    runBarHarness<UIDataInput>(75);
}
