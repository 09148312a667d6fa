; The installer for Windows. makensis -DVERSION=... -DSTAGE=FOLDER -DOUTPUT=FILE; the folder holds
; win32 and win64 with the plug-ins and their judge, the page and the texts. The shell's context tells
; "for me" from "for everyone" throughout; with it goes the branch of the registry that SHCTX means.

Unicode true
SetCompressor /SOLID lzma
SetDateSave off ; one source, one installer
!include FileFunc.nsh
!include LogicLib.nsh
!include MUI2.nsh
!include nsDialogs.nsh
!include x64.nsh

!define ENTRY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tindelwax"

Name "Tindelwax ${VERSION}"
BrandingText "Tindelwax ${VERSION}"
OutFile "${OUTPUT}"
; Whoever installs for everyone is asked for an administrator's rights when that is chosen.
RequestExecutionLevel user

; $INSTDIR is the folder for the VST plug-in of 64-bit hosts; empty where these get none.
Var GivenFolder ; what the command line says of it
Var Vst32Folder ; the same for 32-bit hosts; empty where these get none
Var With32      ; whether they shall get one, as the state of a check box
Var ClapFolder
Var OwnFolder   ; for the judges, the texts and the uninstaller
Var Everyone    ; buttons of the first page
Var For32
Var IsAnswered  ; whether the command line answers the first page

Page custom showMode leaveMode
!define FOLDER_TEXT "Choose the folder that your host scans for VST 2 plug-ins. \
    Tindelwax gets a folder of its own in it."
!define MUI_PAGE_HEADER_TEXT "VST 2 plug-in for 64-bit hosts"
!define MUI_PAGE_HEADER_SUBTEXT "Most hosts are 64-bit. CLAP hosts find their plug-in by themselves."
!define MUI_DIRECTORYPAGE_TEXT_TOP "${FOLDER_TEXT}"
!define MUI_DIRECTORYPAGE_TEXT_DESTINATION "VST folder of 64-bit hosts"
!define MUI_PAGE_CUSTOMFUNCTION_PRE skipWithout64
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE need64
!insertmacro MUI_PAGE_DIRECTORY
!define MUI_PAGE_HEADER_TEXT "VST 2 plug-in for 32-bit hosts"
!define MUI_PAGE_HEADER_SUBTEXT "It needs another folder than the one for 64-bit hosts."
!define MUI_DIRECTORYPAGE_TEXT_TOP "${FOLDER_TEXT}"
!define MUI_DIRECTORYPAGE_TEXT_DESTINATION "VST folder of 32-bit hosts"
!define MUI_DIRECTORYPAGE_VARIABLE $Vst32Folder
!define MUI_PAGE_CUSTOMFUNCTION_PRE skipWithout32
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE need32
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_TITLE "Tindelwax is installed"
!define MUI_FINISHPAGE_TEXT "Let your host scan for new plug-ins, and look for Tindelwax among \
    the instruments.$\r$\n$\r$\nThe manual is here:$\r$\n$OwnFolder\manual.txt$\r$\n$\r$\n\
    To remove all of it, open Settings, Apps."
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

; Stays on the page, or ends the installation with level 2.
!macro refuse sentence
    MessageBox MB_OK|MB_ICONSTOP "${sentence}" /SD IDOK
    Abort
!macroend

!macro delete folder file
    ${If} ${folder} != ""
        Delete "${folder}\${file}"
    ${EndIf}
!macroend

; Sets the error flag if a host has the file loaded.
!macro need_free folder file
    ${If} ${FileExists} "${folder}\${file}"
        FileOpen $4 "${folder}\${file}" a
        FileClose $4
    ${EndIf}
!macroend

; The macros delete_staged and remove_staged: what would lie in the folder in $0 if the stage lay
; there, the inner before the outer.
!tempfile STAGED
!system `cd "${STAGE}" && list() { \
    echo "!macro $1"; \
    find * -type $2 | LC_ALL=C sort -r | sed "s,.*,!insertmacro for_staged $3 '&',"; \
    echo "!macroend"; \
}; { list delete_staged f Delete; list remove_staged d RMDir; } >"${STAGED}"`
!include "${STAGED}"
!delfile "${STAGED}"

!macro for_staged command path
    !searchreplace WINDOWS_PATH "${path}" "/" "\"
    ${command} "$0\${WINDOWS_PATH}"
    !undef WINDOWS_PATH
!macroend

; Removes a folder and those around it, up to the one that was there before. A folder that holds
; other files stays, and with it those around it.
!macro remove_folders value kept
    ReadRegStr $0 SHCTX "${ENTRY}" "${value}"
    ReadRegStr $1 SHCTX "${ENTRY}" "${kept}"
    ${DoUntil} $0 == $1
        RMDir "$0"
        ${GetParent} $0 $0
    ${LoopUntil} $0 == ""
