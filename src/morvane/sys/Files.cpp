#include <morvane/sys/Files.h>

#include <morvane/sys/Clock.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace morvane::sys {
namespace fs = std::filesystem;

namespace {

constexpr const char* kCreatedAttribute = "user.morvane.created";

void setError(std::string* error, std::string text) {
    if (error) *error = std::move(text);
}

std::string errnoText(const char* what, const fs::path& path, int code) {
    return std::string(what) + " " + path.string() + ": " + std::strerror(code);
}

bool writeAll(int fd, const char* data, size_t size) {
    while (size > 0) {
        ssize_t written = ::write(fd, data, size);
        if (written < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        data += written;
        size -= static_cast<size_t>(written);
    }
    return true;
}

Date fromTimestamp(const struct statx_timestamp& time) {
    return double(time.tv_sec) + time.tv_nsec / 1e9;
}

// The version of what `fd` (or, with AT_FDCWD, `path`) names; links are not followed.
std::optional<Files::Version> versionAt(int fd, const char* path, int flags) {
    struct statx info {};
    if (::statx(fd, path, flags | AT_SYMLINK_NOFOLLOW, STATX_INO | STATX_BTIME | STATX_CTIME, &info) != 0)
        return std::nullopt;
    // The birth time never changes for a file; where the file system keeps
    // none, the status change time stands in: it also moves when dates are
    // set, which costs a decode again but never passes one file for another.
    const auto& born = (info.stx_mask & STATX_BTIME) ? info.stx_btime : info.stx_ctime;
    Files::Version version;
    version.device = (std::uint64_t(info.stx_dev_major) << 32) | info.stx_dev_minor;
    version.inode = info.stx_ino;
    version.bornSeconds = born.tv_sec;
    version.bornNanoseconds = born.tv_nsec;
    return version;
}

} // namespace

bool Files::exists(const Path& path) {
    std::error_code error;
    return fs::exists(fs::symlink_status(path, error));
}

bool Files::isFolder(const Path& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

bool Files::createFolder(const Path& folder) {
    if (folder.empty()) return false;
    std::error_code error;
    fs::create_directories(folder, error);
    return fs::is_directory(folder, error);
}

bool Files::write(const Path& path, std::span<const std::uint8_t> bytes, std::string* error) {
    return write(path, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()), error);
}

bool Files::write(const Path& path, std::string_view bytes, std::string* error) {
    std::string name = path.filename().string();
    if (name.empty() || name == "." || name == "..") {
        setError(error, "Not a file name: " + path.string());
        return false;
    }
    Path folder = path.parent_path();
    if (folder.empty()) folder = ".";
    // A hidden temporary name in the same folder, so the rename stays on one
    // file system; shortened so that long names still fit.
    std::string temporary = (folder / ("." + name.substr(0, 200) + ".XXXXXX")).string();
    int fd = mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0) {
        setError(error, errnoText("Cannot create a file in", folder, errno));
        return false;
    }
    auto fail = [&](const char* what, int code) {
        ::close(fd);
        ::unlink(temporary.c_str());
        setError(error, errnoText(what, path, code));
        return false;
    };
    if (!writeAll(fd, bytes.data(), bytes.size())) return fail("Cannot write", errno);
    ::fchmod(fd, 0644);
    // The moment of writing, on the kit's clock; a file system without
    // extended attributes falls back to its own dates.
    char created[64];
    int length = std::snprintf(created, sizeof created, "%.6f", Clock::date());
    ::fsetxattr(fd, kCreatedAttribute, created, size_t(length), 0);
    if (::fsync(fd) != 0) return fail("Cannot flush", errno);
    if (::close(fd) != 0) {
        int code = errno;
        ::unlink(temporary.c_str());
        setError(error, errnoText("Cannot close", path, code));
        return false;
    }
    if (::rename(temporary.c_str(), path.c_str()) != 0) {
        int code = errno;
        ::unlink(temporary.c_str());
        setError(error, errnoText("Cannot replace", path, code));
        return false;
    }
    // Make the rename itself durable.
    int folderFd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folderFd >= 0) {
        ::fsync(folderFd);
        ::close(folderFd);
    }
    return true;
}

std::optional<std::string> Files::read(const Path& path) {
    Version ignored;
    return read(path, ignored);
}

std::optional<Files::Version> Files::version(const Path& path) {
    return versionAt(AT_FDCWD, path.c_str(), 0);
}

