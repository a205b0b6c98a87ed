#pragma once
// A vertical list of rows in sections, asked for its content through a data
// source and telling a delegate about heights, taps and swipes.
//
//   table->registerCell<PriceCell>("price");
//   table->setDataSource(&source);      // not owned
//   table->setDelegate(&source);
//   ... in the data source:
//   std::shared_ptr<ui::TableViewCell> cellForRow(ui::TableView& t, ui::IndexPath at) override {
//       auto cell = t.dequeueReusableCell("price", at);
//       ...fill it...
//       return cell;
//   }
//
// Only the rows on screen have cells. Row positions are kept as running sums
// of the row heights, measured at reload and at the end of an update block,
// so finding the rows under the viewport is a binary search however long the
// table is. Cells that scroll out go to a reuse queue per identifier and come
// back for rows that scroll in.
//
// Mistakes in the answers (a missing cell, a cell of another class than the
// identifier's registered one, negative heights) are logged and patched over
// so the table stays usable.

#include <morvane/gfx/Color.h>
#include <morvane/ui/collections/ContextualAction.h>
#include <morvane/ui/collections/IndexPath.h>
#include <morvane/ui/collections/ScrollView.h>
#include <morvane/ui/collections/TableViewCell.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace morvane::ui {

class TableView;
namespace detail {
template <class Cell> class CellRecycler;
}

enum class TableViewCellEditingStyle { None, Delete, Insert };

class TableViewDataSource {
  public:
    virtual ~TableViewDataSource() = default;
    virtual int numberOfSections(TableView&) { return 1; }
    virtual int numberOfRows(TableView&, int section) = 0;
    virtual std::shared_ptr<TableViewCell> cellForRow(TableView&, IndexPath indexPath) = 0;
    // Rows must be editable for their swipe actions to show.
    virtual bool canEditRow(TableView&, IndexPath) { return false; }
    virtual void commitEditing(TableView&, TableViewCellEditingStyle, IndexPath) {}
};

class TableViewDelegate : public ScrollViewDelegate {
  public:
    // Heights default to the table's rowHeight, sectionHeaderHeight and sectionFooterHeight.
    virtual std::optional<double> heightForRow(TableView&, IndexPath) { return std::nullopt; }
    virtual std::optional<double> heightForHeader(TableView&, int /*section*/) { return std::nullopt; }
    virtual std::optional<double> heightForFooter(TableView&, int /*section*/) { return std::nullopt; }
    virtual std::shared_ptr<View> viewForHeader(TableView&, int /*section*/) { return nullptr; }
    virtual std::shared_ptr<View> viewForFooter(TableView&, int /*section*/) { return nullptr; }
    virtual void willDisplayCell(TableView&, TableViewCell&, IndexPath) {}
    virtual void willDisplayHeaderView(TableView&, View&, int /*section*/) {}
    virtual void willDisplayFooterView(TableView&, View&, int /*section*/) {}
    virtual void didSelectRow(TableView&, IndexPath) {}
    virtual void didDeselectRow(TableView&, IndexPath) {}
    virtual std::shared_ptr<SwipeActionsConfiguration> leadingSwipeActions(TableView&, IndexPath) {
        return nullptr;
    }
    virtual std::shared_ptr<SwipeActionsConfiguration> trailingSwipeActions(TableView&, IndexPath) {
        return nullptr;
    }
};

class TableView : public ScrollView {
  public:
    enum class Style { Plain, Grouped };
    enum class SeparatorStyle { None, SingleLine };
    enum class ScrollPosition { None, Top, Middle, Bottom };
    using CellFactory = std::function<std::shared_ptr<TableViewCell>(const std::string& identifier)>;

    static constexpr double kDefaultRowHeight = 44;
    // Swiped rows open to their actions' width; each action is at least this wide.
    static constexpr double kMinimumActionWidth = 74;

    explicit TableView(const gfx::Rect& frame = {}, Style style = Style::Plain);
    ~TableView() override;

    Style style() const { return style_; }
    TableViewDataSource* dataSource() const { return dataSource_; }
    void setDataSource(TableViewDataSource* source);
    TableViewDelegate* delegate() const { return delegate_; }
    // Takes a TableViewDelegate; any other scroll view delegate hears only the scrolling.
    void setDelegate(ScrollViewDelegate* delegate) override;

