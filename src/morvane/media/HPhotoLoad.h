#pragma once
// HPhotoLoad: the older, self-contained photo loader, offered to applications
// (no component of the kit uses it). It tints resource pictures with its
// colour, and keeps downloads under "toskar/<host>/<path>" in the documents
// folder, dated with the stamp as given (no four-week rule).
//
// A loader binds itself to the first address it downloads (trgImage): later
// requests on the same loader use that file whatever their address. Callbacks
// get the picture and a name: the requested text for a resource picture, the
// picture's cache path (relative to the documents folder) otherwise.
//
// Threads as for ZBImageModel: resource pictures and cache hits call back on
// the caller's thread, downloads on a default-priority global queue, and a
// failed download calls nothing back. Use one loader from one thread; the
// background work keeps its own copies. A cache path that would leave the
// "toskar" folder is never written: such a picture is delivered uncached.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Image.h>
#include <morvane/sys/Forward.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace morvane {

class HPhotoLoad {
  public:
    using Callback = std::function<void(const gfx::Image& image, const std::string& name)>;

    static constexpr std::string_view kDefaultStamp = "1970.01.01T01:01:01";

    HPhotoLoad() : HPhotoLoad(gfx::Color::whiteColor()) {}
    explicit HPhotoLoad(const gfx::Color& color) : color_(color) {}

    // The tint for resource pictures.
    const gfx::Color& color() const { return color_; }
    void setColor(const gfx::Color& color) { color_ = color; }
    // The cache path of this loader's picture, set by its first download request.
    const std::string& trgImage() const { return trgImage_; }

    // A resource picture tinted with color(); an address containing "http"
    // from the cache or downloaded; anything else a callback with no image.
    void taskWithName(std::optional<std::string_view> name, std::optional<std::string_view> date,
                      Callback local);
    void watchImage(std::optional<std::string_view> name, std::optional<std::string_view> date,
                    Callback local) {
        taskWithName(name, date, std::move(local));
    }
    void setData(std::string_view address, std::string_view date, Callback local);
    void urlPhoto(std::string_view address, std::string_view date, Callback local);

    static gfx::Image maskedImage(const gfx::Image& image, const gfx::Color& color);
    // 1 / n for the first n of 1...9 with (w / n) x (h / n) below 250000; else 0.1.
    static float findRatio(float w, float h);
    // "Error/" + now as "yyyyMMddHHmmsss" + ".jpg".
    static std::string trgImagex();

    // ---- Files ------------------------------------------------------------------
    static std::string projPath();
    static std::string currentPath(std::string_view name);
    // The creation stamp of dir/name under the documents folder; nothing when missing.
    static std::optional<std::string> getFDate(std::string_view dir, std::string_view name);
    // The contents of dir/name under the documents folder (nothing outside it).
    static std::optional<std::string> FRead(std::string_view dir, std::string_view name);
    // Sets the modification date of a file inside the cache folders.
    static bool ModDate(const std::string& path, std::string_view stamp);
    static std::optional<sys::Date> textToDate(std::string_view stamp);
    // Creates the path's parent folder (inside the cache folders only).
    static void mkDirMinusFname(const std::string& path);
    // "toskar/" + the address's "/" components without empty ones and those containing "http".
    static std::string pathMinusFirstToken(std::string_view address);
    // The absolute parent folder of a path; "" for a path of one component.
    static std::string pathMinusLastToken(std::string_view path);

  private:
    gfx::Color color_;
    std::string trgImage_;
};

} // namespace morvane
