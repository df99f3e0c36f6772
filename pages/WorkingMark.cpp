#include "pages/WorkingMark.h"

#include "DuiLib/OptionUI.h"
#include "DuiLib/UICulture.h"
#include "pages/PageBase.h"

namespace {

constexpr wchar_t kRing[] = L"custom_working";

}  // namespace

WorkingMark::WorkingMark(const PageBase& page, DuiLib::COptionUI& entry)
    : page_(page), entry_(entry), usualName_(entry.GetAccessibleInfo().name), watch_([this] { Turn(); }) {}

WorkingMark::~WorkingMark() {
    if (turns_ > 0) {
        ShowRing(false);
        Rename(usualName_, false);
    }
}

void WorkingMark::Turn() {
    for (int dot = 0; dot < kDots; ++dot) {
        if (DuiLib::CControlUI* const control = page_.Find(kRing + (L"_" + std::to_wstring(dot)))) {
            control->SetAttribute(L"bkcolor", dot == turns_ % kDots ? L"mark" : L"track");
        }
    }
    if (turns_++ == 0) {
        ShowRing(true);
        Rename(DuiLib::UICulture::GetInstance()->GetString(L"IDS_LUMI_ACC_ADDING"), true);
    }
}

void WorkingMark::Rename(const std::wstring& name, bool isSaid) {
    entry_.SetAttribute(L"acclive", isSaid ? L"true" : L"false");
    entry_.SetAttribute(L"accname", name);
}

void WorkingMark::ShowRing(bool show) {
    if (DuiLib::CControlUI* const ring = page_.Find(kRing)) {
        ring->SetVisible(show);
    }
}
