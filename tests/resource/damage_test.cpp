#include <gtest/gtest.h>
#include <windows.h>

#include "platform/resource/image.h"
#include "platform/resource/module.h"
#include "platform/resource/resource_file.h"
#include "resource_bytes.h"

namespace {

namespace resource = platform::resource;
using namespace tests;

constexpr wchar_t kPath[] = L"\\program.exe";

Bytes VersionResource() {
    const auto text = ByteList().Word(20).Word(2).Word(1).Text(u"Name").Align().Text(u"7").Align();
    const auto table = ByteList().Word(44).Word(0).Word(1).Text(u"040904B0").Add(text);
    const auto strings = ByteList().Word(80).Word(0).Word(1).Text(u"StringFileInfo").Add(table);
    ByteList root;
    root.Word(172).Word(52).Word(0).Text(u"VS_VERSION_INFO").Align().Dword(0xFEEF04BD);
    return root.Dwords({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}).Add(strings);
}

// The resources of every kind that is looked into, small enough to damage in every way.
std::vector<std::pair<unsigned, Bytes>> OneOfEach() {
    ByteList group, strings;
    group.Word(0).Word(1).Word(1).Word(0x0202).Word(2).Word(1).Word(1).Dword(64).Word(1);
    for (int index = 0; index < 16; ++index)
        strings.Word(1).Word('s');
    return {{2, Dib(3, 2, 4, 0, 2).Dwords({1, 2, 0, 0})},
            {3, Dib(2, 4, 1).Dwords({1, 2, 0, 0, 0, 0})},
            {14, group},
            {6, strings},
            {16, VersionResource()}};
}

Bytes FileOf(const std::vector<std::pair<unsigned, Bytes>>& resources) {
    std::vector<Bytes> entries;
    for (const auto& [type, data] : resources)
        entries.push_back(ResEntry(type, 1, data));
    return ResFile(entries);
}

// Uses whatever of OneOfEach is in the file; returns how many of its parts could be, or -1 when
// the file was refused.
int Use(const Bytes& file) {
    std::string problem;
    if (!resource::SetModule(file, kPath, problem)) {
        EXPECT_TRUE(problem.starts_with("byte ") || file.empty()) << problem;
        return -1;
    }
    int usable = resource::DecodeBitmap(MAKEINTRESOURCEW(1)).has_value();
    usable += resource::DecodeIcon(MAKEINTRESOURCEW(1), 2, 2).has_value();
    wchar_t text[64];
    usable += LoadStringW(nullptr, 15, text, 64) > 0;
    const DWORD size = GetFileVersionInfoSizeW(kPath, nullptr);
    Bytes block(size);
    if (size == 0 || !GetFileVersionInfoW(kPath, 0, size, block.data()))
        return usable;
    void* value = nullptr;
    UINT length = 0;
    usable += VerQueryValueW(block.data(), L"\\", &value, &length);
    if (VerQueryValueW(block.data(), L"\\StringFileInfo\\040904B0\\Name", &value, &length)) {
        const auto* start = static_cast<const std::byte*>(value);
        EXPECT_GE(start, block.data());
        EXPECT_LE(start + length, block.data() + block.size());
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
}

TEST(Damage, EachResourceCutOffAtEveryLength) {
    for (std::size_t damaged = 0; damaged < 5; ++damaged) {
        auto resources = OneOfEach();
        auto& [type, data] = resources[damaged];
        while (!data.empty()) {
            data.pop_back();
            const int usable = Use(FileOf(resources));
            EXPECT_TRUE(0 <= usable && usable < 5) << "type " << type << " of " << data.size();
        }
    }
}

}  // namespace
