#include <morvane/lists/UICTbl.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/components/KeyLookup.h>
#include <morvane/components/MainQueue.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/lists/UICTblCell.h>
#include <morvane/lists/detail/RowSort.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/util/Colors.h>

#include <cmath>

namespace morvane {

UICTbl::UICTbl() : UICTbl(gfx::Rect{}) {}

UICTbl::UICTbl(const gfx::Rect& frame) : ui::View(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    myData_ = List::make();
    tbl_ = std::make_shared<ui::CollectionView>(gfx::Rect{}, ui::FlowLayout{});
    tbl_->setDataSource(this);
    tbl_->setDelegate(this);
    tbl_->registerCell<UICTblCell>(kCellIdentifier);
    addSubview(tbl_);
}

UICTbl::~UICTbl() {
    // The collection view may outlive the grid (anyone can hold it).
    tbl_->setDataSource(nullptr);
    tbl_->setDelegate(nullptr);
}

// ---- Configuration ------------------------------------------------------------

void UICTbl::cfg(const KeysCB& cfg, const KeysCB& header, const KeysCB& body, const KeysCB& price,
                 const FlagCB& sort, const KeysCB& sortBy, const FlagCB& ascending, const SizeCB& cellHeight,
                 const SizeCB& numOfCol, const FlagCB& checkBox, const SelectionCB& select,
                 const FlagCB& inckey) {
    this->cfg(ListConfig{cfg, header, body, price, sort, sortBy, ascending, cellHeight, numOfCol, checkBox,
                         select, inckey});
}

void UICTbl::cfg(const ListConfig& config) {
    MORVANE_ASSERT_MAIN_THREAD();
    DispatchGuard guard(*this);
    const ListConfig call = config;
    listImage_ = std::vector<std::string>{"image", "photo"};
    listHeader_ = std::vector<std::string>{"key", "name"};
    listBody_ = std::vector<std::string>{};
    listPrice_ = std::vector<std::string>{};
    listSortBy_ = std::vector<std::string>{};
    if (flags_)
        *flags_ = FlagCells{};
    else
        flags_ = std::make_unique<FlagCells>();
    currentSelection_ = std::string();

    // The grid's own order: the column count comes right after the line count.
    if (call.image) call.image(*listImage_);
    if (call.header) call.header(*listHeader_);
    if (call.body) call.body(*listBody_);
    if (call.price) call.price(*listPrice_);
    if (call.sort) call.sort(flags_->sort);
    if (call.ascending) call.ascending(flags_->ascending);
    if (call.cellHeight) call.cellHeight(flags_->numOfLines);
    if (call.numOfCol) call.numOfCol(flags_->numOfCol);
    if (call.checkBox) call.checkBox(flags_->checkBox);
    if (call.sortBy) call.sortBy(*listSortBy_);
    if (call.select) call.select(*currentSelection_);
    if (call.incKey) call.incKey(flags_->incKey);
    setNeedsLayout();
}

// ---- Registration -------------------------------------------------------------

void UICTbl::watchTbl(std::optional<std::string_view> name, SelectCB selected, PopulateCB populate,
                      RefreshCB) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!name) {
        cbItemSelect_.clear();
        cbItemPopulate_.clear();
        return;
    }
    cbItemSelect_.set(*name, std::move(selected));
    cbItemPopulate_.set(*name, std::move(populate));
}

void UICTbl::watchTranslate(TranslateCB translate) {
    MORVANE_ASSERT_MAIN_THREAD();
    translateCB_ = std::move(translate);
}

// ---- Rows ---------------------------------------------------------------------

void UICTbl::adData(Value row) {
    MORVANE_ASSERT_MAIN_THREAD();
    myData_->push(std::move(row));
}

void UICTbl::clear() {
    MORVANE_ASSERT_MAIN_THREAD();
    myData_->clear();
}

