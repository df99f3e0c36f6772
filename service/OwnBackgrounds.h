#pragma once
// The user's own backgrounds: keeps list, gallery, folder and registry in step, one user at a time.
//
// Why: pages and windows know items by name only; what is stored where, and in which order, is known here. A file is
// made before it is listed and the list is written before the program goes on, so that a program that is ended leaves
// nothing half done. Making the pictures is the pictures' business, choosing a file CustomFileChoice's.
// Threads: UI thread; the two callbacks are called there. Failures are logged or published as message kinds.
#include <cstdint>
#include <string>

#include "service/CallbackSlot.h"
#include "service/OwnBackgroundList.h"

namespace service {

class OwnBackgrounds {
  public:
    using AddToGallery = CallbackSlot<std::int32_t(const std::wstring&, const wchar_t*, bool)>;
    using RemoveFromGallery = CallbackSlot<bool(std::int32_t, const std::wstring&)>;

    // See HomeService for what the callbacks are given.
    void SetAddToGallery(AddToGallery::Function callback);
    void SetRemoveFromGallery(RemoveFromGallery::Function callback);

    // As the operations of HomeService of these meanings.
    void Load(const std::wstring& userSid);
    bool MoveOlderLayout() const;
    bool Add(const std::wstring& sourcePath);
    bool Select(const std::wstring& itemName);
    bool Delete(std::wstring itemName);

    const OwnBackgroundList& List() const { return list_; }
    // Takes the place of what was loaded; gallery, folder and registry stay as they are.
    void SetList(OwnBackgroundList list);

  private:
    // False when the folders cannot be had or not be trusted; the list is then not loaded, and must not be written.
    bool LoadList();
    void ShowStoredItems();
    // Takes record, cell and the picture's entry away; gives the picture's path, empty when it had none. Files and
    // registry stay as they are.
    std::wstring Forget(const std::wstring& itemName);

    AddToGallery addToGallery_;
    RemoveFromGallery removeFromGallery_;
    std::wstring userSid_;  // empty before Load, or when the user cannot be told
    bool isLoaded_ = false;
    OwnBackgroundList list_;
};

}  // namespace service
