#include <morvane/media/ImageColor.h>
#include <morvane/media/ZBImageCut.h>
#include <morvane/media/detail/CachePaths.h>
#include <morvane/media/detail/CacheSweep.h>
#include <morvane/media/detail/Download.h>
#include <morvane/media/detail/MemoryCache.h>
#include <morvane/sys/App.h>
#include <morvane/sys/Clock.h>
#include <morvane/sys/Files.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/util/Dates.h>

#include <unicode/gregocal.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <chrono>
#include <memory>
#include <vector>

namespace morvane {

namespace {

constexpr std::size_t kStampLength = 19;

void replaceAll(std::string& text, std::string_view from, std::string_view to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
}

std::vector<std::string_view> components(std::string_view text) {
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    while (true) {
        const std::size_t slash = text.find('/', start);
        if (slash == std::string_view::npos) {
            parts.push_back(text.substr(start));
            return parts;
        }
        parts.push_back(text.substr(start, slash - start));
        start = slash + 1;
    }
}

std::string shortenedPath(std::string_view relative) {
    std::string out;
    for (auto part : components(relative)) {
        if (!out.empty()) out += '/';
        out += detail::shortenedName(part);
    }
    return out;
}

std::string_view dayOf(std::string_view stamp) {
    return stamp.substr(0, stamp.find('T'));
}

} // namespace

void ZBImageCut::setFileName(std::optional<std::string_view> address) {
    address_ = address ? std::string(*address) : std::string();
    if (!address) {
        dirName_ = "img";
        fileName_.clear();
        return;
    }
    const std::string cleaned = filterPath(*address);
    dirName_ = shortenedPath(dirNameEx(cleaned));
    fileName_ = detail::shortenedName(fileNameEx(cleaned));
}

bool ZBImageCut::isCacheable(std::string* reason) const {
    auto refuse = [&](std::string why) {
        if (reason) *reason = std::move(why);
        return false;
    };
    if (fileName_.empty()) return refuse("no file name");
    if (auto unsafe = detail::unsafeCachePath(dirName_ + "/" + fileName_)) return refuse(*unsafe);
    return true;
}

std::string ZBImageCut::filterPath(std::string_view text) {
    std::string out(text);
    replaceAll(out, "%2F", "/");
    replaceAll(out, "%20", "-");
    replaceAll(out, ",", "");
    return out;
}

std::string ZBImageCut::fileNameEx(std::string_view text) {
    std::string_view last = text.substr(text.rfind('/') == std::string_view::npos ? 0 : text.rfind('/') + 1);
    return std::string(last.substr(0, last.find('?')));
}

std::string ZBImageCut::dirNameEx(std::string_view text) {
    const auto parts = components(text);
    std::string dir = "img";
    for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
        const auto part = parts[i];
        if (part.empty() || part.find("http") != std::string_view::npos ||
            part.find('.') != std::string_view::npos)
            continue;
        dir += '/';
        dir += part;
    }
    return dir;
}

std::string ZBImageCut::currentPath2(std::optional<std::string_view> dir,
                                     std::optional<std::string_view> fname) {
    std::string path = sys::App::documentsFolder().string();
    if (dir) {
        path += '/';
        path += *dir;
        if (fname) {
            path += '/';
            path += *fname;
        }
    }
    return path;
}

std::string ZBImageCut::now(int weeks) {
    // Calendar arithmetic on the week of the year, in the zone the stamps are
    // written in, so a move across a daylight-saving change keeps the clock time.
    UErrorCode status = U_ZERO_ERROR;
    const std::string zone = Dates::timeZone();
    icu::GregorianCalendar calendar(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(zone)),
                                    status);
    if (U_SUCCESS(status)) {
        calendar.setTime(sys::Clock::date() * 1000.0, status);
        calendar.add(UCAL_WEEK_OF_YEAR, weeks, status);
        const UDate moved = calendar.getTime(status);
        if (U_SUCCESS(status)) return Dates::stamp(moved / 1000.0);
    }
    return Dates::stamp(sys::Clock::date() + weeks * 7 * 86400.0);
}

std::optional<std::string> ZBImageCut::fileDate(std::string_view dir, std::string_view fname) {
    return fileDateEx(currentPath2(dir, fname));
}

std::optional<std::string> ZBImageCut::fileDateEx(const std::string& path) {
    if (path.find('\0') != std::string::npos) return std::nullopt;
    auto created = sys::Files::creationDate(path);
    if (!created) return std::nullopt;
    return Dates::stamp(*created);
}

std::string ZBImageCut::cut(std::string_view stamp) {
    // 19 UTF-16 code units; a stamp is ASCII, but a hostile one need not be.
    std::size_t units = 0, at = 0;
    while (at < stamp.size()) {
        const auto lead = static_cast<unsigned char>(stamp[at]);
        const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        const std::size_t width = length == 4 ? 2 : 1;
        if (units + width > kStampLength) break;
        units += width;
        at = std::min(stamp.size(), at + length);
    }
    return std::string(stamp.substr(0, at));
}

std::optional<sys::Date> ZBImageCut::textToDate(std::string_view stamp) {
    return Dates::text(cut(stamp));
}

std::optional<std::string> ZBImageCut::dateCompare(std::string_view stamp, bool exact) {
    const std::string limit = now(-4);
    const bool older = exact ? stamp < std::string_view(limit) : dayOf(stamp) < dayOf(limit);
    if (older) return now(-4);
    return std::nullopt;
}

