// The doubles keep the system's rules: each rule is broken here once, and noticed.
#include <mfapi.h>
#include <mferror.h>

#include <mutex>
#include <thread>
#include <utility>

#include "preview/CameraSystem.h"
#include "preview/Direct3DSystem.h"
#include "preview/ReaderSystem.h"
#include "suite/common/ComRelease.h"
#include "tests/support/doubles/BufferDouble.h"
#include "tests/support/doubles/CameraDouble.h"
#include "tests/support/doubles/GraphicsDouble.h"
#include "tests/support/doubles/Violations.h"
#include "tests/windows/preview/PreviewSupport.h"

namespace preview_test {
namespace {

using doubles::BufferDouble;
using doubles::BufferShape;
using doubles::CameraAnswer;
using doubles::Cameras;
using doubles::CameraScript;
using doubles::CameraType;
using doubles::Graphics;
using doubles::GraphicsScript;
using doubles::Violations;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

// --- Direct3D

class GraphicsDoubleTest : public PreviewTest {
  protected:
    void SetUp() override {
        PreviewTest::SetUp();
        Graphics::Begin();
        Violations::Take();
        direct3d_ = direct3d_system::Create9(D3D_SDK_VERSION);
    }
    void TearDown() override {
        ComRelease(chain_);
        ComRelease(device_);
        ComRelease(direct3d_);
        EXPECT_THAT(Violations::Take(), IsEmpty());
        EXPECT_EQ(Graphics::Seen().objectsAlive, 0);
        EXPECT_EQ(Graphics::Seen().devicesAlive, 0);
        PreviewTest::TearDown();
    }
    HRESULT Make(D3DPRESENT_PARAMETERS parameters = {}) {
        parameters.hDeviceWindow = window_.Get();
        parameters.Windowed = TRUE;
        return direct3d_->CreateDevice(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, window_.Get(), 0, &parameters, &device_);
    }
    HRESULT MakeChain() {
        D3DPRESENT_PARAMETERS parameters = {};
        parameters.BackBufferWidth = 32;
        parameters.BackBufferHeight = 16;
        return device_->CreateAdditionalSwapChain(&parameters, &chain_);
    }
    HRESULT Reset() {
        D3DPRESENT_PARAMETERS parameters = {};
        parameters.hDeviceWindow = window_.Get();
        return device_->Reset(&parameters);
    }
    HRESULT Present() { return device_->Present(nullptr, nullptr, nullptr, nullptr); }

