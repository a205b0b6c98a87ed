#pragma once
// What the three edit layers share: edit mode, a touch choosing the child
// under the finger (the lowest, then the one furthest right, among those the
// point lies strictly inside), the focus border and the round "↑" button at
// the chosen child's top right corner, the camera for picture children, and
// the two hooks a subclass gives meaning. UMEdit (a scroll view with the
// ZBDataInput bar), EditLayer (a plain view with the UIDataInput bar) and
// EditSLayer (a scroll view with the EditHelp panel) each add their editor:
// what the edit button opens, which children the touch passes over, when
// touches count, and which children are pictures.
//
// Threads: main thread only. The hooks may call any operation of the layer,
// releasing it included.

#include <morvane/forms/detail/DataInputBar.h>
#include <morvane/gfx/Image.h>
#include <morvane/media/NCamera.h>
#include <morvane/ui/controls/Button.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace morvane::detail {

template <class Base> class EditCanvas : public Base {
  public:
    // Replaces the built-in camera: gets the picture child's accessibility hint.
    using CameraCB = std::function<void(const std::optional<std::string>& hint)>;
    using DscrCB = std::function<void(const std::string& text)>;

    ~EditCanvas() override;

    const std::shared_ptr<ui::Button>& editBtn() const { return editBtn_; }
    // The child chosen by the last touch in edit mode (the layer itself when
    // it hit none); nothing before the first.
    ui::View* currentView() const;
    const std::shared_ptr<NCamera>& camera() const { return camera_; }
    bool canEdit() const { return canEdit_; }

    void startEditor();
    void stopEditor();
    void edit(bool on);
    void moreAction();
    void editCallback(bool) {}
    void watchCamera2(CameraCB callback) { cameraCB_ = std::move(callback); }
    // Kept for the application; the layer never calls it.
    void watchDscrCB(DscrCB callback) { dscrCB_ = std::move(callback); }

    // The view's text when it is a text child; others are left alone.
    static void setVal(ui::View& view, std::string_view text);
    // The text of `view` when the current view is a text child.
    std::optional<std::string> getVal(const ui::View& view) const;
    // Hides the button, takes every border away and, in edit mode, makes text
    // views read-only and still, so touches on them reach the layer.
    virtual void clearFocus();
    void focusView(ui::View& view);
    // The child chosen for a touch at the point (layer coordinates); the
    // layer itself when none.
    ui::View& searchView(gfx::Point point);
    // True when the point's y lies strictly between the rectangle's top and bottom.
    static bool inside(const gfx::Rect& rect, gfx::Point point);

    // The hooks: nothing here.
    virtual void txtChanged(const std::string& text, ui::View& view);
    virtual void imageChanged(const gfx::Image& image, ui::View& view);

    void touchesBegan(const ui::Touches& touches) override;
    void touchesMoved(const ui::Touches& touches) override;
    void touchesEnded(const ui::Touches& touches) override;

    static bool isTextChild(const ui::View& view);

  protected:
    explicit EditCanvas(const gfx::Rect& frame);

    // What the edit button does with the current view.
    virtual void editButtonAction() = 0;
    // Children the touch passes over (the editor of the layer).
    virtual bool isEditor(const ui::View& child) const = 0;
    // Whether touches choose children now (edit mode, and no editor in the way).
    virtual bool touchesChoose() const { return canEdit_; }
    // The children the camera replaces the picture of.
    virtual bool isPictureChild(const ui::View& view) const = 0;

    // The edit button on a picture child: the application's camera, when it
    // gave one, else the built-in camera in front.
    void openCamera(ui::View& picture);
    // For layers whose editor is a data input bar: the edit button (the bar
    // for a text child, the camera for a picture), the bar's save and delete
    // reaching the hooks, and the bar over the whole layer with the camera
    // placed once.
    void adoptBar(const std::shared_ptr<DataInputBar>& bar);
    void editWithBar(DataInputBar& bar);
    void layoutBar(DataInputBar& bar);
    // The current child, held for the length of an edit; null for the layer.
    std::shared_ptr<ui::View> currentChild() const { return currentChild_; }
    bool currentIsLayer() const { return currentIsLayer_; }
    void setCanEdit(bool canEdit) { canEdit_ = canEdit; }

  private:
    void watchCamera();
    void watchBar(DataInputBar& bar);

    std::shared_ptr<ui::Button> editBtn_;
    // The chosen child, held; or the layer itself, which holding would tie
    // the layer to itself.
    std::shared_ptr<ui::View> currentChild_;
    bool currentIsLayer_ = false;
    std::shared_ptr<NCamera> camera_;
    DscrCB dscrCB_;
    CameraCB cameraCB_;
    bool canEdit_ = false;
};

} // namespace morvane::detail
