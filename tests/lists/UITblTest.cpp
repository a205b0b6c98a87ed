// The table list driven through its operations and the headless host: taps,
// swipes and pulls go through the real table.
#include "ListsFixture.h"

#include <morvane/sys/Log.h>
#include <morvane/ui/Label.h>
#include <morvane/ui/RefreshControl.h>
#include <morvane/ui/TextView.h>
#include <morvane/util/Colors.h>

using namespace morvane;
using morvane::test::configure;
using morvane::test::ListConfig;
using morvane::test::ListsFixture;
using Keys = std::vector<std::string>;

namespace {

class UITblTest : public ListsFixture {
  protected:
    // Rows with a "key" and a "name".
    void addRows(const Keys& rowKeys) {
        for (const auto& key : rowKeys)
            list->adData(Node::make({{"key", key}, {"name", "Name " + key}}));
    }
    std::string header(int row) const { return cellAt(row)->headLbl()->text(); }
    std::string body(int row) const { return cellAt(row)->bodyLbl()->text(); }
    bool checked(int row) const { return !cellAt(row)->checkLabel()->isHidden(); }
};

struct Call {
    std::string who;
    std::string key;
    NodePtr row;
};

} // namespace

// Configuration resets everything to the defaults, then hands each piece to
// its callback once, in the fixed order; a second configuration with empty
// callbacks undoes the first (it is not cumulative) but keeps rows,
// registries and swipe entries.
TEST_F(UITblTest, ConfigurationRunsInOrderFromFreshDefaults) {
    std::vector<std::string> order;
    bool* sortCell = nullptr;
    ListConfig config;
    config.image = [&](Keys& keys) {
        order.push_back("cfg");
        EXPECT_EQ(keys, (Keys{"image", "photo"}));
        keys = {"picture"};
    };
    config.header = [&](Keys& keys) {
        order.push_back("header");
        EXPECT_EQ(keys, (Keys{"key", "name"}));
        keys = {"name"};
    };
    config.body = [&](Keys& keys) {
        order.push_back("body");
        EXPECT_TRUE(keys.empty());
        keys = {"phone"};
    };
    config.price = [&](Keys& keys) {
        order.push_back("price");
        EXPECT_TRUE(keys.empty());
    };
    config.sort = [&](bool& sort) {
        order.push_back("sort");
        EXPECT_TRUE(sort);
        sortCell = &sort;
    };
    config.ascending = [&](bool& ascending) {
        order.push_back("ascending");
        EXPECT_FALSE(ascending);
        ascending = true;
    };
    config.cellHeight = [&](float& lines) {
        order.push_back("cellHeight");
        EXPECT_EQ(lines, 5.0f);
        lines = 3;
    };
    config.numOfCol = [&](float&) { order.push_back("numOfCol"); };
    config.checkBox = [&](bool& checkBox) {
        order.push_back("checkBox");
        EXPECT_TRUE(checkBox);
        checkBox = false;
    };
    config.sortBy = [&](Keys& keys) {
        order.push_back("sortBy");
        EXPECT_TRUE(keys.empty());
    };
    config.select = [&](std::string& selection) {
        order.push_back("select");
        EXPECT_EQ(selection, "");
        selection = "b";
    };
    config.incKey = [&](bool& incKey) {
        order.push_back("inckey");
        EXPECT_FALSE(incKey);
        incKey = true;
    };

    addRows({"b", "a", "c"});
    list->watchTbl("owner", [](const Value&, const NodePtr&) {}, {}, {});
    list->watchSwipe("Delete", gfx::Color::redColor(), {});
    configure(*list, config);
    EXPECT_EQ(order, (std::vector<std::string>{"cfg", "header", "body", "price", "sort", "ascending",
                                               "cellHeight", "checkBox", "sortBy", "select", "inckey"}))
        << "numOfCol belongs to the grid and is never called";
    EXPECT_EQ(sortCell, list->sort()) << "callbacks edit the list's own cell";
    EXPECT_TRUE(*list->ascending());
    EXPECT_EQ(*list->numOfLines(), 3.0f);
    EXPECT_EQ(list->currentSelection(), "b");
    list->refresh();
    host->runUntilIdle();
    EXPECT_EQ(keys(), (Keys{"a", "b", "c"}));
    EXPECT_DOUBLE_EQ(list->tbl()->rectForRow(ui::IndexPath::forRow(0)).height, 3 * list->textHeight());

    // Empty callbacks: everything back to the defaults.
    configure(*list, ListConfig{});
    EXPECT_EQ(list->sort(), sortCell) << "the cells are reset in place";
    EXPECT_TRUE(*list->sort());
    EXPECT_FALSE(*list->ascending()) << "descending again";
    EXPECT_EQ(*list->numOfLines(), 5.0f);
    EXPECT_TRUE(*list->checkBox());
    EXPECT_FALSE(*list->incKey());
    EXPECT_EQ(list->listImage(), (Keys{"image", "photo"}));
    EXPECT_EQ(list->listHeader(), (Keys{"key", "name"}));
    EXPECT_EQ(list->listBody(), Keys{});
    EXPECT_EQ(list->currentSelection(), "");
    list->refresh();
    host->runUntilIdle();
    EXPECT_EQ(keys(), (Keys{"c", "b", "a"}));
    EXPECT_DOUBLE_EQ(list->tbl()->rectForRow(ui::IndexPath::forRow(0)).height, 5 * list->textHeight());
    EXPECT_EQ(list->cbItemSelect().size(), 1u);
    EXPECT_EQ(list->cbList()->size(), 1u);
}

