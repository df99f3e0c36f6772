// Where the preview's window stands among the others: right above its owner, and nothing else is moved for that; and
// that it is seen only with its owner.
#include <algorithm>
#include <vector>

#include "pages/PreviewWindow.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/pages/PageTests.h"
#include "tests/windows/support/Input.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kDpi = USER_DEFAULT_SCREEN_DPI;
constexpr UINT kOrderOnly = SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_NOOWNERZORDER;

// A small window, on top of the others of its kind.
class Popup {
  public:
    explicit Popup(HWND owner)
        : window_(CreateWindowExW(WS_EX_TOOLWINDOW, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 40, 40, owner, nullptr,
                                  nullptr, nullptr)) {}
    ~Popup() { DestroyWindow(window_); }
    Popup(const Popup&) = delete;
    Popup& operator=(const Popup&) = delete;
    HWND Get() const { return window_; }

  private:
    const HWND window_;
};

HWND g_watched = nullptr;
std::vector<HWND> g_after;  // what it was put behind
decltype(&SetWindowPos) g_setWindowPos;

BOOL WINAPI NoteOrder(HWND window, HWND after, int x, int y, int width, int height, UINT flags) {
    if (window == g_watched && !(flags & SWP_NOZORDER)) {
        g_after.push_back(after);
    }
    return g_setWindowPos(window, after, x, y, width, height, flags);
}

class PreviewOrderTest : public PageTest {
  protected:
    void SetUp() override {
        PageTest::SetUp();
        ASSERT_TRUE(preview_.Create(Owner(), GetModuleHandleW(nullptr)));
        preview_.Show(kDpi, true);
        ASSERT_TRUE(IsVisible());
    }
    void TearDown() override {
        preview_.Destroy();
        PageTest::TearDown();
    }

    HWND Owner() { return Host().GetHWND(); }
    bool IsVisible() const { return IsWindowVisible(preview_.Get()) != FALSE; }
    void PlaceAgain() { preview_.Place(kDpi, true); }
    // As where a system lifts its owner alone. Others keep an owned window above, and what the test expects is so
    // already.
    void PutBelowOwner() { SetWindowPos(preview_.Get(), Owner(), 0, 0, 0, 0, kOrderOnly); }
    void NoteOrders() const {
        g_watched = preview_.Get();
        g_after.clear();
    }
    // Those windows as they stand, from the top.
    static std::vector<HWND> Order(const std::vector<HWND>& windows) {
        std::vector<HWND> order;
        for (HWND each = GetTopWindow(nullptr); each; each = GetWindow(each, GW_HWNDNEXT)) {
            if (std::find(windows.begin(), windows.end(), each) != windows.end()) {
                order.push_back(each);
            }
        }
        return order;
    }

    PreviewWindow preview_{PreviewWindow::Events{}};
};

TEST_F(PreviewOrderTest, BelowItsOwnerItIsPutRightAboveIt) {
    const Popup box(Owner());
    const Popup other(nullptr);
    ASSERT_TRUE(Input::Activate(other.Get()));
    PutBelowOwner();
    PlaceAgain();
    EXPECT_THAT(Order({Owner(), preview_.Get(), box.Get()}), ElementsAre(box.Get(), preview_.Get(), Owner()));
}

TEST_F(PreviewOrderTest, OnlyInFrontItsPlaceIsToldAnew) {
    const Popup other(nullptr);
    ASSERT_TRUE(Input::Activate(other.Get()));
    const harness::ImportHook hook(nullptr, "SetWindowPos", &NoteOrder);
    g_setWindowPos = hook.Original<decltype(g_setWindowPos)>();
    NoteOrders();
    PlaceAgain();
    EXPECT_THAT(g_after, IsEmpty()) << "it is in its place";
    ASSERT_TRUE(Input::Activate(Owner()));
    PlaceAgain();
    EXPECT_THAT(g_after, ElementsAre(HWND_TOP));
    ASSERT_TRUE(Input::Activate(preview_.Get()));
    PlaceAgain();
    EXPECT_THAT(g_after, ElementsAre(HWND_TOP, HWND_TOP));
}

// Not every system hides an owned window with its owner, and none does so when that one is hidden by the program.
TEST_F(PreviewOrderTest, ItIsSeenOnlyWithItsOwner) {
    ShowWindow(Owner(), SW_HIDE);
    PlaceAgain();
    EXPECT_FALSE(IsVisible());
    ShowWindow(Owner(), SW_SHOWNOACTIVATE);
    PlaceAgain();
    EXPECT_TRUE(IsVisible());

    ShowWindow(Owner(), SW_MINIMIZE);
    ASSERT_TRUE(IsIconic(Owner()));
    PlaceAgain();
    EXPECT_FALSE(IsVisible());
    ShowWindow(Owner(), SW_RESTORE);
    PlaceAgain();
    EXPECT_TRUE(IsVisible());

    preview_.Place(kDpi, false);
    EXPECT_FALSE(IsVisible()) << "its area is on another page";
}

}  // namespace
