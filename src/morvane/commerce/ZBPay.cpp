#include <morvane/commerce/ZBPay.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/sys/Queue.h>

namespace morvane {

ZBPay::ZBPay(const gfx::Rect& frame, const gfx::Color& colour) : ui::View(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    applePay_ = std::make_shared<ZBImageButton>(gfx::Color::blackColor(), "Apple Pay", "apple");
    applePay_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { appleAction(); });
    addSubview(applePay_);
    creditPay_ = std::make_shared<ZBImageButton>(gfx::Color::blackColor(), "Credit Card", "credit");
    creditPay_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { creditAction(); });
    addSubview(creditPay_);
    setBackgroundColor(colour);
}

std::shared_ptr<ZBPay> ZBPay::initWithColor(const gfx::Color& colour) {
    return std::make_shared<ZBPay>(gfx::Rect{}, colour);
}

ZBPay::~ZBPay() {
    // The buttons may outlive the strip: their actions must not reach back.
    applePay_->removeActions(ui::ControlEvent::TouchUpInside);
    creditPay_->removeActions(ui::ControlEvent::TouchUpInside);
}

void ZBPay::watchPayment(int, PaymentCB apple, PaymentCB credit) {
    MORVANE_ASSERT_MAIN_THREAD();
    appleCB_ = std::move(apple);
    creditCB_ = std::move(credit);
}

void ZBPay::showPayment(bool show) {
    MORVANE_ASSERT_MAIN_THREAD();
    applePay_->setHidden(!show);
    creditPay_->setHidden(!show);
}

double ZBPay::getFontHeight() {
    return 2 * getFontHeight(gfx::Font::systemFont(gfx::Font::systemFontSize()));
}

double ZBPay::getFontHeight(const gfx::Font& font) {
    return gfx::TextMetrics::size("Sample Text", font).height;
}

void ZBPay::appleAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!appleCB_) return;
    DispatchGuard guard(*this);
    const PaymentCB call = appleCB_;
    call(true);
}

void ZBPay::creditAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!creditCB_) return;
    setHidden(true);
    DispatchGuard guard(*this);
    const PaymentCB call = creditCB_;
    call(true);
}

void ZBPay::layoutSubviews() {
    const double w = bounds().width;
    const double h = bounds().height;
    const double f = getFontHeight();
    applePay_->setFrame({0.07 * w, (h - f) / 2, 0.4 * w, f});
    creditPay_->setFrame({0.53 * w, (h - f) / 2, 0.4 * w, f});
}

} // namespace morvane
