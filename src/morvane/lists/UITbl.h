#pragma once
// UITbl: the kit's list. One grouped table whose rows are the Nodes of
// myData(); per row it picks the picture, header, body lines and price from
// configured candidate keys, draws the row with a UITblCell, keeps the rows
// sorted, marks the current selection with a check mark, offers swipe
// actions on both sides and pull to refresh, and hands texts marked "<en>"
// to a translation hook.
//
//   auto list = std::make_shared<UITbl>(gfx::Rect{0, 0, 390, 700});
//   list->cfg({.header = [](auto& keys) { keys = {"name"}; },
//              .body = [](auto& keys) { keys = {"phone", "time"}; },
//              .price = [](auto& keys) { keys = {"price"}; },
//              .sortBy = [](auto& keys) { keys = {"name"}; },
//              .ascending = [](bool& ascending) { ascending = true; },
//              .cellHeight = [](float& lines) { lines = 4; }});
//   list->watchTbl("venues", onSelect, onPopulate, onRefresh);
//   for (auto& row : rows) list->adData(row);
//   list->refresh();
//
// Configuration is not cumulative: every cfg call puts the key lists, the
// flag cells and the selection back to their defaults before the caller's
// callbacks edit them. Before the first cfg the key lists, the flag cells and
// the selection are absent (null / nullopt): rows then sort ascending by
// "key", are 4 text lines high and show their own keys as the body.
//
// Callbacks reach the owner through registries keyed by a name the owner
// chooses (insertion-ordered; registering a name again replaces it in place).
// Every callback may change the list, its registries or its rows, or release
// the list: dispatch works on copies of the callbacks, and a list released
// by a callback is only destroyed from the main queue, after the touch or
// layout that called back is over.
//
// Decisions where the kit's behaviour leaves room:
// - An empty std::function passed anywhere (configuration, registration,
//   swipe, translation) is skipped when its turn comes; nothing fails.
// - A tap or swipe on a row that is no Node: the swipe callback still runs
//   (with a null row), select callbacks do not (such a row has no "key").
// - The flag cells are created by the first cfg and reset in place by every
//   later one, so references handed out stay valid for the list's lifetime.
// - Rows that are not mutable Nodes are not filled from; their cells are
//   shown blank (a reused cell drops what its last row showed).
// - swap ignores indices outside the rows.
// - Key values are passed as they stand in the row (usually a text; absent
//   when the row's "key" sits only in a nested Node). The check mark compares
//   the key's text form.
//
// Threads: main thread only, apart from the translation hook's completion,
// which may be called on any thread, any number of times; each call posts its
// text to the main queue, where it lands in the cell if the cell still exists
// (possibly showing another row by then).

#include <morvane/components/CallbackRegistry.h>
#include <morvane/components/ListConfig.h>
#include <morvane/components/Translation.h>
#include <morvane/gfx/Color.h>
#include <morvane/gfx/Geometry.h>
#include <morvane/model/Forward.h>
#include <morvane/model/Value.h>
#include <morvane/ui/collections/TableView.h>
#include <morvane/ui/controls/RefreshControl.h>
#include <morvane/ui/core/View.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace morvane {

class UITblCell;

class UITbl : public ui::View, public ui::TableViewDataSource, public ui::TableViewDelegate {
  public:
    // The reuse identifier of the list's cells.
    static constexpr const char* kCellIdentifier = "TViewCell";

    // ---- Callback shapes --------------------------------------------------------
    // Configuration callbacks edit the list, cell or text they are handed.
    using KeysCB = ListConfig::KeysCB;
    using FlagCB = ListConfig::FlagCB;
    using SizeCB = ListConfig::SizeCB;
    using SelectionCB = ListConfig::SelectionCB;
    // select: the value the row yields for "key" through valKey, and the row.
    // populate: the row's top-level "key" value and the row.
    using SelectCB = std::function<void(const Value& key, const NodePtr& row)>;
    using PopulateCB = std::function<void(const Value& key, const NodePtr& row)>;
    // refresh: "" and a new empty Node.
    using RefreshCB = std::function<void(const std::string& text, const NodePtr& node)>;
    // swipe: the row index and the row (null when the row is no Node).
    using SwipeCB = std::function<void(long index, const NodePtr& row)>;
    // The translation hook: a text and the completion that takes its translation.
    using TranslateCompletion = morvane::TranslateCompletion;
    using TranslateCB = morvane::TranslateCB;
    // grab, moveUp, moveDown: the rows.
    using DataCB = std::function<void(const ListPtr& rows)>;

    // The flag cells. The configuration callbacks receive references to these fields.
    struct FlagCells {
        bool sort = true;
        bool ascending = false;
        bool checkBox = true;
        bool incKey = false;
        float numOfLines = 5.0f;
    };

