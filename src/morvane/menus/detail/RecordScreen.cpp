#include <morvane/menus/detail/RecordScreen.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/Transform.h>
#include <morvane/media/ImageColor.h>
#include <morvane/media/ResourcePictures.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/util/Txt.h>

namespace morvane::detail {

namespace {

double buttonSide() {
    return 2.5 * gfx::Font::systemFontSize();
}

} // namespace

RecordScreen::RecordScreen(const gfx::Rect& frame, UITblHdrAll::Form form, std::string registration,
                           const gfx::Color& penTint, bool backAboveCard)
    : ui::View(frame), registration_(std::move(registration)), penTint_(penTint) {
    MORVANE_ASSERT_MAIN_THREAD();
    const double f = gfx::Font::systemFontSize();
    tblHdrUI_ = std::make_shared<UITblHdrAll>(form, gfx::Rect{});
    addSubview(tblHdrUI_);

    backBtn_ = std::make_shared<ui::Button>();
    backBtn_->titleLabel()->setFont(gfx::Font::boldSystemFont(1.5 * f));
    backBtn_->setTitle(" \u2190");
    backBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { backAction(); });
    backBtn_->setContentHorizontalAlignment(ui::ContentHorizontalAlignment::Left);
    backBtn_->setHidden(true);
    profileUI_ = std::make_shared<UIProfile>();
    // The menu screen keeps its back button under the card, the panel above it.
    const std::shared_ptr<ui::View> back = backBtn_, card = profileUI_;
    addSubview(backAboveCard ? card : back);
    addSubview(backAboveCard ? back : card);

    editBtn_ = std::make_shared<ui::Button>();
    editBtn_->titleLabel()->setFont(gfx::Font::boldSystemFont(0.6 * f));
    editBtn_->setTitle("edit");
    tintPen(penTint_);
    editBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { editAction(); });
    editBtn_->setBackgroundColor(gfx::Color::blackColor());
    addSubview(editBtn_);
    editBtn_->setHidden(true);

    watchItemSelected2();
    watchEditor();
}

RecordScreen::~RecordScreen() {
    // The children may outlive the screen in someone's hands.
    backBtn_->removeActions(ui::ControlEvent::TouchUpInside);
    editBtn_->removeActions(ui::ControlEvent::TouchUpInside);
    profileUI_->watchClose({});
    profileUI_->watchEdit2({});
    profileUI_->watchName({});
    tblHdrUI_->watchTbl(registration_, {}, {}, {});
}

void RecordScreen::tintPen(const gfx::Color& tint) {
    const double b = buttonSide();
    editBtn_->setImage(ImageColor::color(ResourcePictures::named("pen", {b, b}), tint));
}

// ---- Configuration -------------------------------------------------------------------

void RecordScreen::cfg(const KeysCB& cfg, const KeysCB& header, const KeysCB& body, const KeysCB& price,
                       const FlagCB& sort, const KeysCB& sortBy, const FlagCB& ascending,
                       const SizeCB& cellHeight, const SizeCB& numOfCol, const FlagCB& checkBox,
                       const SelectionCB& select, const KeysCB& profileHeader, const KeysCB& profileBody,
                       const FlagCB& inckey) {
    this->cfg(ScreenConfig{.list = {cfg, header, body, price, sort, sortBy, ascending, cellHeight, numOfCol,
                                    checkBox, select, inckey},
                           .profileHeader = profileHeader,
                           .profileBody = profileBody});
}

void RecordScreen::cfg(const ScreenConfig& config) {
    MORVANE_ASSERT_MAIN_THREAD();
    DispatchGuard guard(*this);
    listHeader_ = {"category", "company"};
    listBody_ = {"key", "name", "phone", "email", "time"};
    if (config.profileHeader) config.profileHeader(listHeader_);
    if (config.profileBody) config.profileBody(listBody_);
    ListConfig list = config.list;
    // The list hands its flag cell over while it configures itself (it keeps
    // no callback); the cell lives as long as the list, and the screen reads
    // it later to know whether check marks are on.
    const FlagCB checkBox = config.list.checkBox;
    list.checkBox = [this, checkBox](bool& flag) {
        checkBox_ = &flag;
        if (checkBox) checkBox(flag);
    };
    tblHdrUI_->cfg(list);
}

// ---- The card's reports ------------------------------------------------------------------

void RecordScreen::watchEditor() {
    profileUI_->watchClose([](const std::string&) {});
    profileUI_->watchEdit2([this](const std::string& text, const NodePtr& node) {
        const std::string field = node->get("field").textOr();
        auto found = currentItem_.find(field);
        if (found == currentItem_.end()) return;
        DispatchGuard guard(*this);
        const FieldCB call = found->second;
        call(node->get("key").textOr(), node->get("title").textOr(), field, text);
    });
}

void RecordScreen::watchField(std::string_view field, FieldCB callback) {
    currentItem_[std::string(field)] = std::move(callback);
}

