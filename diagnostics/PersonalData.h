#pragma once
// Takes the person out of a text that leaves the machine: user and computer names, profile folders, account numbers.
//
// Why: a report is sent to support, and nobody should have to read it through before. What is known to be personal is
// replaced; names of the user's own files in log lines are not known to be and stay.
// Pure logic, any thread.
#include <string>
#include <string_view>
#include <vector>

namespace diagnostics {

class PersonalData {
  public:
    // `names`: of the user and the computer; empty ones and single letters are left out.
    explicit PersonalData(std::vector<std::wstring> names);

    // "C:\Users\anna\x" becomes "C:\Users\<user>\x", a name that stands alone "<name>", in any case of letters, and
    // "S-1-5-21-1-2-3-1001" "S-1-5-21-<account>".
    std::wstring Mask(std::wstring_view text) const;

  private:
    std::vector<std::wstring> names_;  // lower case
};

}  // namespace diagnostics
