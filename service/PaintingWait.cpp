#include "service/PaintingWait.h"

#include <windows.h>

#include <objbase.h>

#include <exception>
#include <thread>

#include "suite/common/Handle.h"
#include "suite/logger/QxLogger.h"

namespace {

constexpr wchar_t kFunction[] = L"RunWhilePainting";

bool RunInApartment(const std::function<bool()>& work) {
    const HRESULT com = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
    bool result = false;
    try {
        result = work();
    } catch (const std::exception& error) {
        LogLine(4, kFunction, L"The work ended with an exception: ", error.what());
    }
    if (SUCCEEDED(com)) {
        CoUninitialize();
    }
    return result;
}

void PaintUntil(HANDLE done) {
    while (MsgWaitForMultipleObjectsEx(1, &done, INFINITE, QS_PAINT | QS_SENDMESSAGE, MWMO_INPUTAVAILABLE) ==
           WAIT_OBJECT_0 + 1) {
        MSG message;
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE | PM_QS_PAINT | PM_QS_SENDMESSAGE)) {
            DispatchMessageW(&message);
        }
    }
}

}  // namespace

bool RunWhilePainting(const std::function<bool()>& work) {
    const suite::Handle done(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    if (!done) {
        return RunInApartment(work);
    }
    bool result = false;
    try {
        std::thread worker([&] {
            result = RunInApartment(work);
            SetEvent(done.Get());
        });
        PaintUntil(done.Get());
        worker.join();
    } catch (const std::exception& error) {
        LogLine(4, kFunction, L"No thread for the work: ", error.what());
    }
    return result;
}
