#include <morvane/sys/Log.h>
#include <morvane/ui/collections/CollectionView.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <Reentrancy.h>
#include <Snapshot.h>
#include <gtest/gtest.h>

namespace morvane::ui {
namespace {

class Tile : public CollectionViewCell {
  public:
    explicit Tile(std::string id) : CollectionViewCell(std::move(id)) {
        label = std::make_shared<Label>();
        label->setTextAlignment(gfx::TextAlignment::Center);
        contentView()->addSubview(label);
        setBackgroundColor(gfx::Color::fromBytes(200, 220, 240));
        layer().setCornerRadius(8);
    }
    void prepareForReuse() override {
        CollectionViewCell::prepareForReuse();
        item = -1;
        label->setText("");
    }
    void layoutSubviews() override {
        CollectionViewCell::layoutSubviews();
        label->setFrame(contentView()->bounds());
    }
    int item = -1;
    std::shared_ptr<Label> label;
};

struct Tiles : CollectionViewDataSource, CollectionViewDelegate {
    int count = 1000;
    std::vector<int> selected;
    std::optional<gfx::Size> size;
    int numberOfItems(CollectionView&, int) override { return count; }
    std::shared_ptr<CollectionViewCell> cellForItem(CollectionView& grid, IndexPath at) override {
        auto cell = std::static_pointer_cast<Tile>(grid.dequeueReusableCell("tile", at));
        cell->item = at.item();
        cell->label->setText(std::to_string(at.item()));
        return cell;
    }
    void didSelectItem(CollectionView&, IndexPath at) override { selected.push_back(at.item()); }
    std::optional<gfx::Size> sizeForItem(CollectionView&, IndexPath) override { return size; }
};

FlowLayout twoColumns() {
    FlowLayout layout;
    layout.setItemSize({141, 180});
    layout.setMinimumInteritemSpacing(6);
    layout.setMinimumLineSpacing(6);
    layout.setSectionInset({6, 6, 6, 6});
    return layout;
}

TEST(FlowLayout, two_columns_on_a300_point_grid_match_hand_computed_frames) {
    FlowLayout layout = twoColumns();
    layout.prepare(300, {5}, {});
    EXPECT_EQ(layout.frameForItem(IndexPath::forItem(0)), (gfx::Rect{6, 6, 141, 180}));
    EXPECT_EQ(layout.frameForItem(IndexPath::forItem(1)), (gfx::Rect{153, 6, 141, 180}));
    EXPECT_EQ(layout.frameForItem(IndexPath::forItem(2)), (gfx::Rect{6, 192, 141, 180}));
    EXPECT_EQ(layout.frameForItem(IndexPath::forItem(4)), (gfx::Rect{6, 378, 141, 180}));
    EXPECT_EQ(layout.contentSize(), (gfx::Size{300, 6 + 3 * 180 + 2 * 6 + 6}));
    EXPECT_EQ(layout.itemAt({160, 200}), IndexPath::forItem(3));
    EXPECT_EQ(layout.itemAt({150, 200}), std::nullopt) << "the gap between tiles";

    // A wider grid spreads a full line's spare room between its items; the
    // last line keeps the minimum spacing.
    layout.prepare(320, {3}, {});
    EXPECT_EQ(layout.frameForItem(IndexPath::forItem(1)).x, 320 - 6 - 141);
    EXPECT_EQ(layout.frameForItem(IndexPath::forItem(2)).x, 6);

    // Sections follow each other with their insets; per-section answers win.
    FlowLayout::Answers answers;
    answers.insetForSection = [](int s) {
        return s == 1 ? std::optional<gfx::Insets>({20, 6, 0, 6}) : std::nullopt;
    };
    layout.prepare(300, {1, 2}, answers);
    EXPECT_EQ(layout.frameForItem({1, 0}).y, 6 + 180 + 6 + 20);
    EXPECT_EQ(layout.frameForItem({1, 5}), gfx::Rect{});

    // Unusable values count as zero and are reported.
    int warnings = 0;
    layout.setMinimumLineSpacing(-4);
    layout.setItemSize({141, -180});
    layout.prepare(300, {4}, {}, [&](const std::string&) { ++warnings; });
    EXPECT_GT(warnings, 0);
    EXPECT_EQ(layout.frameForItem(IndexPath::forItem(2)).y, 6);
}

TEST(CollectionView, reuses_cells_selects_tapped_items_and_survives_bad_answers) {
    HeadlessHost host;
    Tiles tiles;
    auto grid = std::make_shared<CollectionView>(gfx::Rect{0, 0, 300, 844}, twoColumns());
    grid->registerCell<Tile>("tile");
    grid->setDataSource(&tiles);
    grid->setDelegate(&tiles);
    host.root()->addSubview(grid);
    host.runUntilIdle();
    // 844 / 186 = 4.5 lines: 5 lines of two.
    EXPECT_EQ(grid->visibleCells().size(), 10u);
    for (double y = 0; y < 186 * 400; y += 97) {
        grid->setContentOffset({0, y});
        host.runUntilIdle();
        for (auto& cell : grid->visibleCells()) {
            auto at = grid->indexPathForCell(*cell);
            ASSERT_TRUE(at);
            EXPECT_EQ(static_cast<Tile&>(*cell).item, at->item());
            EXPECT_EQ(cell->frame(), grid->frameForItem(*at));
        }
        EXPECT_LE(grid->liveCellCount(), int(grid->visibleCells().size()) + 2);
    }
    // Item 801 is in line 400 at 6 + 400 * 186 = 74406; right column.
    grid->setContentOffset({0, 74400});
    host.runUntilIdle();
    host.tap({200, 100});
    EXPECT_EQ(tiles.selected, (std::vector<int>{801}));
    EXPECT_TRUE(grid->cellForItem(IndexPath::forItem(801))->isSelected());

    sys::Log::Capture log;
    tiles.size = gfx::Size{-1, 50};
    tiles.count = -3;
    grid->reloadData();
    host.runUntilIdle();
    EXPECT_FALSE(log.texts().empty());
    EXPECT_EQ(grid->visibleCells().size(), 0u);
    tiles.count = 6;
    tiles.size.reset();
    grid->reloadData();
    host.runUntilIdle();
    EXPECT_EQ(grid->contentOffset().y, 0) << "a shorter content pulls the offset back";
    EXPECT_EQ(grid->visibleCells().size(), 6u);
    testing::expectImageMatches(host.snapshot(1), "tests/ui/collections/snapshots/grid.png");
}

// The grid shares the table's cell recycler: its data source and delegate
// may reload it, resize it, drop it or change the item count from inside
// any answer, while it measures, places cells or handles a tap.
TEST(CollectionViewReentrancy, any_operation_from_any_answer_is_safe) {
    using morvane::test::chance;
    using morvane::test::Random;
    using morvane::test::randomInt;
    using morvane::test::ReentrancyHarness;
    for (unsigned seed : {11u, 12u}) {
        ReentrancyHarness<CollectionView> harness(seed);
        struct Source : Tiles {
            ReentrancyHarness<CollectionView>* harness = nullptr;
            int numberOfItems(CollectionView& grid, int section) override {
                harness->callback("numberOfItems");
                return Tiles::numberOfItems(grid, section);
            }
            std::shared_ptr<CollectionViewCell> cellForItem(CollectionView& grid, IndexPath at) override {
                auto cell = Tiles::cellForItem(grid, at);
                harness->callback("cellForItem");
                return cell;
            }
            void willDisplayCell(CollectionView&, CollectionViewCell&, IndexPath) override {
                harness->callback("willDisplay");
            }
            std::optional<gfx::Size> sizeForItem(CollectionView&, IndexPath at) override {
                if (at.item() % 7 == 0) harness->callback("sizeForItem");
                return gfx::Size{120, 90};
            }
            void didSelectItem(CollectionView&, IndexPath) override { harness->callback("didSelect"); }
            void didDeselectItem(CollectionView&, IndexPath) override { harness->callback("didDeselect"); }
        } source;
        source.harness = &harness;
        source.count = 60;
        harness.make([&source](ReentrancyHarness<CollectionView>&) {
            auto grid = std::make_shared<CollectionView>(gfx::Rect{0, 0, 390, 700}, twoColumns());
            grid->registerCell<Tile>("tile");
            grid->setDataSource(&source);
            grid->setDelegate(&source);
            return grid;
        });
        harness.operation("reload", [](CollectionView& grid, Random&) { grid.reloadData(); });
        harness.operation("invalidate", [](CollectionView& grid, Random&) { grid.invalidateLayout(); });
        harness.operation("count",
                          [&source](CollectionView&, Random& r) { source.count = randomInt(r, 0, 80); });
        harness.operation("scroll", [](CollectionView& grid, Random& r) {
            grid.setContentOffset({0, double(randomInt(r, 0, 3000))});
        });
        harness.operation("select", [](CollectionView& grid, Random& r) {
            grid.selectItem(IndexPath::forItem(randomInt(r, 0, 70)));
        });
        harness.operation("layout now", [](CollectionView& grid, Random&) { grid.layoutIfNeeded(); });
        harness.operation("drop data source", [&source](CollectionView& grid, Random& r) {
            grid.setDataSource(chance(r, 0.5) ? nullptr : &source);
        });
        harness.operation("drop delegate", [&source](CollectionView& grid, Random& r) {
            grid.setDelegate(chance(r, 0.5) ? nullptr : &source);
        });
        harness.input("tap", [](HeadlessHost& host, CollectionView& grid, Random& r) {
            host.tap(morvane::test::randomPointIn(r, grid.convertRectTo(grid.bounds(), nullptr)));
        });
        harness.input("drag", [](HeadlessHost& host, CollectionView&, Random& r) {
            host.drag({200, double(randomInt(r, 100, 700))}, {200, double(randomInt(r, 50, 800))}, 0.2, 5);
        });
        harness.run(ReentrancyHarness<CollectionView>::steps(500, 5000));
        EXPECT_GT(harness.callbacks(), 100) << seed;
    }
}

} // namespace
} // namespace morvane::ui
