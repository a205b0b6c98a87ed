#pragma once
// UITblCell: one row of a UITbl. A circular picture at the left, a bold
// header line, an italic body of several lines under it, a price at the right
// and a circular check mark. Everything is placed from the cell's own height
// and the system font size, so the row height alone scales the whole row.
// All texts are white: the cell expects the dark background its list gives it.
//
//   cell->addImage("https://example.com/hotel.jpg", "2024.05.01T10:00:00");
//   cell->addHeader("World/THA/Bangkok");        // shows "Bangkok"
//   cell->addBody("Sukhumvit 11");
//   cell->addPrice("120 EUR");
//   cell->showCheckLabel(true);
//
// Pictures come through the photo loader (ZBImageModel) with a spinner in the
// meantime. The loader may answer on any thread; the cell moves the work to
// the main queue and leaves a released cell alone. Every answer is shown when
// it arrives, as the kit's lists have always done: a cell reused for another
// row while a slow download ran shows that late picture until its next fill
// (each fill starts by clearing the picture). Main thread only.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Image.h>
#include <morvane/ui/collections/TableViewCell.h>
#include <morvane/ui/controls/ActivityIndicator.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/text/TextView.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace morvane {

class UITblCell : public ui::TableViewCell {
  public:
    // The gap left and right of the content, and the mask's inset above and below.
    static constexpr double kSideInset = 5;
    static constexpr double kTopInset = 2.5;

    // initWithStyle:reuseIdentifier:. Builds photo, price, header, body, check
    // mark and spinner, in that order, inside the content view.
    explicit UITblCell(Style style = Style::Default, std::string reuseIdentifier = {});
    ~UITblCell() override;

    const std::shared_ptr<ui::ActivityIndicator>& indicator() const { return indicator_; }
    const std::shared_ptr<ui::ImageView>& photo() const { return photo_; }
    const std::shared_ptr<ui::Label>& headLbl() const { return headLbl_; }
    const std::shared_ptr<ui::TextView>& bodyLbl() const { return bodyLbl_; }
    const std::shared_ptr<ui::Label>& priceLbl() const { return priceLbl_; }
    const std::shared_ptr<ui::Label>& checkLabel() const { return checkLabel_; }

    // ---- Filling -------------------------------------------------------------
    // No name hides the photo. A name (resource picture or address) shows the
    // spinner and loads the picture for the date stamp (which may be absent).
    void addImage(std::optional<std::string_view> name, std::optional<std::string_view> imgd);
    // Shows the last piece of the text after "-" and then "/" splits, without
    // its "<en>" markers; returns that piece with the markers kept, so the
    // caller can hand it to a translator.
    std::string addHeader(std::string_view text);
    // No text empties the body; a text starts the body or goes below it on a new line.
    void addBody(std::optional<std::string_view> text);
    // No text hides the price; a text sets and shows it.
    void addPrice(std::optional<std::string_view> text);
    void showCheckLabel(bool show);
    // True: the spinner shows and turns and the photo hides; false: the reverse.
    void showProgress(bool show);

    // ---- Layout helpers --------------------------------------------------------
    // The cell's layout unit: 1.5 times the height of "Sample Text" in the
    // system font at the system size. Not the list's row unit, UITbl::textHeight
    // (1 x "Text"); both names are the kit's own.
    static double getTextHeight();
    // The view's y plus its height (plus the offset).
    static double bottomOf(const ui::View& view, double offset = 0);
    // The cell's height minus bottomOf(view, offset): the room left below the view.
    double heightOf(const ui::View& view, double offset) const;
    // A white border of that width.
    static void addBorder(ui::View& view, double width);
    // Masks the view to its bounds less 5 points left and right and 2.5 above
    // and below, so that stacked rows show a gap between them.
    static void insetIt(ui::View& view);

    // ---- Picture sampling --------------------------------------------------------
    // Draws the picture into an ARGB bitmap, samples the kit's four corner
    // points and returns the first, (1, 1), read through getColorAtPoint;
    // nothing for a picture that cannot be drawn or is under 2 x 2 pixels.
    // The rows use GColor's corner colour for their pictures instead.
    static std::optional<gfx::Color> getColorOfCornersForImage(const gfx::Image& image);
    // The four bytes at ((y * width) + x) * 4, read as red, green, blue and
    // alpha (each / 255) in the order they lie; nothing outside the bytes or
    // the row. On the ARGB bitmap above that order yields alpha as red, red
    // as green and so on, which is how this cell has always read it.
    static std::optional<gfx::Color> getColorAtPoint(gfx::Point point, std::span<const std::uint8_t> data,
                                                     int width);

    void setSelected(bool selected, bool animated = false) override;

  protected:
    void layoutSubviews() override;

  private:
    // Places a picture that arrived by its shape and shows it.
    void showLoaded(const gfx::Image& image);

    std::shared_ptr<ui::ActivityIndicator> indicator_;
    std::shared_ptr<ui::ImageView> photo_;
    std::shared_ptr<ui::Label> headLbl_;
    std::shared_ptr<ui::TextView> bodyLbl_;
    std::shared_ptr<ui::Label> priceLbl_;
    std::shared_ptr<ui::Label> checkLabel_;
};

} // namespace morvane