// Before any configuration nothing is chosen: rows sort ascending by "key",
// are four lines high, and show their own keys as the body.
TEST_F(UITblTest, UnconfiguredListShowsRowsByTheirOwnKeys) {
    EXPECT_EQ(list->sort(), nullptr);
    EXPECT_EQ(list->numOfLines(), nullptr);
    EXPECT_FALSE(list->currentSelection());
    EXPECT_FALSE(list->listHeader());
    list->adData(Node::make({{"key", "k2"}, {"name", "Two"}, {"image", "pic"}, {"price", "9"}}));
    list->adData(Node::make({{"key", "k1"}, {"name", "One"}}));
    list->refresh();
    host->runUntilIdle();
    EXPECT_EQ(keys(), (Keys{"k1", "k2"}));
    EXPECT_DOUBLE_EQ(list->tbl()->rectForRow(ui::IndexPath::forRow(0)).height, 4 * list->textHeight());
    EXPECT_DOUBLE_EQ(list->tbl()->rectForRow(ui::IndexPath::forRow(1)).y -
                         list->tbl()->rectForRow(ui::IndexPath::forRow(0)).y,
                     4 * list->textHeight());
    EXPECT_EQ(body(0), "key, name, ");
    EXPECT_EQ(body(1), "key, name, image, price, ");
    EXPECT_EQ(header(1), "") << "no header keys to look up";
    EXPECT_TRUE(cellAt(1)->priceLbl()->isHidden());
    EXPECT_TRUE(cellAt(1)->photo()->isHidden());
    EXPECT_FALSE(checked(0));
}

// The first listSortBy key that every row has decides; a key one row lacks is
// passed over. Sorting off leaves the order alone.
TEST_F(UITblTest, SortingUsesTheFirstKeyEveryRowHas) {
    list->adData(Node::make({{"key", "a"}, {"rank", "2"}, {"city", "Oslo"}}));
    list->adData(Node::make({{"key", "b"}, {"city", "Bern"}}));
    list->adData(Node::make({{"key", "c"}, {"rank", "1"}, {"city", "Rome"}}));
    ListConfig config;
    config.sortBy = [](Keys& keys) { keys = {"rank", "city"}; };
    config.ascending = [](bool& ascending) { ascending = true; };
    configure(*list, config);
    list->refresh();
    EXPECT_EQ(keys(), (Keys{"b", "a", "c"})) << "by city: rank is missing in b";

    config.sortBy = [](Keys& keys) { keys = {"rank", "zone"}; };
    configure(*list, config);
    list->refresh();
    EXPECT_EQ(keys(), (Keys{"a", "b", "c"})) << "no key qualifies: by key";

    list->myData()->at(1).node()->set("rank", "3");
    config.sortBy = [](Keys& keys) { keys = {"rank", "city"}; };
    configure(*list, config);
    list->refresh();
    EXPECT_EQ(keys(), (Keys{"c", "a", "b"})) << "every row has a rank now";

    config.sort = [](bool& sort) { sort = false; };
    config.ascending = {};
    configure(*list, config);
    list->refresh();
    EXPECT_EQ(keys(), (Keys{"c", "a", "b"}));
}

