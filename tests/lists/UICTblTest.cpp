// The grid list through its operations and the headless host: its own
// defaults and configuration order, the tile arithmetic, "$" templates,
// taps, tile pictures, and what its callbacks may do.
#include "ListsFixture.h"
#include "Reentrancy.h"
#include "Snapshot.h"

#include <morvane/lists/UICTbl.h>
#include <morvane/lists/UICTblCell.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/util/Colors.h>

using namespace morvane;
using namespace morvane::test;
using Keys = std::vector<std::string>;

namespace {

class UICTblTest : public ListsFixture {
  protected:
    void SetUp() override {
        ListsFixture::SetUp();
        grid = std::make_shared<UICTbl>(gfx::Rect(0, 0, 300, 800));
        grid->setBackgroundColor(Colors::hex("#1D2A44"));
        host->root()->addSubview(grid);
    }
    void TearDown() override {
        grid.reset();
        ListsFixture::TearDown();
    }
    void show(const ListConfig& config) {
        grid->cfg(config);
        grid->refresh();
        host->runUntilIdle();
    }
    std::shared_ptr<UICTblCell> tile(int item) const {
        auto cell =
            std::dynamic_pointer_cast<UICTblCell>(grid->tbl()->cellForItem(ui::IndexPath::forItem(item)));
        EXPECT_TRUE(cell) << "no tile on screen for item " << item;
        return cell;
    }
    gfx::Point tileCentre(int item) const {
        const auto& view = *grid->tbl();
        return view.convertRectTo(view.frameForItem(ui::IndexPath::forItem(item)), nullptr).center();
    }
    std::shared_ptr<UICTbl> grid;
};

} // namespace

// The grid's defaults differ from the list's (ascending, no check marks, one
// column) and the column count is asked right after the line count.
TEST_F(UICTblTest, configuration_has_the_grids_defaults_and_order) {
    Keys seen;
    auto keys = [&](std::string name) { return [&seen, name](Keys&) { seen.push_back(name); }; };
    auto flag = [&](std::string name) {
        return [&seen, name](bool& f) { seen.push_back(name + "=" + std::to_string(f)); };
    };
    auto size = [&](std::string name) {
        return [&seen, name](float& f) { seen.push_back(name + "=" + std::to_string(int(f))); };
    };
    grid->cfg(
        keys("cfg"), keys("header"), keys("body"), keys("price"), flag("sort"), keys("sortBy"),
        flag("ascending"), size("lines"), size("columns"), flag("checkBox"),
        [&](std::string&) { seen.push_back("select"); }, flag("inckey"));
    EXPECT_EQ(seen, (Keys{"cfg", "header", "body", "price", "sort=1", "ascending=1", "lines=5", "columns=1",
                          "checkBox=0", "sortBy", "select", "inckey=0"}));
}

// Two columns on 300 points: spacing 300 x 0.06 / 3 = 6, tiles 141 wide and
// floor(1.3 x 141) = 183 high; one column: spacing 3, 294 wide, five lines
// high; 2.7 columns are two.
TEST(UICTblTiles, columns_and_tile_sizes_follow_the_width) {
    const auto two = UICTbl::tilesFor(300, 2, 5, 20.5);
    EXPECT_DOUBLE_EQ(two.spacing, 6);
    EXPECT_EQ(two.item, gfx::Size(141, 183));
    const auto one = UICTbl::tilesFor(300, 1, 5, 20.5);
    EXPECT_DOUBLE_EQ(one.spacing, 3);
    EXPECT_EQ(one.item, gfx::Size(294, 102));
    EXPECT_EQ(UICTbl::tilesFor(300, 2.7f, 5, 20.5).item, two.item);
    EXPECT_EQ(UICTbl::tilesFor(300, 0, 5, 20.5).item, one.item) << "no column count is one column";
}