!macroend

; What the installer and the uninstaller share.
!macro define_shared un
; Sets the error flag unless this process may change what belongs to everyone.
Function ${un}needAdministrator
    ClearErrors
    UserInfo::GetAccountType
    Pop $0
    ${If} $0 != "Admin"
        SetErrors
    ${EndIf}
FunctionEnd

; Removes what the registry says is installed in this context, and the folders that were made for it.
; The installer does so too: nothing is left of an older version, or of one in another folder.
Function ${un}remove
    ReadRegStr $0 SHCTX "${ENTRY}" "InstallLocation"
    ReadRegStr $1 SHCTX "${ENTRY}" "Plugin64Folder"
    ReadRegStr $2 SHCTX "${ENTRY}" "Plugin32Folder"
    ReadRegStr $3 SHCTX "${ENTRY}" "ClapFolder"
    ${If} $0 == ""
        Return
    ${EndIf}
    ${If} $3 == "" ; an older version, which knew one only
        StrCpy $3 "$LOCALAPPDATA\Programs\Common\CLAP"
        WriteRegStr SHCTX "${ENTRY}" "ClapFolder" $3
        WriteRegStr SHCTX "${ENTRY}" "KeptClapFolder" $LOCALAPPDATA
    ${EndIf}

    ; Before anything goes: what hosts have of it stays whole.
    ClearErrors
    !insertmacro need_free $1 "tindelwax.dll"
    !insertmacro need_free $2 "tindelwax.dll"
    !insertmacro need_free $3 "tindelwax.clap"
    !insertmacro need_free $0 "win32\tindelwax.dll" ; an older version's
    !insertmacro need_free $0 "win64\tindelwax.dll"
    ${IfNot} ${Errors}
        !insertmacro delete $1 "tindelwax.dll"
        !insertmacro delete $2 "tindelwax.dll"
        !insertmacro delete $3 "tindelwax.clap"
        !insertmacro delete_staged ; and with that an older version's plug-ins
    ${Else}
        SetErrors ; which the question took away
    ${EndIf}
    ${If} ${Errors}
        !insertmacro refuse "Tindelwax is in use. Close your host, then run this again."
    ${EndIf}
    Delete "$0\uninstall.exe"
    !insertmacro remove_staged

    ; In the other order than they were made.
    !insertmacro remove_folders "ClapFolder" "KeptClapFolder"
    !insertmacro remove_folders "Plugin32Folder" "KeptPlugin32Folder"
    !insertmacro remove_folders "Plugin64Folder" "KeptPlugin64Folder"
    !insertmacro remove_folders "InstallLocation" "KeptFolder"
    DeleteRegKey SHCTX "${ENTRY}"
FunctionEnd
!macroend

!insertmacro define_shared ""
!insertmacro define_shared "un."

; The folder in $0, or as much of its path as there is: in $1.
Function findFolder
    StrCpy $1 $0
    ${DoUntil} ${FileExists} "$1\*.*"
        ${GetParent} $1 $1
    ${Loop}
FunctionEnd

; Sets the error flag unless the folder in $0 can be made and written to.
Function needFolder
    Call findFolder
    ClearErrors
    GetTempFileName $2 $1
    FileOpen $3 $2 w
    ${If} ${Errors}
        SetErrors ; which the question took away
    ${Else}
        FileClose $3
        Delete $2
    ${EndIf}
FunctionEnd

; Sets the error flag if hosts that scan the folder in $0 or the one for 64-bit hosts scan both: they
; would find the plug-in twice.
Function needApart
    ClearErrors
    StrLen $1 "$0\"
    StrCpy $1 "$INSTDIR\" $1
    StrLen $2 "$INSTDIR\"
    StrCpy $2 "$0\" $2
    ${If} $INSTDIR == ""
        Return
    ${EndIf}
    ${If} $1 == "$0\"
    ${OrIf} $2 == "$INSTDIR\"
        SetErrors
    ${EndIf}
FunctionEnd

; Puts the folder in $0 into $9 if nothing better is there and the plug-in can go there.
Function offer
    ${If} $9 != ""
    ${OrIf} $0 == ""
    ${OrIfNot} ${FileExists} "$0\*.*"
        Return
    ${EndIf}
    StrCpy $1 $0 1 -1
    ${If} $1 == "\"
        StrCpy $0 $0 -1
    ${EndIf}
    Call needFolder
    ${IfNot} ${Errors}
        Call needApart
        ${IfNot} ${Errors}
            StrCpy $9 $0
        ${EndIf}
    ${EndIf}
FunctionEnd

