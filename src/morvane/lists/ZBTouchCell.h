#pragma once
// ZBTouchCell: one button of a contact strip (ZBTouch): an icon, and a title
// that the strip leaves empty. Without a title the button is a circle (on a
// square cell) with a soft shadow in a darker shade of its colour; with one,
// the title fills a rounded button.
//
//   cell->addTitle("");             // hides the title
//   cell->addImage("phone", std::nullopt);
//
// Main thread only; a picture that arrives later is re-posted to it, and a
// cell gone by then is left alone.

#include <morvane/ui/collections/CollectionViewCell.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/controls/Label.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace morvane {

class ZBTouchCell : public ui::CollectionViewCell {
  public:
    explicit ZBTouchCell(std::string reuseIdentifier = "cellID");
    ~ZBTouchCell() override;

    const std::shared_ptr<ui::ImageView>& photo() const { return photo_; }
    const std::shared_ptr<ui::Label>& titleLbl() const { return titleLbl_; }

    // A non-empty text shows in the title; an empty or missing one hides it.
    ZBTouchCell& addTitle(std::optional<std::string_view> text);
    // Loads the picture of that name (a resource picture or an address) with
    // the date stamp, and shows it when it arrives.
    void addImage(std::optional<std::string_view> name, std::optional<std::string_view> imgd);
    // Logs "runAction".
    void runAction();

  protected:
    void layoutSubviews() override;

  private:
    std::shared_ptr<ui::ImageView> photo_;
    std::shared_ptr<ui::Label> titleLbl_;
};

} // namespace morvane
