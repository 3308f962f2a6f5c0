#include "platform/gdi/text_engine.h"

#include <algorithm>
#include <cstdlib>
#include <cwctype>
#include <iterator>
#include <string_view>

#include "platform/gdi/font_files.h"
#include "platform/gdi/gdi.h"
#include "platform/gdi/surface.h"

namespace platform::gdi {
namespace {

// Enough for everything that an update shows, each percent included: a few megabytes at most.
constexpr std::size_t kCachedLines = 256;
constexpr std::size_t kCachedFonts = 64;

constexpr int kDefaultHeight = 16;
constexpr int kLargestSize = 1000;

constexpr std::wstring_view kMonospacedFaces[] = {L"fixedsys", L"courier", L"courier new",
                                                  L"terminal", L"lucida console"};

bool IsMonospaced(const LOGFONTW& description) {
    std::wstring face(description.lfFaceName);
    std::transform(face.begin(), face.end(), face.begin(),
                   [](wchar_t character) { return wchar_t(std::towlower(wint_t(character))); });
    return std::ranges::find(kMonospacedFaces, face) != std::end(kMonospacedFaces) ||
           (description.lfPitchAndFamily & 3) == FIXED_PITCH;
}

bool IsSupported(const LOGFONTW& description) {
    return description.lfEscapement == 0 && description.lfOrientation == 0 &&
           !description.lfItalic && !description.lfUnderline && !description.lfStrikeOut;
}

bool IsReasonable(LONG size) {
    return size >= -kLargestSize && size <= kLargestSize;
}

std::unique_ptr<TextEngine>& TheEngine() {
    static std::unique_ptr<TextEngine> engine;
    return engine;
}

}  // namespace

std::unique_ptr<TextEngine> TextEngine::Create(std::string& problem) {
    std::unique_ptr<TextEngine> engine(new TextEngine);
    return engine->library_.Open(kFontDirectory, problem) ? std::move(engine) : nullptr;
}

std::shared_ptr<const TextFont> TextEngine::Font(const FontKey& key) {
    const auto found = fonts_.find(key);
    if (found != fonts_.end())
        return found->second;
    if (fonts_.size() >= kCachedFonts)
        fonts_.clear();
    return fonts_[key] = std::make_shared<TextFont>(key, library_);
}

std::shared_ptr<const TextLine> TextEngine::Line(const std::shared_ptr<const TextFont>& font,
                                                 std::wstring text) {
    const auto [entry, added] = lines_.try_emplace({font->key(), std::move(text)});
    CachedLine& cached = entry->second;
    if (!added) {
        uses_.splice(uses_.begin(), uses_, cached.use);
        return cached.line;
    }
    cached.line = std::make_shared<TextLine>(font, entry->first.second);
    uses_.push_front(&entry->first);
    cached.use = uses_.begin();
    auto line = cached.line;
    if (lines_.size() > kCachedLines) {
        lines_.erase(lines_.find(*uses_.back()));
        uses_.pop_back();
    }
    return line;
}

TextEngine* Texts() {
    std::unique_ptr<TextEngine>& engine = TheEngine();
    if (!engine) {
        std::string problem;
        engine = TextEngine::Create(problem);
    }
    if (!engine)
        SetLastError(ERROR_FILE_NOT_FOUND);
    return engine.get();
}

std::shared_ptr<const TextFont> FindTextFont(const LOGFONTW& description) {
    if (!IsSupported(description)) {
        SetLastError(ERROR_NOT_SUPPORTED);
        return nullptr;
    }
    if (!IsReasonable(description.lfHeight) || !IsReasonable(description.lfWidth)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    TextEngine* engine = Texts();
    if (!engine)
        return nullptr;
    return engine->Font(
        {.monospaced = IsMonospaced(description),
         .bold = description.lfWeight >= FW_SEMIBOLD,
         .height = description.lfHeight == 0 ? kDefaultHeight : int{description.lfHeight},
         .width = std::abs(description.lfWidth)});
}

std::shared_ptr<const TextLine> FindTextLine(const std::shared_ptr<const TextFont>& font,
                                             std::wstring text) {
    return Texts()->Line(font, std::move(text));
}

void DropTexts() {
    TheEngine().reset();
}

bool CheckFonts(std::string& problem) {
    const auto lock = LockGdi();
    if (!TheEngine())
        TheEngine() = TextEngine::Create(problem);
    return TheEngine() != nullptr;
}

}  // namespace platform::gdi