    TestWindow window_{64, 48};
    IDirect3D9* direct3d_ = nullptr;
    IDirect3DDevice9* device_ = nullptr;
    IDirect3DSwapChain9* chain_ = nullptr;
};

TEST_F(GraphicsDoubleTest, TheDeviceBelongsToItsThread) {
    ASSERT_EQ(Make(), S_OK);
    EXPECT_EQ(device_->TestCooperativeLevel(), D3D_OK);
    EXPECT_EQ(Reset(), S_OK);
    EXPECT_THAT(Violations::Take(), IsEmpty());
    std::thread([&] {
        EXPECT_EQ(device_->TestCooperativeLevel(), D3DERR_INVALIDCALL);
        EXPECT_EQ(Reset(), D3DERR_INVALIDCALL);
    }).join();
    EXPECT_THAT(Violations::Take(), ElementsAre("TestCooperativeLevel on another thread than the device's",
                                                "Reset on another thread than the device's"));
    EXPECT_EQ(Reset(), S_OK);
    std::thread([&] { ComRelease(device_); }).join();
    EXPECT_THAT(Violations::Take(), ElementsAre("the last Release on another thread than the device's"));
}

TEST_F(GraphicsDoubleTest, ADeviceIsMadeOnTheWindowsThread) {
    std::thread([&] { EXPECT_EQ(Make(), S_OK); }).join();
    EXPECT_THAT(Violations::Take(), ElementsAre("CreateDevice on another thread than the window's"));
    ComRelease(device_);
    Violations::Take();
}

TEST_F(GraphicsDoubleTest, ThereIsOneDevice) {
    ASSERT_EQ(Make(), S_OK);
    IDirect3DDevice9* first = std::exchange(device_, nullptr);
    ASSERT_EQ(Make(), S_OK);
    EXPECT_THAT(Violations::Take(), ElementsAre("CreateDevice while there is a device"));
    ComRelease(first);
    ComRelease(device_);
    ASSERT_EQ(Make(), S_OK);
    EXPECT_THAT(Violations::Take(), IsEmpty());
}

TEST_F(GraphicsDoubleTest, ADeviceThatOutlivesItsWindowIsCounted) {
    ASSERT_EQ(Make(), S_OK);
    ComRelease(device_);
    EXPECT_EQ(Graphics::Seen().releasesWithoutWindow, 0);
    ASSERT_EQ(Make(), S_OK);
    DestroyWindow(window_.Get());
    ComRelease(device_);
    EXPECT_EQ(Graphics::Seen().releasesWithoutWindow, 1);
}

TEST_F(GraphicsDoubleTest, ALostDeviceTellsSoOnlyWhereItDoes) {
    ASSERT_EQ(Make(), S_OK);
    ASSERT_EQ(MakeChain(), S_OK);
    Graphics::TakeDesktop();
    EXPECT_EQ(Present(), D3DERR_DEVICELOST);
    EXPECT_EQ(device_->TestCooperativeLevel(), D3DERR_DEVICELOST);
    IDirect3DSwapChain9* second = nullptr;
    D3DPRESENT_PARAMETERS parameters = {};
    EXPECT_EQ(device_->CreateAdditionalSwapChain(&parameters, &second), D3DERR_DEVICELOST);
    IDirect3DSurface9* surface = nullptr;
    IDirect3DSurface9* backBuffer = nullptr;
    EXPECT_EQ(chain_->GetBackBuffer(0, D3DBACKBUFFER_TYPE_MONO, &surface), S_OK);
    EXPECT_EQ(device_->GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, &backBuffer), S_OK);
    D3DLOCKED_RECT locked = {};
    EXPECT_EQ(surface->LockRect(&locked, nullptr, 0), S_OK);
    EXPECT_EQ(surface->UnlockRect(), S_OK);
    EXPECT_EQ(device_->ColorFill(backBuffer, nullptr, 0), S_OK);
    EXPECT_EQ(device_->StretchRect(surface, nullptr, backBuffer, nullptr, D3DTEXF_LINEAR), S_OK);
    ComRelease(surface);
    ComRelease(backBuffer);
    IDirect3DDevice9* other = nullptr;
    parameters.hDeviceWindow = window_.Get();
    EXPECT_EQ(direct3d_->CreateDevice(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, window_.Get(), 0, &parameters, &other),
              D3DERR_NOTAVAILABLE);
    EXPECT_THAT(Violations::Take(), IsEmpty());

    Graphics::GiveDesktopBack();
    EXPECT_EQ(Present(), D3DERR_DEVICELOST);
    EXPECT_EQ(device_->TestCooperativeLevel(), D3DERR_DEVICENOTRESET);
    ComRelease(chain_);
    EXPECT_EQ(Reset(), S_OK);
    EXPECT_EQ(device_->TestCooperativeLevel(), D3D_OK);
    EXPECT_EQ(Present(), S_OK);
}

TEST_F(GraphicsDoubleTest, TheDesktopComesBackAfterSoManyCalls) {
    ASSERT_EQ(Make(), S_OK);
    Graphics::TakeDesktopFor(3);
    EXPECT_EQ(Present(), D3DERR_DEVICELOST);
    EXPECT_EQ(device_->TestCooperativeLevel(), D3DERR_DEVICELOST);
    EXPECT_EQ(Present(), D3DERR_DEVICELOST);
    EXPECT_EQ(device_->TestCooperativeLevel(), D3DERR_DEVICENOTRESET);
}

TEST_F(GraphicsDoubleTest, SomeDevicesOnlyComeBackWithANewObject) {
    ASSERT_EQ(Make(), S_OK);
    Graphics::TakeDesktop();
    Graphics::GiveDesktopBack(true);
    EXPECT_EQ(device_->TestCooperativeLevel(), D3DERR_DEVICELOST);
    ComRelease(device_);
    EXPECT_EQ(Make(), D3DERR_NOTAVAILABLE);
    ComRelease(direct3d_);
    direct3d_ = direct3d_system::Create9(D3D_SDK_VERSION);
    EXPECT_EQ(Make(), S_OK);
    EXPECT_EQ(device_->TestCooperativeLevel(), D3D_OK);
}

TEST_F(GraphicsDoubleTest, AResetNeedsADeviceThatIsThereAndNothingThatLives) {
    ASSERT_EQ(Make(), S_OK);
    ASSERT_EQ(MakeChain(), S_OK);
    EXPECT_EQ(Reset(), D3DERR_INVALIDCALL);
    EXPECT_THAT(Violations::Take(), ElementsAre("Reset with a swap chain or a back buffer that lives"));
    ComRelease(chain_);
    Violations::Take();
    EXPECT_EQ(Reset(), S_OK);
    IDirect3DSurface9* backBuffer = nullptr;
    device_->GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, &backBuffer);
    EXPECT_EQ(Reset(), D3DERR_INVALIDCALL);
    EXPECT_THAT(Violations::Take(), ElementsAre("Reset with a swap chain or a back buffer that lives"));
    ComRelease(backBuffer);
    Graphics::TakeDesktop();
    EXPECT_EQ(Reset(), D3DERR_DEVICELOST);
    EXPECT_THAT(Violations::Take(), ElementsAre("Reset of a device that is lost"));
}

