// The header bar through its operations and the headless host: the
// selection button cycling through data sets, the segment switch, the back
// button, translated captions, the toast strip and the layout.
#include "ListsFixture.h"
#include "Reentrancy.h"
#include "Snapshot.h"

#include <morvane/lists/UIHeader.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/util/Colors.h>

#include <thread>

using namespace morvane;
using namespace morvane::test;
using Texts = std::vector<std::string>;

namespace {

class UIHeaderTest : public ListsFixture {
  protected:
    void SetUp() override {
        ListsFixture::SetUp();
        header = std::make_shared<UIHeader>(gfx::Rect(0, 0, 390, 120));
        header->setBackgroundColor(Colors::hex("#1D2A44"));
        host->root()->addSubview(header);
        header->watch(
            "owner", [this](bool clicked) { calls.push_back(clicked ? "click" : "click:no"); },
            [this](const NodePtr& set) {
                calls.push_back("data:" + (set ? set->get("id").toText() : std::string("-")));
            });
    }
    void TearDown() override {
        header.reset();
        ListsFixture::TearDown();
    }
    void tapSelection() { tapOn(*header->selectionBtn()); }
    std::string caption() const { return header->selectionBtn()->currentTitle(); }

    std::shared_ptr<UIHeader> header;
    Texts calls;
};

} // namespace

// Names are sorted on refresh; the button shows the last piece after "-",
// hands the set to the data callbacks, and each tap moves on (wrapping),
// data first, then the click callbacks. Taps before refresh do nothing.
TEST_F(UIHeaderTest, the_selection_button_cycles_through_sorted_data_sets) {
    header->addDataWhenSelect("B-x", Node::make({{"id", "B"}}));
    header->addDataWhenSelect("A-y", Node::make({{"id", "A"}}));
    header->runAction();
    EXPECT_TRUE(calls.empty()) << "nothing shown yet";
    header->refresh();
    host->runUntilIdle();
    EXPECT_EQ(calls, (Texts{"data:A"}));
    EXPECT_EQ(caption(), "y");
    EXPECT_EQ(header->selectionBtn()->accessibilityHint(), "A-y");
    EXPECT_FALSE(header->selectionBtn()->isHidden());
    tapSelection();
    EXPECT_EQ(caption(), "x");
    tapSelection();
    EXPECT_EQ(caption(), "y");
    EXPECT_EQ(calls, (Texts{"data:A", "data:B", "click", "data:A", "click"}));

    // A later refresh keeps the name on show, wherever sorting puts it.
    header->addDataWhenSelect("0-first", Node::make({{"id", "0"}}));
    calls.clear();
    header->refresh();
    EXPECT_EQ(header->currentIdx(), 1);
    EXPECT_EQ(calls, (Texts{"data:A"}));
    header->refreshDescend();
    EXPECT_EQ(header->selectionBtn()->accessibilityHint(), "B-x");

    // One name: the button hides, the data still arrives; no names: an empty Node.
    header->clear();
    EXPECT_TRUE(header->selectionBtn()->isHidden());
    header->addDataWhenSelect("Only", Node::make({{"id", "O"}}));
    calls.clear();
    header->refresh();
    EXPECT_TRUE(header->selectionBtn()->isHidden());
    header->clear();
    header->refresh();
    header->addDataWhenSelect("NoNode", Value("not a set"));
    header->refresh();
    EXPECT_EQ(calls, (Texts{"data:O", "data:", "data:-"}));
}

// Names as hosts make them by mistake: empty, without "-", 10,000
// characters, and the same name twice. Every one is kept and cycled through,
// each showing its last piece, and its data arrives.
TEST_F(UIHeaderTest, odd_names_are_kept_and_shown_as_they_come) {
    const std::string longName = "Menu-" + std::string(10000, 'x');
    const Texts names{"", "plain", longName, "A-twice", "A-twice"};
    for (std::size_t i = 0; i < names.size(); ++i)
        header->addDataWhenSelect(names[i], Node::make({{"id", std::to_string(i)}}));
    header->refresh();
    ASSERT_EQ(header->mySelection()->size(), names.size());
    Texts hints{header->selectionBtn()->accessibilityHint().value_or("?")};
    Texts captions{caption()};
    for (std::size_t i = 1; i < names.size(); ++i) {
        header->runAction();
        hints.push_back(header->selectionBtn()->accessibilityHint().value_or("?"));
        captions.push_back(caption().size() > 20 ? "long" : caption());
    }
    EXPECT_EQ(hints, (Texts{"", "A-twice", "A-twice", longName, "plain"}));
    EXPECT_EQ(captions, (Texts{"", "twice", "twice", "long", "plain"}));
    EXPECT_EQ(calls.size(), 2 * names.size() - 1) << "data for each, a click for each tap";
}

