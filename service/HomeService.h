#pragma once
// The settings model behind the pages: one process-wide instance that turns the user's choices into registry values,
// usage events and messages to the camera service, and the registry and the service's messages into status snapshots.
//
// Why: pages touch neither the registry, nor the pipe, nor the folder of the user's own backgrounds. The model keeps no
// copy of a setting; every snapshot is read anew, because camera service and other programs write the same values.
// The operations are handed on: own backgrounds to OwnBackgrounds, the choice of a file to CustomFileChoice, messages
// to ServiceLink, snapshots to StatusReader. Threads: operations on the UI thread, where nothing else is said. Messages
// of the camera service arrive on the pipe client's thread and call the status and reset observers there, so a page
// hands itself over to the UI thread. Failures are logged; nothing throws but for want of memory.
#include <windows.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "service/CallbackSlot.h"
#include "service/EffectTable.h"
#include "service/GlobalUtils.h"
#include "service/OwnBackgrounds.h"
#include "service/ReportWorkers.h"
#include "service/StatusReader.h"
#include "service/link/ServiceLink.h"

class HomeService {
  public:
    // UI thread or the pipe client's.
    using StatusObserver = std::function<void(GlobalUtils::FeatureStatusTuple)>;
    // The pipe client's thread.
    using ServiceResetObserver = std::function<void()>;
    // Kept for compatibility: the model publishes message kinds on the hub and calls it for none.
    using MessageKindCallback = std::function<void(GlobalUtils::MessageBoxKind)>;
    // Item name, file path, whether it is a video; gives the item's index in the gallery, -1 for none.
    using AddCustomItemCallback = std::function<std::int32_t(const std::wstring&, const wchar_t*, bool)>;
    // Index, item name; whether the gallery removed it.
    using RemoveCustomItemCallback = std::function<bool(std::int32_t, const std::wstring&)>;

    // The process's own. Created on the first call, on any thread; destroyed when the process ends.
    static HomeService* GetInstance();

    // Pages and windows use the process's own; others are for tests.
    HomeService();
    ~HomeService() = default;
    HomeService(const HomeService&) = delete;
    HomeService& operator=(const HomeService&) = delete;

    // Each replaces the callback before it, which does not run on another thread any more when the setter returns; an
    // empty one takes it away. REQUIRES: a callback never waits for the UI thread.
    void SetStatusObserver(StatusObserver observer);
    void SetServiceResetObserver(ServiceResetObserver observer);
    void SetMessageCallback(MessageKindCallback callback);
    void SetAddCustomItem(AddCustomItemCallback callback);
    void SetRemoveCustomItem(RemoveCustomItemCallback callback);

    // The snapshot is complete whatever the key lacks: a switch that is missing has the state of the one read before
    // it (camera, beauty, sight, focus; 0 before the first), a level that is missing that of the level before it
    // (smooth, white, eye, thin; 5 before the first). Kept. Any thread.
    GlobalUtils::FeatureStatusTuple GetFeatureStatus();
    // Gives the status observer a snapshot; without an observer nothing is read. Any thread.
    void NotifyStatus();
    // Any thread.
    std::wstring GetBackgroundImagePath() const;
    // 1 when the device has a camera switch of its own. Any thread.
    std::int32_t IsSupportHardSwitch() const;

    // Every setter writes the registry, then reports, then tells the camera service, as the effect's row of EffectTable
    // has it. Anything but 1 counts as off.
    void SetEffect(service::EffectId effect, std::int32_t on);
    void SetCameraSwitch(std::int32_t on);
    void SetCorrectSight(std::int32_t on);
    void SetFocusPerson(std::int32_t on);
    // Beauty is not told: the camera service finds it in the registry.
    void SetBeautyPerson(std::int32_t on);
    void SetBeautyLevel(GlobalUtils::BeautyKind kind, std::int32_t level);
    void SetBeautySmooth(std::int32_t level);
    void SetBeautyWhite(std::int32_t level);
    void SetBeautyEye(std::int32_t level);
    void SetBeautyThin(std::int32_t level);

