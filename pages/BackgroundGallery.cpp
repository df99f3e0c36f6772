#include "pages/BackgroundGallery.h"

#include <windows.h>

#include <string_view>

#include "DuiLib/OptionUI.h"
#include "DuiLib/UICulture.h"
#include "pages/GalleryCell.h"
#include "pages/GalleryRows.h"
#include "pages/PageBase.h"
#include "pages/WorkingMark.h"
#include "service/EffectTable.h"
#include "service/FeatureTables.h"
#include "service/HomeService.h"
#include "service/pictures/CustomItemNames.h"
#include "suite/logger/QxLogger.h"

using DuiLib::CContainerUI;
using DuiLib::CControlUI;
using DuiLib::COptionUI;
using pictures::CustomItemNames::kDeleteSuffix;
using pictures::CustomItemNames::kItemSuffix;
using pictures::CustomItemNames::kPictureSuffix;

namespace {

constexpr wchar_t kGroup[] = L"background_replace_btn_group";

// Blocks the UI thread on purpose: the background's message leaves before the one of the framing.
constexpr DWORD kExclusionWaitMs = 100;

// Where the hints stand, in 96-DPI units from the entry's top left.
constexpr int kCellSize = 40;
constexpr int kHintTop = 33;
constexpr int kDeleteHintLeft = -18;
constexpr int kDeleteHintTop = 12;

bool IsOwn(const std::wstring& name) {
    return name.find(FeatureTables::kCustomControl) != std::wstring::npos;
}

// Key of the text that names a built-in entry; null for the user's own items.
const wchar_t* LabelKey(const std::wstring& name) {
    for (const FeatureTables::Background& background : FeatureTables::kBackgrounds) {
        if (background.control == name) {
            return background.label;
        }
    }
    return nullptr;
}

}  // namespace

BackgroundGallery::BackgroundGallery(const PageBase& page, HomeService* model)
    : page_(page), model_(model), thumbnails_(page.Manager()) {
    for (const FeatureTables::Background& background : FeatureTables::kBackgrounds) {
        buttons_.emplace(background.control);
    }
}

void BackgroundGallery::ClickChangeBackground(const std::wstring& name) {
    constexpr wchar_t kFunction[] = L"HomePage::ClickChangeBackground";
    if (isAdding_) {
        model_->NotifyStatus();
        return;
    }
    if (!IsOwn(name)) {
        model_->SelectBackground(name);
        if (name == service::kNoBackgroundControl) {
            return;
        }
        Sleep(kExclusionWaitMs);
        TurnOffWhatExcludesBackgrounds();
        return;
    }
    if (name == FeatureTables::kCustomControl) {
        if (auto* option = page_.FindAs<COptionUI>(name)) {
            AddOwnBackground(*option);
        } else {
            LogLine(LogLevel::kError, kFunction, L"Get option null!");
        }
        return;
    }
    model_->SelectCustomBackground(name);
    if (auto* option = page_.FindAs<COptionUI>(name)) {
        option->SetSelected(true);
        TurnOffWhatExcludesBackgrounds();
    } else {
        // A video that is gone has taken its cell with it.
        LogLine(LogLevel::kError, kFunction, L"Get option null!");
    }
    model_->NotifyStatus();
}

void BackgroundGallery::AddOwnBackground(COptionUI& addButton) {
    SetAdding(addButton, true);
    const PageHost* const owner = page_.Owner();
    std::wstring path;
    {
        const WorkingMark mark(page_, addButton);
        if (!TellFull() && model_->ChooseCustomFile(owner ? owner->GetWindow() : nullptr, path) &&
            model_->AddCustomBackground(path)) {
            ShowAdded(addButton);
        }
    }
    SetAdding(addButton, false);
}

void BackgroundGallery::SetAdding(COptionUI& addButton, bool isAdding) {
    isAdding_ = isAdding;
    // A second click must not open a second dialog.
    addButton.SetEnabled(!isAdding);
    if (!isAdding) {
        // The background in use is the one that is shown as chosen.
        model_->NotifyStatus();
    }
}

void BackgroundGallery::AddDroppedFiles(const std::vector<std::wstring>& paths) {
    auto* addButton = page_.FindAs<COptionUI>(std::wstring(FeatureTables::kCustomControl));
    // Disabled while another file is being chosen or made.
    if (!model_ || !addButton || !addButton->IsEnabled()) {
        return;
    }
    SetAdding(*addButton, true);
    bool added = false;
    {
        const WorkingMark mark(page_, *addButton);
        for (const std::wstring& path : paths) {
            if (mark.IsEnding() || TellFull()) {
                break;
            }
            added = (model_->AcceptDroppedFile(path) && model_->AddCustomBackground(path)) || added;
        }
    }
    if (added) {
        ShowAdded(*addButton);
    }
    SetAdding(*addButton, false);
}

bool BackgroundGallery::TellFull() {
    if (!model_->IsCustomFull()) {
        return false;
    }
    if (PageHost* const owner = page_.Owner()) {
        owner->ShowLimitNotice();
    }
    return true;
}

void BackgroundGallery::ShowAdded(COptionUI& addButton) {
    addButton.SetSelected(true);
    TurnOffWhatExcludesBackgrounds();
}

void BackgroundGallery::TurnOffWhatExcludesBackgrounds() {
    for (const service::Effect& effect : service::kEffects) {
        if (effect.excludes == service::kNoBackgroundControl) {
            model_->SetEffect(effect.id, 0);
        }
    }
}

