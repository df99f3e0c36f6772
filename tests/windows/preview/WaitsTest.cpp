// What the preview waits with and for: served waits, the lock of the picture, the park of readers, the threads that
// open and close cameras; and which part of a frame is the picture.
#include "preview/ServedWait.h"

#include <mfapi.h>

#include <thread>

#include "preview/CameraSystem.h"
#include "preview/CameraThreads.h"
#include "preview/OpenCamera.h"
#include "preview/ReaderPark.h"
#include "preview/ReaderSystem.h"
#include "preview/SampleLock.h"
#include "preview/VisiblePart.h"
#include "suite/common/ComObject.h"
#include "suite/common/ComRelease.h"
#include "suite/common/Handle.h"
#include "tests/support/ImportHook.h"
#include "tests/support/doubles/CameraDouble.h"
#include "tests/support/doubles/Gate.h"
#include "tests/support/doubles/Violations.h"
#include "tests/windows/preview/PreviewSupport.h"

namespace preview_test {
namespace {

using doubles::Cameras;
using doubles::Gate;
using doubles::Violations;
using preview::PauseServed;
using preview::SampleGuard;
using preview::SampleLock;
using preview::WaitServed;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;
using Clock = std::chrono::steady_clock;

// Counts the calls of a function of the system while it lives; one of each.
template <typename Function>
class Counted;
template <typename Result, typename... Args>
class Counted<Result(WINAPI*)(Args...)> {
  public:
    explicit Counted(const char* name) : hook_(nullptr, name, &Counted::Call) {
        original_ = hook_.template Original<Result(WINAPI*)(Args...)>();
        calls_ = 0;
    }
    static int Calls() { return calls_; }

  private:
    static Result WINAPI Call(Args... arguments) {
        ++calls_;
        return original_(arguments...);
    }

    static inline Result(WINAPI* original_)(Args...) = nullptr;
    static inline std::atomic<int> calls_ = 0;
    const harness::ImportHook hook_;
};

// --- served waits

class ServedWaitsTest : public testing::Test {
  protected:
    static constexpr UINT kTakesLong = WM_APP;
    static constexpr UINT kPosted = WM_APP + 1;

    ServedWaitsTest() {
        SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure));
        served_ = 0;
    }
    ~ServedWaitsTest() override { DestroyWindow(window_); }

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == kTakesLong) {
            constexpr DWORD kLongMs = 60;
            Sleep(kLongMs);
            ++served_;
            return 0;
        }
        return DefWindowProcW(window, message, wParam, lParam);
    }
    bool Send(UINT message) const {
        return SendMessageTimeoutW(window_, message, 0, 0, SMTO_BLOCK, 20'000, nullptr) != 0;
    }
    // Waits until a message has been sent, and looks at it without handling it.
    static bool SeeSent() {
        return harness::WaitUntil([] { return (HIWORD(GetQueueStatus(QS_SENDMESSAGE)) & QS_SENDMESSAGE) != 0; });
    }

    static inline std::atomic<int> served_ = 0;
    HWND window_ = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    const suite::Handle event_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
};

