#include "pages/SwitchImages.h"

std::wstring SwitchImageOf(SwitchImage image) {
    switch (image) {
        case SwitchImage::kOn:
            return L"file='drawable/LumiCamera/Switch_Selected_Enabled@2x.png' reverse='true'";
        case SwitchImage::kOnHover:
            return L"file='drawable/LumiCamera/Switch_Selected_Hover@2x.png' reverse='true'";
        case SwitchImage::kOff:
            return L"file='drawable/LumiCamera/Switch_Unselected_Enabled@2x.png' reverse='true'";
        case SwitchImage::kOffHover:
            return L"file='drawable/LumiCamera/Switch_Unselected_Hover@2x.png' reverse='true'";
        case SwitchImage::kUnchecked:
            return L"file='drawable/LumiCamera/unchecked.png' reverse='true'";
        case SwitchImage::kChecked:
            return L"file='drawable/LumiCamera/checked.png' reverse='true'";
        case SwitchImage::kSpareOn:
        case SwitchImage::kSpareOff:
            break;
    }
    return {};
}
