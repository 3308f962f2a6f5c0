#include <atlapp.h>
#include <atlbase.h>
#include <atlframe.h>
#include <atlwin.h>

#include <memory>

#include "platform/kernel/call_faults.h"
#include "platform/resource/module.h"
#include "res/program_resources.h"
#include "res/resource.h"
#include "tests/support/platform_test.h"

CAppModule _Module;

namespace tests {
namespace {

constexpr UINT kAsk = WM_USER + 1;

class Frame : public CFrameWindowImpl<Frame> {
  public:
    DECLARE_FRAME_WND_CLASS(L"FrameUnderTest", IDR_MAINFRAME)

    BEGIN_MSG_MAP(Frame)
        MESSAGE_HANDLER(WM_CREATE, OnCreate)
        MESSAGE_HANDLER(kAsk, OnAskFirst)
        MESSAGE_HANDLER(kAsk, OnAskSecond)
        COMMAND_ID_HANDLER(12, OnCommand)
        CHAIN_MSG_MAP(CFrameWindowImpl<Frame>)
    END_MSG_MAP()

    void OnFinalMessage(HWND window) override {
        ++final_messages;
        EXPECT_TRUE(window && !m_hWnd);
    }
    LRESULT Ask() { return SendMessageW(m_hWnd, kAsk, 0, 0); }

    std::function<LRESULT()> on_create = [] { return 0; };
    std::function<void()> on_ask = [] {};
    bool first_handles = true;
    int final_messages = 0;

  private:
    LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL&) { return on_create(); }
    LRESULT OnAskFirst(UINT, WPARAM, LPARAM, BOOL& bHandled) {
        on_ask();
        bHandled = first_handles;
        return 1;
    }
    LRESULT OnAskSecond(UINT, WPARAM, LPARAM, BOOL&) { return 2; }
    LRESULT OnCommand(WORD code, WORD id, HWND, BOOL&) { return code * 100 + id; }
};

void InModule(const std::function<void(Frame&)>& body) {
    std::string problem;
    ASSERT_TRUE(platform::resource::SetModule(res::ProgramResources(), L"\\test.exe", problem));
    OnPlatform([&] {
        _Module.Init(platform::resource::ModuleInstance());
        Frame frame;
        body(frame);
        _Module.Term();
    });
}

TEST(Frame, EndsItsLoopAndLetsGoOfTheWindow) {
    InModule([](Frame& frame) {
        ASSERT_NE(frame.CreateEx(), nullptr);
        EXPECT_EQ(SendMessageW(frame, WM_COMMAND, MAKEWPARAM(12, 3), 0), 312);
        EXPECT_EQ(frame.Ask(), 1);
        frame.first_handles = false;
        EXPECT_EQ(frame.Ask(), 2);
        // It destroys itself inside a handler, whose message is the last to be let go of.
        frame.on_ask = [&] {
            DestroyWindow(frame);
            EXPECT_TRUE(frame.m_hWnd && frame.final_messages == 0);
        };
        frame.Ask();
        EXPECT_TRUE(!frame.m_hWnd && frame.final_messages == 1);
        CMessageLoop loop, other;
        EXPECT_EQ(loop.Run(), 0);
        // A call that fails does not end the loop.
        platform::kernel::AddCallFault({.call = "GetMessageW"});
        PostQuitMessage(7);
        EXPECT_EQ(loop.Run(), 7);
        EXPECT_TRUE(_Module.AddMessageLoop(&loop));
        EXPECT_FALSE(_Module.AddMessageLoop(&other)) << "a thread has one";
        EXPECT_TRUE(_Module.RemoveMessageLoop());

        // The object serves for a window more than once.
        frame.on_ask = [] {};
        ASSERT_NE(frame.CreateEx(), nullptr);
        EXPECT_EQ(frame.Ask(), 2);
        DestroyWindow(frame);
        EXPECT_EQ(frame.final_messages, 2);
    });
}

TEST(Frame, CreatedWithinAnothersCreationFindsItsOwnObject) {
    InModule([](Frame& frame) {
        Frame inner, refusing;
        inner.first_handles = false;
        refusing.on_create = [] { return -1; };
        frame.on_create = [&] {
            EXPECT_EQ(refusing.CreateEx(), nullptr);
            EXPECT_NE(inner.CreateEx(), nullptr);
            return 0;
        };
        EXPECT_NE(frame.CreateEx(), nullptr);
        EXPECT_TRUE(!refusing.m_hWnd && frame.m_hWnd != inner.m_hWnd);
        EXPECT_EQ(inner.Ask(), 2);
        EXPECT_EQ(frame.Ask(), 1);
        EXPECT_EQ(_Module.ExtractCreateWndData(), nullptr);
        DestroyWindow(inner);
        DestroyWindow(frame);
    });
}

TEST(Frame, GoneBeforeItsWindowLeavesTheWindowAlone) {
    InModule([](Frame&) {
        auto gone = std::make_unique<Frame>();
        const HWND window = gone->CreateEx();
        gone.reset();
        EXPECT_EQ(SendMessageW(window, kAsk, 0, 0), 0);
        EXPECT_TRUE(DestroyWindow(window));
    });
}

}  // namespace
}  // namespace tests
