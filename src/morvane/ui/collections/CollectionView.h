#pragma once
// A scrolling grid of items placed by a FlowLayout, asked for its content
// through a data source and telling a delegate about taps. Only the items on
// screen have cells; cells that scroll out are reused by identifier.
//
//   grid->registerCell<TileCell>("tile");
//   grid->layout().setItemSize({141, 180});
//   grid->setDataSource(&tiles);    // not owned
//   grid->setDelegate(&tiles);

#include <morvane/ui/collections/CollectionViewCell.h>
#include <morvane/ui/collections/FlowLayout.h>
#include <morvane/ui/collections/IndexPath.h>
#include <morvane/ui/collections/ScrollView.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace morvane::ui {

class CollectionView;
namespace detail {
template <class Cell> class CellRecycler;
}

class CollectionViewDataSource {
  public:
    virtual ~CollectionViewDataSource() = default;
    virtual int numberOfSections(CollectionView&) { return 1; }
    virtual int numberOfItems(CollectionView&, int section) = 0;
    virtual std::shared_ptr<CollectionViewCell> cellForItem(CollectionView&, IndexPath indexPath) = 0;
};

// The grid's delegate, with the flow layout's per-item and per-section answers.
class CollectionViewDelegate : public ScrollViewDelegate {
  public:
    virtual void didSelectItem(CollectionView&, IndexPath) {}
    virtual void didDeselectItem(CollectionView&, IndexPath) {}
    virtual void willDisplayCell(CollectionView&, CollectionViewCell&, IndexPath) {}
    virtual std::optional<gfx::Size> sizeForItem(CollectionView&, IndexPath) { return std::nullopt; }
    virtual std::optional<gfx::Insets> insetForSection(CollectionView&, int) { return std::nullopt; }
    virtual std::optional<double> minimumLineSpacing(CollectionView&, int) { return std::nullopt; }
    virtual std::optional<double> minimumInteritemSpacing(CollectionView&, int) { return std::nullopt; }
};

class CollectionView : public ScrollView {
  public:
    using CellFactory = std::function<std::shared_ptr<CollectionViewCell>(const std::string& identifier)>;

    explicit CollectionView(const gfx::Rect& frame = {}, FlowLayout layout = {});
    ~CollectionView() override;

    // Change the layout's values, then reloadData (or invalidateLayout).
    FlowLayout& layout() { return layout_; }
    void invalidateLayout();

    CollectionViewDataSource* dataSource() const { return dataSource_; }
    void setDataSource(CollectionViewDataSource* source);
    CollectionViewDelegate* delegate() const { return delegate_; }
    // Takes a CollectionViewDelegate; any other scroll view delegate hears only the scrolling.
    void setDelegate(ScrollViewDelegate* delegate) override;
    bool allowsSelection() const { return allowsSelection_; }
    void setAllowsSelection(bool allows) { allowsSelection_ = allows; }

    template <class Cell> void registerCell(const std::string& identifier) {
        registerCell(
            identifier, [](const std::string& id) { return std::make_shared<Cell>(id); },
            [](const CollectionViewCell& cell) {
                if constexpr (std::is_same_v<Cell, CollectionViewCell>)
                    return true;
                else
                    return dynamic_cast<const Cell*>(&cell) != nullptr;
            });
    }
    void registerCell(const std::string& identifier, CellFactory factory,
                      std::function<bool(const CollectionViewCell&)> isOfClass = {});
    // Always a cell: queued (after prepareForReuse), registered, or (logged) a plain cell.
    std::shared_ptr<CollectionViewCell> dequeueReusableCell(const std::string& identifier,
                                                            IndexPath indexPath);

    void reloadData();
    int numberOfSections() const { return int(items_.size()); }
    int numberOfItems(int section) const;
    std::vector<std::shared_ptr<CollectionViewCell>> visibleCells() const;
    std::vector<IndexPath> indexPathsForVisibleItems() const;
    std::optional<IndexPath> indexPathForCell(const CollectionViewCell& cell) const;
    std::optional<IndexPath> indexPathForItem(gfx::Point point) const;
    std::shared_ptr<CollectionViewCell> cellForItem(IndexPath indexPath) const;
    gfx::Rect frameForItem(IndexPath indexPath) const { return layout_.frameForItem(indexPath); }
    int liveCellCount() const;

    std::vector<IndexPath> indexPathsForSelectedItems() const { return selected_; }
    void selectItem(IndexPath indexPath);
    void deselectItem(IndexPath indexPath);

  protected:
    void layoutSubviews() override;
    void contentOffsetChanged() override;
    void contentTapped(gfx::Point location) override;
    void boundsChanged(const gfx::Rect& oldBounds) override;

  private:
    void measure();
    void layoutCells();
    std::shared_ptr<CollectionViewCell> makeCell(IndexPath indexPath);

    FlowLayout layout_;
    CollectionViewDataSource* dataSource_ = nullptr;
    CollectionViewDelegate* delegate_ = nullptr;
    bool allowsSelection_ = true;
    // Registrations, the reuse queues and the cells on screen.
    std::unique_ptr<detail::CellRecycler<CollectionViewCell>> cells_;
    std::vector<int> items_;
    std::vector<IndexPath> selected_;
    std::uint64_t completedMeasures_ = 0;
    bool needsReload_ = true;
    bool needsCells_ = true;
};

} // namespace morvane::ui
