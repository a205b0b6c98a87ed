#pragma once
// Inside the library only: keeping picture addresses from steering the cache
// out of its folders. Addresses come from servers, so every path derived from
// one is checked before a byte is written, a date is set or a file removed.

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace morvane::detail {

// The two folders below the documents folder that the picture caches own.
inline constexpr std::string_view kImageFolder = "img";
inline constexpr std::string_view kOlderLoaderFolder = "toskar";
// The longest name most file systems take, in bytes.
inline constexpr std::size_t kMaxNameBytes = 255;
// Derived paths longer than this (relative to the documents folder) are not cached.
inline constexpr std::size_t kMaxRelativePathBytes = 1024;

// A name of at most kMaxNameBytes: a longer one keeps its beginning (cut on a
// character boundary) and its extension, with a hash of the whole name in
// between, so different long names stay different.
std::string shortenedName(std::string_view name);

// Why a path relative to the documents folder may not be used by the cache:
// it must start with one of the cache folders and have no empty, "." or ".."
// component, no backslash, no NUL and no over-long name. Nothing when safe.
std::optional<std::string> unsafeCachePath(std::string_view relative);

// True when the path, lexically and with its links resolved, lies inside one
// of the cache folders under the documents folder (or is one of them).
bool insideCacheFolders(const std::filesystem::path& path);

// True for an address with the scheme http or https (in any letter case).
bool isWebAddress(std::string_view address);

// A 64-bit FNV-1a hash, written as 16 hexadecimal digits.
std::string hashHex(std::string_view text);

} // namespace morvane::detail