int BackgroundGallery::AddCustomItem(const std::wstring& name, const std::wstring& thumbnailPath, bool isVideo) {
    auto* group = page_.FindAs<CContainerUI>(kGroup);
    if (!group) {
        return -1;
    }
    const int count = group->GetCount();
    thumbnails_.Show(thumbnailPath, name + kPictureSuffix);
    group->AddAt(MakeGalleryCell(name, thumbnailPath, isVideo), count - 1);
    RelayoutGallery(count + 1);
    buttons_.insert(name);
    return count - 1;
}

bool BackgroundGallery::DelBackgroudItem(int index, const std::wstring& path) {
    auto* group = page_.FindAs<CContainerUI>(kGroup);
    if (!group || index == -1) {
        LogLine(LogLevel::kError, L"HomePage::DelBackgroudItem", L"del CustomBackground failed index:", index,
                L",resUrl:", path);
        return false;
    }
    page_.Manager()->RemoveImage(path);
    // The model names the item; its picture stands under the file's path.
    thumbnails_.Forget(path + kPictureSuffix);
    const bool removed = group->RemoveAt(index);
    RelayoutGallery(group->GetCount());
    return removed;
}

void BackgroundGallery::RelayoutGallery(int count) {
    const auto height = GalleryHeightFor(count);
    if (!height) {
        return;
    }
    if (CControlUI* group = page_.Find(kGroup)) {
        group->SetMinHeight(height->groupMinHeight);
    }
    if (CControlUI* section = page_.Find(L"virtual_background")) {
        section->SetAttribute(L"height", std::to_wstring(height->sectionHeight));
    }
}

bool BackgroundGallery::HideDelButton(const std::wstring& previousName, const std::wstring& currentName) {
    const std::wstring previous = CustomItemName(previousName);
    if (previous == CustomItemName(currentName)) {
        return false;
    }
    CControlUI* button = page_.Find(previous + kDeleteSuffix);
    if (!button) {
        return false;
    }
    button->SetVisible(false);
    return true;
}

void BackgroundGallery::OnMouseEnter(CControlUI& control) {
    const std::wstring& name = control.GetName();
    if (const std::size_t item = name.find(kItemSuffix); item != std::wstring::npos) {
        HideDelButton(itemUnderPointer_, name);
        itemUnderPointer_ = name.substr(0, item);
        if (CControlUI* button = page_.Find(itemUnderPointer_ + kDeleteSuffix)) {
            button->SetVisible(true);
        }
    }
    ShowToolTip(control, true);
}

void BackgroundGallery::OnMouseLeave(CControlUI& control) {
    ShowToolTip(control, false);
}

void BackgroundGallery::OnFocusChanged(const CControlUI& control) {
    if (!IsOwn(control.GetName())) {
        return;
    }
    const DuiLib::CPaintManagerUI& manager = *page_.Manager();
    const CControlUI* focus = manager.GetFocus();
    const std::wstring item = CustomItemName(control.GetName());
    if (focus == &control) {
        CControlUI* button = page_.Find(item + kDeleteSuffix);
        if (button && manager.IsFocusRingShown()) {
            button->SetVisible(true);
        }
        return;
    }
    const CControlUI* hot = manager.GetHot();
    if (!hot || CustomItemName(hot->GetName()) != item) {
        HideDelButton(item, focus ? focus->GetName() : std::wstring());
    }
}

void BackgroundGallery::OnScroll() {
    // Nothing else tells that the pointer is over another item now.
    POINT pointer = {};
    GetCursorPos(&pointer);
    ScreenToClient(page_.Manager()->GetPaintWindow(), &pointer);
    const CControlUI* control = page_.Manager()->FindControl(pointer);
    HideDelButton(itemUnderPointer_, control ? control->GetName() : std::wstring());
    if (!page_.Owner()) {
        return;
    }
    for (const PageHost::Hint hint : {PageHost::Hint::kOption, PageHost::Hint::kDeleteButton}) {
        if (HintWindow* window = page_.Owner()->GetHint(hint)) {
            window->Show(false);
        }
    }
}

void BackgroundGallery::ShowToolTip(CControlUI& sender, bool show) {
    const std::wstring& name = sender.GetName();
    const DuiLib::UICulture& culture = *DuiLib::UICulture::GetInstance();
    if (const wchar_t* key = LabelKey(name)) {
        ShowHint(PageHost::Hint::kOption, sender, culture.GetString(key), show);
    }
    if (pictures::CustomItemNames::IsDeleteButton(name)) {
        ShowHint(PageHost::Hint::kDeleteButton, sender, culture.GetString(L"IDS_LUMI_DELETE"), show);
    }
}

void BackgroundGallery::ShowHint(PageHost::Hint kind, CControlUI& anchor, const std::wstring& text, bool show) {
    HintWindow* hint = page_.Owner() ? page_.Owner()->GetHint(kind) : nullptr;
    if (!hint) {
        LogLine(LogLevel::kError, L"HomePage::ShowToolTip", L"get tooltipwnd failed");
        return;
    }
    if (!show) {
        hint->Show(false);
        return;
    }
    hint->SetAnchor(&anchor);
    // Before the position: where an option's hint stands depends on how wide its text is.
    hint->SetToolTipText(text);
    const int dpi = page_.Manager()->GetDPI();
    const bool option = kind == PageHost::Hint::kOption;
    const int leftDip = option ? (kCellSize - hint->GetToolTipWidth()) / 2 : kDeleteHintLeft;
    hint->SetPosition(DuiLib::DipToPx(leftDip, dpi), DuiLib::DipToPx(option ? kHintTop : kDeleteHintTop, dpi));
    hint->Show(true);
}
