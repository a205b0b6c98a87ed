// The header-and-list composite in both forms: a header selection becoming
// the rows, data sets fetched through the flight callback from another
// thread, the layout, the routing to its parts, snapshots and re-entrancy.
#include "ListsFixture.h"
#include "Reentrancy.h"
#include "Snapshot.h"

#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/lists/UITblHdrAll.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/util/Colors.h>

#include <thread>

using namespace morvane;
using namespace morvane::test;
using Texts = std::vector<std::string>;
using Form = UITblHdrAll::Form;

namespace {

// A data set of dishes: a Node whose values are row Nodes, keyed out of order.
NodePtr dishes(const Texts& names) {
    auto set = Node::make();
    for (std::size_t i = 0; i < names.size(); ++i)
        set->set("n" + std::to_string(names.size() - i), Node::make({{"key", names[i]}, {"name", names[i]}}));
    return set;
}

class UITblHdrAllTest : public ListsFixture {
  protected:
    void make(Form form) {
        if (composite) composite->removeFromSuperview();
        composite = std::make_shared<UITblHdrAll>(form, gfx::Rect(0, 0, 390, 844));
        host->root()->addSubview(composite);
        composite->cfg({.sortBy = [](auto& keys) { keys = {"key"}; },
                        .ascending = [](bool& ascending) { ascending = true; }});
    }
    void TearDown() override {
        composite.reset();
        ListsFixture::TearDown();
    }
    // The "key" texts of the rows view's rows, in order.
    Texts rows() const {
        return keysOf(composite->tblUI() ? *composite->tblUI()->myData() : *composite->ctblUI()->myData());
    }
    void tapSelection() { tapOn(*composite->headerUI()->selectionBtn()); }

    std::shared_ptr<UITblHdrAll> composite;
};

} // namespace

// The header's chosen set becomes the rows, sorted; each tap on the
// selection button loads the next set; with no sets the rows empty.
TEST_F(UITblHdrAllTest, a_header_selection_becomes_the_rows_in_either_form) {
    for (Form form : {Form::List, Form::Grid}) {
        SCOPED_TRACE(form == Form::List ? "list" : "grid");
        make(form);
        EXPECT_NE(composite->tblUI() != nullptr, composite->ctblUI() != nullptr);
        composite->addDataWhenSelectHeader("Menu-Lunch", dishes({"soup", "bread", "fish"}));
        composite->addDataWhenSelectHeader("Menu-Breakfast", dishes({"toast", "eggs"}));
        composite->refreshHeader();
        host->runUntilIdle();
        EXPECT_EQ(rows(), (Texts{"eggs", "toast"}));
        tapSelection();
        EXPECT_EQ(rows(), (Texts{"bread", "fish", "soup"}));
        EXPECT_EQ(composite->headerUI()->selectionBtn()->currentTitle(), "Lunch");
        EXPECT_EQ(composite->selectedItemGet("Lunch"), composite->headerUI()->findObject("Lunch"));
        // A set that is no Node, then no sets at all: no rows.
        composite->addDataWhenSelectHeader("Menu-Closed", Value("closed"));
        composite->headerUI()->addSelection(2);
        EXPECT_TRUE(rows().empty());
        composite->clearHeader();
        composite->refreshHeader();
        EXPECT_TRUE(rows().empty());
    }
}

// An "api" set goes to the flight callback; its answer, from another
// thread, is loaded on the main queue. A late answer for a set the header
// has left is dropped; answers after the composite is gone do nothing.
// Without a flight callback an "api" set is loaded like any other.
TEST_F(UITblHdrAllTest, api_sets_are_answered_from_another_thread_and_loaded_on_the_main_queue) {
    make(Form::Grid);
    auto arrivals = Node::make({{"api", "arrivals"}});
    composite->addDataWhenSelectHeader("Flights-Arrivals", arrivals);
    composite->addDataWhenSelectHeader("Flights-Departures", dishes({"D1"}));
    std::vector<UITblHdrAll::FlightCompletion> pending;
    NodePtr asked;
    composite->watchFlight([&](const NodePtr& data, UITblHdrAll::FlightCompletion done) {
        asked = data;
        pending.push_back(std::move(done));
    });
    composite->refreshHeader();
    ASSERT_EQ(pending.size(), 1u);
    EXPECT_EQ(asked, arrivals);
    std::thread([done = pending[0]] { done(dishes({"A2", "A1"})); }).join();
    EXPECT_TRUE(rows().empty()) << "loaded before the main queue ran";
    host->runUntilIdle();
    EXPECT_EQ(rows(), (Texts{"A1", "A2"}));
    pending[0](dishes({"A3"})); // twice, while still current: loads again
    host->runUntilIdle();
    EXPECT_EQ(rows(), (Texts{"A3"}));

    sys::Log::Capture log;
    tapSelection(); // departures
    tapSelection(); // arrivals again: a second request
    ASSERT_EQ(pending.size(), 2u);
    tapSelection(); // departures
    std::thread([done = pending[1]] { done(dishes({"late"})); }).join();
    host->runUntilIdle();
    EXPECT_EQ(rows(), (Texts{"D1"}));
    EXPECT_EQ(linesWith(log, "an answer for an earlier data set arrived late"), 1);

    composite->watchFlight({});
    composite->headerUI()->addSelection(0);
    EXPECT_EQ(rows(), (Texts{"-"})) << "the api entry is loaded as a row";

    composite->removeFromSuperview();
    composite.reset();
    std::thread([done = pending[1]] { done(dishes({"gone"})); }).join();
    host->runUntilIdle();
}

