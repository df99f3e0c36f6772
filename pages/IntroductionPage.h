#pragma once
// Explains the three main effects, one tab each. The tab that was chosen last is shown when the page is opened again.
// Thread: UI thread.
#include <map>
#include <string>

#include "DuiLib/OptionUI.h"
#include "pages/PageBase.h"

class IntroductionPage : public PageBase {
  public:
    explicit IntroductionPage(DuiLib::CPaintManagerUI* paintManager);

    void OnScaleChanged() override;

  protected:
    void OnActivate() override;
    void OnClick(DuiLib::TNotifyUI& msg) override;

  private:
    void LayOutHeader();
    void SelectFirstTab();
    // Restyles the headers for the selected one: its font, and the line under it.
    void SelectOption(DuiLib::CControlUI* option);

    DuiLib::CTabLayoutUI* tabs_ = nullptr;  // borrowed from the page's tree
    std::map<std::wstring, std::wstring> optionToContainer_;
    std::map<std::wstring, std::wstring> optionToUnderline_;
    std::wstring currentUnderline_;
    bool initialised_ = false;
};
