#pragma once
// UICTbl: the grid form of the kit's list. The same Node rows, configuration,
// key lists, sorting and callback registries as UITbl, drawn as tiles
// (UICTblCell) in a vertically scrolling grid of one or more columns. With
// one column the tiles are full-width rows; with more they are cards.
//
//   auto grid = std::make_shared<UICTbl>(gfx::Rect{0, 0, 390, 700});
//   grid->cfg({.header = [](auto& keys) { keys = {"name"}; },
//              .body = [](auto& keys) { keys = {"$name$ - $price$ EUR"}; },
//              .numOfCol = [](float& columns) { columns = 2; }});
//   grid->watchTbl("menu", onSelect, onPopulate, {});
//   for (auto& dish : dishes) grid->adData(dish);
//   grid->refresh();
//
// Differences from the list: defaults ascending on and check marks off, a
// column count, no pull to refresh and no swipe actions (a refresh callback
// given to watchTbl is accepted and not kept), a header that a tile keeps
// when its new item has none, "$" body templates gathered from the item,
// and a tap that also hands the item's key to the translation hook.
//
// Decisions where the kit's behaviour leaves room: as UITbl (an empty
// callback is skipped; rows that are no mutable Node show unfilled tiles).
// Every callback may change the grid or release it. Threads: main thread
// only; translation and picture completions are re-posted to it.

#include <morvane/components/CallbackRegistry.h>
#include <morvane/components/ListConfig.h>
#include <morvane/components/Translation.h>
#include <morvane/gfx/Color.h>
#include <morvane/gfx/Geometry.h>
#include <morvane/model/Forward.h>
#include <morvane/model/Value.h>
#include <morvane/ui/collections/CollectionView.h>
#include <morvane/ui/core/View.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace morvane {

class UICTblCell;

class UICTbl : public ui::View, public ui::CollectionViewDataSource, public ui::CollectionViewDelegate {
  public:
    static constexpr const char* kCellIdentifier = "cellID";

    using KeysCB = ListConfig::KeysCB;
    using FlagCB = ListConfig::FlagCB;
    using SizeCB = ListConfig::SizeCB;
    using SelectionCB = ListConfig::SelectionCB;
    // select and populate: the item's top-level "key" value and the item.
    using SelectCB = std::function<void(const Value& key, const NodePtr& row)>;
    using PopulateCB = std::function<void(const Value& key, const NodePtr& row)>;
    using RefreshCB = std::function<void(const std::string& text, const NodePtr& node)>;
    using TranslateCompletion = morvane::TranslateCompletion;
    using TranslateCB = morvane::TranslateCB;

    struct FlagCells {
        bool sort = true;
        bool ascending = true;
        bool checkBox = false;
        bool incKey = false;
        float numOfLines = 5.0f;
        float numOfCol = 1.0f;
    };

    UICTbl();
    explicit UICTbl(const gfx::Rect& frame);
    ~UICTbl() override;

    // ---- Properties --------------------------------------------------------------
    const std::shared_ptr<ui::CollectionView>& tbl() const { return tbl_; }
    const CallbackRegistry<SelectCB>& cbItemSelect() const { return cbItemSelect_; }
    const CallbackRegistry<PopulateCB>& cbItemPopulate() const { return cbItemPopulate_; }
    const TranslateCB& translateCB() const { return translateCB_; }
    const ListPtr& myData() const { return myData_; }
    const std::optional<std::vector<std::string>>& listImage() const { return listImage_; }
    const std::optional<std::vector<std::string>>& listBody() const { return listBody_; }
    const std::optional<std::vector<std::string>>& listHeader() const { return listHeader_; }
    const std::optional<std::vector<std::string>>& listPrice() const { return listPrice_; }
    const std::optional<std::vector<std::string>>& listSortBy() const { return listSortBy_; }
    // The flag cells; null before the first configuration.
    bool* sort() { return cell(&FlagCells::sort); }
    bool* ascending() { return cell(&FlagCells::ascending); }
    bool* checkBox() { return cell(&FlagCells::checkBox); }
    bool* incKey() { return cell(&FlagCells::incKey); }
    float* numOfLines() { return cell(&FlagCells::numOfLines); }
    float* numOfCol() { return cell(&FlagCells::numOfCol); }
    const bool* sort() const { return cell(&FlagCells::sort); }
    const bool* ascending() const { return cell(&FlagCells::ascending); }
    const bool* checkBox() const { return cell(&FlagCells::checkBox); }
    const bool* incKey() const { return cell(&FlagCells::incKey); }
    const float* numOfLines() const { return cell(&FlagCells::numOfLines); }
    const float* numOfCol() const { return cell(&FlagCells::numOfCol); }
    const std::optional<std::string>& currentSelection() const { return currentSelection_; }

