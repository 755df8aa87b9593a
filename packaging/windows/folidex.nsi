; SPDX-FileCopyrightText: The Folidex authors
; SPDX-License-Identifier: Apache-2.0
;
; The installer for all users of a workstation; ./build-windows makes it with
;   makensis -DVERSION=N.N.N -DSTAGE=FOLDER -DICON=FILE -DSIDE=BITMAP -DOUTPUT=FILE folidex.nsi
; Switches: /S silent, /D=FOLDER where to (the last switch, without quotes). Exit codes: 0 done,
; 1 cancelled, 2 failed, 3 the program is running, 4 Windows is too old, 5 done, but not every user
; may write in the folder that all share.

Unicode true
; The program is for 64-bit Windows alone, and so is its installer.
Target amd64-unicode
SetCompressor /SOLID lzma
ManifestDPIAware true
ManifestSupportedOS Win10
RequestExecutionLevel admin
; A file that cannot be written fails the whole installation.
AllowSkipFiles off

!include LogicLib.nsh
!include WinVer.nsh
!include FileFunc.nsh
!include TextFunc.nsh
!include MUI2.nsh

!define FILE_LIST "installed-files.txt"
!define PUBLISHER "The Folidex authors"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Folidex"
; The program's folder under ProgramData: preferences and the scan in work, one for all users.
!define SHARED_FOLDER "Brightmoor"
!define USERS_MAY_MODIFY "*S-1-5-32-545:(OI)(CI)M"

!define EXIT_FAILED 2
!define EXIT_RUNNING 3
!define EXIT_TOO_OLD 4
!define EXIT_NOT_SHARED 5
; What a silent installation could not tell anybody.
!define LOG "$TEMP\folidex-setup.log"

!include install_steps.nsh

Name "Folidex"
OutFile "${OUTPUT}"
InstallDir "$PROGRAMFILES64\Folidex"
BrandingText "Folidex ${VERSION}"
ShowInstDetails nevershow
ShowUninstDetails nevershow
VIProductVersion "${VERSION}.0"
VIFileVersion "${VERSION}.0"
VIAddVersionKey ProductName "Folidex"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey FileDescription "Folidex installer"
VIAddVersionKey CompanyName "${PUBLISHER}"
VIAddVersionKey LegalCopyright "Copyright ${PUBLISHER}; Apache License 2.0"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_WELCOMEFINISHPAGE_BITMAP "${SIDE}"
!define MUI_UNWELCOMEFINISHPAGE_BITMAP "${SIDE}"
!define MUI_ABORTWARNING
!define MUI_WELCOMEPAGE_TITLE "Folidex ${VERSION}"
!define MUI_WELCOMEPAGE_TEXT "Folidex will be installed for every user of this workstation.$\r$\n\
    $\r$\nAn older version is replaced. Preferences, documents and the database are left as they \
    are.$\r$\n$\r$\nClose Folidex before you go on."
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_TEXT "Run Folidex"
!define MUI_FINISHPAGE_RUN_FUNCTION run_program
!define MUI_UNCONFIRMPAGE_TEXT_TOP "Folidex will be removed from the following folder. Preferences, \
    documents and the database stay where they are."
!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_LICENSE "${STAGE}/licences/Folidex.txt"
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE refuse_while_running
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

!macro FAIL TEXT
  MessageBox MB_OK|MB_ICONSTOP "${TEXT}" /SD IDOK
  SetErrorLevel ${EXIT_FAILED}
  Quit
!macroend

; Where the installed Folidex is, if there is one.
Var installed
; The folder after /D=, if there is one.
Var named_folder

!include exchange_files.nsh

Function .onInit
  SetRegView 64
  SetShellVarContext all
  ${IfNot} ${AtLeastWin10}
    MessageBox MB_OK|MB_ICONSTOP "Folidex ${VERSION} needs Windows 10 or later." /SD IDOK
    SetErrorLevel ${EXIT_TOO_OLD}
    Quit
  ${EndIf}
  Call read_named_folder
  ReadRegStr $installed HKLM "${UNINSTALL_KEY}" "InstallLocation"
  ; It is replaced where it is, unless /D= says otherwise.
  ${If} $installed != ""
  ${AndIf} $named_folder == ""
    StrCpy $INSTDIR $installed
  ${EndIf}
  ${If} ${Silent}
    Call refuse_while_running
  ${EndIf}
FunctionEnd

