#pragma once
// The gallery's sample pictures: drawings of the city's places, kept as SVG
// files among the gallery's resources and turned into the JPEG and PNG files a
// venue server would send, in a day and an evening version (the evening one
// is what the server offers after the venue "updates its photo").
//
//   auto pictures = SamplePictures::render(resources / "pictures", &error);
//   for (auto& picture : pictures) server.publish(picture.path, picture.contentType, picture.day);

#include <filesystem>
#include <string>
#include <vector>

namespace gallery {

struct SamplePicture {
    std::string path;        // where the server offers it: "/pictures/harbour.jpg"
    std::string contentType; // "image/jpeg" or "image/png"
    std::string day;         // the encoded picture
    std::string evening;     // the same scene at dusk
    int width = 0;           // in pixels, for the captions
    int height = 0;
};

class SamplePictures {
  public:
    // Renders every SVG of the folder at its own size and encodes it, as JPEG
    // or PNG by the list below. Empty, with the reason in `error`, when a
    // picture is missing or cannot be drawn.
    static std::vector<SamplePicture> render(const std::filesystem::path& folder, std::string* error);

    // The SVG text with its sky colours turned to dusk.
    static std::string evening(std::string svg);
};

} // namespace gallery