    // init: a zero frame.
    UITbl();
    // initWithFrame:.
    explicit UITbl(const gfx::Rect& frame);
    ~UITbl() override;

    // ---- Properties --------------------------------------------------------------
    const std::shared_ptr<ui::TableView>& tbl() const { return tbl_; }
    // Swipe entries: Nodes with "key" (the title), "color" (a gfx::Color
    // object) and "callback" (a SwipeCB object). Trailing side, then leading.
    const ListPtr& cbList() const { return cbList_; }
    const ListPtr& cbListLeft() const { return cbListLeft_; }
    const CallbackRegistry<SelectCB>& cbItemSelect() const { return cbItemSelect_; }
    const CallbackRegistry<PopulateCB>& cbItemPopulate() const { return cbItemPopulate_; }
    const CallbackRegistry<RefreshCB>& cbRefresh() const { return cbRefresh_; }
    const TranslateCB& translateCB() const { return translateCB_; }
    const std::shared_ptr<ui::RefreshControl>& refreshControl() const { return refreshControl_; }
    // The rows in display order (shared: the owner may read and change them).
    const ListPtr& myData() const { return myData_; }
    // Candidate keys; nullopt before the first configuration.
    const std::optional<std::vector<std::string>>& listImage() const { return listImage_; }
    const std::optional<std::vector<std::string>>& listBody() const { return listBody_; }
    const std::optional<std::vector<std::string>>& listHeader() const { return listHeader_; }
    const std::optional<std::vector<std::string>>& listPrice() const { return listPrice_; }
    const std::optional<std::vector<std::string>>& listSortBy() const { return listSortBy_; }
    // The flag cells; null before the first configuration. Only a list the
    // caller may change hands out cells it may write to.
    bool* sort() { return cell(&FlagCells::sort); }
    bool* ascending() { return cell(&FlagCells::ascending); }
    bool* checkBox() { return cell(&FlagCells::checkBox); }
    bool* incKey() { return cell(&FlagCells::incKey); }
    float* numOfLines() { return cell(&FlagCells::numOfLines); }
    const bool* sort() const { return cell(&FlagCells::sort); }
    const bool* ascending() const { return cell(&FlagCells::ascending); }
    const bool* checkBox() const { return cell(&FlagCells::checkBox); }
    const bool* incKey() const { return cell(&FlagCells::incKey); }
    const float* numOfLines() const { return cell(&FlagCells::numOfLines); }
    // The key of the selected row; nullopt before the first configuration.
    const std::optional<std::string>& currentSelection() const { return currentSelection_; }

    // ---- Configuration -----------------------------------------------------------
    // Resets every key list, flag cell and the selection to its default, then
    // calls cfg, header, body, price, sort, ascending, cellHeight, checkBox,
    // sortBy, select and inckey once each, in that order. numOfCol is for the
    // grid, which shares this signature; the list never calls it. Rows,
    // registries and swipe entries stay. Does not reload: call refresh().
    void cfg(const KeysCB& cfg, const KeysCB& header, const KeysCB& body, const KeysCB& price,
             const FlagCB& sort, const KeysCB& sortBy, const FlagCB& ascending, const SizeCB& cellHeight,
             const SizeCB& numOfCol, const FlagCB& checkBox, const SelectionCB& select, const FlagCB& inckey);
    // The same with named members (see ListConfig); empty members are skipped.
    void cfg(const ListConfig& config);

    // ---- Registration ------------------------------------------------------------
    // Stores the three callbacks under the name (replacing earlier ones of
    // that name); no name empties all three registries.
    void watchTbl(std::optional<std::string_view> name, SelectCB selected, PopulateCB populate,
                  RefreshCB refresh);
    // Appends a trailing (right side) swipe action.
    void watchSwipe(std::string title, const gfx::Color& color, SwipeCB swipe);
    // Appends a leading (left side) swipe action.
    void watchSwipeLeft(std::string title, const gfx::Color& color, SwipeCB swipe);
    void watchTranslate(TranslateCB translate);

    // ---- Rows --------------------------------------------------------------------
    // Appends a row (normally a Node); does not reload.
    void adData(Value row);
    // Removes every row; does not reload.
    void clear();
    // Sorts the rows (see sortArray) and reloads the table.
    void refresh();
    // True when the list is empty or every element yields a value for the key
    // through valKey; stops at the first that does not.
    bool hasFld(const ListPtr& list, std::string_view key) const;
    // Sorts in place as the kit's exchange sort does: only mutable Nodes that
    // yield a text for the key through valLikeKey take part, compared as
    // texts; everything else keeps its place, and equal values are never
    // exchanged. (When the compared values are all distinct the result is
    // found in n log n; otherwise the exchange sort runs as it stands.)
    void sortArray(const ListPtr& list, std::string_view key, bool ascend) const;
    // Puts a shallow copy of row j at i and one of row i at j.
    void swap(long i, long j);
    // Calls the callback with the rows (the index is not used).
    void grab(long index, const DataCB& callback);
    // Swaps rows index and index - 1 and calls the callback, for index >= 1.
    void moveUp(long index, const DataCB& callback);
    // Swaps rows index and index + 1 and calls the callback, for 0 <= index < count - 1.
    void moveDown(long index, const DataCB& callback);

