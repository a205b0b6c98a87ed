#pragma once
// The gallery's boarding pass: a booking Node shown as a QR code whose VOID
// stamp can be set and lifted, and a QR reader pointed (through the virtual
// camera) at a picture of that code, which shows the Node it reads back
// beside the original. A second button shows the reader a code of plain
// text, which it refuses with its error strip.
//
//   auto screen = BoardingScreen::make(frame, booking, scratchFolder, goHome);

#include "TitledScreen.h"

#include <morvane/media/UIQRGen.h>
#include <morvane/media/UIQRRead.h>
#include <morvane/model/Forward.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/Label.h>

#include <filesystem>
#include <memory>
#include <string>

namespace gallery {

class BoardingScreen : public TitledScreen {
  public:
    static std::shared_ptr<BoardingScreen> make(const morvane::gfx::Rect& frame, morvane::NodePtr booking,
                                                std::filesystem::path folder, Back back);
    BoardingScreen(const morvane::gfx::Rect& frame, morvane::NodePtr booking, std::filesystem::path folder);

    const std::shared_ptr<morvane::UIQRGen>& pass() const { return pass_; }
    const std::shared_ptr<morvane::UIQRRead>& reader() const { return reader_; }
    const std::shared_ptr<morvane::ui::Button>& voidButton() const { return voidButton_; }
    const std::shared_ptr<morvane::ui::Button>& scanButton() const { return scanButton_; }
    const std::shared_ptr<morvane::ui::Button>& textButton() const { return textButton_; }
    const std::shared_ptr<morvane::ui::Label>& decoded() const { return decoded_; }
    // How many codes the reader has read back as Nodes.
    int reads() const { return reads_; }
    const morvane::NodePtr& booking() const { return booking_; }

  protected:
    void layoutSubviews() override;

  private:
    void wire(Back back);
    // Points the camera at a code of the text and starts the reader.
    void scan(const std::string& text, const std::string& file);

    morvane::NodePtr booking_;
    std::filesystem::path folder_;
    std::shared_ptr<morvane::UIQRGen> pass_;
    std::shared_ptr<morvane::ui::Label> original_;
    std::shared_ptr<morvane::ui::Button> voidButton_;
    std::shared_ptr<morvane::ui::Button> scanButton_;
    std::shared_ptr<morvane::ui::Button> textButton_;
    std::shared_ptr<morvane::UIQRRead> reader_;
    std::shared_ptr<morvane::ui::Label> decoded_;
    morvane::gfx::Size drawnFor_;
    int reads_ = 0;
};

} // namespace gallery
