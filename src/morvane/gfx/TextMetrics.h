#pragma once
// Measuring text without drawing it. Sizes are in points and do not depend on
// the scale the text is later drawn at (glyph metrics are unhinted and glyph
// positions unrounded), so layout computed from them holds at scales 1, 2, 3.
// Results are cached per font and text: measuring the same text again costs a
// hash lookup. Main thread only (see Font.h).

#include <morvane/gfx/AttributedText.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/Geometry.h>

#include <string_view>

namespace morvane::gfx {

class TextMetrics {
  public:
    // The size of the text on one line (line breaks in it still start new
    // lines): what the platform's sizeWithAttributes gives.
    static Size size(std::string_view text, const Font& font);
    static Size size(const AttributedText& text);

    // The size of the text wrapped at words to the width, with unlimited height
    // (line-fragment layout); the width is that of the longest line.
    static Size boundingSize(std::string_view text, const Font& font, double width);
    static Size boundingSize(const AttributedText& text, double width);

    // The number of lines the text takes when wrapped to the width.
    static int lineCount(std::string_view text, const Font& font, double width);

    // Forgets the cached measurements and layouts of this thread.
    static void clearCache();
};

} // namespace morvane::gfx
