#include "pages/LivePreview.h"

#include <utility>

#include "DuiLib/ButtonUI.h"
#include "DuiLib/PaintManagerUI.h"
#include "pages/PageHost.h"
#include "preview/Preview.h"
#include "suite/common/ComRelease.h"
#include "suite/logger/QxLogger.h"

namespace {

using GlobalUtils::MessageBoxKind;

constexpr wchar_t kSwitchName[] = L"preview_switch";
constexpr wchar_t kAreaName[] = L"preview_wnd";

// Blocks the UI thread on purpose: the first frames are drawn before the switch can be clicked again.
constexpr DWORD kFirstFramesWaitMs = 400;

// Ticks of the preview window, one a second: a camera that has delivered nothing for so long is given up. Counted in
// ticks, and not by the clock, so that the time that the computer sleeps does not count.
constexpr int kMostTicksWithoutFrame = 5;
constexpr HRESULT kNoFrames = HRESULT_FROM_WIN32(ERROR_TIMEOUT);

// The capture device is in use by another program.
constexpr HRESULT kDeviceInUse = static_cast<HRESULT>(0xC00D3704);

constexpr int kStarted = 1;

// Messages of a kind that wait for the window and are of no use any more.
void DropMessages(HWND window, UINT first, UINT last) {
    MSG message;
    while (PeekMessageW(&message, window, first, last, PM_REMOVE)) {
    }
}

}  // namespace

LivePreview::LivePreview(PageHost* host, DuiLib::CPaintManagerUI* paintManager, FindControl find, SwitchImages images)
    : host_(host),
      paintManager_(paintManager),
      find_(std::move(find)),
      images_(std::move(images)),
      window_({[this] { Stop(); }, [this] { OnTick(); }}) {}

LivePreview::~LivePreview() {
    Stop();
    window_.Destroy();
}

void LivePreview::Initialize() {
    switch_ = find_(kSwitchName);
    area_ = find_(kAreaName);
}

int LivePreview::OnCreate(HWND parentWindow) {
    if (!window_.Create(parentWindow, DuiLib::CPaintManagerUI::GetInstance())) {
        LogLine(4, L"HomePage::OnCreate", L"video null !");
        return 0;
    }
    Place();
    return 1;
}

int LivePreview::CreateMF(HWND previewWindow, HWND parentWindow) {
    const HRESULT result = Preview::CreateInstance(previewWindow, parentWindow, &preview_);
    if (FAILED(result)) {
        LogLine(4, L"HomePage::CreateMF", L"Preview::CreateInstance failed.", result);
        return 0;
    }
    return 1;
}

void LivePreview::Click(DuiLib::CControlUI* sender) {
    if (!preview_ && host_ && OnCreate(host_->GetWindow())) {
        CreateMF(window_.Get(), host_->GetWindow());
    }
    if (!preview_) {
        LogLine(4, L"HomePage::ClickPreview", L"Init g_pPreview error");
        return;
    }
    if (preview_->State() == kStarted) {
        Stop();
        if (sender) {
            ShowOff(sender);
        }
        return;
    }
    if (sender) {
        Start(sender);
    }
}

void LivePreview::Start(DuiLib::CControlUI* sender) {
    switch_ = sender;
    DrawSwitch(sender, true);
    UpdateWindow(host_->GetWindow());  // what follows takes its time
    sender->SetEnabled(false);
    if (preview_->Start(0)) {
        lastFrameTickMs_ = preview_->LastFrameTickMs();
        ticksWithoutFrame_ = 0;
        window_.Show(paintManager_->GetDPI(), IsAreaShown());
        window_.WantTicks(true);
        Sleep(kFirstFramesWaitMs);
    } else {
        Stop();
        ShowOff(find_(kSwitchName));
        host_->ShowMessage(MessageBoxKind::kCameraUnavailable);
    }
    // A second click that came meanwhile was not meant to end what it did not see.
    DropMessages(host_->GetWindow(), WM_LBUTTONDOWN, WM_LBUTTONDBLCLK);
    sender->SetEnabled(true);
}

void LivePreview::Stop() {
    if (!preview_) {
        return;
    }
    window_.WantTicks(false);
    preview_->Close();
    preview_->DestroyRenderer();
    ComRelease(preview_);
    // Nothing is posted any more: what waits belongs to the capture that has just ended.
    if (host_ && host_->GetWindow()) {
        DropMessages(host_->GetWindow(), Preview::kEventMessage, Preview::kEventMessage);
    }
}

void LivePreview::ShowOff(DuiLib::CControlUI* previewSwitch) {
    DrawSwitch(previewSwitch, false);
    window_.Hide();
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

void LivePreview::Place() {
    window_.Place(paintManager_->GetDPI(), IsAreaShown());
}

bool LivePreview::IsAreaShown() const {
    return area_ && area_->IsShown();
}

void LivePreview::OnScreenLock() {
    if (!preview_) {
        return;
    }
    Stop();
    DrawSwitch(find_(kSwitchName), false);
    window_.Destroy();
}

void LivePreview::OnCaptureError(HRESULT code) {
    if (code == 0) {
        return;
    }
    const bool wasOn = preview_ != nullptr;
    if (wasOn) {
        Stop();
        if (host_) {
            InvalidateRect(host_->GetWindow(), nullptr, FALSE);
        }
    }
    // A camera that another program holds turns everything off, whatever was known of it.
    if (wasOn || code == kDeviceInUse) {
        ShowOff(find_(kSwitchName));
        if (switch_) {
            switch_->SetEnabled(true);
        }
    }
    if (host_) {
        host_->ShowMessage(MessageBoxKind::kCameraUnavailable);
    }
}

void LivePreview::OnTick() {
    if (!preview_) {
        return;
    }
    Place();  // not every system tells when something has changed the windows' order
    const std::uint64_t lastFrame = preview_->LastFrameTickMs();
    ticksWithoutFrame_ = lastFrame == lastFrameTickMs_ ? ticksWithoutFrame_ + 1 : 0;
    lastFrameTickMs_ = lastFrame;
    if (ticksWithoutFrame_ >= kMostTicksWithoutFrame) {
        OnCaptureError(kNoFrames);
    }
}