TEST_F(GraphicsDoubleTest, AfterAFailedResetNothingElseMayBeCalled) {
    ASSERT_EQ(Make(), S_OK);
    Graphics::Change([](GraphicsScript& script) { script.reset = D3DERR_DRIVERINTERNALERROR; });
    EXPECT_EQ(Reset(), D3DERR_DRIVERINTERNALERROR);
    EXPECT_EQ(device_->TestCooperativeLevel(), D3DERR_DEVICENOTRESET);
    EXPECT_THAT(Violations::Take(), IsEmpty());
    Present();
    EXPECT_THAT(Violations::Take(), ElementsAre("Present after a failed Reset"));
}

TEST_F(GraphicsDoubleTest, AWindowWithoutAClientAreaGetsNoDevice) {
    window_.Resize(0, 0);
    EXPECT_EQ(Make(), D3DERR_INVALIDCALL);
    EXPECT_EQ(device_, nullptr);
    EXPECT_EQ(Graphics::Seen().refusals, 1);
    window_.Resize(33, 44);
    EXPECT_EQ(Make(), S_OK);
    EXPECT_EQ(Graphics::Seen().backBuffer.cx, 33);
    EXPECT_EQ(Graphics::Seen().backBuffer.cy, 44);
}

TEST_F(GraphicsDoubleTest, TwoCallsAtOnceAreNoticed) {
    ASSERT_EQ(Make(), S_OK);
    Graphics::Change([&](GraphicsScript& script) {
        script.withinPresent = [&] { std::thread([&] { device_->ColorFill(nullptr, nullptr, 0); }).join(); };
    });
    EXPECT_EQ(Present(), S_OK);
    EXPECT_THAT(Violations::Take(), ElementsAre("ColorFill while Present is inside", "ColorFill of a part"));
}

TEST_F(GraphicsDoubleTest, WhatLiesBeyondTheBackBufferIsNotDrawn) {
    ASSERT_EQ(Make(), S_OK);
    ASSERT_EQ(MakeChain(), S_OK);
    IDirect3DSurface9* surface = nullptr;
    IDirect3DSurface9* backBuffer = nullptr;
    chain_->GetBackBuffer(0, D3DBACKBUFFER_TYPE_MONO, &surface);
    device_->GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, &backBuffer);
    const auto stretch = [&](RECT source, RECT target) {
        return device_->StretchRect(surface, &source, backBuffer, &target, D3DTEXF_NONE);
    };
    EXPECT_EQ(stretch({0, 0, 32, 16}, {0, 0, 64, 48}), S_OK);
    EXPECT_EQ(stretch({0, 0, 32, 16}, {0, 0, 65, 48}), D3DERR_INVALIDCALL);
    EXPECT_EQ(stretch({0, 0, 32, 16}, {-1, 0, 64, 48}), D3DERR_INVALIDCALL);
    EXPECT_EQ(stretch({0, 0, 33, 16}, {0, 0, 64, 48}), D3DERR_INVALIDCALL);
    EXPECT_EQ(stretch({0, 0, 0, 16}, {0, 0, 64, 48}), D3DERR_INVALIDCALL);
    ComRelease(surface);
    ComRelease(backBuffer);
}

TEST_F(GraphicsDoubleTest, WhatIsNotReleasedIsNoticed) {
    ASSERT_EQ(Make(), S_OK);
    Graphics::Begin();
    EXPECT_THAT(Violations::Take(), ElementsAre("something of Direct3D was not released"));
    Graphics::Forget();
    device_ = nullptr;
    direct3d_ = nullptr;
}

// --- camera

