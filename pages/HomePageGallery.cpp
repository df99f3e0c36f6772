// The home page's background gallery: choosing, the user's own items, hover and hints.
#include <windows.h>

#include <map>
#include <memory>
#include <utility>

#include "DuiLib/OptionUI.h"
#include "DuiLib/UICulture.h"
#include "pages/ContainerUIEx.h"
#include "pages/CustomItemOption.h"
#include "pages/GalleryRows.h"
#include "pages/HomePage.h"
#include "service/HomeService.h"
#include "service/pictures/CustomItemNames.h"
#include "suite/logger/QxLogger.h"

namespace {

using DuiLib::CButtonUI;
using DuiLib::CContainerUI;
using DuiLib::CControlUI;
using DuiLib::COptionUI;

constexpr wchar_t kGroup[] = L"background_replace_btn_group";
constexpr wchar_t kAddButton[] = L"custom_background_btn";
constexpr wchar_t kItemSuffix[] = L"_item";
constexpr wchar_t kPictureSuffix[] = L"_bk";
constexpr wchar_t kDeleteSuffix[] = L"_del";

// Blocks the UI thread on purpose: the background's message leaves before the one of the framing.
constexpr DWORD kExclusionWaitMs = 100;

// Where the hints stand, in 96-DPI units from the entry's top left.
constexpr int kCellSize = 40;
constexpr int kHintTop = 33;
constexpr int kDeleteHintLeft = -18;
constexpr int kDeleteHintTop = 12;

constexpr int kItemWidth = 52;
constexpr int kItemHeight = 32;
constexpr int kBadgeSize = 12;

bool Contains(const std::wstring& text, const wchar_t* part) {
    return text.find(part) != std::wstring::npos;
}

bool IsDeleteButton(const std::wstring& name) {
    return Contains(name, L"custom_background_btn_") && Contains(name, kDeleteSuffix);
}

// Key of the text that names a built-in entry; null for the user's own items.
const wchar_t* LabelKey(const std::wstring& name) {
    static const std::map<std::wstring, const wchar_t*> keys = {
        {L"none_background_btn", L"IDS_LUMI_CAMERA_NONE"},
        {L"custom_background_btn", L"IDS_LUMI_CAMERA_CUSTOM"},
        {L"img_one_background_btn", L"IDS_LUMI_CAMERA_MEETINGROOM"},
        {L"img_two_background_btn", L"IDS_LUMI_CAMERA_MEETINGROOM"},
        {L"img_three_background_btn", L"IDS_LUMI_CAMERA_MEETINGROOM"},
        {L"img_four_background_btn", L"IDS_LUMI_CAMERA_OFFICE"},
        {L"img_five_background_btn", L"IDS_LUMI_CAMERA_CAFE"},
        {L"img_six_background_btn", L"IDS_LUMI_CAMERA_LIVINGROOM"},
        {L"img_seven_background_btn", L"IDS_LUMI_CAMERA_STUDY"},
        {L"img_eight_background_btn", L"IDS_LUMI_CAMERA_CITY"},
        {L"img_nine_background_btn", L"IDS_LUMI_CAMERA_TECHNOLOGY"},
        {L"img_ten_background_btn", L"IDS_LUMI_CAMERA_INK"},
        {L"img_eleven_background_btn", L"IDS_LUMI_CAMERA_WALLPAPER"},
        {L"img_animation_background_btn", L"IDS_LUMI_CAMERA_NATURE"},
        {L"virtual_background_btn", L"IDS_LUMI_CAMERA_VIRTUAL"},
    };
    const auto key = keys.find(name);
    return key == keys.end() ? nullptr : key->second;
}

template <typename Class>
std::unique_ptr<Class> MakePart(const std::wstring& name, int widthDip, int heightDip) {
    auto part = std::make_unique<Class>();
    part->SetName(name);
    part->SetFixedWidth(widthDip);
    part->SetFixedHeight(heightDip);
    return part;
}

// A part that stands over the picture, at a place of its own within the item.
template <typename Class>
std::unique_ptr<Class> MakeBadge(const std::wstring& name, const wchar_t* place) {
    auto badge = MakePart<Class>(name, kBadgeSize, kBadgeSize);
    badge->SetAttribute(L"float", L"true");
    badge->SetAttribute(L"pos", place);
    return badge;
}

// "Custom background 3": items count from 0, people from 1.
std::wstring SpokenName(const wchar_t* key, const std::wstring& itemName) {
    std::wstring text = DuiLib::UICulture::GetInstance()->GetString(key);
    const std::wstring digits = itemName.substr(itemName.rfind(L'_') + 1);
    const std::wstring number = std::to_wstring(std::wcstol(digits.c_str(), nullptr, 10) + 1);
    if (const std::size_t place = text.find(L"{n}"); place != std::wstring::npos)
        text.replace(place, 3, number);
    return text;
}

std::unique_ptr<CControlUI> MakeCell(const std::wstring& name, const std::wstring& thumbnailPath, bool isVideo) {
    auto item = MakePart<CContainerUIEx>(name + kItemSuffix, kItemWidth, kItemHeight);
    item->SetAttribute(L"borderround", L"6");
    item->SetAttribute(L"align", L"center");  // as the built-in entries, which are options

    auto picture = MakePart<CControlUI>(name + kPictureSuffix, kItemWidth, kItemHeight);
    picture->SetAttribute(L"borderround", L"6");
    picture->SetBkImage(L"file='" + thumbnailPath + L"' reverse='true'");
    item->Add(std::move(picture));

    auto option = MakePart<CCustomItemOption>(name, kItemWidth, kItemHeight);
    option->SetGroup(L"background_replace_group");
    option->SetTextColor(0x053EC600);  // kept as it is; the option has no text
    option->SetNormalImage(L"file='drawable/LumiCamera/img_thumbnail_none@2x.png'");
    option->SetHotImage(L"file='drawable/LumiCamera/img_thumbnail_hover@2x.png'");
    option->SetSelectedImage(L"file='drawable/LumiCamera/img_thumbnail_none_on@2x.png'");
    option->SetAttribute(L"accname",
                         SpokenName(isVideo ? L"IDS_LUMI_ACC_CUSTOM_VIDEO_ITEM" : L"IDS_LUMI_ACC_CUSTOM_ITEM", name));
    item->Add(std::move(option));

    if (isVideo) {
        auto badge = MakeBadge<CControlUI>(name + L"_video", L"4,16,16,28");
        badge->SetBkImage(L"file='drawable/LumiCamera/video_icon.png' reverse='true'");
        badge->SetAttribute(L"mouse", L"false");
        item->Add(std::move(badge));
    }
    auto remove = MakeBadge<CButtonUI>(name + kDeleteSuffix, L"38,2,50,14");
    remove->SetNormalImage(L"file='drawable/LumiCamera/ic_cancel_normal.png'");
    remove->SetHotImage(L"file='drawable/LumiCamera/ic_cancel_hover.png'");
    remove->SetPushedImage(L"file='drawable/LumiCamera/ic_cancel_pushed.png'");
    remove->SetAttribute(L"accname", SpokenName(L"IDS_LUMI_ACC_DELETE_ITEM", name));
    remove->SetVisible(false);
    item->Add(std::move(remove));

    auto cell = MakePart<CContainerUI>(L"", 60, 40);
    cell->SetPadding({0, 10, 0, 0});
    cell->Add(std::move(item));
    return cell;
}

}  // namespace