    double rowHeight() const { return rowHeight_; }
    void setRowHeight(double height);
    double sectionHeaderHeight() const { return headerHeight_; }
    void setSectionHeaderHeight(double height);
    double sectionFooterHeight() const { return footerHeight_; }
    void setSectionFooterHeight(double height);
    const std::shared_ptr<View>& tableHeaderView() const { return tableHeader_; }
    void setTableHeaderView(std::shared_ptr<View> view);
    const std::shared_ptr<View>& tableFooterView() const { return tableFooter_; }
    void setTableFooterView(std::shared_ptr<View> view);

    SeparatorStyle separatorStyle() const { return separatorStyle_; }
    void setSeparatorStyle(SeparatorStyle style);
    const gfx::Color& separatorColor() const { return separatorColor_; }
    void setSeparatorColor(const gfx::Color& color);
    // Space before the separator line, from the left edge.
    double separatorInset() const { return separatorInset_; }
    void setSeparatorInset(double inset);
    bool allowsSelection() const { return allowsSelection_; }
    void setAllowsSelection(bool allows) { allowsSelection_ = allows; }
    bool allowsMultipleSelection() const { return allowsMultipleSelection_; }
    void setAllowsMultipleSelection(bool allows);

    // ---- Cells -----------------------------------------------------------------
    // Cells for the identifier are made by the factory (the class registered).
    template <class Cell> void registerCell(const std::string& identifier) {
        registerCell(
            identifier,
            [](const std::string& id) { return std::make_shared<Cell>(TableViewCell::Style::Default, id); },
            [](const TableViewCell& cell) {
                if constexpr (std::is_same_v<Cell, TableViewCell>)
                    return true;
                else
                    return dynamic_cast<const Cell*>(&cell) != nullptr;
            });
    }
    void registerCell(const std::string& identifier, CellFactory factory,
                      std::function<bool(const TableViewCell&)> isOfClass = {});
    // A queued cell for the identifier (after its prepareForReuse), or a new
    // one from the registered class; null when neither exists.
    std::shared_ptr<TableViewCell> dequeueReusableCell(const std::string& identifier);
    // Always a cell: queued, registered, or (logged) a plain cell.
    std::shared_ptr<TableViewCell> dequeueReusableCell(const std::string& identifier, IndexPath indexPath);

    // ---- Content ---------------------------------------------------------------
    // Asks the data source again for everything; selections are cleared.
    void reloadData();
    // Re-measures all rows at the end of the block (row heights that changed
    // take effect, cells stay). Blocks nest.
    void beginUpdates();
    void endUpdates();
    void performBatchUpdates(const std::function<void()>& updates);
    // Asks for these rows' cells again (the rows keep their place).
    void reloadRows(const std::vector<IndexPath>& rows);

    int numberOfSections() const { return static_cast<int>(sections_.size()); }
    int numberOfRows(int section) const;
    // In content coordinates.
    gfx::Rect rectForRow(IndexPath indexPath) const;
    gfx::Rect rectForHeader(int section) const;
    gfx::Rect rectForFooter(int section) const;
    std::optional<IndexPath> indexPathForRow(gfx::Point point) const;
    std::optional<IndexPath> indexPathForCell(const TableViewCell& cell) const;
    // The visible cell of the row, or null.
    std::shared_ptr<TableViewCell> cellForRow(IndexPath indexPath) const;
    std::vector<std::shared_ptr<TableViewCell>> visibleCells() const;
    std::vector<IndexPath> indexPathsForVisibleRows() const;
    // Cells that exist now: on screen and waiting for reuse.
    int liveCellCount() const;
    void scrollToRow(IndexPath indexPath, ScrollPosition position, bool animated);

    // ---- Selection -------------------------------------------------------------
    std::optional<IndexPath> indexPathForSelectedRow() const;
    std::vector<IndexPath> indexPathsForSelectedRows() const;
    // Selects without telling the delegate (as the platform does).
    void selectRow(IndexPath indexPath, bool animated, ScrollPosition position = ScrollPosition::None);
    void deselectRow(IndexPath indexPath, bool animated);

