// What cameras and graphics devices do wrong while the preview reads, opens or closes: what is posted, what is read on,
// and that nobody waits for what hangs.
#include <mfapi.h>

#include <stdexcept>
#include <thread>

#include "preview/CameraThreads.h"
#include "preview/OpenCamera.h"
#include "suite/common/ComRelease.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/preview/DoubledPreview.h"

namespace preview_test {
namespace {

using doubles::CameraAnswer;
using doubles::Cameras;
using doubles::CameraScript;
using doubles::Graphics;
using doubles::GraphicsScript;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr HRESULT kInUse = static_cast<HRESULT>(0xC00D3704);
constexpr HRESULT kRemoved = static_cast<HRESULT>(0xC00D3EA2);
constexpr char kClosesSlowly[] = "the camera takes long to close; nobody waits for it(Preview::Close)";

class CameraFaultTest : public DoubledPreviewTest {
  protected:
    // Pictures, and for some reads what the test says.
    static void Answer(const std::function<std::optional<CameraAnswer>(int)>& answer) {
        ChangeCamera([&](CameraScript& script) {
            script.answer = [answer](int read) {
                if (const auto special = answer(read)) {
                    return *special;
                }
                CameraAnswer picture;
                picture.sample = doubles::MakeSample(Type(MFVideoFormat_YUY2), 0);
                return picture;
            };
        });
    }
    static CameraAnswer Failure(HRESULT status, DWORD flags = 0) {
        CameraAnswer answer;
        answer.status = status;
        answer.flags = flags;
        answer.atOnce = true;
        return answer;
    }
    void MakeAndStart() {
        Make();
        ASSERT_TRUE(Start());
    }
    // Whether the camera is closed, by whomever.
    static bool IsFree() {
        return Wait([] { return Camera().sourcesRunning == 0; });
    }
};

// --- errors

TEST_F(CameraFaultTest, AnErrorOfTheFirstReadIsPostedAtOnceAndEndsTheReading) {
    Answer([](int) { return Failure(kInUse, MF_SOURCE_READERF_ERROR); });
    MakeAndStart();
    EXPECT_TRUE(WaitForPosted());
    EXPECT_THAT(Posted(), ElementsAre(kInUse));
    EXPECT_EQ(Camera().reads, 1);
    EXPECT_EQ(preview_->State(), 1U) << "what follows is the page's decision";
}

TEST_F(CameraFaultTest, AnErrorInTheMiddleIsPosted) {
    Answer(
        [](int read) { return read == 5 ? std::optional(Failure(kRemoved, MF_SOURCE_READERF_ERROR)) : std::nullopt; });
    MakeAndStart();
    EXPECT_TRUE(WaitForPosted());
    EXPECT_THAT(Posted(), ElementsAre(kRemoved));
    EXPECT_EQ(Camera().reads, 6);
    EXPECT_EQ(Drawn().presents, 5);
}

TEST_F(CameraFaultTest, AnErrorWithoutAReasonIsAFailure) {
    Answer([](int) { return Failure(S_OK, MF_SOURCE_READERF_ERROR); });
    MakeAndStart();
    EXPECT_TRUE(WaitForPosted());
    EXPECT_THAT(Posted(), ElementsAre(E_FAIL));
}

TEST_F(CameraFaultTest, AnErrorThatComesWithATypeAsksTheReaderNothing) {
    for (const DWORD type : {MF_SOURCE_READERF_CURRENTMEDIATYPECHANGED, MF_SOURCE_READERF_NATIVEMEDIATYPECHANGED}) {
        Answer([type](int) { return Failure(kInUse, MF_SOURCE_READERF_ERROR | type); });
        const std::size_t before = Posted().size();
        MakeAndStart();
        EXPECT_TRUE(WaitForPosted(before + 1));
        EXPECT_EQ(Posted().back(), kInUse);
        Finish();
    }
}

TEST_F(CameraFaultTest, AFailedReadOnlyReadsAgain) {
    Answer([](int read) { return read == 2 ? std::optional(Failure(kInUse)) : std::nullopt; });
    MakeAndStart();
    EXPECT_TRUE(WaitForReads(10));
    EXPECT_THAT(Posted(), IsEmpty());
    EXPECT_EQ(preview_->LastReadFailure(), S_OK) << "frames have come since";
}

TEST_F(CameraFaultTest, WhatTheLastReadToldIsKept) {
    Answer([](int) { return Failure(kInUse); });
    MakeAndStart();
    EXPECT_TRUE(WaitForReads(3));
    EXPECT_TRUE(Wait([&] { return preview_->LastReadFailure() == kInUse; }));
    EXPECT_THAT(Posted(), IsEmpty());
}

TEST_F(CameraFaultTest, AReadThatIsRefusedIsPosted) {
    Answer([](int read) {
        CameraAnswer refused;
        refused.readResult = MF_E_INVALIDREQUEST;
        return read == 3 ? std::optional(refused) : std::nullopt;
    });
    MakeAndStart();
    EXPECT_TRUE(WaitForPosted());
    EXPECT_THAT(Posted(), ElementsAre(MF_E_INVALIDREQUEST));
    EXPECT_EQ(Camera().reads, 4);
}

TEST_F(CameraFaultTest, TheStatusBeforeARefusedReadIsTheReason) {
    for (const int failures : {1, 2, 3, 4}) {
        Answer([first = Camera().reads, failures](int read) {
            CameraAnswer refused;
            refused.readResult = MF_E_INVALIDREQUEST;
            const int number = read - first;
            return number < 2              ? std::nullopt
                   : number < 2 + failures ? std::optional(Failure(kInUse))
                                           : std::optional(refused);
        });
        MakeAndStart();
        const std::size_t before = Posted().size();
        EXPECT_TRUE(WaitForPosted(before + 1));
        EXPECT_EQ(Posted().back(), kInUse) << failures;
        Finish();
    }
}

// --- reads that bring no frame

TEST_F(CameraFaultTest, FailingReadsAreBounded) {
    for (const DWORD flags : {0UL, static_cast<DWORD>(MF_SOURCE_READERF_ENDOFSTREAM)}) {
        Answer([flags](int) { return Failure(flags == 0 ? E_FAIL : S_OK, flags); });
        const auto begin = std::chrono::steady_clock::now();
        MakeAndStart();
        // Read 12 follows pauses of 10, 20, ... 100 ms.
        EXPECT_TRUE(WaitForReads(13));
        EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(550));
        EXPECT_THAT(Posted(), IsEmpty());
        Finish();
        Cameras::End();
        Cameras::Begin();
        ChangeCamera([](CameraScript& script) { script.natives = {Type(MFVideoFormat_YUY2)}; });
    }
}

TEST_F(CameraFaultTest, NobodyIsHeldUpByThePause) {
    Answer([](int) { return Failure(E_FAIL); });
    MakeAndStart();
    EXPECT_TRUE(WaitForReads(6));
    // In most moments a pause is under way; a callback that waited would hold its thread.
    EXPECT_TRUE(Wait([] { return Camera().callbacks == Camera().reads; }));
    const auto reads = Camera().reads;
    Finish();
    EXPECT_LE(Camera().reads, reads + 1) << "somebody reads after Close";
}

TEST_F(CameraFaultTest, AFrameEndsTheChainOfFailures) {
    // One frame after each two failures: no pause ever, so a thousand reads end soon.
    Answer([](int read) { return read % 3 != 0 ? std::optional(Failure(E_FAIL)) : std::nullopt; });
    MakeAndStart();
    EXPECT_TRUE(WaitForReads(600));
}

TEST_F(CameraFaultTest, AGapInTheStreamIsNoFailureAndNoFrame) {
    MakeAndStart();
    EXPECT_TRUE(WaitForPresents(1));
    Answer([](int) { return Failure(S_OK, MF_SOURCE_READERF_STREAMTICK); });
    EXPECT_TRUE(WaitForReads(2));
    const ULONGLONG last = preview_->LastFrameTickMs();
    EXPECT_TRUE(WaitForReads(600)) << "gaps must not slow the reading down";
    EXPECT_EQ(preview_->LastFrameTickMs(), last);
    EXPECT_EQ(preview_->LastReadFailure(), S_OK);
}

TEST_F(CameraFaultTest, AnExceptionIsToldAndPosted) {
    MakeAndStart();
    ChangeGraphics(
        [](GraphicsScript& script) { script.withinPresent = [] { throw std::runtime_error("a driver's"); }; });
    EXPECT_TRUE(WaitForPosted());
    EXPECT_THAT(Posted(), ElementsAre(E_FAIL));
    EXPECT_THAT(TakeFailures(), ElementsAre("exception in the reader's callback(Preview::OnReadSample)"));
}

// --- a lost graphics device

TEST_F(CameraFaultTest, ALossIsToldToTheWindowAndOverWhenTheDeviceIsBack) {
    MakeAndStart();
    EXPECT_TRUE(WaitForPresents(2));
    EXPECT_FALSE(preview_->IsDeviceLost());
    Graphics::TakeDesktop();
    EXPECT_TRUE(Wait([&] { return window_.DeviceMessages() == 1; }));
    EXPECT_TRUE(preview_->IsDeviceLost());
    EXPECT_EQ(preview_->RecoverDevice(), S_FALSE);
    EXPECT_TRUE(preview_->IsDeviceLost());
    // Frames come on and count as such.
    const ULONGLONG last = preview_->LastFrameTickMs();
    EXPECT_TRUE(WaitForReads(20));
    EXPECT_TRUE(Wait([&] { return preview_->LastFrameTickMs() > last; }));
    EXPECT_EQ(window_.DeviceMessages(), 1) << "told once";
    Graphics::GiveDesktopBack();
    EXPECT_TRUE(Wait([&] { return preview_->RecoverDevice() == S_OK; }));
    EXPECT_FALSE(preview_->IsDeviceLost());
    EXPECT_TRUE(WaitForPresents(3));
    EXPECT_THAT(Posted(), IsEmpty());
    EXPECT_THAT(Drawn().boxes, IsEmpty());

    Graphics::TakeDesktop();
    EXPECT_TRUE(Wait([&] { return window_.DeviceMessages() == 2; })) << "the next loss is told again";
}

TEST_F(CameraFaultTest, ADeviceThatIsLostWhileTheCameraOpensComesLater) {
    Make();
    Graphics::TakeDesktop();
    EXPECT_TRUE(Start());
    EXPECT_TRUE(Wait([&] { return window_.DeviceMessages() == 1; }));
    Graphics::GiveDesktopBack();
    EXPECT_EQ(preview_->RecoverDevice(), S_OK);
    EXPECT_TRUE(WaitForPresents(2));
    EXPECT_THAT(Posted(), IsEmpty());
}

TEST_F(CameraFaultTest, ALossThatATypeTellsOfIsToldToo) {
    Answer([](int read) {
        CameraAnswer change;
        change.flags = MF_SOURCE_READERF_CURRENTMEDIATYPECHANGED;
        if (read == 3) {
            Graphics::TakeDesktop();
        }
        return read == 3 ? std::optional(change) : std::nullopt;
    });
    MakeAndStart();
    EXPECT_TRUE(Wait([&] { return window_.DeviceMessages() == 1; }));
    Graphics::GiveDesktopBack();
    EXPECT_EQ(preview_->RecoverDevice(), S_OK);
    EXPECT_TRUE(WaitForPresents(2));
}

TEST_F(CameraFaultTest, TheWindowMayEndThePreviewFromWithinAReset) {
    MakeAndStart();
    EXPECT_TRUE(WaitForPresents(1));
    Graphics::TakeDesktop();
    EXPECT_TRUE(Wait([&] { return preview_->IsDeviceLost(); }));
    Graphics::GiveDesktopBack();
    bool within = false;
    ChangeGraphics([&](GraphicsScript& script) {
        script.withinReset = [&] {
            SendMessageW(window_.Get(), WM_NULL, 0, 0);
            within = true;
            preview_->Close();
            EXPECT_FALSE(preview_->DestroyRenderer()) << "the device is in use";
            EXPECT_EQ(preview_->RecoverDevice(), S_FALSE);
        };
    });
    EXPECT_TRUE(Wait([&] { return preview_->RecoverDevice() == S_OK; }));
    EXPECT_TRUE(within);
    EXPECT_EQ(preview_->State(), 0U);
    EXPECT_TRUE(IsFree());
    EXPECT_TRUE(preview_->DestroyRenderer());
}

// --- what hangs

TEST_F(CameraFaultTest, AGraphicsDeviceThatHangsHoldsNobodyUp) {
    Gate gate;
    MakeAndStart();
    EXPECT_TRUE(WaitForPresents(1));
    ChangeGraphics([&](GraphicsScript& script) {
        script.withinPresent = [&] { gate.Pass(); };
        script.present = E_FAIL;
        script.presentLastError = 0x80000000UL;
    });
    ASSERT_TRUE(gate.WaitUntilReached());
    EXPECT_EQ(preview_->RecoverDevice(), S_FALSE);
    EXPECT_EQ(preview_->Close(), S_OK);
    EXPECT_TRUE(IsFree()) << "the camera does not wait for the device";
    EXPECT_FALSE(preview_->DestroyRenderer());
    ChangeGraphics([&](GraphicsScript& script) { script.withinPresent = nullptr; });
    gate.Open();
    EXPECT_TRUE(Wait([&] { return preview_->DestroyRenderer(); }));
    const int reads = Camera().reads;
    EXPECT_TRUE(Wait([&] { return Camera().callbacks >= reads; }));
    EXPECT_THAT(Posted(), IsEmpty()) << "what was closed posts nothing more";
    EXPECT_EQ(Camera().reads, reads);
}

TEST_F(CameraFaultTest, APictureThatIsDrawnAfterClosingCountsNoMore) {
    Gate gate;
    MakeAndStart();
    EXPECT_TRUE(WaitForPresents(1));
    ChangeGraphics([&](GraphicsScript& script) { script.withinPresent = [&] { gate.Pass(); }; });
    ASSERT_TRUE(gate.WaitUntilReached());
    const ULONGLONG last = preview_->LastFrameTickMs();
    preview_->Close();  // waits long enough for another tick
    ChangeGraphics([&](GraphicsScript& script) { script.withinPresent = nullptr; });
    gate.Open();
    EXPECT_TRUE(Wait([&] { return preview_->DestroyRenderer(); }));
    EXPECT_EQ(preview_->LastFrameTickMs(), last);
}

TEST_F(CameraFaultTest, AStartWhileTheLastPictureIsDrawnWorks) {
    Gate gate;
    MakeAndStart();
    EXPECT_TRUE(WaitForPresents(1));
    ChangeGraphics([&](GraphicsScript& script) { script.withinPresent = [&] { gate.Pass(); }; });
    ASSERT_TRUE(gate.WaitUntilReached());
    ChangeCamera([&](CameraScript& script) {
        script.withinActivation = [&] {
            ChangeGraphics([&](GraphicsScript& graphics) { graphics.withinPresent = nullptr; });
            gate.Open();
        };
    });
    EXPECT_TRUE(Start()) << "the start waited for the picture, and who drew it for the start";
    EXPECT_TRUE(WaitForPresents(2));
    EXPECT_THAT(Posted(), IsEmpty());
}

TEST_F(CameraFaultTest, WhoClosesServesWhatTheDeviceSends) {
    Gate gate;
    MakeAndStart();
    EXPECT_TRUE(WaitForPresents(1));
    std::atomic<bool> answered = false;
    ChangeGraphics([&](GraphicsScript& script) {
        script.withinPresent = [&] {
            gate.Pass();
            DWORD_PTR result = 0;
            answered = SendMessageTimeoutW(window_.Get(), WM_NULL, 0, 0, SMTO_BLOCK, 20'000, &result) != 0;
        };
    });
    ASSERT_TRUE(gate.WaitUntilReached());
    ChangeGraphics([&](GraphicsScript& script) { script.withinPresent = nullptr; });
    gate.Open();
    preview_->Close();
    EXPECT_TRUE(preview_->DestroyRenderer()) << "Close waited for the picture, and the picture for the window";
    EXPECT_TRUE(answered);
}

TEST_F(CameraFaultTest, AHangingActivationCanBeClosed) {
    Gate gate;
    ChangeCamera([&](CameraScript& script) { script.withinActivation = [&] { gate.Pass(); }; });
    Make();
    bool started = true;
    std::thread starter([&] { started = Start(); });
    ASSERT_TRUE(gate.WaitUntilReached());
    EXPECT_EQ(preview_->Close(), S_OK);
    EXPECT_TRUE(preview_->DestroyRenderer());
    gate.Open();
    starter.join();
    EXPECT_FALSE(started);
    EXPECT_EQ(preview_->State(), 0U);
    EXPECT_EQ(Camera().sources, 1);
    EXPECT_EQ(Camera().sourcesRunning, 0) << "who opened it closed it";
    EXPECT_EQ(Camera().reads, 0);
    EXPECT_THAT(TakeFailures(), IsEmpty()) << "nothing has failed";
}

TEST_F(CameraFaultTest, AHangingFirstReadCanBeClosed) {
    Gate gate;
    ChangeCamera([&](CameraScript& script) { script.withinRead = [&] { gate.Pass(); }; });
    Make();
    bool started = true;
    std::thread starter([&] { started = Start(); });
    ASSERT_TRUE(gate.WaitUntilReached());
    EXPECT_EQ(preview_->Close(), S_OK);
    EXPECT_TRUE(IsFree());
    gate.Open();
    starter.join();
    EXPECT_FALSE(started);
    EXPECT_THAT(TakeFailures(), IsEmpty());
}

TEST_F(CameraFaultTest, AHangingReadHoldsNobodyUp) {
    Gate gate;
    MakeAndStart();
    EXPECT_TRUE(WaitForPresents(1));
    ChangeCamera([&](CameraScript& script) { script.withinRead = [&] { gate.Pass(); }; });
    ASSERT_TRUE(gate.WaitUntilReached());
    EXPECT_EQ(preview_->Close(), S_OK);
    EXPECT_TRUE(IsFree());
    gate.Open();
    EXPECT_TRUE(Wait([&] { return preview_->DestroyRenderer(); }));
    EXPECT_THAT(Posted(), IsEmpty());
}

TEST_F(CameraFaultTest, AHangingShutdownHoldsNobodyUp) {
    Gate gate;
    MakeAndStart();
    EXPECT_TRUE(WaitForPresents(1));
    ChangeCamera([&](CameraScript& script) { script.withinShutdown = [&] { gate.Pass(); }; });
    EXPECT_EQ(preview_->Close(), S_OK);
    EXPECT_TRUE(gate.WaitUntilReached());
    EXPECT_EQ(preview_->State(), 0U);
    EXPECT_EQ(Camera().sourcesRunning, 1);
    EXPECT_THAT(Notes(), ElementsAre(kClosesSlowly));
    EXPECT_TRUE(preview_->DestroyRenderer());
    gate.Open();
    EXPECT_TRUE(IsFree());
}

TEST_F(CameraFaultTest, ACameraIsOpenedWhenItIsClosed) {
    Gate gate;
    MakeAndStart();
    EXPECT_TRUE(WaitForPresents(1));
    std::atomic<int> runningAtActivation = -1;
    ChangeCamera([&](CameraScript& script) {
        script.withinShutdown = [&] { gate.Pass(); };
        script.withinActivation = [&] { runningAtActivation = Camera().sourcesRunning; };
    });
    EXPECT_EQ(preview_->Close(), S_OK);
    std::atomic<bool> started = false;
    EXPECT_TRUE(preview::BeginOpening([&] { started = Start(); }));
    // A chance to open it too early.
    constexpr std::chrono::milliseconds kChance(300);
    Wait([&] { return runningAtActivation >= 0; }, kChance);
    gate.Open();
    EXPECT_TRUE(Wait([&] { return started.load(); }));
    EXPECT_EQ(runningAtActivation, 0);
    EXPECT_TRUE(WaitForPresents(1));
}

TEST_F(CameraFaultTest, OpeningsComeOneAfterTheOther) {
    Gate gate;
    std::atomic<int> ended = 0;
    std::atomic<int> order = -1;
    EXPECT_TRUE(preview::BeginOpening([&] {
        gate.Pass();
        ++ended;
    }));
    ASSERT_TRUE(gate.WaitUntilReached());
    EXPECT_TRUE(preview::BeginOpening([&] { order = ended.load(); }));
    EXPECT_TRUE(Wait(
        [] { return preview::OpeningsUnderWay() == L"openings 2, waiting for their turn 1, inside 1, closings 0"; }));
    constexpr std::chrono::milliseconds kChance(300);
    Wait([&] { return order >= 0; }, kChance);
    gate.Open();
    EXPECT_TRUE(Wait([&] { return order >= 0; }));
    EXPECT_EQ(order, 1);
}

TEST_F(CameraFaultTest, AnOpeningThatHangsIsNotWaitedForForEver) {
    Gate gate;
    std::atomic<bool> ended = false;
    EXPECT_TRUE(preview::BeginOpening([&] {
        gate.Pass();
        ended = true;
    }));
    ASSERT_TRUE(gate.WaitUntilReached());
    std::atomic<bool> begun = false;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(preview::BeginOpening([&] { begun = true; }));
    EXPECT_TRUE(Wait([&] { return begun.load(); }));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5)) << "it may still come back";
    EXPECT_FALSE(ended);
    gate.Open();
    EXPECT_TRUE(Wait([&] { return ended.load(); }));
}

