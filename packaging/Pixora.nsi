; The installer of Pixora, for all users of the machine. Made by packaging/make, which gives VERSION and the file lists.
;
; PixoraSetup-<version>.exe [/S]            installs, or replaces an installed version in place
; UninstallPixora.exe [/S] [/REMOVEDATA]    removes the program; with /REMOVEDATA also what users made with it
; Exit codes: 0 done, 3010 done when Windows has been restarted. What follows leaves everything as it was:
; 1 ended by the user, 2 a step failed, 3 Pixora runs and cannot be closed, 4 another program has a file open,
; 5 a newer version is installed, 6 an MSI package installed Pixora, 7 a shared folder was prepared by somebody else,
; 8 another installation is under way.
;
; Everything is unpacked into WORK first, below the program's folder. From there PixoraSetupHelper (setup/) exchanges it
; for the installed version, in steps that the next run of either program can undo when the machine stops between two.
;
; The folder is fixed: the suite's programs share it, and paths in the users' settings name it. The state of the camera
; driver and of its algorithm is written by the driver's own installation and never touched here.
Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
ManifestDPIAware true
ManifestSupportedOS all
RequestExecutionLevel admin
; A file that cannot be written ends the installation; it is never left out.
AllowSkipFiles off

; Signed while the installer is made, so that what it writes on the machine is signed: uninstaller and plug-ins.
!ifdef SIGN
    !uninstfinalize `${SIGN} "%1"` = 0
    !addplugindir /amd64-unicode "${PLUGINS}"
!endif

!include LogicLib.nsh
!include FileFunc.nsh
!include WinVer.nsh
!include WordFunc.nsh
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
!define WORK "$INSTDIR\Pixora.setup"
!define EXIT_FAILED 2
!define EXIT_RUNNING 3
!define EXIT_IN_USE 4
!define EXIT_NEWER 5
!define EXIT_MSI 6
!define EXIT_FOLDER 7
!define EXIT_UNDER_WAY 8
!define EXIT_RESTART 3010

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
Var removeDataBox
Var lock
Var said

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

; Why a run ends, for whoever has given it an output: a silent run shows nothing.
!macro Say text
    System::Call 'kernel32::GetStdHandle(i -11) p .R8'
    FileWrite $R8 "${text}$\r$\n"
    StrCpy $said 1
!macroend

; A file that cannot be unpacked ends the run without our doing.
!macro SayUnpacking
    ${If} $said == ""
        !insertmacro Say "${WORK}\new"
    ${EndIf}
!macroend

; Ends the run; what it has begun is taken back by .onInstFailed or un.onUninstFailed.
!macro Fail code text
    !insertmacro Say "${text}"
    SetErrorLevel ${code}
    Abort "${text}"
!macroend

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
        !insertmacro Fail ${EXIT_RUNNING} "$(TextRunning)"
        again:
    ${Loop}
FunctionEnd
!macroend
!insertmacro CloseFunctions ""
!insertmacro CloseFunctions "un."

; $0: exit code of the helper as text, $1: the path that a failure is about.
!macro Helper command folder
    nsExec::ExecToStack '"${WORK}\PixoraSetupHelper.exe" ${command} "${folder}"'
    Pop $0
    Pop $1
!macroend

