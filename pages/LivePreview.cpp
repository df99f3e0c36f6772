#include "pages/LivePreview.h"

#include <mferror.h>

#include <chrono>
#include <utility>

#include "DuiLib/ButtonUI.h"
#include "DuiLib/PaintManagerUI.h"
#include "DuiLib/UIMainQueue.h"
#include "pages/PageHost.h"
#include "preview/CameraThreads.h"
#include "preview/Device.h"
#include "preview/DeviceLink.h"
#include "preview/DeviceLoss.h"
#include "preview/Preview.h"
#include "preview/ServedWait.h"
#include "suite/common/ComRelease.h"
#include "suite/logger/QxLogger.h"

namespace {

using GlobalUtils::MessageBoxKind;

constexpr wchar_t kSwitchName[] = L"preview_switch";
constexpr wchar_t kAreaName[] = L"preview_wnd";
constexpr wchar_t kTextName[] = L"preview_text";
// What a screen reader calls the area, with and without a picture over it.
constexpr wchar_t kPictureText[] = L"IDS_LUMI_ACC_PREVIEW_AREA";
constexpr wchar_t kIllustrationText[] = L"IDS_LUMI_ACC_CAMERA_ILLUSTRATION";

// Blocks the UI thread on purpose: the first frames are drawn before the switch can be clicked again.
constexpr std::chrono::milliseconds kFirstFramesWait{400};

// Some cameras take five seconds to wake up.
constexpr unsigned kMostOpeningMs = 10'000;

// Devices take a while to come back after the computer slept.
constexpr std::uint64_t kAfterResumeMs = 10'000;
constexpr unsigned kBetweenOpeningsMs = 1000;

constexpr unsigned kBetweenReleasesForStartMs = 50;

// Ticks of the preview window, one a second: a camera that has delivered nothing for so long is given up. Counted in
// ticks, and not by the clock, so that the time that the computer sleeps does not count.
constexpr int kMostTicksWithoutFrame = 5;
constexpr HRESULT kNoFrames = HRESULT_FROM_WIN32(ERROR_TIMEOUT);

// The capture device is in use by another program.
constexpr HRESULT kDeviceInUse = static_cast<HRESULT>(0xC00D3704);

constexpr int kStarted = 1;

// A further reference, for whoever else needs the object.
std::shared_ptr<Preview> Share(Preview* preview) {
    preview->AddRef();
    return {preview, [](Preview* object) { ComRelease(object); }};
}

// Messages of a kind that wait for the window and are of no use any more.
void DropMessages(HWND window, UINT kind) {
    MSG message;
    while (PeekMessageW(&message, window, kind, kind, PM_REMOVE)) {
    }
}

}  // namespace

LivePreview::LivePreview(PageHost* host, DuiLib::CPaintManagerUI* paintManager, FindControl find, SwitchImages images)
    : host_(host),
      paintManager_(paintManager),
      find_(std::move(find)),
      images_(std::move(images)),
      window_({[this] { Stop(); }, [this] { OnTick(); }, [this] { RecoverDevice(); },
               [this](const std::wstring& link) { OnDeviceRemoved(link); }}),
      self_(std::make_shared<LivePreview*>(this)) {}

LivePreview::~LivePreview() {
    Stop();
    window_.Destroy();
}

void LivePreview::Initialize() {
    switch_ = find_(kSwitchName);
    area_ = find_(kAreaName);
}

// --- turning it on

int LivePreview::OnCreate(HWND parentWindow) {
    if (!window_.Create(parentWindow, DuiLib::CPaintManagerUI::GetInstance())) {
        LogLine(LogLevel::kError, L"HomePage::OnCreate", L"video null !");
        return 0;
    }
    if (const DuiLib::CControlUI* text = find_(kTextName)) {
        window_.SetName(text->GetText());
    }
    Place();
    return 1;
}

int LivePreview::CreateMF(HWND previewWindow, HWND parentWindow) {
    return CreateCapture(previewWindow, parentWindow, {});
}

