#include <morvane/sys/Log.h>
#include <morvane/ui/collections/TableView.h>
#include <morvane/ui/collections/detail/VisibleRange.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/controls/RefreshControl.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <Snapshot.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace morvane::ui {
namespace {

// A cell that remembers which row it was filled for and how often it was reused.
class RowCell : public TableViewCell {
  public:
    using TableViewCell::TableViewCell;
    void prepareForReuse() override {
        TableViewCell::prepareForReuse();
        ++reuses;
        row = -1;
        textLabel().setText("");
    }
    int row = -1;
    int reuses = 0;
};

class OtherCell : public TableViewCell {
  public:
    using TableViewCell::TableViewCell;
};

struct Rows : TableViewDataSource, TableViewDelegate {
    int count = 100;
    int produces = 1 << 30; // rows past this have no cell
    double height = 44;
    bool editable = true;
    std::vector<int> selected;
    std::vector<std::string> events;
    std::function<void(TableView&, IndexPath)> onSelect;
    std::vector<std::shared_ptr<ContextualAction>> trailing;
    std::vector<std::shared_ptr<ContextualAction>> leading;

    int numberOfRows(TableView&, int) override { return count; }
    std::shared_ptr<TableViewCell> cellForRow(TableView& table, IndexPath at) override {
        if (at.row >= produces) throw std::out_of_range("no such row");
        auto cell = std::dynamic_pointer_cast<RowCell>(table.dequeueReusableCell("row", at));
        if (!cell) return nullptr;
        cell->row = at.row;
        cell->textLabel().setText("Room " + std::to_string(at.row));
        return cell;
    }
    std::optional<double> heightForRow(TableView&, IndexPath) override { return height; }
    bool canEditRow(TableView&, IndexPath) override { return editable; }
    void didSelectRow(TableView& table, IndexPath at) override {
        selected.push_back(at.row);
        if (onSelect) onSelect(table, at);
    }
    std::shared_ptr<SwipeActionsConfiguration> trailingSwipeActions(TableView&, IndexPath) override {
        return SwipeActionsConfiguration::make(trailing);
    }
    std::shared_ptr<SwipeActionsConfiguration> leadingSwipeActions(TableView&, IndexPath) override {
        return SwipeActionsConfiguration::make(leading);
    }
};

struct TableFixture : ::testing::Test {
    HeadlessHost host;
    Rows rows;
    std::shared_ptr<TableView> table = std::make_shared<TableView>(gfx::Rect{0, 0, 390, 844});