// The exchange sort's own order: equal values are never exchanged, but a
// smaller value met later still swaps past them; rows that are no Node, lack
// the key or are read-only keep their places.
TEST_F(UITblTest, ExchangeSortKeepsItsOrderAndLeavesOtherRowsInPlace) {
    auto rows = List::make();
    rows->push(Node::make({{"key", "x"}, {"v", "2"}}));
    rows->push(Value("a plain text"));
    rows->push(Node::make({{"key", "y"}, {"v", "2"}}));
    rows->push(Node::make({{"key", "none"}}));
    auto frozen = Node::make({{"key", "frozen"}, {"v", "0"}});
    frozen->setReadOnly(true);
    rows->push(frozen);
    rows->push(Node::make({{"key", "z"}, {"v", "1"}}));
    list->sortArray(rows, "v", true);
    std::vector<std::string> order;
    for (const Value& row : *rows)
        order.push_back(row.node() ? row.node()->get("key").textOr() : row.textOr());
    EXPECT_EQ(order, (Keys{"z", "a plain text", "y", "none", "frozen", "x"}));

    list->sortArray(rows, "v", false);
    order.clear();
    for (const Value& row : *rows)
        order.push_back(row.node() ? row.node()->get("key").textOr() : row.textOr());
    EXPECT_EQ(order, (Keys{"y", "a plain text", "x", "none", "frozen", "z"}));

    // Nothing to do on an empty list; hasFld answers yes for it and stops at a row without the key.
    auto empty = List::make();
    list->sortArray(empty, "v", true);
    EXPECT_TRUE(list->hasFld(empty, "v"));
    EXPECT_FALSE(list->hasFld(rows, "v"));
    EXPECT_TRUE(list->hasFld(List::make({Node::make({{"a", Node::make({{"v", "1"}})}})}), "v"))
        << "valKey finds nested values";
}

// The selection marks every row whose key contains it: "A1" marks A1 and A12.
TEST_F(UITblTest, CheckMarksFollowTheSelectionAsASubstring) {
    addRows({"A1", "A12", "B1", "A2"});
    ListConfig config;
    config.ascending = [](bool& ascending) { ascending = true; };
    config.select = [](std::string& selection) { selection = "A1"; };
    configure(*list, config);
    list->refresh();
    host->runUntilIdle();
    ASSERT_EQ(keys(), (Keys{"A1", "A12", "A2", "B1"}));
    EXPECT_TRUE(checked(0));
    EXPECT_TRUE(checked(1));
    EXPECT_FALSE(checked(2));
    EXPECT_FALSE(checked(3));

    config.select = {}; // the empty selection marks nothing
    configure(*list, config);
    list->refresh();
    host->runUntilIdle();
    for (int row = 0; row < 4; ++row)
        EXPECT_FALSE(checked(row)) << row;

    config.select = [](std::string& selection) { selection = "A1"; };
    config.checkBox = [](bool& on) { on = false; };
    configure(*list, config);
    list->refresh();
    host->runUntilIdle();
    for (int row = 0; row < 4; ++row)
        EXPECT_FALSE(checked(row)) << "check marks off: " << row;
}