// A callback that only notes what comes.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // not counted
class NotingCallback final : public IMFSourceReaderCallback {
  public:
    struct Call {
        HRESULT status;
        DWORD flags;
        bool hasSample;
        DWORD thread;
    };
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        *object = iid == __uuidof(IUnknown) || iid == __uuidof(IMFSourceReaderCallback) ? this : nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP OnReadSample(HRESULT status, DWORD, DWORD flags, LONGLONG, IMFSample* sample) override {
        if (within) {
            within();
        }
        const std::scoped_lock lock(mutex_);
        calls_.push_back({status, flags, sample != nullptr, GetCurrentThreadId()});
        return S_OK;
    }
    STDMETHODIMP OnFlush(DWORD) override { return S_OK; }
    STDMETHODIMP OnEvent(DWORD, IMFMediaEvent*) override { return S_OK; }
    std::vector<Call> Calls() {
        const std::scoped_lock lock(mutex_);
        return calls_;
    }

    std::function<void()> within;

  private:
    std::mutex mutex_;
    std::vector<Call> calls_;
};
#pragma GCC diagnostic pop

class CameraDoubleTest : public PreviewTest {
  protected:
    void SetUp() override {
        PreviewTest::SetUp();
        Cameras::Begin();
        Violations::Take();
    }
    void TearDown() override {
        Close();
        Cameras::End();
        EXPECT_THAT(Violations::Take(), IsEmpty());
        PreviewTest::TearDown();
    }
    void Open() {
        ASSERT_EQ(camera_system::CreateDeviceSource(nullptr, &source_), S_OK);
        IMFAttributes* attributes = nullptr;
        ASSERT_EQ(MFCreateAttributes(&attributes, 1), S_OK);
        attributes->SetUnknown(MF_SOURCE_READER_ASYNC_CALLBACK, &callback_);
        EXPECT_EQ(reader_system::CreateFromMediaSource(source_, attributes, &reader_), S_OK);
        ComRelease(attributes);
    }
    void Close() {
        if (source_) {
            source_->Shutdown();
        }
        ComRelease(reader_);
        ComRelease(source_);
    }
    HRESULT Read() { return reader_->ReadSample(reader_system::kVideoStream, 0, nullptr, nullptr, nullptr, nullptr); }
    bool WaitForCalls(std::size_t count) {
        return Wait([&] { return callback_.Calls().size() >= count; });
    }
    static void Answer(const CameraAnswer& answer) {
        Cameras::Change([&](CameraScript& script) { script.answer = [answer](int) { return answer; }; });
    }
    static CameraType Nv12(std::uint32_t width, std::uint32_t height) {
        CameraType type;
        type.subtype = MFVideoFormat_NV12;
        type.width = width;
        type.height = height;
        return type;
    }

    NotingCallback callback_;
    IMFMediaSource* source_ = nullptr;
    IMFSourceReader* reader_ = nullptr;
};

TEST_F(CameraDoubleTest, OneReadIsOutstandingAndCallbacksComeOnOtherThreads) {
    Cameras::Change([](CameraScript& script) { script.natives = {Nv12(16, 8)}; });
    Open();
    for (std::size_t i = 1; i <= 3; ++i) {
        EXPECT_EQ(Read(), S_OK);
        ASSERT_TRUE(WaitForCalls(i));
        EXPECT_TRUE(callback_.Calls().back().hasSample);
        EXPECT_NE(callback_.Calls().back().thread, GetCurrentThreadId());
    }
    EXPECT_THAT(Violations::Take(), IsEmpty());
    CameraAnswer never;
    never.never = true;
    Answer(never);
    EXPECT_EQ(Read(), S_OK);
    EXPECT_TRUE(FAILED(Read()));
    EXPECT_THAT(Violations::Take(), ElementsAre("a second read while one is outstanding"));
}

TEST_F(CameraDoubleTest, AfterAnErrorNothingMayBeCalled) {
    Open();
    CameraAnswer error;
    error.status = E_FAIL;
    error.flags = MF_SOURCE_READERF_ERROR;
    Answer(error);
    EXPECT_EQ(Read(), S_OK);
    ASSERT_TRUE(WaitForCalls(1));
    EXPECT_EQ(callback_.Calls().back().status, E_FAIL);
    EXPECT_FALSE(callback_.Calls().back().hasSample);
    EXPECT_THAT(Violations::Take(), IsEmpty());
    Read();
    IMFMediaType* type = nullptr;
    reader_->GetCurrentMediaType(reader_system::kVideoStream, &type);
    reader_->SetCurrentMediaType(reader_system::kVideoStream, nullptr, type);
    ComRelease(type);
    EXPECT_THAT(
        Violations::Take(),
        ElementsAre("ReadSample after an error was told", "GetCurrentMediaType after an error was told",
                    "SetCurrentMediaType after an error was told", "SetCurrentMediaType while a read is outstanding"));
}

