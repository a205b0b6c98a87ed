#pragma once
// NItemPrice: a small editor for one priced entry of a choice list (an item
// name, a price, a selected mark), shown over a screen by the application.
// It knows the entry it edits only by its view tag, handed back first in
// every item callback; each action button hides the editor before it reports.
//
//   auto editor = NItemPrice::initWithData("Edit dish", "Dish", "Price");
//   editor->setFrame({20, 200, 350, 300});
//   editor->setTag(3);                                  // the entry's index
//   editor->setTop("Grilled sardines");
//   editor->setBottom("14.5");
//   editor->setSelection("yes");
//   editor->addUsedList(records->getAlreadyUsed("list")); // names a new entry may not take
//   editor->watchAction(0, save, create, del, cancel);
//
// The item field takes letters (a dish name is words); the price field takes
// digits and a point only. A name already used is flagged "Already used" and
// a price of "0000" "Error" in the fields' error lines; neither stops Save or
// New, which hand the texts over as they are. Save with a blank name reports
// a delete instead.
//
// Threads: main thread only. Every callback may call any operation of the
// editor, releasing it included.

#include <morvane/forms/UITxt.h>
#include <morvane/model/List.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/core/View.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace morvane {

class NItemPrice : public ui::View {
  public:
    // (tag, item as typed, price, selected: "yes", "no", or "" from DELETE)
    using ItemCB = std::function<void(int tag, const std::string& item, const std::string& price,
                                      const std::string& selected)>;
    // Always called with true.
    using CancelCB = std::function<void(bool flag)>;

    // The heading, the item field's caption and the price field's caption; a
    // zero frame until the application sets one.
    NItemPrice(std::string_view heading, std::string_view itemLabel, std::string_view priceLabel);
    static std::shared_ptr<NItemPrice> initWithData(std::string_view heading, std::string_view itemLabel,
                                                    std::string_view priceLabel);
    ~NItemPrice() override;

    const std::shared_ptr<UITxt>& itemTxt() const { return itemTxt_; }
    const std::shared_ptr<UITxt>& priceTxt() const { return priceTxt_; }
    const std::shared_ptr<ui::Button>& title() const { return title_; }
    const std::shared_ptr<ui::Button>& saveBtn() const { return saveBtn_; }
    const std::shared_ptr<ui::Button>& checkBtn() const { return checkBtn_; }
    const std::shared_ptr<ui::Button>& nwBtn() const { return nwBtn_; }
    const std::shared_ptr<ui::Button>& lineBtn() const { return lineBtn_; }
    const std::shared_ptr<ui::Button>& closeBtn() const { return closeBtn_; }
    const std::shared_ptr<ui::Button>& delBtn() const { return delBtn_; }
    // The names already in use, shared with the caller (not copied).
    const ListPtr& usedList() const { return *usedList_; }

    // The item field's text, and the price field's.
    void setTop(const Value& text);
    void setBottom(const Value& text);
    void addUsedList(ListPtr used);
    // "yes" selects; anything else, or nothing, unselects.
    void setSelection(const std::optional<std::string_view>& selection);
    // The action number is not used.
    void watchAction(int action, ItemCB save, ItemCB create, ItemCB del, CancelCB cancel);
    // Shows the mark for the selection: a blue "✓", or a red "✘".
    void checkIt();
    // "no" while the mark shows "✘", else "yes".
    std::string selectedText() const;

    // The buttons' actions.
    void saveAction();
    void createAction();
    void delAction();
    void cancelAction();
    void checkAction();

    void draw(gfx::Canvas& canvas, const gfx::Rect& rect) override;

  protected:
    void layoutSubviews() override;

  private:
    void errorTest();
    void watchItem();
    void report(const ItemCB& callback, const std::string& selected);

    std::shared_ptr<UITxt> itemTxt_;
    std::shared_ptr<UITxt> priceTxt_;
    std::shared_ptr<ui::Button> title_, saveBtn_, checkBtn_, nwBtn_, lineBtn_, closeBtn_, delBtn_;
    // Shared with the item field's validation, which may outlive the editor.
    std::shared_ptr<ListPtr> usedList_ = std::make_shared<ListPtr>();
    ItemCB saveCB_, createCB_, deleteCB_;
    CancelCB cancelCB_;
};

} // namespace morvane
