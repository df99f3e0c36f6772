#pragma once
// How every window of the process looks: light, dark, or in the system's contrast colours, and how large its text is.
//
// The one owner of these settings. It asks the system when it is first used and whenever a window gets one of the
// messages that may mean a change (the paint manager calls Reread); only when something did change it tells the
// windows, which paint themselves anew. Nothing runs in between. Colours by name, and pictures that are special, stand
// in the program's file "themes.xml" of the resource folder:
//   <Color name="text" light="#FF1B1F27" dark="#FFF1F3F7" contrast="windowtext"/>
//       contrast: the colour of the system that stands for it in a contrast theme (see SystemColor); none draws
//       nothing. kind, on and over are for checks of the file and are passed over.
//   <Mask name="checked" contrast="windowtext"/>    a picture of drawable-contrast: its white becomes that colour, its
//       black the other one of the pair
//   <Upright name="checked"/>    a picture without a direction: reverse='true' does not mirror it
// Where the file cannot be read there is no dark theme, and names have the light values that the library knows; so has
// a name that the file lacks. Both are logged. Thread: UI thread.
#include <windows.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "DuiLib/Color.h"
#include "DuiLib/Export.h"
#include "DuiLib/SystemLook.h"

namespace DuiLib {

class IThemeListener;
struct PictureTheme;

class DUILIB_API UITheme {
  public:
    static UITheme* GetInstance();

    ThemeKind GetKind();
    bool IsContrast();
    // The size of text that the user asked the system for, in percent: 100 to 225.
    int GetTextPercent();
    // The face of the system's message font.
    const std::wstring& GetMessageFace();

    // Nothing for a name that nobody knows.
    std::optional<Color> FindColor(std::wstring_view name);
    // The colour as it is painted now; 0 paints nothing.
    DWORD Painted(const Color& color, ColorUse use);
    // The colour as a number, for arithmetic: the light or the dark one.
    DWORD Number(const Color& color);
    const PictureTheme& GetPictureTheme();
    // Tells the system whether the window's frame is dark.
    void ApplyToFrame(HWND window);

    // Asks the system again.
    void Reread();
    // Another resource folder: the file is read again when it is needed.
    void ForgetFile();
    // Asks others than the system from now on, and tells the windows of what that changes.
    void SetCalls(const SystemLookCalls& calls);

    // Borrowed; to be removed before it dies.
    void AddListener(IThemeListener* listener);
    void RemoveListener(IThemeListener* listener);

  private:
    UITheme();
    ~UITheme();
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace DuiLib
