#include "platform/resource/module.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "platform/resource/image.h"
#include "resource_bytes.h"

namespace {

namespace resource = platform::resource;
using namespace tests;

constexpr wchar_t kPath[] = L"\\Tolvane\\Tolvane.exe";

Bytes SomeResources() {
    ByteList strings;
    strings.Word(0).Word(2).Word('H').Word('i');
    for (int index = 2; index < 16; ++index)
        strings.Word(0);
    const Bytes bitmap = ByteList().Add(DibHeader(1, 1, 24)).Dword(0x00123456).bytes();

    // An entry whose type and name are texts.
    ByteList named;
    named.Dword(3).Dword(48).Text(u"CARD").Text(u"Slot.A");
    named.Dword(0).Word(0).Word(0).Dword(0).Dword(0);
    named.Byte(1).Byte(2).Byte(3).Align();
    return ResFile({ResEntry(2, 202, bitmap), ResEntry(2, 203, bitmap),
                    ResEntry(6, 9, strings.bytes()), named.bytes()});
}

class Module : public testing::Test {
  protected:
    void SetUp() override {
        std::string problem;
        ASSERT_TRUE(resource::SetModule(resources_, kPath, problem)) << problem;
        SetLastError(ERROR_SUCCESS);
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
        {RT_BITMAP, L"#203", 44, ERROR_SUCCESS},
        {L"#2", MAKEINTRESOURCEW(203), 44, ERROR_SUCCESS},
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
        ASSERT_EQ(found != nullptr, row.error == ERROR_SUCCESS);
        EXPECT_EQ(SizeofResource(resource::ModuleInstance(), found), row.size);
    }
}

TEST_F(Module, HandlesOfNothingAreRefused) {
    int something = 0;
    const auto stranger = reinterpret_cast<HMODULE>(&something);
    const auto no_resource = reinterpret_cast<HRSRC>(&something);
    wchar_t text[8] = L"full";
    EXPECT_EQ(FindResourceW(stranger, MAKEINTRESOURCEW(202), RT_BITMAP), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    EXPECT_EQ(LoadStringW(stranger, 129, text, 8), 0);
    EXPECT_STREQ(text, L"");
    EXPECT_EQ(LoadResource(nullptr, no_resource), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_EQ(SizeofResource(nullptr, nullptr), 0U);
    EXPECT_EQ(LockResource(nullptr), nullptr);
}

TEST_F(Module, Strings) {
    const struct {
        UINT id;
        int size;
        const wchar_t* text;
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
        wchar_t text[17];
        std::fill(std::begin(text), std::end(text), L'#');
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(LoadStringW(nullptr, row.id, text, row.size),
                  static_cast<int>(std::wcslen(row.text)));
        EXPECT_STREQ(text, row.text);
        EXPECT_EQ(text[row.size], L'#') << "written beyond its size";
        EXPECT_EQ(GetLastError(), row.error);
    }
    wchar_t text[2] = L"#";
    EXPECT_EQ(LoadStringW(nullptr, 129, text, 0), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(LoadStringW(nullptr, 129, nullptr, 16), 0);
    EXPECT_STREQ(text, L"#");
}

TEST_F(Module, HiddenResourcesAreNotFoundUntilTheNextModule) {
    resource::Hide(RT_BITMAP, MAKEINTRESOURCEW(202));
    EXPECT_FALSE(resource::DecodeBitmap(MAKEINTRESOURCEW(202)));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_NAME_NOT_FOUND));
    const auto other = resource::DecodeBitmap(MAKEINTRESOURCEW(203));
    EXPECT_EQ(other.value_or(resource::DecodedImage{}).pixels,
              std::vector<std::uint32_t>{0x123456});

    resource::Hide(RT_BITMAP, L"#203");
    EXPECT_FALSE(resource::Find(RT_BITMAP, MAKEINTRESOURCEW(203)));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_TYPE_NOT_FOUND));

    std::string problem;
    ASSERT_TRUE(resource::SetModule(resources_, kPath, problem));
    EXPECT_TRUE(resource::Find(RT_BITMAP, MAKEINTRESOURCEW(202)));
}

TEST_F(Module, KnowsItsPath) {
    wchar_t path[32];
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, 32), 20U);
    EXPECT_STREQ(path, kPath);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(GetModuleFileNameW(resource::ModuleInstance(), path, 21), 20U);
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, 20), 20U);
    EXPECT_STREQ(path, L"\\Tolvane\\Tolvane.ex");
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, 0), 0U);

    ASSERT_NE(resource::ModuleInstance(), nullptr);
    for (const wchar_t* name : {L"tolvane.EXE", kPath})
        EXPECT_EQ(GetModuleHandleW(name), resource::ModuleInstance());
    EXPECT_EQ(GetModuleHandleW(nullptr), resource::ModuleInstance());
    EXPECT_EQ(GetModuleHandleW(L"coredll.dll"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
}

TEST_F(Module, WithoutAVersionOrAnAcceleratorTable) {
    EXPECT_EQ(GetFileVersionInfoSizeW(kPath, nullptr), 0U);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_TYPE_NOT_FOUND));
    EXPECT_EQ(GetFileVersionInfoSizeW(L"\\Windows\\other.exe", nullptr), 0U);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(LoadAcceleratorsW(nullptr, MAKEINTRESOURCEW(128)), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_NAME_NOT_FOUND));
}

TEST_F(Module, DamagedResourcesLeaveAModuleWithAPathAndNothingElse) {
    const Bytes damaged(resources_.begin(), resources_.end() - 4);
    std::string problem;
    EXPECT_FALSE(resource::SetModule(damaged, kPath, problem));
    EXPECT_EQ(problem, "byte 252: data cut off");
    EXPECT_FALSE(resource::Find(RT_BITMAP, MAKEINTRESOURCEW(202)));
    wchar_t path[32];
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, 32), 20U);
}

}  // namespace
