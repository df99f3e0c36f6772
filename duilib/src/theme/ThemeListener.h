#pragma once
// Who is told of a change of looks: a window's paint manager. Thread: UI thread.

namespace DuiLib {

struct ThemeChange {
    bool look = false;      // colours or pictures
    bool text = false;      // fonts have to be made anew
    bool textSize = false;  // with `text`: the user chose another size
};

class IThemeListener {
  public:
    virtual void OnThemeChanged(const ThemeChange& change) = 0;

  protected:
    ~IThemeListener() = default;
};

}  // namespace DuiLib
