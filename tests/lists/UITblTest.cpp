// The table list driven through its operations and the headless host:
// configuration, sorting, check marks, taps, populate, translation, swipes,
// pull to refresh, moving rows and its colour. Taps, swipes and pulls go
// through the real table.
#include "ListsFixture.h"

#include <morvane/sys/Log.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/text/TextView.h>
#include <morvane/util/Colors.h>

using namespace morvane;
using namespace morvane::test;
using Keys = std::vector<std::string>;

namespace {

class UITblTest : public ListsFixture {
  protected:
    void addRows(const Keys& keys) {
        for (const auto& key : keys)
            list->adData(Node::make({{"key", key}, {"name", "Name " + key}}));
    }
    void show(const ListConfig& config = {}) {
        configure(*list, config);
        list->refresh();
        host->runUntilIdle();
    }
    std::string header(int row) const { return cellAt(row)->headLbl()->text(); }
    std::string body(int row) const { return cellAt(row)->bodyLbl()->text(); }
    bool checked(int row) const { return !cellAt(row)->checkLabel()->isHidden(); }
    std::vector<bool> marks() const {
        std::vector<bool> out;
        for (int row = 0; row < list->tbl()->numberOfRows(0); ++row)
            out.push_back(checked(row));
        return out;
    }
    double rowHeight() const { return list->tbl()->rectForRow(ui::IndexPath::forRow(0)).height; }
    void tapButton(std::size_t index) { tapOn(*list->tbl()->swipeActionButtons().at(index)); }
};

std::string joined(const Keys& keys) {
    std::string out;
    for (const auto& key : keys)
        out += (out.empty() ? "" : ",") + key;
    return out;
}

} // namespace

// Configuration resets everything, then hands each piece to its callback
// once, in the fixed order. It is not cumulative: a second configuration with
// empty callbacks brings back the defaults (descending, 5 lines) but keeps
// rows, registries and swipe entries.
TEST_F(UITblTest, configuration_runs_in_order_from_fresh_defaults) {
    Keys seen;
    auto keys = [&](std::string name, Keys set) {
        return [&seen, name, set](Keys& k) { seen.push_back(name + "=" + joined(k)), k = set; };
    };
    auto flag = [&](std::string name, bool set) {
        return [&seen, name, set](bool& f) { seen.push_back(name + "=" + std::to_string(f)), f = set; };
    };
    ListConfig config{keys("cfg", {"pic"}),
                      keys("header", {"name"}),
                      keys("body", {"phone"}),
                      keys("price", {}),
                      flag("sort", true),
                      keys("sortBy", {}),
                      flag("ascending", true),
                      [&](float& n) { seen.push_back("cellHeight=" + std::to_string(int(n))), n = 3; },
                      [&](float&) { seen.push_back("numOfCol"); },
                      flag("checkBox", false),
                      [&](std::string& s) { seen.push_back("select=" + s), s = "b"; },
                      flag("inckey", true)};
    addRows({"b", "a", "c"});
    list->watchTbl("owner", [](const Value&, const NodePtr&) {}, {}, {});
    list->watchSwipe("Delete", gfx::Color::redColor(), {});
    show(config);
    EXPECT_EQ(seen, (Keys{"cfg=image,photo", "header=key,name", "body=", "price=", "sort=1", "ascending=0",
                          "cellHeight=5", "checkBox=1", "sortBy=", "select=", "inckey=0"}))
        << "numOfCol is the grid's and never called";
    bool* sortCell = list->sort();
    EXPECT_EQ(list->currentSelection(), "b");
    EXPECT_EQ(rowKeys(), (Keys{"a", "b", "c"}));
    EXPECT_DOUBLE_EQ(rowHeight(), 3 * list->textHeight());

    show();
    EXPECT_EQ(list->sort(), sortCell) << "cells are reset in place, references stay valid";
    EXPECT_TRUE(*list->sort() && *list->checkBox() && !*list->ascending() && !*list->incKey());
    EXPECT_EQ(list->listImage(), (Keys{"image", "photo"}));
    EXPECT_EQ(list->listBody(), Keys{});
    EXPECT_EQ(list->currentSelection(), "");
    EXPECT_EQ(rowKeys(), (Keys{"c", "b", "a"})) << "descending again";
    EXPECT_DOUBLE_EQ(rowHeight(), 5 * list->textHeight());
    EXPECT_EQ(list->cbItemSelect().size(), 1u);
    EXPECT_EQ(list->cbList()->size(), 1u);
}