// Header at the top, floor(t) high; rows from t, 1.02 t shorter than the
// space below; t is 7 text heights of "Sample Text". A short screen (not
// the snapshots') shows a constant where a proportion belongs.
TEST_F(UITblHdrAllTest, layout_stacks_the_header_over_the_rows) {
    const double t = UITblHdrAll::getTextHeight();
    EXPECT_DOUBLE_EQ(
        t,
        7 * gfx::TextMetrics::size("Sample Text", gfx::Font::systemFont(gfx::Font::systemFontSize())).height);
    for (Form form : {Form::List, Form::Grid}) {
        make(form);
        composite->setFrame({0, 0, 320, 480});
        host->runUntilIdle();
        EXPECT_EQ(composite->headerUI()->frame(), gfx::Rect(0, 0, 320, std::floor(t)));
        const ui::View& rowsView =
            composite->tblUI() ? static_cast<const ui::View&>(*composite->tblUI()) : *composite->ctblUI();
        EXPECT_EQ(rowsView.frame(), gfx::Rect(0, t, 320, 480 - 1.02 * t));
    }
}

// What the composite adds to its parts' own operations: the colours, the
// translation hook reaching both, swipes on the grid ignored (logged once),
// cleanUp clearing the header and its current selection.
TEST_F(UITblHdrAllTest, colours_translation_and_swipes_are_routed_to_the_parts) {
    make(Form::Grid);
    const gfx::Color navy = Colors::hex("#1D2A44");
    composite->setBackgroundColor(navy);
    EXPECT_EQ(composite->backgroundColor(), gfx::Color::clearColor());
    EXPECT_EQ(composite->headerUI()->backgroundColor(), navy);
    EXPECT_EQ(composite->ctblUI()->backgroundColor(), navy);

    int translations = 0;
    composite->watchTranslate([&](const std::string&, TranslateCompletion) { ++translations; });
    EXPECT_TRUE(composite->headerUI()->translateCB());
    EXPECT_TRUE(composite->ctblUI()->translateCB());

    sys::Log::Capture log;
    composite->watchSwipe("Call", navy, [](long, const NodePtr&) {});
    composite->watchSwipeLeft("Save", navy, [](long, const NodePtr&) {});
    EXPECT_EQ(linesWith(log, "swipe actions need the list form"), 1);

    composite->addDataWhenSelectHeader("Menu-Lunch", dishes({"soup"}));
    composite->refreshHeader();
    EXPECT_TRUE(composite->currentSel("Lunch"));
    EXPECT_FALSE(composite->currentSel("Supper"));
    EXPECT_TRUE(composite->currentSel("Lunch"));
    composite->cleanUp();
    EXPECT_FALSE(composite->headerUI()->currentSel());
    EXPECT_TRUE(composite->headerUI()->selectionBtn()->isHidden());
    EXPECT_EQ(composite->headerUI()->mySelection()->size(), 0u);
}

TEST_F(UITblHdrAllTest, the_header_over_grid_and_over_list_match_their_snapshots) {
    resourcePicture("harbour", 300, 200, Colors::hex("#3D5A80"));
    resourcePicture("dish0", 200, 200, Colors::hex("#E07A5F"));
    resourcePicture("dish1", 300, 200, Colors::hex("#81B29A"));
    for (Form form : {Form::Grid, Form::List}) {
        make(form);
        composite->setFrame({0, 0, 390, 640});
        composite->cfg({.header = [](auto& keys) { keys = {"name"}; },
                        .body = [](auto& keys) { keys = {"desc"}; },
                        .price = [](auto& keys) { keys = {"price"}; },
                        .sortBy = [](auto& keys) { keys = {"key"}; },
                        .ascending = [](bool& ascending) { ascending = true; },
                        .numOfCol = [](float& columns) { columns = 2; },
                        .checkBox = [](bool& on) { on = true; },
                        .select = [](std::string& key) { key = "k1"; }});
        composite->addHeaderTitle("Porto Alvo-Harbour Café");
        composite->addHeaderSubtitle("Rua Nova 4");
        composite->addHeaderImage("harbour", std::nullopt);
        auto set = Node::make();
        for (int i = 0; i < 6; ++i) {
            auto dish = Node::make({{"key", "k" + std::to_string(i)},
                                    {"name", "Dish " + std::to_string(i)},
                                    {"desc", "Grilled, with lemon"},
                                    {"price", std::to_string(8 + i) + ".50"}});
            if (i < 2) dish->set("image", "dish" + std::to_string(i));
            set->set("d" + std::to_string(i), dish);
        }
        composite->addDataWhenSelectHeader("Menu-Lunch", set);
        composite->addDataWhenSelectHeader("Menu-Supper", Node::make());
        composite->setBackgroundColor(Colors::hex("#1D2A44"));
        composite->refreshHeader();
        host->runUntilIdle();
        sys::Queue::waitIdle();
        host->runUntilIdle();
        morvane::testing::expectImageMatches(ui::Renderer::imageOf(*composite, 2),
                                             form == Form::Grid
                                                 ? "tests/lists/snapshots/header-over-grid@2x.png"
                                                 : "tests/lists/snapshots/header-over-list@2x.png");
    }
}

