#include <morvane/commerce/QRProfile.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/gfx/Font.h>
#include <morvane/media/ZBImageModel.h>
#include <morvane/model/List.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/util/Txt.h>

#include <cstdio>

namespace morvane {

namespace {

std::shared_ptr<ui::Button> blackButton(const std::string& title, double fontSize) {
    auto b = std::make_shared<ui::Button>();
    b->titleLabel()->setFont(gfx::Font::boldSystemFont(fontSize));
    b->setTitle(title);
    b->setBackgroundColor(gfx::Color::blackColor());
    return b;
}

} // namespace

QRProfile::QRProfile(const gfx::Rect& frame, const gfx::Color& colour) : ui::View(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    const double s = gfx::Font::systemFontSize();
    myData_ = Node::make();

    qrProfileTbl_ = QRProfileTbl::initWithBackgroundColor(gfx::Color::clearColor());
    addSubview(qrProfileTbl_);
    qrGenUI_ = std::make_shared<UIQRGen>();
    addSubview(qrGenUI_);
    qrReadUI_ = std::make_shared<UIQRRead>();
    qrReadUI_->setHidden(true);
    addSubview(qrReadUI_);
    logo_ = std::make_shared<ui::ImageView>();
    logo_->setAccessibilityHint("icon");
    logo_->setContentMode(gfx::ContentMode::AspectFit);
    logo_->setClipsToBounds(true);
    addSubview(logo_);

    backBtn_ = std::make_shared<ui::Button>();
    backBtn_->titleLabel()->setFont(gfx::Font::boldSystemFont(1.5 * s));
    backBtn_->setTitle(" \u2190");
    backBtn_->setContentHorizontalAlignment(ui::ContentHorizontalAlignment::Left);
    backBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { backAction(); });
    addSubview(backBtn_);

    scanQRTestBtn_ = blackButton("Test QR code", s);
    scanQRTestBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { testAction(); });
    addSubview(scanQRTestBtn_);
    scanQRBtn_ = blackButton("Scan QR code", s);
    scanQRBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { updateAction(); });
    addSubview(scanQRBtn_);
    // Kept for applications that reach for it; it has no place and no action.
    logoffBtn_ = blackButton("Log Off", s);
    addSubview(logoffBtn_);

    indicator_ = std::make_shared<ui::ActivityIndicator>(ui::ActivityIndicator::Style::Large);
    indicator_->setColor(gfx::Color::whiteColor());
    indicator_->setBackgroundColor(gfx::Color::blackColor());
    indicator_->setHidden(true);
    addSubview(indicator_);

    setBackgroundColor(colour);
    watchQRRead();
}

std::shared_ptr<QRProfile> QRProfile::initWithColor(const gfx::Color& colour) {
    return std::make_shared<QRProfile>(gfx::Rect{}, colour);
}

QRProfile::~QRProfile() {
    // The buttons may outlive the panel: their actions must not reach back.
    for (const auto& b : {backBtn_, scanQRTestBtn_, scanQRBtn_})
        b->removeActions(ui::ControlEvent::TouchUpInside);
}

void QRProfile::watchQRRead() {
    qrReadUI_->watchRead([scan = scan_](const std::string&, const Value& record) {
        if (const ScanCB callback = scan->get()) callback("Scan", record);
    });
}

void QRProfile::addQR(const NodePtr& record) {
    MORVANE_ASSERT_MAIN_THREAD();
    updateUI(record);
    scanQRBtn_->setHidden(false);
    qrGenUI_->setHidden(false);
    logo_->setHidden(true);
    myData_ = record ? record->shallowCopy() : Node::make();
    myData_->remove("^org");
    qrGenUI_->addQR(myData_);
}

void QRProfile::updateUI(const NodePtr& record) {
    MORVANE_ASSERT_MAIN_THREAD();
    qrProfileTbl_->clear();
    if (record) {
        if (const ListPtr& lines = record->get("^org").list()) {
            for (const Value& item : *lines) {
                const NodePtr& line = item.node();
                if (!line) continue;
                const std::string* label = line->get("title").text();
                if (const ListPtr& chosen = line->get("Data").list()) {
                    qrProfileTbl_->addData(label ? *label : std::string(),
                                           chosen->gatherArrayText("$selection", "  ", "\n"));
                } else if (const std::string* value = line->get("$data").text(); label && value) {
                    qrProfileTbl_->addData(*label, *value);
                }
            }
        }
    }
    char total[64];
    std::snprintf(total, sizeof total, "%.2f", record ? record->gatherFloat("$price") : 0.0);
    qrProfileTbl_->addData("Your Cost", total);
    qrProfileTbl_->refresh();
}