// Before any configuration: ascending by "key", 4 lines high, no header,
// picture or price looked up, and the body lists the row's own keys.
TEST_F(UITblTest, unconfigured_list_shows_rows_by_their_own_keys) {
    list->adData(Node::make({{"key", "k2"}, {"name", "Two"}, {"image", "pic"}, {"price", "9"}}));
    list->adData(Node::make({{"key", "k1"}, {"name", "One"}}));
    list->refresh();
    host->runUntilIdle();
    EXPECT_EQ(rowKeys(), (Keys{"k1", "k2"}));
    EXPECT_DOUBLE_EQ(rowHeight(), 4 * list->textHeight());
    EXPECT_EQ(body(0), "key, name, ");
    EXPECT_EQ(body(1), "key, name, image, price, ");
    EXPECT_EQ(header(1), "");
    EXPECT_TRUE(cellAt(1)->priceLbl()->isHidden() && cellAt(1)->photo()->isHidden());
}

// The first listSortBy key that every row has decides (valKey finds nested
// values too); a key one row lacks is passed over; sorting off keeps the order.
TEST_F(UITblTest, sorting_uses_the_first_key_every_row_has) {
    list->adData(Node::make({{"key", "a"}, {"rank", "2"}, {"city", "Oslo"}}));
    list->adData(Node::make({{"key", "b"}, {"where", Node::make({{"city", "Bern"}})}}));
    list->adData(Node::make({{"key", "c"}, {"rank", "1"}, {"city", "Rome"}}));
    ListConfig config;
    config.sortBy = [](Keys& k) { k = {"rank", "city"}; };
    config.ascending = [](bool& on) { on = true; };
    show(config);
    EXPECT_EQ(rowKeys(), (Keys{"b", "a", "c"})) << "by city: b has no rank";
    config.sortBy = [](Keys& k) { k = {"rank", "zone"}; };
    show(config);
    EXPECT_EQ(rowKeys(), (Keys{"a", "b", "c"})) << "no key qualifies: by key";
    list->myData()->at(1).node()->set("rank", "3");
    config.sortBy = [](Keys& k) { k = {"rank", "city"}; };
    show(config);
    EXPECT_EQ(rowKeys(), (Keys{"c", "a", "b"}));
    config.sort = [](bool& on) { on = false; };
    config.ascending = {};
    show(config);
    EXPECT_EQ(rowKeys(), (Keys{"c", "a", "b"}));
    EXPECT_TRUE(list->hasFld(List::make(), "rank")) << "an empty list has every field";
    EXPECT_FALSE(list->hasFld(List::make({Value("text row")}), "rank"));
}

// The selection marks every row whose key contains it: "A1" marks A1 and A12.
TEST_F(UITblTest, check_marks_follow_the_selection_as_a_substring) {
    addRows({"A1", "A12", "B1", "A2"});
    ListConfig config;
    config.ascending = [](bool& on) { on = true; };
    config.select = [](std::string& s) { s = "A1"; };
    show(config);
    ASSERT_EQ(rowKeys(), (Keys{"A1", "A12", "A2", "B1"}));
    const std::vector<bool> none(4, false);
    EXPECT_EQ(marks(), (std::vector<bool>{true, true, false, false}));
    config.checkBox = [](bool& on) { on = false; };
    show(config);
    EXPECT_EQ(marks(), none) << "check marks off";
    config.checkBox = {};
    config.select = {};
    show(config);
    EXPECT_EQ(marks(), none) << "an empty selection marks nothing";
}

