#include <morvane/commerce/UIPurse.h>

#include <morvane/gfx/Font.h>
#include <morvane/sys/Queue.h>

#include <cmath>

namespace morvane {

namespace {

// An entry on the panel: its name and stamp when it has them, then its code
// and lines.
void showEntry(QRProfile& panel, const NodePtr& entry) {
    if (entry) {
        if (const std::string* name = entry->valLikeKey("company").text()) panel.addName(*name);
        if (const std::string* status = entry->get("ustatus").text()) panel.addStatus(*status);
    }
    panel.addQR(entry);
}

} // namespace

UIPurse::UIPurse(std::string_view title, std::optional<std::string_view> image) : ui::View(gfx::Rect{}) {
    MORVANE_ASSERT_MAIN_THREAD();
    headerUI_ = std::make_shared<UIHeader>();
    headerUI_->addImage(image, std::nullopt);
    headerUI_->addTitle(title);
    headerUI_->addSubtitle("");
    addSubview(headerUI_);

    tbl_ = std::make_shared<UICTbl>();
    addSubview(tbl_);

    qrProfile_ = QRProfile::initWithColor(gfx::Color::redColor());
    qrProfile_->setHidden(true);
    addSubview(qrProfile_);

    ui::View::setBackgroundColor(gfx::Color::clearColor());
    watchHeader();
    watchTbl();
}

std::shared_ptr<UIPurse> UIPurse::initWithTitle(std::string_view title,
                                                std::optional<std::string_view> image) {
    return std::make_shared<UIPurse>(title, image);
}

void UIPurse::watchHeader() {
    // The children may outlive the purse, so their callbacks hold what they
    // reach weakly: here the grid alone.
    std::weak_ptr<UICTbl> grid = tbl_;
    headerUI_->watch(
        "", [](bool) {},
        [grid](const NodePtr& wallet) {
            auto tbl = grid.lock();
            if (!tbl) return;
            tbl->clear();
            if (wallet)
                for (const auto& [key, entry] : *wallet)
                    tbl->adData(entry);
            tbl->refresh();
        });
    qrProfile_->watchBackBtn([](const std::string&, const NodePtr&) {});
}

void UIPurse::watchTbl() {
    // Filling the panel reaches nothing else of the purse: the callbacks hold
    // the panel alone, weakly.
    std::weak_ptr<QRProfile> weakPanel = qrProfile_;
    const auto keyText = [](const Value& key) { return key.text() ? *key.text() : std::string(); };
    tbl_->watchTbl(
        kRegistration,
        [weakPanel, keyText](const Value& key, const NodePtr& entry) {
            auto panel = weakPanel.lock();
            if (!panel) return;
            panel->addKeyCode(keyText(key));
            panel->setHidden(false);
            showEntry(*panel, entry);
        },
        [weakPanel, keyText](const Value& key, const NodePtr& entry) {
            auto panel = weakPanel.lock();
            if (panel && !panel->isHidden() && panel->keyCode() == keyText(key)) showEntry(*panel, entry);
        },
        {});
}

void UIPurse::addWallet(const NodePtr& wallets) {
    MORVANE_ASSERT_MAIN_THREAD();
    headerUI_->clear();
    if (wallets)
        for (const auto& [name, wallet] : *wallets)
            headerUI_->addDataWhenSelect(name, wallet);
    headerUI_->refresh();
}

void UIPurse::cfg(const ListConfig& config) {
    tbl_->cfg(config);
}

void UIPurse::cfg(const UICTbl::KeysCB& cfg, const UICTbl::KeysCB& header, const UICTbl::KeysCB& body,
                  const UICTbl::KeysCB& price, const UICTbl::FlagCB& sort, const UICTbl::KeysCB& sortBy,
                  const UICTbl::FlagCB& ascending, const UICTbl::SizeCB& cellHeight,
                  const UICTbl::SizeCB& numOfCol, const UICTbl::FlagCB& checkBox,
                  const UICTbl::SelectionCB& select, const UICTbl::FlagCB& inckey) {
    tbl_->cfg(cfg, header, body, price, sort, sortBy, ascending, cellHeight, numOfCol, checkBox, select,
              inckey);
}

void UIPurse::watchQRScan(QRProfile::ScanCB callback) {
    qrProfile_->watchQRScan(std::move(callback));
}

void UIPurse::watchTranslate(TranslateCB translate) {
    headerUI_->watchTranslate(std::move(translate));
}

void UIPurse::addTitle(std::string_view title) {
    headerUI_->addTitle(title);
}

void UIPurse::updateProfile(const NodePtr& entry) {
    MORVANE_ASSERT_MAIN_THREAD();
    showEntry(*qrProfile_, entry);
}

void UIPurse::setBackgroundColor(const gfx::Color& color) {
    ui::View::setBackgroundColor(color);
    tbl_->setBackgroundColor(color);
    headerUI_->setBackgroundColor(color);
    qrProfile_->setBackgroundColor(color);
}

void UIPurse::addBorder(ui::View& view, double width) {
    QRProfile::addBorder(view, width);
}

double UIPurse::bottomOf(const ui::View& view, double offset) {
    return QRProfile::bottomOf(view, offset);
}

double UIPurse::heightOf(const ui::View& view, double offset) const {
    return bounds().height - bottomOf(view, offset);
}

void UIPurse::layoutSubviews() {
    const double w = bounds().width;
    const double h = bounds().height;
    const double s = gfx::Font::systemFontSize();
    qrProfile_->setFrame({0, 0, w, h});
    headerUI_->setFrame({0, 0, w, std::floor(8 * s)});
    tbl_->setFrame({0, bottomOf(*headerUI_), w, heightOf(*headerUI_)});
}

} // namespace morvane
