#pragma once
// EditSLayer: the editing model of UMEdit on a scroll view, editing in place.
// In edit mode (which also lets the layer scroll) a touch chooses a child and
// the "↑" button edits it where it stands:
// - a label: the EditHelp panel is laid over it with its text, the layer
//   scrolls the panel to the top, and the label follows every keystroke; the
//   panel's done button reports the text once, through txtChanged;
// - a text view: it gets a thicker border and takes the typing itself until
//   the next touch;
// - an image view: the camera (a ZBImage is no picture here);
// - a text field or anything else: nothing is opened.
//
//   auto layer = std::make_shared<EditSLayer>(gfx::Rect{0, 0, 390, 600});
//   layer->addSubview(label);
//   layer->edit(true);
//   layer->addID("desk", Value("front"));
//
// Threads: main thread only. The hooks may call any operation of the layer.

#include <morvane/forms/EditHelp.h>
#include <morvane/forms/detail/EditCanvas.h>
#include <morvane/model/Node.h>
#include <morvane/ui/collections/ScrollView.h>

#include <memory>
#include <string_view>

namespace morvane {

class EditSLayer : public detail::EditCanvas<ui::ScrollView> {
  public:
    explicit EditSLayer(const gfx::Rect& frame = {});
    ~EditSLayer() override;

    const std::shared_ptr<EditHelp>& editHelp() const { return editHelp_; }
    // Identifiers the application keeps with the layer; the kit never reads them.
    const NodePtr& myIden() const { return myIden_; }
    void addID(std::string_view key, const Value& value);

    // Edit mode on or off; the layer scrolls exactly while it is on.
    void edit(bool on);
    // Also closes the panel and scrolls back to the top.
    void clearFocus() override;
    // The edit button's action, on the current view.
    void editAction();

  protected:
    void layoutSubviews() override;
    void editButtonAction() override { editAction(); }
    bool isEditor(const ui::View& child) const override { return &child == editHelp_.get(); }
    bool isPictureChild(const ui::View& view) const override;

  private:
    void watchEditHelp();
    std::shared_ptr<EditHelp> editHelp_;
    NodePtr myIden_;
};

} // namespace morvane