// A tap calls every select callback, in registration order, with the row's
// key and Node; with check marks on it moves the selection and re-sorts, with
// them off it does neither. Keyless rows are not reported; re-registering a
// name replaces it in place; no name empties the registries.
TEST_F(UITblTest, taps_report_the_row_and_move_the_check_mark) {
    Keys calls;
    NodePtr lastRow;
    auto record = [&](std::string who) {
        return [&calls, &lastRow, who](const Value& key, const NodePtr& row) {
            calls.push_back(who + ":" + key.textOr());
            lastRow = row;
        };
    };
    list->watchTbl("first", record("first"), {}, {});
    list->watchTbl("second", record("second"), {}, {});
    addRows({"c", "b", "a"});
    show();
    list->adData(Node::make({{"key", "d"}})); // sits at the end until something sorts
    list->tbl()->reloadData();
    host->runUntilIdle();
    host->tap(rowCentre(1));
    EXPECT_EQ(calls, (Keys{"first:b", "second:b"}));
    EXPECT_EQ(lastRow, list->myData()->at(2).node()) << "the row itself, now re-sorted to place 2";
    EXPECT_EQ(list->currentSelection(), "b");
    EXPECT_EQ(rowKeys(), (Keys{"d", "c", "b", "a"}));
    EXPECT_TRUE(checked(2) && !checked(1));

    ListConfig config;
    config.checkBox = [](bool& on) { on = false; };
    configure(*list, config);
    list->adData(Node::make({{"key", "e"}}));
    // Its "key" only in a nested Node: select callbacks get what the search finds.
    list->adData(Node::make({{"name", "keyless"}, {"info", Node::make({{"key", "inner"}})}}));
    list->watchTbl("first", record("new"), {}, {});
    list->tbl()->reloadData();
    host->runUntilIdle();
    calls.clear();
    host->tap(rowCentre(5));
    host->tap(rowCentre(0));
    EXPECT_EQ(calls, (Keys{"new:inner", "second:inner", "new:d", "second:d"}));
    EXPECT_EQ(list->currentSelection(), "");
    EXPECT_EQ(rowKeys(), (Keys{"d", "c", "b", "a", "e", "-"})) << "no re-sort";

    list->watchTbl(std::nullopt, {}, {}, {});
    EXPECT_TRUE(list->cbItemSelect().empty() && list->cbItemPopulate().empty() && list->cbRefresh().empty());
}

// A select, refresh or swipe callback may release the list while the table
// is still handling the finger; the other select callbacks still run.
TEST_F(UITblTest, callbacks_may_release_the_list) {
    auto release = [this] { list->removeFromSuperview(), list.reset(); };
    for (int gesture = 0; gesture < 3; ++gesture) {
        int selects = 0;
        if (gesture == 0) {
            list->watchTbl("a", [&](const Value&, const NodePtr&) { ++selects, release(); }, {}, {});
            list->watchTbl("b", [&](const Value&, const NodePtr&) { ++selects; }, {}, {});
        }
        list->watchTbl("owner", {}, {}, [&](const std::string&, const NodePtr&) { release(); });
        list->watchSwipe("Go", gfx::Color::redColor(), [&](long, const NodePtr&) { release(); });
        addRows({"a"});
        show();
        const gfx::Point row = rowCentre(0);
        if (gesture == 0) host->tap(row);
        if (gesture == 1) host->drag({200, 100}, {200, 600}, 0.3, 12);
        if (gesture == 2) host->drag({row.x + 150, row.y}, {row.x - 150, row.y}, 0.2, 8), tapButton(0);
        host->advance(2);
        EXPECT_FALSE(list) << gesture;
        EXPECT_EQ(selects, gesture == 0 ? 2 : 0);
        list = std::make_shared<UITbl>(gfx::Rect(0, 0, 390, 844));
        host->root()->addSubview(list);
    }
}

// Populate callbacks run before the row is filled, so their changes show;
// rows without a key do not reach them, rows that are no Node stay blank.
TEST_F(UITblTest, populate_runs_before_the_row_is_drawn) {
    Keys populated;
    list->watchTbl("owner", {},
                   [&](const Value& key, const NodePtr& row) {
                       populated.push_back(key.textOr());
                       row->set("name", "Filled " + key.textOr());
                   },
                   {});
    ListConfig config;
    config.header = [](Keys& k) { k = {"name"}; };
    config.sort = [](bool& on) { on = false; };
    list->adData(Node::make({{"key", "r1"}, {"name", "Raw"}}));
    list->adData(Node::make({{"name", "No key"}}));
    list->adData(Value("not a row"));
    show(config);
    EXPECT_EQ(populated, (Keys{"r1"}));
    EXPECT_EQ(header(0), "Filled r1");
    EXPECT_EQ(header(1), "No key");
    EXPECT_EQ(list->tbl()->numberOfRows(0), 3);
    EXPECT_TRUE(cellAt(2)->priceLbl()->isHidden()) << "a row that is no Node shows blank";
}

