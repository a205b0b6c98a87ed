#pragma once
// The application as the kit sees it: its identifier (like com.example.gallery),
// the folder its resource pictures are looked up in, the documents folder the
// picture caches write below, and the data folder that holds the settings store.
//
// Defaults, each overridable by the setters (tests) or the environment:
//   documents  MORVANE_DOCUMENTS_DIR, else $XDG_DATA_HOME/<identifier>/Documents,
//              else ~/.local/share/<identifier>/Documents
//   data       MORVANE_DATA_DIR, else $XDG_DATA_HOME/<identifier>, else ~/.local/share/<identifier>
//   resources  MORVANE_RESOURCE_DIR, else the folder "resources" beside the program
// Folders are not created here; the code that writes into them does that.
// Safe from any thread.

#include <filesystem>
#include <string>
#include <string_view>

namespace morvane::sys {

class App {
  public:
    // The identifier; "org.morvane.<program name>" until one is set.
    static std::string identifier();
    // Sets the identifier. It must be a plain name (letters, digits, '.', '-',
    // '_'), since it names folders; anything else is refused with a logged
    // warning and false.
    static bool setIdentifier(std::string_view identifier);

    static std::filesystem::path resourceFolder();
    static std::filesystem::path documentsFolder();
    static std::filesystem::path dataFolder();

    // An empty path returns to the default.
    static void setResourceFolder(std::filesystem::path folder);
    static void setDocumentsFolder(std::filesystem::path folder);
    static void setDataFolder(std::filesystem::path folder);
};

} // namespace morvane::sys
