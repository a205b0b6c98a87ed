#pragma once
// UIQRGen: a Node shown as a QR code of its compact JSON text (level H), with
// a status stamp ("VOID") turned 45 degrees over it while a status is set.
// Touching the stamp lifts it for 8 seconds, so the code can be scanned.
//
//   auto qr = std::make_shared<UIQRGen>(gfx::Rect{0, 0, 240, 240});
//   qr->addQR(ticket);          // after the view has its size
//   qr->addStatus("VOID");      // or std::nullopt to clear it
//
// A Node whose text does not fit a code (more than 1,273 bytes) shows no
// code, with "Got an error: ..." in the log. Modules are whole pixels, the
// code centred (see gfx::QRCode).
// Threads: main thread only.

#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Image.h>
#include <morvane/model/Forward.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/core/View.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace morvane {

class UIQRGen : public ui::View {
  public:
    // The stamp titled "VOID", taking touches.
    explicit UIQRGen(const gfx::Rect& frame = {});
    // An untitled stamp that takes touches only when `enabled`.
    static std::shared_ptr<UIQRGen> initWithUsrEnable(bool enabled);
    ~UIQRGen() override;

    const std::shared_ptr<ui::Button>& stamp() const { return stamp_; }
    const std::shared_ptr<ui::ImageView>& qrCode() const { return qrCode_; }

    // Draws the Node's code into qrCode, at qrCode's current size.
    void addQR(const NodePtr& node);
    // Shows the stamp with the text (tag 1), or hides it (tag 0, no title).
    void addStatus(std::optional<std::string_view> status);
    // The Node's code sized to the rectangle, at the screen's scale; null
    // when it cannot be made.
    gfx::Image createQRFromDict(const gfx::Rect& rect, const NodePtr& node) const;
    // The code of the sample payload (dict2JSON).
    gfx::Image createQRFromString(const gfx::Rect& rect) const;
    // Compact JSON, or "" after logging "Got an error: ...".
    static std::string dict2Text(const NodePtr& node);
    // The sample payload, pretty-printed.
    static std::string dict2JSON();
    // The stamp's touch: hidden now, back in 8 s if a status is still set.
    void backAction();

  protected:
    void layoutSubviews() override;

  private:
    gfx::Image codeOf(const gfx::Rect& rect, const std::string& text) const;

    std::shared_ptr<ui::Button> stamp_;
    std::shared_ptr<ui::ImageView> qrCode_;
};

} // namespace morvane