void HomePage::ClickChangeBackground(const std::wstring& name) {
    constexpr wchar_t kFunction[] = L"HomePage::ClickChangeBackground";
    if (!Contains(name, kAddButton)) {
        model_->SelectBackground(name);
        if (name == L"none_background_btn")
            return;
        Sleep(kExclusionWaitMs);
        model_->SetFocusPerson(0);
        return;
    }
    if (name == kAddButton) {
        if (auto* option = FindAs<COptionUI>(name))
            AddOwnBackground(*option);
        else
            LogLine(4, kFunction, L"Get option null!");
        return;
    }
    model_->SelectCustomBackground(name);
    if (auto* option = FindAs<COptionUI>(name)) {
        option->SetSelected(true);
        model_->SetFocusPerson(0);
    } else {
        // A video that is gone has taken its cell with it.
        LogLine(4, kFunction, L"Get option null!");
    }
    model_->NotifyStatus();
}

void HomePage::AddOwnBackground(COptionUI& addButton) {
    // A second click must not open a second dialog.
    addButton.SetEnabled(false);
    std::wstring path;
    if (model_->IsCustomFull()) {
        if (Owner())
            Owner()->ShowLimitNotice();
    } else if (model_->ChooseCustomFile(Owner() ? Owner()->GetWindow() : nullptr, path) &&
               model_->AddCustomBackground(path)) {
        addButton.SetSelected(true);
        model_->SetFocusPerson(0);
    }
    addButton.SetEnabled(true);
    // The add button is the one that was clicked; the background in use is the one that is shown as chosen.
    model_->NotifyStatus();
}