// Body keys in order, with "key: " in front when asked; the header's last
// piece after "-" and "/". Marked texts go to the hook, show without the
// marker meanwhile, and their translations land later on the main queue
// (body lines after those shown at once).
TEST_F(UITblTest, rows_show_their_chosen_keys_and_translate_marked_texts) {
    Keys asked;
    std::vector<UITbl::TranslateCompletion> pending;
    list->watchTranslate([&](const std::string& text, UITbl::TranslateCompletion done) {
        asked.push_back(text);
        pending.push_back(std::move(done));
    });
    ListConfig config;
    config.header = [](Keys& k) { k = {"title", "name"}; };
    config.body = [](Keys& k) { k = {"phone", "note", "time", "missing"}; };
    config.price = [](Keys& k) { k = {"cost", "price"}; };
    config.incKey = [](bool& on) { on = true; };
    list->adData(Node::make({{"key", "1"},
                             {"name", "City-Zone/Spot<en>"},
                             {"phone", "555 0101"},
                             {"note", "<en>Closed Mondays"},
                             {"time", "10:00"},
                             {"price", "12 EUR"}}));
    show(config);
    EXPECT_EQ(header(0), "Spot");
    EXPECT_EQ(body(0), "phone: 555 0101\ntime: 10:00");
    EXPECT_EQ(cellAt(0)->priceLbl()->text(), "12 EUR");
    EXPECT_FALSE(cellAt(0)->priceLbl()->isHidden());
    ASSERT_EQ(asked, (Keys{"Spot<en>", "note: <en>Closed Mondays"}));
    pending[0]("Place");
    pending[1]("note: Closed on Mondays");
    EXPECT_EQ(header(0), "Spot") << "the translation waits for the main queue";
    host->runUntilIdle();
    EXPECT_EQ(header(0), "Place");
    EXPECT_EQ(body(0), "phone: 555 0101\ntime: 10:00\nnote: Closed on Mondays");

    list->watchTranslate({}); // without a hook marked lines show as they are
    list->tbl()->reloadData();
    host->runUntilIdle();
    EXPECT_EQ(header(0), "Spot");
    EXPECT_EQ(body(0), "phone: 555 0101\nnote: <en>Closed Mondays\ntime: 10:00");
}

// A swipe action runs its own callback, then every select callback, once
// each, on either side; then the row closes.
TEST_F(UITblTest, swipe_actions_on_both_sides_call_back_then_select) {
    Keys calls;
    list->watchTbl("owner",
                   [&](const Value& key, const NodePtr&) { calls.push_back("select " + key.textOr()); }, {},
                   {});
    auto swipe = [&](std::string name) {
        return [&calls, name](long index, const NodePtr& row) {
            calls.push_back(name + " " + std::to_string(index) + " " + row->get("key").textOr());
        };
    };
    list->watchSwipe("Delete", gfx::Color::redColor(), swipe("delete"));
    list->watchSwipe("Edit", gfx::Color::blueColor(), swipe("edit"));
    list->watchSwipeLeft("Pin", gfx::Color::greenColor(), swipe("pin"));
    addRows({"c", "b", "a"});
    show();

    const gfx::Point row1 = rowCentre(1);
    host->drag({row1.x + 150, row1.y}, {row1.x - 150, row1.y}, 0.2, 8);
    ASSERT_EQ(list->tbl()->swipedRow(), ui::IndexPath::forRow(1));
    ASSERT_EQ(list->tbl()->swipeActionButtons().size(), 2u);
    EXPECT_EQ(list->tbl()->swipeActionButtons()[0]->backgroundColor(), gfx::Color::redColor());
    tapButton(0);
    EXPECT_EQ(calls, (Keys{"delete 1 b", "select b"}));
    EXPECT_FALSE(list->tbl()->swipedRow());

    calls.clear();
    const gfx::Point row2 = rowCentre(2);
    host->drag({row2.x - 150, row2.y}, {row2.x + 150, row2.y}, 0.2, 8);
    ASSERT_EQ(list->tbl()->swipeActionButtons().size(), 1u);
    tapButton(0);
    EXPECT_EQ(calls, (Keys{"pin 2 a", "select a"}));
    EXPECT_EQ(list->currentSelection(), "") << "a swipe does not select";
}

