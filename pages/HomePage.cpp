#include "pages/HomePage.h"

#include <mfapi.h>
#include <objbase.h>

#include <chrono>
#include <fstream>

#include "DuiLib/OptionUI.h"
#include "pages/SwitchImages.h"
#include "preview/MediaFoundation.h"
#include "service/HomeService.h"
#include "service/KindNotifier.h"
#include "service/pictures/CustomItemNames.h"
#include "service/pictures/PaintingWait.h"
#include "suite/url/UrlsManager.h"

namespace {

using GlobalUtils::BeautyKind;
using GlobalUtils::FeatureStatusTuple;
using GlobalUtils::MessageBoxKind;
using GlobalUtils::OnListenKindInfo;
using GlobalUtils::PowerKind;
using GlobalUtils::PreviewPlaceKind;
using GlobalUtils::ScreenLockKind;

// Version of Media Foundation that the program is written for (MF_VERSION of Windows 7 and later).
constexpr ULONG kMediaFoundationVersion = 0x20070;
constexpr int kTextFont = 13;

constexpr std::chrono::seconds kOpenPatience{2};

// Not so where it takes long: the file may lie on a share that is gone.
bool CanBeOpened(const std::wstring& path) {
    return pictures::RunWhilePainting([path] { return std::ifstream(path.c_str()).good(); }, kOpenPatience);
}

}  // namespace

HomePage::HomePage(DuiLib::CPaintManagerUI* paintManager)
    : PageBase(L"layout\\PixoraHomePage.xml", PageNames::kHome, paintManager),
      uiThread_(GetCurrentThreadId()),
      model_(HomeService::GetInstance()),
      switches_(*this, model_),
      gallery_(*this, model_),
      livePreview_(Owner(), paintManager, [this](const wchar_t* name) { return Find(name); },
                   {SwitchImageOf(SwitchImage::kChecked), SwitchImageOf(SwitchImage::kUnchecked)}),
      relay_([this](const FeatureStatusTuple& snapshot) { ShowSnapshot(snapshot); }) {
    if (!model_) {
        return;
    }
    WireModel();
    configLoaded_ = true;
    watcher_ = std::make_unique<SettingsWatcher>(*model_);
    SubscribeHub();
}

HomePage::~HomePage() {
    watcher_.reset();
    for (const auto& unsubscribe : unsubscribe_) {
        unsubscribe();
    }
    if (model_) {
        model_->SetStatusObserver({});
        model_->SetServiceResetObserver({});
        model_->SetMessageCallback({});
        model_->SetAddCustomItem({});
        model_->SetRemoveCustomItem({});
    }
}

void HomePage::WireModel() {
    model_->SetStatusObserver([this](const FeatureStatusTuple& snapshot) { Refresh(snapshot); });
    model_->SetServiceResetObserver([this] {
        if (Owner()) {
            Owner()->CloseWindow();
        }
    });
    model_->SetMessageCallback([this](MessageBoxKind kind) {
        if (Owner()) {
            Owner()->ShowMessage(kind);
        }
    });
    model_->SetAddCustomItem([this](const std::wstring& name, const wchar_t* path, bool isVideo) {
        return AddCustomItem(name, path, isVideo);
    });
    model_->SetRemoveCustomItem(
        [this](std::int32_t index, const std::wstring& path) { return DelBackgroudItem(index, path); });
}

void HomePage::SubscribeHub() {
    const auto subscribe = [this]<typename Kind>(std::int32_t channel, std::function<void(Kind&)> listener) {
        auto& hub = KindNotifier<Kind>::GetInstance();
        const std::int64_t id = hub.Subscribe(channel, std::move(listener));
        unsubscribe_.push_back([&hub, channel, id] { hub.Unsubscribe(channel, id); });
    };
    subscribe(GlobalUtils::kMessageBoxChannel, std::function<void(MessageBoxKind&)>([this](MessageBoxKind& kind) {
                  if (Owner()) {
                      Owner()->ShowMessage(kind);
                  }
              }));
    subscribe(GlobalUtils::kBeautyChannel,
              std::function<void(BeautyKind&)>([this](BeautyKind& kind) { switches_.OnBeautyKind(kind); }));
    subscribe(GlobalUtils::kPreviewPlaceChannel,
              std::function<void(PreviewPlaceKind&)>([this](PreviewPlaceKind&) { livePreview_.Place(); }));
    subscribe(GlobalUtils::kScreenLockChannel,
              std::function<void(ScreenLockKind&)>([this](ScreenLockKind&) { livePreview_.OnScreenLock(); }));
    subscribe(GlobalUtils::kOnListenChannel, std::function<void(OnListenKindInfo&)>([this](OnListenKindInfo& info) {
                  livePreview_.OnCaptureError(static_cast<HRESULT>(info.wParam));
              }));
    subscribe(GlobalUtils::kPowerChannel,
              std::function<void(PowerKind&)>([this](PowerKind& kind) { livePreview_.OnPower(kind); }));
}