// Long names split at the space nearest the middle; the caption goes to the
// hook marked and its translation, from any thread, lands on the main queue
// with parenthesised runs removed.
TEST_F(UIHeaderTest, captions_and_titles_are_split_and_translated_on_the_main_queue) {
    Texts asked;
    std::vector<TranslateCompletion> pending;
    header->watchTranslate([&](const std::string& text, TranslateCompletion done) {
        asked.push_back(text);
        pending.push_back(std::move(done));
    });
    header->addDataWhenSelect("Menu-Breakfast and Brunch", Node::make());
    header->refresh();
    header->addTitle("Porto Alvo-Harbour Café");
    EXPECT_EQ(caption(), "Breakfast\nand Brunch");
    EXPECT_EQ(header->titleLbl()->text(), "Harbour Café");
    ASSERT_EQ(asked, (Texts{"<en>Breakfast\nand Brunch", "<en>Harbour Café"}));
    std::thread([&] {
        pending[0]("Pequeno-almoço (manhã)"), pending[1]("  Café do Porto (Ribeira) ");
    }).join();
    EXPECT_EQ(header->titleLbl()->text(), "Harbour Café") << "not before the main queue runs";
    host->runUntilIdle();
    EXPECT_EQ(caption(), "Pequeno-almoço");
    EXPECT_EQ(header->titleLbl()->text(), "Café do Porto");

    header->addSubtitle("Rua Nova 4\\nPorto");
    EXPECT_EQ(header->subtitleLbl()->text(), "Rua Nova 4\nPorto");
}

// Splitting picks the space nearest the middle, counting UTF-16 units (the
// emoji is two: by code points the middle would fall nearer the second
// space); trimming drops parenthesised runs.
TEST(UIHeaderText, splitting_in_two_picks_the_space_nearest_the_middle) {
    const std::pair<const char*, Texts> splits[] = {{"New York City", {"New York", "City"}},
                                                    {"  Lisbon  ", {"Lisbon"}},
                                                    {"ab cd", {"ab", "cd"}},
                                                    {"a bcdef", {"a", "bcdef"}},
                                                    {"é😀 ab cd", {"é😀", "ab cd"}}};
    for (const auto& [text, parts] : splits)
        EXPECT_EQ(UIHeader::splitStringInTwo(text), parts) << text;
    EXPECT_EQ(UIHeader::trim("Tokyo (Haneda)"), "Tokyo");
    EXPECT_EQ(UIHeader::trim(" a (b) c (d"), "a  c (d") << "an unclosed run stays";
    EXPECT_EQ(UIHeader::trim(" no brackets "), " no brackets ") << "untouched without \"(\"";
    sys::Log::Capture log;
    EXPECT_EQ(UIHeader::refineText("Single"), "Single");
    EXPECT_EQ(UIHeader::refineText("Two words"), "Two\nwords");
    EXPECT_EQ(log.texts(), (Texts{"First part: Two", "Second part: words"}));
}

// An unknown name toasts an error and clears the current selection; a known
// one is found by likeness. The toast rises into the bar for two seconds,
// then falls away over one and hides.
TEST_F(UIHeaderTest, an_unknown_selection_toasts_an_error_that_rises_and_falls) {
    header->addDataWhenSelect("Drinks", Node::make({{"id", "D"}}));
    NodePtr found = header->addCurentSel("ink");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->get("id").toText(), "D");
    EXPECT_EQ(header->currentSel(), "ink");
    EXPECT_FALSE(header->addCurentSel("Lunch"));
    EXPECT_FALSE(header->currentSel());
    const auto& strip = header->toaster();
    EXPECT_EQ(strip->text(), "   Error: Lunch");
    EXPECT_EQ(strip->backgroundColor(), gfx::Color::redColor());
    EXPECT_FALSE(strip->isHidden());
    const double h = strip->bounds().height;
    EXPECT_DOUBLE_EQ(strip->center().y, 120 - h / 2) << "the model is final at once";
    EXPECT_DOUBLE_EQ(strip->alpha(), 1);
    host->advance(2.05);
    EXPECT_DOUBLE_EQ(strip->center().y, 120) << "falling";
    EXPECT_DOUBLE_EQ(strip->alpha(), 0);
    EXPECT_FALSE(strip->isHidden());
    host->advance(1.0);
    EXPECT_TRUE(strip->isHidden());
}