; OpenWork: makes WORK with the helper in it. Its file "lock" is open as long as the run lasts: one at a time. What an
; earlier run left half done is undone.
; CloseWork: deletes WORK. What cannot go now goes when Windows restarts.
!macro WorkFunctions un
Function ${un}OpenWork
    SetOutPath "${WORK}"
    ; What a run that was killed has had open is free a moment later.
    StrCpy $R9 0
    ${Do}
        ClearErrors
        FileOpen $lock "${WORK}\lock" w
        ${IfNot} ${Errors}
            Delete "${WORK}\PixoraSetupHelper.exe"
            ${IfNot} ${Errors}
                ${Break}
            ${EndIf}
            FileClose $lock
            ; The helper of a run that was killed has nobody any more: it may never have begun, and so never end. Where
            ; it had begun, what it leaves half done is undone below.
            ${If} $R9 = 5
                nsExec::Exec '"$SYSDIR\taskkill.exe" /F /IM PixoraSetupHelper.exe'
                Pop $0
            ${EndIf}
        ${EndIf}
        StrCpy $lock ""
        IntOp $R9 $R9 + 1
        Sleep 200
    ${LoopUntil} $R9 = 10
    ${If} $R9 = 10
        ${If} ${FileExists} "${WORK}\lock"
            MessageBox MB_OK|MB_ICONSTOP "$(TextUnderWay)" /SD IDOK
            !insertmacro Fail ${EXIT_UNDER_WAY} "$(TextUnderWay)"
        ${EndIf}
        !insertmacro Fail ${EXIT_FAILED} "${WORK}"
    ${EndIf}
    File "${HELPER}"
    ; A folder that is somebody's current one cannot be deleted.
    SetOutPath "$SYSDIR"
    !insertmacro Helper recover "$INSTDIR"
    ${If} $0 != 0
        !insertmacro Fail ${EXIT_FAILED} "recover $1 ($0)"
    ${EndIf}
FunctionEnd

; Ends what OpenWork began. An antivirus may look at the helper for a moment.
Function ${un}LeaveWork
    FileClose $lock
    StrCpy $lock ""
    Delete "${WORK}\lock"
    StrCpy $R0 0
    ${DoWhile} $R0 < 20
        Delete "${WORK}\PixoraSetupHelper.exe"
        RMDir "${WORK}"
        ${IfNot} ${FileExists} "${WORK}\*.*"
            ${Break}
        ${EndIf}
        Sleep 100
        IntOp $R0 $R0 + 1
    ${Loop}
FunctionEnd

Function ${un}CloseWork
    SetOutPath "$SYSDIR"
    !insertmacro Helper clean "$INSTDIR"
    Call ${un}LeaveWork
    ${If} ${FileExists} "${WORK}\*.*"
        RMDir /r /REBOOTOK "${WORK}"
    ${EndIf}
FunctionEnd

; What is half done is undone; where even that fails, the next run does it.
Function ${un}TakeBack
    SetOutPath "$SYSDIR"
    ${If} $lock != ""
        !insertmacro Helper recover "$INSTDIR"
        Call ${un}LeaveWork
    ${EndIf}
FunctionEnd

; Exchange: `command` of the helper until it succeeds; a file in use is told and tried again as long as somebody wants.
Function ${un}Exchange
    Exch $2
    ${Do}
        !insertmacro Helper $2 "$INSTDIR"
        ${If} $0 == 0
            ${Break}
        ${EndIf}
        ${If} $0 != ${EXIT_IN_USE}
            !insertmacro Fail ${EXIT_FAILED} "$2 $1 ($0)"
        ${EndIf}
        MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(TextInUse)$\n$\n$1" /SD IDCANCEL IDRETRY again
        !insertmacro Fail ${EXIT_IN_USE} "$1"
        again:
    ${Loop}
    Pop $2
FunctionEnd
!macroend
!insertmacro WorkFunctions ""
!insertmacro WorkFunctions "un."

!macro Exchange un command
    Push ${command}
    Call ${un}Exchange
!macroend

!macro Refuse code text
    MessageBox MB_OK|MB_ICONSTOP "${text}" /SD IDOK
    !insertmacro Say "${text}"
    SetErrorLevel ${code}
    Quit
!macroend

Function .onInit
    SetRegView 64
    SetShellVarContext all
    StrCpy $INSTDIR "$PROGRAMFILES64\Velmora\Quillon"
    ${IfNot} ${AtLeastWin10}
        !insertmacro Refuse ${EXIT_FAILED} "$(TextWindows)"
    ${EndIf}
    System::Call '$SYSDIR\msi.dll::MsiEnumRelatedProductsW(w "${UPGRADE_CODE}", i 0, i 0, w .R0) i .R1'
    ${If} $R1 = 0
        !insertmacro Refuse ${EXIT_MSI} "$(TextMsi)"
    ${EndIf}
    ReadRegStr $R0 HKLM "${PROGRAM_KEY}" "Version"
    ${VersionCompare} "$R0" "${VERSION}" $R1
    ${If} $R1 = 1
        !insertmacro Refuse ${EXIT_NEWER} "$(TextNewer)$\n$\n$R0"
    ${EndIf}
