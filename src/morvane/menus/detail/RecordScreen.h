#pragma once
// What the menu screen and the administration panel share: records in a
// header-and-list composite (grid or list form), the chosen record on a
// profile card laid over it, a back button, and a round edit toggle. The
// screen decides which members become the card's name and values
// (listHeader, listBody), routes the card's value edits to per-field
// callbacks, finds the record behind a renamed card, and forwards the rest
// to its two children.
//
// A subclass says how a record fills the card (updateProfile), under which
// name it listens to the list, and how a selection without "key" behaves.
// Threads: main thread only. Every callback may release the screen.

#include <morvane/components/ListConfig.h>
#include <morvane/components/Translation.h>
#include <morvane/forms/UIProfile.h>
#include <morvane/gfx/Color.h>
#include <morvane/lists/UITblHdrAll.h>
#include <morvane/model/Node.h>
#include <morvane/ui/controls/Button.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace morvane {

// The screens' configuration as one struct: the list's members, and the two
// key lists of the card, each handed its defaults to edit in place.
//
//   menu->cfg({.list = {.header = [](auto& keys) { keys = {"name"}; }},
//              .profileBody = [](auto& keys) { keys.push_back("web"); }});
struct ScreenConfig {
    ListConfig list{};
    ListConfig::KeysCB profileHeader{}; // the card's name keys ("category", "company")
    ListConfig::KeysCB profileBody{};   // the card's value keys ("key", "name", "phone", "email", "time")
};

namespace detail {

class RecordScreen : public ui::View {
  public:
    using KeysCB = ListConfig::KeysCB;
    using FlagCB = ListConfig::FlagCB;
    using SizeCB = ListConfig::SizeCB;
    using SelectionCB = ListConfig::SelectionCB;
    // A value edit of a field: the record's key, its title, the field, the new text.
    using FieldCB = std::function<void(const std::string& key, const std::string& title,
                                       const std::string& field, const std::string& text)>;
    using BackCB = std::function<void(const std::string& text, const NodePtr& node)>;
    // A renamed card: the new name and the list's record behind the card.
    using NameCB = std::function<void(const std::string& text, const NodePtr& record)>;

    ~RecordScreen() override;

    const std::shared_ptr<ui::Button>& backBtn() const { return backBtn_; }
    const std::shared_ptr<UIProfile>& profileUI() const { return profileUI_; }
    const std::shared_ptr<UITblHdrAll>& tblHdrUI() const { return tblHdrUI_; }
    const std::shared_ptr<ui::Button>& editBtn() const { return editBtn_; }
    const std::vector<std::string>& listHeader() const { return listHeader_; }
    const std::vector<std::string>& listBody() const { return listBody_; }
    // The list's check-mark flag, once the list has handed it over.
    const bool* checkBox() const { return checkBox_; }
    bool hasFieldCallback(std::string_view field) const { return currentItem_.count(std::string(field)) > 0; }

    // ---- Configuration ---------------------------------------------------------
    // The key lists get their defaults and go to the two profile callbacks;
    // the other twelve go to the list, the check-box one noting the flag.
    void cfg(const KeysCB& cfg, const KeysCB& header, const KeysCB& body, const KeysCB& price,
             const FlagCB& sort, const KeysCB& sortBy, const FlagCB& ascending, const SizeCB& cellHeight,
             const SizeCB& numOfCol, const FlagCB& checkBox, const SelectionCB& select,
             const KeysCB& profileHeader, const KeysCB& profileBody, const FlagCB& inckey);
    void cfg(const ScreenConfig& config);

    // ---- Callbacks -----------------------------------------------------------------
    void watchField(std::string_view field, FieldCB callback);
    void watchBackCB(BackCB callback) { backCB_ = std::move(callback); }
    void watchName(NameCB callback);
    void watchTranslate(const TranslateCB& translate);
    void watchEdit(UIProfile::TextCB callback) { profileUI_->watchEdit(std::move(callback)); }
    void watchImage(UIProfile::LogoCB callback) { profileUI_->watchImage(std::move(callback)); }
    void watchActivateCamera(UIProfile::TakePhotoCB callback) {
        profileUI_->watchActivateCamera(std::move(callback));
    }
    void watchRemove(UIProfile::TextCB callback) { profileUI_->watchRemove(std::move(callback)); }
    // The hint is not used.
    void justTakenImage(const gfx::Image& image, std::string_view hint = {});

    // ---- The list ----------------------------------------------------------------------
    void watchTbl(std::optional<std::string_view> name, UITblHdrAll::SelectCB selected,
                  UITblHdrAll::PopulateCB populate, UITblHdrAll::RefreshCB refresh);
    void addDataWhenSelect(std::string name, Value data);
    void addHeaderImage(std::optional<std::string_view> name, std::optional<std::string_view> imgd);
    void addHeaderTitle(std::string_view text);
    void addHeaderSubtitle(std::string_view text);
    void watchSubtitle(long index, UIHeader::SubtitleCB callback);
    void watchHdr(std::string_view name, UIHeader::ClickCB click, UIHeader::DataCB data);
    void watchFlight(UITblHdrAll::FlightCB flight);
    void refresh();

    // ---- Display --------------------------------------------------------------------------
    // Shows the back button or hides it.
    void showBackBtn(bool show);
    // The edit button: "edit" turns editing on (title "disable edit", a white
    // pen), anything else turns it off again.
    void editAction();
    void backAction();
    void setBackgroundColor(const gfx::Color& color) override;
    static void addBorder(ui::View& view, int width);

    // Fills the card from the record.
    virtual void updateProfile(const NodePtr& record) = 0;
    // A record chosen in the list (see recordSelected).
    virtual void itemSelected(const NodePtr& record) = 0;

  protected:
    // The list's form, the name under which the screen listens to the list,
    // the pen's colour while editing is off, and whether the back button
    // lies above the card.
    RecordScreen(const gfx::Rect& frame, UITblHdrAll::Form form, std::string registration,
                 const gfx::Color& penTint, bool backAboveCard);
    void layoutSubviews() override;
    // A selection in the list: the card takes the record's key (absent when
    // it has none) and content and opens (shrunk) unless the list is in
    // check-mark mode. A record without a key opens the card on its previous
    // content when `openWithoutKey`.
    void recordSelected(const NodePtr& record, const Value& key, bool openWithoutKey);
    bool checkMarksOn() const { return checkBox_ && *checkBox_; }

  private:
    void watchEditor();
    void watchItemSelected2();
    void tintPen(const gfx::Color& tint);

    std::map<std::string, FieldCB> currentItem_;
    std::shared_ptr<ui::Button> backBtn_;
    std::shared_ptr<UIProfile> profileUI_;
    std::shared_ptr<UITblHdrAll> tblHdrUI_;
    std::shared_ptr<ui::Button> editBtn_;
    std::vector<std::string> listHeader_;
    std::vector<std::string> listBody_;
    BackCB backCB_;
    const bool* checkBox_ = nullptr;
    std::string registration_;
    gfx::Color penTint_;
};

} // namespace detail
} // namespace morvane
