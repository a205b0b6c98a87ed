// The item price selector on the headless host: filled, typed into and
// pressed as a person would; what each button reports, in which order, and
// what its fields flag.
#include "HostFixture.h"
#include "Rects.h"
#include "Reentrancy.h"
#include "Snapshot.h"

#include <morvane/commerce/NItemPrice.h>
#include <morvane/model/Json.h>
#include <morvane/model/Node.h>
#include <morvane/sys/App.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

using namespace morvane;
using namespace morvane::test;

namespace {

class NItemPriceTest : public HostFixture {
  protected:
    void SetUp() override {
        HostFixture::SetUp();
        editor = NItemPrice::initWithData("Edit dish", "Dish", "Price");
        editor->setFrame({20, 200, 350, 300});
        editor->setTag(7);
        host->root()->addSubview(editor);
        editor->watchAction(0, record("save"), record("create"), record("delete"), [this](bool flag) {
            calls.push_back("cancel " + std::to_string(flag) + hidden());
        });
        host->runUntilIdle();
    }
    void TearDown() override {
        editor.reset();
        HostFixture::TearDown();
    }
    // Each report, with whether the editor was already hidden when it came.
    NItemPrice::ItemCB record(std::string name) {
        return
            [this, name](int tag, const std::string& item, const std::string& price, const std::string& sel) {
                calls.push_back(name + " " + std::to_string(tag) + " [" + item + "] [" + price + "] [" + sel +
                                "]" + hidden());
            };
    }
    std::string hidden() const { return editor && editor->isHidden() ? " hidden" : " shown"; }
    void typeInto(detail::LabelledField& field, std::string_view text) {
        tapOn(*field.txt());
        host->typeText(text);
    }
    void reshow() {
        editor->setHidden(false);
        host->runUntilIdle();
    }

    std::shared_ptr<NItemPrice> editor;
    std::vector<std::string> calls;
};

} // namespace

TEST_F(NItemPriceTest, each_button_hides_the_editor_then_reports_with_the_tag) {
    editor->setTop("Grilled sardines");
    editor->setBottom("14.5");
    editor->setSelection("yes");
    tapOn(*editor->saveBtn());
    reshow();
    tapOn(*editor->nwBtn());
    reshow();
    editor->setSelection("no");
    tapOn(*editor->delBtn());
    reshow();
    tapOn(*editor->closeBtn());
    EXPECT_EQ(calls,
              (std::vector<std::string>{"save 7 [Grilled sardines] [14.5] [yes] hidden",
                                        "create 7 [Grilled sardines] [14.5] [yes] hidden",
                                        "delete 7 [Grilled sardines] [14.5] [] hidden", "cancel 1 hidden"}));
}

TEST_F(NItemPriceTest, a_blank_name_saves_as_a_delete_and_without_a_save_callback_nothing_is_reported) {
    editor->setTop(" \t\u00a0 ");
    editor->setSelection("no");
    tapOn(*editor->saveBtn());
    EXPECT_EQ(calls, std::vector<std::string>{"delete 7 [ \t\u00a0 ] [] [no] hidden"});

    // A line break is not a blank: that name is saved.
    calls.clear();
    reshow();
    editor->setTop("\n");
    tapOn(*editor->saveBtn());
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_TRUE(calls[0].starts_with("save")) << calls[0];

    calls.clear();
    reshow();
    editor->watchAction(0, {}, {}, record("delete"), {});
    editor->setTop("   ");
    tapOn(*editor->saveBtn());
    tapOn(*editor->closeBtn()); // hidden: the tap reaches nothing
    reshow();
    tapOn(*editor->closeBtn());
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(editor->isHidden());
}

