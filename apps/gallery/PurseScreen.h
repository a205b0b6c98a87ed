#pragma once
// The gallery's purse: a hotel folio and a spa card as the purse's wallets,
// their entries in a two-column grid, a chosen entry on the QR profile panel
// with its code, lines and total; the panel's "Scan QR code" turns it into a
// reader pointed (through the virtual camera) at another entry's code, and
// the payment strip below reports the way the guest pays.
//
//   auto screen = PurseScreen::make(frame, sample, scratchFolder, goHome);
//
// The sample holds the header's "photo" and the "wallets".

#include "TitledScreen.h"

#include <morvane/commerce/UIPurse.h>
#include <morvane/commerce/ZBPay.h>
#include <morvane/model/Forward.h>

#include <filesystem>
#include <memory>
#include <string>

namespace gallery {

class PurseScreen : public TitledScreen {
  public:
    static std::shared_ptr<PurseScreen> make(const morvane::gfx::Rect& frame, const morvane::NodePtr& sample,
                                             std::filesystem::path folder, Back back);
    PurseScreen(const morvane::gfx::Rect& frame, const morvane::NodePtr& sample,
                std::filesystem::path folder);

    const std::shared_ptr<morvane::UIPurse>& purse() const { return purse_; }
    const std::shared_ptr<morvane::ZBPay>& pay() const { return pay_; }
    const morvane::NodePtr& wallets() const { return wallets_; }
    // What the reader read last, as the panel reported it ("" until then).
    const std::string& lastRead() const { return lastRead_; }
    // Shows the camera the code of the entry under that key (in any wallet)
    // and starts the panel's reader; false when there is no such entry or
    // no camera.
    bool showCodeOf(const std::string& key);
    std::string waitingFor() const override;

  protected:
    void layoutSubviews() override;

  private:
    void wire(Back back);

    morvane::NodePtr wallets_;
    std::filesystem::path folder_;
    std::shared_ptr<morvane::UIPurse> purse_;
    std::shared_ptr<morvane::ZBPay> pay_;
    std::string lastRead_;
};

} // namespace gallery
