#pragma once
// ZBPay: a strip with two payment buttons, "Apple Pay" and "Credit Card",
// each a picture and a title, reporting which one was pressed.
//
//   auto pay = ZBPay::initWithColor(gfx::Color::brownColor());
//   pay->watchPayment(0, [](bool) { payByPhone(); }, [](bool) { payByCard(); });
//
// Credit Card hides the strip before it reports (the card form takes its
// place); Apple Pay leaves it up. The pictures are the kit's own "apple" and
// "credit", or the application's of the same names.
//
// Threads: main thread only. Either callback may release the strip.

#include <morvane/media/ZBImageButton.h>
#include <morvane/ui/core/View.h>

#include <functional>
#include <memory>

namespace morvane {

class ZBPay : public ui::View {
  public:
    using PaymentCB = std::function<void(bool chosen)>;

    explicit ZBPay(const gfx::Rect& frame = {}, const gfx::Color& colour = gfx::Color::brownColor());
    static std::shared_ptr<ZBPay> initWithColor(const gfx::Color& colour);
    ~ZBPay() override;

    const std::shared_ptr<ZBImageButton>& applePay() const { return applePay_; }
    const std::shared_ptr<ZBImageButton>& creditPay() const { return creditPay_; }

    // The first argument is not used.
    void watchPayment(int unused, PaymentCB apple, PaymentCB credit);
    // Shows or hides both buttons.
    void showPayment(bool show);
    // Twice the height of "Sample Text" in the system font; that height in a font.
    static double getFontHeight();
    static double getFontHeight(const gfx::Font& font);

    void appleAction();
    void creditAction();

  protected:
    void layoutSubviews() override;

  private:
    std::shared_ptr<ZBImageButton> applePay_;
    std::shared_ptr<ZBImageButton> creditPay_;
    PaymentCB appleCB_, creditCB_;
};

} // namespace morvane
