#pragma once
// UIHeader: the bar above a list. A back button, a circular photo, a bold
// title, an italic subtitle, a selection button that cycles through named
// data sets, a two-segment switch and a toast strip that slides up into the
// bar. Owners register data sets (a name and a Node each); every tap on the
// selection button shows the next name and hands its Node to the data
// callbacks, which reload the list below.
//
//   auto header = std::make_shared<UIHeader>(gfx::Rect{0, 0, 390, 120});
//   header->watch("menu", [](bool) {}, [list](const NodePtr& set) { reload(list, set); });
//   header->addDataWhenSelect("Menu-Breakfast", breakfast);
//   header->addDataWhenSelect("Menu-Dinner", dinner);
//   header->refresh(); // sorts the names and shows (and hands over) the first
//
// Decisions where the kit's behaviour leaves room:
// - Data sets are kept as given; one that is no Node reaches the data
//   callbacks as nothing (a null NodePtr), like a name without a data set.
// - A segment callback that answers an index every time would re-enter the
//   switch's action without end: after 16 rounds in one tap the bar stops
//   and logs once.
// - The toast strip never takes focus (it is created disabled).
//
// Every callback may call any operation of the bar or release it. Threads:
// main thread only; translation and picture completions may arrive on any
// thread and are re-posted to the main queue.

#include <morvane/components/CallbackRegistry.h>
#include <morvane/components/Translation.h>
#include <morvane/gfx/Image.h>
#include <morvane/model/Forward.h>
#include <morvane/model/Value.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/controls/SegmentedControl.h>
#include <morvane/ui/core/View.h>
#include <morvane/ui/text/TextField.h>
#include <morvane/ui/text/TextView.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace morvane {

class UIHeader : public ui::View {
  public:
    // data: the chosen data set's Node (null when the name has none).
    using DataCB = std::function<void(const NodePtr& data)>;
    // click: true, after a tap on the selection button.
    using ClickCB = std::function<void(bool clicked)>;
    // segment: the tapped segment's title; answers a segment index to select, or -1.
    using SubtitleCB = std::function<long(const std::string& title)>;
    // back: "" when the back button is pressed.
    using BackCB = std::function<void(const std::string& text)>;
    using TranslateCB = morvane::TranslateCB;

    UIHeader();
    explicit UIHeader(const gfx::Rect& frame);
    ~UIHeader() override;

    // ---- Properties -----------------------------------------------------------------
    const std::shared_ptr<ui::SegmentedControl>& segmentedControl() const { return segmentedControl_; }
    const std::shared_ptr<ui::Button>& backBtn() const { return backBtn_; }
    const std::shared_ptr<ui::Button>& selectionBtn() const { return selectionBtn_; }
    const std::shared_ptr<ui::Label>& titleLbl() const { return titleLbl_; }
    const std::shared_ptr<ui::TextView>& subtitleLbl() const { return subtitleLbl_; }
    const std::shared_ptr<ui::ImageView>& photo() const { return photo_; }
    const std::shared_ptr<ui::TextField>& toaster() const { return toaster_; }
    // Name -> data set, and the names in cycling order.
    const NodePtr& myDict() const { return myDict_; }
    const ListPtr& mySelection() const { return mySelection_; }
    const CallbackRegistry<DataCB>& cbList() const { return cbList_; }
    const CallbackRegistry<ClickCB>& cbClick() const { return cbClick_; }
    const TranslateCB& translateCB() const { return translateCB_; }
    const SubtitleCB& subtitleCB() const { return subtitleCB_; }
    const BackCB& backCB() const { return backCB_; }
    long currentIdx() const { return currentIdx_; }
    const std::optional<std::string>& currentSel() const { return currentSel_; }

    // ---- Registration -----------------------------------------------------------------
    // Logs "zed: ball <name>", then stores the click and data callbacks under
    // the name; an empty callback removes that entry.
    void watch(std::string_view name, ClickCB click, DataCB data);
    // Sets the back button's title (when given), stores the callback, shows the button.
    void watchHdrBack(std::optional<std::string> title, BackCB callback);
    // Shows the switch, selects the index and fires its action once with the
    // callback stored before; only then stores the new callback.
    void watchSubtitle(long index, SubtitleCB callback);
    void watchTranslate(TranslateCB translate);

