#pragma once
// The base of gesture recognisers. A recogniser attached to a view watches
// every touch that begins on that view or its descendants, before the view
// the touch began on sees it. When it recognises its gesture (a discrete one
// ends, a continuous one begins), it claims the touch: the other recognisers
// of the touch fail and, with cancelsTouchesInView (the default), the view
// is told the touch was cancelled and sees no more of it. Actions run on each
// recognised step (began, changed and ended for a continuous gesture).
//
// Subclasses (tap here; pan for scroll views) override the touch hooks and
// move the state with setState().

#include <morvane/gfx/Geometry.h>
#include <morvane/ui/Forward.h>

#include <functional>
#include <vector>

namespace morvane::ui {

class GestureRecognizer {
  public:
    enum class State { Possible, Began, Changed, Ended, Cancelled, Failed };
    using Action = std::function<void(GestureRecognizer& recognizer)>;

    GestureRecognizer() = default;
    virtual ~GestureRecognizer() = default;
    GestureRecognizer(const GestureRecognizer&) = delete;
    GestureRecognizer& operator=(const GestureRecognizer&) = delete;

    // Adds a target's action; every action runs on each step, in the order added.
    void addTarget(Action action);
    void removeAllTargets() { actions_.clear(); }

    View* view() const { return view_; }
    State state() const { return state_; }
    bool isEnabled() const { return enabled_; }
    void setEnabled(bool enabled) { enabled_ = enabled; }
    bool cancelsTouchesInView() const { return cancelsTouches_; }
    void setCancelsTouchesInView(bool cancels) { cancelsTouches_ = cancels; }

    // Where the touch was at the last step, in the coordinates of `view`.
    gfx::Point locationIn(const View* view) const;

    // A control under the recogniser's view keeps its own touches from
    // recognisers that yield (taps do; drags do not, so a list still scrolls
    // when the finger lands on a button).
    virtual bool yieldsToControls() const { return false; }

  protected:
    virtual void touchBegan(const Touch&) {}
    virtual void touchMoved(const Touch&) {}
    virtual void touchEnded(const Touch&) {}
    virtual void touchCancelled(const Touch&) { setState(State::Cancelled); }
    // Back to Possible before each new touch.
    virtual void reset() {}

    // Began, Changed and Ended are recognised steps: they claim the touch (if
    // nothing else has) and run the actions.
    void setState(State state);

  private:
    friend class View;
    friend class Window;
    bool isActive() const {
        return state_ == State::Possible || state_ == State::Began || state_ == State::Changed;
    }
    void runActions();

    View* view_ = nullptr;
    std::vector<Action> actions_;
    State state_ = State::Possible;
    bool enabled_ = true;
    bool cancelsTouches_ = true;
    bool stepPending_ = false;
    gfx::Point location_;
};

} // namespace morvane::ui
