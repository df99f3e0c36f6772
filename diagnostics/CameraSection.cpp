#include <windows.h>

#include <mfapi.h>
#include <mfidl.h>

#include <cstdint>
#include <cstdio>
#include <set>
#include <string>

#include "diagnostics/Sections.h"
#include "preview/CameraAllowList.h"
#include "preview/CameraSystem.h"
#include "preview/MediaFoundation.h"
#include "suite/common/ComReference.h"
#include "suite/common/Utf8.h"
#include "suite/registry/Registry.h"

namespace diagnostics {

namespace {

constexpr wchar_t kConsent[] =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\CapabilityAccessManager\\ConsentStore\\webcam";
constexpr wchar_t kConsentOfDesktopPrograms[] = L"\\NonPackaged";

std::string ErrorNumber(HRESULT result) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(result));
    return text;
}

std::wstring TextOf(IMFActivate* device, const GUID& key) {
    WCHAR* text = nullptr;
    UINT32 length = 0;
    const HRESULT result = device->GetAllocatedString(key, &text, &length);
    std::wstring copy = SUCCEEDED(result) && text ? text : L"";
    CoTaskMemFree(text);
    return copy;
}

// Maker and model of "\\?\usb#vid_05c8&pid_0233#serial#{class}"; the rest tells one camera from another.
std::wstring MakerAndModel(const std::wstring& link) {
    const std::size_t first = link.find(L'#');
    const std::size_t second = link.find(L'#', first + 1);
    return first == std::wstring::npos || second == std::wstring::npos ? link : link.substr(0, second);
}

std::string MatchedEntry(const std::wstring& link) {
    for (const std::wstring& entry : preview::CameraAllowList()) {
        std::wstring upper = link;
        for (wchar_t& c : upper) {
            c = c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
        }
        if (upper.find(entry) != std::wstring::npos) {
            return suite::ToUtf8(entry);
        }
    }
    return {};
}

// True when the preview takes this one.
bool AddCamera(Report& report, IMFActivate* device, bool taken, const PersonalData& personal) {
    const std::wstring link = TextOf(device, MF_DEVSOURCE_ATTRIBUTE_SOURCE_TYPE_VIDCAP_SYMBOLIC_LINK);
    const std::string name = "\"" + suite::ToUtf8(personal.Mask(TextOf(device, MF_DEVSOURCE_ATTRIBUTE_FRIENDLY_NAME))) +
                             "\" " + suite::ToUtf8(MakerAndModel(link));
    if (link.empty()) {
        report.Note(name + ": refused, the system gives no link");
        return false;
    }
    if (!preview::IsAllowedCameraLink(link)) {
        report.Note(name + ": refused, its link names no maker of the list");
        return false;
    }
    report.Fine(name + ": accepted by " + MatchedEntry(link) + (taken ? ", but not taken: an earlier one is" : ""));
    return true;
}

void AddListed(Report& report, const PersonalData& personal) {
    suite::ComReference<IMFAttributes> attributes;
    IMFActivate** devices = nullptr;
    UINT32 count = 0;
    HRESULT result = media_foundation::CreateAttributes(attributes.Put(), 1);
    if (SUCCEEDED(result)) {
        attributes->SetGUID(MF_DEVSOURCE_ATTRIBUTE_SOURCE_TYPE, MF_DEVSOURCE_ATTRIBUTE_SOURCE_TYPE_VIDCAP_GUID);
        result = camera_system::EnumDeviceSources(attributes.Get(), &devices, &count);
    }
    report.Note("cameras: " + std::to_string(count));
    bool taken = false;
    for (UINT32 i = 0; i < count; ++i) {
        const suite::ComReference<IMFActivate> device(devices[i]);
        taken = AddCamera(report, device.Get(), taken, personal) || taken;
    }
    CoTaskMemFree(devices);
    if (FAILED(result)) {
        report.Wrong("the cameras cannot be listed, error " + ErrorNumber(result), "Restart the machine.");
    } else if (count == 0) {
        report.Wrong("the system knows no camera", "Connect the camera, or turn it on in the device manager.");
    } else if (!taken) {
        report.Wrong("no camera is of a maker that the effects work with", "Connect a camera of an accepted maker.");
    }
}

bool IsDenied(HKEY root, const std::wstring& path) {
    std::wstring value;
    return DE::Registry::GetValue(root, path.c_str(), L"Value", value, KEY_QUERY_VALUE) && value == L"Deny";
}

void AddPrivacy(Report& report) {
    constexpr char kRemedy[] = "Allow it in Windows' settings, under privacy and camera.";
    if (IsDenied(HKEY_LOCAL_MACHINE, kConsent)) {
        report.Wrong("Windows keeps every user's programs away from the camera", kRemedy);
    } else if (IsDenied(HKEY_CURRENT_USER, kConsent)) {
        report.Wrong("Windows keeps this user's programs away from the camera", kRemedy);
    } else if (IsDenied(HKEY_CURRENT_USER, std::wstring(kConsent) + kConsentOfDesktopPrograms)) {
        report.Wrong("Windows keeps this user's desktop programs away from the camera", kRemedy);
    } else {
        report.Fine("Windows' privacy settings let programs use the camera");
    }
}

}  // namespace

void AddCameras(Report& report, const PersonalData& personal) {
    report.Section("Cameras");
    AddPrivacy(report);
    std::string makers;
    std::set<std::wstring> named;
    for (const std::wstring& entry : preview::CameraAllowList()) {
        makers += named.insert(std::wstring(entry)).second ? " " + suite::ToUtf8(entry) : "";
    }
    report.Note("accepted are links that hold one of:" + makers);
    if (FAILED(media_foundation::Startup(MF_VERSION, MFSTARTUP_LITE))) {
        report.Wrong("the cameras cannot be listed without Media Foundation", "See \"System\".");
        return;
    }
    AddListed(report, personal);
    media_foundation::Shutdown();
}

}  // namespace diagnostics