// A tap calls every select callback with the row's key and Node; with check
// marks on it moves the selection and re-sorts, with them off it changes
// neither. Rows without a key are not reported.
TEST_F(UITblTest, TapsReportTheRowAndMoveTheCheckMark) {
    std::vector<Call> calls;
    list->watchTbl("first",
                   [&](const Value& key, const NodePtr& row) {
                       calls.push_back({"first", key.textOr(), row});
                   },
                   {}, {});
    list->watchTbl("second",
                   [&](const Value& key, const NodePtr& row) {
                       calls.push_back({"second", key.textOr(), row});
                   },
                   {}, {});
    addRows({"c", "b", "a"});
    configure(*list, {});
    list->refresh();
    host->runUntilIdle();
    ASSERT_EQ(keys(), (Keys{"c", "b", "a"}));
    // A row added without refresh sits at the end until something sorts.
    list->adData(Node::make({{"key", "d"}}));
    list->tbl()->reloadData();
    host->runUntilIdle();

    host->tap(rowCentre(1));
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].who, "first");
    EXPECT_EQ(calls[1].who, "second");
    EXPECT_EQ(calls[0].key, "b");
    EXPECT_EQ(calls[0].row, list->myData()->at(2).node()) << "the same Node, not a copy";
    EXPECT_EQ(list->currentSelection(), "b");
    EXPECT_EQ(keys(), (Keys{"d", "c", "b", "a"})) << "the tap re-sorted";
    EXPECT_TRUE(checked(2));
    EXPECT_FALSE(checked(1));

    // Check marks off: reported, but no selection change and no sort.
    ListConfig config;
    config.checkBox = [](bool& on) { on = false; };
    configure(*list, config);
    list->adData(Node::make({{"key", "e"}}));
    list->tbl()->reloadData();
    host->runUntilIdle();
    calls.clear();
    host->tap(rowCentre(0));
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].key, "d");
    EXPECT_EQ(list->currentSelection(), "");
    EXPECT_EQ(keys(), (Keys{"d", "c", "b", "a", "e"}));

    // Re-registering a name replaces it where it stands; a row without a key is not reported.
    list->watchTbl("first",
                   [&](const Value& key, const NodePtr&) {
                       calls.push_back({"new", key.textOr(), {}});
                   },
                   {}, {});
    list->adData(Node::make({{"name", "keyless"}}));
    list->tbl()->reloadData();
    host->runUntilIdle();
    calls.clear();
    host->tap(rowCentre(5));
    EXPECT_TRUE(calls.empty());
    host->tap(rowCentre(4));
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].who, "new");
    EXPECT_EQ(calls[1].who, "second");

    // No name empties all three registries.
    list->watchTbl(std::nullopt, {}, {}, {});
    EXPECT_TRUE(list->cbItemSelect().empty());
    EXPECT_TRUE(list->cbItemPopulate().empty());
    EXPECT_TRUE(list->cbRefresh().empty());
}

// A select callback may release the list it was called from.
TEST_F(UITblTest, SelectCallbackMayReleaseTheList) {
    int calls = 0;
    list->watchTbl("a",
                   [&](const Value&, const NodePtr&) {
                       ++calls;
                       list->removeFromSuperview();
                       list.reset();
                   },
                   {}, {});
    list->watchTbl("b", [&](const Value&, const NodePtr&) { ++calls; }, {}, {});
    addRows({"a"});
    configure(*list, {});
    list->refresh();
    host->runUntilIdle();
    host->tap(rowCentre(0));
    EXPECT_EQ(calls, 2) << "the dispatch finishes on its copy";
    EXPECT_FALSE(list);
}

// Populate callbacks run before the row is filled, so what they change shows;
// rows without a key do not reach them.
TEST_F(UITblTest, PopulateRunsBeforeTheRowIsDrawn) {
    std::vector<std::string> populated;
    list->watchTbl("owner", {},
                   [&](const Value& key, const NodePtr& row) {
                       populated.push_back(key.textOr());
                       row->set("name", "Filled " + key.textOr());
                   },
                   {});
    ListConfig config;
    config.header = [](Keys& keys) { keys = {"name"}; };
    configure(*list, config);
    list->adData(Node::make({{"key", "r1"}, {"name", "Raw"}}));
    list->adData(Node::make({{"name", "No key"}}));
    list->adData(Value("not a row"));
    list->tbl()->reloadData();
    host->runUntilIdle();
    EXPECT_EQ(populated, (Keys{"r1"}));
    EXPECT_EQ(header(0), "Filled r1");
    EXPECT_EQ(header(1), "No key");
    EXPECT_EQ(list->tbl()->numberOfRows(0), 3) << "a row that is no Node still has its place";
}

