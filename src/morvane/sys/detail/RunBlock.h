#pragma once
// Runs a queued block so that an exception escaping it is logged instead of
// ending the program on a thread nobody watches.

#include <functional>

namespace morvane::sys::detail {

void runBlock(std::function<void()>& block, const char* queueLabel);

} // namespace morvane::sys::detail