TEST_F(ServedWaitsTest, AMessageThatTakesLongerThanTheTimeEndsTheWait) {
    const suite::Handle over(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    std::thread sender([&] {
        EXPECT_TRUE(Send(kTakesLong));
        // A wait that has lost its end is ended here.
        WaitForSingleObject(over.Get(), 5000);
        SetEvent(event_.Get());
    });
    while (served_ == 0) {
        EXPECT_FALSE(WaitServed(event_.Get(), milliseconds(30)));
    }
    SetEvent(over.Get());
    sender.join();
    EXPECT_TRUE(WaitServed(event_.Get(), milliseconds(0)));
}

TEST_F(ServedWaitsTest, WhatWasSeenBeforeIsServedToo) {
    std::thread sender([&] {
        EXPECT_TRUE(Send(WM_NULL));
        SetEvent(event_.Get());
    });
    EXPECT_TRUE(SeeSent());
    EXPECT_TRUE(WaitServed(event_.Get(), std::chrono::seconds(15)));
    harness::Pump();
    sender.join();

    std::atomic<bool> answered = false;
    std::thread second([&] { answered = Send(WM_NULL); });
    EXPECT_TRUE(SeeSent());
    PauseServed(milliseconds(1));
    const bool afterThePause = harness::WaitUntil([&] { return answered.load(); }, std::chrono::seconds(5));
    EXPECT_TRUE(afterThePause);
    while (!answered) {
        harness::Pump();
    }
    second.join();
}

TEST_F(ServedWaitsTest, WhatIsPostedNeitherWakesNorGoes) {
    using Waits = Counted<decltype(&MsgWaitForMultipleObjectsEx)>;
    PostMessageW(window_, kPosted, 1, 2);
    {
        const Waits waits("MsgWaitForMultipleObjectsEx");
        PauseServed(milliseconds(30));
        EXPECT_FALSE(WaitServed(event_.Get(), milliseconds(30)));
        EXPECT_LE(Waits::Calls(), 10) << "a core is kept busy";
    }
    std::thread sender([&] {
        EXPECT_TRUE(Send(WM_NULL));
        SetEvent(event_.Get());
    });
    EXPECT_TRUE(WaitServed(event_.Get(), std::chrono::seconds(20)));
    sender.join();
    MSG message = {};
    EXPECT_TRUE(PeekMessageW(&message, window_, kPosted, kPosted, PM_REMOVE));
    EXPECT_EQ(message.wParam, 1U);
}

TEST_F(ServedWaitsTest, NeitherEndsBeforeItsTime) {
    for (int i = 0; i < 5; ++i) {
        auto begin = Clock::now();
        EXPECT_FALSE(WaitServed(event_.Get(), milliseconds(10)));
        EXPECT_GE(Clock::now() - begin, milliseconds(10));
        begin = Clock::now();
        PauseServed(milliseconds(10));
        EXPECT_GE(Clock::now() - begin, milliseconds(10));
    }
}

TEST_F(ServedWaitsTest, WhatCannotBeWaitedForHasNotHappened) {
    EXPECT_FALSE(WaitServed(nullptr, std::chrono::seconds(1)));
}

TEST_F(ServedWaitsTest, WhatOthersSendIsServedWhileAThreadWaits) {
    const HWND window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    const suite::Handle done(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    std::atomic<bool> answered = false;
    // Only an answer sets the event, so a wait that did not serve would last to its end.
    std::thread sender([&] {
        answered = SendMessageTimeoutW(window, WM_GETTEXTLENGTH, 0, 0, SMTO_BLOCK, 20'000, nullptr) != 0;
        SetEvent(done.Get());
    });
    EXPECT_TRUE(WaitServed(done.Get(), std::chrono::seconds(20)));
    EXPECT_TRUE(answered);
    sender.join();
    ResetEvent(done.Get());
    EXPECT_FALSE(WaitServed(done.Get(), milliseconds(1)));

    answered = false;
    std::thread second([&] {
        answered = SendMessageTimeoutW(window, WM_GETTEXTLENGTH, 0, 0, SMTO_BLOCK, 20'000, nullptr) != 0;
        SetEvent(done.Get());
    });
    while (WaitForSingleObject(done.Get(), 0) != WAIT_OBJECT_0) {
        PauseServed(milliseconds(5));
    }
    EXPECT_TRUE(answered);
    second.join();
    DestroyWindow(window);
}

TEST_F(ServedWaitsTest, InputAndPostedMessagesStayInTheirQueue) {
    const HWND window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    PostMessageW(window, WM_APP, 1, 2);
    PauseServed(milliseconds(20));
    MSG message = {};
    EXPECT_TRUE(PeekMessageW(&message, window, WM_APP, WM_APP, PM_REMOVE));
    DestroyWindow(window);
}

TEST_F(ServedWaitsTest, APauseLastsItsTime) {
    const auto begin = Clock::now();
    PauseServed(milliseconds(60));
    EXPECT_GE(Clock::now() - begin, milliseconds(60));
}

// --- the lock of the picture

TEST(SampleLockTest, AGuardThatGaveUpHoldsNothingAndLeavesNothing) {
    SampleLock lock;
    Gate gate;
    std::thread holder([&] {
        const SampleGuard guard(lock);
        EXPECT_TRUE(guard.IsHeld());
        gate.Pass();
    });
    ASSERT_TRUE(gate.WaitUntilReached());
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(SampleGuard(lock, milliseconds(0)).IsHeld());
    }
    const auto begin = Clock::now();
    EXPECT_FALSE(SampleGuard(lock, milliseconds(60)).IsHeld());
    EXPECT_GE(Clock::now() - begin, milliseconds(60));
    gate.Open();
    EXPECT_TRUE(SampleGuard(lock, harness::kPatience).IsHeld());
    holder.join();
}

TEST(SampleLockTest, WhoWaitsServesWhatTheHolderSends) {
    SampleLock lock;
    const HWND window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    std::atomic<bool> held = false;
    std::atomic<bool> answered = false;
    std::thread holder([&] {
        const SampleGuard guard(lock);
        held = true;
        answered = SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_BLOCK, 20'000, nullptr) != 0;
    });
    EXPECT_TRUE(harness::WaitUntil([&] { return held.load(); }));
    EXPECT_TRUE(SampleGuard(lock, std::chrono::seconds(15)).IsHeld());
    EXPECT_TRUE(answered);
    harness::Pump();
    holder.join();
    DestroyWindow(window);
}

TEST(SampleLockTest, TheThreadThatHoldsItMayTakeItAgain) {
    SampleLock lock;
    const auto isFreeElsewhere = [&] {
        bool held = false;
        std::thread([&] { held = SampleGuard(lock, milliseconds(0)).IsHeld(); }).join();
        return held;
    };
    {
        const SampleGuard first(lock, milliseconds(0));
        EXPECT_TRUE(first.IsHeld());
        {
            const SampleGuard second(lock, milliseconds(0));
            EXPECT_TRUE(second.IsHeld());
        }
        EXPECT_FALSE(isFreeElsewhere());
    }
    EXPECT_TRUE(isFreeElsewhere());
}

// --- the park of readers

struct GivenBack {
    std::atomic<bool> done = false;
    Clock::time_point time;
    DWORD thread = 0;
};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // deleted by Release alone
// Does nothing but note its last release.
class NotingReader final : public suite::ComObject<IMFSourceReader> {
  public:
    explicit NotingReader(GivenBack& release) : release_(release) {}
    ~NotingReader() override {
        release_.time = Clock::now();
        release_.thread = GetCurrentThreadId();
        release_.done = true;
    }
    NotingReader(const NotingReader&) = delete;
    NotingReader& operator=(const NotingReader&) = delete;

    STDMETHODIMP GetStreamSelection(DWORD, WINBOOL*) override { return E_NOTIMPL; }
    STDMETHODIMP SetStreamSelection(DWORD, WINBOOL) override { return E_NOTIMPL; }
    STDMETHODIMP GetNativeMediaType(DWORD, DWORD, IMFMediaType**) override { return E_NOTIMPL; }
    STDMETHODIMP GetCurrentMediaType(DWORD, IMFMediaType**) override { return E_NOTIMPL; }
    STDMETHODIMP SetCurrentMediaType(DWORD, DWORD*, IMFMediaType*) override { return E_NOTIMPL; }
    STDMETHODIMP SetCurrentPosition(REFGUID, REFPROPVARIANT) override { return E_NOTIMPL; }
    STDMETHODIMP ReadSample(DWORD, DWORD, DWORD*, DWORD*, LONGLONG*, IMFSample**) override { return E_NOTIMPL; }
    STDMETHODIMP Flush(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetServiceForStream(DWORD, REFGUID, REFIID, void**) override { return E_NOTIMPL; }
    STDMETHODIMP GetPresentationAttribute(DWORD, REFGUID, PROPVARIANT*) override { return E_NOTIMPL; }

  private:
    GivenBack& release_;
};
#pragma GCC diagnostic pop

TEST(ReaderParkTest, EachReaderIsReleasedAfterItsTimeOnAnotherThread) {
    using Timers = Counted<decltype(&SetThreadpoolTimer)>;
    const Timers timers("SetThreadpoolTimer");
    GivenBack first, second;
    const auto firstParked = Clock::now();
    preview::ParkReader(new NotingReader(first));
    harness::PumpFor(milliseconds(80));  // so that the second one is not due with the first
    const auto secondParked = Clock::now();
    preview::ParkReader(new NotingReader(second));
    EXPECT_TRUE(harness::WaitUntil([&] { return first.done && second.done; }));
    EXPECT_GE(first.time - firstParked, reader_system::ParkTime());
    EXPECT_GE(second.time - secondParked, reader_system::ParkTime());
    EXPECT_NE(first.thread, GetCurrentThreadId());
    EXPECT_NE(second.thread, GetCurrentThreadId());
    EXPECT_LE(Timers::Calls(), 8) << "the timer fires again and again";
}

// --- the threads of cameras

constexpr wchar_t kNothingUnderWay[] = L"openings 0, waiting for their turn 0, inside 0, closings 0";

class CameraThreadsTest : public PreviewTest {
  protected:
    void SetUp() override {
        PreviewTest::SetUp();
        Cameras::Begin();
        Violations::Take();
    }
    void TearDown() override {
        EXPECT_TRUE(WaitForUnderWay(kNothingUnderWay));
        Cameras::End();
        EXPECT_THAT(Violations::Take(), IsEmpty());
        PreviewTest::TearDown();
    }
    static bool WaitForUnderWay(const std::wstring& text) {
        return Wait([&] { return preview::OpeningsUnderWay() == text; });
    }
    static std::shared_ptr<preview::OpenCamera> Opened() {
        auto camera = std::make_shared<preview::OpenCamera>();
        EXPECT_EQ(camera_system::CreateDeviceSource(nullptr, &camera->source), S_OK);
        return camera;
    }
};

// Each of ten that nobody told of the one before would wait for five seconds.
TEST_F(CameraThreadsTest, AnOpeningBeginsWhenTheOneBeforeHasEnded) {
    const auto begin = Clock::now();
    for (int i = 0; i < 10; ++i) {
        Gate gate;
        std::atomic<bool> begun = false;
        EXPECT_TRUE(preview::BeginOpening([&] { gate.Pass(); }));
        ASSERT_TRUE(gate.WaitUntilReached());
        EXPECT_TRUE(preview::BeginOpening([&] { begun = true; }));
        EXPECT_TRUE(WaitForUnderWay(L"openings 2, waiting for their turn 1, inside 1, closings 0"));
        EXPECT_FALSE(begun);
        gate.Open();
        EXPECT_TRUE(Wait([&] { return begun.load(); }));
        ASSERT_TRUE(WaitForUnderWay(kNothingUnderWay));
    }
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(45));
}

TEST_F(CameraThreadsTest, AClosingIsWaitedForAndCounted) {
    Gate gate;
    auto camera = Opened();
    Cameras::Change([&](doubles::CameraScript& script) { script.withinShutdown = [&] { gate.Pass(); }; });
    EXPECT_FALSE(preview::CloseCamera(camera, milliseconds(1)));
    ASSERT_TRUE(gate.WaitUntilReached());
    std::atomic<bool> begun = false;
    EXPECT_TRUE(preview::BeginOpening([&] { begun = true; }));
    EXPECT_TRUE(WaitForUnderWay(L"openings 1, waiting for their turn 1, inside 0, closings 1"));
    EXPECT_FALSE(begun);
    gate.Open();
    EXPECT_TRUE(WaitForUnderWay(kNothingUnderWay));
    EXPECT_TRUE(begun);
    EXPECT_EQ(camera->source, nullptr);
    EXPECT_EQ(Cameras::Seen().sourcesRunning, 0);
}

TEST_F(CameraThreadsTest, AClosingThatTakesNoTimeIsDone) {
    auto camera = Opened();
    EXPECT_TRUE(preview::CloseCamera(camera, std::chrono::seconds(20)));
    EXPECT_EQ(camera->source, nullptr);
    EXPECT_EQ(Cameras::Seen().sourcesRunning, 0);
}

BOOL WINAPI NoPoolThread(PTP_SIMPLE_CALLBACK, PVOID, PTP_CALLBACK_ENVIRON) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;
}

TEST_F(CameraThreadsTest, WithoutAThreadTheCameraIsShutDownHere) {
    auto camera = Opened();
    {
        const harness::ImportHook hook(nullptr, "TrySubmitThreadpoolCallback", &NoPoolThread);
        EXPECT_TRUE(preview::CloseCamera(camera, milliseconds(0)));
    }
    EXPECT_EQ(camera->source, nullptr) << "though somebody holds the object";
    EXPECT_EQ(Cameras::Seen().sourcesRunning, 0);
    EXPECT_THAT(TakeFailures(), ElementsAre("no thread, error code: 8(CameraThreads::Submit)"));
}

TEST_F(CameraThreadsTest, ThePoolIsToldThatItTakesLong) {
    using LongRuns = Counted<decltype(&CallbackMayRunLong)>;
    const LongRuns runs("CallbackMayRunLong");
    EXPECT_TRUE(preview::BeginOpening([] {}));
    EXPECT_TRUE(WaitForUnderWay(kNothingUnderWay));
    EXPECT_EQ(LongRuns::Calls(), 1);
    EXPECT_TRUE(preview::CloseCamera(Opened(), std::chrono::seconds(20)));
    EXPECT_EQ(LongRuns::Calls(), 2);
}

// Notes whether its thread is in an apartment when it goes.
struct ApartmentAtTheEnd {
    std::atomic<HRESULT>& joined;
    explicit ApartmentAtTheEnd(std::atomic<HRESULT>& result) : joined(result) {}
    ~ApartmentAtTheEnd() {
        joined = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        CoUninitialize();
    }
    ApartmentAtTheEnd(const ApartmentAtTheEnd&) = delete;
    ApartmentAtTheEnd& operator=(const ApartmentAtTheEnd&) = delete;
};

TEST_F(CameraThreadsTest, WhatTheWorkOwnsGoesWithinTheApartment) {
    std::atomic<HRESULT> joined = E_UNEXPECTED;
    Gate gate;
    auto owned = std::make_shared<ApartmentAtTheEnd>(joined);
    EXPECT_TRUE(preview::BeginOpening([owned, &gate] { gate.Pass(); }));
    owned.reset();
    ASSERT_TRUE(gate.WaitUntilReached());
    gate.Open();
    EXPECT_TRUE(WaitForUnderWay(kNothingUnderWay));
    EXPECT_EQ(joined, S_FALSE);
}

TEST_F(CameraThreadsTest, TheListOfDevicesIsFreedOnce) {
    using Frees = Counted<decltype(&CoTaskMemFree)>;
    preview::OpenCamera camera;
    camera.devices = static_cast<IMFActivate**>(CoTaskMemAlloc(sizeof(IMFActivate*)));
    const Frees frees("CoTaskMemFree");
    camera.ShutDown();
    EXPECT_EQ(Frees::Calls(), 1);
    camera.ShutDown();
    EXPECT_EQ(Frees::Calls(), 1);
}

// An opening that ended in the middle, so that nobody closed it.
TEST_F(CameraThreadsTest, WhatNobodyClosedGoesWithTheCamera) {
    using Frees = Counted<decltype(&CoTaskMemFree)>;
    IMFAttributes* attributes = nullptr;
    ASSERT_EQ(MFCreateAttributes(&attributes, 1), S_OK);
    attributes->AddRef();
    const Frees frees("CoTaskMemFree");
    {
        preview::OpenCamera camera;
        camera.enumerationAttributes = attributes;
        camera.devices = static_cast<IMFActivate**>(CoTaskMemAlloc(sizeof(IMFActivate*)));
    }
    EXPECT_EQ(Frees::Calls(), 1);
    EXPECT_EQ(attributes->Release(), 0u);
}

// --- the picture's part

TEST(VisiblePartTest, OnlyAWholeApertureWithinTheFrameCounts) {
    IMFAttributes* type = nullptr;
    ASSERT_EQ(MFCreateAttributes(&type, 1), S_OK);
    const RECT whole = {0, 0, 64, 48};
    EXPECT_TRUE(IsSame(preview::VisiblePart(type, 64, 48), whole)) << "none";
    MFVideoArea area[2] = {};
    area[0].OffsetX.value = 4;
    area[0].OffsetY.value = 2;
    area[0].Area = {60, 46};
    const auto* bytes = reinterpret_cast<const UINT8*>(area);
    for (const UINT32 size : {UINT32{4}, UINT32{14}, UINT32{15}, UINT32{17}, UINT32{2 * sizeof(MFVideoArea)}}) {
        type->SetBlob(MF_MT_MINIMUM_DISPLAY_APERTURE, bytes, size);
        EXPECT_TRUE(IsSame(preview::VisiblePart(type, 64, 48), whole)) << size << " bytes";
    }
    type->SetBlob(MF_MT_MINIMUM_DISPLAY_APERTURE, bytes, sizeof(MFVideoArea));
    EXPECT_TRUE(IsSame(preview::VisiblePart(type, 64, 48), {4, 2, 64, 48}));
    EXPECT_TRUE(IsSame(preview::VisiblePart(type, 63, 48), {0, 0, 63, 48}));
    EXPECT_TRUE(IsSame(preview::VisiblePart(type, 64, 47), {0, 0, 64, 47}));
    ComRelease(type);
}

}  // namespace
}  // namespace preview_test
