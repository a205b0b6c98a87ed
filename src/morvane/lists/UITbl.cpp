#include <morvane/lists/UITbl.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/components/KeyLookup.h>
#include <morvane/components/MainQueue.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/lists/UITblCell.h>
#include <morvane/lists/detail/RowSort.h>
#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/util/Colors.h>

namespace morvane {

namespace {

// How the log shows a value: texts and numbers as they read, trees as JSON.
std::string describe(const Value& value) {
    if (value.isAbsent()) return "(null)";
    if (value.isNode() || value.isList()) return json::write(value);
    if (value.isText()) return value.textOr();
    return value.toText();
}

} // namespace

UITbl::UITbl() : UITbl(gfx::Rect{}) {}

UITbl::UITbl(const gfx::Rect& frame) : ui::View(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    cbList_ = List::make();
    cbListLeft_ = List::make();
    myData_ = List::make();

    refreshControl_ = std::make_shared<ui::RefreshControl>();
    refreshControl_->setTintColor(gfx::Color::whiteColor());
    // The action is removed in the destructor, so `this` outlives it.
    refreshControl_->addAction(ui::ControlEvent::ValueChanged, [this](ui::Control&) { refreshTable(); });

    tbl_ = std::make_shared<ui::TableView>(gfx::Rect{}, ui::TableView::Style::Grouped);
    tbl_->registerCell<UITblCell>(kCellIdentifier);
    tbl_->setSeparatorStyle(ui::TableView::SeparatorStyle::None);
    tbl_->setDelegate(this);
    tbl_->setDataSource(this);
    tbl_->setRefreshControl(refreshControl_);
    addSubview(tbl_);

    // The base setter: the table keeps its own colour until the owner picks one.
    ui::View::setBackgroundColor(gfx::Color::clearColor());
}

UITbl::~UITbl() {
    // The table and the control may outlive the list (anyone can hold them).
    refreshControl_->removeActions(ui::ControlEvent::ValueChanged);
    tbl_->setDataSource(nullptr);
    tbl_->setDelegate(nullptr);
}

// ---- Configuration ------------------------------------------------------------

void UITbl::cfg(const KeysCB& cfg, const KeysCB& header, const KeysCB& body, const KeysCB& price,
                const FlagCB& sort, const KeysCB& sortBy, const FlagCB& ascending, const SizeCB& cellHeight,
                const SizeCB& numOfCol, const FlagCB& checkBox, const SelectionCB& select,
                const FlagCB& inckey) {
    this->cfg(ListConfig{cfg, header, body, price, sort, sortBy, ascending, cellHeight, numOfCol, checkBox,
                         select, inckey});
}

void UITbl::cfg(const ListConfig& config) {
    MORVANE_ASSERT_MAIN_THREAD();
    DispatchGuard guard(*this);
    // Copies: a configuration callback may configure the list again.
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

    // The order is part of the contract: owners rely on it. numOfCol is the
    // grid's; a list has one column. Each callback edits the member itself,
    // so one that configures the list again sees the same cells.
    if (call.image) call.image(*listImage_);
    if (call.header) call.header(*listHeader_);
    if (call.body) call.body(*listBody_);
    if (call.price) call.price(*listPrice_);
    if (call.sort) call.sort(flags_->sort);
    if (call.ascending) call.ascending(flags_->ascending);
    if (call.cellHeight) call.cellHeight(flags_->numOfLines);
    if (call.checkBox) call.checkBox(flags_->checkBox);
    if (call.sortBy) call.sortBy(*listSortBy_);
    if (call.select) call.select(*currentSelection_);
    if (call.incKey) call.incKey(flags_->incKey);
}

// ---- Registration -------------------------------------------------------------

void UITbl::watchTbl(std::optional<std::string_view> name, SelectCB selected, PopulateCB populate,
                     RefreshCB refresh) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!name) {
        cbItemSelect_.clear();
        cbItemPopulate_.clear();
        cbRefresh_.clear();
        return;
    }
    cbItemSelect_.set(*name, std::move(selected));
    cbItemPopulate_.set(*name, std::move(populate));
    cbRefresh_.set(*name, std::move(refresh));
}