// Pulling the list down logs, ends the refreshing state and calls every
// refresh callback with "" and a new empty Node of its own.
TEST_F(UITblTest, pull_to_refresh_calls_every_refresh_callback) {
    Keys calls;
    std::vector<NodePtr> nodes;
    for (const std::string name : {"one", "two"}) {
        list->watchTbl(name, {}, {}, [&, name](const std::string& text, const NodePtr& node) {
            calls.push_back(name + ":" + text + ":" + std::to_string(node->size()));
            nodes.push_back(node);
            node->set("dirty", "yes");
        });
    }
    addRows({"a", "b"});
    show();
    sys::Log::Capture log;
    host->drag({200, 100}, {200, 600}, 0.3, 12);
    EXPECT_EQ(calls, (Keys{"one::0", "two::0"}));
    EXPECT_NE(nodes.at(0), nodes.at(1));
    EXPECT_TRUE(log.contains("refreshControl"));
    EXPECT_FALSE(list->refreshControl()->isRefreshing());
    host->advance(2);
    EXPECT_EQ(list->tbl()->contentOffset().y, 0);
}

// Moving rows swaps shallow copies and calls back with the rows; the edges
// (and an empty list) refuse without calling back.
TEST_F(UITblTest, moving_rows_stops_at_the_edges) {
    addRows({"a", "b", "c"});
    int calls = 0;
    const UITbl::DataCB count = [&](const ListPtr& rows) { calls += rows == list->myData(); };
    const NodePtr original = list->myData()->at(1).node();
    list->moveUp(1, count);
    list->moveDown(1, count);
    EXPECT_EQ(rowKeys(), (Keys{"b", "c", "a"}));
    EXPECT_NE(list->myData()->at(0).node(), original) << "a copy moves";
    EXPECT_TRUE(list->myData()->at(0).node()->equals(*original));
    for (long index : {0L, -3L, 3L})
        list->moveUp(index, count);
    for (long index : {2L, -1L})
        list->moveDown(index, count);
    EXPECT_EQ(rowKeys(), (Keys{"b", "c", "a"}));
    EXPECT_EQ(calls, 2);
    list->clear();
    list->moveDown(0, count);
    list->grab(99, count);
    EXPECT_EQ(calls, 3);
}

// The list's colour goes to its cells and, 0.1 lighter, to the table; the
// table fills the list; the section header is a sliver; the name observer logs.
TEST_F(UITblTest, appearance_follows_the_lists_colour) {
    addRows({"a"});
    show();
    const gfx::Color navy = Colors::hex("#203050");
    list->setBackgroundColor(navy);
    list->setFrame({0, 50, 300, 400});
    host->runUntilIdle();
    EXPECT_EQ(list->tbl()->backgroundColor(), Colors::darkerBy(navy, -0.1));
    EXPECT_EQ(cellAt(0)->backgroundColor(), navy);
    EXPECT_EQ(list->tbl()->frame(), gfx::Rect(0, 0, 300, 400));
    EXPECT_DOUBLE_EQ(list->tbl()->rectForHeader(0).height, 0.1 * list->textHeight());

    sys::Log::Capture log;
    list->observeValueForKeyPath("name", {}, Node::make({{"old", "Ann"}, {"new", "Bea"}}));
    list->observeValueForKeyPath("age", {}, Node::make({{"old", "1"}, {"new", "2"}}));
    EXPECT_EQ(log.texts(), (Keys{"Name changed from Ann to Bea"}));
}
