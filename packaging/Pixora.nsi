; The installer of Pixora, for all users of the machine. Made by packaging/make, which gives VERSION and the file lists.
;
; PixoraSetup-<version>.exe [/S]            installs, or replaces an installed version in place
; UninstallPixora.exe [/S] [/REMOVEDATA]    removes the program; with /REMOVEDATA also what users made with it
; Exit codes: 0 done, 1 ended by the user, 2 a step failed, 3 Pixora runs and cannot be closed.
;
; The folder is fixed: the suite's programs share it, and paths in the users' settings name it. The state of the camera
; driver and of its algorithm is written by the driver's own installation and never touched here.
Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
ManifestDPIAware true
ManifestSupportedOS all
RequestExecutionLevel admin

!include LogicLib.nsh
!include FileFunc.nsh
!include WinVer.nsh
!include WinMessages.nsh
!include nsDialogs.nsh
!include MUI2.nsh
!include "${FILE_LISTS}"

!define PROGRAM "Pixora"
!define PUBLISHER "Velmora"
!define WINDOW_CLASS "Camera"
!define UNINSTALLER "UninstallPixora.exe"
!define SUITE_KEY "Software\Velmora\Quillon"
!define PROGRAM_KEY "${SUITE_KEY}\Pixora"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Pixora"
!define SETTINGS_KEY "SOFTWARE\Velmora\Quillon\LumiCamera"
; Everybody may read and make folders here; what somebody makes is theirs; administrators and the system own the rest.
!define COMMS_RIGHTS "D:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;0x1200a9;;;BU)(A;;0x4;;;BU)(A;OICIIO;GA;;;CO)"
!define EXIT_RUNNING 3

Name "${PROGRAM}"
OutFile "${TARGET}"
InstallDir "$PROGRAMFILES64\Velmora\Quillon"
BrandingText "${PROGRAM} ${VERSION}"
VIProductVersion "${VERSION_NUMBERS}"
VIAddVersionKey /LANG=0 "ProductName" "${PROGRAM}"
VIAddVersionKey /LANG=0 "ProductVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "CompanyName" "${PUBLISHER}"
VIAddVersionKey /LANG=0 "FileDescription" "${PROGRAM} setup"
VIAddVersionKey /LANG=0 "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "LegalCopyright" "${PUBLISHER}"

Var removeData
Var upgrading
Var removeDataBox

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_WELCOMEFINISHPAGE_BITMAP "${PICTURE}"
!define MUI_ABORTWARNING
!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
UninstPage custom un.AskWhatToRemove un.TakeAnswer
!insertmacro MUI_UNPAGE_INSTFILES

; The first language counts where none fits the user's.
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "Arabic"
!insertmacro MUI_LANGUAGE "French"
!insertmacro MUI_LANGUAGE "German"
!insertmacro MUI_LANGUAGE "Italian"
!insertmacro MUI_LANGUAGE "Japanese"
!insertmacro MUI_LANGUAGE "Korean"
!insertmacro MUI_LANGUAGE "PortugueseBR"
!insertmacro MUI_LANGUAGE "Russian"
!insertmacro MUI_LANGUAGE "SimpChinese"
!insertmacro MUI_LANGUAGE "Spanish"
!insertmacro MUI_LANGUAGE "TradChinese"
!insertmacro MUI_LANGUAGE "Turkish"
!include "Texts.nsh"

; CloseProgram: asks a running Pixora of this folder to close as its close button does, and waits for it. Ends the
; installation with EXIT_RUNNING when the program's file stays in use (it hangs, or runs in another user's session).
!macro CloseFunctions un
Function ${un}AskToClose
    StrCpy $R0 0
    ${Do}
        FindWindow $R0 "${WINDOW_CLASS}" "" 0 $R0
        ${If} $R0 = 0
            ${Break}
        ${EndIf}
        System::Call 'user32::GetWindowThreadProcessId(p R0, *i .R1)'
        ; SYNCHRONIZE and PROCESS_QUERY_LIMITED_INFORMATION
        System::Call 'kernel32::OpenProcess(i 0x101000, i 0, i R1) p .R2'
        ${If} $R2 = 0
            ${Continue}
        ${EndIf}
        StrCpy $R3 ""
        System::Call 'kernel32::QueryFullProcessImageNameW(p R2, i 0, w .R3, *i ${NSIS_MAX_STRLEN})'
        ; Other programs may have a window class of this name.
        StrCpy $R4 1
        ${If} $R3 == "$INSTDIR\Pixora.exe"
            DetailPrint "$R3"
            System::Call 'user32::PostMessageW(p R0, i ${WM_SYSCOMMAND}, p 0xF060, p 0)'
            System::Call 'kernel32::WaitForSingleObject(p R2, i 10000) i .R4'
        ${EndIf}
        System::Call 'kernel32::CloseHandle(p R2)'
        ${If} $R4 = 0
            StrCpy $R0 0
        ${EndIf}
    ${Loop}