    // ---- Swiping ---------------------------------------------------------------
    // The row whose actions are showing, and how far (points; positive shows the leading actions).
    std::optional<IndexPath> swipedRow() const;
    double swipeOffset() const { return swipe_.offset; }
    // The side of a row whose actions show: leading (swiped right) or trailing (swiped left).
    enum class SwipeEdge { Leading, Trailing };
    // Shows a row's actions on one side as if swiped open; false when that side has none.
    bool openSwipeActions(IndexPath indexPath, SwipeEdge edge);
    void closeSwipeActions();
    // The buttons of the open actions, in the configuration's order.
    std::vector<std::shared_ptr<View>> swipeActionButtons() const;

    void draw(gfx::Canvas& canvas, const gfx::Rect& rect) override;

  protected:
    void layoutSubviews() override;
    void contentOffsetChanged() override;
    void contentTouchBegan(gfx::Point location) override;
    void contentTapped(gfx::Point location) override;
    void contentTouchCancelled() override;
    bool beginHorizontalDrag(gfx::Point location) override;
    void horizontalDragMoved(double dx) override;
    void horizontalDragEnded(double dx, double velocity) override;
    void boundsChanged(const gfx::Rect& oldBounds) override;

  private:
    struct Section {
        double top = 0;
        double header = 0;
        double footer = 0;
        std::size_t firstRow = 0; // into rowTops_
        int rows = 0;
        double bottom = 0;
    };
    struct Swipe {
        std::optional<IndexPath> row;
        double offset = 0;
        double base = 0;
        std::shared_ptr<SwipeActionsConfiguration> leading;
        std::shared_ptr<SwipeActionsConfiguration> trailing;
        std::shared_ptr<View> strip;
        std::vector<std::shared_ptr<View>> buttons;
        bool trailingShown = false;
    };

    void measure();
    double checkedHeight(std::optional<double> height, double fallback, const char* what);
    bool valid(IndexPath indexPath) const;
    std::size_t flatIndex(IndexPath indexPath) const {
        return sections_[std::size_t(indexPath.section)].firstRow + std::size_t(indexPath.row);
    }
    void layoutCells();
    // A layout pass given up because the owner's code changed the table asks for another.
    void retryCells();
    // False when the delegate's answers made the pass stale (see layoutCells).
    bool layoutSupplementaryViews(double top, double bottom, std::uint64_t generation);
    std::shared_ptr<TableViewCell> makeCell(IndexPath indexPath);
    void configure(TableViewCell& cell, IndexPath indexPath);
    double contentTop() const;
    void userSelect(IndexPath indexPath);
    double actionsWidth(bool trailing) const;
    void showSwipe(double offset);
    void buildSwipeStrip(bool trailing);
    void pressAction(std::size_t index);

    Style style_;
    TableViewDataSource* dataSource_ = nullptr;
    TableViewDelegate* delegate_ = nullptr;
    double rowHeight_ = kDefaultRowHeight;
    double headerHeight_;
    double footerHeight_;
    std::shared_ptr<View> tableHeader_;
    std::shared_ptr<View> tableFooter_;
    SeparatorStyle separatorStyle_ = SeparatorStyle::SingleLine;
    gfx::Color separatorColor_ = gfx::Color::gray(0.78);
    double separatorInset_ = 15;
    bool allowsSelection_ = true;
    bool allowsMultipleSelection_ = false;

    // Registrations, the reuse queues and the cells on screen.
    std::unique_ptr<detail::CellRecycler<TableViewCell>> cells_;
    std::map<int, std::shared_ptr<View>> headers_;
    std::map<int, std::shared_ptr<View>> footers_;
    std::vector<IndexPath> selected_;
    std::optional<IndexPath> highlighted_;

    std::vector<Section> sections_;
    // Top of every row in content coordinates, all sections in one run.
    std::vector<double> rowTops_;
    std::vector<double> rowHeights_;
    std::uint64_t completedMeasures_ = 0;
    bool needsReload_ = true;
    bool needsCells_ = true;
    int updateDepth_ = 0;
    Swipe swipe_;
};

} // namespace morvane::ui