int LivePreview::CreateCapture(HWND previewWindow, HWND parentWindow, suite::ComReference<IDirect3D9> direct3d) {
    Stop();
    if (!left_.ReleaseAll()) {
        LogLine(LogLevel::kError, L"HomePage::CreateMF", L"the graphics device is still busy");
        return 0;
    }
    const HRESULT result = Preview::CreateInstance(previewWindow, parentWindow, &preview_, std::move(direct3d));
    if (FAILED(result)) {
        LogLine(LogLevel::kError, L"HomePage::CreateMF", L"Preview::CreateInstance failed.", result);
        return 0;
    }
    return 1;
}

void LivePreview::MakeCapture(suite::ComReference<IDirect3D9> direct3d) {
    // A device that is refused is told in a box, whose loop delivers further clicks.
    makingCapture_ = true;
    if (host_ && OnCreate(host_->GetWindow())) {
        CreateCapture(window_.Get(), host_->GetWindow(), std::move(direct3d));
    }
    makingCapture_ = false;
}

void LivePreview::Click(DuiLib::CControlUI* sender) {
    if (makingCapture_ || opening_) {
        return;
    }
    if (preview_ && preview_->State() == kStarted) {
        Stop();
        if (sender) {
            ShowOff(sender);
        }
    } else if (preview_ || !sender) {
        TurnOn(sender, {});
    } else {
        BeginOpening(sender);
        Later(kMostOpeningMs, &LivePreview::GiveUpOpening);
        TurnOnWhenDeviceIsFree();
    }
}

void LivePreview::TurnOnWhenDeviceIsFree() {
    if (left_.ReleaseAll()) {
        FindDirect3D();
    } else {
        Later(kBetweenReleasesForStartMs, &LivePreview::TurnOnWhenDeviceIsFree);
    }
}

void LivePreview::FindDirect3D() {
    opening_->wantsDirect3D = true;
    if (!LookForDirect3D()) {
        FailOpening();
    }
}

bool LivePreview::LookForDirect3D() {
    if (findsDirect3D_) {
        return true;
    }
    findsDirect3D_ = preview::BeginOpening([self = std::weak_ptr<LivePreview*>(self_)] {
        const auto found = std::make_shared<suite::ComReference<IDirect3D9>>(Device::CreateDirect3D());
        DuiLib::UIMainQueue::getInstance()->dispatch([self, found] {
            if (const auto alive = self.lock()) {
                (*alive)->OnDirect3DFound(std::move(*found));
            }
        });
    });
    return findsDirect3D_;
}

void LivePreview::OnDirect3DFound(suite::ComReference<IDirect3D9> direct3d) {
    findsDirect3D_ = false;
    if (opening_ && opening_->wantsDirect3D) {
        opening_.reset();
        TurnOn(switch_, std::move(direct3d));
    } else if (preview_ && preview_->WantsDirect3D()) {
        const std::shared_ptr<Preview> capture = Share(preview_);
        OnDeviceTried(capture.get(), capture->RecoverDeviceWith(std::move(direct3d)));
    }
}

void LivePreview::TurnOn(DuiLib::CControlUI* sender, suite::ComReference<IDirect3D9> direct3d) {
    if (!preview_) {
        MakeCapture(std::move(direct3d));
    }
    if (!preview_) {
        LogLine(LogLevel::kError, L"HomePage::ClickPreview", L"Init g_pPreview error");
        if (sender) {
            ShowOff(sender);
            EnableSwitch();
        }
    } else if (sender) {
        Start(sender);
    }
}

void LivePreview::Start(DuiLib::CControlUI* sender) {
    BeginOpening(sender);
    if (host_) {
        UpdateWindow(host_->GetWindow());  // the wait for the first frames may come before the next painting
    }
    Open();
}

void LivePreview::BeginOpening(DuiLib::CControlUI* sender) {
    opening_ = std::make_shared<Opening>(Opening{.page = this});
    switch_ = sender;
    DrawSwitch(sender, true);
    sender->SetEnabled(false);
}

void LivePreview::Open() {
    opening_ = std::make_shared<Opening>(Opening{.page = this});
    if (preview::BeginOpening([capture = Share(preview_), opening = std::weak_ptr<Opening>(opening_)] {
            OpenOnCameraThread(*capture, opening);
        })) {
        Later(kMostOpeningMs, &LivePreview::GiveUpOpening);
    } else {
        FailOpening();
    }
}

