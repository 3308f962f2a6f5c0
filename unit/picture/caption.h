#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "unit/picture/picture.h"

namespace unit {

// Lettering for texts that change with every picture: each character is drawn once and copied from
// then on. All characters are equally wide. Hardware's thread.
class Caption {
  public:
    static constexpr int kCharacterWidth = 10;
    static constexpr int kHeight = 22;

    // White with a black shadow, its top left corner there; it must fit into the picture.
    // Printable ASCII only.
    void Draw(Picture& picture, int x, int y, std::string_view text);

  private:
    static constexpr int kFirst = ' ';
    static constexpr int kCount = '~' - kFirst + 1;

    void DrawCharacters();
    void Copy(Picture& picture, int x, int y, int character, std::uint32_t color) const;

    // How much of each pixel is ink, 0 to 255: the characters side by side.
    std::vector<std::uint8_t> ink_;
};

}  // namespace unit