void UITbl::watchSwipe(std::string title, const gfx::Color& color, SwipeCB swipe) {
    appendSwipe(cbList_, std::move(title), color, std::move(swipe));
}

void UITbl::watchSwipeLeft(std::string title, const gfx::Color& color, SwipeCB swipe) {
    appendSwipe(cbListLeft_, std::move(title), color, std::move(swipe));
}

void UITbl::appendSwipe(const ListPtr& entries, std::string title, const gfx::Color& color, SwipeCB swipe) {
    MORVANE_ASSERT_MAIN_THREAD();
    entries->push(Node::make({{"key", Value(std::move(title))},
                              {"color", Value::object(color)},
                              {"callback", Value::object(std::move(swipe))}}));
}

void UITbl::watchTranslate(TranslateCB translate) {
    MORVANE_ASSERT_MAIN_THREAD();
    translateCB_ = std::move(translate);
}

// ---- Rows ---------------------------------------------------------------------

void UITbl::adData(Value row) {
    MORVANE_ASSERT_MAIN_THREAD();
    myData_->push(std::move(row));
}

void UITbl::clear() {
    MORVANE_ASSERT_MAIN_THREAD();
    myData_->clear();
}

void UITbl::refresh() {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!flags_)
        detail::sortRowsForRefresh(myData_, std::nullopt, listSortBy_);
    else if (flags_->sort)
        detail::sortRowsForRefresh(myData_, flags_->ascending, listSortBy_);
    tbl_->reloadData();
}

bool UITbl::hasFld(const ListPtr& list, std::string_view key) const {
    return detail::rowsHaveKey(list, key);
}

void UITbl::sortArray(const ListPtr& list, std::string_view key, bool ascend) const {
    detail::sortRows(list, key, ascend);
}

void UITbl::swap(long i, long j) {
    MORVANE_ASSERT_MAIN_THREAD();
    const long count = static_cast<long>(myData_->size());
    if (i < 0 || j < 0 || i >= count || j >= count) return;
    auto copyOf = [](const Value& row) { return row.node() ? Value(row.node()->shallowCopy()) : row; };
    Value atI = copyOf(myData_->at(std::size_t(j)));
    Value atJ = copyOf(myData_->at(std::size_t(i)));
    myData_->replace(std::size_t(i), std::move(atI));
    myData_->replace(std::size_t(j), std::move(atJ));
}

void UITbl::grab(long, const DataCB& callback) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!callback) return;
    DispatchGuard guard(*this);
    DataCB call = callback;
    ListPtr rows = myData_;
    call(rows);
}

void UITbl::moveUp(long index, const DataCB& callback) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (index < 1 || index >= static_cast<long>(myData_->size())) return;
    swap(index, index - 1);
    grab(index, callback);
}

void UITbl::moveDown(long index, const DataCB& callback) {
    MORVANE_ASSERT_MAIN_THREAD();
    const long count = static_cast<long>(myData_->size());
    if (count == 0 || index < 0 || index >= count - 1) return;
    swap(index, index + 1);
    grab(index, callback);
}

NodePtr UITbl::rowAt(long index) const {
    if (index < 0 || index >= static_cast<long>(myData_->size())) return nullptr;
    return myData_->at(std::size_t(index)).node();
}

// ---- Pull to refresh ----------------------------------------------------------

void UITbl::refreshTable() {
    handleRefresh(refreshControl_.get());
}

void UITbl::handleRefresh(ui::RefreshControl* control) {
    MORVANE_ASSERT_MAIN_THREAD();
    sys::Log::platform("refreshControl");
    if (control) control->endRefreshing();
    callRefresh();
}

void UITbl::callRefresh() {
    DispatchGuard guard(*this);
    for (const RefreshCB& callback : cbRefresh_.snapshot())
        if (callback) callback("", Node::make());
}

// ---- Appearance ---------------------------------------------------------------

void UITbl::setBackgroundColor(const gfx::Color& color) {
    MORVANE_ASSERT_MAIN_THREAD();
    ui::View::setBackgroundColor(color);
    tbl_->setBackgroundColor(Colors::darkerBy(color, -0.1));
    tbl_->reloadData();
}

void UITbl::layoutSubviews() {
    tbl_->setFrame({0, 0, bounds().width, bounds().height});
}