FunctionEnd

Function ${un}CloseProgram
    ${DoWhile} ${FileExists} "$INSTDIR\Pixora.exe"
        Call ${un}AskToClose
        ClearErrors
        FileOpen $R0 "$INSTDIR\Pixora.exe" a
        ${IfNot} ${Errors}
            FileClose $R0
            ${Break}
        ${EndIf}
        MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(TextRunning)" /SD IDCANCEL IDRETRY again
        SetErrorLevel ${EXIT_RUNNING}
        Abort
        again:
    ${Loop}
FunctionEnd
!macroend
!insertmacro CloseFunctions ""
!insertmacro CloseFunctions "un."

Function .onInit
    SetRegView 64
    SetShellVarContext all
    StrCpy $INSTDIR "$PROGRAMFILES64\Velmora\Quillon"
    ${IfNot} ${AtLeastWin10}
        MessageBox MB_OK|MB_ICONSTOP "$(TextWindows)" /SD IDOK
        SetErrorLevel 2
        Quit
    ${EndIf}
FunctionEnd

; Makes the folder that the camera service and every user's Pixora share; one that is there keeps its rights.
Function MakeCommsFolder
    ${If} ${FileExists} "$APPDATA\Comms\*.*"
        Return
    ${EndIf}
    System::Call 'advapi32::ConvertStringSecurityDescriptorToSecurityDescriptorW(w "${COMMS_RIGHTS}", i 1, *p .R0, p 0) i .R1'
    ${If} $R1 = 0
        SetErrorLevel 2
        Abort "$APPDATA\Comms"
    ${EndIf}
    ; SECURITY_ATTRIBUTES as it lies in the memory of a 64-bit process
    System::Call '*(i 24, i 0, p R0, i 0, i 0) p .R2'
    System::Call 'kernel32::CreateDirectoryW(w "$APPDATA\Comms", p R2) i .R1'
    System::Free $R2
    System::Call 'kernel32::LocalFree(p R0)'
    ${If} $R1 = 0
        SetErrorLevel 2
        Abort "$APPDATA\Comms"
    ${EndIf}
FunctionEnd

Section "Pixora"
    Call CloseProgram
    ; What the older version installed and this one does not have is known to the older version's own uninstaller.
    ${If} ${FileExists} "$INSTDIR\${UNINSTALLER}"
        ExecWait '"$INSTDIR\${UNINSTALLER}" /S /UPGRADE _?=$INSTDIR' $0
        ${If} $0 <> 0
            SetErrorLevel 2
            Abort "$INSTDIR\${UNINSTALLER}: $0"
        ${EndIf}
    ${EndIf}

    !insertmacro InstallFiles
    WriteUninstaller "$INSTDIR\${UNINSTALLER}"
    Call MakeCommsFolder
    CreateShortCut "$SMPROGRAMS\${PROGRAM}.lnk" "$INSTDIR\Pixora.exe" "run" "$INSTDIR\Pixora.exe" 0 SW_SHOWNORMAL "" \
        "$(TextShortcut)"

    WriteRegStr HKLM "${PROGRAM_KEY}" "InstallFolder" "$INSTDIR"
    WriteRegStr HKLM "${PROGRAM_KEY}" "Version" "${VERSION}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "${PROGRAM}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "Publisher" "${PUBLISHER}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\Pixora.exe,0"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\${UNINSTALLER}"'
    WriteRegStr HKLM "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\${UNINSTALLER}" /S'
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "EstimatedSize" ${SIZE_KB}
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "VersionMajor" ${VERSION_MAJOR}
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "VersionMinor" ${VERSION_MINOR}
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoRepair" 1
SectionEnd

Function un.onInit
    SetRegView 64
    SetShellVarContext all
    StrCpy $removeData 0
    StrCpy $upgrading 0
    ${GetParameters} $R0
    ClearErrors
    ${GetOptions} $R0 "/REMOVEDATA" $R1
    ${IfNot} ${Errors}
        StrCpy $removeData 1
    ${EndIf}
    ClearErrors
    ${GetOptions} $R0 "/UPGRADE" $R1
    ${IfNot} ${Errors}
        StrCpy $upgrading 1
    ${EndIf}
    ClearErrors
FunctionEnd

Function un.AskWhatToRemove
    !insertmacro MUI_HEADER_TEXT "$(^UninstallCaption)" ""
    nsDialogs::Create 1018
    Pop $0
    ${NSD_CreateLabel} 0 0 100% 40u "$(TextRemoving)"
    Pop $0
    ${NSD_CreateCheckbox} 0 50u 100% 20u "$(TextRemoveData)"
    Pop $removeDataBox
    ${NSD_SetState} $removeDataBox $removeData
    nsDialogs::Show