TEST_F(CameraDoubleTest, ARefusedReadBringsNoCallback) {
    Open();
    CameraAnswer refused;
    refused.readResult = MF_E_INVALIDREQUEST;
    Answer(refused);
    EXPECT_EQ(Read(), MF_E_INVALIDREQUEST);
    EXPECT_EQ(Read(), MF_E_INVALIDREQUEST) << "none is outstanding";
    EXPECT_THAT(callback_.Calls(), IsEmpty());
    EXPECT_EQ(Cameras::Seen().reads, 2);
}

TEST_F(CameraDoubleTest, TheTypeDoesNotChangeWhileAReadIsOutstanding) {
    Cameras::Change([](CameraScript& script) { script.natives = {Nv12(16, 8), Nv12(32, 16)}; });
    Open();
    IMFMediaType* second = nullptr;
    ASSERT_EQ(reader_->GetNativeMediaType(reader_system::kVideoStream, 1, &second), S_OK);
    EXPECT_EQ(reader_->SetCurrentMediaType(reader_system::kVideoStream, nullptr, second), S_OK);
    IMFMediaType* past = nullptr;
    EXPECT_EQ(reader_->GetNativeMediaType(reader_system::kVideoStream, 2, &past), MF_E_NO_MORE_TYPES);
    CameraAnswer never;
    never.never = true;
    Answer(never);
    EXPECT_EQ(Read(), S_OK);
    EXPECT_EQ(reader_->SetCurrentMediaType(reader_system::kVideoStream, nullptr, second), MF_E_INVALIDREQUEST);
    EXPECT_THAT(Violations::Take(), ElementsAre("SetCurrentMediaType while a read is outstanding"));
    EXPECT_EQ(Cameras::Seen().offers.size(), 2U);
    ComRelease(second);
}

TEST_F(CameraDoubleTest, AnOutstandingReadComesBackWhenTheSourceIsShutDown) {
    Open();
    CameraAnswer never;
    never.never = true;
    Answer(never);
    EXPECT_EQ(Read(), S_OK);
    source_->Shutdown();
    ASSERT_TRUE(WaitForCalls(1));
    EXPECT_EQ(callback_.Calls().back().status, MF_E_SHUTDOWN);
    EXPECT_EQ(Read(), MF_E_SHUTDOWN);
    EXPECT_EQ(Cameras::Seen().sourcesRunning, 0);
}

TEST_F(CameraDoubleTest, TheReadersLastReleaseMustNotComeWithinItsCallback) {
    Open();
    IMFSourceReader* reader = reader_;
    callback_.within = [this] { ComRelease(reader_); };
    EXPECT_EQ(reader->ReadSample(reader_system::kVideoStream, 0, nullptr, nullptr, nullptr, nullptr), S_OK);
    ASSERT_TRUE(WaitForCalls(1));
    EXPECT_THAT(Violations::Take(), ElementsAre("the reader's last Release within its callback"));
}

TEST_F(CameraDoubleTest, WhatIsHeldIsNoticed) {
    Cameras::Change([](CameraScript& script) { script.natives = {Nv12(16, 8)}; });
    Open();
    EXPECT_EQ(Cameras::Seen().sourcesRunning, 1);
    EXPECT_EQ(Cameras::Seen().sourcesAlive, 1);
    EXPECT_EQ(Cameras::Seen().readersAlive, 1);
    IMFMediaSource* held = source_;
    held->AddRef();
    Close();
    EXPECT_EQ(Cameras::Seen().sourcesRunning, 0);
    EXPECT_EQ(Cameras::Seen().sourcesAlive, 1);
    Cameras::End(std::chrono::seconds(0));
    EXPECT_THAT(Violations::Take(), Contains("somebody holds a source"));
    ComRelease(held);
}

// --- buffers

class BufferDoubleTest : public PreviewTest {
  protected:
    void SetUp() override {
        PreviewTest::SetUp();
        Violations::Take();
    }
    void TearDown() override {
        ComRelease(rows_);
        ComRelease(buffer_);
        EXPECT_THAT(Violations::Take(), IsEmpty());
        PreviewTest::TearDown();
    }
    void Make(const BufferShape& shape) {
        for (std::uint32_t i = 0; i < shape.rowBytes * shape.rows; ++i) {
            bytes_.push_back(static_cast<std::uint8_t>(i));
        }
        buffer_ = BufferDouble::Make(shape, bytes_.data());
        buffer_->QueryInterface(__uuidof(IMF2DBuffer2), reinterpret_cast<void**>(&rows_));
    }

