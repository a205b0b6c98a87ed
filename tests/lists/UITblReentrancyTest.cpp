// The list's owner code runs inside the table's layout, taps and swipes:
// whatever it does there (reload, scroll, resize, remove, release) must not
// fault. One case the way it was first found, then the random harness.
#include "ListsFixture.h"
#include "Reentrancy.h"

#include <morvane/ui/controls/Button.h>
#include <morvane/ui/core/Window.h>

using namespace morvane;
using namespace morvane::test;

namespace {

NodePtr randomRow(Random& random) {
    const std::string key = "k" + std::to_string(randomInt(random, 0, 60));
    auto row = Node::make(
        {{"key", key}, {"name", "Name " + key}, {"price", std::to_string(randomInt(random, 1, 90))}});
    if (chance(random, 0.2)) row->set("name", "<en>Zone-" + key);
    if (chance(random, 0.1)) row = Node::make({{"name", "nested"}, {"info", Node::make({{"key", key}})}});
    return row;
}

class UITblReentrancyTest : public ListsFixture {};

} // namespace

// A populate callback that reloads the list while the table is placing its
// cells: the table used to keep a reference into its map of shown cells
// across the call, which the reload cleared.
TEST_F(UITblReentrancyTest, populate_that_refreshes_the_list_leaves_every_row_shown) {
    for (int i = 0; i < 40; ++i)
        list->adData(Node::make({{"key", "r" + std::to_string(100 + i)}}));
    bool refreshed = false;
    list->watchTbl("owner", {},
                   [&](const Value&, const NodePtr&) {
                       if (!std::exchange(refreshed, true)) list->refresh();
                   },
                   {});
    list->refresh();
    host->runUntilIdle();
    ASSERT_TRUE(refreshed);
    const auto paths = list->tbl()->indexPathsForVisibleRows();
    ASSERT_FALSE(paths.empty());
    for (const auto& path : paths)
        EXPECT_TRUE(cellAt(path.row)) << path.row;
}

