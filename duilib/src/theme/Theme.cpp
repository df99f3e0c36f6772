#include "DuiLib/Theme.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "markup/ResourceFiles.h"
#include "theme/ColorTable.h"
#include "theme/PictureTheme.h"
#include "theme/SystemLook.h"
#include "theme/ThemeFile.h"
#include "theme/ThemeListener.h"

namespace DuiLib {
namespace {

constexpr DWORD kUseImmersiveDarkMode = 20;  // an attribute of frames that the compiler's headers do not know
// A ground is dark below this luminance, the geometric middle between black and white in contrast.
constexpr double kMiddleLuminance = 0.179;

double Luminance(std::uint32_t argb) {
    const auto linear = [argb](int shift) {
        const double channel = ((argb >> shift) & 0xFF) / 255.0;
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(16) + 0.7152 * linear(8) + 0.0722 * linear(0);
}

}  // namespace

class UITheme::Impl {
  public:
    const SystemLook& Look() {
        if (!asked_) {
            asked_ = true;
            look_ = ReadSystemLook(calls_);
        }
        return look_;
    }

    void ReadFile() {
        if (fileAsked_) {
            return;
        }
        fileAsked_ = true;
        table_.Restart();
        file_ = {};
        fileRead_ = ReadThemeFile(ResourceFile(L"themes.xml"), table_, file_);
        MakePictureTheme();
    }

    ThemeKind Kind() {
        ReadFile();
        return Look().highContrast        ? ThemeKind::kContrast
               : Look().dark && fileRead_ ? ThemeKind::kDark
                                          : ThemeKind::kLight;
    }

    // Whether pictures, and colours that are numbers, are those of the dark theme.
    bool IsDark() {
        return Kind() == ThemeKind::kContrast ? Luminance(Of(SystemColor::kWindow)) < kMiddleLuminance
                                              : Kind() == ThemeKind::kDark;
    }

    std::uint32_t Of(SystemColor color) { return Look().colors[static_cast<std::size_t>(color)]; }

    void MakePictureTheme() {
        const bool contrast = Kind() == ThemeKind::kContrast;
        pictures_ = {};
        if (IsDark()) {
            pictures_.families.insert(pictures_.families.begin(), L"drawable-dark");
        }
        if (contrast) {
            pictures_.maskFamily = L"drawable-contrast";
            pictures_.families.insert(pictures_.families.begin(), pictures_.maskFamily);
            for (const auto& [name, color] : file_.masks) {
                pictures_.masks.push_back({name, ColorsOf(color)});
            }
            pictures_.otherMasks = ColorsOf(SystemColor::kWindowText);
        }
        pictures_.upright = file_.upright;
    }

    // Tells the windows what is different from before.
    void Change(const SystemLook& now) {
        const ThemeKind kindBefore = Kind();
        const SystemLook before = std::exchange(look_, now);
        ThemeChange change;
        change.look = Kind() != kindBefore || now.colors != before.colors;
        change.text = now.HasOtherText(before);
        change.textSize = now.textPercent != before.textPercent;
        if (change.look) {
            MakePictureTheme();
        }
        if (!change.look && !change.text) {
            return;
        }
        // A window that is told may close others.
        const std::vector<IThemeListener*> listeners = listeners_;
        for (IThemeListener* listener : listeners) {
            if (std::find(listeners_.begin(), listeners_.end(), listener) != listeners_.end()) {
                listener->OnThemeChanged(change);
            }
        }
    }

    SystemLookCalls calls_ = DefaultLookCalls();
    bool asked_ = false;
    SystemLook look_;
    ColorTable table_;
    ThemeFile file_;
    bool fileAsked_ = false, fileRead_ = false;
    PictureTheme pictures_;
    std::vector<IThemeListener*> listeners_;  // borrowed

  private:
    MaskColors ColorsOf(SystemColor white) { return {Of(white), Of(OtherOfPair(white))}; }
};

UITheme::UITheme() : impl_(std::make_unique<Impl>()) {}
UITheme::~UITheme() = default;

UITheme* UITheme::GetInstance() {
    static UITheme instance;
    return &instance;
}

ThemeKind UITheme::GetKind() {
    return impl_->Kind();
}

bool UITheme::IsContrast() {
    return GetKind() == ThemeKind::kContrast;
}

int UITheme::GetTextPercent() {
    return impl_->Look().textPercent;
}

const std::wstring& UITheme::GetMessageFace() {
    return impl_->Look().messageFace;
}

std::optional<Color> UITheme::FindColor(std::wstring_view name) {
    impl_->ReadFile();
    return impl_->table_.Find(name);
}

DWORD UITheme::Painted(const Color& color, ColorUse use) {
    return impl_->table_.Painted(color, use, impl_->Kind(), impl_->Look().colors);
}

DWORD UITheme::Number(const Color& color) {
    return impl_->table_.Number(color, impl_->IsDark());
}

const PictureTheme& UITheme::GetPictureTheme() {
    impl_->ReadFile();
    return impl_->pictures_;
}

void UITheme::ApplyToFrame(HWND window) {
    // A contrast theme draws frames of its own. Systems that do not know the attribute refuse it.
    const BOOL dark = GetKind() == ThemeKind::kDark;
    impl_->calls_.dwmSetWindowAttribute(window, kUseImmersiveDarkMode, &dark, sizeof(dark));
}

void UITheme::Reread() {
    if (impl_->asked_) {
        impl_->Change(ReadSystemLook(impl_->calls_));
    }
}

void UITheme::ForgetFile() {
    impl_->fileAsked_ = false;
}

void UITheme::SetCalls(const SystemLookCalls& calls) {
    impl_->calls_ = calls;
    Reread();
}

void UITheme::AddListener(IThemeListener* listener) {
    impl_->listeners_.push_back(listener);
}

void UITheme::RemoveListener(IThemeListener* listener) {
    std::erase(impl_->listeners_, listener);
}

}  // namespace DuiLib