TEST_F(NItemPriceTest, the_mark_follows_the_selection_and_flips_when_pressed) {
    EXPECT_EQ(editor->checkBtn()->currentTitle(), "\u2713");
    EXPECT_EQ(editor->checkBtn()->titleColorForState(ui::ControlState::Normal), gfx::Color::redColor())
        << "red until first set";
    for (auto [selection, title] : {std::pair<std::optional<std::string_view>, const char*>{"yes", "\u2713"},
                                    {"YES", "\u2718"},
                                    {"1", "\u2718"},
                                    {std::nullopt, "\u2718"}}) {
        editor->setSelection(selection);
        EXPECT_EQ(editor->checkBtn()->currentTitle(), title) << selection.value_or("nothing");
    }
    EXPECT_EQ(editor->checkBtn()->titleColorForState(ui::ControlState::Normal), gfx::Color::redColor());
    EXPECT_EQ(editor->selectedText(), "no");
    tapOn(*editor->checkBtn());
    EXPECT_EQ(editor->checkBtn()->currentTitle(), "\u2713");
    EXPECT_EQ(editor->checkBtn()->titleColorForState(ui::ControlState::Normal), gfx::Color::blueColor());
    EXPECT_FALSE(editor->isHidden()) << "the mark is no action that ends editing";
    tapOn(*editor->saveBtn());
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_TRUE(calls[0].ends_with("[yes] hidden")) << calls[0];
}

TEST_F(NItemPriceTest, typed_names_are_checked_against_the_names_in_use_and_prices_take_digits_only) {
    // The names come from choice records, read leniently (a comma after the
    // last member is accepted).
    const auto records = List::make();
    records->push(json::parse(R"({"title": "Your trip",   "alias": "Location",
                                  "list": "Bellingham to SeaTac:80.0,SeaTac to Bellingham:75.0",})",
                              {.syntax = json::Syntax::Lenient})
                      .node());
    const ListPtr used = records->getAlreadyUsed("list");
    editor->addUsedList(used);

    typeInto(*editor->itemTxt(), "SeaTac to Bellingham");
    EXPECT_EQ(editor->itemTxt()->text(), "SeaTac to Bellingham") << "letters are taken";
    const auto flagged = [](const detail::LabelledField& field, const std::string& message,
                            const gfx::Color& colour) {
        return field.toaster()->text() == message && field.error()->backgroundColor() == colour;
    };
    const auto accepted = [](const detail::LabelledField& field) {
        return field.error()->backgroundColor() == gfx::Color::clearColor();
    };
    EXPECT_TRUE(flagged(*editor->itemTxt(), "Already used", gfx::Color::yellowColor()));
    EXPECT_EQ(editor->itemTxt()->toaster()->frame().width, editor->itemTxt()->bounds().width)
        << "a field without an icon has a place for its message too";
    host->typeText("!");
    EXPECT_TRUE(accepted(*editor->itemTxt()));
    // Another case is another name.
    editor->itemTxt()->txt()->setText("");
    typeInto(*editor->itemTxt(), "seatac to bellingham");
    EXPECT_TRUE(accepted(*editor->itemTxt()));
    // Names added to the shared list later count too: it is held, not copied.
    used->push(Value("Ferry"));
    editor->itemTxt()->txt()->setText("");
    typeInto(*editor->itemTxt(), "Ferry");
    EXPECT_TRUE(flagged(*editor->itemTxt(), "Already used", gfx::Color::yellowColor()));

    typeInto(*editor->priceTxt(), "0000");
    EXPECT_EQ(editor->priceTxt()->text(), "0000");
    EXPECT_TRUE(flagged(*editor->priceTxt(), "Error", gfx::Color::blueColor()));
    for (const char* fine : {"0", "00", "000", "0.00", "00000"}) {
        editor->priceTxt()->txt()->setText("");
        typeInto(*editor->priceTxt(), fine);
        EXPECT_TRUE(accepted(*editor->priceTxt())) << fine;
    }
    editor->priceTxt()->txt()->setText("");
    typeInto(*editor->priceTxt(), "12a.5");
    EXPECT_EQ(editor->priceTxt()->text(), "12.5") << "the letter is refused";

    // Flagged texts are still handed over as they are.
    editor->setBottom("0000");
    tapOn(*editor->saveBtn());
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0], "save 7 [Ferry] [0000] [yes] hidden");
}