; The folder that hosts of one width scan, most likely: in $9, unless there is one already.
!macro offer_folders width default program_files
    ReadRegStr $0 SHCTX "${ENTRY}" "Plugin${width}Folder"
    ${GetParent} $0 $0
    Call offer
    SetRegView ${width}
    ReadRegStr $0 SHCTX "Software\VST" "VSTPluginsPath"
    SetRegView 32
    Call offer
    StrCpy $0 "${default}"
    Call offer
    ${If} ${ShellVarContextAll}
        StrCpy $0 "${program_files}\VSTPlugins"
        Call offer
    ${EndIf}
    ${If} $9 == ""
        StrCpy $9 "${default}"
    ${EndIf}
!macroend

; Chooses all folders, whatever was chosen before.
Function chooseFolders
    ${If} ${ShellVarContextAll}
        StrCpy $OwnFolder "$PROGRAMFILES64\Tindelwax"
        StrCpy $ClapFolder "$COMMONFILES64\CLAP"
        StrCpy $R0 "$COMMONFILES64\VST2"
        StrCpy $R1 "$COMMONFILES32\VST2"
    ${Else}
        StrCpy $OwnFolder "$LOCALAPPDATA\Programs\Tindelwax"
        StrCpy $ClapFolder "$LOCALAPPDATA\Programs\Common\CLAP"
        StrCpy $R0 "$LOCALAPPDATA\Programs\Common\VST2"
        StrCpy $R1 "$LOCALAPPDATA\Programs\Common\VST2 (x86)"
    ${EndIf}

    StrCpy $INSTDIR ""
    ${If} ${RunningX64}
        StrCpy $9 $GivenFolder
        ReadRegStr $0 SHCTX "${ENTRY}" "VstFolder" ; an older version's
        Call offer
        !insertmacro offer_folders 64 $R0 $PROGRAMFILES64
        StrCpy $INSTDIR $9
    ${EndIf}
    StrCpy $9 ""
    ${If} $With32 == ${BST_CHECKED}
        !insertmacro offer_folders 32 $R1 $PROGRAMFILES32
    ${EndIf}
    StrCpy $Vst32Folder $9
FunctionEnd

Function .onInit
    StrCpy $GivenFolder $INSTDIR
    StrCpy $With32 ${BST_CHECKED}
    ${GetParameters} $1
    ClearErrors
    ${GetOptions} $1 "/AllUsers" $0
    ${IfNot} ${Errors}
        SetShellVarContext all
        Call needAdministrator
        ${IfNot} ${Errors}
            StrCpy $IsAnswered 1
        ${EndIf}
    ${EndIf}
    ClearErrors
    ${GetOptions} $1 "/No32" $0
    ${IfNot} ${Errors}
    ${AndIf} ${RunningX64}
        StrCpy $With32 ${BST_UNCHECKED}
    ${EndIf}
    Call chooseFolders
FunctionEnd

Function showMode
    ${If} $IsAnswered == 1
        StrCpy $IsAnswered 0 ; the way back leads here
        Abort
    ${EndIf}
    !insertmacro MUI_HEADER_TEXT "Who plays Tindelwax?" "It goes where their hosts look for plug-ins."
    nsDialogs::Create 1018
    Pop $0
    ${NSD_CreateFirstRadioButton} 0 10u 100% 12u "Install for &me"
    Pop $0
    ${NSD_CreateAdditionalRadioButton} 0 26u 100% 12u \
        "Install for &everyone on this computer; Windows asks for an administrator"
    Pop $Everyone
    ${If} ${ShellVarContextAll}
        StrCpy $0 $Everyone
    ${EndIf}
    ${NSD_Check} $0
    ${If} ${RunningX64}
        ${NSD_CreateCheckBox} 0 54u 100% 12u "Also the plug-in for &32-bit hosts"
        Pop $For32
        ${NSD_SetState} $For32 $With32
    ${EndIf}
    nsDialogs::Show
FunctionEnd

!macro need_mode
    ${If} ${ShellVarContextAll}
        Call needAdministrator
        ${If} ${Errors}
            !insertmacro refuse "Only an administrator can install for everyone."
        ${EndIf}
    ${Else}
        ReadRegStr $0 HKLM "${ENTRY}" "InstallLocation"
        ${If} $0 != ""
            !insertmacro refuse "Tindelwax is installed for everyone on this computer. Install this \
                for everyone too, or remove the other first: hosts would find both."
        ${EndIf}
    ${EndIf}
!macroend

Function leaveMode
    ${If} ${RunningX64}
        ${NSD_GetState} $For32 $With32
    ${EndIf}
    SetShellVarContext current
    ${NSD_GetState} $Everyone $0
    ${If} $0 == ${BST_CHECKED}
        SetShellVarContext all
        Call needAdministrator
        ${If} ${Errors}
            Call startElevated
        ${EndIf}
    ${EndIf}
    !insertmacro need_mode
    Call chooseFolders
FunctionEnd

