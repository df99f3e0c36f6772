// The process that tests of the model's end start. It uses the process-wide model, on a registry of its own, and
// returns from its entry:
//   service_helper                 0 when the model is one and the same
//   service_helper drag            moves a slider many times and ends at once
//   service_helper switch          turns the camera switch on and ends at once
//   service_helper check FILE      as a video background: 0 when it is accepted, else 100 and the kind of message
//   service_helper add FILE        adds that file as background again and again, until it is ended
//   service_helper hold FOLDER NAME   holds each new file of the folder for a moment, until it is ended
//   service_helper churn FILE      deletes all backgrounds and adds that file five times, again and again
#include <windows.h>

#include <objbase.h>

#include <string>

#include "service/HomeService.h"
#include "service/KindNotifier.h"
#include "service/pictures/CustomItemNames.h"
#include "suite/logger/QxLogger.h"
#include "tests/windows/service/FileHolder.h"

namespace CustomItemNames = pictures::CustomItemNames;

int wmain(int argc, wchar_t** argv) {
    QxLogger::GetInstance()->InitProcessLogger();
    if (argc > 3 && std::wstring(argv[1]) == L"hold") {
        HoldNewFiles(argv[2], argv[3]);
        return 3;
    }
    HKEY registry = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, L"SOFTWARE\\PixoraServiceHelper", 0, nullptr, REG_OPTION_VOLATILE,
                        KEY_ALL_ACCESS, nullptr, &registry, nullptr) != ERROR_SUCCESS ||
        RegOverridePredefKey(HKEY_CURRENT_USER, registry) != ERROR_SUCCESS) {
        return 2;
    }
    HomeService* const model = HomeService::GetInstance();
    const std::wstring work = argc > 1 ? argv[1] : L"";
    if (work == L"drag") {
        for (int level = 0; level < 300; ++level) {
            model->SetBeautyEye(level);
        }
    }
    if (work == L"switch") {
        model->SetCameraSwitch(1);
    }
    if (work == L"check" && argc > 2) {
        int told = -1;
        KindNotifier<GlobalUtils::MessageBoxKind>::GetInstance().Subscribe(
            GlobalUtils::kMessageBoxChannel,
            [&told](GlobalUtils::MessageBoxKind& kind) { told = static_cast<int>(kind); });
        const bool accepted = HomeService::CheckVideoFile(argv[2]);
        // Not by the usual way: a decoder that is still busy with the file would be in it.
        TerminateProcess(GetCurrentProcess(), accepted ? 0 : static_cast<UINT>(100 + told));
    }
    if (work == L"add" && argc > 2) {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        model->InitCustomImage();
        for (;;) {
            model->AddCustomBackground(argv[2]);
            if (model->IsCustomFull()) {
                model->DeleteCustomBackground(L"custom_background_btn_7");
            }
        }
    }
    if (work == L"churn" && argc > 2) {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        model->InitCustomImage();
        for (;;) {
            for (int i = 0; i < CustomItemNames::kLimit; ++i) {
                model->DeleteCustomBackground(L"custom_background_btn_" + std::to_wstring(i));
            }
            for (int i = 0; i < 5; ++i) {
                model->AddCustomBackground(argv[2]);
            }
        }
    }
    model->SetStatusObserver([](const GlobalUtils::FeatureStatusTuple&) {});
    return model == HomeService::GetInstance() ? 0 : 1;
}
