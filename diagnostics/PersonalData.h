#pragma once
// Takes the person out of a text that leaves the machine: names of users, computers and domains, profile folders,
// account numbers, mail addresses.
//
// Why: a report is sent to support, and nobody should have to read it through before. What is known to be personal is
// replaced; names of the user's own files in log lines are not known to be and stay.
// Pure logic, any thread.
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace diagnostics {

class PersonalData {
  public:
    // `names`: of the user and of files; empty ones and single letters are left out. `machines`: of computers and
    // domains; "pc.corp.example.com" counts with each of its parts but the last.
    explicit PersonalData(const std::vector<std::wstring>& names, const std::vector<std::wstring>& machines = {});

    // "C:\Users\anna\x" becomes "C:\Users\<user>\x", a name that stands alone "<name>", in any case of letters,
    // "S-1-5-21-1-2-3-1001" "S-1-5-21-<account>", "\\server\share" "\\<machine>\share" and "a@b.org" "<address>".
    std::wstring Mask(std::wstring_view text) const;

    // A part of the text: where it ends, and what stands for it.
    struct Masking {
        std::size_t end;
        std::wstring instead;
    };

  private:
    // `lower`: the text in lower case.
    std::optional<Masking> Name(std::wstring_view lower, std::size_t at) const;

    std::vector<std::wstring> names_;  // lower case
};

}  // namespace diagnostics
