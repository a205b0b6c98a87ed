#pragma once
// Snapshot comparison for tests that draw: compares an image with a PNG
// reference stored in the source tree, within a tolerance.
//
// When the reference is missing, or MORVANE_UPDATE_SNAPSHOTS=1 is set, the
// image is written as the new reference (then commit it). On a mismatch the
// actual image and a difference image go to <build>/snapshot-failures/.

#include <morvane/gfx/Image.h>

#include <gtest/gtest.h>

#include <string>

namespace morvane::testing {

// A pixel differs when any channel differs by more than `channelTolerance`
// (0...1); the images match when the share of differing pixels is at most
// `tolerance` and size and scale agree. A relative reference path is taken
// from the source tree (for example "tests/gfx/snapshots/card.png").
::testing::AssertionResult imageMatches(const gfx::Image& image, const std::string& referencePath,
                                        double tolerance = 0.01, double channelTolerance = 0.1);

// The same comparison between two images in memory (nothing is written).
::testing::AssertionResult imagesMatch(const gfx::Image& actual, const gfx::Image& expected,
                                       double tolerance = 0.01, double channelTolerance = 0.1);

// Records a test failure when the image does not match the reference.
void expectImageMatches(const gfx::Image& image, const std::string& referencePath, double tolerance = 0.01,
                        double channelTolerance = 0.1);

} // namespace morvane::testing