    void SetUp() override {
        table->registerCell<RowCell>("row");
        table->setDataSource(&rows);
        table->setDelegate(&rows);
        host.root()->addSubview(table);
        host.runUntilIdle();
    }
    void scrollTo(double y) {
        table->setContentOffset({0, y});
        host.runUntilIdle();
    }
    // Every visible cell shows the row it sits at.
    void expectCellsMatchRows() {
        for (auto& cell : table->visibleCells()) {
            auto at = table->indexPathForCell(*cell);
            ASSERT_TRUE(at);
            auto* rowCell = dynamic_cast<RowCell*>(cell.get());
            ASSERT_NE(rowCell, nullptr);
            EXPECT_EQ(rowCell->row, at->row);
            EXPECT_EQ(cell->frame().y, at->row * rows.height);
            EXPECT_EQ(rowCell->textLabel().text(), "Room " + std::to_string(at->row));
        }
    }
};

// Catches off-by-one runs: a row cut by the top edge must count, a row that
// ends exactly at the top or starts exactly at the bottom must not, and empty
// rows at the edge are not shown.
TEST(VisibleRows, the_run_holds_exactly_the_rows_crossing_the_viewport) {
    using detail::visibleRows;
    std::vector<double> tops{0, 44, 88, 88, 132};
    std::vector<double> heights{44, 44, 0, 44, 44};
    auto run = visibleRows(tops, heights, 44, 132);
    EXPECT_EQ(run.first, 1u);
    EXPECT_EQ(run.end, 4u);
    run = visibleRows(tops, heights, 50, 100);
    EXPECT_EQ(run.first, 1u) << "the row cut by the top edge";
    EXPECT_EQ(run.end, 4u);
    run = visibleRows(tops, heights, 88, 100);
    EXPECT_EQ(run.first, 3u) << "an empty row at the top edge is not shown";
    run = visibleRows(tops, heights, 500, 600);
    EXPECT_EQ(run.first, run.end) << "past the last row";
    run = visibleRows({}, {}, 0, 100);
    EXPECT_EQ(run.first, run.end);
}

TEST_F(TableFixture, only_visible_rows_have_cells_and_scrolled_out_cells_are_reused) {
    // 844 / 44 = 19.2: rows 0...19 on screen.
    EXPECT_EQ(table->visibleCells().size(), 20u);
    EXPECT_EQ(table->contentSize().height, 4400);
    int peak = 0;
    for (double y = 0; y <= 4400 - 844; y += 37) {
        scrollTo(y);
        expectCellsMatchRows();
        int visible = int(table->visibleCells().size());
        EXPECT_LE(table->liveCellCount(), visible + 2);
        peak = std::max(peak, table->liveCellCount());
    }
    EXPECT_LE(peak, 23);
    auto visible = table->indexPathsForVisibleRows();
    EXPECT_EQ(visible.back().row, 99);
    int reuses = 0;
    for (auto& cell : table->visibleCells())
        reuses += static_cast<RowCell&>(*cell).reuses;
    EXPECT_GT(reuses, 0) << "cells scrolled in were taken from the queue";
}

TEST_F(TableFixture, tapping_a_row_after_scrolling_selects_that_row) {
    scrollTo(44 * 50 + 10);
    // Row 60 sits at 2640 in content, 2640 - 2210 = 430 on screen.
    host.tap({100, 430 + 20});
    ASSERT_EQ(rows.selected, (std::vector<int>{60}));
    EXPECT_EQ(table->indexPathForSelectedRow(), IndexPath::forRow(60));
    EXPECT_TRUE(table->cellForRow(IndexPath::forRow(60))->isSelected());
    // The selected cell scrolls out and its cell is reused unselected.
    scrollTo(0);
    for (auto& cell : table->visibleCells())
        EXPECT_FALSE(cell->isSelected());
    scrollTo(44 * 50 + 10);
    EXPECT_TRUE(table->cellForRow(IndexPath::forRow(60))->isSelected());
    host.tap({100, 430 + 44 + 20});
    EXPECT_EQ(table->indexPathsForSelectedRows(), (std::vector<IndexPath>{IndexPath::forRow(61)}));
}

TEST_F(TableFixture, a_drag_scrolls_and_glides_without_selecting) {
    host.drag({200, 700}, {200, 300}, 0.2, 10);
    EXPECT_TRUE(rows.selected.empty());
    double released = table->contentOffset().y;
    EXPECT_NEAR(released, 400, 1);
    EXPECT_TRUE(table->isDecelerating());
    host.advance(3);
    EXPECT_FALSE(table->isDecelerating());
    EXPECT_GT(table->contentOffset().y, released + 200) << "the content kept gliding after the release";
    expectCellsMatchRows();
    // Pulled past the top, the content springs back.
    scrollTo(0);
    host.drag({200, 200}, {200, 400}, 0.3, 10);
    EXPECT_LT(table->contentOffset().y, 0);
    host.advance(2);
    EXPECT_EQ(table->contentOffset().y, 0);
}

TEST_F(TableFixture, swipe_reveals_actions_whose_handlers_run_and_close) {
    std::vector<std::string> calls;
    auto remove = ContextualAction::make(ContextualAction::Style::Normal, "Remove",
                                         [&](ContextualAction& a, View&, ContextualAction::Completion done) {
                                             calls.push_back(a.title());
                                             done(false);
                                         });
    remove->setBackgroundColor(gfx::Color::redColor());
    auto keep = ContextualAction::make(ContextualAction::Style::Normal, "Keep",
                                       [&](ContextualAction& a, View&, ContextualAction::Completion done) {
                                           calls.push_back(a.title());
                                           done(true);
                                       });
    rows.trailing = {remove, keep};
    rows.leading = {keep};

    host.drag({300, 44 * 3 + 20}, {120, 44 * 3 + 20}, 0.2, 8);
    ASSERT_EQ(table->swipedRow(), IndexPath::forRow(3));
    auto buttons = table->swipeActionButtons();
    ASSERT_EQ(buttons.size(), 2u);
    EXPECT_LT(table->swipeOffset(), -2 * TableView::kMinimumActionWidth + 1);
    // The first action sits at the row's right edge.
    gfx::Rect first = buttons[0]->convertRectTo(buttons[0]->bounds(), nullptr);
    EXPECT_NEAR(first.x + first.width, 390, 0.5);
    EXPECT_TRUE(rows.selected.empty());
    host.tap(first.center());
    EXPECT_EQ(calls, (std::vector<std::string>{"Remove"}));
    EXPECT_FALSE(table->swipedRow()) << "the completion closed the row";
    EXPECT_EQ(table->cellForRow(IndexPath::forRow(3))->frame().x, 0);

    // Leading side, through the programmatic opening; a tap elsewhere only closes.
    ASSERT_TRUE(table->openSwipeActions(IndexPath::forRow(5), TableView::SwipeEdge::Leading));
    EXPECT_GT(table->swipeOffset(), 0);
    host.tap({200, 600});
    EXPECT_FALSE(table->swipedRow());
    EXPECT_TRUE(rows.selected.empty());

    // A full swipe runs the first action when the configuration allows it.
    struct Full : Rows {
        std::shared_ptr<SwipeActionsConfiguration> trailingSwipeActions(TableView& t, IndexPath at) override {
            auto config = Rows::trailingSwipeActions(t, at);
            config->setPerformsFirstActionWithFullSwipe(true);
            return config;
        }
    };
    calls.clear();
    Full full;
    full.trailing = rows.trailing;
    table->setDelegate(&full);
    host.runUntilIdle();
    host.drag({380, 44 * 3 + 20}, {20, 44 * 3 + 20}, 0.2, 8);
    EXPECT_EQ(calls, (std::vector<std::string>{"Remove"}));
    EXPECT_FALSE(table->swipedRow());
    table->setDelegate(&rows);
    host.runUntilIdle();

    // Rows that cannot be edited have no actions: the drag just scrolls nowhere.
    rows.editable = false;
    host.drag({300, 44 * 3 + 20}, {120, 44 * 3 + 20}, 0.2, 8);
    EXPECT_FALSE(table->swipedRow());
}

TEST_F(TableFixture, pull_to_refresh_fires_once_per_pull) {
    auto refresh = std::make_shared<RefreshControl>();
    int fired = 0;
    refresh->addAction(ControlEvent::ValueChanged, [&](Control&) { ++fired; });
    table->setRefreshControl(refresh);
    host.runUntilIdle();

    // A short pull does nothing.
    host.drag({200, 200}, {200, 260}, 0.2, 6);
    host.advance(1);
    EXPECT_EQ(fired, 0);
    // A long pull fires once, however far it goes and however it wiggles.
    host.touchDown({200, 100});
    for (double y = 110; y <= 600; y += 20) {
        host.advance(0.016);
        host.touchMove({200, y});
    }
    host.touchMove({200, 500});
    host.touchMove({200, 600});
    host.touchUp({200, 600});
    EXPECT_EQ(fired, 1);
    EXPECT_TRUE(refresh->isRefreshing());
    host.advance(2);
    EXPECT_EQ(table->contentOffset().y, -RefreshControl::kHeight) << "the spinner stays in view";
    // While refreshing, another pull does not fire again.
    host.drag({200, 100}, {200, 600}, 0.3, 12);
    host.advance(2);
    EXPECT_EQ(fired, 1);
    refresh->endRefreshing();
    host.advance(2);
    EXPECT_EQ(table->contentOffset().y, 0);
    host.drag({200, 100}, {200, 600}, 0.3, 12);
    EXPECT_EQ(fired, 2);
}

TEST_F(TableFixture, update_blocks_remeasure_rows_and_reload_asks_again) {
    rows.height = 60;
    table->beginUpdates();
    EXPECT_EQ(table->rectForRow(IndexPath::forRow(2)).y, 88) << "heights change only at the end of the block";
    table->endUpdates();
    host.runUntilIdle();
    EXPECT_EQ(table->rectForRow(IndexPath::forRow(2)).y, 120);
    EXPECT_EQ(table->contentSize().height, 6000);
    expectCellsMatchRows();

    rows.count = 3;
    table->reloadData();
    host.runUntilIdle();
    EXPECT_EQ(table->visibleCells().size(), 3u);
    EXPECT_LE(table->liveCellCount(), 5);
    EXPECT_EQ(table->indexPathForRow({10, 200}), std::nullopt);
}

TEST_F(TableFixture, bad_answers_are_logged_and_the_table_stays_usable) {
    sys::Log::Capture log;
    // More rows reported than produced (the source throws, or gives nothing).
    rows.produces = 5;
    table->reloadData();
    host.runUntilIdle();
    EXPECT_EQ(table->visibleCells().size(), 20u);
    EXPECT_FALSE(log.texts().empty());

    // A cell of another class than registered for its identifier.
    struct Wrong : Rows {
        std::shared_ptr<TableViewCell> cellForRow(TableView&, IndexPath) override {
            return std::make_shared<OtherCell>(TableViewCell::Style::Default, "row");
        }
    } wrong;
    log.clear();
    table->setDataSource(&wrong);
    host.runUntilIdle();
    EXPECT_FALSE(log.texts().empty());
    scrollTo(500);
    EXPECT_LE(table->liveCellCount(), int(table->visibleCells().size()) + 2);

    // Negative and not-a-number heights count as zero.
    log.clear();
    table->setDataSource(&rows);
    rows.produces = 1 << 30;
    rows.height = -10;
    table->reloadData();
    host.runUntilIdle();
    EXPECT_FALSE(log.texts().empty());
    EXPECT_EQ(table->contentSize().height, 0);

    // Reloading from inside the selection answer.
    rows.height = 44;
    rows.onSelect = [](TableView& t, IndexPath) { t.reloadData(); };
    table->reloadData();
    host.runUntilIdle();
    host.tap({100, 44 * 2 + 10});
    EXPECT_EQ(rows.selected.back(), 2);
    EXPECT_FALSE(table->indexPathForSelectedRow()) << "a reload clears the selection";
    expectCellsMatchRows();
    host.tap({100, 44 * 4 + 10});
    EXPECT_EQ(rows.selected.back(), 4);
}

TEST_F(TableFixture, grouped_table_snapshot) {
    struct Sections : Rows {
        int numberOfSections(TableView&) override { return 2; }
        int numberOfRows(TableView&, int section) override { return section == 0 ? 3 : 4; }
        std::shared_ptr<View> viewForHeader(TableView&, int) override { return std::make_shared<View>(); }
    } sections;
    auto grouped = std::make_shared<TableView>(gfx::Rect{0, 0, 390, 844}, TableView::Style::Grouped);
    grouped->registerCell<RowCell>("row");
    grouped->setSectionHeaderHeight(30);
    grouped->setDataSource(&sections);
    grouped->setDelegate(&sections);
    host.root()->addSubview(grouped);
    host.runUntilIdle();
    EXPECT_EQ(grouped->rectForRow({1, 0}).y, 30 + 3 * 44 + 18 + 30);
    EXPECT_EQ(grouped->indexPathForRow({10, 30 + 3 * 44 + 18 + 30 + 50}), (IndexPath{1, 1}));
    grouped->selectRow({1, 1}, false);
    testing::expectImageMatches(host.snapshot(1), "tests/ui/collections/snapshots/grouped-table.png");
}

} // namespace
} // namespace morvane::ui

