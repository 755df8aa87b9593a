; SPDX-FileCopyrightText: The Folidex authors
; SPDX-License-Identifier: Apache-2.0
;
; How the new version's files take the place of the older one's: all of them, or none. They are
; written to a folder beside the older ones (a full disk shows there), those are set aside, and the
; new ones moved in. What no list names is not touched. Uses $R0 to $R4.

!define FRESH "new-files"
!define ASIDE "replaced-files"

; The file that could not be exchanged; empty while all goes well.
Var in_the_way

; Lays the files out in the fresh folder. A file that cannot be written ends the installation.
!macro WRITE_FRESH_FILES
  SetOutPath "$INSTDIR\${FRESH}"
  ClearErrors
  File /r "${STAGE}/*"
  WriteUninstaller "$INSTDIR\${FRESH}\uninstall.exe"
  ${If} ${Errors}
    Call remove_fresh_files
    !insertmacro FAIL "Folidex could not be written to $INSTDIR."
  ${EndIf}
!macroend

; What an installation left that did not come to its end.
!macro REMOVE_LEFTOVERS FOLDER
  RMDir /r "${FOLDER}\${FRESH}"
  RMDir /r "${FOLDER}\${ASIDE}"
!macroend

Function remove_fresh_files
  ; The folder that a process works in cannot be removed.
  SetOutPath $TEMP
  RMDir /r "$INSTDIR\${FRESH}"
  RMDir $INSTDIR
FunctionEnd

!macro MAKE_FOLDER_OF FILE
  ${GetParent} "${FILE}" $R2
  CreateDirectory $R2
!macroend

Function set_aside
  ${If} $in_the_way == ""
  ${AndIf} ${FileExists} "$INSTDIR\$R1"
    !insertmacro MAKE_FOLDER_OF "$INSTDIR\${ASIDE}\$R1"
    ClearErrors
    ${If} ${FileExists} "$INSTDIR\$R1\*.*"
      ; A folder of that name, and what is in it, is nobody's to remove.
      SetErrors
    ${Else}
      Rename "$INSTDIR\$R1" "$INSTDIR\${ASIDE}\$R1"
    ${EndIf}
    ${If} ${Errors}
      StrCpy $in_the_way "$INSTDIR\$R1"
    ${EndIf}
  ${EndIf}
FunctionEnd

Function put_in_place
  ${If} $in_the_way == ""
    !insertmacro MAKE_FOLDER_OF "$INSTDIR\$R1"
    ClearErrors
    Rename "$INSTDIR\${FRESH}\$R1" "$INSTDIR\$R1"
    ${If} ${Errors}
      StrCpy $in_the_way "$INSTDIR\$R1"
    ${EndIf}
  ${EndIf}
FunctionEnd

Function put_back
  ${If} ${FileExists} "$INSTDIR\${ASIDE}\$R1"
    Rename "$INSTDIR\${ASIDE}\$R1" "$INSTDIR\$R1"
  ${EndIf}
  StrCpy $R2 $R1
  !insertmacro REMOVE_EMPTY_FOLDERS "" "$INSTDIR\${ASIDE}"
  StrCpy $R1 $R2
FunctionEnd

Function exchange_files
  StrCpy $in_the_way ""
  InitPluginsDir
  CopyFiles /SILENT "$INSTDIR\${FILE_LIST}" "$PLUGINSDIR\older.txt"
  CopyFiles /SILENT "$INSTDIR\${FRESH}\${FILE_LIST}" "$PLUGINSDIR\fresh.txt"
  !insertmacro EACH_NAME "" "$PLUGINSDIR\older.txt"
    Call set_aside
  !insertmacro END_EACH_NAME
  !insertmacro EACH_NAME "" "$PLUGINSDIR\fresh.txt"
    Call set_aside
  !insertmacro END_EACH_NAME
  !insertmacro EACH_NAME "" "$PLUGINSDIR\fresh.txt"
    Call put_in_place
  !insertmacro END_EACH_NAME
  ${If} $in_the_way != ""
    Call restore_older_version
    !insertmacro FAIL "Folidex could not be written to $INSTDIR: $in_the_way cannot be replaced."
  ${EndIf}
  RMDir /r "$INSTDIR\${ASIDE}"
  !insertmacro EACH_NAME "" "$PLUGINSDIR\older.txt"
    !insertmacro REMOVE_EMPTY_FOLDERS "" $INSTDIR
  !insertmacro END_EACH_NAME
  Call remove_fresh_files
FunctionEnd

Function restore_older_version
  !insertmacro EACH_NAME "" "$PLUGINSDIR\fresh.txt"
    ${IfNot} ${FileExists} "$INSTDIR\${FRESH}\$R1"
      Delete "$INSTDIR\$R1"
    ${EndIf}
  !insertmacro END_EACH_NAME
  !insertmacro EACH_NAME "" "$PLUGINSDIR\older.txt"
    Call put_back
  !insertmacro END_EACH_NAME
  !insertmacro EACH_NAME "" "$PLUGINSDIR\fresh.txt"
    Call put_back
    !insertmacro REMOVE_EMPTY_FOLDERS "" $INSTDIR
  !insertmacro END_EACH_NAME
  RMDir "$INSTDIR\${ASIDE}"
  Call remove_fresh_files
FunctionEnd