// Bodies: the chosen keys in order, with "key: " in front when asked; the
// header keeps only the last piece after "-" and "/". Translatable texts go to
// the hook, show without the marker meanwhile, and their translations arrive
// later (body lines after those shown at once).
TEST_F(UITblTest, RowsShowTheirChosenKeysAndTranslateMarkedTexts) {
    std::vector<std::string> asked;
    std::vector<UITbl::TranslateCompletion> pending;
    list->watchTranslate([&](const std::string& text, UITbl::TranslateCompletion done) {
        asked.push_back(text);
        pending.push_back(std::move(done));
    });
    ListConfig config;
    config.header = [](Keys& keys) { keys = {"title", "name"}; };
    config.body = [](Keys& keys) { keys = {"phone", "note", "time", "missing"}; };
    config.price = [](Keys& keys) { keys = {"cost", "price"}; };
    config.incKey = [](bool& on) { on = true; };
    configure(*list, config);
    list->adData(Node::make({{"key", "1"},
                             {"name", "City-Zone/Spot<en>"},
                             {"phone", "555 0101"},
                             {"note", "<en>Closed Mondays"},
                             {"time", "10:00"},
                             {"price", "12 EUR"}}));
    list->refresh();
    host->runUntilIdle();
    EXPECT_EQ(header(0), "Spot");
    EXPECT_EQ(body(0), "phone: 555 0101\ntime: 10:00");
    EXPECT_EQ(cellAt(0)->priceLbl()->text(), "12 EUR");
    EXPECT_FALSE(cellAt(0)->priceLbl()->isHidden());
    ASSERT_EQ(asked, (Keys{"Spot<en>", "note: <en>Closed Mondays"}));

    pending[0]("Place");
    EXPECT_EQ(header(0), "Spot") << "the translation waits for the main queue";
    pending[1]("note: Closed on Mondays");
    host->runUntilIdle();
    EXPECT_EQ(header(0), "Place");
    EXPECT_EQ(body(0), "phone: 555 0101\ntime: 10:00\nnote: Closed on Mondays");

    // Without a hook marked texts show at once, marker removed only from the header.
    list->watchTranslate({});
    list->tbl()->reloadData();
    host->runUntilIdle();
    EXPECT_EQ(header(0), "Spot");
    EXPECT_EQ(body(0), "phone: 555 0101\nnote: <en>Closed Mondays\ntime: 10:00");

    // A late translation for a cell that is gone is dropped.
    list->watchTranslate(
        [&](const std::string&, UITbl::TranslateCompletion done) { pending.push_back(done); });
    list->tbl()->reloadData();
    host->runUntilIdle();
    auto late = pending.back();
    list->clear();
    list->tbl()->reloadData();
    host->runUntilIdle();
    list->removeFromSuperview();
    list.reset();
    late("too late");
    host->runUntilIdle();
}

// A swipe action runs its own callback, then every select callback, once
// each; then the row closes (the action reports it was not performed).
TEST_F(UITblTest, SwipeActionsOnBothSidesCallBackThenSelect) {
    std::vector<std::string> calls;
    list->watchTbl("owner",
                   [&](const Value& key, const NodePtr&) { calls.push_back("select " + key.textOr()); }, {},
                   {});
    list->watchSwipe("Delete", gfx::Color::redColor(), [&](long index, const NodePtr& row) {
        calls.push_back("delete " + std::to_string(index) + " " + row->get("key").textOr());
    });
    list->watchSwipe("Edit", gfx::Color::blueColor(), [&](long, const NodePtr&) { calls.push_back("edit"); });
    list->watchSwipeLeft("Pin", gfx::Color::greenColor(), [&](long index, const NodePtr& row) {
        calls.push_back("pin " + std::to_string(index) + " " + row->get("key").textOr());
    });
    addRows({"c", "b", "a"});
    configure(*list, {});
    list->refresh();
    host->runUntilIdle();

    const gfx::Point row1 = rowCentre(1);
    host->drag({row1.x + 150, row1.y}, {row1.x - 150, row1.y}, 0.2, 8);
    ASSERT_EQ(list->tbl()->swipedRow(), ui::IndexPath::forRow(1));
    auto buttons = list->tbl()->swipeActionButtons();
    ASSERT_EQ(buttons.size(), 2u);
    EXPECT_EQ(buttons[0]->backgroundColor(), gfx::Color::redColor());
    host->tap(buttons[0]->convertRectTo(buttons[0]->bounds(), nullptr).center());
    EXPECT_EQ(calls, (Keys{"delete 1 b", "select b"}));
    EXPECT_FALSE(list->tbl()->swipedRow()) << "the action closes the row";

    calls.clear();
    const gfx::Point row2 = rowCentre(2);
    host->drag({row2.x - 150, row2.y}, {row2.x + 150, row2.y}, 0.2, 8);
    ASSERT_EQ(list->tbl()->swipedRow(), ui::IndexPath::forRow(2));
    buttons = list->tbl()->swipeActionButtons();
    ASSERT_EQ(buttons.size(), 1u);
    host->tap(buttons[0]->convertRectTo(buttons[0]->bounds(), nullptr).center());
    EXPECT_EQ(calls, (Keys{"pin 2 a", "select a"}));
    EXPECT_EQ(list->currentSelection(), "") << "a swipe does not select";
}

