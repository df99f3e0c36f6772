// Pictures that are read on other threads before they are drawn: the same pixels, read once, whatever changes
// meanwhile.
#include <objbase.h>

#include <atomic>
#include <optional>
#include <thread>

#include "Rendering.h"
#include "suite/common/Handle.h"
#include "tests/support/FakeLook.h"
#include "tests/support/ImportHook.h"

namespace DuiLib::Test {
namespace {

constexpr std::uint32_t kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF;
constexpr int kCount = 6;

// The threads that read, seen where each makes its imaging factory. The first one beside the test's own can be held
// there, with a picture that it has begun.
class Readers {
  public:
    Readers() { current_ = this; }
    ~Readers() {
        Release();
        current_ = nullptr;
    }
    Readers(const Readers&) = delete;
    Readers& operator=(const Readers&) = delete;

    void HoldFirst() { ResetEvent(open_.Get()); }
    void Release() { SetEvent(open_.Get()); }

    std::atomic<int> begun{0}, ended{0}, own{0};
    std::atomic<int> awaited{0};  // so many others have begun before the test's own thread reads

  private:
    static HRESULT WINAPI Make(REFCLSID kind, IUnknown* outer, DWORD context, REFIID face, void** out) {
        Readers& readers = *current_;
        const bool beside = GetCurrentThreadId() != readers.thread_;
        if (beside && ++readers.begun == 1) {
            WaitForSingleObject(readers.open_.Get(), static_cast<DWORD>(harness::kPatience.count()));
        }
        if (!beside) {
            harness::WaitUntil([&readers] { return readers.begun >= readers.awaited; });
        }
        const HRESULT made = readers.hook_.Original<decltype(&CoCreateInstance)>()(kind, outer, context, face, out);
        ++(beside ? readers.ended : readers.own);
        return made;
    }

    static inline Readers* current_ = nullptr;
    const DWORD thread_ = GetCurrentThreadId();
    const suite::Handle open_{CreateEventW(nullptr, TRUE, TRUE, nullptr)};
    const harness::ImportHook hook_{GetModuleHandleW(L"DuiLib.dll"), "CoCreateInstance", &Make};
};

std::wstring NameOf(int index) {
    return L"drawable/ahead/" + std::to_wstring(index) + L".png";
}

void WriteAll(const std::wstring& family, Size sizePx, std::uint32_t color) {
    for (int i = 0; i < kCount; ++i) {
        WriteImage(family + L"\\ahead\\" + std::to_wstring(i) + L".png", sizePx,
                   std::vector<std::uint32_t>(static_cast<size_t>(sizePx.cx * sizePx.cy), color));
    }
}

std::string Layout() {
    std::string layout = R"(<Window size="60,60" bkcolor="#FFFFFFFF"><VerticalLayout><VerticalLayout name="all">)";
    for (int i = 0; i < kCount; ++i) {
        const std::string number = std::to_string(i);
        layout += "<Control name=\"c" + number + "\" bkimage=\"drawable/ahead/" + number + ".png\"/>";
    }
    return layout + "</VerticalLayout></VerticalLayout></Window>";
}

class ReadAhead : public testing::Test {
  protected:
    ReadAhead() {
        WriteAll(L"drawable", {10, 10}, kRed);
        WriteAll(L"drawable-200", {20, 20}, kGreen);
        WriteAll(L"drawable-dark", {10, 10}, kBlue);
        window_.emplace(Layout());
    }
    CPaintManagerUI& Manager() { return window_->PaintManager(); }
    bool AllRead() {
        for (int i = 0; i < kCount; ++i) {
            if (!Manager().HasImage(NameOf(i))) {
                return false;
            }
        }
        return true;
    }
    // One begins, and has read nothing yet.
    void BeginAndHold() {
        readers_.HoldFirst();
        Manager().ReadPicturesAhead();
        ASSERT_TRUE(harness::WaitUntil([this] { return readers_.begun >= 1; }));
    }
    void Paint() {
        window_->ShowWindow(true, false);
        PumpPending();
        UpdateWindow(window_->GetHWND());
    }
    bool ShowsOnly(int dpi, std::uint32_t color) {
        const Picture picture = Render(*window_, dpi);
        return picture.HasOnly({0, 0, picture.sizePx.cx, picture.sizePx.cy}, color);
    }