void QRProfile::addName(std::string_view name) {
    MORVANE_ASSERT_MAIN_THREAD();
    myData_->set("title", Value(name));
    qrProfileTbl_->addTitle(Txt::splitBy(name, "-"));
}

void QRProfile::addStatus(std::string_view status) {
    MORVANE_ASSERT_MAIN_THREAD();
    qrGenUI_->addStatus(status == "ACTIVE" ? std::nullopt : std::optional<std::string_view>(status));
}

void QRProfile::addImage(std::optional<std::string_view> name, std::optional<std::string_view> imgd) {
    MORVANE_ASSERT_MAIN_THREAD();
    scanQRBtn_->setHidden(true);
    qrGenUI_->setHidden(true);
    logo_->setHidden(false);
    std::weak_ptr<QRProfile> weak = std::static_pointer_cast<QRProfile>(weak_from_this().lock());
    ZBImageModel::loadOnMain(name, imgd, std::weak_ptr<const void>(weak), [weak](const gfx::Image& image) {
        auto self = weak.lock();
        if (!self) return;
        self->logoSmall_ = image.size().width < kSmallLogoWidth;
        self->logo_->setImage(image);
        self->setNeedsLayout();
    });
}

void QRProfile::show(bool busy) {
    MORVANE_ASSERT_MAIN_THREAD();
    indicator_->setHidden(!busy);
    if (busy)
        indicator_->startAnimating();
    else
        indicator_->stopAnimating();
    bringSubviewToFront(indicator_.get());
}

void QRProfile::watchBackBtn(BackCB callback) {
    MORVANE_ASSERT_MAIN_THREAD();
    backCB_ = std::move(callback);
}

void QRProfile::watchQRScan(ScanCB callback) {
    std::lock_guard lock(scan_->mutex);
    scan_->callback = std::move(callback);
}

void QRProfile::backAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    setHidden(true);
    if (backCB_) {
        DispatchGuard guard(*this);
        const BackCB call = backCB_;
        call("", Node::make());
    }
    // The code comes back next time, not the reader.
    std::weak_ptr<QRProfile> weak = std::static_pointer_cast<QRProfile>(weak_from_this().lock());
    sys::Queue::main().async([weak] {
        if (auto self = weak.lock()) {
            self->qrGenUI_->setHidden(false);
            self->qrReadUI_->setHidden(true);
        }
    });
}

void QRProfile::updateAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    const bool readerHidden = qrReadUI_->isHidden();
    logo_->setHidden(readerHidden);
    qrGenUI_->setHidden(readerHidden);
    qrReadUI_->setHidden(!readerHidden);
}

void QRProfile::testAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    const ScanCB callback = scan_->get();
    if (!callback) return;
    DispatchGuard guard(*this);
    callback("Scan", Value(myData_));
}

void QRProfile::addBorder(ui::View& view, double width) {
    QRProfileTbl::addBorder(view, width);
}

double QRProfile::bottomOf(const ui::View& view, double offset) {
    return QRProfileTbl::bottomOf(view, offset);
}

double QRProfile::aboveOf(const ui::View& view, double offset) {
    return view.frame().y + view.frame().height - offset;
}

void QRProfile::layoutSubviews() {
    const double w = bounds().width;
    const double h = bounds().height;
    const double b = 2.5 * gfx::Font::systemFontSize();
    const double l = (logoSmall_ ? 0.15 : 0.4) * h;
    const double q = 0.4 * h;
    backBtn_->setFrame({0, 0, w, 2 * b});
    logo_->setFrame({0, bottomOf(*backBtn_), w, l});
    qrGenUI_->setFrame({(w - q) / 2, bottomOf(*backBtn_), q, l});
    qrReadUI_->setFrame({(w - q) / 2, 0.05 * h, q, l});
    qrProfileTbl_->setFrame({0.1 * w, bottomOf(*logo_), 0.8 * w, 0.35 * h});
    scanQRBtn_->setFrame({0.3 * w, h - 1.5 * b, 0.4 * w, 0.9 * b});
    indicator_->setFrame({(w - 1.5 * b) / 2, (h - 1.5 * b) * 0.4, 1.5 * b, 1.5 * b});
    scanQRTestBtn_->setHidden(true);
    scanQRBtn_->layer().setCornerRadius(0.45 * b);
    indicator_->layer().setCornerRadius(0.2 * 1.5 * b);
}

} // namespace morvane