    // ---- Configuration -----------------------------------------------------------
    // Resets every key list, flag cell and the selection to the grid's
    // defaults, then calls cfg, header, body, price, sort, ascending,
    // cellHeight, numOfCol, checkBox, sortBy, select and inckey once each, in
    // that order. Does not reload: call refresh().
    void cfg(const KeysCB& cfg, const KeysCB& header, const KeysCB& body, const KeysCB& price,
             const FlagCB& sort, const KeysCB& sortBy, const FlagCB& ascending, const SizeCB& cellHeight,
             const SizeCB& numOfCol, const FlagCB& checkBox, const SelectionCB& select, const FlagCB& inckey);
    void cfg(const ListConfig& config);

    // ---- Registration --------------------------------------------------------------
    // Stores select and populate under the name (refresh is not kept); no
    // name empties both registries.
    void watchTbl(std::optional<std::string_view> name, SelectCB selected, PopulateCB populate,
                  RefreshCB refresh);
    void watchTranslate(TranslateCB translate);

    // ---- Rows ------------------------------------------------------------------------
    void adData(Value row);
    void clear();
    // Sorts as UITbl does, then reloads the grid.
    void refresh();
    bool hasFld(const ListPtr& list, std::string_view key) const;
    void sortArray(const ListPtr& list, std::string_view key, bool ascend) const;

    // ---- Appearance --------------------------------------------------------------------
    // Also gives the grid the colour lightened by 0.1 (darkerBy -0.1) and reloads.
    void setBackgroundColor(const gfx::Color& color) override;
    // The height of "Text" in the system font at the system font size.
    double textHeight() const;
    // Shows the check mark on the displayed tiles of that item, hides it on the others (-1: all).
    void iterateThroughAllCells(ui::CollectionView& collectionView, long index);
    static double bottomOf(const ui::View& view);
    double heightOf(const ui::View& view) const;
    static void addBorder(ui::View& view, double width);

    // ---- Filling a tile --------------------------------------------------------------------
    void updateUI(const NodePtr& row, const std::shared_ptr<UICTblCell>& cell);

    // The tile size for a grid `width` wide with `columns` and `lines` (the
    // whole parts are used), spacing included; exposed for tests and layout.
    struct Tiles {
        gfx::Size item;
        double spacing = 0;
    };
    static Tiles tilesFor(double width, float columns, float lines, double textHeight);

    // ---- Grid data source and delegate ---------------------------------------------------
    int numberOfItems(ui::CollectionView&, int section) override;
    std::shared_ptr<ui::CollectionViewCell> cellForItem(ui::CollectionView&,
                                                        ui::IndexPath indexPath) override;
    void didSelectItem(ui::CollectionView&, ui::IndexPath indexPath) override;

  protected:
    void layoutSubviews() override;

  private:
    NodePtr rowAt(long index) const;
    void callSelect(const Value& key, const NodePtr& row);
    bool flag(bool FlagCells::*field) const { return flags_ && flags_.get()->*field; }
    template <class T> T* cell(T FlagCells::*field) { return flags_ ? &(flags_.get()->*field) : nullptr; }
    template <class T> const T* cell(T FlagCells::*field) const {
        return flags_ ? &(flags_.get()->*field) : nullptr;
    }

    std::shared_ptr<ui::CollectionView> tbl_;
    CallbackRegistry<SelectCB> cbItemSelect_;
    CallbackRegistry<PopulateCB> cbItemPopulate_;
    TranslateCB translateCB_;
    ListPtr myData_;
    std::optional<std::vector<std::string>> listImage_;
    std::optional<std::vector<std::string>> listBody_;
    std::optional<std::vector<std::string>> listHeader_;
    std::optional<std::vector<std::string>> listPrice_;
    std::optional<std::vector<std::string>> listSortBy_;
    std::unique_ptr<FlagCells> flags_;
    std::optional<std::string> currentSelection_;
    // The tiles the collection view was last given.
    std::optional<Tiles> laidOut_;
};

} // namespace morvane