    // By the control's name; nothing happens for a control that stands for no feature.
    void SelectBackground(const std::wstring& controlName);
    // By the feature's name; one without a number counts as no background.
    void ApplyBackground(const std::wstring& featureName);

    // Loads the user's own backgrounds and hands them to the gallery; items whose picture is gone are deleted. Needs
    // the callbacks.
    void InitCustomImage();
    // Moves an older layout, whose pictures lie in the shared folder itself, into the user's folder; once for each
    // user. False when the shared folder cannot be looked at.
    bool SyncCustomImg();
    // True when there are as many custom backgrounds as there may be.
    bool IsCustomFull() const;
    // Asks for a file with the system's dialog and checks it. True: it can be added, and the camera service has been
    // told already. False: nothing was chosen, or it was refused, and the kind of message published.
    bool ChooseCustomFile(HWND owner, std::wstring& path);
    // As ChooseCustomFile, for a file that was dropped on the window.
    bool AcceptDroppedFile(const std::wstring& path);
    // Makes the file's picture in the user's folder, hands it to the gallery and chooses it. False when the picture
    // cannot be made, which is published; then nothing has changed. The file itself is only read.
    bool AddCustomBackground(const std::wstring& sourcePath);
    // Whether the file is one that the camera service can use; the kind of message is published when not.
    static bool CheckImageFile(const std::wstring& path);
    static bool CheckVideoFile(const std::wstring& path);
    // False when there is no such item, or its video is gone; the item is then deleted, and kBackgroundGone published.
    bool SelectCustomBackground(const std::wstring& itemName);
    // Takes the item out of gallery, folder and registry; the user's own file stays. False when there is no such item.
    bool DeleteCustomBackground(std::wstring itemName);
    static bool CopyFileToDest(const std::wstring& source, const std::wstring& destination);
    // Of the user of the interactive session; empty when it cannot be had.
    static std::wstring GetUserSidString();

    // Tells the camera service that settings changed. Any thread.
    void SendSignal();
    // Tells the switch-state receiver the camera switch, 1 or 0. Any thread.
    void PostDialogValue(std::int32_t value);
    // A message of the camera service. The pipe client's thread.
    void ServiceMessageHandler(const TagIPCMessageItem& item);

    // Queues one usage event; an empty text is none.
    static void ReportUsage(const std::string& eventId, const std::string& text);
    // Queues the beauty event with the values that the registry holds now. Any thread.
    static void ReportBeauty();

    // One round of watching the settings key, on a worker thread: waits for the next change, hands the callback to the
    // UI thread, and publishes kAlgorithmNotReady on this thread when that is what the key says. True when it waited
    // and the callback was handed over. Does not tell changes between two rounds, and may return at once for none:
    // SettingsWatcher makes a sound loop of it.
    static bool WatchSettingsOnce(const std::function<void()>& callback);

    // The parts behind the operations.
    service::OwnBackgrounds& Backgrounds() { return ownBackgrounds_; }
    const service::StatusReader& Status() const { return statusReader_; }

  private:
    // A file of the user's own was chosen.
    void TellChosen();
    void InitIPCMessageClient();
    // What changed is in the registry already.
    void StartBeautyReport();

    // Constant after construction.
    std::map<std::wstring, std::wstring> btnToFeature_;
    std::map<std::wstring, std::wstring> featureToBtn_;

    // UI thread; filled by the first choice of a background.
    std::map<std::wstring, std::int32_t> featureToIndex_;

    CallbackSlot<void(GlobalUtils::FeatureStatusTuple)> statusObserver_;
    CallbackSlot<void()> serviceResetObserver_;
    CallbackSlot<void(GlobalUtils::MessageBoxKind)> messageKind_;

    service::StatusReader statusReader_;
    service::OwnBackgrounds ownBackgrounds_;
    ReportWorkers beautyReports_;
    service::ServiceLink link_;  // the last: it calls back until it is gone
};
