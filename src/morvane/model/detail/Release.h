#pragma once
// Keeps the release of a deep tree from nesting one destructor inside the
// other per level (internal).
//
// A Node's destructor releases its values, which may run the destructors of
// the Nodes and lists it held last, and so on down the tree. That is the
// quickest way to drop an ordinary tree, so it stays; but a chain built by an
// application can be a million levels deep. Each Node and list destructor
// opens a ReleaseScope: past a fixed depth, the containers it holds the last
// reference to are moved to a list kept by the outermost scope of the thread,
// which releases them one after the other when it closes.

#include <morvane/model/Value.h>

#include <vector>

namespace morvane::detail {

class ReleaseScope {
  public:
    ReleaseScope() noexcept;
    ~ReleaseScope();
    ReleaseScope(const ReleaseScope&) = delete;
    ReleaseScope& operator=(const ReleaseScope&) = delete;

    // True when the releases of this scope must not nest any deeper.
    bool deep() const noexcept { return deep_; }
    // Leaves `value` to the outermost scope when it holds the last reference
    // to a Node or list (else releasing it only counts down).
    void defer(Value& value);

  private:
    std::vector<Value> deferred_; // used by the outermost scope only
    bool outermost_;
    bool deep_;
};

} // namespace morvane::detail
