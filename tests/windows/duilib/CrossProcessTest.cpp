// A window's controls as another process sees and presses them: the way of screen readers and of end-to-end tests.
#include <windows.h>

#include <oleacc.h>

#include <map>

#include "DuiLib/SliderUI.h"
#include "TestWindow.h"
#include "tests/support/ChildProcess.h"

namespace DuiLib::Test {
namespace {

constexpr wchar_t kTitle[] = L"DuiLib cross process window";

// The other process: it shows a window until "done" is pressed, and fails when the slider was not set before.
TEST(CrossProcess, DISABLED_Server) {
    TestWindow window(R"(<Window size="300,200"><VerticalLayout>
        <Label text="Hello" name="label" height="30"/><Button name="done" text="Done" height="40"/>
        <Slider name="slider" accname="Level" height="30" value="1"/></VerticalLayout></Window>)");
    SetWindowTextW(window.GetHWND(), kTitle);
    window.onNotify = [](TNotifyUI& msg) {
        if (msg.type == NotifyType::kClick) {
            PostQuitMessage(0);
        }
    };
    window.ShowWindow();
    CPaintManagerUI::MessageLoop();
    EXPECT_EQ(window.Find<CSliderUI>(L"slider").GetValue(), 42);
}

TEST(CrossProcess, ControlsAreListedSetAndPressed) {
    ResourceFolder::Get();  // COM for this thread
    harness::ChildProcess server(L"duilib_tests.exe",
                                 L"--gtest_also_run_disabled_tests --gtest_filter=CrossProcess.DISABLED_Server");
    HWND window = nullptr;
    EXPECT_TRUE(PumpUntil([&] {
        window = FindWindowW(nullptr, kTitle);
        return window != nullptr && IsWindowVisible(window);
    }));
    IAccessible* object = nullptr;
    EXPECT_EQ(AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible,
                                         reinterpret_cast<void**>(&object)),
              S_OK);
    std::map<std::wstring, VARIANT> children;
    if (object != nullptr) {
        VARIANT items[10]{};
        long got = 0;
        EXPECT_EQ(AccessibleChildren(object, 0, 3, items, &got), S_OK);
        for (long i = 0; i < got; ++i) {
            BSTR name = nullptr;
            EXPECT_EQ(object->get_accName(items[i], &name), S_OK);
            children[name != nullptr ? name : L""] = items[i];
            SysFreeString(name);
        }
        EXPECT_EQ(children.size(), 3u);
        BSTR value = SysAllocString(L"42");
        EXPECT_EQ(object->put_accValue(children[L"Level"], value), S_OK);
        SysFreeString(value);
        EXPECT_EQ(object->accDoDefaultAction(children[L"Done"]), S_OK);
        object->Release();
    }
    EXPECT_TRUE(PumpUntil([&] { return !server.Runs(); }));
    EXPECT_EQ(server.WaitForEnd(), 0u);
}

}  // namespace
}  // namespace DuiLib::Test
