#include "Snapshot.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace morvane::testing {

namespace fs = std::filesystem;

namespace {

bool writeFile(const fs::path& path, const std::vector<std::uint8_t>& bytes) {
    std::error_code ignored;
    fs::create_directories(path.parent_path(), ignored);
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(out);
}

bool updateRequested() {
    const char* flag = std::getenv("MORVANE_UPDATE_SNAPSHOTS");
    return flag && std::string(flag) == "1";
}

// A picture of where the images differ: differing pixels red, the rest a faint
// grey copy of the reference, for looking at next to the actual image.
gfx::Image differenceImage(const std::vector<std::uint8_t>& actual, const std::vector<std::uint8_t>& expected,
                           int width, int height, int channelLimit) {
    std::vector<std::uint8_t> out(actual.size());
    for (std::size_t i = 0; i < actual.size(); i += 4) {
        bool differs = false;
        for (int c = 0; c < 4; ++c)
            differs = differs || std::abs(actual[i + c] - expected[i + c]) > channelLimit;
        std::uint8_t grey =
            static_cast<std::uint8_t>(255 - (expected[i] + expected[i + 1] + expected[i + 2]) / 12);
        out[i] = differs ? 255 : grey;
        out[i + 1] = differs ? 0 : grey;
        out[i + 2] = differs ? 0 : grey;
        out[i + 3] = 255;
    }
    return gfx::Image::fromPixels(out.data(), width, height, static_cast<std::size_t>(width) * 4,
                                  gfx::PixelFormat::RGBA);
}

// The share of pixels where any channel differs by more than the tolerance;
// the images have the same pixel size.
double differingShare(const gfx::Image& actual, const gfx::Image& expected, double channelTolerance,
                      std::size_t& differing) {
    auto actualPixels = actual.pixels(gfx::PixelFormat::RGBAPremultiplied);
    auto expectedPixels = expected.pixels(gfx::PixelFormat::RGBAPremultiplied);
    int channelLimit = static_cast<int>(channelTolerance * 255);
    differing = 0;
    for (std::size_t i = 0; i < actualPixels.size(); i += 4) {
        for (int c = 0; c < 4; ++c) {
            if (std::abs(actualPixels[i + c] - expectedPixels[i + c]) > channelLimit) {
                ++differing;
                break;
            }
        }
    }
    return actualPixels.empty() ? 0 : static_cast<double>(differing) / (actualPixels.size() / 4);
}

} // namespace

::testing::AssertionResult imageMatches(const gfx::Image& image, const std::string& referencePath,
                                        double tolerance, double channelTolerance) {
    if (image.isNull()) return ::testing::AssertionFailure() << "the image to compare is null";
    fs::path reference(referencePath);
    if (reference.is_relative()) reference = fs::path(MORVANE_SOURCE_DIR) / reference;

    if (updateRequested() || !fs::exists(reference)) {
        if (!writeFile(reference, image.pngData()))
            return ::testing::AssertionFailure() << "cannot write the reference " << reference;
        return ::testing::AssertionSuccess() << "wrote the reference " << reference;
    }

    // References are stored at scale 1 in PNG; the scale is part of the name
    // the test chooses, so only the pixel size is compared here.
    std::string error;
    gfx::Image expected = gfx::Image::fromFile(reference.string(), image.scale(), &error);
    if (expected.isNull())
        return ::testing::AssertionFailure() << "cannot read " << reference << ": " << error;

    fs::path failures = fs::path(MORVANE_BINARY_DIR) / "snapshot-failures";
    std::string stem = reference.stem().string();
    auto fail = [&](const std::string& why) {
        writeFile(failures / (stem + ".actual.png"), image.pngData());
        return ::testing::AssertionFailure()
               << why << "; the actual image is in " << (failures / (stem + ".actual.png"));
    };
    if (expected.pixelWidth() != image.pixelWidth() || expected.pixelHeight() != image.pixelHeight()) {
        std::ostringstream why;
        why << "size " << image.pixelWidth() << " x " << image.pixelHeight()
            << " differs from the reference's " << expected.pixelWidth() << " x " << expected.pixelHeight();
        return fail(why.str());
    }

    std::size_t differing = 0;
    double share = differingShare(image, expected, channelTolerance, differing);
    if (share <= tolerance) return ::testing::AssertionSuccess();

    int channelLimit = static_cast<int>(channelTolerance * 255);
    writeFile(failures / (stem + ".diff.png"),
              differenceImage(image.pixels(gfx::PixelFormat::RGBAPremultiplied),
                              expected.pixels(gfx::PixelFormat::RGBAPremultiplied), image.pixelWidth(),
                              image.pixelHeight(), channelLimit)
                  .pngData());
    std::ostringstream why;
    why << differing << " pixels (" << share * 100 << " %) differ from " << reference << ", more than "
        << tolerance * 100 << " %";
    return fail(why.str());
}

::testing::AssertionResult imagesMatch(const gfx::Image& actual, const gfx::Image& expected, double tolerance,
                                       double channelTolerance) {
    if (actual.isNull() || expected.isNull()) return ::testing::AssertionFailure() << "an image is null";
    if (actual.pixelWidth() != expected.pixelWidth() || actual.pixelHeight() != expected.pixelHeight())
        return ::testing::AssertionFailure()
               << "sizes differ: " << actual.pixelWidth() << " x " << actual.pixelHeight() << " and "
               << expected.pixelWidth() << " x " << expected.pixelHeight();
    std::size_t differing = 0;
    double share = differingShare(actual, expected, channelTolerance, differing);
    if (share <= tolerance) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << differing << " pixels (" << share * 100 << " %) differ, more than " << tolerance * 100 << " %";
}

void expectImageMatches(const gfx::Image& image, const std::string& referencePath, double tolerance,
                        double channelTolerance) {
    EXPECT_TRUE(imageMatches(image, referencePath, tolerance, channelTolerance));
}

} // namespace morvane::testing
