#pragma once
// The folders that the camera service and every user's Pixora share: C:\ProgramData\Comms, which other programs of the
// suite use too, and LumiCamera in it. Checks that nobody prepared them for an attack, makes them with their rights,
// and deletes the pictures in them without following a link. One thread.
#include <string>

namespace setup {

class SharedFolders {
  public:
    // `programData`: the folder that both lie below.
    explicit SharedFolders(const std::wstring& programData);

    // False when one of them must not be used; `problem` then is its path.
    [[nodiscard]] bool Check(std::wstring& problem) const;
    // Checks, and makes what is missing. Comms keeps the rights that it has; LumiCamera, which an older Pixora made for
    // whoever started it first, is given to the administrators with the rights of here.
    [[nodiscard]] bool Make(std::wstring& problem) const;
    // All users' own backgrounds, by their names; folders that are empty then go too. What other programs put there
    // stays, and so does what lies behind a link.
    void RemovePictures() const;

  private:
    const std::wstring comms_, pictures_;
};

}  // namespace setup