    harness::FakeLook look_;
    Readers readers_;
    std::optional<TestWindow> window_;
};

TEST_F(ReadAhead, OtherThreadsReadAndNobodyReadsAgain) {
    Manager().ReadPicturesAhead();
    ASSERT_TRUE(harness::WaitUntil([this] { return AllRead(); }));
    for (int i = 0; i < kCount; ++i) {
        ASSERT_TRUE(std::filesystem::remove(std::filesystem::path(ResourceFolder::Get().Path()) / NameOf(i)));
    }
    EXPECT_TRUE(ShowsOnly(96, kRed));
    EXPECT_GE(readers_.begun, 1);
    EXPECT_EQ(readers_.own, 0);
}

TEST_F(ReadAhead, APaintAfterAnotherArrangementBeginsIt) {
    window_->Find(L"all").SetVisible(false);
    Paint();
    EXPECT_EQ(readers_.begun + readers_.own, 0);
    window_->Find(L"all").SetVisible(true);
    readers_.awaited = 1;
    Paint();
    EXPECT_GE(readers_.begun, 1);
}

TEST_F(ReadAhead, APaintAfterAnotherThemeBeginsIt) {
    Manager().ReadPicturesAhead();
    ASSERT_TRUE(harness::WaitUntil([this] { return AllRead(); }));
    Paint();
    look_.SetDark(true);
    harness::FakeLook::Tell(window_->GetHWND());
    const int before = readers_.begun;
    readers_.awaited = before + 1;
    Paint();
    EXPECT_GT(readers_.begun, before);
}

TEST_F(ReadAhead, ThePaintReadsWhatNoThreadHasBegun) {
    BeginAndHold();
    window_->Find(L"c0").SetBkImage(L"");  // the first, which has been begun
    const Picture picture = Render(*window_, 96);
    EXPECT_EQ(picture.CountOf({0, 0, 60, 60}, kRed), 60 * 50);
    EXPECT_EQ(readers_.ended, readers_.begun - 1);
    EXPECT_GE(readers_.own + readers_.ended, 1);
    readers_.Release();
}

TEST_F(ReadAhead, AnotherThemeMeanwhileShowsItsPictures) {
    BeginAndHold();
    look_.SetDark(true);
    harness::FakeLook::Tell(window_->GetHWND());
    EXPECT_TRUE(ShowsOnly(96, kBlue));
    readers_.Release();
    ASSERT_TRUE(harness::WaitUntil([this] { return readers_.ended == readers_.begun; }));
    EXPECT_TRUE(ShowsOnly(96, kBlue));
    look_.SetDark(false);
    harness::FakeLook::Tell(window_->GetHWND());
    EXPECT_TRUE(ShowsOnly(96, kRed));
}

TEST_F(ReadAhead, AnotherScaleMeanwhileShowsItsPictures) {
    BeginAndHold();
    EXPECT_TRUE(ShowsOnly(192, kGreen));
    readers_.Release();
    EXPECT_TRUE(ShowsOnly(192, kGreen));
    EXPECT_TRUE(ShowsOnly(96, kRed));
}

TEST_F(ReadAhead, AWindowThatClosesLeavesNoThreadBehind) {
    BeginAndHold();
    const HWND window = window_->GetHWND();
    std::thread release([this, window] {
        harness::WaitUntil([window] { return !IsWindow(window); });
        readers_.Release();
    });
    window_.reset();
    EXPECT_EQ(readers_.ended, readers_.begun);
    EXPECT_EQ(readers_.own, 0);
    release.join();
}

TEST_F(ReadAhead, ABrokenPictureIsToldOnce) {
    ResourceFolder::Get().Write(L"drawable\\ahead\\0.png", "this is no picture");
    LogWatch log;
    Manager().ReadPicturesAhead();
    ASSERT_TRUE(harness::WaitUntil([this] { return Manager().HasImage(NameOf(kCount - 1)); }));
    EXPECT_FALSE(Manager().HasImage(NameOf(0)));
    for (int round = 0; round < 2; ++round) {
        const Picture picture = Render(*window_, 96);
        EXPECT_EQ(picture.CountOf({0, 0, 60, 60}, kRed), 60 * 50);
        Manager().ReadPicturesAhead();
    }
    EXPECT_EQ(log.Failures().size(), 1u);
    EXPECT_TRUE(log.Has("0.png cannot be read"));
    WriteImage(L"drawable\\ahead\\0.png", {1, 1}, {kRed});
    Manager().RemoveImage(NameOf(0));
    EXPECT_TRUE(ShowsOnly(96, kRed));
}

TEST_F(ReadAhead, ARemovedPictureIsReadAgain) {
    Manager().ReadPicturesAhead();
    ASSERT_TRUE(harness::WaitUntil([this] { return AllRead(); }));
    WriteAll(L"drawable", {10, 10}, kGreen);
    for (int i = 0; i < kCount; ++i) {
        Manager().RemoveImage(NameOf(i));
    }
    EXPECT_TRUE(ShowsOnly(96, kGreen));
}

// The user's files, and whatever else is not the program's artwork, are left to whoever draws them.
TEST_F(ReadAhead, OnlyTheProgramsOwnPicturesAreReadAhead) {
    const std::wstring users = ResourceFolder::Get().Path() + L"users.png";
    for (const wchar_t* name : {L"users.png", L"beside.png"}) {
        WriteImage(name, {4, 4}, std::vector<std::uint32_t>(16, kRed));
    }
    window_->Find(L"c0").SetBkImage(L"file='" + users + L"'");
    window_->Find(L"c1").SetBkImage(L"beside.png");
    Manager().ReadPicturesAhead();
    ASSERT_TRUE(harness::WaitUntil([this] { return Manager().HasImage(NameOf(kCount - 1)); }));
    EXPECT_FALSE(Manager().HasImage(users));
    EXPECT_FALSE(Manager().HasImage(L"beside.png"));
    EXPECT_TRUE(ShowsOnly(96, kRed));
}

TEST_F(ReadAhead, ThePixelsAreThoseOfAPictureThatIsReadWhenItIsDrawn) {
    for (const Size& sizePx : {Size{90, 70}, Size{700, 500}}) {
        std::vector<std::uint32_t> pixels;
        for (int i = 0; i < sizePx.cx * sizePx.cy; ++i) {
            const auto x = static_cast<std::uint32_t>(i % sizePx.cx), y = static_cast<std::uint32_t>(i / sizePx.cx);
            pixels.push_back(0xC0000000 | ((x * 255 / 700) << 16) | ((y * 255 / 500) << 8) | ((x ^ y) & 0xFF));
        }
        WriteImage(L"drawable\\same.png", sizePx, pixels);
        WriteImage(L"same.png", sizePx, pixels);
        for (const bool rightToLeft : {false, true}) {
            const Direction direction(rightToLeft);
            for (const wchar_t* how : {L"", L"source='10,20,60,50'", L"corner='8,9,10,11'", L"reverse='true'"}) {
                TestWindow window(R"(<Window size="80,60" bkcolor="#FFFFFFFF"><HorizontalLayout><Control name="a"/>
                    <Control name="b"/></HorizontalLayout></Window>)");
                window.Find(L"a").SetBkImage(std::wstring(L"file='drawable/same.png' ") + how);
                window.Find(L"b").SetBkImage(std::wstring(L"file='same.png' ") + how);
                const Picture picture = Render(window, 96);
                int different = 0;
                for (int i = 0; i < 40 * 60; ++i) {
                    const Point at{i % 40, i / 40};
                    different += picture.At(at) == picture.At({at.x + 40, at.y}) ? 0 : 1;
                }
                EXPECT_EQ(different, 0) << testing::PrintToString(std::wstring(how)) << " " << sizePx.cx << " "
                                        << rightToLeft;
                EXPECT_LT(picture.CountOf({0, 0, 80, 60}, 0xFFFFFFFF), 80 * 60 / 2);
            }
        }
    }
}

}  // namespace
}  // namespace DuiLib::Test
