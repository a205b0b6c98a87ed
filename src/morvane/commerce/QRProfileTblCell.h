#pragma once
// QRProfileTblCell: one labelled line of a QR profile panel: the label on the
// left, right-aligned and bold, ending in ":", the value on the right; both
// wrap onto as many lines as they need.
//
//   cell->addLeft("Booking-Room");   // shows "Room:"
//   cell->addRight("12, sea view");
//
// Threads: main thread only.

#include <morvane/gfx/Font.h>
#include <morvane/ui/collections/TableViewCell.h>
#include <morvane/ui/controls/Label.h>

#include <memory>
#include <string>
#include <string_view>

namespace morvane {

class QRProfileTblCell : public ui::TableViewCell {
  public:
    static constexpr const char* kReuseIdentifier = "TViewCell";

    QRProfileTblCell(Style style = Style::Default, std::string reuseIdentifier = kReuseIdentifier);

    const std::shared_ptr<ui::Label>& leftLbl() const { return leftLbl_; }
    const std::shared_ptr<ui::Label>& rightLbl() const { return rightLbl_; }

    // The text after its last "-", followed by ":".
    void addLeft(std::string_view text);
    void addRight(std::string_view text);

    // The height the text needs at 0.64 of the cell's width in the system font.
    double heightLbl(std::string_view text) const;
    // The ceiling of the text's wrapped height at that width, and of its
    // width on one line (the height does not wrap it).
    static double heightWithConstrainedWidth(double width, const gfx::Font& font, std::string_view text);
    static double widthWithConstrainedHeight(double height, const gfx::Font& font, std::string_view text);
    // Whether the label's text fits its height at its width and font.
    static bool textFitsInLabel(const ui::Label& label);

  protected:
    void layoutSubviews() override;

  private:
    std::shared_ptr<ui::Label> leftLbl_;
    std::shared_ptr<ui::Label> rightLbl_;
};

} // namespace morvane
