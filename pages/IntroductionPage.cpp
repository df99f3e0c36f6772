#include "pages/IntroductionPage.h"

#include "DuiLib/Theme.h"
#include "pages/IntroductionHeader.h"

namespace {

constexpr int kRestFont = 13;
constexpr int kSelectedFont = 23;
constexpr wchar_t kBackgroundOption[] = L"custom_background_option";
constexpr wchar_t kSightOption[] = L"correct_sight_option";
constexpr wchar_t kFocusOption[] = L"focus_person_option";

}  // namespace

IntroductionPage::IntroductionPage(DuiLib::CPaintManagerUI* paintManager)
    : PageBase(L"layout\\PixoraIntroductionPage.xml", PageNames::kIntroduction, paintManager),
      optionToContainer_{{kBackgroundOption, L"custom_background_container"},
                         {kSightOption, L"correct_sight_container"},
                         {kFocusOption, L"focus_person_container"}},
      optionToUnderline_{{kBackgroundOption, L"custom_background_underline"},
                         {kSightOption, L"correct_sight_underline"},
                         {kFocusOption, L"focus_person_underline"}} {}

void IntroductionPage::OnActivate() {
    if (initialised_) {
        return;
    }
    tabs_ = FindAs<DuiLib::CTabLayoutUI>(L"introduction_page_tab");
    LayOutHeader();
    SelectFirstTab();
    initialised_ = true;
}

void IntroductionPage::OnScaleChanged() {
    if (initialised_) {
        LayOutHeader();
    }
}

void IntroductionPage::LayOutHeader() {
    const auto widthOf = [this](const wchar_t* name) {
        const DuiLib::CControlUI* control = Find(name);
        return control ? TextWidth(control->GetText(), kSelectedFont) : 0;
    };
    const IntroductionHeaderLayout layout = LayOutIntroductionHeader(
        {widthOf(L"introduction_title_txt"), widthOf(kBackgroundOption), widthOf(kSightOption), widthOf(kFocusOption)},
        DuiLib::UITheme::GetInstance()->GetTextPercent() > 100);
    const auto setWidth = [this](const wchar_t* name, int widthDip) {
        if (DuiLib::CControlUI* control = Find(name)) {
            control->SetFixedWidth(widthDip);
        }
    };
    setWidth(L"introduction_title_txt", layout.titleWidth);
    setWidth(L"custom_background_layout", layout.firstWidth);
    setWidth(L"correct_sight_layout", layout.secondWidth);
    setWidth(L"focus_person_layout", layout.thirdWidth);
    if (DuiLib::CControlUI* group = Find(L"option_group_layout")) {
        group->SetPadding({layout.groupLeftPadding, 0, 0, 0});
    }
}

void IntroductionPage::SelectFirstTab() {
    auto* option = FindAs<DuiLib::COptionUI>(kBackgroundOption);
    if (!option) {
        return;
    }
    option->SetSelected(true);
    if (tabs_) {
        tabs_->SelectItemByName(optionToContainer_[kBackgroundOption]);
    }
    SelectOption(option);
}

void IntroductionPage::OnClick(DuiLib::TNotifyUI& msg) {
    const std::wstring& name = msg.sender->GetName();
    if (name == L"back_btn") {
        if (Owner()) {
            Owner()->ShowFirstPage();
        }
        return;
    }
    const auto container = optionToContainer_.find(name);
    if (container == optionToContainer_.end()) {
        return;
    }
    if (tabs_) {
        tabs_->SelectItemByName(container->second);
    }
    SelectOption(msg.sender);
}

void IntroductionPage::SelectOption(DuiLib::CControlUI* option) {
    for (const auto& [name, container] : optionToContainer_) {
        auto* other = FindAs<DuiLib::COptionUI>(name);
        if (other && other != option && other->GetFont() != kRestFont) {
            other->SetFont(kRestFont);
        }
    }
    if (auto* label = dynamic_cast<DuiLib::CLabelUI*>(option)) {
        label->SetFont(kSelectedFont);
    }

    if (DuiLib::CControlUI* previous = Find(currentUnderline_)) {
        previous->SetVisible(false);
    }
    currentUnderline_ = optionToUnderline_[option->GetName()];
    if (DuiLib::CControlUI* underline = Find(currentUnderline_)) {
        underline->SetVisible(true);
    }
}
