#pragma once
// UIPurse: the purse screen. The header's data sets are the purse's wallets;
// the grid below shows the entries of the wallet chosen; choosing an entry
// opens a QR profile panel over the whole purse with the entry as a code and
// its details. The panel closes itself with its back button.
//
//   auto purse = UIPurse::initWithTitle("Hotel Farol", "person");
//   purse->cfg(...);                           // the grid's twelve callbacks
//   purse->addWallet(wallets);                 // {"Folio": {"a": entry, ...}, "Spa card": {...}}
//   purse->watchQRScan([](const std::string&, const Value& read) { ... });
//
// An entry's "company" names the panel and its "ustatus" stamps the code
// ("ACTIVE" for no stamp); an entry without them leaves the panel's name and
// stamp as they were. The grid shows a wallet's entries in the order the
// wallet holds them.
//
// Threads: main thread only, except the scan report (on the reader's queue).

#include <morvane/commerce/QRProfile.h>
#include <morvane/components/ListConfig.h>
#include <morvane/lists/UICTbl.h>
#include <morvane/lists/UIHeader.h>
#include <morvane/model/Node.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace morvane {

class UIPurse : public ui::View {
  public:
    using RefreshCB = std::function<void(const std::string& text, const NodePtr& node)>;
    // The grid's registration name for its own select and populate callbacks.
    static constexpr const char* kRegistration = "purseUI";

    // A title and a header picture; a zero frame until the application sets one.
    UIPurse(std::string_view title, std::optional<std::string_view> image);
    static std::shared_ptr<UIPurse> initWithTitle(std::string_view title,
                                                  std::optional<std::string_view> image);

    const std::shared_ptr<QRProfile>& qrProfile() const { return qrProfile_; }
    const std::shared_ptr<UIHeader>& headerUI() const { return headerUI_; }
    const std::shared_ptr<UICTbl>& tbl() const { return tbl_; }

    // Replaces the wallets: each member of `wallets` is a wallet's name and
    // its entries (a Node whose values are the entries).
    void addWallet(const NodePtr& wallets);
    // The grid's configuration, passed on unchanged.
    void cfg(const ListConfig& config);
    void cfg(const UICTbl::KeysCB& cfg, const UICTbl::KeysCB& header, const UICTbl::KeysCB& body,
             const UICTbl::KeysCB& price, const UICTbl::FlagCB& sort, const UICTbl::KeysCB& sortBy,
             const UICTbl::FlagCB& ascending, const UICTbl::SizeCB& cellHeight,
             const UICTbl::SizeCB& numOfCol, const UICTbl::FlagCB& checkBox,
             const UICTbl::SelectionCB& select, const UICTbl::FlagCB& inckey);
    // Kept for the application; the purse never calls it.
    void watchRefresh(RefreshCB callback) { refreshCB_ = std::move(callback); }
    void watchQRScan(QRProfile::ScanCB callback);
    void watchTranslate(TranslateCB translate);
    void addTitle(std::string_view title);
    // Fills the panel from an entry: its name, its stamp, its code and lines.
    void updateProfile(const NodePtr& entry);

    void setBackgroundColor(const gfx::Color& color) override;
    static void addBorder(ui::View& view, double width);
    static double bottomOf(const ui::View& view, double offset = 0);
    double heightOf(const ui::View& view, double offset = 0) const;

  protected:
    void layoutSubviews() override;

  private:
    void watchHeader();
    void watchTbl();

    std::shared_ptr<QRProfile> qrProfile_;
    std::shared_ptr<UIHeader> headerUI_;
    std::shared_ptr<UICTbl> tbl_;
    RefreshCB refreshCB_;
};

} // namespace morvane
