#include <morvane/ui/collections/CollectionView.h>

#include <morvane/sys/Log.h>
#include <morvane/ui/collections/detail/CellRecycler.h>

#include <algorithm>
#include <exception>

namespace morvane::ui {

namespace {

void warn(const std::string& text) {
    sys::Log::platform("CollectionView: " + text);
}

std::string describe(IndexPath p) {
    return "section " + std::to_string(p.section) + " item " + std::to_string(p.row);
}

} // namespace

CollectionView::CollectionView(const gfx::Rect& frame, FlowLayout layout)
    : layout_(std::move(layout)), cells_(std::make_unique<detail::CellRecycler<CollectionViewCell>>()) {
    setFrame(frame);
}

CollectionView::~CollectionView() = default;

void CollectionView::setDataSource(CollectionViewDataSource* source) {
    dataSource_ = source;
    reloadData();
}

void CollectionView::setDelegate(ScrollViewDelegate* scrollDelegate) {
    auto* delegate = dynamic_cast<CollectionViewDelegate*>(scrollDelegate);
    delegate_ = delegate;
    ScrollView::setDelegate(scrollDelegate);
    reloadData();
}

void CollectionView::invalidateLayout() {
    needsReload_ = true;
    setNeedsLayout();
}

void CollectionView::registerCell(const std::string& identifier, CellFactory factory,
                                  std::function<bool(const CollectionViewCell&)> isOfClass) {
    cells_->registerClass(identifier, std::move(factory), std::move(isOfClass));
}

std::shared_ptr<CollectionViewCell> CollectionView::dequeueReusableCell(const std::string& identifier,
                                                                        IndexPath indexPath) {
    if (auto cell = cells_->dequeue(identifier)) return cell;
    warn("no cell class registered for \"" + identifier + "\" (asked for " + describe(indexPath) +
         "); a plain cell is used");
    return std::make_shared<CollectionViewCell>(identifier);
}

void CollectionView::reloadData() {
    needsReload_ = true;
    selected_.clear();
    cells_->recycleAll();
    setNeedsLayout();
}

int CollectionView::numberOfItems(int section) const {
    return section >= 0 && section < numberOfSections() ? items_[std::size_t(section)] : 0;
}

void CollectionView::measure() {
    needsReload_ = false;
    // The data source and delegate answer below and may reload or lay out the
    // grid again; then this measurement is stale and gives up (see TableView).
    const std::uint64_t generation = cells_->invalidate();
    const std::uint64_t completed = completedMeasures_;
    auto changed = [&] {
        if (cells_->generation() == generation) return false;
        if (completedMeasures_ == completed) {
            needsReload_ = true;
            setNeedsLayout();
        }
        return true;
    };
    std::vector<int> items;
    if (dataSource_) {
        int sections = dataSource_->numberOfSections(*this);
        if (changed()) return;
        if (sections < 0) warn("a negative number of sections; none are shown");
        for (int s = 0; s < sections && dataSource_; ++s) {
            int n = dataSource_->numberOfItems(*this, s);
            if (changed()) return;
            if (n < 0) {
                warn("a negative number of items in section " + std::to_string(s) + "; none are shown");
                n = 0;
            }
            items.push_back(n);
        }
    }
    // The layout asks for every item's size; once an answer has changed the
    // grid the rest are not asked, and the result is dropped.
    FlowLayout::Answers answers;
    if (delegate_) {
        auto ask = [this, generation](auto question) {
            return [this, generation, question](auto... args) {
                using Answer = decltype(question(*delegate_, args...));
                if (!delegate_ || cells_->generation() != generation) return Answer{};
                return question(*delegate_, args...);
            };
        };
        answers.sizeForItem =
            ask([this](CollectionViewDelegate& d, IndexPath p) { return d.sizeForItem(*this, p); });
        answers.insetForSection =
            ask([this](CollectionViewDelegate& d, int s) { return d.insetForSection(*this, s); });
        answers.lineSpacingForSection =
            ask([this](CollectionViewDelegate& d, int s) { return d.minimumLineSpacing(*this, s); });
        answers.interitemSpacingForSection =
            ask([this](CollectionViewDelegate& d, int s) { return d.minimumInteritemSpacing(*this, s); });
    }
    FlowLayout prepared = layout_;
    prepared.prepare(bounds().width, items, answers, warn);
    if (changed()) return;
    layout_ = std::move(prepared);
    items_ = std::move(items);
    setContentSize(layout_.contentSize());
    needsCells_ = true;
    ++completedMeasures_;
}

void CollectionView::boundsChanged(const gfx::Rect& oldBounds) {
    if (oldBounds.width != bounds().width) needsReload_ = true;
    if (oldBounds.height != bounds().height) needsCells_ = true;
}

void CollectionView::contentOffsetChanged() {
    needsCells_ = true;
    setNeedsLayout();
}

void CollectionView::layoutSubviews() {
    ScrollView::layoutSubviews();
    // The data source and delegate may drop the grid while it lays out.
    auto keep = weak_from_this().lock();
    if (needsReload_) measure();
    if (needsReload_) return;
    if (needsCells_) layoutCells();
}

std::shared_ptr<CollectionViewCell> CollectionView::makeCell(IndexPath p) {
    std::shared_ptr<CollectionViewCell> cell;
    try {
        cell = dataSource_->cellForItem(*this, p);
    } catch (const std::exception& e) {
        warn("the data source failed to give a cell for " + describe(p) + ": " + e.what());
    } catch (...) {
        warn("the data source failed to give a cell for " + describe(p));
    }
    if (!cell) {
        warn("the data source gave no cell for " + describe(p) + "; the item is left blank");
        return std::make_shared<CollectionViewCell>();
    }
    if (std::string identifier = cell->reuseIdentifier(); !cells_->adopt(cell))
        warn("the cell for " + describe(p) + " is not of the class registered for \"" + identifier +
             "\"; it is shown but not reused");
    if (cell->indexPath_) {
        warn("the cell for " + describe(p) + " is already shown for another item; the item is left blank");
        return std::make_shared<CollectionViewCell>();
    }
    cells_->unqueue(cell);
    return cell;
}

void CollectionView::layoutCells() {
    needsCells_ = false;
    std::vector<IndexPath> wanted;
    if (dataSource_) wanted = layout_.itemsIn(bounds());
    std::sort(wanted.begin(), wanted.end());
    cells_->recycleAllBut(wanted, [](IndexPath) {});
    // Making and announcing a cell run the owner's code (see TableView::layoutCells).
    const std::uint64_t placing = cells_->invalidate();
    auto retry = [this] {
        needsCells_ = true;
        setNeedsLayout();
    };
    for (IndexPath p : wanted) {
        std::shared_ptr<CollectionViewCell> cell = cells_->cellAt(p);
        if (!cell) {
            cell = makeCell(p);
            if (cells_->generation() != placing) {
                cells_->giveBack(cell);
                return retry();
            }
            cells_->show(p, cell);
            cell->indexPath_ = p;
            if (cell->superview() != this) insertSubview(cell, 0);
            cell->setHidden(false);
            cell->setSelected(std::find(selected_.begin(), selected_.end(), p) != selected_.end());
            if (delegate_) delegate_->willDisplayCell(*this, *cell, p);
            if (cells_->generation() != placing) return retry();
        }
        cell->setFrame(layout_.frameForItem(p));
    }
    // A grid frees a whole line at a time: keep a line's worth (at least two).
    std::size_t perLine = 0;
    if (!wanted.empty()) {
        double y = layout_.frameForItem(wanted.front()).y;
        for (IndexPath p : wanted)
            if (layout_.frameForItem(p).y == y) ++perLine;
    }
    std::size_t keep = std::max<std::size_t>(2, perLine);
    cells_->trimQueues(keep);
}

int CollectionView::liveCellCount() const {
    return cells_->liveCount();
}

std::vector<std::shared_ptr<CollectionViewCell>> CollectionView::visibleCells() const {
    return cells_->visibleCells();
}

std::vector<IndexPath> CollectionView::indexPathsForVisibleItems() const {
    return cells_->visibleIndexPaths();
}

std::optional<IndexPath> CollectionView::indexPathForCell(const CollectionViewCell& cell) const {
    return cells_->indexPathOf(cell);
}

std::optional<IndexPath> CollectionView::indexPathForItem(gfx::Point point) const {
    return layout_.itemAt(point);
}

std::shared_ptr<CollectionViewCell> CollectionView::cellForItem(IndexPath p) const {
    return cells_->cellAt(p);
}

void CollectionView::selectItem(IndexPath p) {
    for (IndexPath old : selected_)
        if (auto cell = cellForItem(old)) cell->setSelected(false);
    selected_ = {p};
    if (auto cell = cellForItem(p)) cell->setSelected(true);
}

void CollectionView::deselectItem(IndexPath p) {
    std::erase(selected_, p);
    if (auto cell = cellForItem(p)) cell->setSelected(false);
}

void CollectionView::contentTapped(gfx::Point location) {
    if (!allowsSelection_) return;
    auto p = layout_.itemAt(location);
    if (!p) return;
    auto keep = shared_from_this();
    auto previous = selected_;
    for (IndexPath old : previous) {
        if (old == *p) continue;
        deselectItem(old);
        if (delegate_) delegate_->didDeselectItem(*this, old);
    }
    if (layout_.frameForItem(*p).isEmpty()) return; // reloaded meanwhile
    selectItem(*p);
    if (delegate_) delegate_->didSelectItem(*this, *p);
}

} // namespace morvane::ui