// Random operations, taps on the header and the rows; every callback the
// composite passes on (data, click, select, populate, flight, segment)
// runs another operation, release included. Flight answers come late.
TEST(UITblHdrAllReentrancy, any_operation_from_any_callback_is_safe) {
    for (unsigned seed : {41u, 42u}) {
        ReentrancyHarness<UITblHdrAll> harness(seed);
        std::vector<UITblHdrAll::FlightCompletion> pending;
        harness.make([&pending](ReentrancyHarness<UITblHdrAll>& h) {
            auto composite = std::make_shared<UITblHdrAll>(chance(h.random(), 0.5) ? Form::List : Form::Grid,
                                                           gfx::Rect(0, 0, 390, 700));
            composite->cfg({.header = [&h](auto& keys) { h.callback("cfg"), keys = {"name"}; },
                            .numOfCol = [](float& columns) { columns = 2; }});
            composite->watchTbl(
                "owner", [&h](const Value&, const NodePtr&) { h.callback("select"); },
                [&h](const Value&, const NodePtr&) { h.callback("populate"); }, {});
            composite->watchHdr(
                "owner", [&h](bool) { h.callback("click"); }, [&h](const NodePtr&) { h.callback("data"); });
            composite->watchSubtitle(0, [&h](const std::string&) {
                h.callback("segment");
                return -1L;
            });
            composite->watchFlight([&h, &pending](const NodePtr&, UITblHdrAll::FlightCompletion done) {
                pending.push_back(std::move(done));
                h.callback("flight");
            });
            for (int i = 0; i < 3; ++i)
                composite->addDataWhenSelectHeader("Set-" + std::to_string(i), dishes({"a", "b", "c", "d"}));
            composite->addDataWhenSelectHeader("Set-api", Node::make({{"api", "x"}}));
            composite->refreshHeader();
            return composite;
        });
        harness.operation("add set", [](UITblHdrAll& c, Random& r) {
            c.addDataWhenSelectHeader("Set-" + std::to_string(randomInt(r, 0, 6)), dishes({"e", "f"}));
        });
        harness.operation("refreshHeader", [](UITblHdrAll& c, Random&) { c.refreshHeader(); });
        harness.operation("clearHeader", [](UITblHdrAll& c, Random&) { c.clearHeader(); });
        harness.operation("cleanUp", [](UITblHdrAll& c, Random&) { c.cleanUp(); });
        harness.operation("clearTbl", [](UITblHdrAll& c, Random&) { c.clearTbl(); });
        harness.operation("currentSel", [](UITblHdrAll& c, Random& r) {
            (void)c.currentSel(chance(r, 0.5) ? "1" : "none");
        });
        harness.operation("updateTbl", [](UITblHdrAll& c, Random&) { c.updateTbl(dishes({"u", "v"})); });
        harness.operation("colour",
                          [](UITblHdrAll& c, Random&) { c.setBackgroundColor(gfx::Color::grayColor()); });
        harness.operation("runAction", [](UITblHdrAll& c, Random&) { c.headerUI()->runAction(); });
        harness.operation("answer arrives", [&pending](UITblHdrAll&, Random& r) {
            if (!pending.empty())
                pending[std::size_t(randomInt(r, 0, int(pending.size()) - 1))](dishes({"x", "y"}));
        });
        harness.input("tap selection", [](ui::HeadlessHost& host, UITblHdrAll& c, Random&) {
            host.tap(centreOf(*c.headerUI()->selectionBtn()));
        });
        harness.tapAnywhere();
        harness.run(ReentrancyHarness<UITblHdrAll>::steps(400, 4000));
        EXPECT_GT(harness.callbacks(), 100) << seed;
    }
}