FunctionEnd

Function un.TakeAnswer
    ${NSD_GetState} $removeDataBox $removeData
FunctionEnd

; A key goes only when it holds neither values nor keys: the suite's other programs use the same ones.
!macro DeleteEmptyKey root key
    EnumRegValue $R8 ${root} "${key}" 0
    ${If} $R8 == ""
        DeleteRegKey /ifempty ${root} "${key}"
    ${EndIf}
!macroend

; The values that Pixora writes; the driver's stay.
!macro DeleteSettings hive
    !define settings "${hive}\${SETTINGS_KEY}"
    DeleteRegValue HKU "${settings}" "lumi_camera_switch"
    DeleteRegValue HKU "${settings}" "lumi_camera_background_replacement"
    DeleteRegValue HKU "${settings}" "pre_background_replacement"
    DeleteRegValue HKU "${settings}" "lumi_camera_background_image_path"
    DeleteRegValue HKU "${settings}" "lumi_camera_custom_img_group"
    DeleteRegValue HKU "${settings}" "background_selected_btnName"
    DeleteRegValue HKU "${settings}" "sync_custom"
    DeleteRegValue HKU "${settings}" "lumi_camera_eye_correction"
    DeleteRegValue HKU "${settings}" "lumi_camera_person_track"
    DeleteRegValue HKU "${settings}" "lumi_camera_beauty_person"
    DeleteRegValue HKU "${settings}" "lumi_camera_beauty_smooth"
    DeleteRegValue HKU "${settings}" "lumi_camera_beauty_white"
    DeleteRegValue HKU "${settings}" "lumi_camera_beauty_eye"
    DeleteRegValue HKU "${settings}" "lumi_camera_beauty_thin"
    !insertmacro DeleteEmptyKey HKU "${settings}"
    !insertmacro DeleteEmptyKey HKU "${hive}\SOFTWARE\Velmora\Quillon"
    !insertmacro DeleteEmptyKey HKU "${hive}\SOFTWARE\Velmora"
    !undef settings
!macroend

; By their names and not the whole tree: every user may write here, and what stands behind a folder's name may be a link
; to somewhere else.
Function un.RemovePictures
    Delete "$APPDATA\Comms\LumiCamera\custom_background_btn_*.jpg"
    FindFirst $R0 $R1 "$APPDATA\Comms\LumiCamera\S-1-*"
    ${DoWhile} $R1 != ""
        Delete "$APPDATA\Comms\LumiCamera\$R1\custom_background_btn_*.jpg"
        RMDir "$APPDATA\Comms\LumiCamera\$R1"
        FindNext $R0 $R1
    ${Loop}
    FindClose $R0
    RMDir "$APPDATA\Comms\LumiCamera"
FunctionEnd

; The backgrounds of all users; the settings of those who are signed in; log and crash dumps of this one.
Function un.RemoveData
    Call un.RemovePictures
    StrCpy $R0 0
    ${Do}
        EnumRegKey $R1 HKU "" $R0
        ${If} $R1 == ""
            ${Break}
        ${EndIf}
        IntOp $R0 $R0 + 1
        !insertmacro DeleteSettings "$R1"
    ${Loop}
    SetShellVarContext current
    Delete "$LOCALAPPDATA\Velmora\Quillon\Logs\Pixora.log"
    Delete "$LOCALAPPDATA\Velmora\Quillon\Logs\Pixora.?.log"
    RMDir "$LOCALAPPDATA\Velmora\Quillon\Logs"
    RMDir "$LOCALAPPDATA\Velmora\Quillon"
    RMDir "$LOCALAPPDATA\Velmora"
    Delete "$LOCALAPPDATA\QUILLON\CrashDumps\Pixora-*.dmp"
    RMDir "$LOCALAPPDATA\QUILLON\CrashDumps"
    RMDir "$LOCALAPPDATA\QUILLON"
    SetShellVarContext all
FunctionEnd

Section "un.Pixora"
    Call un.CloseProgram
    !insertmacro RemoveFiles
    ${If} $upgrading = 0
        Delete "$SMPROGRAMS\${PROGRAM}.lnk"
        DeleteRegKey HKLM "${UNINSTALL_KEY}"
        DeleteRegKey HKLM "${PROGRAM_KEY}"
        !insertmacro DeleteEmptyKey HKLM "${SUITE_KEY}"
        !insertmacro DeleteEmptyKey HKLM "Software\Velmora"
        ${If} $removeData = 1
            Call un.RemoveData
        ${EndIf}
        RMDir "$APPDATA\Comms"
        Delete "$INSTDIR\${UNINSTALLER}"
        RMDir "$INSTDIR"
        RMDir "$PROGRAMFILES64\Velmora"
    ${EndIf}
SectionEnd