double UITbl::textHeight() const {
    const double size = gfx::Font::systemFontSize();
    if (size != textHeightSize_) {
        textHeight_ = gfx::TextMetrics::size("Text", gfx::Font::systemFont(size)).height;
        textHeightSize_ = size;
    }
    return textHeight_;
}

// ---- Filling a cell -----------------------------------------------------------

void UITbl::updateUI(const NodePtr& row, const std::shared_ptr<UITblCell>& cell) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!row || !cell) return;
    DispatchGuard guard(*this);
    const TranslateCB translate = translateCB_;
    std::weak_ptr<UITblCell> weakCell = cell;

    // Picture: the first image key with a value names it; "imaged" dates it.
    cell->addImage(std::nullopt, std::nullopt);
    if (listImage_) {
        if (const KeyValue name = firstValue(*row, *listImage_)) {
            const Value stamp = row->valKey("imaged");
            cell->addImage(name.value.textOr(),
                           stamp.text() ? std::optional<std::string_view>(*stamp.text()) : std::nullopt);
        }
    }

    // Header: the first header key with a value; a marked text is translated
    // later, on the main queue, into whatever row the cell shows by then.
    cell->addHeader("");
    if (listHeader_) {
        if (const KeyValue header = firstValue(*row, *listHeader_)) {
            const std::string shown = cell->addHeader(header.value.textOr());
            if (isTranslatable(shown) && translate) {
                translate(shown, [weakCell](const std::string& translated) {
                    postToMain(weakCell, [translated](UITblCell& target) { target.addHeader(translated); });
                });
            }
        }
    }

    // Body: one line per body key with a value. Marked lines go to the
    // translator and arrive after the lines shown at once.
    cell->addBody(std::nullopt);
    if (listBody_ && !listBody_->empty()) {
        const bool withKey = flag(&FlagCells::incKey);
        // A copy: the translation hook is the owner's code and may configure the list again.
        const std::vector<std::string> bodyKeys = *listBody_;
        for (const std::string& key : bodyKeys) {
            const Value value = row->valLikeKey(key);
            if (!value) continue;
            std::string line = withKey ? key + ": " + value.textOr() : value.textOr();
            if (isTranslatable(line) && translate) {
                translate(line, [weakCell](const std::string& translated) {
                    postToMain(weakCell, [translated](UITblCell& target) { target.addBody(translated); });
                });
            } else {
                cell->addBody(line);
            }
        }
    } else {
        // Nothing chosen: the row lists its own keys.
        std::string line;
        for (const auto& [key, value] : *row) {
            line += key;
            line += ", ";
        }
        cell->addBody(line);
    }

    // Price: the first price key with a value.
    cell->addPrice(std::nullopt);
    if (listPrice_) {
        if (const KeyValue price = firstValue(*row, *listPrice_)) cell->addPrice(price.value.textOr());
    }
}

void UITbl::observeValueForKeyPath(std::string_view keyPath, const Value&, const NodePtr& change) {
    if (keyPath != "name") return;
    const Value oldValue = change ? change->get("old") : Value();
    const Value newValue = change ? change->get("new") : Value();
    sys::Log::platform("Name changed from " + describe(oldValue) + " to " + describe(newValue));
}

void UITbl::contextDidSave(const Value&) {}

// ---- Table data source and delegate -------------------------------------------

int UITbl::numberOfSections(ui::TableView&) {
    return 1;
}

int UITbl::numberOfRows(ui::TableView&, int) {
    return static_cast<int>(myData_->size());
}

std::shared_ptr<ui::TableViewCell> UITbl::cellForRow(ui::TableView& table, ui::IndexPath indexPath) {
    DispatchGuard guard(*this);
    auto cell = std::dynamic_pointer_cast<UITblCell>(table.dequeueReusableCell(kCellIdentifier, indexPath));
    if (!cell) cell = std::make_shared<UITblCell>(ui::TableViewCell::Style::Default, kCellIdentifier);

    const NodePtr row = rowAt(indexPath.row);
    if (!row || row->isReadOnly()) {
        // Not filled from the row; but a reused cell must not keep showing
        // the row it had before.
        cell->addImage(std::nullopt, std::nullopt);
        cell->addHeader("");
        cell->addBody(std::nullopt);
        cell->addPrice(std::nullopt);
        cell->showCheckLabel(false);
        return cell;
    }

    // Populate callbacks may still change the row before it is drawn.
    if (row->valKey("key")) {
        const Value key = row->get("key");
        for (const PopulateCB& populate : cbItemPopulate_.snapshot())
            if (populate) populate(key, row);
    }

    cell->showCheckLabel(false);
    if (flag(&FlagCells::checkBox) && currentSelection_ && !currentSelection_->empty()) {
        const std::string key = row->get("key").toText();
        if (key.find(*currentSelection_) != std::string::npos) cell->showCheckLabel(true);
    }
    updateUI(row, cell);
    cell->setBackgroundColor(backgroundColor());
    return cell;
}

