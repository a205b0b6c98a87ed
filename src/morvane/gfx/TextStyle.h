#pragma once
// How a text is drawn into a rectangle: font, colour, alignment, how many
// lines at most, and what happens to text that does not fit.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Font.h>

namespace morvane::gfx {

enum class TextAlignment { Left, Center, Right };
enum class VerticalAlignment { Top, Center, Bottom };
// Word and character wrapping break lines and cut what does not fit; the
// truncating modes put an ellipsis at the head, the middle or the tail of the
// last line that fits; Clip wraps at words and cuts without an ellipsis.
enum class LineBreakMode { WordWrap, CharWrap, Clip, TruncateHead, TruncateTail, TruncateMiddle };

struct TextStyle {
    Font font;
    Color color = Color::blackColor();
    TextAlignment alignment = TextAlignment::Left;
    VerticalAlignment verticalAlignment = VerticalAlignment::Top;
    int numberOfLines = 1; // 0: as many as the rectangle holds
    LineBreakMode lineBreak = LineBreakMode::TruncateTail;
};

} // namespace morvane::gfx