// Random operations, taps, scrolls, swipes and pulls; every callback the list
// makes (configuration, select, populate, refresh, swipe, translation, the
// row callbacks) runs another random operation, releasing the list included.
TEST_F(UITblReentrancyTest, any_operation_from_any_callback_is_safe) {
    for (unsigned seed : {1u, 2u, 3u}) {
        ReentrancyHarness<UITbl> harness(seed);
        std::vector<UITbl::TranslateCompletion> pending;
        auto configure = [&harness](UITbl& list, Random&) {
            auto keys = [&harness](std::vector<std::string> set) {
                return [&harness, set](std::vector<std::string>& keys) {
                    harness.callback("cfg keys"), keys = set;
                };
            };
            auto flag = [&harness](bool set) {
                return [&harness, set](bool& f) { harness.callback("cfg flag"), f = set; };
            };
            Random& random = harness.random();
            list.cfg({.image = keys({"image"}),
                      .header = keys({"name", "key"}),
                      .body = keys(chance(random, 0.5) ? std::vector<std::string>{"price", "name"}
                                                       : std::vector<std::string>{}),
                      .price = keys({"price"}),
                      .sort = flag(chance(random, 0.8)),
                      .sortBy = keys({"name"}),
                      .ascending = flag(chance(random, 0.5)),
                      .cellHeight = [&harness](float& lines) { harness.callback("cfg lines"), lines = 3; },
                      .checkBox = flag(chance(random, 0.7)),
                      .select = [&harness](std::string& s) { harness.callback("cfg select"), s = "k1"; },
                      .incKey = flag(chance(random, 0.3))});
        };
        harness.make([&](ReentrancyHarness<UITbl>& h) {
            auto list = std::make_shared<UITbl>(gfx::Rect(0, 0, 390, 700));
            list->watchTbl(
                "owner", [&h](const Value&, const NodePtr&) { h.callback("select"); },
                [&h](const Value&, const NodePtr&) { h.callback("populate"); },
                [&h](const std::string&, const NodePtr&) { h.callback("refresh"); });
            list->watchSwipe("Call", gfx::Color::greenColor(),
                             [&h](long, const NodePtr&) { h.callback("swipe"); });
            list->watchSwipeLeft("Save", gfx::Color::blueColor(),
                                 [&h](long, const NodePtr&) { h.callback("swipe left"); });
            list->watchTranslate([&h, &pending](const std::string&, UITbl::TranslateCompletion done) {
                pending.push_back(std::move(done));
                h.callback("translate");
            });
            for (int i = 0; i < 12; ++i)
                list->adData(randomRow(h.random()));
            list->refresh();
            return list;
        });
        const UITbl::DataCB rows = [&harness](const ListPtr&) { harness.callback("rows"); };
        harness.operation("cfg", configure);
        harness.operation("adData", [](UITbl& list, Random& r) { list.adData(randomRow(r)); });
        harness.operation("adData text", [](UITbl& list, Random&) { list.adData(Value("not a row")); });
        harness.operation("clear", [](UITbl& list, Random&) { list.clear(); });
        harness.operation("refresh", [](UITbl& list, Random&) { list.refresh(); });
        harness.operation("reload table", [](UITbl& list, Random&) { list.tbl()->reloadData(); });
        harness.operation(
            "swap", [](UITbl& list, Random& r) { list.swap(randomInt(r, -1, 14), randomInt(r, -1, 14)); });
        harness.operation("moveUp",
                          [&rows](UITbl& list, Random& r) { list.moveUp(randomInt(r, -1, 14), rows); });
        harness.operation("moveDown",
                          [&rows](UITbl& list, Random& r) { list.moveDown(randomInt(r, -1, 14), rows); });
        harness.operation("grab", [&rows](UITbl& list, Random&) { list.grab(0, rows); });
        harness.operation("sortArray", [](UITbl& list, Random& r) {
            list.sortArray(list.myData(), "name", chance(r, 0.5));
        });
        harness.operation("refreshTable", [](UITbl& list, Random&) { list.refreshTable(); });
        harness.operation("watchTbl none", [](UITbl& list, Random& r) {
            if (chance(r, 0.2)) list.watchTbl(std::nullopt, {}, {}, {});
        });
        harness.operation("setBackgroundColor",
                          [](UITbl& list, Random&) { list.setBackgroundColor(gfx::Color::grayColor()); });
        harness.operation("scroll", [](UITbl& list, Random& r) {
            if (list.tbl()->numberOfRows(0) > 0)
                list.tbl()->scrollToRow(
                    ui::IndexPath::forRow(randomInt(r, 0, list.tbl()->numberOfRows(0) - 1)),
                    ui::TableView::ScrollPosition::Top, chance(r, 0.5));
        });
        harness.operation("open swipe", [](UITbl& list, Random& r) {
            list.tbl()->openSwipeActions(ui::IndexPath::forRow(randomInt(r, 0, 5)),
                                         chance(r, 0.5) ? ui::TableView::SwipeEdge::Leading
                                                        : ui::TableView::SwipeEdge::Trailing);
        });
        harness.operation("erase a row", [](UITbl& list, Random&) {
            if (!list.myData()->empty()) list.myData()->erase(std::size_t(0));
        });
        harness.complete("translation arrives", pending, std::string("traduit"));
        harness.operation("layout now", [](UITbl& list, Random&) {
            list.window() ? list.window()->layoutIfNeeded() : void();
        });
        harness.tapAnywhere();
        harness.input("scroll", [](ui::HeadlessHost& host, UITbl&, Random& r) {
            host.drag({200, double(randomInt(r, 100, 700))}, {200, double(randomInt(r, 50, 800))}, 0.2, 6);
        });
        harness.input("swipe", [](ui::HeadlessHost& host, UITbl&, Random& r) {
            const double y = randomInt(r, 20, 600);
            const double dx = chance(r, 0.5) ? 180 : -180;
            host.drag({195 - dx / 2, y}, {195 + dx / 2, y}, 0.15, 5);
        });
        harness.input("press action", [](ui::HeadlessHost& host, UITbl& list, Random& r) {
            const auto buttons = list.tbl()->swipeActionButtons();
            if (buttons.empty()) return;
            host.tap(centreOf(*buttons[std::size_t(randomInt(r, 0, int(buttons.size()) - 1))]));
        });
        harness.input("pull", [](ui::HeadlessHost& host, UITbl&, Random&) {
            host.drag({200, 80}, {200, 600}, 0.3, 10);
        });
        harness.run(ReentrancyHarness<UITbl>::steps(600, 6000));
        EXPECT_GT(harness.callbacks(), 100) << "the run reached the list's callbacks, seed " << seed;
        EXPECT_GT(harness.releases(), 0) << "the run released the list at least once, seed " << seed;
    }
}