    std::vector<std::uint8_t> bytes_;
    IMFMediaBuffer* buffer_ = nullptr;
    IMF2DBuffer2* rows_ = nullptr;
};

TEST_F(BufferDoubleTest, TellsRowsAndBoundsAndPacks) {
    for (const bool bottomUp : {false, true}) {
        SCOPED_TRACE(bottomUp);
        bytes_.clear();
        Make({.rowBytes = 8, .rows = 4, .padding = 3, .bottomUp = bottomUp});
        BYTE* first = nullptr;
        BYTE* begin = nullptr;
        LONG pitch = 0;
        DWORD length = 0;
        ASSERT_EQ(rows_->Lock2DSize(MF2DBuffer_LockFlags_Read, &first, &pitch, &begin, &length), S_OK);
        EXPECT_EQ(pitch, bottomUp ? -11 : 11);
        EXPECT_EQ(length, 3U * 11 + 8);
        EXPECT_EQ(first, bottomUp ? begin + 33 : begin);
        for (int row = 0; row < 4; ++row) {
            EXPECT_EQ(memcmp(first + row * pitch, bytes_.data() + 8 * row, 8), 0) << row;
        }
        MEMORY_BASIC_INFORMATION behind = {};
        VirtualQuery(begin + length, &behind, sizeof behind);
        EXPECT_NE(behind.State, static_cast<DWORD>(MEM_COMMIT)) << "somebody could read past the end";
        EXPECT_EQ(rows_->Unlock2D(), S_OK);

        BYTE* data = nullptr;
        ASSERT_EQ(buffer_->Lock(&data, nullptr, &length), S_OK);
        EXPECT_EQ(length, 32U);
        EXPECT_EQ(memcmp(data, bytes_.data() + (bottomUp ? 24 : 0), 8), 0);
        EXPECT_EQ(buffer_->Unlock(), S_OK);
        EXPECT_EQ(rows_->GetContiguousLength(&length), S_OK);
        EXPECT_EQ(length, 32U);
        ComRelease(rows_);
        ComRelease(buffer_);
    }
}

TEST_F(BufferDoubleTest, SpareRowsLieBeforeTheChroma) {
    Make({.rowBytes = 4, .rows = 6, .spareRows = 2, .rowsBeforeSpare = 4});
    BYTE* first = nullptr;
    LONG pitch = 0;
    ASSERT_EQ(rows_->Lock2D(&first, &pitch), S_OK);
    EXPECT_EQ(memcmp(first + 6 * pitch, bytes_.data() + 4 * 4, 4), 0);
    EXPECT_EQ(first[4 * pitch], 0xA5);
    EXPECT_EQ(rows_->Unlock2D(), S_OK);
}

TEST_F(BufferDoubleTest, HasTheInterfacesThatItShallHave) {
    Make({.rowBytes = 4, .rows = 2, .knowsBounds = false});
    EXPECT_EQ(rows_, nullptr);
    IMF2DBuffer* rows = nullptr;
    EXPECT_EQ(buffer_->QueryInterface(__uuidof(IMF2DBuffer), reinterpret_cast<void**>(&rows)), S_OK);
    ComRelease(rows);
    ComRelease(buffer_);
    Make({.rowBytes = 4, .rows = 2, .knowsPlanes = false});
    EXPECT_EQ(buffer_->QueryInterface(__uuidof(IMF2DBuffer), reinterpret_cast<void**>(&rows)), E_NOINTERFACE);
}

TEST_F(BufferDoubleTest, LocksMustBeUndoneTheSameWay) {
    Make({.rowBytes = 4, .rows = 2});
    BYTE* data = nullptr;
    LONG pitch = 0;
    DWORD length = 0;
    ASSERT_EQ(rows_->Lock2D(&data, &pitch), S_OK);
    EXPECT_TRUE(FAILED(buffer_->Unlock()));
    EXPECT_TRUE(FAILED(buffer_->Lock(&data, nullptr, &length)));
    ComRelease(rows_);
    ComRelease(buffer_);
    EXPECT_THAT(Violations::Take(),
                ElementsAre("Unlock of a buffer that is not locked", "Lock of a buffer that is locked by its rows",
                            "a buffer is released while it is locked"));
}

}  // namespace
}  // namespace preview_test
