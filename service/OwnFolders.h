#pragma once
// The shared folder and the user's folder in it, made when missing, checked, and held while their files are changed.
//
// Why: see FolderRules.h. What cannot be trusted is not used at all, which one line of the log tells. Failures to make
// the folders are logged by FileUtil. Thread: any; an object belongs to one.
#include <string>

#include "suite/common/Handle.h"

namespace service {

class OwnFolders {
  public:
    enum class State {
        kUsable,
        kNoUserFolder,  // the shared one can be used
        kNoSharedFolder,
        kRefused,
    };

    // Empty: there is no user, and no folder.
    explicit OwnFolders(const std::wstring& userSid);

    State GetState() const { return state_; }

  private:
    State Open(const std::wstring& userSid);

    // None is exchanged for another one while this lives.
    suite::Handle shared_;
    suite::Handle user_;
    State state_;
};

}  // namespace service