; A folder after /D= that cannot be is passed over by the installer's own machinery, which would
; then install to the usual one.
Function read_named_folder
  System::Call "kernel32::GetCommandLineW() w .R0"
  ClearErrors
  ${GetOptions} $R0 "/D=" $named_folder
  ${If} ${Errors}
    Return
  ${EndIf}
  ${If} $named_folder != $INSTDIR
  ${AndIf} $named_folder != "$INSTDIR\"
    !insertmacro FAIL "Folidex cannot be installed in $named_folder."
  ${EndIf}
FunctionEnd

Function refuse_while_running
  !insertmacro REFUSE_WHILE_RUNNING $INSTDIR
  ${If} $installed != ""
    !insertmacro REFUSE_WHILE_RUNNING $installed
  ${EndIf}
FunctionEnd

Function un.onInit
  SetRegView 64
  SetShellVarContext all
  !insertmacro REFUSE_WHILE_RUNNING $INSTDIR
FunctionEnd

Function run_program
  ; Through the desktop, so that the program does not run with the installer's rights.
  Exec '"$WINDIR\explorer.exe" "$INSTDIR\folidex.exe"'
FunctionEnd

; A file that could not be written ended the installation.
Function .onInstFailed
  Call remove_fresh_files
FunctionEnd

Function remove_leftovers
  !insertmacro REMOVE_LEFTOVERS $INSTDIR
  ${If} $installed != ""
    !insertmacro REMOVE_LEFTOVERS $installed
  ${EndIf}
FunctionEnd

; The older version in another folder goes when the new one is whole. A folder has many names (a
; link, a short form): it is the same one when what was just put into the new one is seen in it.
Function forget_same_folder
  ${If} $installed == $INSTDIR
  ${OrIf} ${FileExists} "$installed\${FRESH}\${FILE_LIST}"
    StrCpy $installed ""
  ${EndIf}
FunctionEnd

Function remove_moved_version
  ${If} $installed != ""
    !insertmacro REMOVE_LISTED_FILES "" $installed
  ${EndIf}
FunctionEnd

; Every user of the workstation shares the preferences, whoever's program made them.
Function share_folder
  CreateDirectory "$APPDATA\${SHARED_FOLDER}"
  nsExec::ExecToStack '"$SYSDIR\icacls.exe" "$APPDATA\${SHARED_FOLDER}" \
      /grant "${USERS_MAY_MODIFY}" /Q'
  Pop $R0
  Pop $R1
  Delete "${LOG}"
  ${If} $R0 != 0
    StrCpy $R2 "Folidex is installed, but not every user of this workstation may write in \
        $APPDATA\${SHARED_FOLDER} (icacls: $R0). Give them the right to modify that folder.\
        $\r$\n$\r$\n$R1"
    SetErrorLevel ${EXIT_NOT_SHARED}
    FileOpen $R3 "${LOG}" w
    FileWriteUTF16LE /BOM $R3 "Folidex ${VERSION}$\r$\n$R2$\r$\n"
    FileClose $R3
    MessageBox MB_OK|MB_ICONEXCLAMATION $R2 /SD IDOK
  ${EndIf}
FunctionEnd

Function register_program
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "Folidex"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "Publisher" "${PUBLISHER}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\folidex.exe,0"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKLM "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoRepair" 1
  ${GetSize} $INSTDIR "/S=0K" $R0 $R1 $R2
  IntFmt $R0 "0x%08X" $R0
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "EstimatedSize" $R0
FunctionEnd

Section "Folidex"
  Call remove_leftovers
  !insertmacro WRITE_FRESH_FILES
  Call forget_same_folder
  Call exchange_files
  SetOutPath $INSTDIR
  Call share_folder
  ClearErrors
  CreateShortcut "$SMPROGRAMS\Folidex.lnk" "$INSTDIR\folidex.exe"
  Call register_program
  ${If} ${Errors}
    !insertmacro FAIL "Folidex is in $INSTDIR, but Windows could not be told of it."
  ${EndIf}
  Call remove_moved_version
SectionEnd

Section "Uninstall"
  SetOutPath $TEMP
  !insertmacro REMOVE_LEFTOVERS $INSTDIR
  !insertmacro REMOVE_LISTED_FILES un. $INSTDIR
  Delete "$SMPROGRAMS\Folidex.lnk"
  DeleteRegKey HKLM "${UNINSTALL_KEY}"
SectionEnd
