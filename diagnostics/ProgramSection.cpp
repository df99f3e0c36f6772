#include <windows.h>

#include <d3d9.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "diagnostics/Sections.h"
#include "diagnostics/SignatureState.h"
#include "diagnostics/Version.h"
#include "preview/Direct3DSystem.h"
#include "preview/MediaFoundation.h"
#include "suite/common/ComReference.h"
#include "suite/common/Handle.h"
#include "suite/common/LocalFolder.h"
#include "suite/common/SystemLibrary.h"
#include "suite/common/Utf8.h"
#include "suite/product/MachineType.h"
#include "suite/product/SystemEnvironment.h"
#include "suite/registry/Registry.h"

namespace diagnostics {

namespace {

constinit suite::SystemLibrary versionDll(L"version.dll");
constinit suite::SystemFunction<decltype(&GetFileVersionInfoSizeW)> getFileVersionInfoSize(versionDll,
                                                                                           "GetFileVersionInfoSizeW");
constinit suite::SystemFunction<decltype(&GetFileVersionInfoW)> getFileVersionInfo(versionDll, "GetFileVersionInfoW");
constinit suite::SystemFunction<decltype(&VerQueryValueW)> verQueryValue(versionDll, "VerQueryValueW");
constinit suite::SystemLibrary ntdll(L"ntdll.dll");
constinit suite::SystemFunction<LONG(WINAPI*)(OSVERSIONINFOW*)> getVersion(ntdll, "RtlGetVersion");
constinit suite::SystemLibrary d3d9(L"d3d9.dll");

constexpr wchar_t kInstallKey[] = L"SOFTWARE\\Velmora\\Quillon\\Pixora";
constexpr wchar_t kInstanceMutex[] = L"PixoraUIMutex";
constexpr wchar_t kWindowClass[] = L"Camera";
constexpr const wchar_t* kNeededFiles[] = {
    L"DuiLib.dll",
    L"res\\layout\\Pixora.xml",
    L"res\\layout\\PixoraHomePage.xml",
    L"res\\layout\\PixoraDialogWnd.xml",
    L"res\\values\\en_US\\strings.xml",
    L"res\\drawable\\LumiCamera\\defaultImg.png",
    L"plugins\\lumi_camera_config.xml",
};
constexpr const wchar_t* kMediaLibraries[] = {L"mfplat.dll", L"mf.dll", L"mfreadwrite.dll"};
constexpr char kInstallAgain[] = "Install Pixora again.";

std::string VersionText(DWORD high, DWORD low) {
    return std::to_string(HIWORD(high)) + "." + std::to_string(LOWORD(high)) + "." + std::to_string(HIWORD(low)) + "." +
           std::to_string(LOWORD(low));
}

// "1.2.3.0"; empty when the file is missing or has no version.
std::string FileVersion(const std::wstring& path) {
    DWORD unused = 0;
    std::vector<char> data(getFileVersionInfoSize.CallOr(0, path.c_str(), &unused));
    VS_FIXEDFILEINFO* info = nullptr;
    UINT size = 0;
    if (data.empty() ||
        !getFileVersionInfo.CallOr(FALSE, path.c_str(), 0, static_cast<DWORD>(data.size()), data.data()) ||
        !verQueryValue.CallOr(FALSE, data.data(), L"\\", reinterpret_cast<void**>(&info), &size)) {
        return {};
    }
    return VersionText(info->dwFileVersionMS, info->dwFileVersionLS);
}

std::string SystemVersion() {
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    // The other calls lie to programs that are older than the system.
    if (getVersion(&version) != 0) {
        return "unknown";
    }
    return std::to_string(version.dwMajorVersion) + "." + std::to_string(version.dwMinorVersion) + "." +
           std::to_string(version.dwBuildNumber);
}

void AddFiles(Report& report, const std::wstring& folder, const PersonalData& personal) {
    report.Note("folder " + suite::ToUtf8(personal.Mask(folder)));
    const std::string version = FileVersion(folder + L"\\Pixora.exe");
    const std::string own = std::string(kVersion) + ".0";
    if (version.empty()) {
        report.Wrong("Pixora.exe is not beside this program", kInstallAgain);
    } else if (version != own) {
        report.Wrong("Pixora.exe has version " + version + ", this program " + own, kInstallAgain);
    } else {
        report.Fine("Pixora.exe " + version);
    }
    bool complete = true;
    for (const wchar_t* name : kNeededFiles) {
        if (GetFileAttributesW((folder + L"\\" + name).c_str()) == INVALID_FILE_ATTRIBUTES) {
            report.Wrong(suite::ToUtf8(name) + " is missing", kInstallAgain);
            complete = false;
        }
    }
    if (complete) {
        report.Fine("layouts, texts, pictures and libraries are there");
    }
    AddSignatures(report, folder);
}

void AddRunning(Report& report) {
    const suite::Handle instance(OpenMutexW(SYNCHRONIZE, FALSE, kInstanceMutex));
    const HWND window = FindWindowW(kWindowClass, nullptr);
    constexpr UINT kPatienceMs = 5000;
    DWORD_PTR unused = 0;
    if (!instance) {
        report.Note("Pixora is not running");
    } else if (!window) {
        report.Note("Pixora is running, without a window in this session so far");
    } else if (SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_ABORTIFHUNG, kPatienceMs, &unused)) {
        report.Fine("Pixora is running, and its window answers");
    } else {
        report.Wrong("Pixora is running, but its window does not answer",
                     "End Pixora.exe in the task manager; its log's last lines are below.");
    }
}

void AddInstallation(Report& report) {
    std::wstring version;
    DE::Registry::GetValue(HKEY_LOCAL_MACHINE, kInstallKey, L"Version", version, KEY_QUERY_VALUE);
    report.Note(version.empty() ? "not installed by the installer (a portable copy, or a build)"
                                : "installed version " + suite::ToUtf8(version));
    AddRunning(report);
}

// The libraries and functions of Media Foundation that this system lacks, by name.
std::set<std::string> MissingMediaFoundation() {
    std::set<std::string> missing;
    media_foundation::ForEachFunction([&](auto& function) {
        const std::string library = suite::ToUtf8(function.Library().Name());
        if (function.Library().Load() != ERROR_SUCCESS) {
            missing.insert(library);
        } else if (!function.Get()) {
            missing.insert(std::string(function.Name()) + " of " + library);
        }
    });
    return missing;
}

std::wstring SystemFolder() {
    wchar_t folder[MAX_PATH] = {};
    GetSystemDirectoryW(folder, MAX_PATH);
    return std::wstring(folder) + L"\\";
}

void AddMediaSystem(Report& report) {
    const std::set<std::string> missing = MissingMediaFoundation();
    for (const std::string& name : missing) {
        report.Wrong("this system has no " + name + ", so there is no camera picture",
                     "Install the Media Feature Pack of Windows.");
    }
    if (SUCCEEDED(media_foundation::Startup(MF_VERSION, MFSTARTUP_LITE))) {
        report.Fine("Media Foundation starts");
        for (const wchar_t* name : kMediaLibraries) {
            const std::string version = FileVersion(SystemFolder() + name);
            report.Note("its " + suite::ToUtf8(name) + (version.empty() ? " has no version" : " " + version));
        }
        media_foundation::Shutdown();
    } else if (missing.empty()) {
        report.Wrong("Media Foundation does not start, so there is no camera picture",
                     "Install the Media Feature Pack of Windows.");
    }
    const suite::ComReference<IDirect3D9> direct3d(direct3d_system::Create9(D3D_SDK_VERSION));
    D3DADAPTER_IDENTIFIER9 adapter{};
    if (direct3d && SUCCEEDED(direct3d->GetAdapterIdentifier(D3DADAPTER_DEFAULT, 0, &adapter))) {
        report.Fine("Direct3D 9 on " + std::string(adapter.Description));
        const LARGE_INTEGER& driver = adapter.DriverVersion;
        report.Note("graphics driver " + std::string(adapter.Driver) + " " +
                    VersionText(static_cast<DWORD>(driver.HighPart), driver.LowPart));
    } else {
        const std::string without = d3d9.Load() == ERROR_SUCCESS ? "" : " without d3d9.dll";
        report.Wrong("Direct3D 9 is not available" + without + ", so there is no camera picture",
                     "Install the graphics driver.");
    }
}

}  // namespace

void AddProgram(Report& report, const PersonalData& personal) {
    report.Section("Program");
    std::wstring folder = suite::ProgramPath();
    folder.erase(std::min(folder.find_last_of(L'\\'), folder.size()));
    AddFiles(report, folder, personal);
    AddInstallation(report);

    report.Section("System");
    report.Note("Windows " + SystemVersion());
    report.Note("display language " + suite::ToUtf8(SystemEnvironment::GetCurrentUserLanguage()));
    const std::string product = ProductAdapt::MachineType::GetProductName();
    report.Note("machine " + (product.empty() ? "without a product name" : product));
    AddMediaSystem(report);
}

}  // namespace diagnostics