TEST_F(CameraFaultTest, ClosingWaitsForACameraThatTakesAMoment) {
    Make();
    ChangeCamera([](CameraScript& script) { script.withinShutdown = [] { Sleep(50); }; });
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(Start());
        EXPECT_FALSE(preview_->CameraLink().empty());
        EXPECT_TRUE(WaitForPresents(1));
        EXPECT_EQ(preview_->Close(), S_OK);
        EXPECT_EQ(Camera().sourcesRunning, 0);
        EXPECT_TRUE(preview_->CameraLink().empty());
    }
    EXPECT_THAT(Notes(), IsEmpty());
}

TEST_F(CameraFaultTest, AFailedStartIsFreedByTheNextClose) {
    ChangeCamera([](CameraScript& script) { script.currentType = [](int call) { return call == 1 ? E_FAIL : S_OK; }; });
    Make();
    EXPECT_FALSE(Start());
    EXPECT_EQ(TakeFailures().size(), 2U);
    EXPECT_EQ(Camera().sourcesRunning, 1);
    EXPECT_EQ(preview_->Close(), S_OK);
    EXPECT_EQ(Camera().sourcesRunning, 0);
}

TEST_F(CameraFaultTest, AfterTooManyHangingOpeningsNoneIsBegun) {
    Gate gate;
    std::atomic<int> ended = 0;
    EXPECT_EQ(preview::kMostOpenings, 4);
    for (int i = 0; i < preview::kMostOpenings; ++i) {
        EXPECT_TRUE(preview::BeginOpening([&] {
            gate.Pass();
            ++ended;
        }));
    }
    EXPECT_FALSE(preview::BeginOpening([] {}));
    EXPECT_THAT(TakeFailures(), ElementsAre("too many openings of a camera hang(CameraThreads::BeginOpening)"));
    gate.Open();
    EXPECT_TRUE(Wait([&] { return ended == preview::kMostOpenings; }));
    std::atomic<bool> ran = false;
    EXPECT_TRUE(Wait([&] {
        const bool begun = preview::BeginOpening([&] { ran = true; });
        TakeFailures();  // the last one may still be leaving
        return begun;
    }));
    EXPECT_TRUE(Wait([&] { return ran.load(); }));
}