void ZBImageCut::changeImageDate(const std::string& path, std::string_view stamp) {
    if (path.find('\0') != std::string::npos || !detail::insideCacheFolders(path)) return;
    if (auto date = textToDate(stamp)) sys::Files::setModificationDate(path, *date);
}

void ZBImageCut::makeDir(const std::string& path) {
    if (path.find('\0') != std::string::npos || !detail::insideCacheFolders(path)) return;
    if (!sys::Files::exists(path)) sys::Files::createFolder(path);
}

std::optional<std::string> ZBImageCut::imageRead(std::string_view dir, std::string_view fname,
                                                 std::string_view) const {
    const std::string path = currentPath2(dir, fname);
    if (path.find('\0') != std::string::npos || !detail::insideCacheFolders(path)) return std::nullopt;
    ageOnRead(path);
    return sys::Files::read(path);
}

void ZBImageCut::ageOnRead(const std::string& path) const {
    if (!changeDate_) return;
    if (auto created = fileDateEx(path); created && dateCompare(*created, false))
        changeImageDate(path, now(-4));
}

gfx::Image ZBImageCut::readPicture(std::string_view dir, std::string_view fname) const {
    const std::string path = currentPath2(dir, fname);
    if (path.find('\0') != std::string::npos || !detail::insideCacheFolders(path)) return {};
    ageOnRead(path);
    auto& memory = detail::MemoryCache::shared();
    if (auto version = sys::Files::version(path)) {
        if (gfx::Image kept = memory.find(path, *version); !kept.isNull()) return kept;
    }
    sys::Files::Version version;
    auto bytes = sys::Files::read(path, version);
    if (!bytes) return {};
    gfx::Image image = detail::decodePicture(*bytes);
    memory.insert(path, version, image);
    return image;
}

bool ZBImageCut::saveImage(std::string_view bytes, std::string_view fname, std::string_view dir,
                           std::string_view stamp, const Callback& local) const {
    const gfx::Image image = detail::decodePicture(bytes);
    if (image.isNull()) {
        sys::Log::platform("Not a picture, not cached: " + currentPath2(dir, fname));
        return false;
    }
    if (!storeImage(bytes, image, fname, dir, stamp)) return false;
    if (local) local(image, true);
    return true;
}

bool ZBImageCut::storeImage(std::string_view bytes, const gfx::Image& image, std::string_view fname,
                            std::string_view dir, std::string_view stamp) const {
    if (image.isNull()) return false;
    const std::string relative = std::string(dir) + "/" + std::string(fname);
    if (auto unsafe = detail::unsafeCachePath(relative); unsafe || fname.empty()) {
        sys::Log::platform("Picture not cached (" + (unsafe ? *unsafe : std::string("no file name")) +
                           "): " + relative);
        return false;
    }
    const std::string folder = currentPath2(dir, std::nullopt);
    const std::string path = currentPath2(dir, fname);
    makeDir(folder);
    if (!detail::insideCacheFolders(path)) {
        sys::Log::platform("Picture not cached (outside the cache folders): " + path);
        return false;
    }
    std::string error;
    if (!sys::Files::write(path, bytes, &error)) {
        sys::Log::platform("Got an error: " + error);
        return false;
    }
    std::string date(stamp);
    if (changeDate_) {
        if (auto limit = dateCompare(cut(stamp), true)) date = *limit;
    }
    changeImageDate(path, date);
    // Another download may have put its own file here meanwhile: only what
    // reads back as these very bytes is remembered as this file's picture.
    sys::Files::Version version;
    if (auto written = sys::Files::read(path, version); written && *written == bytes)
        detail::MemoryCache::shared().insert(path, version, image);
    return true;
}

bool ZBImageCut::removeFileAtPath(const std::string& path) {
    if (path.find('\0') != std::string::npos || !detail::insideCacheFolders(path)) {
        sys::Log::platform("Failed to delete file: " + path + ", error: outside the picture cache");
        return false;
    }
    std::string error;
    if (sys::Files::remove(path, &error)) {
        sys::Log::platform("Deleted file: " + path);
        return true;
    }
    sys::Log::platform("Failed to delete file: " + path + ", error: " + error);
    return false;
}

void ZBImageCut::traverseDirectoryAtPath(const std::string& path) {
    if (path.find('\0') != std::string::npos) return;
    // The walk times itself when it runs on the main thread, where it must not.
    const bool onMain = sys::isMainThread();
    const auto start = std::chrono::steady_clock::now();
    struct Record {
        bool onMain;
        std::chrono::steady_clock::time_point start;
        ~Record() {
            detail::CacheSweep::recordWalk(
                onMain ? std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() : 0);
        }
    } record{onMain, start};
    const std::string limit = now(-8);
    for (const auto& entry : sys::Files::walk(path)) {
        if (entry.isFolder || !detail::insideCacheFolders(entry.path)) continue;
        const std::string file = entry.path.string();
        const auto created = fileDateEx(file);
        if (!created || !(*created < limit)) continue;
        sys::Log::platform("File: " + file);
        sys::Log::platform("Date: " + *created);
        sys::Log::platform("Del: " + file);
        removeFileAtPath(file);
    }
}

void ZBImageCut::cleanup() const {
    if (!changeDate_) return;
    // Only the cache's own folders ("img" and "toskar"): the rest of the
    // documents folder belongs to the application. Views call this after
    // every picture, so the walk itself runs once a launch and then once an
    // interval, on a background queue (detail::CacheSweep).
    detail::CacheSweep::request();
}

gfx::Image ZBImageCut::maskedImage(const gfx::Image& image, const gfx::Color& color) {
    return ImageColor::color(image, color);
}

} // namespace morvane
