#include "diagnostics/Report.h"

namespace diagnostics {

void Report::Section(std::string_view title) {
    if (!body_.empty()) {
        body_ += '\n';
    }
    body_.append(title).append("\n");
}

void Report::Fine(std::string_view text) {
    Line("  ok     ", text);
}

void Report::Note(std::string_view text) {
    Line("         ", text);
}

void Report::Wrong(std::string_view text, std::string_view remedy) {
    Line("  WRONG  ", text);
    wrong_.push_back(std::string(text) + "\n    " + std::string(remedy));
}

std::string Report::Text() const {
    std::string text = body_ + "\nSummary\n";
    if (wrong_.empty()) {
        return text + "  Nothing wrong was found.\n";
    }
    for (std::size_t i = 0; i < wrong_.size(); ++i) {
        text += "  " + std::to_string(i + 1) + ". " + wrong_[i] + "\n";
    }
    return text;
}

void Report::Line(std::string_view mark, std::string_view text) {
    body_.append(mark).append(text).append("\n");
}

}  // namespace diagnostics
