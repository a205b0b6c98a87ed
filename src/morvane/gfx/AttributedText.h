#pragma once
// A text made of runs, each with its own font and colour, drawn and measured
// as one paragraph (a bold time followed by a small condensed time zone).

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Font.h>

#include <string>
#include <vector>

namespace morvane::gfx {

class AttributedText {
  public:
    struct Run {
        std::string text;
        Font font;
        Color color;
    };

    AttributedText() = default;
    AttributedText(std::string text, Font font, Color color) {
        append(std::move(text), std::move(font), color);
    }

    AttributedText& append(std::string text, Font font, Color color);

    const std::vector<Run>& runs() const { return runs_; }
    // The runs' texts joined.
    std::string string() const;
    bool isEmpty() const { return runs_.empty(); }
    // A text that identifies text and attributes (used as a cache key).
    std::string key() const;

  private:
    std::vector<Run> runs_;
};

} // namespace morvane::gfx
