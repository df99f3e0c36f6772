#include "text/HtmlLayout.h"

#include <algorithm>
#include <string>

namespace DuiLib {
namespace {

// Longer stretches without a place to break are broken here, so that no measurement grows with the text.
constexpr size_t kLongestUnit = 1024;

bool IsBlank(wchar_t c) {
    return c == L' ' || c == L'\u3000';
}

// Half of a surrogate pair: texts are 16-bit units.
bool IsLowSurrogate(wchar_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}

// A mark that belongs to the character before it, or joins two.
bool IsJoined(wchar_t c) {
    return IsLowSurrogate(c) || (c >= 0x0300 && c <= 0x036F) || (c >= 0x0591 && c <= 0x05BD) ||
           (c >= 0x064B && c <= 0x065F) || (c >= 0x0E31 && c <= 0x0E3A && c != 0x0E32 && c != 0x0E33) ||
           (c >= 0x0E47 && c <= 0x0E4E) || c == 0x200D || (c >= 0xFE00 && c <= 0xFE0F);
}

bool IsEastAsian(wchar_t c) {
    return (c >= 0x2E80 && c <= 0x9FFF) || (c >= 0xF900 && c <= 0xFAFF) || (c >= 0xFF00 && c <= 0xFFEF) ||
           (c >= 0xD840 && c <= 0xD87F) || IsLowSurrogate(c);
}

bool Contains(std::wstring_view set, wchar_t c) {
    return set.find(c) != std::wstring_view::npos;
}

// Punctuation that may not begin a line, and that may not end one.
bool MayNotBegin(wchar_t c) {
    return Contains(
        L"!%),.:;?]}»’”…、。〉》」』】〕〗〞々〻ーぁぃぅぇぉっゃゅょァィゥェォッャュョ！％），．：；？］｝｡｣､", c);
}

bool MayNotEnd(wchar_t c) {
    return Contains(L"([{«‘“〈《「『【〔〖〝（［｛｢", c);
}

bool MayBreakBetween(wchar_t before, wchar_t after) {
    if (IsJoined(after) || before == 0x200D || MayNotBegin(after) || MayNotEnd(before) || IsBlank(after)) {
        return false;
    }
    if (IsBlank(before) || before == 0x200B) {
        return true;
    }
    if (before == L'-' || before == 0x2013) {
        return !(after >= L'0' && after <= L'9');
    }
    return IsEastAsian(before) || IsEastAsian(after);
}

}  // namespace

// Breaks one paragraph after another: the runs up to a line break, seen as one string.
class HtmlLayout::Breaker {
  public:
    Breaker(HtmlLayout& layout, int widthPx, bool wrap, Align align, bool rightToLeft, TextMeasurer& measurer)
        : layout_(layout),
          width_(widthPx),
          wrap_(wrap),
          align_(align),
          rightToLeft_(rightToLeft),
          measurer_(measurer) {}

    void Run() {
        const auto& runs = layout_.text_.runs;
        for (size_t i = 0; i < runs.size(); ++i) {
            for (size_t at = 0; at < runs[i].text.size(); ++at) {
                characters_ += runs[i].text[at];
                places_.push_back({i, at});
            }
            if (runs[i].lineBreak || i + 1 == runs.size()) {
                BreakParagraph(i);
                characters_.clear();
                places_.clear();
            }
        }
    }

  private:
    struct Place {
        size_t run, at;
    };

    void BreakParagraph(size_t lastRun) {
        size_t begin = 0;
        if (characters_.empty()) {
            FinishLine(0, 0, lastRun);
        }
        while (begin < characters_.size()) {
            const size_t end = wrap_ ? LineEnd(begin) : characters_.size();
            FinishLine(begin, end, lastRun);
            begin = end;
            // The blanks that the line broke at stand on no line.
            while (begin < characters_.size() && IsBlank(characters_[begin])) {
                ++begin;
            }
        }
    }

    // Where the line that starts at `begin` ends; at least one character further.
    size_t LineEnd(size_t begin) {
        size_t end = begin;
        int used = 0;
        while (end < characters_.size()) {
            size_t next = end + 1;
            while (next < characters_.size() && next - end < kLongestUnit &&
                   !MayBreakBetween(characters_[next - 1], characters_[next])) {
                ++next;
            }
            if (next < characters_.size() && IsLowSurrogate(characters_[next])) {
                ++next;
            }
            const size_t word = WithoutBlanks(end, next);
            const int wordWidth = Width(end, word);
            if (used + wordWidth > width_) {
                return end > begin ? end : FitCharacters(begin, next);
            }
            used += word == next ? wordWidth : Width(end, next);
            end = next;
        }
        return end;
    }