void RecordScreen::watchName(NameCB callback) {
    if (!callback) {
        profileUI_->watchName({});
        return;
    }
    profileUI_->watchName([this, callback](const std::string& text, const NodePtr& node) {
        DispatchGuard guard(*this);
        const std::string name = Txt::splitBy(node->get("key").textOr(), "/");
        const NameCB call = callback;
        call(text, tblHdrUI_->selectedItemGet(name));
    });
}

void RecordScreen::watchTranslate(const TranslateCB& translate) {
    tblHdrUI_->watchTranslate(translate);
    profileUI_->watchTranslate(translate);
}

void RecordScreen::justTakenImage(const gfx::Image& image, std::string_view) {
    profileUI_->justTakenImage(image);
}

// ---- The list ------------------------------------------------------------------------------

void RecordScreen::watchItemSelected2() {
    profileUI_->setHidden(true);
    tblHdrUI_->watchTbl(
        registration_, [this](const Value&, const NodePtr& record) { itemSelected(record); },
        [this](const Value&, const NodePtr& record) {
            const std::string& key = profileUI_->keyCode();
            const std::string* own = record ? record->get("key").text() : nullptr;
            if (!key.empty() && own && *own == key) {
                DispatchGuard guard(*this);
                updateProfile(record);
            }
        },
        [](const std::string&, const NodePtr&) {});
}

void RecordScreen::recordSelected(const NodePtr& record, const Value& key, bool openWithoutKey) {
    DispatchGuard guard(*this);
    if (!key.isAbsent()) {
        profileUI_->addKeyCode(key.toText());
        updateProfile(record);
    } else if (!openWithoutKey) {
        return;
    }
    if (checkMarksOn()) return;
    profileUI_->setHidden(false);
    profileUI_->shrink();
}

void RecordScreen::watchTbl(std::optional<std::string_view> name, UITblHdrAll::SelectCB selected,
                            UITblHdrAll::PopulateCB populate, UITblHdrAll::RefreshCB refresh) {
    tblHdrUI_->watchTbl(name, std::move(selected), std::move(populate), std::move(refresh));
}

void RecordScreen::addDataWhenSelect(std::string name, Value data) {
    tblHdrUI_->addDataWhenSelectHeader(std::move(name), std::move(data));
}

void RecordScreen::addHeaderImage(std::optional<std::string_view> name,
                                  std::optional<std::string_view> imgd) {
    tblHdrUI_->addHeaderImage(name, imgd);
}

void RecordScreen::addHeaderTitle(std::string_view text) {
    tblHdrUI_->addHeaderTitle(text);
}

void RecordScreen::addHeaderSubtitle(std::string_view text) {
    tblHdrUI_->addHeaderSubtitle(text);
}

void RecordScreen::watchSubtitle(long index, UIHeader::SubtitleCB callback) {
    tblHdrUI_->watchSubtitle(index, std::move(callback));
}

void RecordScreen::watchHdr(std::string_view name, UIHeader::ClickCB click, UIHeader::DataCB data) {
    tblHdrUI_->watchHdr(name, std::move(click), std::move(data));
}

void RecordScreen::watchFlight(UITblHdrAll::FlightCB flight) {
    tblHdrUI_->watchFlight(std::move(flight));
}

void RecordScreen::refresh() {
    tblHdrUI_->refreshHeader();
}

// ---- Display --------------------------------------------------------------------------------

void RecordScreen::showBackBtn(bool show) {
    backBtn_->setHidden(!show);
    setNeedsLayout();
}

void RecordScreen::editAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    const bool on = editBtn_->titleForState(ui::ControlState::Normal) == "edit";
    editBtn_->setTitle(on ? "disable edit" : "edit");
    tintPen(on ? gfx::Color::whiteColor() : penTint_);
    profileUI_->editEnable(on);
}

void RecordScreen::backAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    DispatchGuard guard(*this);
    tblHdrUI_->cleanUp();
    if (!backCB_) return;
    const BackCB call = backCB_;
    call("", Node::make());
}

void RecordScreen::setBackgroundColor(const gfx::Color& color) {
    ui::View::setBackgroundColor(color);
    if (profileUI_) profileUI_->setBackgroundColor(color);
    if (tblHdrUI_) tblHdrUI_->setBackgroundColor(color);
}

void RecordScreen::addBorder(ui::View& view, int width) {
    view.layer().setBorderColor(gfx::Color::whiteColor());
    view.layer().setBorderWidth(width);
}

void RecordScreen::layoutSubviews() {
    const double w = bounds().width, h = bounds().height, b = buttonSide();
    backBtn_->setFrame({0, 0, w, 2 * b});
    tblHdrUI_->setFrame({0, 0, w, h});
    profileUI_->setFrame(tblHdrUI_->frame());
    editBtn_->setFrame({w - 1.5 * b, h - 1.5 * b, b, b});
    editBtn_->layer().setCornerRadius(b / 2);
    editBtn_->imageView()->setTransform(gfx::Transform::scale3D(0.5, 0.5, 0.5));
}

} // namespace morvane::detail
