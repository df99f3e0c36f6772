// The home page's live preview: its switch, its window, and what ends it.
#include <windows.h>

#include "DuiLib/ButtonUI.h"
#include "pages/HomePage.h"
#include "preview/Preview.h"
#include "suite/common/ComRelease.h"
#include "suite/logger/QxLogger.h"

namespace {

using GlobalUtils::MessageBoxKind;

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

int HomePage::OnCreate(HWND parentWindow) {
    if (!previewWindow_.Create(parentWindow, DuiLib::CPaintManagerUI::GetInstance())) {
        LogLine(4, L"HomePage::OnCreate", L"video null !");
        return 0;
    }
    PlacePreview();
    return 1;
}

int HomePage::CreateMF(HWND previewWindow, HWND parentWindow) {
    const HRESULT result = Preview::CreateInstance(previewWindow, parentWindow, &preview_);
    if (FAILED(result)) {
        LogLine(4, L"HomePage::CreateMF", L"Preview::CreateInstance failed.", result);
        return 0;
    }
    return 1;
}

void HomePage::ClickPreview(DuiLib::CControlUI* sender) {
    if (!preview_ && Owner() && OnCreate(Owner()->GetWindow()))
        CreateMF(previewWindow_.Get(), Owner()->GetWindow());
    if (!preview_) {
        LogLine(4, L"HomePage::ClickPreview", L"Init g_pPreview error");
        return;
    }
    if (preview_->State() == kStarted) {
        StopPreview();
        if (sender)
            ShowPreviewOff(sender);
        return;
    }
    if (sender)
        StartPreview(sender);
}

void HomePage::StartPreview(DuiLib::CControlUI* sender) {
    previewSwitch_ = sender;
    DrawPreviewSwitch(sender, true);
    UpdateWindow(Owner()->GetWindow());  // what follows takes its time
    sender->SetEnabled(false);
    if (preview_->Start(0)) {
        lastFrameTickMs_ = preview_->LastFrameTickMs();
        ticksWithoutFrame_ = 0;
        previewWindow_.Show(Manager()->GetDPI(), IsPreviewAreaShown());
        previewWindow_.WantTicks(true);
        Sleep(kFirstFramesWaitMs);
    } else {
        StopPreview();
        ShowPreviewOff(Find(L"preview_switch"));
        Owner()->ShowMessage(MessageBoxKind::kCameraUnavailable);
    }
    // A second click that came meanwhile was not meant to end what it did not see.
    DropMessages(Owner()->GetWindow(), WM_LBUTTONDOWN, WM_LBUTTONDBLCLK);
    sender->SetEnabled(true);
}

void HomePage::StopPreview() {
    if (!preview_)
        return;
    previewWindow_.WantTicks(false);
    preview_->Close();
    preview_->DestroyRenderer();
    ComRelease(preview_);
    // Nothing is posted any more: what waits belongs to the capture that has just ended.
    if (Owner() && Owner()->GetWindow())
        DropMessages(Owner()->GetWindow(), Preview::kEventMessage, Preview::kEventMessage);
}

void HomePage::ShowPreviewOff(DuiLib::CControlUI* previewSwitch) {
    DrawPreviewSwitch(previewSwitch, false);
    previewWindow_.Hide();
}

void HomePage::DrawPreviewSwitch(DuiLib::CControlUI* control, bool on) {
    auto* button = dynamic_cast<DuiLib::CButtonUI*>(control);
    if (!button)
        return;
    button->SetNormalImage(switchImages_[on ? 7 : 6]);
    button->SetHotImage(switchImages_[on ? 7 : 6]);
    button->SetChecked(on);
}

void HomePage::OnActivate() {
    PlacePreview();
}

void HomePage::PlacePreview() {
    previewWindow_.Place(Manager()->GetDPI(), IsPreviewAreaShown());
}

bool HomePage::IsPreviewAreaShown() const {
    return previewArea_ && previewArea_->IsShown();
}

void HomePage::OnScreenLock() {
    if (!preview_)
        return;
    StopPreview();
    DrawPreviewSwitch(Find(L"preview_switch"), false);
    previewWindow_.Destroy();
}

void HomePage::OnCaptureError(HRESULT code) {
    if (code == 0)
        return;
    const bool wasOn = preview_ != nullptr;
    if (wasOn) {
        StopPreview();
        if (Owner())
            InvalidateRect(Owner()->GetWindow(), nullptr, FALSE);
    }
    // A camera that another program holds turns everything off, whatever was known of it.
    if (wasOn || code == kDeviceInUse) {
        ShowPreviewOff(Find(L"preview_switch"));
        if (previewSwitch_)
            previewSwitch_->SetEnabled(true);
    }
    if (Owner())
        Owner()->ShowMessage(MessageBoxKind::kCameraUnavailable);
}

void HomePage::OnPreviewTick() {
    if (!preview_)
        return;
    PlacePreview();  // not every system tells when something has changed the windows' order
    const std::uint64_t lastFrame = preview_->LastFrameTickMs();
    ticksWithoutFrame_ = lastFrame == lastFrameTickMs_ ? ticksWithoutFrame_ + 1 : 0;
    lastFrameTickMs_ = lastFrame;
    if (ticksWithoutFrame_ >= kMostTicksWithoutFrame)
        OnCaptureError(kNoFrames);
}
