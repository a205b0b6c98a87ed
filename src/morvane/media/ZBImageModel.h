#pragma once
// ZBImageModel: the photo loader the kit's components use. A picture is named
// by one text: a resource picture's name (returned at once), or an address on
// a server (downloaded on a global queue, kept in the picture file cache
// ZBImageCut, and served from there until the caller announces a newer
// version by its date stamp).
//
//   auto loader = std::make_shared<ZBImageModel>();
//   loader->taskWithName(address, stamp,
//                        [weakView, loader](const gfx::Image& image, bool) {
//                            sys::Queue::main().async([weakView, image, loader] { ... loader->cleanup(); });
//                        });
//
// Threads: a resource picture or a cache hit calls back on the caller's thread
// before the call returns; a download calls back on a default-priority global
// queue, so callers that touch views re-post to the main queue. A failed
// download calls nothing back. The background work keeps copies of what it
// needs, so the loader may be released as soon as the call returns.
//
// In front of the files sits a memory cache of decoded pictures: the copy of
// one version of one file, so it answers exactly as the files do, and
// concurrent requests for one address and stamp share
// a single transfer and file write (each still gets its own callback).
// Transfers run on the fetch queue, a few at a time; a request may name the
// object its picture is for (setRequester), and a transfer whose requesters
// are all gone is given up.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Image.h>
#include <morvane/media/ZBImageCut.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace morvane {

class ZBImageModel {
  public:
    using Callback = std::function<void(const gfx::Image& image, bool flag)>;

    // The stamp used when a request gives none: older than any file.
    static constexpr std::string_view kDefaultStamp = "1990.01.01T01:01:01";

    ZBImageModel() = default;

    ZBImageCut& imageFM() { return imageFM_; }

    // The object this loader's pictures are for, held weakly: once it is gone
    // (and nobody else waits for the same picture) a download is given up and
    // nothing is called back. Without one, a download runs to its end.
    void setRequester(std::weak_ptr<const void> requester) { requester_ = std::move(requester); }
    const ZBImageCut& imageFM() const { return imageFM_; }

    // The entry point: no name gives the resource picture "about" tinted
    // white; a resource picture's name gives that picture; anything else is
    // served from the cache or downloaded (setData).
    void taskWithName(std::optional<std::string_view> name, std::optional<std::string_view> date,
                      Callback local);
    // Serves the cached file unless its creation sorts before the stamp;
    // otherwise, or without a file, downloads.
    void setData(std::string_view address, std::string_view date, Callback local);
    // Downloads on a default-priority global queue, stores the picture and
    // calls back there. Only http and https addresses are fetched.
    void urlPhoto(std::string_view address, std::string_view date, Callback local);

    // What a view does with a picture it shows: load it with a loader of its
    // own and hand it to `show` on the main queue, however the loader answers;
    // then sweep the cache. `show` holds its view weakly and checks it.
    static void loadOnMain(std::optional<std::string_view> name, std::optional<std::string_view> date,
                           std::function<void(const gfx::Image&)> show);
    // The same for a requester (the view, say): its download is given up when
    // the requester is gone before the picture arrives.
    static void loadOnMain(std::optional<std::string_view> name, std::optional<std::string_view> date,
                           std::optional<std::weak_ptr<const void>> requester,
                           std::function<void(const gfx::Image&)> show);

    // How the views place a picture, by its width / height: under 0.8 it is
    // tall (fitted, on its own corner colour), exactly 1 square, under 1.2
    // near square (fitted); anything wider fills the frame.
    enum class Shape { Tall, Square, NearSquare, Wide };
    static Shape shapeOf(const gfx::Image& image);

    static gfx::Image maskedImage(const gfx::Image& image, const gfx::Color& color);
    // The cache sweep (ZBImageCut::cleanup).
    void cleanup() const { imageFM_.cleanup(); }

    // The memory cache in front of the files: its byte limit (0 turns it off).
    static std::size_t memoryCacheLimit();
    static void setMemoryCacheLimit(std::size_t bytes);
    static void clearMemoryCache();

  private:
    ZBImageCut imageFM_;
    std::optional<std::weak_ptr<const void>> requester_;
};

} // namespace morvane