void UICTbl::refresh() {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!flags_)
        detail::sortRowsForRefresh(myData_, std::nullopt, listSortBy_);
    else if (flags_->sort)
        detail::sortRowsForRefresh(myData_, flags_->ascending, listSortBy_);
    tbl_->reloadData();
}

bool UICTbl::hasFld(const ListPtr& list, std::string_view key) const {
    return detail::rowsHaveKey(list, key);
}

void UICTbl::sortArray(const ListPtr& list, std::string_view key, bool ascend) const {
    detail::sortRows(list, key, ascend);
}

NodePtr UICTbl::rowAt(long index) const {
    if (index < 0 || index >= static_cast<long>(myData_->size())) return nullptr;
    return myData_->at(std::size_t(index)).node();
}

// ---- Appearance ---------------------------------------------------------------

void UICTbl::setBackgroundColor(const gfx::Color& color) {
    MORVANE_ASSERT_MAIN_THREAD();
    ui::View::setBackgroundColor(color);
    tbl_->setBackgroundColor(Colors::darkerBy(color, -0.1));
    tbl_->reloadData();
}

double UICTbl::textHeight() const {
    return gfx::TextMetrics::size("Text", gfx::Font::systemFont(gfx::Font::systemFontSize())).height;
}

UICTbl::Tiles UICTbl::tilesFor(double width, float columns, float lines, double unit) {
    const double c = std::max(1.0, std::trunc(double(columns)));
    const double l = std::trunc(double(lines));
    const bool one = c < 2;
    const double margin = one ? 0.02 : 0.06;
    const double share = one ? 0.98 : 0.94;
    const double w = width * share / c;
    const double spacing = width * margin / (c + 1);
    const double h = one ? l * unit : 1.3 * w;
    return {{std::floor(w), std::floor(h)}, spacing};
}

void UICTbl::layoutSubviews() {
    const double W = bounds().width;
    tbl_->setFrame({0, 0, W, bounds().height});
    const Tiles tiles =
        tilesFor(W, flags_ ? flags_->numOfCol : 1.0f, flags_ ? flags_->numOfLines : 5.0f, textHeight());
    // Measuring every tile again is only needed when their size changed.
    if (laidOut_ && laidOut_->item == tiles.item && laidOut_->spacing == tiles.spacing) return;
    laidOut_ = tiles;
    ui::FlowLayout& layout = tbl_->layout();
    layout.setItemSize(tiles.item);
    layout.setMinimumInteritemSpacing(tiles.spacing);
    layout.setMinimumLineSpacing(tiles.spacing);
    layout.setSectionInset({tiles.spacing, tiles.spacing, tiles.spacing, tiles.spacing});
    tbl_->invalidateLayout();
}

void UICTbl::iterateThroughAllCells(ui::CollectionView& collectionView, long index) {
    for (const auto& cell : collectionView.visibleCells()) {
        auto tile = std::dynamic_pointer_cast<UICTblCell>(cell);
        if (!tile) continue;
        const auto path = collectionView.indexPathForCell(*tile);
        tile->showCheckLabel(index >= 0 && path && path->item() == index);
    }
}

double UICTbl::bottomOf(const ui::View& view) {
    return UICTblCell::bottomOf(view, 0);
}

double UICTbl::heightOf(const ui::View& view) const {
    return bounds().height - bottomOf(view);
}

void UICTbl::addBorder(ui::View& view, double width) {
    UICTblCell::addBorder(view, width);
}

// ---- Filling a tile -----------------------------------------------------------

