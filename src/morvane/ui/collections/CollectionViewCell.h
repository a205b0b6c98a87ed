#pragma once
// One item of a grid. Put the item's views into contentView(); cells are
// reused for items that scroll in, after prepareForReuse.

#include <morvane/ui/collections/IndexPath.h>
#include <morvane/ui/core/View.h>

#include <memory>
#include <optional>
#include <string>

namespace morvane::ui {

namespace detail {
template <class Cell> class CellRecycler;
}

class CollectionViewCell : public View {
  public:
    explicit CollectionViewCell(std::string reuseIdentifier = {});

    const std::string& reuseIdentifier() const { return reuseIdentifier_; }
    const std::shared_ptr<View>& contentView() const { return contentView_; }
    bool isSelected() const { return selected_; }
    virtual void setSelected(bool selected);
    bool isHighlighted() const { return highlighted_; }
    virtual void setHighlighted(bool highlighted);
    // Called before a reused cell is handed out for another item.
    virtual void prepareForReuse();
    std::optional<IndexPath> indexPath() const { return indexPath_; }

  protected:
    void layoutSubviews() override;

  private:
    friend class CollectionView;
    template <class> friend class detail::CellRecycler;
    std::string reuseIdentifier_;
    std::shared_ptr<View> contentView_;
    bool selected_ = false;
    bool highlighted_ = false;
    std::optional<IndexPath> indexPath_;
};

} // namespace morvane::ui
