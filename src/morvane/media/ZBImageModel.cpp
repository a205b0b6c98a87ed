#include <morvane/media/ImageColor.h>
#include <morvane/media/ResourcePictures.h>
#include <morvane/media/ZBImageModel.h>
#include <morvane/media/detail/CachePaths.h>
#include <morvane/media/detail/Download.h>
#include <morvane/media/detail/MemoryCache.h>
#include <morvane/media/detail/SharedDownload.h>
#include <morvane/sys/Fetch.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>

namespace morvane {

namespace {

// The cached picture of the cache's current names when the file exists and
// was created no earlier than the stamp: the image (null when the bytes do
// not decode). Nothing when there is no usable file.
std::optional<gfx::Image> freshFromFile(const ZBImageCut& cut, const std::string& stamp) {
    const auto created = ZBImageCut::fileDate(cut.dirName(), cut.fileName());
    if (!created || *created < stamp) return std::nullopt;
    gfx::Image image = cut.readPicture(cut.dirName(), cut.fileName());
    if (image.isNull()) {
        // A damaged file would be served broken until the sweep; dropping it
        // lets the next request download the picture again.
        ZBImageCut::removeFileAtPath(ZBImageCut::currentPath2(cut.dirName(), cut.fileName()));
    }
    return image;
}

// Downloads the picture through the fetch queue, one transfer per address
// and stamp; every request for it gets the picture through its own callback.
void download(const ZBImageCut& cut, const std::string& address, const std::string& stamp,
              ZBImageModel::Callback local, std::optional<std::weak_ptr<const void>> requester) {
    auto keep = [cut, address, stamp](const std::string& bytes, const gfx::Image& image) {
        std::string reason;
        if (!cut.isCacheable(&reason)) {
            sys::Log::platform("Picture not cached (" + reason + "): " + address);
            return true;
        }
        return cut.storeImage(bytes, image, cut.fileName(), cut.dirName(), stamp);
    };
    detail::SharedDownload::Requester waiting;
    waiting.owner = std::move(requester);
    waiting.deliver = [local = std::move(local)](const gfx::Image& image) {
        if (local) local(image, true);
    };
    const std::string place = cut.dirName() + "/" + cut.fileName();
    detail::SharedDownload::request(address, stamp, place, std::move(keep), std::move(waiting));
}

} // namespace

void ZBImageModel::loadOnMain(std::optional<std::string_view> name, std::optional<std::string_view> date,
                              std::function<void(const gfx::Image&)> show) {
    loadOnMain(name, date, std::nullopt, std::move(show));
}

void ZBImageModel::loadOnMain(std::optional<std::string_view> name, std::optional<std::string_view> date,
                              std::optional<std::weak_ptr<const void>> requester,
                              std::function<void(const gfx::Image&)> show) {
    auto loader = std::make_shared<ZBImageModel>();
    if (requester) loader->setRequester(std::move(*requester));
    // The loader rides along in the callback so that it lives as long as the request.
    loader->taskWithName(name, date, [loader, show = std::move(show)](const gfx::Image& image, bool) {
        sys::Queue::main().async([loader, show, image] {
            if (show) show(image);
            loader->cleanup();
        });
    });
}

ZBImageModel::Shape ZBImageModel::shapeOf(const gfx::Image& image) {
    const gfx::Size size = image.size();
    const double ratio = size.height > 0 ? size.width / size.height : 0;
    if (ratio < 0.8) return Shape::Tall;
    if (ratio == 1.0) return Shape::Square;
    return ratio < 1.2 ? Shape::NearSquare : Shape::Wide;
}

void ZBImageModel::taskWithName(std::optional<std::string_view> name, std::optional<std::string_view> date,
                                Callback local) {
    const gfx::Image resource = name ? ResourcePictures::named(*name) : gfx::Image();
    imageFM_.setFileName(name);
    if (!name) {
        if (local) local(maskedImage(ResourcePictures::named("about"), gfx::Color::whiteColor()), true);
    } else if (resource.isNull()) {
        setData(*name, date ? *date : kDefaultStamp, std::move(local));
    } else if (local) {
        local(resource, true);
    }
}

void ZBImageModel::setData(std::string_view address, std::string_view date, Callback local) {
    // Called directly, the cache's names may not be this address's yet.
    if (imageFM_.address() != address || imageFM_.fileName().empty()) imageFM_.setFileName(address);
    const std::string stamp = ZBImageCut::cut(date);

    if (imageFM_.isCacheable()) {
        const auto created = ZBImageCut::fileDate(imageFM_.dirName(), imageFM_.fileName());
        if (created) {
            if (*created < stamp) {
                urlPhoto(address, stamp, std::move(local));
                return;
            }
            if (auto image = freshFromFile(imageFM_, stamp)) {
                if (local) local(*image, true);
                return;
            }
        }
    }
    if (!detail::isWebAddress(address)) {
        sys::Log::platform("Not a picture address: " + std::string(address));
        return;
    }
    // No file yet: hop to a background queue, and from there to the download.
    // A request that arrives just after another one stored the picture finds
    // the file there and is served without a second transfer.
    sys::Queue::global(sys::Priority::Background)
        .async([cut = imageFM_, address = std::string(address), stamp, local = std::move(local),
                requester = requester_]() mutable {
            if (cut.isCacheable()) {
                if (auto image = freshFromFile(cut, stamp)) {
                    if (local) local(*image, true);
                    return;
                }
            }
            download(cut, address, stamp, std::move(local), std::move(requester));
        });
}

void ZBImageModel::urlPhoto(std::string_view address, std::string_view date, Callback local) {
    if (!detail::isWebAddress(address)) {
        sys::Log::platform("Not a picture address: " + std::string(address));
        return;
    }
    if (imageFM_.address() != address || imageFM_.fileName().empty()) imageFM_.setFileName(address);
    // The transfer runs on the fetch queue and answers on a global queue, never
    // before this call returns.
    download(imageFM_, std::string(address), ZBImageCut::cut(date), std::move(local), requester_);
}

gfx::Image ZBImageModel::maskedImage(const gfx::Image& image, const gfx::Color& color) {
    return ImageColor::color(image, color);
}

std::size_t ZBImageModel::memoryCacheLimit() {
    return detail::MemoryCache::shared().limit();
}

void ZBImageModel::setMemoryCacheLimit(std::size_t bytes) {
    detail::MemoryCache::shared().setLimit(bytes);
}

void ZBImageModel::clearMemoryCache() {
    detail::MemoryCache::shared().clear();
}

} // namespace morvane