    // A word that is too wide: as much of it as fits.
    size_t FitCharacters(size_t begin, size_t wordEnd) {
        size_t fits = NextCharacter(begin);
        size_t low = fits, high = wordEnd;
        while (low < high) {
            const size_t middle = low + (high - low + 1) / 2;
            if (Width(begin, middle) <= width_) {
                low = middle;
            } else {
                high = middle - 1;
            }
        }
        while (low > fits && low < characters_.size() && IsJoined(characters_[low])) {
            --low;
        }
        return std::max(fits, low);
    }

    size_t NextCharacter(size_t at) const {
        ++at;
        while (at < characters_.size() && IsJoined(characters_[at])) {
            ++at;
        }
        return at;
    }

    size_t WithoutBlanks(size_t begin, size_t end) const {
        while (end > begin && IsBlank(characters_[end - 1])) {
            --end;
        }
        return end;
    }

    // Calls `visit(run, begin, length)` for each stretch of one run.
    template <typename Visit>
    void ForEachStretch(size_t begin, size_t end, Visit visit) const {
        while (begin < end) {
            const size_t run = places_[begin].run, at = places_[begin].at;
            size_t length = 1;
            while (begin + length < end && places_[begin + length].run == run) {
                ++length;
            }
            visit(run, at, length);
            begin += length;
        }
    }

    int StretchWidth(size_t run, size_t at, size_t length) {
        const HtmlRun& look = layout_.text_.runs[run];
        return measurer_.WidthPx(std::wstring_view(look.text).substr(at, length), look);
    }

    int Width(size_t begin, size_t end) {
        int width = 0;
        ForEachStretch(begin, end,
                       [&](size_t run, size_t at, size_t length) { width += StretchWidth(run, at, length); });
        return width;
    }

    void FinishLine(size_t begin, size_t end, size_t lastRun) {
        const size_t firstPiece = layout_.pieces_.size();
        const auto& runs = layout_.text_.runs;
        int x = 0, ascent = 0, below = 0;
        const auto makeRoomFor = [&](const HtmlRun& look) {
            const int runAscent = measurer_.AscentPx(look);
            ascent = std::max(ascent, runAscent);
            below = std::max(below, measurer_.HeightPx(look) - runAscent);
        };
        ForEachStretch(begin, wrap_ ? WithoutBlanks(begin, end) : end, [&](size_t run, size_t at, size_t length) {
            const int width = StretchWidth(run, at, length);
            makeRoomFor(runs[run]);
            layout_.pieces_.push_back({{x, 0, x + width, 0}, run, at, length});
            x += width;
        });
        if (firstPiece == layout_.pieces_.size()) {
            makeRoomFor(runs[lastRun]);
        }
        PlaceLine(firstPiece, x, ascent);
        top_ += ascent + below;
        layout_.size_.cx = std::max(layout_.size_.cx, x);
        layout_.size_.cy = top_;
    }

    void PlaceLine(size_t firstPiece, int lineWidth, int ascent) {
        const int spare = width_ - lineWidth;
        const int indent = align_ == Align::kNear ? 0 : align_ == Align::kFar ? spare : spare / 2;
        for (size_t i = firstPiece; i < layout_.pieces_.size(); ++i) {
            Piece& piece = layout_.pieces_[i];
            const HtmlRun& look = layout_.text_.runs[piece.run];
            Rect& r = piece.rectPx;
            r = r.Offset(indent, 0);
            if (rightToLeft_) {
                r = {width_ - r.right, 0, width_ - r.left, 0};
            }
            r.top = top_ + ascent - measurer_.AscentPx(look);
            r.bottom = r.top + measurer_.HeightPx(look);
        }
    }

    HtmlLayout& layout_;
    const int width_;
    const bool wrap_;
    const Align align_;
    const bool rightToLeft_;
    TextMeasurer& measurer_;
    std::wstring characters_;
    std::vector<Place> places_;
    int top_ = 0;
};

void HtmlLayout::Arrange(int widthPx, bool wrap, Align align, bool rightToLeft, TextMeasurer& measurer) {
    pieces_.clear();
    size_ = {};
    Breaker(*this, widthPx, wrap, align, rightToLeft, measurer).Run();
}

std::wstring_view HtmlLayout::TextOf(const Piece& piece) const {
    return std::wstring_view(text_.runs[piece.run].text).substr(piece.begin, piece.length);
}

int HtmlLayout::LinkAt(Point px) const {
    for (const Piece& piece : pieces_) {
        if (text_.runs[piece.run].link >= 0 && piece.rectPx.Contains(px)) {
            return text_.runs[piece.run].link;
        }
    }
    return -1;
}

std::vector<Rect> HtmlLayout::LinkRects(int link) const {
    std::vector<Rect> rects;
    for (const Piece& piece : pieces_) {
        if (link >= 0 && text_.runs[piece.run].link == link) {
            rects.push_back(piece.rectPx);
        }
    }
    return rects;
}

}  // namespace DuiLib