TEST_F(CameraFaultTest, TheOpeningsThreadHasAnApartmentAndStopsExceptions) {
    std::atomic<HRESULT> apartment = E_UNEXPECTED;
    EXPECT_TRUE(preview::BeginOpening([&] {
        apartment = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        CoUninitialize();
        throw std::runtime_error("thrown");
    }));
    EXPECT_TRUE(Wait([&] { return apartment == S_FALSE; })) << "it has joined already";
    std::vector<std::string> failures;
    EXPECT_TRUE(Wait([&] { return !(failures = TakeFailures()).empty(); }));
    EXPECT_THAT(failures, ElementsAre("the work ended with an exception: thrown(CameraThreads::Run)"));
}

BOOL WINAPI NoPoolThread(PTP_SIMPLE_CALLBACK, PVOID, PTP_CALLBACK_ENVIRON) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;
}

TEST_F(CameraFaultTest, WithoutAThreadNothingIsOpenedAndTheCameraIsClosedHere) {
    constexpr char kLine[] = "no thread, error code: 8(CameraThreads::Submit)";
    const harness::ImportHook hook(nullptr, "TrySubmitThreadpoolCallback", &NoPoolThread);
    for (int i = 0; i < 20; ++i) {
        EXPECT_FALSE(preview::BeginOpening([] { FAIL() << "nothing runs it"; })) << "none of them counts as hanging";
    }
    const std::vector<std::string> failures = TakeFailures();
    EXPECT_EQ(failures.size(), 20u);
    EXPECT_THAT(failures, testing::Each(std::string(kLine)));
    EXPECT_TRUE(preview::CloseCamera(std::make_shared<preview::OpenCamera>(), std::chrono::seconds(0)));
    EXPECT_THAT(TakeFailures(), ElementsAre(kLine));
}

}  // namespace
}  // namespace preview_test
