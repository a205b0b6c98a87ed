#pragma once
// QRProfile: a full-screen panel that shows one record (a purse entry, a
// booking, a member card) as a QR code of the record (or a picture instead),
// as labelled lines under a title ending with the total cost, and, on
// demand, as a camera reader that reports the code it reads.
//
//   auto panel = QRProfile::initWithColor(gfx::Color::brownColor());
//   panel->watchBackBtn([](const std::string&, const NodePtr&) { ... });
//   panel->watchQRScan([](const std::string& what, const Value& record) {
//       // "Scan" and the record read, on the reader's queue "myQueue"
//   });
//   panel->addQR(entry);        // lines from its "^org", total from its "$price" texts
//   panel->addName("Spa-Card"); // the title shows "Card"
//
// A record's lines are the Nodes of its "^org" list: "title" is the label,
// "$data" the value, or, when the line has a "Data" list of chosen items,
// their "$selection" texts one under the other. "$price" texts anywhere in
// the record add up to the last line, "Your Cost". The code holds the record
// without its "^org" lines.
//
// Threads: main thread only, except the scan report (see above).

#include <morvane/commerce/QRProfileTbl.h>
#include <morvane/media/UIQRGen.h>
#include <morvane/media/UIQRRead.h>
#include <morvane/model/Node.h>
#include <morvane/ui/controls/ActivityIndicator.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/ImageView.h>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace morvane {

class QRProfile : public ui::View {
  public:
    using BackCB = std::function<void(const std::string& text, const NodePtr& node)>;
    // "Scan" and what was read: a Node, or a list for a code of a JSON array.
    using ScanCB = std::function<void(const std::string& text, const Value& record)>;
    // Pictures narrower than this leave the lines more room.
    static constexpr double kSmallLogoWidth = 129;

    explicit QRProfile(const gfx::Rect& frame = {}, const gfx::Color& colour = gfx::Color::brownColor());
    static std::shared_ptr<QRProfile> initWithColor(const gfx::Color& colour);
    ~QRProfile() override;

    const std::shared_ptr<ui::Button>& backBtn() const { return backBtn_; }
    const std::shared_ptr<ui::Button>& scanQRBtn() const { return scanQRBtn_; }
    const std::shared_ptr<ui::Button>& scanQRTestBtn() const { return scanQRTestBtn_; }
    const std::shared_ptr<ui::Button>& logoffBtn() const { return logoffBtn_; }
    const std::shared_ptr<ui::ActivityIndicator>& indicator() const { return indicator_; }
    const std::shared_ptr<UIQRGen>& qrGenUI() const { return qrGenUI_; }
    const std::shared_ptr<UIQRRead>& qrReadUI() const { return qrReadUI_; }
    const std::shared_ptr<ui::ImageView>& logo() const { return logo_; }
    const std::shared_ptr<QRProfileTbl>& qrProfileTbl() const { return qrProfileTbl_; }
    // The record last shown, without "^org", with "title" once named.
    const NodePtr& myData() const { return myData_; }
    bool logoSmall() const { return logoSmall_; }

    // Shows the record: its lines and total, and its code.
    void addQR(const NodePtr& record);
    // Rebuilds the lines and the total only.
    void updateUI(const NodePtr& record);
    void addName(std::string_view name);
    // "ACTIVE" clears the code's stamp; any other text is stamped over it.
    void addStatus(std::string_view status);
    // Shows the picture (a resource name or an address, with its date stamp)
    // instead of the code.
    void addImage(std::optional<std::string_view> name, std::optional<std::string_view> imgd);
    void addKeyCode(std::string_view key) { myKey_ = key; }
    const std::string& keyCode() const { return myKey_; }
    // Shows and turns the busy indicator, in front of everything, or hides it.
    void show(bool busy);
    void watchBackBtn(BackCB callback);
    void watchQRScan(ScanCB callback);

    // The buttons' actions.
    void backAction();
    // Swaps the code (or picture) and the reader.
    void updateAction();
    // Reports the record shown as if it had been scanned.
    void testAction();

    static void addBorder(ui::View& view, double width);
    static double bottomOf(const ui::View& view, double offset = 0);
    static double aboveOf(const ui::View& view, double offset);

  protected:
    void layoutSubviews() override;

  private:
    // The scan callback is read on the reader's queue: it lives behind a lock
    // that the reader's callback shares, so it outlives the panel safely.
    struct Scan {
        std::mutex mutex;
        ScanCB callback;
        ScanCB get() {
            std::lock_guard lock(mutex);
            return callback;
        }
    };
    void watchQRRead();

    std::shared_ptr<ui::Button> backBtn_, scanQRBtn_, scanQRTestBtn_, logoffBtn_;
    std::shared_ptr<ui::ActivityIndicator> indicator_;
    std::shared_ptr<UIQRGen> qrGenUI_;
    std::shared_ptr<UIQRRead> qrReadUI_;
    std::shared_ptr<ui::ImageView> logo_;
    std::shared_ptr<QRProfileTbl> qrProfileTbl_;
    NodePtr myData_;
    BackCB backCB_;
    std::shared_ptr<Scan> scan_ = std::make_shared<Scan>();
    bool logoSmall_ = false;
    std::string myKey_;
};

} // namespace morvane
