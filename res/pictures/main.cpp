// Draws the pictures of the resource script into a folder, as close.bmp, button.bmp and
// tolvane.ico.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "res/pictures/designs.h"
#include "res/pictures/image_files.h"

int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("usage: draw_pictures <folder>\n", stderr);
        return EXIT_FAILURE;
    }
    const std::array icons = {pictures::DrawLargeIcon(), pictures::DrawSmallIcon()};
    const std::array<std::pair<const char*, pictures::Bytes>, 3> files = {{
        {"close.bmp", pictures::EncodeBitmap(pictures::DrawCloseStrip())},
        {"button.bmp", pictures::EncodeBitmap(pictures::DrawButtonStrip())},
        {"tolvane.ico", pictures::EncodeIcon(icons)},
    }};
    for (const auto& [name, bytes] : files) {
        const std::string path = std::string(arguments[1]) + "/" + name;
        if (!pictures::WriteFile(path, bytes)) {
            std::fprintf(stderr, "draw_pictures: cannot write %s\n", path.c_str());
            return EXIT_FAILURE;
        }
    }
    return EXIT_SUCCESS;
}
