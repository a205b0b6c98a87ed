#pragma once
// ZBTouch: a small vertical strip of contact buttons, one per action of an
// item ("phone", "about", "wsite", ...). Each button shows the picture named
// after its action key; a tap reports the key and the item.
//
//   auto strip = std::make_shared<ZBTouch>();
//   strip->watchItemSelect([](const std::string& key, const NodePtr& item) { ... });
//   strip->clear();
//   strip->addObj("phone", item);
//   strip->addObj("wsite", item);
//   strip->refresh();              // shows two round buttons, phone first
//
// The kit ships pictures for the usual keys ("phone", "about", "wsite",
// "text", "book", "urlFB", "utube"); an application's resource pictures of
// the same names take their place. Buttons are squares 0.9 of the strip's
// width apart by a quarter of it; on a black button colour they become bars
// as wide as the strip, 0.15 of its height.
//
// Main thread only. The select callback may call any operation of the strip,
// releasing it included.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Image.h>
#include <morvane/model/Node.h>
#include <morvane/ui/collections/CollectionView.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace morvane {

class ZBTouch : public ui::View, public ui::CollectionViewDataSource, public ui::CollectionViewDelegate {
  public:
    using SelectCB = std::function<void(const std::string& key, const NodePtr& item)>;
    static constexpr const char* kCellIdentifier = "cellID";

    ZBTouch();
    explicit ZBTouch(const gfx::Rect& frame);
    ~ZBTouch() override;

    const std::shared_ptr<ui::CollectionView>& tbl() const { return tbl_; }
    // Each entry is {"key": action key, "data": item}, in the order added.
    const std::vector<NodePtr>& myData() const { return myData_; }
    const gfx::Color& bgColor() const { return bgColor_; }

    // Appends the entry {"key": key, "data": item}.
    void addObj(std::string_view key, NodePtr item);
    // Hides the strip and forgets every entry.
    void clear();
    // Hidden without entries, shown with them; the buttons are made anew.
    void refresh();
    void watchItemSelect(SelectCB callback);

    // The strip itself stays clear: the colour goes to its buttons.
    void setBackgroundColor(const gfx::Color& color) override;
    void setCellColor(const gfx::Color& color);

    // White for a picture that is dark on average, black otherwise.
    static gfx::Color getContrastColor(const gfx::Image& image);
    // True when the colour's grey level (the Rec. 601 weights of its red,
    // green and blue) is below one half.
    static bool isDark(const gfx::Color& color);

    // ---- Grid data source and delegate ----------------------------------------
    int numberOfItems(ui::CollectionView&, int section) override;
    std::shared_ptr<ui::CollectionViewCell> cellForItem(ui::CollectionView&,
                                                        ui::IndexPath indexPath) override;
    void didSelectItem(ui::CollectionView&, ui::IndexPath indexPath) override;

  protected:
    void layoutSubviews() override;

  private:
    std::shared_ptr<ui::CollectionView> tbl_;
    std::vector<NodePtr> myData_;
    gfx::Color bgColor_ = gfx::Color::clearColor();
    SelectCB itemSelectCB_;
};

} // namespace morvane