// Pulling the list down calls every refresh callback with "" and an empty
// Node, logs, and ends the refreshing state.
TEST_F(UITblTest, PullToRefreshCallsEveryRefreshCallback) {
    std::vector<std::string> calls;
    std::vector<NodePtr> nodes;
    for (const std::string name : {"one", "two"}) {
        list->watchTbl(name, {}, {}, [&, name](const std::string& text, const NodePtr& node) {
            calls.push_back(name + ":" + text);
            nodes.push_back(node);
            node->set("dirty", "yes");
        });
    }
    addRows({"a", "b"});
    configure(*list, {});
    list->refresh();
    host->runUntilIdle();
    sys::Log::Capture log;
    host->drag({200, 100}, {200, 600}, 0.3, 12);
    EXPECT_EQ(calls, (Keys{"one:", "two:"}));
    ASSERT_EQ(nodes.size(), 2u);
    EXPECT_NE(nodes[0], nodes[1]) << "each callback gets its own new Node";
    EXPECT_EQ(nodes[1]->size(), 1u);
    EXPECT_TRUE(log.contains("refreshControl"));
    EXPECT_FALSE(list->refreshControl()->isRefreshing());
    host->advance(2);
    EXPECT_EQ(list->tbl()->contentOffset().y, 0);

    // handleRefresh does the same on the control it is given.
    auto other = std::make_shared<ui::RefreshControl>();
    other->beginRefreshing();
    calls.clear();
    list->handleRefresh(other.get());
    EXPECT_FALSE(other->isRefreshing());
    EXPECT_EQ(calls.size(), 2u);
}

// Moving rows: swaps shallow copies, calls back with the rows, and refuses
// the edges without calling back.
TEST_F(UITblTest, MovingRowsStopsAtTheEdges) {
    addRows({"a", "b", "c"});
    int calls = 0;
    ListPtr seen;
    const UITbl::DataCB count = [&](const ListPtr& rows) {
        ++calls;
        seen = rows;
    };
    const NodePtr original = list->myData()->at(1).node();
    list->moveUp(1, count);
    EXPECT_EQ(keys(), (Keys{"b", "a", "c"}));
    EXPECT_EQ(seen, list->myData());
    EXPECT_NE(list->myData()->at(0).node(), original) << "a copy moves";
    EXPECT_TRUE(list->myData()->at(0).node()->equals(*original));
    list->moveDown(1, count);
    EXPECT_EQ(keys(), (Keys{"b", "c", "a"}));
    EXPECT_EQ(calls, 2);

    list->moveUp(0, count);
    list->moveUp(-3, count);
    list->moveUp(3, count);
    list->moveDown(2, count);
    list->moveDown(-1, count);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(keys(), (Keys{"b", "c", "a"}));
    list->grab(99, count);
    EXPECT_EQ(calls, 3);

    list->clear();
    list->moveDown(0, count);
    list->moveUp(0, count);
    EXPECT_EQ(calls, 3);
}

// The list's colour goes to its cells; the table gets it 0.1 lighter. The
// table fills the list, and the section header is a sliver.
TEST_F(UITblTest, AppearanceFollowsTheListsColour) {
    addRows({"a"});
    configure(*list, {});
    list->refresh();
    const gfx::Color navy = Colors::hex("#203050");
    list->setBackgroundColor(navy);
    host->runUntilIdle();
    EXPECT_EQ(list->tbl()->backgroundColor(), Colors::darkerBy(navy, -0.1));
    EXPECT_EQ(cellAt(0)->backgroundColor(), navy);
    list->setFrame({0, 50, 300, 400});
    host->runUntilIdle();
    EXPECT_EQ(list->tbl()->frame(), gfx::Rect(0, 0, 300, 400));
    EXPECT_DOUBLE_EQ(list->tbl()->rectForHeader(0).height, 0.1 * list->textHeight());
    EXPECT_GT(list->textHeight(), 10);

    sys::Log::Capture log;
    list->observeValueForKeyPath("name", {}, Node::make({{"old", "Ann"}, {"new", "Bea"}}));
    list->observeValueForKeyPath("age", {}, Node::make({{"old", "1"}, {"new", "2"}}));
    EXPECT_EQ(log.texts(), (Keys{"Name changed from Ann to Bea"}));
}
