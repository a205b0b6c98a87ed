#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/FastThreadLocal.h>
#include <morvane/model/detail/Release.h>

namespace morvane::detail {

namespace {
// Destructors nest this deep before they defer (a few frames each).
constexpr int kDeepestRelease = 128;

// Plain data, so that a tree held by a thread-local and released while the
// thread ends still finds them. Every release of a Node or list holding a
// container reads them.
constinit thread_local int tDepth MORVANE_FAST_TLS = 0;
constinit thread_local std::vector<Value>* tDeferred MORVANE_FAST_TLS = nullptr;
} // namespace

ReleaseScope::ReleaseScope() noexcept : outermost_(tDepth == 0), deep_(tDepth >= kDeepestRelease) {
    if (outermost_) tDeferred = &deferred_;
    ++tDepth;
}

ReleaseScope::~ReleaseScope() {
    if (outermost_) {
        // Each one released here nests at most kDeepestRelease deep again,
        // and defers what lies below to this same list.
        while (!deferred_.empty()) {
            Value last = std::move(deferred_.back());
            deferred_.pop_back();
        }
        tDeferred = nullptr;
    }
    --tDepth;
}

void ReleaseScope::defer(Value& value) {
    const bool lastHolder = (value.isNode() && value.node().use_count() == 1) ||
                            (value.isList() && value.list().use_count() == 1);
    if (lastHolder) tDeferred->push_back(std::move(value));
}

} // namespace morvane::detail