; Starts the installer again as an administrator, in this one's place. Comes back if that is refused.
Function startElevated
    StrCpy $0 "/AllUsers"
    ${If} $With32 != ${BST_CHECKED}
        StrCpy $0 "$0 /No32"
    ${EndIf}
    ${If} $GivenFolder != ""
        StrCpy $0 "$0 /D=$GivenFolder"
    ${EndIf}
    ClearErrors
    ExecShell "runas" "$EXEPATH" $0
    ${IfNot} ${Errors}
        Quit
    ${EndIf}
FunctionEnd

Function skipWithout64
    ${If} $INSTDIR == ""
        Abort
    ${EndIf}
FunctionEnd

Function skipWithout32
    ${If} $Vst32Folder == ""
        Abort
    ${EndIf}
FunctionEnd

!macro need_folder folder
    StrCpy $0 "${folder}"
    Call needFolder
    ${If} ${Errors}
        !insertmacro refuse "Cannot write to ${folder}. Choose a folder that is yours."
    ${EndIf}
!macroend

Function need64
    !insertmacro need_folder $INSTDIR
FunctionEnd

Function need32
    !insertmacro need_folder $Vst32Folder
    Call needApart
    ${If} ${Errors}
        !insertmacro refuse "The plug-in for 32-bit hosts cannot go into $Vst32Folder: hosts that look \
            there and in $INSTDIR would find two."
    ${EndIf}
FunctionEnd

; Makes a folder for what comes next, and lets the uninstaller know.
!macro make_folder folder value kept
    StrCpy $0 "${folder}"
    Call findFolder
    ClearErrors
    SetOutPath $0
    ${If} ${Errors}
        !insertmacro refuse "Cannot write to $0."
    ${EndIf}
    WriteRegStr SHCTX "${ENTRY}" "${value}" $0
    WriteRegStr SHCTX "${ENTRY}" "${kept}" $1
!macroend

Section
    ; While an older version is there still.
    !insertmacro need_mode
    !insertmacro need_folder $OwnFolder
    ${If} $INSTDIR != ""
        Call need64
    ${EndIf}
    ${If} $Vst32Folder != ""
        Call need32
    ${EndIf}

    ; Hosts would find one that is for this user alone too.
    ${If} ${ShellVarContextAll}
        SetShellVarContext current
        Call remove
        SetShellVarContext all
    ${EndIf}
    Call remove

    !insertmacro make_folder $OwnFolder "InstallLocation" "KeptFolder"
    WriteUninstaller "$OwnFolder\uninstall.exe"
    WriteRegStr SHCTX "${ENTRY}" "DisplayName" "Tindelwax"
    WriteRegStr SHCTX "${ENTRY}" "DisplayVersion" "${VERSION}"
    WriteRegStr SHCTX "${ENTRY}" "Publisher" "Quenmar"
    WriteRegStr SHCTX "${ENTRY}" "UninstallString" '"$OwnFolder\uninstall.exe"'
    WriteRegStr SHCTX "${ENTRY}" "QuietUninstallString" '"$OwnFolder\uninstall.exe" /S'
    WriteRegDWORD SHCTX "${ENTRY}" "NoModify" 1
    WriteRegDWORD SHCTX "${ENTRY}" "NoRepair" 1
    ; After the entry, so that what a full disk leaves behind can be uninstalled.
    File /r /x *.clap /x *.dll "${STAGE}/*"
    ${If} $INSTDIR != ""
        !insertmacro make_folder "$INSTDIR\Tindelwax" "Plugin64Folder" "KeptPlugin64Folder"
        File "${STAGE}/win64/tindelwax.dll"
    ${EndIf}
    ${If} $Vst32Folder != ""
        !insertmacro make_folder "$Vst32Folder\Tindelwax" "Plugin32Folder" "KeptPlugin32Folder"
        File "${STAGE}/win32/tindelwax.dll"
    ${EndIf}
    ${If} ${RunningX64}
        !insertmacro make_folder $ClapFolder "ClapFolder" "KeptClapFolder"
        File "${STAGE}/win64/tindelwax.clap"
    ${EndIf}
SectionEnd

Function un.onInit
    ReadRegStr $0 HKLM "${ENTRY}" "InstallLocation"
    ReadRegStr $1 HKCU "${ENTRY}" "InstallLocation"
    ${If} $0 == ""
    ${OrIf} $1 != "" ; of one user, and another installed for everyone
    ${AndIf} $0 != $INSTDIR
        Return
    ${EndIf}
    SetShellVarContext all
    Call un.needAdministrator
    ${If} ${Errors}
        ${IfNot} ${Silent}
            ExecShell "runas" "$INSTDIR\uninstall.exe"
            Quit
        ${EndIf}
        !insertmacro refuse "Only an administrator can remove what everyone uses."
    ${EndIf}
FunctionEnd

Section un.
    Call un.remove
SectionEnd