void HomePage::Initialize() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
    media_foundation::Startup(kMediaFoundationVersion, MFSTARTUP_FULL);
    livePreview_.Initialize();
    if (model_) {
        model_->InitCustomImage();
        model_->NotifyStatus();
    }
}

void HomePage::Refresh(const FeatureStatusTuple& snapshot) {
    if (GetCurrentThreadId() == uiThread_) {
        ShowSnapshot(snapshot);
        return;
    }
    relay_.Hand(snapshot);
}

void HomePage::ShowSnapshot(const FeatureStatusTuple& snapshot) {
    const auto& [switches, sliders, background] = snapshot;
    FitPreviewText();
    ShowCameraIllustration();

    if (!switches_.ShowStates(switches)) {
        return;
    }
    switches_.ShowLevels(sliders);

    if (model_ && model_->IsSupportHardSwitch() == 1) {
        if (DuiLib::CControlUI* row = Find(L"camera_swith_layout")) {
            row->SetMaxHeight(0);
        }
    }
    SelectBackgroundOption(background);
}

void HomePage::OnScaleChanged() {
    FitPreviewText();
}

void HomePage::FitPreviewText() {
    if (DuiLib::CControlUI* text = Find(L"preview_text")) {
        if (const int width = TextWidth(text->GetText(), kTextFont)) {
            text->SetFixedWidth(width);
        }
    }
}

void HomePage::ShowCameraIllustration() {
    DuiLib::CControlUI* area = Find(L"preview_wnd");
    if (!area) {
        return;
    }
    if (GetCameraXmlConfig("BackgroudImage") == 0) {
        area->SetBkImage(L"file='drawable/LumiCamera/img_notora_camera.png' reverse='true'");
    } else if (GetCameraXmlConfig("BackgroudImage") == 1) {
        area->SetBkImage(L"file='drawable/LumiCamera/img_deskora_camera.png' reverse='true'");
    }
}

void HomePage::SelectBackgroundOption(const GlobalUtils::CustBkgrdInfo& background) {
    std::wstring name = background.btnName;
    // Kept for compatibility: compared with the name of the introduction page's tab, not with the add button's. The
    // file is only touched where that counts.
    if (name == L"custom_background_option" && (background.path.empty() || !CanBeOpened(background.path))) {
        name = L"none_background_btn";
    }
    if (auto* option = FindAs<DuiLib::COptionUI>(name)) {
        option->SetSelected(true);
    }
}

void HomePage::OnClick(DuiLib::TNotifyUI& msg) {
    if (!model_ || !msg.sender) {
        return;
    }
    const std::wstring name = msg.sender->GetName();
    if (switches_.IsSwitch(name)) {
        switches_.Click(*msg.sender);
    } else if (gallery_.IsBackground(name)) {
        gallery_.ClickChangeBackground(name);
    } else if (name == L"show_detail_btn") {
        ShowPage(PageNames::kIntroduction, 0);
        livePreview_.Place();  // it would stand over the other page
    } else if (name == L"preview_switch") {
        ClickPreview(msg.sender);
    } else if (name == L"show_introduction_btn") {
        OpenIntroduction(name);
    } else if (pictures::CustomItemNames::IsDeleteButton(name)) {
        if (Owner() && !gallery_.IsAdding()) {
            Owner()->AskForDeletion(CustomItemName(name));
        }
    }
}

void HomePage::OpenIntroduction(const std::wstring& name) {
    const DuiLib::CControlUI* label = Find(L"Pixora_Introduce_Url");
    const std::wstring url = label ? label->GetText() : std::wstring();
    if (name == L"show_introduction_btn" && !url.empty()) {
        ntx::util::UrlsManager::OpenUrl(url);
    }
}
