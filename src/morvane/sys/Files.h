#pragma once
// File operations the kit needs, with their failure modes spelled out: every
// operation reports failure by its result and never throws.
//
// Dates. A file's creation date is the moment the kit wrote it, on the kit's
// clock: write() records that moment with the file (an extended attribute,
// user.morvane.created, set before the file appears under its name). For files
// without that record the creation date is the file system's birth time
// (statx), and where the file system keeps none, the modification time. So a
// test on the manual clock sees files created "at" its own time, and the
// picture cache can keep its own stamp in the modification date.

#include <morvane/sys/Forward.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace morvane::sys {

class Files {
  public:
    using Path = std::filesystem::path;

    static bool exists(const Path& path);
    static bool isFolder(const Path& path);

    // Creates the folder and any missing folders above it. True when a folder
    // is there afterwards (also when it was there before).
    static bool createFolder(const Path& folder);

    // Replaces the file's contents atomically: the bytes go to a temporary
    // file in the same folder, are flushed to disk, and the temporary file is
    // renamed over the target. Readers, and a crash at any point, see either
    // the old file or the whole new one. The folder must exist.
    static bool write(const Path& path, std::string_view bytes, std::string* error = nullptr);
    static bool write(const Path& path, std::span<const std::uint8_t> bytes, std::string* error = nullptr);

    // The whole file, or nothing when it cannot be read.
    static std::optional<std::string> read(const Path& path);

    // Which file is at a path: every write() gives a new version, because it
    // puts a new file in place, while reading, dating or renaming the file
    // keeps it. Decoded copies of a file are checked against it.
    struct Version {
        std::uint64_t device = 0;
        std::uint64_t inode = 0;
        std::int64_t bornSeconds = 0; // the file system's birth time (status change where it keeps none)
        std::uint32_t bornNanoseconds = 0;
        bool operator==(const Version&) const = default;
    };
    static std::optional<Version> version(const Path& path);
    // The whole file, and the version of the very file read.
    static std::optional<std::string> read(const Path& path, Version& version);

    // Removes a file, a link (not what it points to) or an empty folder.
    static bool remove(const Path& path, std::string* error = nullptr);

    struct Entry {
        Path path;
        bool isFolder;
    };
    // Everything below the folder, depth first: each folder comes just before
    // its contents, names in byte order within a folder. Links are listed but
    // never followed; folders that cannot be read are listed and skipped.
    static std::vector<Entry> walk(const Path& folder);

    static std::optional<Date> creationDate(const Path& path);
    static std::optional<Date> modificationDate(const Path& path);
    static bool setModificationDate(const Path& path, Date date);

    // True when `path`, with every link in its existing part resolved, lies
    // inside `folder` (also resolved). Guards writes that must stay in a folder.
    static bool isInside(const Path& path, const Path& folder);
};

} // namespace morvane::sys
