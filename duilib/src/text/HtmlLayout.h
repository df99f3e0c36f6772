#pragma once
// Breaks marked-up text into lines and says where each piece stands, and which link is at a point. Pure logic: widths
// come from a measurer.
//
// Lines break after blanks, after hyphens, and between characters of East Asian scripts, but not before closing or
// after opening punctuation; a word that is wider than the line is broken where it must be, never within a character.
// Blanks at a line's end hang. In right-to-left text the pieces of a line run from the right, and near is the right.
#include <string_view>
#include <vector>

#include "DuiLib/Geometry.h"
#include "text/HtmlParser.h"

namespace DuiLib {

class TextMeasurer {
  public:
    virtual int WidthPx(std::wstring_view text, const HtmlRun& look) = 0;
    virtual int AscentPx(const HtmlRun& look) = 0;
    virtual int HeightPx(const HtmlRun& look) = 0;

  protected:
    ~TextMeasurer() = default;
};

class HtmlLayout {
  public:
    enum class Align { kNear, kCenter, kFar };

    // A piece of a run on one line; coordinates from the top left of the box.
    struct Piece {
        Rect rectPx;
        size_t run = 0;
        size_t begin = 0, length = 0;  // within the run's text
    };

    explicit HtmlLayout(HtmlText text) : text_(std::move(text)) {}

    // Arranges the text in a box of that width; `wrap` false: only its own line breaks count.
    void Arrange(int widthPx, bool wrap, Align align, bool rightToLeft, TextMeasurer& measurer);

    const HtmlText& Text() const { return text_; }
    Size SizePx() const { return size_; }  // of the lines; their width may be less than the box's
    const std::vector<Piece>& Pieces() const { return pieces_; }
    std::wstring_view TextOf(const Piece& piece) const;
    int LinkAt(Point px) const;  // -1: none
    std::vector<Rect> LinkRects(int link) const;

  private:
    class Breaker;

    HtmlText text_;
    std::vector<Piece> pieces_;
    Size size_;
};

}  // namespace DuiLib