// Registering on the switch fires it once with the callback stored before;
// an answered index re-enters the switch; a host that always answers an
// index is stopped and logged once instead of recursing without end.
TEST_F(UIHeaderTest, the_segment_switch_asks_its_callback_and_stops_a_runaway_host) {
    sys::Log::Capture log;
    Texts titles;
    header->watchSubtitle(1, [&](const std::string& title) { return titles.push_back("old " + title), -1L; });
    EXPECT_TRUE(titles.empty()) << "no callback was stored before the first registration";
    EXPECT_FALSE(header->segmentedControl()->isHidden());
    header->watchSubtitle(0, [&](const std::string& title) {
        titles.push_back(title);
        return title == "Arrivals" ? 1L : -1L;
    });
    EXPECT_EQ(titles, (Texts{"old Arrivals"}));
    titles.clear();
    header->segmentChanged();
    EXPECT_EQ(titles, (Texts{"Arrivals", "Departures"}));
    EXPECT_EQ(header->segmentedControl()->selectedSegmentIndex(), 1);
    EXPECT_TRUE(log.contains("Selected Segment: 0"));

    int rounds = 0;
    header->watchSubtitle(0, [&](const std::string&) { return ++rounds, 0L; });
    rounds = 0;
    header->segmentChanged();
    header->segmentChanged();
    EXPECT_EQ(rounds, 2 * 17);
    EXPECT_EQ(linesWith(log, "keeps answering an index"), 1);
}

// "zed: ball" is logged per registration; an empty callback removes its
// entry; the back button shows once watched and reports "".
TEST_F(UIHeaderTest, registration_is_logged_and_the_back_button_reports_once_watched) {
    sys::Log::Capture log;
    header->watch("second", {}, [](const NodePtr&) {});
    header->watch("owner", {}, {});
    EXPECT_TRUE(log.contains("zed: ball second"));
    EXPECT_EQ(header->cbClick().size(), 0u);
    EXPECT_EQ(header->cbList().size(), 1u);
    EXPECT_TRUE(header->backBtn()->isHidden());
    Texts backs;
    header->watchHdrBack("Home", [&](const std::string& text) { backs.push_back("[" + text + "]"); });
    host->runUntilIdle();
    EXPECT_FALSE(header->backBtn()->isHidden());
    EXPECT_EQ(header->backBtn()->currentTitle(), "Home");
    tapOn(*header->backBtn());
    EXPECT_EQ(backs, (Texts{"[]"}));
}

// The layout from the bar's size: a bar smaller than the usual one in both
// directions shows a constant where a proportion belongs.
TEST_F(UIHeaderTest, layout_follows_the_bar_size) {
    const double t = UIHeader::getTextHeight(), f = 3 * gfx::Font::systemFontSize();
    const double w = 300, h = 90, s = h / 2, titleBottom = 0.8 * (h - s) + 0.6 * f;
    header->setFrame({0, 0, w, h});
    host->runUntilIdle();
    EXPECT_TRUE(sameRect(header->backBtn()->frame(), gfx::Rect(0.2 * s, 0, w, 0.8 * (h - s))));
    EXPECT_TRUE(sameRect(header->photo()->frame(), gfx::Rect(0.2 * s, 0.8 * (h - s), s, s)));
    EXPECT_DOUBLE_EQ(header->photo()->layer().cornerRadius(), s / 2);
    EXPECT_TRUE(
        sameRect(header->titleLbl()->frame(), gfx::Rect(1.4 * s, 0.8 * (h - s), w - 1.5 * s, 0.6 * f)));
    EXPECT_EQ(header->subtitleLbl()->frame(), gfx::Rect(1.5 * s, titleBottom, w - 1.5 * s, h - titleBottom));
    EXPECT_TRUE(sameRect(header->selectionBtn()->frame(), gfx::Rect(0.68 * w, 0.8 * (h - t), 0.3 * w, t)));
    EXPECT_TRUE(sameRect(header->toaster()->frame(), gfx::Rect(0, h, w, 0.5 * f)));
    EXPECT_TRUE(
        sameRect(header->segmentedControl()->frame(), gfx::Rect(0.34 * w, h - 0.55 * t, 0.32 * w, 0.5 * t)));
    EXPECT_DOUBLE_EQ(header->layer().shadowRadius(), 0.02 * w);
}

