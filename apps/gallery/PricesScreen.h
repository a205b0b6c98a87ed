#pragma once
// The gallery's menu prices: a restaurant's choice records (one a line, as a
// kitchen sends them, with a comma after the last member) shown as a list of
// dishes and prices; a tap opens the item price selector over the list with
// that dish. A new dish must not take a name already in use; a saved price
// goes back into its record and the list.
//
//   auto screen = PricesScreen::make(frame, recordsText, goHome);

#include "TitledScreen.h"

#include <morvane/commerce/NItemPrice.h>
#include <morvane/lists/UITbl.h>
#include <morvane/model/Forward.h>

#include <memory>
#include <string>

namespace gallery {

class PricesScreen : public TitledScreen {
  public:
    static std::shared_ptr<PricesScreen> make(const morvane::gfx::Rect& frame, const std::string& records,
                                              Back back);
    PricesScreen(const morvane::gfx::Rect& frame, const std::string& records);

    const std::shared_ptr<morvane::UITbl>& list() const { return list_; }
    const std::shared_ptr<morvane::NItemPrice>& editor() const { return editor_; }
    const morvane::ListPtr& records() const { return records_; }
    // The price of a dish as its record now holds it ("" when there is none).
    std::string priceOf(const std::string& dish) const;

  protected:
    void layoutSubviews() override;

  private:
    void wire(Back back);
    void showList();
    // Opens the editor on the entry at `index` of the flattened list.
    void edit(int index);
    // Writes an entry back into its record: replaced, added or removed.
    void store(int index, const std::string& item, const std::string& price, bool remove);

    morvane::ListPtr records_;
    std::shared_ptr<morvane::UITbl> list_;
    std::shared_ptr<morvane::NItemPrice> editor_;
};

} // namespace gallery
