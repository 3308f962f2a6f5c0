#include "platform/resource/image.h"
#include "tests/resource/resource_bytes.h"

namespace tests {
namespace {

Bytes VersionResource() {
    const auto text = ByteList().Words({20, 2, 1}).Text(u"Name").Align().Text(u"7").Align();
    const auto table = ByteList().Words({44, 0, 1}).Text(u"040904B0").Add(text);
    const auto strings = ByteList().Words({80, 0, 1}).Text(u"StringFileInfo").Add(table);
    return ByteList()
        .Words({172, 52, 0})
        .Text(u"VS_VERSION_INFO")
        .Align()
        .Dwords({0xFEEF04BD, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0})
        .Add(strings);
}

using Resources = std::vector<std::pair<unsigned, Bytes>>;

// The resources of every kind that is looked into, small enough to damage in every way.
Resources OneOfEach() {
    ByteList strings;
    for (int index = 0; index < 16; ++index)
        strings.Words({1, 's'});
    return {{2, Dib(3, 2, 4, 0, 2).Dwords({1, 2, 0, 0})},
            {3, Dib(2, 4, 1).Dwords({1, 2, 0, 0, 0, 0})},
            {14, ByteList().Words({0, 1, 1, 0x0202, 2, 1, 1, 64, 0, 1})},
            {6, strings},
            {16, VersionResource()}};
}

Bytes FileOf(const Resources& resources) {
    std::vector<Bytes> entries;
    for (const auto& [type, data] : resources)
        entries.push_back(ResEntry(type, 1, data));
    return ResFile(entries);
}

// Uses whatever of OneOfEach is in the file; returns how many of its parts could be, or -1 when
// the file was refused.
int Use(const Bytes& file) {
    std::string problem;
    if (!resource::SetModule(file, kProgramPath, problem)) {
        EXPECT_TRUE(problem.starts_with("byte ") || file.empty()) << problem;
        return -1;
    }
    int usable = resource::DecodeBitmap(MAKEINTRESOURCEW(1)).has_value();
    usable += resource::DecodeIcon(MAKEINTRESOURCEW(1), 2, 2).has_value();
    wchar_t text[64];
    usable += LoadStringW(nullptr, 15, text, 64) > 0;
    const DWORD size = GetFileVersionInfoSizeW(kProgramPath, nullptr);
    Bytes block(size);
    if (size == 0 || !GetFileVersionInfoW(kProgramPath, 0, size, block.data()))
        return usable;
    void* value = nullptr;
    UINT length = 0;
    usable += VerQueryValueW(block.data(), L"\\", &value, &length);
    if (VerQueryValueW(block.data(), L"\\StringFileInfo\\040904B0\\Name", &value, &length)) {
        const auto* start = static_cast<const std::byte*>(value);
        EXPECT_TRUE(start >= block.data() && start + length <= block.data() + block.size());
        ++usable;
    }
    return usable;
}

TEST(Damage, CutOffAtEveryLength) {
    const Bytes whole = FileOf(OneOfEach());
    EXPECT_EQ(Use(whole), 5);
    int accepted = 0;
    for (auto end = whole.begin(); end != whole.end(); ++end) {
        // A block of its own, so that reading beyond it is seen.
        const int usable = Use(Bytes(whole.begin(), end));
        EXPECT_LT(usable, 5);
        accepted += usable >= 0;
    }
    // Between two of the six entries, the empty first one counted.
    EXPECT_EQ(accepted, 5);
    for (std::size_t damaged = 0; damaged < 5; ++damaged) {
        Resources resources = OneOfEach();
        auto& [type, data] = resources[damaged];
        while (!data.empty()) {
            data.pop_back();
            const int usable = Use(FileOf(resources));
            EXPECT_TRUE(0 <= usable && usable < 5) << "type " << type << " of " << data.size();
        }
    }
}

}  // namespace
}  // namespace tests