// A "$" template that yields text is the whole body; a tile keeps its header
// for an item without one; cards in two columns sit where the layout says.
TEST_F(UICTblTest, templates_end_the_body_and_headers_stay_on_reused_tiles) {
    grid->adData(
        Node::make({{"key", "a"},
                    {"name", "Sardines"},
                    {"menu", Node::make({{"$dish", "grilled"}, {"more", Node::make({{"$dish", "lemon"}})}})},
                    {"price", "14"}}));
    grid->adData(Node::make({{"key", "b"}, {"note", "no name"}}));
    show({.header = [](Keys& k) { k = {"name"}; },
          .body =
              [](Keys& k) {
                  k = {"$dish", "price"};
              },
          .numOfCol = [](float& c) { c = 2; }});
    EXPECT_EQ(tile(0)->bodyLbl()->text(), "grilledlemon");
    EXPECT_EQ(tile(0)->headLbl()->text(), "Sardines");
    EXPECT_EQ(tile(1)->bodyLbl()->text(), "") << "no template text and no price";
    EXPECT_EQ(grid->tbl()->frameForItem(ui::IndexPath::forItem(1)), gfx::Rect(153, 6, 141, 183));

    // An item without a header, shown in the tile that showed the first item, keeps that name.
    const NodePtr sardines = grid->myData()->at(0).node();
    grid->clear();
    grid->adData(sardines);
    grid->tbl()->reloadData();
    host->runUntilIdle();
    auto first = tile(0);
    grid->clear();
    grid->adData(Node::make({{"key", "c"}, {"note", "no name"}}));
    grid->tbl()->reloadData();
    host->runUntilIdle();
    EXPECT_EQ(tile(0), first) << "the same tile, reused";
    EXPECT_EQ(tile(0)->headLbl()->text(), "Sardines");
}

// A tap calls the select callbacks, then hands the key to the translation
// hook once; with check marks on it selects and re-sorts; items without a
// key do nothing.
TEST_F(UICTblTest, taps_select_translate_the_key_and_mark_the_tile) {
    Keys calls;
    grid->watchTbl("owner",
                   [&](const Value& key, const NodePtr&) { calls.push_back("select " + key.toText()); }, {},
                   {});
    grid->watchTranslate(
        [&](const std::string& text, TranslateCompletion) { calls.push_back("translate " + text); });
    grid->adData(Node::make({{"key", "b"}}));
    grid->adData(Node::make({{"key", "a"}}));
    grid->adData(Node::make({{"name", "keyless"}}));
    show({.numOfCol = [](float& c) { c = 2; }, .checkBox = [](bool& on) { on = true; }});
    calls.clear();
    host->tap(tileCentre(1));
    EXPECT_EQ(calls, (Keys{"select b", "translate b"}));
    EXPECT_EQ(grid->currentSelection(), "b");
    EXPECT_TRUE(!tile(1)->checkLabel()->isHidden() && tile(0)->checkLabel()->isHidden());
    calls.clear();
    host->tap(tileCentre(2));
    EXPECT_TRUE(calls.empty());

    grid->iterateThroughAllCells(*grid->tbl(), 0);
    EXPECT_TRUE(!tile(0)->checkLabel()->isHidden() && tile(1)->checkLabel()->isHidden());
    grid->iterateThroughAllCells(*grid->tbl(), -1);
    EXPECT_TRUE(tile(0)->checkLabel()->isHidden());
}