void UICTbl::updateUI(const NodePtr& row, const std::shared_ptr<UICTblCell>& cell) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!row || !cell) return;
    DispatchGuard guard(*this);
    const TranslateCB translate = translateCB_;
    std::weak_ptr<UICTblCell> weakCell = cell;

    cell->addImage(std::nullopt, std::nullopt);
    if (listImage_) {
        if (const KeyValue name = firstValue(*row, *listImage_)) {
            const Value stamp = row->valKey("imaged");
            cell->addImage(name.value.textOr(),
                           stamp.text() ? std::optional<std::string_view>(*stamp.text()) : std::nullopt);
        }
    }

    // The header is not cleared: an item without one keeps the tile's last.
    if (listHeader_) {
        if (const KeyValue header = firstValue(*row, *listHeader_)) {
            const std::string shown = cell->addHeader(header.value.textOr());
            if (isTranslatable(shown) && translate) {
                translate(shown, [weakCell](const std::string& translated) {
                    postToMain(weakCell, [translated](UICTblCell& target) { target.addHeader(translated); });
                });
            }
        }
    }

    cell->addBody(std::nullopt);
    if (listBody_ && !listBody_->empty()) {
        const bool withKey = flag(&FlagCells::incKey);
        const std::vector<std::string> bodyKeys = *listBody_;
        for (const std::string& key : bodyKeys) {
            std::string text;
            const bool isTemplate = key.find('$') != std::string::npos;
            if (isTemplate) {
                text = row->gatherTxt(key, "", "\n");
            } else if (const Value value = row->valLikeKey(key)) {
                text = value.textOr();
            } else {
                continue;
            }
            if (isTemplate && text.empty()) continue;
            std::string line = withKey ? key + ": " + text : text;
            if (isTranslatable(line) && translate) {
                translate(line, [weakCell](const std::string& translated) {
                    postToMain(weakCell, [translated](UICTblCell& target) { target.addBody(translated); });
                });
            } else {
                cell->addBody(line);
            }
            // A template that yields text is the whole body.
            if (isTemplate) break;
        }
    } else {
        std::string line;
        for (const auto& [key, value] : *row) {
            line += key;
            line += ", ";
        }
        cell->addBody(line);
    }

    cell->addPrice(std::nullopt);
    if (listPrice_) {
        if (const KeyValue price = firstValue(*row, *listPrice_)) cell->addPrice(price.value.textOr());
    }
}

// ---- Grid data source and delegate --------------------------------------------

int UICTbl::numberOfItems(ui::CollectionView&, int) {
    return static_cast<int>(myData_->size());
}

std::shared_ptr<ui::CollectionViewCell> UICTbl::cellForItem(ui::CollectionView& view,
                                                            ui::IndexPath indexPath) {
    DispatchGuard guard(*this);
    auto cell = std::dynamic_pointer_cast<UICTblCell>(view.dequeueReusableCell(kCellIdentifier, indexPath));
    if (!cell) cell = std::make_shared<UICTblCell>(kCellIdentifier);
    const NodePtr row = rowAt(indexPath.item());
    if (!row || row->isReadOnly()) return cell;

    if (row->has("key")) {
        const Value key = row->get("key");
        for (const PopulateCB& populate : cbItemPopulate_.snapshot())
            if (populate) populate(key, row);
        cell->showCheckLabel(false);
        if (flag(&FlagCells::checkBox) && currentSelection_ && !currentSelection_->empty() &&
            row->get("key").toText().find(*currentSelection_) != std::string::npos)
            cell->showCheckLabel(true);
    }
    updateUI(row, cell);
    cell->setBackgroundColor(backgroundColor());
    return cell;
}

void UICTbl::didSelectItem(ui::CollectionView&, ui::IndexPath indexPath) {
    DispatchGuard guard(*this);
    const NodePtr row = rowAt(indexPath.item());
    if (!row || !row->has("key")) return;
    const Value key = row->get("key");
    callSelect(key, row);
    if (translateCB_) {
        const TranslateCB translate = translateCB_;
        translate(key.toText(), [](const std::string&) {});
    }
    if (flag(&FlagCells::checkBox)) {
        currentSelection_ = key.toText();
        refresh();
    }
}

void UICTbl::callSelect(const Value& key, const NodePtr& row) {
    DispatchGuard guard(*this);
    for (const SelectCB& select : cbItemSelect_.snapshot())
        if (select) select(key, row);
}

} // namespace morvane