int HomePage::AddCustomItem(const std::wstring& name, const std::wstring& thumbnailPath, bool isVideo) {
    auto* group = FindAs<CContainerUI>(kGroup);
    if (!group)
        return -1;
    const int count = group->GetCount();
    thumbnails_.Show(thumbnailPath, name + kPictureSuffix);
    group->AddAt(MakeCell(name, thumbnailPath, isVideo), count - 1);
    RelayoutGallery(count + 1);
    backgroundButtons_.insert(name);
    return count - 1;
}

bool HomePage::DelBackgroudItem(int index, const std::wstring& path) {
    auto* group = FindAs<CContainerUI>(kGroup);
    if (!group || index == -1) {
        LogLine(4, L"HomePage::DelBackgroudItem", L"del CustomBackground failed index:", index, L",resUrl:", path);
        return false;
    }
    Manager()->RemoveImage(path);
    // The model names the item; its picture stands under the file's path.
    thumbnails_.Forget(path + kPictureSuffix);
    const bool removed = group->RemoveAt(index);
    RelayoutGallery(group->GetCount());
    return removed;
}

void HomePage::RelayoutGallery(int count) {
    const auto height = GalleryHeightFor(count);
    if (!height)
        return;
    if (CControlUI* group = Find(kGroup))
        group->SetMinHeight(height->groupMinHeight);
    if (CControlUI* section = Find(L"virtual_background")) {
        section->SetAttribute(L"height", std::to_wstring(height->sectionHeight));
    }
}

bool HomePage::HideDelButton(const std::wstring& previousName, const std::wstring& currentName) {
    const std::wstring previous = CustomItemName(previousName);
    if (previous == CustomItemName(currentName))
        return false;
    CControlUI* button = Find(previous + kDeleteSuffix);
    if (!button)
        return false;
    button->SetVisible(false);
    return true;
}

void HomePage::OnMouseEnter(DuiLib::TNotifyUI& msg) {
    const std::wstring& name = msg.sender->GetName();
    if (const std::size_t item = name.find(kItemSuffix); item != std::wstring::npos) {
        HideDelButton(itemUnderPointer_, name);
        itemUnderPointer_ = name.substr(0, item);
        if (CControlUI* button = Find(itemUnderPointer_ + kDeleteSuffix))
            button->SetVisible(true);
    }
    ShowToolTip(msg.sender, true);
}

void HomePage::OnMouseLeave(DuiLib::TNotifyUI& msg) {
    ShowToolTip(msg.sender, false);
}

void HomePage::OnScroll(DuiLib::TNotifyUI&) {
    // The items move and the pointer does not, so that nothing else tells that it is over another one now.
    POINT pointer = {};
    GetCursorPos(&pointer);
    ScreenToClient(Manager()->GetPaintWindow(), &pointer);
    const CControlUI* control = Manager()->FindControl(pointer);
    HideDelButton(itemUnderPointer_, control ? control->GetName() : std::wstring());
    if (!Owner())
        return;
    for (const PageHost::Hint hint : {PageHost::Hint::Option, PageHost::Hint::DeleteButton}) {
        if (HintWindow* window = Owner()->GetHint(hint))
            window->Show(false);
    }
}

void HomePage::ShowToolTip(CControlUI* sender, bool show) {
    const std::wstring& name = sender->GetName();
    const DuiLib::UICulture& culture = *DuiLib::UICulture::GetInstance();
    if (const wchar_t* key = LabelKey(name))
        ShowHint(PageHost::Hint::Option, sender, culture.GetString(key), show);
    if (IsDeleteButton(name)) {
        ShowHint(PageHost::Hint::DeleteButton, sender, culture.GetString(L"IDS_LUMI_DELETE"), show);
    }
}

void HomePage::ShowHint(PageHost::Hint kind, CControlUI* anchor, const std::wstring& text, bool show) {
    HintWindow* hint = Owner() ? Owner()->GetHint(kind) : nullptr;
    if (!hint) {
        LogLine(4, L"HomePage::ShowToolTip", L"get tooltipwnd failed");
        return;
    }
    if (!show) {
        hint->Show(false);
        return;
    }
    // The text comes first: where an option's hint stands depends on how wide it is.
    hint->SetToolTipText(text);
    const int dpi = Manager()->GetDPI();
    const bool option = kind == PageHost::Hint::Option;
    const int leftDip = option ? (kCellSize - hint->GetToolTipWidth()) / 2 : kDeleteHintLeft;
    hint->SetAnchor(anchor);
    hint->SetPosition(DuiLib::DipToPx(leftDip, dpi), DuiLib::DipToPx(option ? kHintTop : kDeleteHintTop, dpi));
    hint->Show(true);
}
