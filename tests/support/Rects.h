#pragma once
// Frames compared the way layouts make them: through centres, bounds and
// products of fractions, so two frames that mean the same may differ in the
// last bit.

#include <morvane/gfx/Geometry.h>

#include <gtest/gtest.h>

namespace morvane::test {

// Equal within 1e-6 on each of x, y, width and height.
::testing::AssertionResult sameRect(const gfx::Rect& a, const gfx::Rect& b);

} // namespace morvane::test
