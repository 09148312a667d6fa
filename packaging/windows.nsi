; The installer for Windows. makensis -DVERSION=... -DSTAGE=FOLDER -DOUTPUT=FILE; the folder holds
; win32 and win64 with the plug-ins and their judge, the page and the texts. Per user: it needs no administrator.

Unicode true
SetCompressor /SOLID lzma
SetDateSave off ; one source, one installer
!include FileFunc.nsh
!include LogicLib.nsh
!include MUI2.nsh

; Where hosts look for CLAP plug-ins of one user.
!define CLAP "$LOCALAPPDATA\Programs\Common\CLAP"
!define ENTRY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tindelwax"

Name "Tindelwax ${VERSION}"
OutFile "${OUTPUT}"
RequestExecutionLevel user
; Without the last backslash, the page would put a folder VST2 into whatever one chooses.
InstallDir "$LOCALAPPDATA\Programs\Common\VST2\"
InstallDirRegKey HKCU "${ENTRY}" "VstFolder"

!define MUI_DIRECTORYPAGE_TEXT_TOP "Choose the folder that your host scans for VST 2 plug-ins. \
    Tindelwax gets a folder of its own in it, with the plug-in for 32-bit and for 64-bit hosts. \
    CLAP hosts find theirs by themselves."
!define MUI_DIRECTORYPAGE_TEXT_DESTINATION "VST folder"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

!macro give_up sentence
    MessageBox MB_OK|MB_ICONSTOP "${sentence}" /SD IDOK
    SetErrorLevel 2 ; as when NSIS itself gives up
    Quit
!macroend

; Removes what the registry says is installed, and the folders that were made for it. The installer
; does so too: nothing is left of an older version, or of one in another folder.
!macro remove un
Function ${un}remove
    ReadRegStr $0 HKCU "${ENTRY}" "VstFolder"
    ReadRegStr $1 HKCU "${ENTRY}" "KeptFolder"
    ${If} $0 == ""
        Return
    ${EndIf}

    ClearErrors
    Delete "$0\Tindelwax\win32\tindelwax-check.exe"
    Delete "$0\Tindelwax\win32\tindelwax.dll"
    Delete "$0\Tindelwax\win64\tindelwax-check.exe"
    Delete "$0\Tindelwax\win64\tindelwax.dll"
    Delete "${CLAP}\tindelwax.clap"
    ${If} ${Errors}
        !insertmacro give_up "Tindelwax is in use. Close your host, then run this again."
    ${EndIf}
    Delete "$0\Tindelwax\tindelwax.html"
    Delete "$0\Tindelwax\manual.txt"
    Delete "$0\Tindelwax\bill_of_materials.spdx"
    RMDir /r "$0\Tindelwax\licenses"
    Delete "$0\Tindelwax\license.txt"
    Delete "$0\Tindelwax\uninstall.exe"
    Delete "$0\Tindelwax\wiring\harpmatrix\korvel.ini"
    Delete "$0\Tindelwax\wiring\control\confs\korvel.ini"
    RMDir "$0\Tindelwax\wiring\harpmatrix"
    RMDir "$0\Tindelwax\wiring\control\confs"
    RMDir "$0\Tindelwax\wiring\control"
    RMDir "$0\Tindelwax\wiring"
    RMDir "$0\Tindelwax\win32"
    RMDir "$0\Tindelwax\win64"
    RMDir "$0\Tindelwax"
    RMDir "${CLAP}"
    DeleteRegKey HKCU "${ENTRY}"

    ; A folder that holds other files stays, and with it those around it.
    ${DoUntil} $0 == $1
        RMDir "$0"
        ${GetParent} $0 $0
    ${LoopUntil} $0 == ""
FunctionEnd
!macroend

!insertmacro remove ""
!insertmacro remove "un."

!macro refuse_folder
    !insertmacro give_up "Cannot write to $INSTDIR. Choose a folder that is yours."
!macroend

; The chosen folder, or as much of its path as there is: in $1.
Function findFolder
    StrCpy $1 $INSTDIR
    ${DoUntil} ${FileExists} "$1\*.*"
        ${GetParent} $1 $1
    ${Loop}
FunctionEnd

Section
    ; While an older version is there still.
    Call findFolder
    ClearErrors
    GetTempFileName $2 $1
    FileOpen $3 $2 w
    ${If} ${Errors}
        !insertmacro refuse_folder
    ${EndIf}
    FileClose $3
    Delete $2

    Call remove
    Call findFolder
    ClearErrors
    CreateDirectory "$INSTDIR\Tindelwax"
    SetOutPath "$INSTDIR\Tindelwax"
    WriteUninstaller "$INSTDIR\Tindelwax\uninstall.exe"
    ${If} ${Errors}
        !insertmacro refuse_folder
    ${EndIf}
    WriteRegStr HKCU "${ENTRY}" "VstFolder" $INSTDIR
    WriteRegStr HKCU "${ENTRY}" "KeptFolder" $1
    WriteRegStr HKCU "${ENTRY}" "InstallLocation" "$INSTDIR\Tindelwax"
    WriteRegStr HKCU "${ENTRY}" "DisplayName" "Tindelwax"
    WriteRegStr HKCU "${ENTRY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${ENTRY}" "Publisher" "Quenmar"
    WriteRegStr HKCU "${ENTRY}" "UninstallString" '"$INSTDIR\Tindelwax\uninstall.exe"'
    WriteRegStr HKCU "${ENTRY}" "QuietUninstallString" '"$INSTDIR\Tindelwax\uninstall.exe" /S'
    WriteRegDWORD HKCU "${ENTRY}" "NoModify" 1
    WriteRegDWORD HKCU "${ENTRY}" "NoRepair" 1
    ; After the entry, so that what a full disk leaves behind can be uninstalled.
    File /r /x *.clap "${STAGE}/*"
    SetOutPath "${CLAP}"
    File "${STAGE}/win64/tindelwax.clap"
SectionEnd

Section un.
    Call un.remove
SectionEnd