    // ---- Pull to refresh ------------------------------------------------------------
    // The refresh control's action: logs "refreshControl", ends refreshing and
    // calls every refresh callback with "" and a new empty Node.
    void refreshTable();
    // The same, ending refreshing on the given control (none: nothing to end).
    void handleRefresh(ui::RefreshControl* control);

    // ---- Appearance ----------------------------------------------------------------
    // Also gives the table the colour lightened by 0.1 (darkerBy -0.1) and reloads it.
    void setBackgroundColor(const gfx::Color& color) override;
    // The list's unit of height: the height of "Text" in the system font at
    // the system font size (rows are numOfLines of these). Not the cell's
    // layout unit, UITblCell::getTextHeight, which is 1.5 x "Sample Text".
    double textHeight() const;

    // ---- Filling a cell --------------------------------------------------------------
    // Fills the cell from the row with the configured keys (see UITbl.cpp).
    void updateUI(const NodePtr& row, const std::shared_ptr<UITblCell>& cell);

    // Key-value observation hook: logs "Name changed from <old> to <new>" for
    // the key path "name" with the change's "old" and "new" values. The kit
    // registers no observer itself.
    void observeValueForKeyPath(std::string_view keyPath, const Value& object, const NodePtr& change);
    // Store-saved notifications need nothing from the list.
    void contextDidSave(const Value& notification);

    // ---- Table data source and delegate ------------------------------------------------
    int numberOfSections(ui::TableView&) override;
    int numberOfRows(ui::TableView&, int section) override;
    std::shared_ptr<ui::TableViewCell> cellForRow(ui::TableView&, ui::IndexPath indexPath) override;
    bool canEditRow(ui::TableView&, ui::IndexPath) override;
    void commitEditing(ui::TableView&, ui::TableViewCellEditingStyle, ui::IndexPath) override;
    std::optional<double> heightForRow(ui::TableView&, ui::IndexPath) override;
    std::optional<double> heightForHeader(ui::TableView&, int section) override;
    std::shared_ptr<ui::View> viewForHeader(ui::TableView&, int section) override;
    void didSelectRow(ui::TableView&, ui::IndexPath indexPath) override;
    std::shared_ptr<ui::SwipeActionsConfiguration> leadingSwipeActions(ui::TableView&,
                                                                       ui::IndexPath indexPath) override;
    std::shared_ptr<ui::SwipeActionsConfiguration> trailingSwipeActions(ui::TableView&,
                                                                        ui::IndexPath indexPath) override;

  protected:
    // The table takes the list's whole size.
    void layoutSubviews() override;

  private:
    void appendSwipe(const ListPtr& entries, std::string title, const gfx::Color& color, SwipeCB swipe);
    std::shared_ptr<ui::SwipeActionsConfiguration> swipeActions(const ListPtr& entries, long index);
    void fireSwipe(const SwipeCB& swipe, long index);
    void callSelect(const Value& key, const NodePtr& row);
    void callRefresh();
    // The row at an index as a Node, or null.
    NodePtr rowAt(long index) const;
    bool flag(bool FlagCells::*field) const { return flags_ && flags_.get()->*field; }
    template <class T> T* cell(T FlagCells::*field) { return flags_ ? &(flags_.get()->*field) : nullptr; }
    template <class T> const T* cell(T FlagCells::*field) const {
        return flags_ ? &(flags_.get()->*field) : nullptr;
    }

    std::shared_ptr<ui::TableView> tbl_;
    ListPtr cbList_;
    ListPtr cbListLeft_;
    CallbackRegistry<SelectCB> cbItemSelect_;
    CallbackRegistry<PopulateCB> cbItemPopulate_;
    CallbackRegistry<RefreshCB> cbRefresh_;
    TranslateCB translateCB_;
    std::shared_ptr<ui::RefreshControl> refreshControl_;
    ListPtr myData_;
    std::optional<std::vector<std::string>> listImage_;
    std::optional<std::vector<std::string>> listBody_;
    std::optional<std::vector<std::string>> listHeader_;
    std::optional<std::vector<std::string>> listPrice_;
    std::optional<std::vector<std::string>> listSortBy_;
    std::unique_ptr<FlagCells> flags_;
    std::optional<std::string> currentSelection_;
    // textHeight for the system font size it was measured at.
    mutable double textHeightSize_ = -1;
    mutable double textHeight_ = 0;
};

} // namespace morvane
