#pragma once
// Moves one user's backgrounds out of the layout of an older version, whose pictures lie in the shared folder itself.
//
// Why: the shared folder holds the pictures of all users, so each gets copies in a folder of their own; what lies in
// the shared folder stays for the others. Done once for each user, which a value of the settings key notes.
// Threads: UI thread; paints while the cover of a video is made.
#include <set>
#include <string>

#include "service/CustomImageGroup.h"

namespace service {

class OlderLayout {
  public:
    explicit OlderLayout(const std::wstring& userSid) : userSid_(userSid) {}

    // False when the shared folder cannot be looked at; nothing has changed then.
    [[nodiscard]] bool MoveIntoUserFolder() const;

  private:
    // `copied`: what lies in the user's folder now.
    bool CopyPictures(const std::set<std::wstring>& newer, std::set<std::wstring>& copied) const;
    void MoveRecord(CustomImageRecord& record, bool pictureIsCopied) const;

    const std::wstring userSid_;
};

}  // namespace service
