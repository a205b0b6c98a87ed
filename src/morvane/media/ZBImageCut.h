#pragma once
// ZBImageCut: the picture file cache. Downloaded pictures are kept as files
// under the documents folder, in "img/..." named after the picture's address,
// and dated so that a picture is fetched again when its owner announces a
// newer version, and so that old files are swept away:
// - a file's creation date is the moment of the download (freshness, age);
// - its modification date holds the picture's own date stamp, never older
//   than four weeks back;
// - cleanup() removes files created more than eight weeks ago (in the
//   background, at most once a launch and then once an hour).
// Date stamps are texts "yyyy.MM.dd'T'HH:mm:ss" in the current time zone, cut
// to 19 characters and compared as texts; "now" is the kit's clock.
//
// Addresses are not trusted. The names keep the derivation below, but a path
// that would leave the cache folders ("img" and "toskar" under the documents
// folder) is never written, dated or removed: isCacheable() says whether the
// current names may be used, and every file operation checks its path again.
// Names over 255 bytes are shortened with a hash of the whole name.
//
// One ZBImageCut serves one picture at a time; it is a small value (names and
// a flag) that a loader copies onto the thread that downloads.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Image.h>
#include <morvane/sys/Forward.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace morvane {

class ZBImageCut {
  public:
    using Callback = std::function<void(const gfx::Image& image, bool flag)>;

    ZBImageCut() = default;

    // Derives dirName and fileName from a picture address: cleaned by
    // filterPath, then dirNameEx and fileNameEx. No address gives "img" and no file name.
    void setFileName(std::optional<std::string_view> address);
    const std::string& fileName() const { return fileName_; }
    const std::string& dirName() const { return dirName_; }
    void setDirName(std::string dirName) { dirName_ = std::move(dirName); }
    // The address the names were derived from (empty when none was given).
    const std::string& address() const { return address_; }
    // When true (the default), dates are adjusted on save and read and cleanup sweeps.
    bool changeDate() const { return changeDate_; }
    void setChangeDate(bool changeDate) { changeDate_ = changeDate; }

    // Whether the current names give a file inside the cache folders; when
    // they do not, `reason` receives why.
    bool isCacheable(std::string* reason = nullptr) const;

    // "%2F" becomes "/", "%20" becomes "-", commas go, in that order.
    static std::string filterPath(std::string_view text);
    // The last "/" component, up to its first "?".
    static std::string fileNameEx(std::string_view text);
    // "img" followed by every component but the last that is neither empty
    // nor contains "http" or ".".
    static std::string dirNameEx(std::string_view text);

    // documents [+ "/" + directory [+ "/" + file name]]; a file name without a directory is ignored.
    static std::string currentPath2(std::optional<std::string_view> dir,
                                    std::optional<std::string_view> fname);

    // The stamp of now moved by that many weeks (calendar weeks in the current time zone).
    static std::string now(int weeks);
    // The creation stamp of the file, or nothing when it does not exist.
    static std::optional<std::string> fileDate(std::string_view dir, std::string_view fname);
    static std::optional<std::string> fileDateEx(const std::string& path);
    // The stamp read after the 19-character cut; nothing when it does not parse.
    static std::optional<sys::Date> textToDate(std::string_view stamp);
    // The age test against four weeks ago: a fresh stamp of four weeks ago
    // when the stamp sorts before it (whole texts when exact, else only the
    // days, the texts before "T"); nothing when it does not.
    static std::optional<std::string> dateCompare(std::string_view stamp, bool exact);
    // The 19-character cut that stamps are compared on.
    static std::string cut(std::string_view stamp);

    // Sets the file's modification date to the stamp; ignored outside the cache folders.
    static void changeImageDate(const std::string& path, std::string_view stamp);
    // Creates the folder with the folders above it unless something is there;
    // ignored outside the cache folders.
    static void makeDir(const std::string& path);

    // The file's bytes (nothing when missing), after moving the modification
    // date of a file created over four weeks ago to four weeks ago. The stamp is not used.
    std::optional<std::string> imageRead(std::string_view dir, std::string_view fname,
                                         std::string_view stamp) const;
    // The picture in the file (scale 1), dated on the way as imageRead does;
    // a null image when it is missing or no picture. Each version of a file
    // is decoded once and kept in the memory cache in front of the files.
    gfx::Image readPicture(std::string_view dir, std::string_view fname) const;
    // Writes downloaded bytes atomically, dates the file and calls back with
    // the picture (scale 1) and true. Bytes that are not a picture, a path
    // outside the cache folders or a failed write end it: nothing written,
    // no callback, false.
    bool saveImage(std::string_view bytes, std::string_view fname, std::string_view dir,
                   std::string_view stamp, const Callback& local) const;
    // The same for bytes already decoded by the caller, which go on to the
    // memory cache as the copy of the file just written.
    bool storeImage(std::string_view bytes, const gfx::Image& image, std::string_view fname,
                    std::string_view dir, std::string_view stamp) const;

    // Removes one file inside the cache folders and logs the outcome.
    static bool removeFileAtPath(const std::string& path);
    // Removes the files below the path, inside the cache folders only, that
    // were created more than eight weeks ago, logging each.
    static void traverseDirectoryAtPath(const std::string& path);
    // The sweep of the whole cache, when changeDate is on: it starts on a
    // background queue and returns at once, and runs at most once a launch
    // and then once an hour however often it is asked for.
    void cleanup() const;

    // The picture tinted with the colour (ImageColor::color).
    static gfx::Image maskedImage(const gfx::Image& image, const gfx::Color& color);

  private:
    // The age rule of a read: a file created over four weeks ago (by its day)
    // gets four weeks ago as its modification date.
    void ageOnRead(const std::string& path) const;

    std::string address_;
    std::string dirName_;
    std::string fileName_;
    bool changeDate_ = true;
};

} // namespace morvane
