#include <gtest/gtest.h>
#include <windows.h>

#include <random>

#include "platform/resource/image.h"
#include "platform/resource/module.h"
#include "platform/resource/resource_file.h"
#include "res/program_resources.h"
#include "resource_bytes.h"

namespace {

namespace resource = platform::resource;
using namespace tests;

constexpr wchar_t kPath[] = L"\\program.exe";

Bytes VersionResource() {
    const Bytes text =
        ByteList().Word(20).Word(2).Word(1).Text(u"Name").Align().Text(u"7").Align().bytes();
    const Bytes table = ByteList().Word(44).Word(0).Word(1).Text(u"040904B0").Add(text).bytes();
    const Bytes strings = ByteList()
                              .Word(static_cast<unsigned>(36 + table.size()))
                              .Word(0)
                              .Word(1)
                              .Text(u"StringFileInfo")
                              .Add(table)
                              .bytes();
    ByteList root;
    root.Word(static_cast<unsigned>(92 + strings.size())).Word(52).Word(0);
    root.Text(u"VS_VERSION_INFO").Align().Dword(0xFEEF04BD);
    for (int field = 1; field < 13; ++field)
        root.Dword(0);
    return root.Add(strings).bytes();
}

// One resource of every kind that is looked into, small enough to damage in every way.
Bytes OneOfEach() {
    const Bytes bitmap =
        ByteList().Add(DibHeader(3, 2, 4, 0, 2)).Dword(1).Dword(2).Dword(0).Dword(0).bytes();
    const Bytes icon = ByteList()
                           .Add(DibHeader(2, 4, 1))
                           .Dword(1)
                           .Dword(2)
                           .Dword(0)
                           .Dword(0)
                           .Dword(0)
                           .Dword(0)
                           .bytes();
    const Bytes group = ByteList()
                            .Word(0)
                            .Word(1)
                            .Word(1)
                            .Byte(2)
                            .Byte(2)
                            .Byte(2)
                            .Byte(0)
                            .Word(1)
                            .Word(1)
                            .Dword(64)
                            .Word(1)
                            .bytes();
    ByteList strings;
    for (int index = 0; index < 16; ++index)
        strings.Word(1).Word('s');
    return ResFile({ResEntry(2, 1, bitmap), ResEntry(3, 1, icon), ResEntry(14, 1, group),
                    ResEntry(6, 1, strings.bytes()), ResEntry(16, 1, VersionResource())});
}

// Uses whatever of OneOfEach is still there; returns how many of its parts could be.
int UseEverything() {
    int usable = 0;
    usable += resource::DecodeBitmap(MAKEINTRESOURCEW(1)).has_value();
    usable += resource::DecodeIcon(MAKEINTRESOURCEW(1), 2, 2).has_value();
    wchar_t text[64];
    usable += LoadStringW(nullptr, 15, text, 64) > 0;
    const DWORD size = GetFileVersionInfoSizeW(kPath, nullptr);
    Bytes block(size);
    if (size > 0 && GetFileVersionInfoW(kPath, 0, size, block.data())) {
        void* value = nullptr;
        UINT length = 0;
        usable += VerQueryValueW(block.data(), L"\\", &value, &length);
        if (VerQueryValueW(block.data(), L"\\StringFileInfo\\040904B0\\Name", &value, &length)) {
            const auto* start = static_cast<const std::byte*>(value);
            EXPECT_GE(start, block.data());
            EXPECT_LE(start + length, block.data() + block.size());
            ++usable;
        }
    }
    return usable;
}

std::vector<resource::Resource> ReadAll(std::span<const std::byte> file) {
    std::string problem;
    return resource::ReadResourceFile(file, problem).value_or(std::vector<resource::Resource>());
}

TEST(Damage, TheUndamagedExampleIsWhollyUsable) {
    const Bytes file = OneOfEach();
    std::string problem;
    ASSERT_TRUE(resource::SetModule(file, kPath, problem)) << problem;
    EXPECT_EQ(UseEverything(), 5);
}

TEST(Damage, CutOffAtEveryLength) {
    const Bytes whole = OneOfEach();
    int accepted = 0;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        // A block of its own, so that reading beyond it is seen.
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        std::string problem;
        if (resource::SetModule(cut, kPath, problem)) {
            ++accepted;
            EXPECT_LT(UseEverything(), 5);
        } else {
            EXPECT_FALSE(problem.empty());
        }
    }
    // Between two of the six entries, the empty first one counted.
    EXPECT_EQ(accepted, 5);
}

TEST(Damage, EachResourceCutOffAtEveryLength) {
    const Bytes whole = OneOfEach();
    const auto resources = ReadAll(whole);
    constexpr unsigned kTypes[] = {2, 3, 14, 6, 16};
    ASSERT_EQ(resources.size(), std::size(kTypes));
    for (std::size_t damaged = 0; damaged < resources.size(); ++damaged) {
        const auto data = resources[damaged].data;
        for (std::size_t length = 0; length < data.size(); ++length) {
            std::vector<Bytes> entries;
            for (std::size_t index = 0; index < resources.size(); ++index) {
                auto kept = resources[index].data;
                if (index == damaged)
                    kept = kept.first(length);
                entries.push_back(ResEntry(kTypes[index], 1, {kept.begin(), kept.end()}));
            }
            const Bytes file = ResFile(entries);
            std::string problem;
            ASSERT_TRUE(resource::SetModule(file, kPath, problem)) << problem;
            EXPECT_LT(UseEverything(), 5) << "type " << kTypes[damaged] << " of " << length;
        }
    }
}

TEST(Damage, BytesChangedAtRandom) {
    const Bytes whole = OneOfEach();
    std::mt19937 random(1);
    const auto below = [&](std::size_t limit) { return random() % limit; };
    int refused = 0;
    for (int round = 0; round < 20000; ++round) {
        Bytes file = whole;
        for (std::size_t changes = 1 + below(4); changes > 0; --changes)
            file[below(file.size())] = static_cast<std::byte>(below(4) == 0 ? 0xFF : random());
        std::string problem;
        if (resource::SetModule(file, kPath, problem))
            UseEverything();
        else
            ++refused;
        EXPECT_EQ(problem.empty(), problem.find("byte ") != 0);
    }
    EXPECT_GT(refused, 0);
}

TEST(Damage, TheProgramsOwnResourcesCutOff) {
    const auto whole = res::ProgramResources();
    const auto resources = ReadAll(whole);
    ASSERT_EQ(resources.size(), 8U);
    std::vector<std::size_t> lengths;
    for (const resource::Resource& entry : resources) {
        const auto start = static_cast<std::size_t>(entry.data.data() - whole.data());
        for (std::size_t length = start - 40; length < start + 8; ++length)
            lengths.push_back(length);
    }
    for (std::size_t length = 0; length < whole.size(); length += 997)
        lengths.push_back(length);
    for (const std::size_t length : lengths) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        const auto read = ReadAll(cut);
        EXPECT_LT(read.size(), resources.size());
        for (const resource::Resource& entry : read)
            EXPECT_LE(entry.data.data() + entry.data.size(), cut.data() + cut.size());
    }
}

}  // namespace
