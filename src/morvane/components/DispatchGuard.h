#pragma once
// DispatchGuard: holds a component for the length of a dispatch to its
// owner's callbacks.
//
//   void UITbl::callSelect(...) {
//       DispatchGuard guard(*this);
//       for (auto& select : cbItemSelect_.snapshot()) select(key, row);
//       // members may still be touched here, whatever the callbacks did
//   }
//
// A callback may drop the last reference to its component, but the
// component's own code (a touch handler, a layout pass, the rest of the
// dispatch) still runs after the callback returns. So the guard keeps a
// reference, and when it holds the last one it hands it to the main queue,
// where it is dropped once the current event is over. A component that is
// not owned by a shared_ptr (built on the stack) is simply not held.

#include <morvane/ui/core/View.h>

#include <memory>

namespace morvane {

class DispatchGuard {
  public:
    explicit DispatchGuard(ui::View& component);
    ~DispatchGuard();
    DispatchGuard(const DispatchGuard&) = delete;
    DispatchGuard& operator=(const DispatchGuard&) = delete;

  private:
    std::shared_ptr<ui::View> component_;
};

} // namespace morvane
