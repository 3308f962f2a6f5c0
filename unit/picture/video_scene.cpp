#include "unit/picture/video_scene.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cwchar>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include "platform/gdi/gdi.h"
#include "unit/picture/calendar.h"

namespace unit {
namespace {

constexpr int kFieldsASecond = 60;
constexpr double kSpeedPerField = 0.06;
// The row where the road meets the sky.
constexpr int kHorizon = 210;
// Within the part of the video that the scaler shows over the whole screen, and clear of the
// wizard's texts and buttons there.
constexpr int kCaptionX = 30;
constexpr int kCaptionY = 394;

// A pixel from red, green and blue, each limited to 0 ... 255.
std::uint32_t Shade(double red, double green, double blue) {
    const auto channel = [](double value) {
        return static_cast<std::uint32_t>(std::clamp(value, 0.0, 255.0));
    };
    return channel(red) << 16 | channel(green) << 8 | channel(blue);
}

constexpr int kStars = 60;
constexpr int kStarsEnd = 100;
constexpr int kTownLights = 26;

// The sky is dark behind the wizard's red line and glows low over the hills, behind its blue
// notice, which nobody could read on a dark sky.
std::uint32_t Sky(int y) {
    const double depth = static_cast<double>(y) / kHorizon;
    const double rise = std::clamp((depth - 0.57) / 0.25, 0.0, 1.0);
    const double glow = rise * rise * (3 - 2 * rise);
    return Shade(8 + 14 * depth + 163 * glow, 12 + 16 * depth + 88 * glow,
                 30 + 24 * depth + 40 * glow);
}

// The height of the hills above the horizon in a column: two chains, the nearer one lower.
int FarHill(int x) {
    return static_cast<int>(33 + 4 * std::sin(x / 71.0) + 3 * std::sin(x / 23.0 + 1));
}
int NearHill(int x) {
    return static_cast<int>(13 + 6 * std::sin(x / 53.0 + 2) + 4 * std::sin(x / 17.0));
}

// What does not move while the car drives: the evening sky with its first stars, hills, and the
// lights of a town.
void DrawBackdrop(Picture& picture) {
    const auto set = [&](int x, int y, std::uint32_t color) {
        picture.pixels[picture.Offset(x, y)] = color;
    };
    for (int y = 0; y < kHorizon; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const int height = kHorizon - y;
            if (height <= NearHill(x))
                set(x, y, Shade(14, 17, 24));
            else if (height <= FarHill(x))
                set(x, y, Shade(44, 33, 44));
            else
                set(x, y, Sky(y));
        }
    }
    // The standard fixes this generator's numbers, but not those of its distributions.
    std::mt19937 random(7);
    const auto below = [&](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    for (int star = 0; star < kStars; ++star) {
        const double light = 40 + below(70);
        set(below(picture.width), below(kStarsEnd), Shade(light, light, light * 1.15));
    }
    for (int lamp = 0; lamp < kTownLights; ++lamp)
        set(430 + below(180), kHorizon - 3 - below(8), Shade(150 + below(60), 120, 60));
}

constexpr double kMarkPeriod = 2.0;
constexpr double kPostPeriod = 4.0;
constexpr double kFarthestPost = 24.0;
constexpr double kPostPlace = 1.15;
constexpr double kCarDistance = 7.0;
constexpr double kCarPlace = 0.42;

// Fills a rectangle, clipped to the picture.
void Fill(Picture& picture, double left, double top, double right, double bottom,
          std::uint32_t color) {
    const auto within = [](double value, int limit) {
        return std::clamp(static_cast<int>(std::lround(value)), 0, limit);
    };
    const int from = within(left, picture.width);
    const int to = within(right, picture.width);
    for (int y = within(top, picture.height); y < within(bottom, picture.height); ++y) {
        std::uint32_t* const row = &picture.pixels[picture.Offset(0, y)];
        std::fill(row + from, row + to, color);
    }
}

// One row of the ground: grass, tarmac, verge lines and the middle line.
void DrawRow(std::uint32_t* row, int width, double nearness, double travelled) {
    const double light = 16 + 30 * nearness;
    const auto column = [&](double across) {
        return std::clamp(static_cast<int>((1 + across * nearness) * width / 2), 0, width);
    };
    const auto fill = [&](double from, double to, std::uint32_t color) {
        std::fill(row + column(from), row + column(to), color);
    };
    const std::uint32_t line = Shade(light * 2.4, light * 2.4, light * 2.4);
    std::fill(row, row + width, Shade(light * 0.35, light * 0.55, light * 0.35));
    fill(-0.95, 0.95, Shade(light, light, light * 1.08));
    fill(-0.875, -0.825, line);
    fill(0.825, 0.875, line);
    if (std::fmod(1.0 / nearness + travelled, kMarkPeriod) < kMarkPeriod / 2)
        fill(-0.02, 0.02, Shade(light * 3, light * 3, light * 2.6));
}

// Where something on the road stands, and half the road's width at that distance.
struct Place {
    double x;
    double y;
    double size;
};
Place PlaceAt(const Picture& picture, double across, double distance) {
    const double nearness = 1 / distance;
    return {(1 + across * nearness) * picture.width / 2,
            kHorizon + (picture.height - kHorizon) * nearness, picture.width / 2.0 * nearness};
}

void DrawPosts(Picture& picture, double travelled) {
    const double first = kPostPeriod - std::fmod(travelled, kPostPeriod);
    for (double distance = first + kFarthestPost; distance > 0.9; distance -= kPostPeriod) {
        for (const double side : {-kPostPlace, kPostPlace}) {
            const Place foot = PlaceAt(picture, side, distance);
            const double half = foot.size * 0.018;
            const double top = foot.y - foot.size * 0.24;
            const double light = 40 + 60 / distance;
            Fill(picture, foot.x - half, top, foot.x + half, foot.y, Shade(light, light, light));
            Fill(picture, foot.x - half, top + half, foot.x + half, top + half * 4,
                 Shade(light * 2, light * 1.1, light * 0.3));
        }
    }
}

void DrawCarAhead(Picture& picture, double travelled) {
    const double sway = 0.03 * std::sin(travelled / 9);
    const Place foot = PlaceAt(picture, kCarPlace + sway, kCarDistance + std::sin(travelled / 31));
    const double half = foot.size * 0.26;
    const auto part = [&](double left, double top, double right, double bottom,
                          std::uint32_t color) {
        Fill(picture, foot.x + left * half, foot.y + top * half, foot.x + right * half,
             foot.y + bottom * half, color);
    };
    part(-0.9, -0.15, 0.9, 0.0, Shade(4, 4, 5));
    part(-1.0, -0.9, 1.0, -0.15, Shade(24, 26, 32));
    part(-0.75, -1.5, 0.75, -0.9, Shade(20, 22, 28));
    part(-0.62, -1.38, 0.62, -0.95, Shade(46, 42, 58));
    part(-0.95, -0.75, -0.6, -0.5, Shade(190, 22, 16));
    part(0.6, -0.75, 0.95, -0.5, Shade(190, 22, 16));
}

// The ground below the horizon after the camera has driven `travelled`, in widths of half the road
// at the lower edge: the road with its marks, reflector posts, and the car ahead.
void DrawRoad(Picture& picture, double travelled) {
    std::uint32_t* row = &picture.pixels[picture.Offset(0, kHorizon)];
    for (int y = kHorizon; y < picture.height; ++y, row += picture.width)
        DrawRow(row, picture.width, (y - kHorizon + 1.0) / (picture.height - kHorizon), travelled);
    DrawCarAhead(picture, travelled);
    DrawPosts(picture, travelled);
}

constexpr int kCharacterWidth = 10;
constexpr int kCharacterHeight = 22;
constexpr int kFirstCharacter = ' ';
constexpr int kCharacters = '~' - kFirstCharacter + 1;
constexpr std::uint32_t kWhite = 0xF0F0F0;
constexpr std::uint32_t kBlack = 0x000000;

// The printable ASCII characters side by side: how much of each pixel is ink, 0 to 255.
std::vector<std::uint8_t> DrawCharacters() {
    constexpr int kWidth = kCharacters * kCharacterWidth;
    auto surface = std::make_shared<platform::gdi::Surface>(kWidth, kCharacterHeight);
    const HDC dc = platform::gdi::CreateWindowDC(surface, {0, 0, kWidth, kCharacterHeight}, {});
    LOGFONTW description{};
    description.lfHeight = kCharacterHeight;
    description.lfWidth = kCharacterWidth;
    description.lfWeight = FW_BOLD;
    std::wcscpy(description.lfFaceName, L"Courier New");
    const HFONT font = CreateFontIndirectW(&description);
    const HGDIOBJ old_font = SelectObject(dc, font);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, RGB(255, 255, 255));
    for (int character = 0; character < kCharacters; ++character) {
        const wchar_t text = static_cast<wchar_t>(kFirstCharacter + character);
        RECT box{character * kCharacterWidth, 0, (character + 1) * kCharacterWidth,
                 kCharacterHeight};
        DrawTextW(dc, &text, 1, &box, DT_SINGLELINE | DT_NOPREFIX);
    }
    SelectObject(dc, old_font);
    DeleteObject(font);
    platform::gdi::DestroyWindowDC(dc);
    std::vector<std::uint8_t> ink;
    for (const std::uint32_t pixel : surface->pixels())
        ink.push_back(static_cast<std::uint8_t>(pixel >> 8));
    return ink;
}

std::uint32_t Mix(std::uint32_t under, std::uint32_t over, unsigned ink) {
    std::uint32_t mixed = 0;
    for (const unsigned shift : {16U, 8U, 0U})
        mixed |= ((under >> shift & 0xFF) * (255 - ink) + (over >> shift & 0xFF) * ink) / 255
                 << shift;
    return mixed;
}

// Draws printable ASCII with its top left corner at (x, y); it must fit into the picture.
void DrawCaption(Picture& picture, const std::vector<std::uint8_t>& ink, int x, int y,
                 std::string_view text, std::uint32_t color) {
    for (const char character : text) {
        for (int row = 0; row < kCharacterHeight; ++row) {
            const std::uint8_t* const from =
                &ink[static_cast<std::size_t>(row * kCharacters + character - kFirstCharacter) *
                     kCharacterWidth];
            std::uint32_t* const to = &picture.pixels[picture.Offset(x, y + row)];
            for (int column = 0; column < kCharacterWidth; ++column)
                to[column] = Mix(to[column], color, from[column]);
        }
        x += kCharacterWidth;
    }
}

std::string CaptionText(std::chrono::microseconds time, std::int64_t field) {
    char text[64];
    std::snprintf(text, sizeof text, "%s %s  %06lld", CarDate(time).c_str(), CarTime(time).c_str(),
                  static_cast<long long>(field / 2 % 1'000'000));
    return text;
}

// Drawn once; every picture starts as a copy of it.
const Picture& Backdrop() {
    static const Picture drawn = [] {
        Picture picture = NoSignal();
        DrawBackdrop(picture);
        return picture;
    }();
    return drawn;
}

}  // namespace

VideoScene::VideoScene() : picture_(NoSignal()) {}

const Picture& VideoScene::At(std::chrono::microseconds time) {
    const std::int64_t field = time.count() * kFieldsASecond / 1'000'000;
    if (field == field_)
        return picture_;
    field_ = field;
    std::copy_n(Backdrop().pixels.begin(), kHorizon * kVideoWidth, picture_.pixels.begin());
    DrawRoad(picture_, static_cast<double>(field) * kSpeedPerField);
    if (caption_ink_.empty())
        caption_ink_ = DrawCharacters();
    const std::string caption = CaptionText(time, field);
    DrawCaption(picture_, caption_ink_, kCaptionX + 1, kCaptionY + 1, caption, kBlack);
    DrawCaption(picture_, caption_ink_, kCaptionX, kCaptionY, caption, kWhite);
    return picture_;
}

const Picture& NoSignal() {
    static const Picture black{
        kVideoWidth, kVideoHeight,
        std::vector<std::uint32_t>(static_cast<std::size_t>(kVideoWidth) * kVideoHeight, 0)};
    return black;
}

}  // namespace unit
