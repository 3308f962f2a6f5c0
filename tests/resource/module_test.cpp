#include "platform/resource/module.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "resource_bytes.h"

namespace {

namespace resource = platform::resource;
using namespace tests;

constexpr wchar_t kModulePath[] = L"\\Tolvane\\Tolvane.exe";

Bytes SomeResources() {
    ByteList strings;
    strings.Word(0).Word(2).Word('H').Word('i').Dwords({0, 0, 0, 0, 0, 0, 0});
    const Bytes bitmap = Dib(1, 1, 24).Dword(0x00123456);
    // An entry whose type and name are texts.
    ByteList named;
    named.Dwords({3, 48}).Text(u"CARD").Text(u"Slot.A").Dwords({0, 0, 0, 0});
    return ResFile({ResEntry(2, 202, bitmap), ResEntry(2, 203, bitmap), ResEntry(6, 9, strings),
                    named.Byte(1).Byte(2).Byte(3).Align()});
}

class Module : public testing::Test {
  protected:
    void SetUp() override {
        std::string problem;
        ASSERT_TRUE(resource::SetModule(resources_, kModulePath, problem)) << problem;
    }

    template <class Call>
    static void ExpectFails(DWORD error, Call call) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(call());
        EXPECT_EQ(GetLastError(), error);
    }

    const Bytes resources_ = SomeResources();
};

TEST_F(Module, FindsByNumberAndByText) {
    const struct {
        LPCWSTR type;
        LPCWSTR name;
        DWORD size;
        DWORD error;
    } cases[] = {
        {RT_BITMAP, MAKEINTRESOURCEW(202), 44, ERROR_SUCCESS},
        {L"#2", L"#203", 44, ERROR_SUCCESS},
        {L"card", L"SLOT.a", 3, ERROR_SUCCESS},
        {RT_BITMAP, MAKEINTRESOURCEW(204), 0, ERROR_RESOURCE_NAME_NOT_FOUND},
        {RT_BITMAP, L"#65738", 0, ERROR_RESOURCE_NAME_NOT_FOUND},
        {RT_BITMAP, L"#20x", 0, ERROR_RESOURCE_NAME_NOT_FOUND},
        {L"card", L"Slot.B", 0, ERROR_RESOURCE_NAME_NOT_FOUND},
        {RT_ICON, MAKEINTRESOURCEW(202), 0, ERROR_RESOURCE_TYPE_NOT_FOUND},
        {L"cards", L"Slot.A", 0, ERROR_RESOURCE_TYPE_NOT_FOUND},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &row - cases);
        SetLastError(ERROR_SUCCESS);
        const HRSRC found = FindResourceW(nullptr, row.name, row.type);
        EXPECT_EQ(GetLastError(), row.error);
        EXPECT_EQ(SizeofResource(resource::ModuleInstance(), found), row.size);
    }
    resource::Hide(RT_BITMAP, L"#203");
    EXPECT_FALSE(resource::Find(RT_BITMAP, MAKEINTRESOURCEW(203)));
    EXPECT_TRUE(resource::Find(RT_BITMAP, MAKEINTRESOURCEW(202)));
    SetUp();
    EXPECT_TRUE(resource::Find(RT_BITMAP, MAKEINTRESOURCEW(203))) << "hidden until the next module";
}

TEST_F(Module, Strings) {
    const struct {
        UINT id;
        int size;
        std::wstring text;
        DWORD error;
    } cases[] = {
        {129, 16, L"Hi", ERROR_SUCCESS},
        {129, 3, L"Hi", ERROR_SUCCESS},
        {129, 2, L"H", ERROR_SUCCESS},
        {129, 1, L"", ERROR_SUCCESS},
        {128, 16, L"", ERROR_RESOURCE_NAME_NOT_FOUND},
        {143, 16, L"", ERROR_RESOURCE_NAME_NOT_FOUND},
        {144, 16, L"", ERROR_RESOURCE_NAME_NOT_FOUND},
        {129 + 0x10000, 16, L"", ERROR_RESOURCE_NAME_NOT_FOUND},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(testing::Message() << "string " << row.id << " into " << row.size);
        std::wstring text(17, L'#');
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(LoadStringW(nullptr, row.id, text.data(), row.size),
                  static_cast<int>(row.text.size()));
        EXPECT_EQ(text.c_str(), row.text);
        EXPECT_EQ(text[row.size], L'#') << "written beyond its size";
        EXPECT_EQ(GetLastError(), row.error);
    }
}

TEST_F(Module, WhatIsNotThereIsRefused) {
    const auto stranger = reinterpret_cast<HMODULE>(this);
    const auto version = [](LPCWSTR path) { return GetFileVersionInfoSizeW(path, nullptr); };
    wchar_t text[4];
    ExpectFails(ERROR_MOD_NOT_FOUND, [&] { return FindResourceW(stranger, L"#202", RT_BITMAP); });
    ExpectFails(ERROR_MOD_NOT_FOUND, [&] { return LoadStringW(stranger, 129, text, 4); });
    ExpectFails(ERROR_INVALID_PARAMETER, [&] { return LoadStringW(nullptr, 129, text, 0); });
    ExpectFails(ERROR_INVALID_HANDLE,
                [&] { return LoadResource(nullptr, reinterpret_cast<HRSRC>(this)); });
    ExpectFails(ERROR_MOD_NOT_FOUND, [] { return GetModuleHandleW(L"coredll.dll"); });
    ExpectFails(ERROR_RESOURCE_TYPE_NOT_FOUND, [&] { return version(kModulePath); });
    ExpectFails(ERROR_FILE_NOT_FOUND, [&] { return version(L"\\Windows\\other.exe"); });
    ExpectFails(ERROR_RESOURCE_NAME_NOT_FOUND,
                [] { return LoadAcceleratorsW(nullptr, MAKEINTRESOURCEW(128)); });
}

TEST_F(Module, KnowsItsPathWhateverItsResources) {
    const Bytes damaged(resources_.begin(), resources_.end() - 4);
    std::string problem;
    EXPECT_FALSE(resource::SetModule(damaged, kModulePath, problem));
    EXPECT_EQ(problem, "byte 252: data cut off");
    EXPECT_FALSE(resource::Find(RT_BITMAP, MAKEINTRESOURCEW(202)));
    wchar_t path[32];
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, 21), 20U);
    EXPECT_STREQ(path, kModulePath);
    EXPECT_EQ(GetModuleFileNameW(resource::ModuleInstance(), path, 20), 20U);
    EXPECT_STREQ(path, L"\\Tolvane\\Tolvane.ex");
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    for (const wchar_t* name : {L"tolvane.EXE", kModulePath, LPCWSTR{}})
        EXPECT_EQ(GetModuleHandleW(name), resource::ModuleInstance());
}

}  // namespace