namespace morvane::ui {
namespace {

struct Sectioned : Rows {
    std::vector<std::string> shown;
    int numberOfSections(TableView&) override { return 50; }
    int numberOfRows(TableView&, int section) override { return section % 5 == 4 ? 0 : 10; }
    std::optional<double> heightForHeader(TableView&, int) override { return 30; }
    std::optional<double> heightForFooter(TableView&, int section) override {
        return section % 2 ? std::optional<double>(12) : std::nullopt;
    }
    std::shared_ptr<View> viewForHeader(TableView&, int) override { return std::make_shared<View>(); }
    std::shared_ptr<View> viewForFooter(TableView&, int) override { return std::make_shared<View>(); }
    void willDisplayHeaderView(TableView&, View&, int section) override {
        shown.push_back("header " + std::to_string(section));
    }
    void willDisplayFooterView(TableView&, View& footer, int section) override {
        footer.setBackgroundColor(gfx::Color::redColor()); // a footer tint
        shown.push_back("footer " + std::to_string(section));
    }
};

TEST(TableSections, headers_footers_and_empty_sections_find_the_right_rows) {
    HeadlessHost host;
    Sectioned source;
    auto table = std::make_shared<TableView>(gfx::Rect{0, 0, 390, 844});
    table->setSectionFooterHeight(5);
    table->registerCell<RowCell>("row");
    table->setDataSource(&source);
    table->setDelegate(&source);
    host.root()->addSubview(table);
    host.runUntilIdle();

    // Section s starts after s headers, the rows of the non-empty sections
    // before it, and their footers (12 for odd sections, 5 for even).
    auto sectionTop = [](int s) {
        double y = 0;
        for (int i = 0; i < s; ++i)
            y += 30 + (i % 5 == 4 ? 0 : 440) + (i % 2 ? 12 : 5);
        return y;
    };
    EXPECT_EQ(table->rectForHeader(37).y, sectionTop(37));
    EXPECT_EQ(table->rectForRow({37, 3}).y, sectionTop(37) + 30 + 3 * 44);
    EXPECT_EQ(table->contentSize().height, sectionTop(50));
    // A point in the section after an empty one (section 5 follows empty 4).
    EXPECT_EQ(table->indexPathForRow({10, sectionTop(5) + 30 + 1}), (IndexPath{5, 0}));
    EXPECT_EQ(table->indexPathForRow({10, sectionTop(4) + 10}), std::nullopt) << "a header has no row";

    EXPECT_EQ(source.shown.front(), "header 0");
    EXPECT_NE(std::find(source.shown.begin(), source.shown.end(), "footer 0"), source.shown.end());
    EXPECT_EQ(std::find(source.shown.begin(), source.shown.end(), "footer 1"), source.shown.end())
        << "off screen";

    table->scrollToRow({37, 3}, TableView::ScrollPosition::Top, false);
    host.runUntilIdle();
    EXPECT_EQ(table->contentOffset().y, table->rectForRow({37, 3}).y);
    auto visible = table->indexPathsForVisibleRows();
    ASSERT_FALSE(visible.empty());
    EXPECT_EQ(visible.front(), (IndexPath{37, 3}));
    for (auto& cell : table->visibleCells())
        EXPECT_EQ(static_cast<RowCell&>(*cell).row, cell->indexPath()->row);

    // Multiple selection toggles rows; the delegate hears both ways.
    table->setAllowsMultipleSelection(true);
    gfx::Point first = table->convertPointTo(table->rectForRow({37, 3}).center(), nullptr);
    gfx::Point second = table->convertPointTo(table->rectForRow({37, 5}).center(), nullptr);
    host.tap(first);
    host.tap(second);
    EXPECT_EQ(table->indexPathsForSelectedRows(), (std::vector<IndexPath>{{37, 3}, {37, 5}}));
    host.tap(first);
    EXPECT_EQ(table->indexPathsForSelectedRows(), (std::vector<IndexPath>{{37, 5}}));
}

TEST(TableRefresh, beginning_and_ending_makes_and_gives_back_room_above_the_rows) {
    HeadlessHost host;
    Rows rows;
    auto table = std::make_shared<TableView>(gfx::Rect{0, 0, 390, 844});
    table->registerCell<RowCell>("row");
    table->setDataSource(&rows);
    auto refresh = std::make_shared<RefreshControl>();
    int fired = 0;
    refresh->addAction(ControlEvent::ValueChanged, [&](Control&) { ++fired; });
    table->setRefreshControl(refresh);
    host.root()->addSubview(table);
    host.runUntilIdle();
    refresh->beginRefreshing();
    host.advance(1);
    EXPECT_EQ(fired, 0) << "a program starting the refresh is not told";
    EXPECT_EQ(table->contentOffset().y, -RefreshControl::kHeight);
    EXPECT_EQ(table->adjustedContentInset().top, RefreshControl::kHeight);
    EXPECT_EQ(refresh->frame().y, -RefreshControl::kHeight);
    // The row under a tap is still found with the room in place.
    host.tap({100, RefreshControl::kHeight + 44 + 10});
    EXPECT_EQ(table->indexPathForSelectedRow(), IndexPath::forRow(1));
    refresh->endRefreshing();
    host.advance(1);
    EXPECT_EQ(table->contentOffset().y, 0);
    EXPECT_EQ(table->adjustedContentInset().top, 0);
}

} // namespace
} // namespace morvane::ui
