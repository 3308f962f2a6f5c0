// The reader of compiled resources and of what they hold: bitmaps, icons, strings, versions,
// dialogs. Any file is safe and takes memory in proportion to its size.
#include <windows.h>

#include <cstring>
#include <string>
#include <vector>

#include "fuzz/fuzz.h"
#include "platform/resource/dib.h"
#include "platform/resource/image.h"
#include "platform/resource/module.h"
#include "platform/resource/resource_file.h"
#include "platform/resource/version_block.h"
#include "tests/support/platform_fixture.h"

namespace {

namespace resource = platform::resource;
using fuzz::Check;

constexpr wchar_t kPath[] = L"\\program.exe";
constexpr WORD kMostNames = 4;

void CheckImage(const std::optional<resource::DecodedImage>& image, std::size_t bytes) {
    if (!image)
        return;
    const std::size_t pixels = image->pixels.size();
    Check(image->width > 0 && image->height > 0, "an image has sides");
    Check(pixels == static_cast<std::size_t>(image->width) * image->height,
          "an image has all its pixels");
    Check(pixels <= bytes * 8, "the pixels are in proportion to the bytes");
}

void CheckVersion(std::span<const std::byte> bytes) {
    const auto block = resource::ConvertVersionBlock(bytes);
    if (!block)
        return;
    for (const wchar_t* path : {L"\\", L"\\StringFileInfo\\040904B0\\Name", L"\\VarFileInfo",
                                L"\\StringFileInfo\\040904B0", L"\\A\\B\\C\\D\\E"}) {
        const auto value = resource::QueryVersionBlock(block->data(), path);
        const auto size = static_cast<std::ptrdiff_t>(value ? value->length : 0);
        Check(!value || (value->address >= block->data() &&
                         value->address + size <= block->data() + block->size()),
              "a value lies within its block");
    }
}

void CheckAll(const std::vector<resource::Resource>& resources, std::span<const std::byte> file) {
    for (const resource::Resource& found : resources) {
        Check(found.data.empty() ||
                  (found.data.data() >= file.data() &&
                   found.data.data() + found.data.size() <= file.data() + file.size()),
              "a resource lies within its file");
        // A block of its own, so that the sanitizer sees a read beyond it.
        const std::vector<std::byte> data(found.data.begin(), found.data.end());
        CheckImage(resource::DecodeDib(data), data.size());
        CheckImage(resource::DecodeIconDib(data), data.size());
        CheckVersion(data);
    }
}

// Reads resources as the program does.
void ReadByName() {
    for (WORD number = 1; number <= kMostNames; ++number) {
        const LPCWSTR name = MAKEINTRESOURCEW(number);
        resource::DecodeBitmap(name);
        resource::DecodeIcon(name, 16, 16);
        const auto data = resource::Find(RT_DIALOG, name);
        Check(!data || data->empty() ||
                  LoadResource(nullptr, FindResourceW(nullptr, name, RT_DIALOG)) != nullptr,
              "a resource that is found can be loaded");
    }
    for (UINT id = 0; id < 40; ++id) {
        wchar_t text[24];
        const int length = LoadStringW(nullptr, id, text, static_cast<int>(std::size(text)));
        Check(length >= 0 && static_cast<std::size_t>(length) < std::size(text) &&
                  text[length] == L'\0',
              "a string fits its buffer and is ended");
    }
    const DWORD size = GetFileVersionInfoSizeW(kPath, nullptr);
    std::vector<std::byte> block(size);
    Check(size == 0 || GetFileVersionInfoW(kPath, 0, size, block.data()) != FALSE,
          "a version block has the size that was reported");
}

}  // namespace

void fuzz::Try(Input input) {
    static const auto* const platform = new tests::Platform;
    static_cast<void>(platform);
    // A block of its own: libFuzzer's may be longer.
    const std::vector<std::uint8_t> bytes = input.Rest();
    const auto file = std::as_bytes(std::span(bytes));
    std::string problem;
    const auto resources = resource::ReadResourceFile(file, problem);
    Check(resources.has_value() == problem.empty(), "a refusal has a reason");
    Check(problem.empty() || problem == "empty" || problem.starts_with("byte "),
          "a problem names its place", problem);
    if (!resources)
        return;
    Check(resources->size() * 32 <= file.size(), "an entry has a header");
    CheckAll(*resources, file);
    Check(resource::SetModule(file, kPath, problem), "the same file is taken as a module");
    ReadByName();
    Check(resource::SetModule({}, kPath, problem) || !problem.empty(), "a module can be removed");
}
