#pragma once
// A view that turns touches into actions: buttons and segmented controls. It
// tracks a touch from touch down to touch up, shows a pressed (highlighted)
// state while the finger is on it, and calls the actions registered for each
// event. Actions run in the order added; an action may remove or destroy the
// control.
//
//   button->addAction(ui::ControlEvent::TouchUpInside, [](ui::Control&) { ... });

#include <morvane/ui/core/View.h>

#include <functional>
#include <utility>
#include <vector>

namespace morvane::ui {

enum class ControlEvent {
    TouchDown,
    TouchUpInside,  // the touch ended inside the control: a press
    TouchUpOutside, // the touch ended after leaving it: no press
    TouchCancel,
    ValueChanged,
    EditingDidBegin,     // a text field took the focus
    EditingChanged,      // its text changed through typing
    EditingDidEnd,       // it gave the focus up
    EditingDidEndOnExit, // return was pressed and accepted
};

enum class ControlState { Normal, Highlighted, Selected, Disabled };

enum class ContentHorizontalAlignment { Center, Left, Right, Fill };
enum class ContentVerticalAlignment { Center, Top, Bottom, Fill };

class Control : public View {
  public:
    using Action = std::function<void(Control& sender)>;

    Control();
    explicit Control(const gfx::Rect& frame);

    void addAction(ControlEvent event, Action action);
    void removeActions(ControlEvent event);
    bool hasActions(ControlEvent event) const;
    // Calls the actions of the event now (a program may fire ValueChanged itself).
    void sendActions(ControlEvent event);

    bool isEnabled() const { return enabled_; }
    void setEnabled(bool enabled);
    bool isHighlighted() const { return highlighted_; }
    void setHighlighted(bool highlighted);
    bool isSelected() const { return selected_; }
    void setSelected(bool selected);
    // Disabled wins over highlighted, which wins over selected.
    ControlState state() const;
    bool isTracking() const { return tracking_; }

    ContentHorizontalAlignment contentHorizontalAlignment() const { return horizontalAlignment_; }
    void setContentHorizontalAlignment(ContentHorizontalAlignment alignment);
    ContentVerticalAlignment contentVerticalAlignment() const { return verticalAlignment_; }
    void setContentVerticalAlignment(ContentVerticalAlignment alignment);

    void touchesBegan(const Touches& touches) override;
    void touchesMoved(const Touches& touches) override;
    void touchesEnded(const Touches& touches) override;
    void touchesCancelled(const Touches& touches) override;

  protected:
    // Told after enabled, highlighted or selected changed.
    virtual void stateChanged() {}
    // Told when a tracked touch ends inside, before TouchUpInside is sent.
    virtual void touchEndedInside(const Touch&) {}

  private:
    std::vector<std::pair<ControlEvent, Action>> actions_;
    bool enabled_ = true;
    bool highlighted_ = false;
    bool selected_ = false;
    bool tracking_ = false;
    ContentHorizontalAlignment horizontalAlignment_ = ContentHorizontalAlignment::Center;
    ContentVerticalAlignment verticalAlignment_ = ContentVerticalAlignment::Center;
};

} // namespace morvane::ui