TEST_F(UIHeaderTest, the_header_matches_its_snapshot) {
    resourcePicture("store", 300, 200, Colors::hex("#E07A5F"));
    header->addImage("store", std::nullopt);
    header->addTitle("Porto Alvo-Harbour Café");
    header->addSubtitle("Rua Nova 4\\nOpen until midnight");
    header->addDataWhenSelect("Menu-Breakfast", Node::make());
    header->addDataWhenSelect("Menu-Dinner", Node::make());
    header->watchSubtitle(0, {});
    header->refresh();
    header->setFrame({0, 0, 390, 140});
    host->runUntilIdle();
    sys::Queue::waitIdle();
    host->runUntilIdle();
    morvane::testing::expectImageMatches(ui::Renderer::imageOf(*header, 2),
                                         "tests/lists/snapshots/header@2x.png");
}

// Random operations, taps and segment changes; every callback (data, click,
// segment, back, translation) runs another operation, release included.
TEST(UIHeaderReentrancy, any_operation_from_any_callback_is_safe) {
    for (unsigned seed : {21u, 22u, 23u}) {
        ReentrancyHarness<UIHeader> harness(seed);
        std::vector<TranslateCompletion> pending;
        harness.make([&pending](ReentrancyHarness<UIHeader>& h) {
            auto header = std::make_shared<UIHeader>(gfx::Rect(0, 0, 390, 120));
            header->watch(
                "h", [&h](bool) { h.callback("click"); }, [&h](const NodePtr&) { h.callback("data"); });
            header->watchHdrBack(std::nullopt, [&h](const std::string&) { h.callback("back"); });
            header->watchSubtitle(0, [&h](const std::string&) {
                h.callback("segment");
                return chance(h.random(), 0.5) ? long(randomInt(h.random(), 0, 1)) : -1L;
            });
            header->watchTranslate([&h, &pending](const std::string&, TranslateCompletion done) {
                pending.push_back(std::move(done));
                h.callback("translate");
            });
            for (int i = 0; i < 4; ++i)
                header->addDataWhenSelect("Set-" + std::to_string(i), Node::make({{"id", i}}));
            header->refresh();
            return header;
        });
        harness.operation("add set", [](UIHeader& header, Random& r) {
            header.addDataWhenSelect("Set-" + std::to_string(randomInt(r, 0, 9)), Node::make());
        });
        harness.operation("clear", [](UIHeader& header, Random&) { header.clear(); });
        harness.operation("refresh", [](UIHeader& header, Random&) { header.refresh(); });
        harness.operation("refreshDescend", [](UIHeader& header, Random&) { header.refreshDescend(); });
        harness.operation("addSelection",
                          [](UIHeader& header, Random& r) { header.addSelection(randomInt(r, -1, 6)); });
        harness.operation("runAction", [](UIHeader& header, Random&) { header.runAction(); });
        harness.operation("segmentChanged", [](UIHeader& header, Random&) { header.segmentChanged(); });
        harness.operation("addCurentSel", [](UIHeader& header, Random& r) {
            (void)header.addCurentSel(chance(r, 0.5) ? "Set" : "nothing");
        });
        harness.operation("toast", [](UIHeader& header, Random&) { header.toast("Hello"); });
        harness.operation("addTitle", [](UIHeader& header, Random&) { header.addTitle("A-B (c)"); });
        harness.complete("translation arrives", pending, std::string("x (y)"));
        harness.operation("watch none", [](UIHeader& header, Random&) { header.watch("h", {}, {}); });
        harness.input("tap selection", [](ui::HeadlessHost& host, UIHeader& header, Random&) {
            host.tap(centreOf(*header.selectionBtn()));
        });
        harness.input("tap segment", [](ui::HeadlessHost& host, UIHeader& header, Random& r) {
            const auto& control = *header.segmentedControl();
            host.tap(randomPointIn(r, control.convertRectTo(control.bounds(), nullptr)));
        });
        harness.input("tap back", [](ui::HeadlessHost& host, UIHeader& header, Random&) {
            host.tap(centreOf(*header.backBtn()));
        });
        harness.run(ReentrancyHarness<UIHeader>::steps(500, 5000));
        EXPECT_GT(harness.callbacks(), 100) << seed;
    }
}
