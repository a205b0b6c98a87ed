#include "VenueScreen.h"

#include "Style.h"
#include "Translator.h"
#include "VenueData.h"

#include <morvane/gfx/Font.h>
#include <morvane/lists/UITblCell.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Queue.h>
#include <morvane/util/Colors.h>

#include <string>
#include <utility>
#include <vector>

namespace gallery {

using namespace morvane;

namespace {

using Keys = std::vector<std::string>;
const Keys kPictureKeys{"picture"};
const Keys kHeaderKeys{"name"};
// "where" and "saved" are made by the populate callback just before a row is drawn.
const Keys kBodyKeys{"where", "note", "saved"};
const Keys kPriceKeys{"price"};
// A rating for every venue; the name would take over if one lacked it.
const Keys kSortKeys{"rating", "name"};

constexpr double kBarHeight = 104;

std::shared_ptr<ui::Label> makeLabel(const gfx::Font& font, const gfx::Color& color) {
    auto label = std::make_shared<ui::Label>();
    label->setFont(font);
    label->setTextColor(color);
    return label;
}

} // namespace

VenueScreen::VenueScreen(const gfx::Rect& frame, std::string title, std::string subtitle,
                         std::shared_ptr<Translator> translator, RowSource rows, Back back)
    : Screen(frame), translator_(std::move(translator)), rows_(std::move(rows)) {
    setBackgroundColor(style::kBar);

    titleBar_ = std::make_shared<ui::View>();
    titleBar_->setBackgroundColor(style::kBar);
    title_ = makeLabel(gfx::Font::boldSystemFont(30), gfx::Color::whiteColor());
    title_->setText(std::move(title));
    subtitle_ = makeLabel(gfx::Font::systemFont(15), style::kSoftText);
    subtitle_->setText(std::move(subtitle));
    titleBar_->addSubview(title_);
    titleBar_->addSubview(subtitle_);
    back_ = style::homeButton();
    back_->addAction(ui::ControlEvent::TouchUpInside, [back = std::move(back)](ui::Control&) {
        if (back) back();
    });
    titleBar_->addSubview(back_);
    addSubview(titleBar_);

    list_ = std::make_shared<UITbl>();
    list_->setBackgroundColor(style::kList);
    addSubview(list_);
    configureList();

    status_ = style::statusLine("Tap a place · swipe for actions · pull to refresh");
    addSubview(status_);
}

std::shared_ptr<VenueScreen> VenueScreen::make(const gfx::Rect& frame, std::string title,
                                               std::string subtitle, std::shared_ptr<Translator> translator,
                                               RowSource rows, Back back) {
    auto screen = std::make_shared<VenueScreen>(frame, std::move(title), std::move(subtitle),
                                                std::move(translator), std::move(rows), std::move(back));
    screen->watchList();
    screen->showEdition(0);
    return screen;
}

void VenueScreen::configureList() {
    // Each member runs once, in the list's fixed order, every time cfg is
    // called, and receives what it may change, already reset to the list's
    // default; members left out keep the default (numOfCol is for grids only).
    list_->cfg({
        .image = [](Keys& image) { image = kPictureKeys; },
        .header = [](Keys& header) { header = kHeaderKeys; },
        .body = [](Keys& body) { body = kBodyKeys; },
        .price = [](Keys& price) { price = kPriceKeys; },
        .sort = [](bool& sort) { sort = true; },            // sorted on every refresh,
        .sortBy = [](Keys& sortBy) { sortBy = kSortKeys; }, // best rated first
        .ascending = [](bool& ascending) { ascending = false; },
        .cellHeight = [](float& lines) { lines = 5; },               // rows five text lines high
        .checkBox = [](bool& checkBox) { checkBox = true; },         // a check mark on the selection,
        .select = [](std::string& selection) { selection.clear(); }, // none yet
        .incKey = [](bool& incKey) { incKey = false; },              // body lines without "key: "
    });
}

void VenueScreen::watchList() {
    // The screen owns the list, so the list's callbacks must not keep the
    // screen alive: they hold it weakly.
    std::weak_ptr<VenueScreen> weak = std::static_pointer_cast<VenueScreen>(shared_from_this());
    list_->watchTbl(
        "venues",
        [weak](const Value& key, const NodePtr& row) {
            if (auto self = weak.lock()) self->onSelect(key, row);
        },
        [weak](const Value& key, const NodePtr& row) {
            if (auto self = weak.lock()) self->onPopulate(key, row);
        },
        [weak](const std::string&, const NodePtr&) {
            if (auto self = weak.lock()) self->onPull();
        });
    list_->watchSwipe("Call", style::kGo, [weak](long, const NodePtr& row) {
        if (auto self = weak.lock()) self->onCall(row);
    });
    list_->watchSwipeLeft("Save", style::kStop, [weak](long, const NodePtr& row) {
        if (auto self = weak.lock()) self->onSave(row);
    });
    list_->watchTranslate(
        [translator = translator_](const std::string& text, UITbl::TranslateCompletion done) {
            translator->translate(text, std::move(done));
        });
}

void VenueScreen::onSelect(const Value& key, const NodePtr& row) {
    ++events_.selects;
    events_.lastSelected = key.toText();
    if (!swipeMessage_.empty()) {
        say(std::exchange(swipeMessage_, {}));
        return;
    }
    say("Selected " + displayName(row));
}

void VenueScreen::onPopulate(const Value& key, const NodePtr& row) {
    // Rows are built just before they are drawn: the place to add what the
    // data does not carry as such.
    const std::string category = row->get("category").textOr(), area = row->get("area").textOr();
    row->set("where", category.empty() || area.empty() ? category + area : category + " · " + area);
    row->set("saved", isSaved(key.toText()) ? Value("★ Saved for later") : Value());
}

void VenueScreen::onPull() {
    ++events_.refreshes;
    say("Looking for news…");
    // Reload after the pull's touch has been handled, not in the middle of it.
    std::weak_ptr<VenueScreen> weak = std::static_pointer_cast<VenueScreen>(shared_from_this());
    sys::Queue::main().async([weak] {
        auto self = weak.lock();
        if (!self) return;
        self->showEdition(self->edition_ + 1);
        self->say("Updated · " + std::to_string(self->list_->myData()->size()) + " places");
    });
}

void VenueScreen::onCall(const NodePtr& row) {
    ++events_.calls;
    swipeMessage_ = "Calling " + displayName(row) + " · " + (row ? row->get("phone").textOr() : "");
}

void VenueScreen::onSave(const NodePtr& row) {
    if (!row) return;
    ++events_.saves;
    const std::string key = row->get("key").toText();
    const bool saving = saved_.insert(key).second;
    if (!saving) saved_.erase(key);
    swipeMessage_ = (saving ? "Saved " : "No longer saved: ") + displayName(row);
    // Redraw after the action has finished, so the row shows its new line.
    std::weak_ptr<UITbl> list = list_;
    sys::Queue::main().async([list] {
        if (auto alive = list.lock()) alive->refresh();
    });
}

void VenueScreen::showEdition(int edition) {
    edition_ = edition;
    list_->clear();
    const ListPtr rows = rows_ ? rows_(edition) : nullptr;
    if (rows)
        for (const Value& row : *rows)
            list_->adData(row);
    list_->refresh();
}

std::string VenueScreen::waitingFor() const {
    std::string missing;
    for (const auto& cell : list_->tbl()->visibleCells()) {
        auto row = std::dynamic_pointer_cast<UITblCell>(cell);
        const auto at = list_->tbl()->indexPathForCell(*cell);
        if (!row || !at || at->row >= static_cast<int>(list_->myData()->size())) continue;
        const NodePtr& venue = list_->myData()->at(static_cast<std::size_t>(at->row)).node();
        if (!venue || !venue->has("picture")) continue;
        const bool shown =
            !row->indicator()->isAnimating() && !row->photo()->isHidden() && !row->photo()->image().isNull();
        if (!shown) missing += (missing.empty() ? "" : ", ") + venue->get("key").toText();
    }
    if (!missing.empty()) return "pictures for " + missing;
    if (const int pending = translator_->pending()) return std::to_string(pending) + " translations";
    return {};
}

void VenueScreen::say(const std::string& text) {
    status_->setText(text);
}

void VenueScreen::layoutSubviews() {
    const gfx::Size size = bounds().size();
    titleBar_->setFrame({0, 0, size.width, kBarHeight});
    back_->setFrame({8, 8, 90, 30});
    title_->setFrame({20, 44, size.width - 40, 36});
    subtitle_->setFrame({20, 78, size.width - 40, 20});
    list_->setFrame({0, kBarHeight, size.width, size.height - kBarHeight - style::kStatusHeight});
    status_->setFrame({0, size.height - style::kStatusHeight, size.width, style::kStatusHeight});
}

} // namespace gallery