// Narrower than 0.72: whole, on the corner colour; exactly square: whole and
// unclipped; anything else (0.75 too, which a row would fit) fills.
TEST_F(UICTblTest, tile_pictures_follow_their_shape) {
    resourcePicture("narrow", 70, 100, Colors::hex("#81B29A"));
    resourcePicture("square", 100, 100, Colors::hex("#F2CC8F"));
    resourcePicture("near", 75, 100, Colors::hex("#E07A5F"));
    for (const char* name : {"narrow", "square", "near"})
        grid->adData(Node::make({{"key", name}, {"image", name}}));
    show({.numOfCol = [](float& c) { c = 2; }});
    sys::Queue::waitIdle();
    host->runUntilIdle();
    const auto narrow = tile(0)->photo(), near = tile(1)->photo(), square = tile(2)->photo();
    EXPECT_EQ(narrow->contentMode(), gfx::ContentMode::AspectFit);
    EXPECT_EQ(narrow->backgroundColor(), Colors::hex("#81B29A"));
    EXPECT_EQ(square->contentMode(), gfx::ContentMode::AspectFit);
    EXPECT_FALSE(square->clipsToBounds());
    EXPECT_EQ(near->contentMode(), gfx::ContentMode::AspectFill);
    EXPECT_TRUE(near->clipsToBounds());
    morvane::testing::expectImageMatches(ui::Renderer::imageOf(*grid, 1),
                                         "tests/lists/snapshots/grid-cards.png");
}

// Random operations, taps and scrolls; every callback the grid makes
// (configuration, select, populate, translation) runs another operation.
TEST(UICTblReentrancy, any_operation_from_any_callback_is_safe) {
    for (unsigned seed : {31u, 32u}) {
        ReentrancyHarness<UICTbl> harness(seed);
        std::vector<TranslateCompletion> pending;
        auto configure = [&harness](UICTbl& grid, Random& r) {
            const float columns = float(randomInt(r, 0, 3));
            grid.cfg(
                {.header = [&harness](Keys& k) { harness.callback("cfg"), k = {"name"}; },
                 .body =
                     [](Keys& k) {
                         k = {"$dish", "price"};
                     },
                 .numOfCol = [&harness, columns](float& c) { harness.callback("cfg columns"), c = columns; },
                 .checkBox = [&harness](bool& on) { harness.callback("cfg check"), on = true; }});
        };
        harness.make([&pending](ReentrancyHarness<UICTbl>& h) {
            auto grid = std::make_shared<UICTbl>(gfx::Rect(0, 0, 390, 700));
            grid->watchTbl(
                "owner", [&h](const Value&, const NodePtr&) { h.callback("select"); },
                [&h](const Value&, const NodePtr&) { h.callback("populate"); }, {});
            grid->watchTranslate([&h, &pending](const std::string&, TranslateCompletion done) {
                pending.push_back(std::move(done));
                h.callback("translate");
            });
            for (int i = 0; i < 14; ++i)
                grid->adData(Node::make(
                    {{"key", "k" + std::to_string(i)}, {"name", "<en>Dish " + std::to_string(i)}}));
            grid->refresh();
            return grid;
        });
        harness.operation("cfg", configure);
        harness.operation("adData", [](UICTbl& grid, Random& r) {
            grid.adData(Node::make({{"key", "k" + std::to_string(randomInt(r, 0, 40))}}));
        });
        harness.operation("clear", [](UICTbl& grid, Random&) { grid.clear(); });
        harness.operation("refresh", [](UICTbl& grid, Random&) { grid.refresh(); });
        harness.operation("reload", [](UICTbl& grid, Random&) { grid.tbl()->reloadData(); });
        harness.operation("colour",
                          [](UICTbl& grid, Random&) { grid.setBackgroundColor(gfx::Color::grayColor()); });
        harness.operation("marks", [](UICTbl& grid, Random& r) {
            grid.iterateThroughAllCells(*grid.tbl(), randomInt(r, -1, 5));
        });
        harness.operation("watch none", [](UICTbl& grid, Random& r) {
            if (chance(r, 0.2)) grid.watchTbl(std::nullopt, {}, {}, {});
        });
        harness.complete("translation arrives", pending, std::string("Prato"));
        harness.tapAnywhere();
        harness.input("scroll", [](ui::HeadlessHost& host, UICTbl&, Random& r) {
            host.drag({200, double(randomInt(r, 100, 700))}, {200, double(randomInt(r, 50, 800))}, 0.2, 5);
        });
        harness.run(ReentrancyHarness<UICTbl>::steps(500, 5000));
        EXPECT_GT(harness.callbacks(), 100) << seed;
    }
}
