// TableView: measuring rows into running sums, placing cells for the visible
// range with a reuse queue, selection, and swipe actions. Sections:
//   1. Settings and registration
//   2. Measuring
//   3. Cells for the visible range
//   4. Selection and taps
//   5. Swiping

#include <morvane/ui/collections/TableView.h>

#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/sys/Log.h>
#include <morvane/ui/collections/detail/CellRecycler.h>
#include <morvane/ui/collections/detail/VisibleRange.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/Label.h>

#include <algorithm>
#include <cmath>
#include <exception>

namespace morvane::ui {

namespace {

// A swipe that moved this fast (points per second) opens or closes the row
// whatever the distance.
constexpr double kFlickSpeed = 300;

const gfx::Color kGroupedBackground = gfx::Color::fromBytes(242, 242, 247);

void warn(const std::string& text) {
    sys::Log::platform("TableView: " + text);
}

std::string describe(IndexPath p) {
    return "section " + std::to_string(p.section) + " row " + std::to_string(p.row);
}

} // namespace

// ---- 1. Settings and registration -------------------------------------------------

TableView::TableView(const gfx::Rect& frame, Style style)
    : style_(style), headerHeight_(style == Style::Grouped ? 18 : 0),
      footerHeight_(style == Style::Grouped ? 18 : 0),
      cells_(std::make_unique<detail::CellRecycler<TableViewCell>>()) {
    setFrame(frame);
    setBackgroundColor(style == Style::Grouped ? kGroupedBackground : gfx::Color::whiteColor());
    setAlwaysBounceVertical(true);
}

TableView::~TableView() = default;

void TableView::setDataSource(TableViewDataSource* source) {
    dataSource_ = source;
    reloadData();
}

void TableView::setDelegate(ScrollViewDelegate* scrollDelegate) {
    auto* delegate = dynamic_cast<TableViewDelegate*>(scrollDelegate);
    delegate_ = delegate;
    ScrollView::setDelegate(scrollDelegate);
    reloadData();
}

void TableView::setRowHeight(double height) {
    rowHeight_ = checkedHeight(height, kDefaultRowHeight, "row height");
    reloadData();
}

void TableView::setSectionHeaderHeight(double height) {
    headerHeight_ = checkedHeight(height, 0, "section header height");
    reloadData();
}

void TableView::setSectionFooterHeight(double height) {
    footerHeight_ = checkedHeight(height, 0, "section footer height");
    reloadData();
}

void TableView::setTableHeaderView(std::shared_ptr<View> view) {
    if (tableHeader_) tableHeader_->removeFromSuperview();
    tableHeader_ = std::move(view);
    if (tableHeader_) insertSubview(tableHeader_, 0);
    reloadData();
}

void TableView::setTableFooterView(std::shared_ptr<View> view) {
    if (tableFooter_) tableFooter_->removeFromSuperview();
    tableFooter_ = std::move(view);
    if (tableFooter_) insertSubview(tableFooter_, 0);
    reloadData();
}

void TableView::setSeparatorStyle(SeparatorStyle style) {
    separatorStyle_ = style;
    for (auto& [path, cell] : cells_->visible())
        configure(*cell, path);
}

void TableView::setSeparatorColor(const gfx::Color& color) {
    separatorColor_ = color;
    for (auto& [path, cell] : cells_->visible())
        configure(*cell, path);
}

void TableView::setSeparatorInset(double inset) {
    separatorInset_ = std::isfinite(inset) ? inset : 0;
    for (auto& [path, cell] : cells_->visible())
        configure(*cell, path);
}

void TableView::setAllowsMultipleSelection(bool allows) {
    allowsMultipleSelection_ = allows;
    if (allows) allowsSelection_ = true;
}

void TableView::registerCell(const std::string& identifier, CellFactory factory,
                             std::function<bool(const TableViewCell&)> isOfClass) {
    cells_->registerClass(identifier, std::move(factory), std::move(isOfClass));
}

std::shared_ptr<TableViewCell> TableView::dequeueReusableCell(const std::string& identifier) {
    return cells_->dequeue(identifier);
}

std::shared_ptr<TableViewCell> TableView::dequeueReusableCell(const std::string& identifier,
                                                              IndexPath indexPath) {
    if (auto cell = dequeueReusableCell(identifier)) return cell;
    warn("no cell class registered for \"" + identifier + "\" (asked for " + describe(indexPath) +
         "); a plain cell is used");
    return std::make_shared<TableViewCell>(TableViewCell::Style::Default, identifier);
}

// ---- 2. Measuring --------------------------------------------------------------------

double TableView::checkedHeight(std::optional<double> height, double fallback, const char* what) {
    if (!height) return fallback;
    if (!std::isfinite(*height) || *height < 0) {
        warn(std::string("a ") + what + " of " + std::to_string(*height) + " is not usable; 0 is used");
        return 0;
    }
    return *height;
}

void TableView::reloadData() {
    needsReload_ = true;
    selected_.clear();
    highlighted_.reset();
    closeSwipeActions();
    // Every visible cell goes back to its queue; the next layout asks again.
    cells_->recycleAll();
    for (auto& [section, view] : headers_)
        view->removeFromSuperview();
    for (auto& [section, view] : footers_)
        view->removeFromSuperview();
    headers_.clear();
    footers_.clear();
    setNeedsLayout();
}

void TableView::beginUpdates() {
    ++updateDepth_;
}

void TableView::endUpdates() {
    if (updateDepth_ == 0) {
        warn("endUpdates without beginUpdates");
        return;
    }
    if (--updateDepth_ > 0) return;
    measure();
    needsCells_ = true;
    setNeedsLayout();
}

void TableView::performBatchUpdates(const std::function<void()>& updates) {
    beginUpdates();
    if (updates) updates();
    endUpdates();
}

void TableView::reloadRows(const std::vector<IndexPath>& rows) {
    for (IndexPath path : rows)
        cells_->recycle(path);
    needsCells_ = true;
    setNeedsLayout();
}

double TableView::contentTop() const {
    return tableHeader_ ? tableHeader_->bounds().height : 0;
}

void TableView::measure() {
    needsReload_ = false;
    // The data source and delegate answer below; any of them may reload or
    // lay out the table again. Then this measurement is out of date: stop,
    // and leave what a nested measurement built (or the reload's request).
    const std::uint64_t generation = cells_->invalidate();
    const std::uint64_t completed = completedMeasures_;
    auto changed = [&] {
        if (cells_->generation() == generation) return false;
        // Unless a nested measurement finished, what is built so far is partial.
        if (completedMeasures_ == completed) {
            needsReload_ = true;
            setNeedsLayout();
        }
        return true;
    };
    sections_.clear();
    rowTops_.clear();
    rowHeights_.clear();
    double y = contentTop();
    if (dataSource_) {
        int count = dataSource_->numberOfSections(*this);
        if (changed()) return;
        if (count < 0) {
            warn("a negative number of sections; none are shown");
            count = 0;
        }
        sections_.reserve(std::size_t(count));
        for (int s = 0; s < count; ++s) {
            Section section;
            section.top = y;
            section.header = checkedHeight(delegate_ ? delegate_->heightForHeader(*this, s) : std::nullopt,
                                           headerHeight_, "section header height");
            if (changed() || !dataSource_) return;
            y += section.header;
            int rows = dataSource_->numberOfRows(*this, s);
            if (changed()) return;
            if (rows < 0) {
                warn("a negative number of rows in section " + std::to_string(s) + "; none are shown");
                rows = 0;
            }
            section.rows = rows;
            section.firstRow = rowTops_.size();
            for (int r = 0; r < rows; ++r) {
                double h = checkedHeight(delegate_ ? delegate_->heightForRow(*this, {s, r}) : std::nullopt,
                                         rowHeight_, "row height");
                if (changed()) return;
                rowTops_.push_back(y);
                rowHeights_.push_back(h);
                y += h;
            }
            section.footer = checkedHeight(delegate_ ? delegate_->heightForFooter(*this, s) : std::nullopt,
                                           footerHeight_, "section footer height");
            if (changed() || !dataSource_) return;
            y += section.footer;
            section.bottom = y;
            sections_.push_back(section);
        }
    }
    if (tableFooter_) {
        gfx::Rect f = tableFooter_->frame();
        tableFooter_->setFrame({0, y, bounds().width, f.height});
        y += f.height;
    }
    if (tableHeader_) {
        gfx::Rect f = tableHeader_->frame();
        tableHeader_->setFrame({0, 0, bounds().width, f.height});
    }
    setContentSize({bounds().width, y});
    needsCells_ = true;
    ++completedMeasures_;
}

int TableView::numberOfRows(int section) const {
    if (section < 0 || section >= numberOfSections()) return 0;
    return sections_[std::size_t(section)].rows;
}

bool TableView::valid(IndexPath p) const {
    return p.section >= 0 && p.section < numberOfSections() && p.row >= 0 &&
           p.row < sections_[std::size_t(p.section)].rows;
}

gfx::Rect TableView::rectForRow(IndexPath p) const {
    if (!valid(p)) return {};
    std::size_t i = flatIndex(p);
    return {0, rowTops_[i], bounds().width, rowHeights_[i]};
}

gfx::Rect TableView::rectForHeader(int section) const {
    if (section < 0 || section >= numberOfSections()) return {};
    const Section& s = sections_[std::size_t(section)];
    return {0, s.top, bounds().width, s.header};
}

gfx::Rect TableView::rectForFooter(int section) const {
    if (section < 0 || section >= numberOfSections()) return {};
    const Section& s = sections_[std::size_t(section)];
    return {0, s.bottom - s.footer, bounds().width, s.footer};
}

std::optional<IndexPath> TableView::indexPathForRow(gfx::Point point) const {
    if (point.x < 0 || point.x > bounds().width) return std::nullopt;
    // The last row starting at or above the point.
    auto it = std::upper_bound(rowTops_.begin(), rowTops_.end(), point.y);
    if (it == rowTops_.begin()) return std::nullopt;
    std::size_t i = std::size_t(it - rowTops_.begin()) - 1;
    if (point.y >= rowTops_[i] + rowHeights_[i]) return std::nullopt;
    auto section = std::upper_bound(sections_.begin(), sections_.end(), i,
                                    [](std::size_t index, const Section& s) { return index < s.firstRow; });
    // Sections without rows share their firstRow with the next; step back to the one holding i.
    while (section != sections_.begin()) {
        --section;
        if (section->rows > 0 && i >= section->firstRow && i < section->firstRow + std::size_t(section->rows))
            return IndexPath{int(section - sections_.begin()), int(i - section->firstRow)};
    }
    return std::nullopt;
}

std::optional<IndexPath> TableView::indexPathForCell(const TableViewCell& cell) const {
    return cells_->indexPathOf(cell);
}

std::shared_ptr<TableViewCell> TableView::cellForRow(IndexPath p) const {
    return cells_->cellAt(p);
}

std::vector<std::shared_ptr<TableViewCell>> TableView::visibleCells() const {
    return cells_->visibleCells();
}

std::vector<IndexPath> TableView::indexPathsForVisibleRows() const {
    return cells_->visibleIndexPaths();
}

int TableView::liveCellCount() const {
    return cells_->liveCount();
}

void TableView::scrollToRow(IndexPath p, ScrollPosition position, bool animated) {
    if (needsReload_) measure();
    if (!valid(p)) {
        warn("cannot scroll to " + describe(p) + ": no such row");
        return;
    }
    gfx::Rect row = rectForRow(p);
    double height = bounds().height;
    double y = contentOffset().y;
    switch (position) {
    case ScrollPosition::Top:
        y = row.y;
        break;
    case ScrollPosition::Middle:
        y = row.y + row.height / 2 - height / 2;
        break;
    case ScrollPosition::Bottom:
        y = row.y + row.height - height;
        break;
    case ScrollPosition::None:
        if (row.y < y)
            y = row.y;
        else if (row.y + row.height > y + height)
            y = row.y + row.height - height;
        break;
    }
    y = std::clamp(y, minimumContentOffset().y, maximumContentOffset().y);
    setContentOffset({contentOffset().x, y}, animated);
}

// ---- 3. Cells for the visible range --------------------------------------------------------

void TableView::boundsChanged(const gfx::Rect& oldBounds) {
    // Rows span the width; a new width re-measures (a move is only a scroll).
    if (oldBounds.width != bounds().width) needsReload_ = true;
    if (oldBounds.height != bounds().height) needsCells_ = true;
}

void TableView::contentOffsetChanged() {
    needsCells_ = true;
    // A drag that starts ends the touch's highlight and any open swipe.
    if (isDragging()) {
        if (highlighted_) {
            if (auto cell = cellForRow(*highlighted_)) cell->setHighlighted(false);
            highlighted_.reset();
        }
        if (swipe_.row) closeSwipeActions();
    }
    setNeedsLayout();
}

void TableView::layoutSubviews() {
    ScrollView::layoutSubviews();
    // The data source and delegate may drop the table while it lays out.
    auto keep = weak_from_this().lock();
    if (needsReload_) measure();
    // A reload asked for while measuring: that measurement is out of date,
    // and the reload's own layout pass comes next.
    if (needsReload_) return;
    if (needsCells_) layoutCells();
}

void TableView::configure(TableViewCell& cell, IndexPath p) {
    cell.indexPath_ = p;
    bool last = p.row == sections_[std::size_t(p.section)].rows - 1;
    cell.separator_ = separatorStyle_ == SeparatorStyle::SingleLine && !(style_ == Style::Grouped && last);
    cell.separatorInset_ = separatorInset_;
    cell.separatorColor_ = separatorColor_;
    cell.setSelected(std::find(selected_.begin(), selected_.end(), p) != selected_.end());
    cell.setNeedsDisplay();
}

std::shared_ptr<TableViewCell> TableView::makeCell(IndexPath p) {
    std::shared_ptr<TableViewCell> cell;
    try {
        cell = dataSource_->cellForRow(*this, p);
    } catch (const std::exception& e) {
        warn("the data source failed to give a cell for " + describe(p) + ": " + e.what());
    } catch (...) {
        warn("the data source failed to give a cell for " + describe(p));
    }
    if (!cell) {
        warn("the data source gave no cell for " + describe(p) +
             " (it reports more rows than it has?); the row is left blank");
        return std::make_shared<TableViewCell>();
    }
    if (std::string identifier = cell->reuseIdentifier(); !cells_->adopt(cell))
        warn("the cell for " + describe(p) + " is not of the class registered for \"" + identifier +
             "\"; it is shown but not reused");
    if (cell->indexPath_ || (cell->superview() == this && !cell->isHidden())) {
        warn("the cell for " + describe(p) + " is already shown for another row; the row is left blank");
        return std::make_shared<TableViewCell>();
    }
    // A cell that was dequeued might be taken out of a queue still; make sure no queue holds it.
    cells_->unqueue(cell);
    return cell;
}

void TableView::layoutCells() {
    needsCells_ = false;
    double width = bounds().width;
    double top = contentOffset().y;
    double bottom = top + bounds().height;

    auto [first, end] = detail::visibleRows(rowTops_, rowHeights_, top, bottom);
    if (!dataSource_) end = first;

    // Which sections hold the run.
    std::vector<IndexPath> wanted;
    if (first < end) {
        auto section =
            std::upper_bound(sections_.begin(), sections_.end(), first,
                             [](std::size_t index, const Section& s) { return index < s.firstRow; });
        int s = int(section - sections_.begin()) - 1;
        while (s > 0 && (sections_[std::size_t(s)].rows == 0 || first < sections_[std::size_t(s)].firstRow))
            --s;
        for (std::size_t i = first; i < end; ++i) {
            while (s < numberOfSections() &&
                   i >= sections_[std::size_t(s)].firstRow + std::size_t(sections_[std::size_t(s)].rows))
                ++s;
            if (s >= numberOfSections()) break;
            wanted.push_back({s, int(i - sections_[std::size_t(s)].firstRow)});
        }
    }

    // Rows that left the screen give their cells back first, so the rows
    // coming in can take them.
    cells_->recycleAllBut(wanted, [this](IndexPath leaving) {
        if (swipe_.row && leaving == *swipe_.row) closeSwipeActions();
    });
    // Making a cell and announcing it run the owner's code, which may reload,
    // scroll, resize or lay out the table; after a change of generation the
    // paths and measurements here are stale, and this pass gives up.
    const std::uint64_t placing = cells_->invalidate();
    for (IndexPath p : wanted) {
        std::shared_ptr<TableViewCell> cell = cells_->cellAt(p);
        if (!cell) {
            cell = makeCell(p);
            if (cells_->generation() != placing) {
                cells_->giveBack(cell);
                return retryCells();
            }
            cells_->show(p, cell);
            if (cell->superview() != this) insertSubview(cell, tableHeader_ ? 1 : 0);
            cell->setHidden(false);
            configure(*cell, p);
            if (delegate_) delegate_->willDisplayCell(*this, *cell, p);
            if (cells_->generation() != placing) return retryCells();
        }
        std::size_t i = flatIndex(p);
        double shift = swipe_.row && *swipe_.row == p ? swipe_.offset : 0;
        cell->setFrame({shift, rowTops_[i], width, rowHeights_[i]});
    }
    // Cells past the reuse need are let go: a steady scroll frees at most a
    // row or two per frame, so two queued cells in all are enough.
    cells_->trimQueues(2);
    if (!layoutSupplementaryViews(top, bottom, placing)) return retryCells();
    if (swipe_.strip && swipe_.row) {
        gfx::Rect row = rectForRow(*swipe_.row);
        swipe_.strip->setFrame(row);
    }
}

void TableView::retryCells() {
    needsCells_ = true;
    setNeedsLayout();
}

bool TableView::layoutSupplementaryViews(double top, double bottom, std::uint64_t generation) {
    if (!delegate_) return true;
    auto place = [&](std::map<int, std::shared_ptr<View>>& views, bool header) {
        for (auto it = views.begin(); it != views.end();) {
            gfx::Rect r = header ? rectForHeader(it->first) : rectForFooter(it->first);
            if (r.height <= 0 || r.y + r.height <= top || r.y >= bottom) {
                it->second->removeFromSuperview();
                it = views.erase(it);
            } else {
                it->second->setFrame(r);
                ++it;
            }
        }
    };
    place(headers_, true);
    place(footers_, false);
    // Sections overlapping the viewport: binary search on their tops.
    auto firstSection = std::upper_bound(sections_.begin(), sections_.end(), top,
                                         [](double y, const Section& s) { return y < s.bottom; });
    // The delegate's answers may reload or lay out the table: sections are
    // walked by index, and the walk stops once the generation moves.
    auto stale = [&] { return cells_->generation() != generation || !delegate_; };
    const std::size_t firstIndex = std::size_t(firstSection - sections_.begin());
    for (std::size_t index = firstIndex; index < sections_.size() && sections_[index].top < bottom; ++index) {
        int s = int(index);
        gfx::Rect h = rectForHeader(s);
        if (h.height > 0 && h.y + h.height > top && !headers_.count(s)) {
            auto view = delegate_->viewForHeader(*this, s);
            if (stale()) return false;
            if (view) {
                headers_[s] = view;
                view->setFrame(h);
                addSubview(view);
                delegate_->willDisplayHeaderView(*this, *view, s);
                if (stale()) return false;
            }
        }
        gfx::Rect f = rectForFooter(s);
        if (f.height > 0 && f.y < bottom && f.y + f.height > top && !footers_.count(s)) {
            auto view = delegate_->viewForFooter(*this, s);
            if (stale()) return false;
            if (view) {
                footers_[s] = view;
                view->setFrame(f);
                addSubview(view);
                delegate_->willDisplayFooterView(*this, *view, s);
                if (stale()) return false;
            }
        }
    }
    return true;
}

void TableView::draw(gfx::Canvas& canvas, const gfx::Rect& rect) {
    ScrollView::draw(canvas, rect);
}

// ---- 4. Selection and taps -----------------------------------------------------------------

std::optional<IndexPath> TableView::indexPathForSelectedRow() const {
    if (selected_.empty()) return std::nullopt;
    return *std::min_element(selected_.begin(), selected_.end());
}

std::vector<IndexPath> TableView::indexPathsForSelectedRows() const {
    auto rows = selected_;
    std::sort(rows.begin(), rows.end());
    return rows;
}

void TableView::selectRow(IndexPath p, bool animated, ScrollPosition position) {
    if (needsReload_) measure();
    if (!valid(p)) {
        warn("cannot select " + describe(p) + ": no such row");
        return;
    }
    if (!allowsMultipleSelection_) {
        for (IndexPath old : selected_)
            if (auto cell = cellForRow(old)) cell->setSelected(false, animated);
        selected_.clear();
    }
    if (std::find(selected_.begin(), selected_.end(), p) == selected_.end()) selected_.push_back(p);
    if (auto cell = cellForRow(p)) cell->setSelected(true, animated);
    if (position != ScrollPosition::None) scrollToRow(p, position, animated);
}

void TableView::deselectRow(IndexPath p, bool animated) {
    auto it = std::find(selected_.begin(), selected_.end(), p);
    if (it == selected_.end()) return;
    selected_.erase(it);
    if (auto cell = cellForRow(p)) cell->setSelected(false, animated);
}

void TableView::contentTouchBegan(gfx::Point location) {
    if (!allowsSelection_ || swipe_.row) return;
    if (auto p = indexPathForRow(location)) {
        if (auto cell = cellForRow(*p)) {
            cell->setHighlighted(true);
            highlighted_ = p;
        }
    }
}

void TableView::contentTouchCancelled() {
    if (highlighted_) {
        if (auto cell = cellForRow(*highlighted_)) cell->setHighlighted(false);
        highlighted_.reset();
    }
}

void TableView::contentTapped(gfx::Point location) {
    if (highlighted_) {
        if (auto cell = cellForRow(*highlighted_)) cell->setHighlighted(false);
        highlighted_.reset();
    }
    // A tap while a row shows its actions only closes them.
    if (swipe_.row) {
        closeSwipeActions();
        return;
    }
    if (!allowsSelection_) return;
    if (auto p = indexPathForRow(location)) userSelect(*p);
}

void TableView::userSelect(IndexPath p) {
    // The delegate may reload or drop the table inside its answers.
    auto keep = std::static_pointer_cast<TableView>(shared_from_this());
    bool wasSelected = std::find(selected_.begin(), selected_.end(), p) != selected_.end();
    if (allowsMultipleSelection_ && wasSelected) {
        deselectRow(p, false);
        if (delegate_) delegate_->didDeselectRow(*this, p);
        return;
    }
    if (!allowsMultipleSelection_) {
        auto previous = selected_;
        for (IndexPath old : previous) {
            if (old == p) continue;
            deselectRow(old, false);
            if (delegate_) delegate_->didDeselectRow(*this, old);
        }
    }
    if (!valid(p)) return; // a deselect answer may have reloaded the table
    selectRow(p, false);
    if (delegate_) delegate_->didSelectRow(*this, p);
}

// ---- 5. Swiping -------------------------------------------------------------------------------

std::optional<IndexPath> TableView::swipedRow() const {
    return swipe_.row;
}

std::vector<std::shared_ptr<View>> TableView::swipeActionButtons() const {
    return swipe_.buttons;
}

bool TableView::beginHorizontalDrag(gfx::Point location) {
    auto p = indexPathForRow(location);
    if (swipe_.row && (!p || *p != *swipe_.row)) {
        closeSwipeActions();
        return true; // the drag only closes the open row
    }
    if (!p || !dataSource_ || !delegate_) return false;
    // The answers below are the owner's code: it may reload the table, drop
    // its delegate or release it. After any of that the drag starts nothing.
    auto keep = weak_from_this().lock();
    const std::uint64_t generation = cells_->generation();
    auto stale = [&] {
        return cells_->generation() != generation || !dataSource_ || !delegate_ || !valid(*p);
    };
    if (!dataSource_->canEditRow(*this, *p) || stale()) return false;
    if (!swipe_.row) {
        auto leading = delegate_->leadingSwipeActions(*this, *p);
        if (stale()) return false;
        auto trailing = delegate_->trailingSwipeActions(*this, *p);
        if (stale()) return false;
        bool any = (leading && !leading->actions().empty()) || (trailing && !trailing->actions().empty());
        if (!any) return false;
        swipe_.row = p;
        swipe_.leading = leading;
        swipe_.trailing = trailing;
        swipe_.offset = 0;
    }
    swipe_.base = swipe_.offset;
    return true;
}

double TableView::actionsWidth(bool trailing) const {
    const auto& config = trailing ? swipe_.trailing : swipe_.leading;
    if (!config) return 0;
    double width = 0;
    for (auto& action : config->actions())
        width += std::max(kMinimumActionWidth,
                          gfx::TextMetrics::size(action->title(), gfx::Font::systemFont(15)).width + 30);
    return width;
}

void TableView::horizontalDragMoved(double dx) {
    if (!swipe_.row) return;
    double offset = swipe_.base + dx;
    double leading = actionsWidth(false);
    double trailing = actionsWidth(true);
    // Past the actions' width the row follows at half speed.
    if (offset > leading) offset = leading + (offset - leading) / 2;
    if (offset < -trailing) offset = -trailing + (offset + trailing) / 2;
    if (leading == 0) offset = std::min(offset, 0.0);
    if (trailing == 0) offset = std::max(offset, 0.0);
    showSwipe(offset);
}

void TableView::horizontalDragEnded(double dx, double velocity) {
    if (!swipe_.row) return;
    double offset = swipe_.offset;
    double leading = actionsWidth(false);
    double trailing = actionsWidth(true);
    // A swipe across most of the row runs the first action when the side allows it.
    const auto& config = offset < 0 ? swipe_.trailing : swipe_.leading;
    if (config && config->performsFirstActionWithFullSwipe() && std::abs(dx) > bounds().width * 0.6) {
        showSwipe(offset < 0 ? -trailing : leading);
        pressAction(0);
        return;
    }
    if (offset > 0 && (offset > leading / 2 || velocity > kFlickSpeed) && velocity > -kFlickSpeed)
        showSwipe(leading);
    else if (offset < 0 && (-offset > trailing / 2 || velocity < -kFlickSpeed) && velocity < kFlickSpeed)
        showSwipe(-trailing);
    else
        closeSwipeActions();
}

bool TableView::openSwipeActions(IndexPath p, SwipeEdge edge) {
    auto keep = weak_from_this().lock();
    layoutIfNeeded();
    closeSwipeActions();
    if (!valid(p) || !dataSource_ || !delegate_) return false;
    // The owner's answers may reload the table or drop its delegate.
    const std::uint64_t generation = cells_->generation();
    auto stale = [&] {
        return cells_->generation() != generation || !dataSource_ || !delegate_ || !valid(p);
    };
    if (!dataSource_->canEditRow(*this, p) || stale()) return false;
    auto leading = delegate_->leadingSwipeActions(*this, p);
    if (stale()) return false;
    auto trailing = delegate_->trailingSwipeActions(*this, p);
    if (stale()) return false;
    swipe_.row = p;
    swipe_.leading = std::move(leading);
    swipe_.trailing = std::move(trailing);
    const bool trailingSide = edge == SwipeEdge::Trailing;
    double width = actionsWidth(trailingSide);
    if (width <= 0) {
        swipe_ = Swipe{};
        return false;
    }
    showSwipe(trailingSide ? -width : width);
    return true;
}

void TableView::buildSwipeStrip(bool trailing) {
    if (swipe_.strip) swipe_.strip->removeFromSuperview();
    swipe_.buttons.clear();
    swipe_.trailingShown = trailing;
    gfx::Rect row = rectForRow(*swipe_.row);
    swipe_.strip = std::make_shared<View>(row);
    swipe_.strip->setClipsToBounds(true);
    const auto& config = trailing ? swipe_.trailing : swipe_.leading;
    if (config) {
        // Actions run from the row's edge inwards.
        double edge = trailing ? row.width : 0;
        for (std::size_t i = 0; i < config->actions().size(); ++i) {
            const auto& action = config->actions()[i];
            double w =
                std::max(kMinimumActionWidth,
                         gfx::TextMetrics::size(action->title(), gfx::Font::systemFont(15)).width + 30);
            auto button = std::make_shared<Button>();
            button->setTitle(action->title(), ControlState::Normal);
            button->setTitleColor(gfx::Color::whiteColor(), ControlState::Normal);
            button->setBackgroundColor(action->backgroundColor());
            button->setFrame({trailing ? edge - w : edge, 0, w, row.height});
            edge += trailing ? -w : w;
            std::weak_ptr<View> weak = weak_from_this();
            button->addAction(ControlEvent::TouchUpInside, [weak, i](Control&) {
                if (auto self = std::static_pointer_cast<TableView>(weak.lock())) self->pressAction(i);
            });
            swipe_.strip->addSubview(button);
            swipe_.buttons.push_back(button);
        }
    }
    // Behind the row's cell, above the others.
    auto cell = cellForRow(*swipe_.row);
    if (cell)
        insertSubviewBelow(swipe_.strip, cell.get());
    else
        addSubview(swipe_.strip);
}

void TableView::showSwipe(double offset) {
    if (!swipe_.row) return;
    bool trailing = offset < 0;
    if (!swipe_.strip || swipe_.trailingShown != trailing) buildSwipeStrip(trailing);
    swipe_.offset = offset;
    if (auto cell = cellForRow(*swipe_.row)) {
        gfx::Rect f = rectForRow(*swipe_.row);
        cell->setFrame({offset, f.y, f.width, f.height});
    }
}

void TableView::closeSwipeActions() {
    if (!swipe_.row) return;
    if (auto cell = cellForRow(*swipe_.row)) {
        gfx::Rect f = rectForRow(*swipe_.row);
        cell->setFrame(f);
    }
    if (swipe_.strip) swipe_.strip->removeFromSuperview();
    swipe_ = Swipe{};
}

void TableView::pressAction(std::size_t index) {
    if (!swipe_.row) return;
    const auto& config = swipe_.trailingShown ? swipe_.trailing : swipe_.leading;
    if (!config || index >= config->actions().size() || index >= swipe_.buttons.size()) return;
    auto action = config->actions()[index];
    auto button = swipe_.buttons[index];
    auto keep = std::static_pointer_cast<TableView>(shared_from_this());
    std::weak_ptr<View> weak = keep;
    auto completion = [weak](bool) {
        if (auto self = std::static_pointer_cast<TableView>(weak.lock())) self->closeSwipeActions();
    };
    if (action->handler())
        action->handler()(*action, *button, completion);
    else
        completion(false);
}

} // namespace morvane::ui
