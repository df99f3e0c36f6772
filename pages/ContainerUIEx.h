#pragma once
// A container that tells the page when the pointer comes onto the whole of it and leaves it: a gallery item shows its
// delete button meanwhile. Sends "mouseenter" and "mouseleave" with itself as sender.
// Thread: UI thread.
#include "DuiLib/ContainerUI.h"

class CContainerUIEx : public DuiLib::CContainerUI {
  public:
    const wchar_t* GetClass() const override { return L"ContainerEx"; }
    void DoEvent(const DuiLib::TEventUI& event) override;
};