bool UITbl::canEditRow(ui::TableView&, ui::IndexPath) {
    return true;
}

void UITbl::commitEditing(ui::TableView&, ui::TableViewCellEditingStyle, ui::IndexPath) {}

std::optional<double> UITbl::heightForRow(ui::TableView&, ui::IndexPath) {
    return textHeight() * (flags_ ? double(flags_->numOfLines) : 4.0);
}

std::optional<double> UITbl::heightForHeader(ui::TableView&, int) {
    return 0.1 * textHeight();
}

std::shared_ptr<ui::View> UITbl::viewForHeader(ui::TableView&, int) {
    return std::make_shared<ui::View>();
}

void UITbl::didSelectRow(ui::TableView&, ui::IndexPath indexPath) {
    DispatchGuard guard(*this);
    const NodePtr row = rowAt(indexPath.row);
    if (!row) return;
    // Select callbacks get what the search finds for "key" (it may sit in a
    // nested Node); the check mark follows the row's own top-level "key".
    const Value found = row->valKey("key");
    if (!found) return;
    callSelect(found, row);
    if (flag(&FlagCells::checkBox)) {
        currentSelection_ = row->get("key").toText();
        refresh();
    }
}

void UITbl::callSelect(const Value& key, const NodePtr& row) {
    DispatchGuard guard(*this);
    for (const SelectCB& select : cbItemSelect_.snapshot())
        if (select) select(key, row);
}

std::shared_ptr<ui::SwipeActionsConfiguration> UITbl::leadingSwipeActions(ui::TableView&,
                                                                          ui::IndexPath indexPath) {
    return swipeActions(cbListLeft_, indexPath.row);
}

std::shared_ptr<ui::SwipeActionsConfiguration> UITbl::trailingSwipeActions(ui::TableView&,
                                                                           ui::IndexPath indexPath) {
    return swipeActions(cbList_, indexPath.row);
}

std::shared_ptr<ui::SwipeActionsConfiguration> UITbl::swipeActions(const ListPtr& entries, long index) {
    std::vector<std::shared_ptr<ui::ContextualAction>> actions;
    std::weak_ptr<ui::View> weakSelf = weak_from_this();
    for (const Value& element : *entries) {
        const NodePtr& entry = element.node();
        if (!entry) continue;
        const SwipeCB* stored = entry->get("callback").as<SwipeCB>();
        SwipeCB swipe = stored ? *stored : SwipeCB();
        auto action =
            ui::ContextualAction::make(ui::ContextualAction::Style::Normal, entry->get("key").textOr(),
                                       [weakSelf, swipe, index](ui::ContextualAction&, ui::View&,
                                                                ui::ContextualAction::Completion done) {
                                           if (auto self = std::static_pointer_cast<UITbl>(weakSelf.lock()))
                                               self->fireSwipe(swipe, index);
                                           if (done) done(false);
                                       });
        if (const gfx::Color* color = entry->get("color").as<gfx::Color>())
            action->setBackgroundColor(*color);
        actions.push_back(std::move(action));
    }
    return ui::SwipeActionsConfiguration::make(std::move(actions));
}

void UITbl::fireSwipe(const SwipeCB& swipe, long index) {
    DispatchGuard guard(*this);
    const NodePtr row = rowAt(index);
    if (swipe) {
        SwipeCB call = swipe;
        call(index, row);
    }
    // The same row as the swipe callback saw, even if that callback moved it.
    if (row) callSelect(row->get("key"), row);
}

} // namespace morvane
