#pragma once
// UICTblCell: one tile of a UICTbl. Wider than tall it is a row, laid out as
// UITblCell's; otherwise it is a card: a big rounded picture on top, the
// header centred under it, the price in the top right corner. The same fill
// operations as the row cell; the header is a text view, so long names wrap.
//
//   tile->addImage("https://example.com/dish.jpg", std::nullopt);
//   tile->addHeader("Menu-Grilled sardines");   // shows "Grilled sardines"
//   tile->addPrice("14 EUR");
//
// Pictures narrower than 0.72 of their height sit whole on their corner
// colour, exactly square ones are shown whole and unclipped, all others fill
// the picture frame. Main thread only; picture answers are re-posted to it.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Image.h>
#include <morvane/ui/collections/CollectionViewCell.h>
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

class UICTblCell : public ui::CollectionViewCell {
  public:
    explicit UICTblCell(std::string reuseIdentifier = "cellID");
    ~UICTblCell() override;

    const std::shared_ptr<ui::ActivityIndicator>& indicator() const { return indicator_; }
    const std::shared_ptr<ui::ImageView>& photo() const { return photo_; }
    const std::shared_ptr<ui::TextView>& headLbl() const { return headLbl_; }
    const std::shared_ptr<ui::TextView>& bodyLbl() const { return bodyLbl_; }
    const std::shared_ptr<ui::Label>& priceLbl() const { return priceLbl_; }
    const std::shared_ptr<ui::Label>& checkLabel() const { return checkLabel_; }

    // ---- Filling (as UITblCell) -------------------------------------------------
    // No name hides the picture; a name shows the spinner until it arrives.
    void addImage(std::optional<std::string_view> name, std::optional<std::string_view> imgd);
    // Shows the last piece after "-" and then "/", without "<en>" markers;
    // returns that piece with its markers, for translation.
    std::string addHeader(std::string_view text);
    // Nothing empties the body; a text is appended as a new line.
    void addBody(std::optional<std::string_view> text);
    // Nothing hides the price.
    void addPrice(std::optional<std::string_view> text);
    void showCheckLabel(bool show);
    void showProgress(bool show);
    // Logs "runAction".
    void runAction();

    // ---- Layout helpers ---------------------------------------------------------
    // The tile's unit: 1.5 x the height of "Sample Text" (as the row cell's).
    static double getTextHeight();
    static double bottomOf(const ui::View& view, double offset = 0);
    double heightOf(const ui::View& view, double offset = 0) const;
    static void addBorder(ui::View& view, double width);
    // The row cell's image sampling.
    static std::optional<gfx::Color> getColorOfCornersForImage(const gfx::Image& image);
    static std::optional<gfx::Color> getColorAtPoint(gfx::Point point, std::span<const std::uint8_t> data,
                                                     int width);

  protected:
    void layoutSubviews() override;

  private:
    void showLoaded(const gfx::Image& image);

    std::shared_ptr<ui::ActivityIndicator> indicator_;
    std::shared_ptr<ui::ImageView> photo_;
    std::shared_ptr<ui::TextView> headLbl_;
    std::shared_ptr<ui::TextView> bodyLbl_;
    std::shared_ptr<ui::Label> priceLbl_;
    std::shared_ptr<ui::Label> checkLabel_;
};

} // namespace morvane
