#pragma once
// What the diagnostics program found, section by section, and how it reads as text.
//
// Why apart: sections only state facts and judge them; counting, layout and the summary with what to do are one place.
// Pure logic; texts are UTF-8. Threads: one.
#include <string>
#include <string_view>
#include <vector>

namespace diagnostics {

class Report {
  public:
    void Section(std::string_view title);
    // As it should be; worth knowing; wrong, with what to do about it.
    void Fine(std::string_view text);
    void Note(std::string_view text);
    void Wrong(std::string_view text, std::string_view remedy);

    int WrongCount() const { return static_cast<int>(wrong_.size()); }
    // The whole report; the summary is last, where a console shows it.
    std::string Text() const;

  private:
    void Line(std::string_view mark, std::string_view text);

    std::string body_;
    std::vector<std::string> wrong_;
};

}  // namespace diagnostics