std::optional<std::string> Files::read(const Path& path, Version& version) {
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return std::nullopt;
    if (auto opened = versionAt(fd, "", AT_EMPTY_PATH)) {
        version = *opened;
    } else {
        ::close(fd);
        return std::nullopt;
    }
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        return std::nullopt;
    }
    std::string bytes;
    bytes.reserve(size_t(info.st_size));
    char buffer[65536];
    for (;;) {
        ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got < 0) {
            if (errno == EINTR) continue;
            ::close(fd);
            return std::nullopt;
        }
        if (got == 0) break;
        bytes.append(buffer, size_t(got));
    }
    ::close(fd);
    return bytes;
}

bool Files::remove(const Path& path, std::string* error) {
    if (::remove(path.c_str()) == 0) return true;
    setError(error, std::strerror(errno));
    return false;
}

std::vector<Files::Entry> Files::walk(const Path& folder) {
    auto list = [](const Path& current) {
        std::vector<Entry> children;
        std::error_code error;
        for (fs::directory_iterator it(current, error), end; !error && it != end; it.increment(error)) {
            std::error_code statusError;
            bool isLink = it->is_symlink(statusError);
            bool isFolder = !isLink && it->is_directory(statusError);
            children.push_back({it->path(), isFolder});
        }
        std::sort(children.begin(), children.end(),
                  [](const Entry& a, const Entry& b) { return a.path.filename() < b.path.filename(); });
        return children;
    };
    // An explicit stack of open folders rather than recursion: how deep a
    // folder tree goes is not ours to limit.
    struct Level {
        std::vector<Entry> children;
        size_t next = 0;
    };
    std::vector<Entry> result;
    std::vector<Level> stack;
    stack.push_back({list(folder)});
    while (!stack.empty()) {
        Level& top = stack.back();
        if (top.next == top.children.size()) {
            stack.pop_back();
            continue;
        }
        Entry entry = top.children[top.next++];
        result.push_back(entry);
        if (entry.isFolder) stack.push_back({list(entry.path)});
    }
    return result;
}

std::optional<Date> Files::creationDate(const Path& path) {
    char value[64] = {};
    ssize_t length = ::getxattr(path.c_str(), kCreatedAttribute, value, sizeof value - 1);
    if (length > 0) {
        char* end = nullptr;
        double date = std::strtod(value, &end);
        if (end != value && std::isfinite(date)) return date;
    }
    struct statx info {};
    if (::statx(AT_FDCWD, path.c_str(), 0, STATX_BTIME | STATX_MTIME, &info) != 0) return std::nullopt;
    if (info.stx_mask & STATX_BTIME) return fromTimestamp(info.stx_btime);
    return fromTimestamp(info.stx_mtime);
}

std::optional<Date> Files::modificationDate(const Path& path) {
    struct statx info {};
    if (::statx(AT_FDCWD, path.c_str(), 0, STATX_MTIME, &info) != 0) return std::nullopt;
    return fromTimestamp(info.stx_mtime);
}

bool Files::setModificationDate(const Path& path, Date date) {
    if (!std::isfinite(date)) return false;
    double seconds = std::floor(date);
    struct timespec times[2];
    times[0].tv_sec = 0;
    times[0].tv_nsec = UTIME_OMIT; // access time stays
    times[1].tv_sec = static_cast<time_t>(seconds);
    times[1].tv_nsec = static_cast<long>(std::llround((date - seconds) * 1e9));
    if (times[1].tv_nsec >= 1000000000L) {
        times[1].tv_sec += 1;
        times[1].tv_nsec -= 1000000000L;
    }
    return ::utimensat(AT_FDCWD, path.c_str(), times, 0) == 0;
}

bool Files::isInside(const Path& path, const Path& folder) {
    std::error_code error;
    Path resolvedFolder = fs::weakly_canonical(fs::absolute(folder, error), error);
    if (error) return false;
    Path resolved = fs::weakly_canonical(fs::absolute(path, error), error);
    if (error) return false;
    auto [folderEnd, pathIt] =
        std::mismatch(resolvedFolder.begin(), resolvedFolder.end(), resolved.begin(), resolved.end());
    // A trailing empty component of "dir/" matches anything.
    if (folderEnd != resolvedFolder.end() && !folderEnd->empty()) return false;
    return true;
}

} // namespace morvane::sys
