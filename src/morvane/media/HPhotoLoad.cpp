#include <morvane/media/HPhotoLoad.h>
#include <morvane/media/ImageColor.h>
#include <morvane/media/ResourcePictures.h>
#include <morvane/media/ZBImageCut.h>
#include <morvane/media/detail/CachePaths.h>
#include <morvane/media/detail/Download.h>
#include <morvane/media/detail/SharedDownload.h>
#include <morvane/sys/App.h>
#include <morvane/sys/Clock.h>
#include <morvane/sys/Fetch.h>
#include <morvane/sys/Files.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/util/Dates.h>

#include <vector>

namespace morvane {

namespace {

std::vector<std::string_view> split(std::string_view text) {
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    while (true) {
        const std::size_t slash = text.find('/', start);
        parts.push_back(
            text.substr(start, slash == std::string_view::npos ? std::string_view::npos : slash - start));
        if (slash == std::string_view::npos) return parts;
        start = slash + 1;
    }
}

bool insideDocuments(const std::string& path) {
    if (path.find('\0') != std::string::npos) return false;
    const auto documents = sys::App::documentsFolder().lexically_normal();
    const auto relative = std::filesystem::path(path).lexically_normal().lexically_relative(documents);
    return !relative.empty() && *relative.begin() != ".." && sys::Files::isInside(path, documents);
}

// The loader's cache path with every over-long name shortened; nothing when
// it would leave the "toskar" folder.
std::optional<std::string> safeTarget(const std::string& trgImage, std::string* reason) {
    std::string out;
    for (auto part : split(trgImage)) {
        if (!out.empty()) out += '/';
        out += detail::shortenedName(part);
    }
    auto unsafe = detail::unsafeCachePath(out);
    if (!unsafe && out.rfind(detail::kOlderLoaderFolder, 0) != 0) unsafe = "not a cache folder";
    if (!unsafe && out.find('/') == std::string::npos) unsafe = "no file name";
    if (unsafe) {
        if (reason) *reason = *unsafe;
        return std::nullopt;
    }
    return out;
}

// Downloads through the fetch queue, one transfer per address and stamp;
// every request gets the picture with the path the address gives.
void download(const std::string& address, const std::string& trgImage, const std::string& stamp,
              const HPhotoLoad::Callback& local) {
    const std::string relative = HPhotoLoad::pathMinusFirstToken(address);
    auto keep = [address, trgImage, stamp](const std::string& bytes, const gfx::Image&) {
        std::string reason;
        const auto target = safeTarget(trgImage, &reason);
        if (!target) {
            sys::Log::platform("Picture not cached (" + reason + "): " + address);
            return true;
        }
        const std::string path = HPhotoLoad::currentPath(*target);
        HPhotoLoad::mkDirMinusFname(path);
        if (!detail::insideCacheFolders(path)) {
            sys::Log::platform("Picture not cached (outside the cache folders): " + path);
            return false;
        }
        std::string error;
        if (!sys::Files::write(path, bytes, &error)) {
            sys::Log::platform("Got an error: " + error);
            return false;
        }
        HPhotoLoad::ModDate(path, stamp);
        return true;
    };
    detail::SharedDownload::Requester requester;
    requester.deliver = [local, relative](const gfx::Image& image) {
        if (local) local(image, relative);
    };
    detail::SharedDownload::request(address, stamp, trgImage, std::move(keep), std::move(requester));
}

} // namespace

void HPhotoLoad::taskWithName(std::optional<std::string_view> name, std::optional<std::string_view> date,
                              Callback local) {
    const std::string text = name ? std::string(*name) : std::string();
    if (gfx::Image resource = name ? ResourcePictures::named(*name) : gfx::Image(); !resource.isNull()) {
        if (local) local(maskedImage(resource, color_), text);
    } else if (text.find("http") != std::string::npos) {
        setData(text, date ? *date : kDefaultStamp, std::move(local));
    } else if (local) {
        local(gfx::Image(), text);
    }
}

void HPhotoLoad::setData(std::string_view address, std::string_view date, Callback local) {
    if (trgImage_.empty()) trgImage_ = pathMinusFirstToken(address);
    if (auto target = safeTarget(trgImage_, nullptr)) {
        if (auto created = ZBImageCut::fileDateEx(currentPath(*target))) {
            if (*created < ZBImageCut::cut(date)) {
                urlPhoto(address, date, std::move(local));
                return;
            }
            auto bytes = FRead(*target, {});
            if (local) local(bytes ? detail::decodePicture(*bytes) : gfx::Image(), trgImage_);
            return;
        }
    }
    sys::Queue::global(sys::Priority::Background)
        .async([address = std::string(address), trgImage = trgImage_, stamp = std::string(date),
                local = std::move(local)]() mutable {
            if (!detail::isWebAddress(address)) {
                sys::Log::platform("Not a picture address: " + address);
                return;
            }
            download(address, trgImage, stamp, local);
        });
}

void HPhotoLoad::urlPhoto(std::string_view address, std::string_view date, Callback local) {
    if (trgImage_.empty()) trgImage_ = pathMinusFirstToken(address);
    if (!detail::isWebAddress(address)) {
        sys::Log::platform("Not a picture address: " + std::string(address));
        return;
    }
    download(std::string(address), trgImage_, std::string(date), local);
}

gfx::Image HPhotoLoad::maskedImage(const gfx::Image& image, const gfx::Color& color) {
    return ImageColor::color(image, color);
}

float HPhotoLoad::findRatio(float w, float h) {
    for (int n = 1; n <= 9; ++n) {
        const float nf = static_cast<float>(n);
        if ((w / nf) * (h / nf) < 250000.0f) return 1.0f / nf;
    }
    return 0.1f;
}

std::string HPhotoLoad::trgImagex() {
    return "Error/" + Dates::format(sys::Clock::date(), "yyyyMMddHHmmsss") + ".jpg";
}

std::string HPhotoLoad::projPath() {
    return sys::App::documentsFolder().string();
}

std::string HPhotoLoad::currentPath(std::string_view name) {
    return projPath() + "/" + std::string(name);
}

std::optional<std::string> HPhotoLoad::getFDate(std::string_view dir, std::string_view name) {
    const std::string path = currentPath(std::string(dir) + "/" + std::string(name));
    if (!insideDocuments(path)) return std::nullopt;
    return ZBImageCut::fileDateEx(path);
}

std::optional<std::string> HPhotoLoad::FRead(std::string_view dir, std::string_view name) {
    const std::string path =
        currentPath(name.empty() ? std::string(dir) : std::string(dir) + "/" + std::string(name));
    if (!insideDocuments(path)) return std::nullopt;
    return sys::Files::read(path);
}

bool HPhotoLoad::ModDate(const std::string& path, std::string_view stamp) {
    if (path.find('\0') != std::string::npos || !detail::insideCacheFolders(path)) return false;
    auto date = textToDate(stamp);
    return date && sys::Files::setModificationDate(path, *date);
}

std::optional<sys::Date> HPhotoLoad::textToDate(std::string_view stamp) {
    return ZBImageCut::textToDate(stamp);
}

void HPhotoLoad::mkDirMinusFname(const std::string& path) {
    const std::string parent = pathMinusLastToken(path);
    if (parent.empty() || parent.find('\0') != std::string::npos || !detail::insideCacheFolders(parent))
        return;
    if (!sys::Files::exists(parent)) sys::Files::createFolder(parent);
}

std::string HPhotoLoad::pathMinusFirstToken(std::string_view address) {
    std::string out;
    for (auto part : split(address)) {
        if (part.empty() || part.find("http") != std::string_view::npos) continue;
        if (out.empty())
            out = "toskar/" + std::string(part);
        else
            out += "/" + std::string(part);
    }
    return out;
}

std::string HPhotoLoad::pathMinusLastToken(std::string_view path) {
    const auto parts = split(path);
    if (parts.size() <= 1) return "";
    std::string out;
    for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
        if (parts[i].empty()) continue;
        out += "/" + std::string(parts[i]);
    }
    return out;
}

} // namespace morvane