    // ---- Data sets --------------------------------------------------------------------
    // Appends the name (duplicates are kept) and stores the data under it.
    void addDataWhenSelect(std::string name, Value data);
    // Hides the selection button and forgets every name and data set.
    void clear();
    // Sorts the names ascending, shows the one shown before (or the first)
    // and hands its data over; with no names, hands over a new empty Node.
    void refresh();
    // Sorts the names descending and shows the first.
    void refreshDescend();
    // Shows the name at the index on the button and hands its data set to
    // every data callback; an index past the names does nothing.
    void addSelection(long index);
    // The index of the first name equal to the button's accessibility hint, or -1.
    long isMatch() const;
    // The data set found by nodeLike for the name, or null.
    NodePtr findObject(std::string_view name) const;
    // The name's data set, remembered as the current selection; an unknown
    // name clears it and toasts "   Error: <name>".
    NodePtr addCurentSel(std::string_view name);
    void clearCurentSel();

    // ---- Content ----------------------------------------------------------------------
    // The title is the text's last piece after "-"; translated when a hook is set.
    void addTitle(std::string_view text);
    // Literal backslash-n sequences become line breaks.
    void addSubtitle(std::string_view text);
    // The photo by name and date stamp, through the photo loader.
    void addImage(std::optional<std::string_view> name, std::optional<std::string_view> stamp);
    // The picture, tinted white.
    void addImage(const gfx::Image& image);
    // A message strip that rises into the bottom of the bar for 2 s, then
    // falls away over 1 s and hides.
    void toast(std::string_view text);

    // ---- Text helpers -----------------------------------------------------------------
    // Removes every shortest "( ... )" run and trims, when the text holds "(".
    static std::string trim(std::string_view text);
    // The text split at the space nearest its middle: two parts, or the
    // trimmed text alone when it has no space.
    static std::vector<std::string> splitStringInTwo(std::string_view text);
    // The two parts of splitStringInTwo on two lines (each logged), or the text.
    static std::string refineText(std::string_view text);

    // ---- Actions ----------------------------------------------------------------------
    void backAction();
    // The selection button: the next name (wrapping), its data, then the click callbacks.
    void runAction();
    // The switch's action: logs the index and asks the segment callback.
    void segmentChanged();

    // ---- Layout helpers ---------------------------------------------------------------
    // The bar's unit of height: 2.5 x the height of "Sample Text".
    static double getTextHeight();
    static double bottomOf(const ui::View& view, double offset);
    static double alignBottom(const ui::View& view, double offset);
    double heightOf(const ui::View& view, double offset) const;
    static void addBorder(ui::View& view, double width);

  protected:
    void layoutSubviews() override;

  private:
    void mySegment();
    void translateInto(const std::string& text, std::function<void(UIHeader&, const std::string&)> apply);
    void showButtonWhenChoosing();
    void callData(const NodePtr& data);
    std::string nameAt(long index) const;

    std::shared_ptr<ui::SegmentedControl> segmentedControl_;
    std::shared_ptr<ui::Button> backBtn_;
    std::shared_ptr<ui::Button> selectionBtn_;
    std::shared_ptr<ui::Label> titleLbl_;
    std::shared_ptr<ui::TextView> subtitleLbl_;
    std::shared_ptr<ui::ImageView> photo_;
    std::shared_ptr<ui::TextField> toaster_;
    NodePtr myDict_;
    ListPtr mySelection_;
    CallbackRegistry<DataCB> cbList_;
    CallbackRegistry<ClickCB> cbClick_;
    TranslateCB translateCB_;
    SubtitleCB subtitleCB_;
    BackCB backCB_;
    long currentIdx_ = -1;
    std::optional<std::string> currentSel_;
    // How deep the switch's action has re-entered itself in this tap.
    int segmentDepth_ = 0;
    bool segmentLoopLogged_ = false;
};

} // namespace morvane
