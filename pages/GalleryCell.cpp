#include "pages/GalleryCell.h"

#include <string_view>
#include <utility>

#include "DuiLib/UICulture.h"
#include "pages/ContainerUIEx.h"
#include "pages/CustomItemOption.h"
#include "service/pictures/CustomItemNames.h"

using DuiLib::CButtonUI;
using DuiLib::CContainerUI;
using DuiLib::CControlUI;
using pictures::CustomItemNames::kDeleteSuffix;
using pictures::CustomItemNames::kItemSuffix;
using pictures::CustomItemNames::kPictureSuffix;

namespace {

constexpr int kItemWidth = 52;
constexpr int kItemHeight = 32;
constexpr int kCellWidth = 60;
constexpr int kCellHeight = 40;
constexpr int kBadgeSize = 12;

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
    constexpr std::wstring_view kNumber = L"{n}";
    if (const std::size_t place = text.find(kNumber); place != std::wstring::npos) {
        text.replace(place, kNumber.size(), number);
    }
    return text;
}

}  // namespace

std::unique_ptr<CControlUI> MakeGalleryCell(const std::wstring& name, const std::wstring& thumbnailPath, bool isVideo) {
    auto item = MakePart<CContainerUIEx>(name + kItemSuffix, kItemWidth, kItemHeight);
    item->SetAttribute(L"borderround", L"6");
    item->SetAttribute(L"align", L"center");  // as the built-in entries, which are options

    auto picture = MakePart<CControlUI>(name + kPictureSuffix, kItemWidth, kItemHeight);
    picture->SetAttribute(L"borderround", L"6");
    picture->SetAttribute(L"bkcolor", L"placeholder");  // until the thumbnail comes
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
        auto badge = MakeBadge<CControlUI>(name + std::wstring(pictures::CustomItemNames::kVideoSuffix), L"4,16,16,28");
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

    auto cell = MakePart<CContainerUI>(L"", kCellWidth, kCellHeight);
    cell->SetPadding({0, 10, 0, 0});
    cell->Add(std::move(item));
    return cell;
}
