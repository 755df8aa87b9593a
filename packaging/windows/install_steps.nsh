; SPDX-FileCopyrightText: The Folidex authors
; SPDX-License-Identifier: Apache-2.0
;
; The steps that folidex.nsi takes for installing and uninstalling alike. They use $R0 to $R5.

; Ends the run while one of the programs in FOLDER runs, for whichever user: a file that runs cannot
; be opened for writing. A silent run ends at once, another asks first.
!macro REFUSE_WHILE_RUNNING FOLDER
  ${Do}
    StrCpy $R0 ""
    !insertmacro NAME_IF_RUNNING "${FOLDER}\folidex.exe"
    !insertmacro NAME_IF_RUNNING "${FOLDER}\folidex-twain64.exe"
    !insertmacro NAME_IF_RUNNING "${FOLDER}\folidex-twain32.exe"
    ${If} $R0 == ""
      ${ExitDo}
    ${EndIf}
    ${If} ${Cmd} `MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "Folidex is running. Close it for \
        every user of this workstation, then try again.$\r$\n$\r$\n$R0" /SD IDCANCEL IDCANCEL`
      SetErrorLevel ${EXIT_RUNNING}
      Quit
    ${EndIf}
  ${Loop}
!macroend

!macro NAME_IF_RUNNING FILE
  ${If} ${FileExists} "${FILE}"
    ClearErrors
    FileOpen $R1 "${FILE}" a
    ${If} ${Errors}
      StrCpy $R0 "${FILE}"
    ${Else}
      FileClose $R1
    ${EndIf}
  ${EndIf}
!macroend

; Does what stands between it and END_EACH_NAME with every name in the list, as $R1.
!macro EACH_NAME UN LIST
  ClearErrors
  FileOpen $R0 "${LIST}" r
  ${IfNot} ${Errors}
    ${Do}
      ClearErrors
      FileRead $R0 $R1
      ${If} ${Errors}
        ${ExitDo}
      ${EndIf}
      ${${UN}TrimNewLines} $R1 $R1
      ${If} $R1 != ""
!macroend

!macro END_EACH_NAME
      ${EndIf}
    ${Loop}
    FileClose $R0
  ${EndIf}
!macroend

; Up the folders of $R1 below FOLDER, as long as they are empty. Eats $R1.
!macro REMOVE_EMPTY_FOLDERS UN FOLDER
  ${Do}
    ${${UN}GetParent} $R1 $R1
    ${If} $R1 == ""
      ${ExitDo}
    ${EndIf}
    ClearErrors
    RMDir "${FOLDER}\$R1"
  ${LoopUntil} ${Errors}
!macroend

; Removes from FOLDER what the list in it names, and the folders that are empty then, FOLDER too.
; What the list does not name stays, whoever put it there.
!macro REMOVE_LISTED_FILES UN FOLDER
  StrCpy $R5 "${FOLDER}"
  ${If} ${FileExists} "$R5\${FILE_LIST}"
    ; An open list could not be removed itself.
    InitPluginsDir
    CopyFiles /SILENT "$R5\${FILE_LIST}" "$PLUGINSDIR\list.txt"
    !insertmacro EACH_NAME "${UN}" "$PLUGINSDIR\list.txt"
      Delete "$R5\$R1"
      !insertmacro REMOVE_EMPTY_FOLDERS "${UN}" $R5
    !insertmacro END_EACH_NAME
    RMDir "$R5"
  ${EndIf}
  ClearErrors
!macroend
