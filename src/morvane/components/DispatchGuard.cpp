#include <morvane/components/DispatchGuard.h>

#include <morvane/sys/Queue.h>

namespace morvane {

DispatchGuard::DispatchGuard(ui::View& component) : component_(component.weak_from_this().lock()) {}

DispatchGuard::~DispatchGuard() {
    if (component_ && component_.use_count() == 1)
        sys::Queue::main().async([component = std::move(component_)] {});
}

} // namespace morvane