void LivePreview::OpenOnCameraThread(Preview& capture, const std::weak_ptr<Opening>& opening) {
    if (opening.expired()) {
        return;  // the preview was ended while this thread waited for its turn; there is no device any more
    }
    const bool started = capture.Start(0);
    if (opening.expired()) {
        capture.Close();  // it may have been ended before Start began
    }
    DuiLib::UIMainQueue::getInstance()->dispatch([opening, started] {
        if (const auto alive = opening.lock()) {
            alive->page->OnOpened(started);
        }
    });
}

void LivePreview::OnOpened(bool started) {
    if (started) {
        ShowPicture();
    } else if (IsShortlyAfterResume()) {
        OpenLater();
    } else {
        FailOpening();
    }
}

void LivePreview::ShowPicture() {
    const auto opening = std::make_shared<Opening>(Opening{.page = this});
    opening_ = opening;  // the time of the opening does not count any more
    lastFrameTickMs_ = preview_->LastFrameTickMs();
    ticksWithoutFrame_ = 0;
    isLossLogged_ = false;
    window_.Show(paintManager_->GetDPI(), IsAreaShown());
    NameArea(kPictureText);
    window_.WantTicks(true);
    preview::PauseServed(kFirstFramesWait);
    if (opening == opening_) {
        // After the input that came meanwhile: a click of the switch was not meant to end what it did not see.
        Later(0, &LivePreview::EndOpening);
    }
}

void LivePreview::EndOpening() {
    opening_.reset();
    EnableSwitch();
}

void LivePreview::FailOpening() {
    Stop();
    ShowOff(find_(kSwitchName));
    if (host_) {
        host_->ShowMessage(MessageBoxKind::kCameraUnavailable);
    }
    EnableSwitch();
}

void LivePreview::GiveUpOpening() {
    LogLine(LogLevel::kError, L"LivePreview::GiveUpOpening", L"the camera does not open");
    LogLine(LogLevel::kInfo, L"LivePreview::GiveUpOpening", L"it hangs at: ",
            preview_ ? preview_->OpeningStep() : L"the graphics device", L"; ", preview::OpeningsUnderWay());
    FailOpening();
}

void LivePreview::Later(unsigned delayMs, void (LivePreview::*operation)()) const {
    const auto task = [opening = std::weak_ptr<Opening>(opening_), operation] {
        if (const auto alive = opening.lock()) {
            (alive->page->*operation)();
        }
    };
    if (delayMs == 0) {
        DuiLib::UIMainQueue::getInstance()->dispatch(task);
    } else {
        DuiLib::UIMainQueue::getInstance()->dispatchAfter(delayMs, task);
    }
}

void LivePreview::OpenLater() {
    opening_ = std::make_shared<Opening>(Opening{.page = this});
    Later(kBetweenOpeningsMs, &LivePreview::Open);
}

bool LivePreview::IsShortlyAfterResume() const {
    return resumedTickMs_ != 0 && GetTickCount64() - resumedTickMs_ < kAfterResumeMs;
}

// --- turning it off

void LivePreview::Stop() {
    opening_.reset();
    Preview* capture = std::exchange(preview_, nullptr);
    if (!capture) {
        return;
    }
    window_.WantTicks(false);
    capture->Close();
    if (!left_.Release(capture)) {
        LogLine(LogLevel::kInfo, L"LivePreview::Stop", L"the graphics device is busy; it is released later");
    }
    // Nothing is posted any more: what waits belongs to the capture that has just ended.
    if (host_ && host_->GetWindow()) {
        DropMessages(host_->GetWindow(), Preview::kEventMessage);
    }
}

void LivePreview::OnScreenLock() {
    if (!IsOn()) {
        return;
    }
    Stop();
    ShowOff(find_(kSwitchName));
    EnableSwitch();
    if (left_.IsEmpty()) {
        window_.Destroy();
    }
}

void LivePreview::OnPower(GlobalUtils::PowerKind kind) {
    if (kind == GlobalUtils::PowerKind::kSuspend) {
        OnScreenLock();
    } else {
        resumedTickMs_ = GetTickCount64();
    }
}

// --- the controls

void LivePreview::ShowOff(DuiLib::CControlUI* previewSwitch) {
    DrawSwitch(previewSwitch, false);
    window_.Hide();
    NameArea(kIllustrationText);
}

