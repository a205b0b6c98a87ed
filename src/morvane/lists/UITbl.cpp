#include <morvane/lists/UITbl.h>

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

constexpr std::string_view kMarker = "<en>";

bool hasMarker(std::string_view text) {
    return text.find(kMarker) != std::string_view::npos;
}

// How the log shows a value: texts and numbers as they read, trees as JSON.
std::string describe(const Value& value) {
    if (value.isAbsent()) return "(null)";
    if (value.isNode() || value.isList()) return json::write(value);
    if (value.isText()) return value.textOr();
    return value.toText();
}

// Holds the list for the length of a dispatch to the owner's callbacks. A
// callback may drop the last reference to the list, but the table and its
// touch handling still run after the callbacks return; so the last reference
// is handed to the main queue and dropped once the current event is over.
class DispatchGuard {
  public:
    explicit DispatchGuard(std::shared_ptr<ui::View> list) : list_(std::move(list)) {}
    ~DispatchGuard() {
        if (list_ && list_.use_count() == 1) sys::Queue::main().async([list = std::move(list_)] {});
    }
    DispatchGuard(const DispatchGuard&) = delete;
    DispatchGuard& operator=(const DispatchGuard&) = delete;

  private:
    std::shared_ptr<ui::View> list_;
};

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
    MORVANE_ASSERT_MAIN_THREAD();
    (void)numOfCol; // the grid's; a list has one column
    DispatchGuard guard(weak_from_this().lock());

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

    // The order is part of the contract: owners rely on it.
    if (cfg) cfg(*listImage_);
    if (header) header(*listHeader_);
    if (body) body(*listBody_);
    if (price) price(*listPrice_);
    if (sort) sort(flags_->sort);
    if (ascending) ascending(flags_->ascending);
    if (cellHeight) cellHeight(flags_->numOfLines);
    if (checkBox) checkBox(flags_->checkBox);
    if (sortBy) sortBy(*listSortBy_);
    if (select) select(*currentSelection_);
    if (inckey) inckey(flags_->incKey);
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
    if (!flags_) {
        // Never configured: the rows' own keys order them.
        sortArray(myData_, "key", true);
    } else if (flags_->sort) {
        std::string_view key = "key";
        if (listSortBy_) {
            for (const std::string& candidate : *listSortBy_) {
                if (hasFld(myData_, candidate)) {
                    key = candidate;
                    break;
                }
            }
        }
        sortArray(myData_, key, flags_->ascending);
    }
    tbl_->reloadData();
}

bool UITbl::hasFld(const ListPtr& list, std::string_view key) const {
    if (!list) return true;
    for (const Value& element : *list) {
        const NodePtr& node = element.node();
        if (!node || !node->valKey(key)) return false;
    }
    return true;
}

void UITbl::sortArray(const ListPtr& list, std::string_view key, bool ascend) const {
    if (!list || list->size() < 2 || list->isReadOnly()) return;
    const List& items = *list;
    // The values never change while the rows move, so each row is searched once.
    std::vector<Value> found(items.size());
    detail::SortKeys keys(items.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        const NodePtr& node = items[i].node();
        if (!node || node->isReadOnly()) continue;
        found[i] = node->valLikeKey(key);
        if (const std::string* text = found[i].text()) keys[i] = *text;
    }
    const std::vector<std::size_t> order = detail::rowSortOrder(keys, ascend);
    std::vector<Value> sorted;
    sorted.reserve(items.size());
    for (std::size_t index : order)
        sorted.push_back(items[index]);
    list->clear();
    for (Value& row : sorted)
        list->push(std::move(row));
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
    DispatchGuard guard(weak_from_this().lock());
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
    DispatchGuard guard(weak_from_this().lock());
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
    DispatchGuard guard(weak_from_this().lock());
    const TranslateCB translate = translateCB_;
    std::weak_ptr<UITblCell> weakCell = cell;

    // Picture: the first image key with a value names it; "imaged" dates it.
    cell->addImage(std::nullopt, std::nullopt);
    if (listImage_) {
        for (const std::string& key : *listImage_) {
            const Value name = row->valLikeKey(key);
            if (!name) continue;
            const Value stamp = row->valKey("imaged");
            cell->addImage(name.textOr(),
                           stamp.text() ? std::optional<std::string_view>(*stamp.text()) : std::nullopt);
            break;
        }
    }

    // Header: the first header key with a value; a marked text is translated
    // later, on the main queue, into whatever row the cell shows by then.
    cell->addHeader("");
    if (listHeader_) {
        for (const std::string& key : *listHeader_) {
            const Value value = row->valLikeKey(key);
            if (!value) continue;
            const std::string shown = cell->addHeader(value.textOr());
            if (hasMarker(shown) && translate) {
                translate(shown, [weakCell](const std::string& translated) {
                    sys::Queue::main().async([weakCell, translated] {
                        if (auto target = weakCell.lock()) target->addHeader(translated);
                    });
                });
            }
            break;
        }
    }

    // Body: one line per body key with a value. Marked lines go to the
    // translator and arrive after the lines shown at once.
    cell->addBody(std::nullopt);
    if (listBody_ && !listBody_->empty()) {
        const bool withKey = flag(&FlagCells::incKey);
        for (const std::string& key : *listBody_) {
            const Value value = row->valLikeKey(key);
            if (!value) continue;
            std::string line = withKey ? key + ": " + value.textOr() : value.textOr();
            if (hasMarker(line) && translate) {
                translate(line, [weakCell](const std::string& translated) {
                    sys::Queue::main().async([weakCell, translated] {
                        if (auto target = weakCell.lock()) target->addBody(translated);
                    });
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
        for (const std::string& key : *listPrice_) {
            const Value value = row->valLikeKey(key);
            if (!value) continue;
            cell->addPrice(value.textOr());
            break;
        }
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
    DispatchGuard guard(weak_from_this().lock());
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
    DispatchGuard guard(weak_from_this().lock());
    const NodePtr row = rowAt(indexPath.row);
    if (!row || !row->valKey("key")) return;
    const Value key = row->get("key");
    callSelect(key, row);
    if (flag(&FlagCells::checkBox)) {
        currentSelection_ = key.toText();
        refresh();
    }
}

void UITbl::callSelect(const Value& key, const NodePtr& row) {
    DispatchGuard guard(weak_from_this().lock());
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
    DispatchGuard guard(weak_from_this().lock());
    const NodePtr row = rowAt(index);
    if (swipe) {
        SwipeCB call = swipe;
        call(index, row);
    }
    // The same row as the swipe callback saw, even if that callback moved it.
    if (row) callSelect(row->get("key"), row);
}

} // namespace morvane