TEST_F(NItemPriceTest, lays_out_by_the_frame_and_draws_the_form_over_the_delete_strip) {
    EXPECT_TRUE(sameRect(editor->title()->frame(), {35, 0, 280, 42}));
    EXPECT_TRUE(sameRect(editor->closeBtn()->frame(), {315, 0, 17.5, 42}));
    EXPECT_TRUE(sameRect(editor->itemTxt()->frame(), {17.5, 45, 315, 60}));
    EXPECT_TRUE(sameRect(editor->priceTxt()->frame(), {17.5, 117, 315, 60}));
    EXPECT_TRUE(sameRect(editor->saveBtn()->frame(), {192.5, 192, 140, 45}));
    EXPECT_TRUE(sameRect(editor->checkBtn()->frame(), {17.5, 192, 35, 45}));
    EXPECT_TRUE(sameRect(editor->nwBtn()->frame(), {70, 192, 98, 45}));
    EXPECT_TRUE(sameRect(editor->lineBtn()->frame(), {178.5, 198, 3.5, 36}));
    EXPECT_TRUE(sameRect(editor->delBtn()->frame(), {35, 246, 280, 54}));
    EXPECT_DOUBLE_EQ(editor->layer().cornerRadius(), 15);
    EXPECT_DOUBLE_EQ(editor->saveBtn()->layer().cornerRadius(), 15);

    editor->setTop("Grilled sardines");
    editor->setBottom("14.5");
    editor->setSelection("yes");
    const auto image = ui::Renderer::imageOf(*editor, 2);
    EXPECT_TRUE(image.pixelColor(10, 200)->isClose(gfx::Color::fromBytes(213, 213, 226), 0.02));
    EXPECT_TRUE(image.pixelColor(10, 580)->isClose(gfx::Color::blackColor(), 0.02));
    morvane::testing::expectImageMatches(image, "tests/commerce/snapshots/item-price.png");
}

// Random fills, typing and presses; every report runs another operation.
TEST(NItemPriceReentrancy, any_operation_from_any_callback_is_safe) {
    for (unsigned seed : {51u, 52u}) {
        ReentrancyHarness<NItemPrice> harness(seed);
        harness.make([](ReentrancyHarness<NItemPrice>& h) {
            auto editor = NItemPrice::initWithData("Edit", "Dish", "Price");
            editor->setFrame({20, 200, 350, 300});
            auto report = [&h](int, const std::string&, const std::string&, const std::string&) {
                h.callback("item");
            };
            editor->watchAction(0, report, report, report, [&h](bool) { h.callback("cancel"); });
            editor->addUsedList(List::make({Value("Soup")}));
            return editor;
        });
        harness.operation("show", [](NItemPrice& e, Random&) { e.setHidden(false); });
        harness.operation("fill", [](NItemPrice& e, Random& r) {
            e.setTop(chance(r, 0.3) ? Value("  ") : Value("Soup"));
            e.setBottom(chance(r, 0.5) ? Value("0000") : Value(12));
            e.setSelection(chance(r, 0.5) ? "yes" : "no");
            e.setTag(randomInt(r, 0, 9));
        });
        harness.operation("unwatch", [](NItemPrice& e, Random& r) {
            if (chance(r, 0.1)) e.watchAction(0, {}, {}, {}, {});
        });
        harness.operation("used", [](NItemPrice& e, Random& r) {
            e.addUsedList(chance(r, 0.5) ? List::make({Value("Soup")}) : nullptr);
        });
        harness.operation("actions", [](NItemPrice& e, Random& r) {
            void (NItemPrice::*actions[])() = {&NItemPrice::saveAction, &NItemPrice::createAction,
                                               &NItemPrice::delAction, &NItemPrice::cancelAction,
                                               &NItemPrice::checkAction};
            (e.*actions[randomInt(r, 0, 4)])();
        });
        harness.tapAnywhere();
        harness.input("press", [](ui::HeadlessHost& host, NItemPrice& e, Random& r) {
            const ui::View* buttons[] = {e.saveBtn().get(), e.nwBtn().get(), e.delBtn().get(),
                                         e.closeBtn().get(), e.checkBtn().get()};
            host.tap(centreOf(*buttons[randomInt(r, 0, 4)]));
        });
        harness.input("type", [](ui::HeadlessHost& host, NItemPrice&, Random& r) {
            host.typeText(chance(r, 0.5) ? "Soup" : "00");
        });
        harness.run(ReentrancyHarness<NItemPrice>::steps(1500, 10000));
        EXPECT_GT(harness.callbacks(), 60) << seed;
    }
}
