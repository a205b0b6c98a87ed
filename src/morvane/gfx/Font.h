#pragma once
// A font as a value: family, size in points, weight, slant and width. The
// system font is Inter at the system font size (17 points unless the app
// changes it); fonts asked for by name map onto the installed faces, with a
// condensed bold face standing in for named condensed bold fonts.
//
// Text is laid out by Pango, whose font maps are per thread: measure and draw
// text on the main thread (the view layer does; the measurement caches are
// per thread too, so another thread works but pays its own start-up).

#include <cstddef>
#include <string>
#include <string_view>

namespace morvane::gfx {

enum class FontWeight { Regular, Bold };
enum class FontSlant { Upright, Italic };
enum class FontWidth { Normal, Condensed };

class Font {
  public:
    static constexpr const char* kSystemFamily = "Inter";
    // The family that stands in for condensed faces (Inter has no condensed width).
    static constexpr const char* kCondensedFamily = "DejaVu Sans";

    // The system font at the system font size.
    Font();
    Font(std::string family, double pointSize, FontWeight weight = FontWeight::Regular,
         FontSlant slant = FontSlant::Upright, FontWidth width = FontWidth::Normal);

    // The app-wide system font size in points (17 by default). Changing it
    // affects fonts made afterwards; fonts already made keep their size.
    static double systemFontSize();
    static void setSystemFontSize(double pointSize);

    static Font systemFont(double pointSize);
    static Font boldSystemFont(double pointSize);
    static Font italicSystemFont(double pointSize);
    // A font by its platform name, such as "HelveticaNeue-CondensedBold" or
    // "Inter-Italic": the family part picks an installed family (unknown ones
    // fall back to the system family), the style part picks weight, slant and
    // width. Never fails.
    static Font fontWithName(std::string_view name, double pointSize);

    const std::string& family() const { return family_; }
    double pointSize() const { return pointSize_; }
    FontWeight weight() const { return weight_; }
    FontSlant slant() const { return slant_; }
    FontWidth width() const { return width_; }
    bool isBold() const { return weight_ == FontWeight::Bold; }
    bool isItalic() const { return slant_ == FontSlant::Italic; }

    Font withSize(double pointSize) const;

    // Metrics of the face at this size, in points.
    double ascender() const;
    double descender() const; // positive: the distance below the baseline
    double lineHeight() const;

    // A text that identifies the font (used as a cache key).
    const std::string& key() const { return key_; }
    bool operator==(const Font& other) const { return key_ == other.key_; }

  private:
    void makeKey();

    std::string family_;
    double pointSize_;
    FontWeight weight_;
    FontSlant slant_;
    FontWidth width_;
    std::string key_;
};

} // namespace morvane::gfx