FunctionEnd

Function .onInstFailed
    !insertmacro SayUnpacking
    Call TakeBack
    RMDir "$INSTDIR"
    RMDir "$PROGRAMFILES64\Velmora"
FunctionEnd

Function un.onUninstFailed
    Call un.TakeBack
FunctionEnd

!macro SharedFolders command
    !insertmacro Helper ${command} "$APPDATA"
    ${If} $0 == ${EXIT_FOLDER}
        MessageBox MB_OK|MB_ICONSTOP "$(TextFolder)$\n$\n$1" /SD IDOK
        !insertmacro Fail ${EXIT_FOLDER} "$1"
    ${ElseIf} $0 != 0
        !insertmacro Fail ${EXIT_FAILED} "${command} $1 ($0)"
    ${EndIf}
!macroend

Section "Pixora"
    Call OpenWork
    !insertmacro SharedFolders check-folders
    !insertmacro UnpackFiles
    SetOutPath "$SYSDIR"
    ClearErrors
    WriteUninstaller "${WORK}\new\${UNINSTALLER}"
    ${If} ${Errors}
        !insertmacro Fail ${EXIT_FAILED} "${UNINSTALLER}"
    ${EndIf}
    Call CloseProgram
    !insertmacro SharedFolders make-folders
    !insertmacro Exchange "" install

    ; From here on the new version is installed. What the system cannot note now is noted by the next run.
    ClearErrors
    SetOutPath "$INSTDIR"
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
    ${If} ${Errors}
        !insertmacro Fail ${EXIT_FAILED} "${UNINSTALL_KEY}"
    ${EndIf}
    Call CloseWork
    ${If} ${RebootFlag}
        SetErrorLevel ${EXIT_RESTART}
    ${EndIf}
SectionEnd

Function un.onInit
    SetRegView 64
    SetShellVarContext all
    StrCpy $removeData 0
    ${GetParameters} $R0
    ClearErrors
    ${GetOptions} $R0 "/REMOVEDATA" $R1
    ${IfNot} ${Errors}
        StrCpy $removeData 1
    ${EndIf}
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

; The backgrounds of all users; the settings of those who are signed in; log and crash dumps of this one.
Function un.RemoveData
    !insertmacro Helper remove-pictures "$APPDATA"
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
    Call un.OpenWork
    Call un.CloseProgram
    !insertmacro Exchange "un." remove

    ; From here on the program is gone; the uninstaller and its entry go last, so that a stopped run can be done again.
    ${If} $removeData = 1
        Call un.RemoveData
    ${EndIf}
    ClearErrors
    Delete "$SMPROGRAMS\${PROGRAM}.lnk"
    ${If} ${Errors}
        !insertmacro Fail ${EXIT_FAILED} "$SMPROGRAMS\${PROGRAM}.lnk"
    ${EndIf}
    Call un.CloseWork
    RMDir "$APPDATA\Comms\LumiCamera"
    RMDir "$APPDATA\Comms"
    DeleteRegKey HKLM "${PROGRAM_KEY}"
    !insertmacro DeleteEmptyKey HKLM "${SUITE_KEY}"
    !insertmacro DeleteEmptyKey HKLM "Software\Velmora"
    DeleteRegKey HKLM "${UNINSTALL_KEY}"
    ; Started with _?= it runs from here, and whoever waits for it deletes it.
    ${If} $EXEDIR != $INSTDIR
        Delete /REBOOTOK "$INSTDIR\${UNINSTALLER}"
    ${EndIf}
    ${If} ${RebootFlag}
        RMDir /REBOOTOK "$INSTDIR"
        SetErrorLevel ${EXIT_RESTART}
    ${Else}
        RMDir "$INSTDIR"
    ${EndIf}
    RMDir "$PROGRAMFILES64\Velmora"
SectionEnd