void LivePreview::NameArea(const wchar_t* text) const {
    if (area_) {
        area_->SetAttribute(L"accname", text);
    }
}

void LivePreview::DrawSwitch(DuiLib::CControlUI* control, bool on) const {
    auto* button = dynamic_cast<DuiLib::CButtonUI*>(control);
    if (!button) {
        return;
    }
    button->SetNormalImage(on ? images_.on : images_.off);
    button->SetHotImage(on ? images_.on : images_.off);
    button->SetChecked(on);
}

void LivePreview::EnableSwitch() const {
    if (switch_) {
        switch_->SetEnabled(true);
    }
}

void LivePreview::Place() {
    window_.Place(paintManager_->GetDPI(), IsAreaShown());
}

bool LivePreview::IsAreaShown() const {
    return area_ && area_->IsShown();
}

// --- while it runs

void LivePreview::OnCaptureError(HRESULT code) {
    if (code == 0) {
        return;
    }
    LogLine(LogLevel::kInfo, L"LivePreview::OnCaptureError", L"the camera preview fails: 0x", std::hex, code);
    const bool wasOn = IsOn();
    if (preview_ && IsShortlyAfterResume()) {
        OpenAgain();
        return;
    }
    if (wasOn) {
        Stop();
        if (host_) {
            InvalidateRect(host_->GetWindow(), nullptr, FALSE);
        }
    }
    // A camera that another program holds turns everything off, whatever was known of it.
    if (wasOn || code == kDeviceInUse) {
        ShowOff(find_(kSwitchName));
        EnableSwitch();
    }
    if (host_) {
        host_->ShowMessage(MessageBoxKind::kCameraUnavailable);
    }
}

void LivePreview::OpenAgain() {
    preview_->Close();
    if (!preview_) {
        return;  // a message that came meanwhile has ended it
    }
    if (switch_) {
        switch_->SetEnabled(false);
    }
    OpenLater();
}

void LivePreview::OnTick() {
    Place();  // not every system tells when something has changed the windows' order
    RecoverDevice();
    CheckSilence();
}

void LivePreview::RecoverDevice() {
    if (!preview_ || !preview_->IsDeviceLost()) {
        return;
    }
    if (!std::exchange(isLossLogged_, true)) {
        LogLine(LogLevel::kInfo, L"LivePreview::RecoverDevice", preview::kDeviceLostLine);
    }
    const std::shared_ptr<Preview> capture = Share(preview_);
    HRESULT result = capture->RecoverDevice();
    if (result == S_FALSE && capture->WantsDirect3D() && !LookForDirect3D()) {
        result = D3DERR_NOTAVAILABLE;
    }
    OnDeviceTried(capture.get(), result);
}

void LivePreview::OnDeviceTried(const Preview* capture, HRESULT result) {
    if (capture != preview_) {
        return;  // the system sends messages to the window meanwhile, which may end the preview
    }
    if (FAILED(result)) {
        LogLine(LogLevel::kError, L"LivePreview::RecoverDevice", L"the graphics device does not come back: 0x",
                std::hex, result);
        OnCaptureError(result);
    } else if (result == S_OK && std::exchange(isLossLogged_, false)) {
        LogLine(LogLevel::kInfo, L"LivePreview::RecoverDevice", preview::kDeviceBackLine);
    }
}

void LivePreview::CheckSilence() {
    if (!preview_ || opening_) {
        return;
    }
    const std::uint64_t lastFrame = preview_->LastFrameTickMs();
    ticksWithoutFrame_ = lastFrame == lastFrameTickMs_ ? ticksWithoutFrame_ + 1 : 0;
    lastFrameTickMs_ = lastFrame;
    if (ticksWithoutFrame_ >= kMostTicksWithoutFrame) {
        // Where a read told why there is no frame, that is the reason.
        const HRESULT failure = preview_->LastReadFailure();
        OnCaptureError(FAILED(failure) ? failure : kNoFrames);
    }
}

void LivePreview::OnDeviceRemoved(const std::wstring& link) {
    if (preview_ && preview::IsSameDevice(link, preview_->CameraLink())) {
        OnCaptureError(MF_E_VIDEO_RECORDING_DEVICE_INVALIDATED);
    }
}
