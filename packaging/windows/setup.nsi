; The kit as one program: unpacks it, and lets install.cmd register it for the user who runs it. /S asks nothing,
; /D=FOLDER chooses where. makensis -DVERSION=... -DKIT=FOLDER -DOUT=FILE
Unicode true
SetCompressor /SOLID lzma
Name "Quorix ${VERSION}"
OutFile "${OUT}"
RequestExecutionLevel user
InstallDir "$LOCALAPPDATA\Programs\Quorix"
!define ENTRY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Quorix"

Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

; Leaves with 2 what could not be registered.
!macro Run script
    nsExec::ExecToLog '"$SYSDIR\cmd.exe" /c ""$INSTDIR\${script}""'
    Pop $0
    StrCmp $0 0 +3
    SetErrorLevel 2
    Abort "${script} has failed."
!macroend

Section
    SetOutPath $INSTDIR
    File /r "${KIT}\*"
    !insertmacro Run install.cmd
    WriteUninstaller "$INSTDIR\uninstall.exe"
    WriteRegStr HKCU "${ENTRY}" "DisplayName" "Quorix ${VERSION}"
    WriteRegStr HKCU "${ENTRY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${ENTRY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
SectionEnd

; Takes away what it brought, and the folder only when nothing else is in it.
Section Uninstall
    !insertmacro Run uninstall.cmd
    RMDir /r "$INSTDIR\win32"
    RMDir /r "$INSTDIR\win64"
    RMDir /r "$INSTDIR\samples"
    RMDir /r "$INSTDIR\licenses"
    Delete "$INSTDIR\README.txt"
    Delete "$INSTDIR\install.cmd"
    Delete "$INSTDIR\uninstall.cmd"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    DeleteRegKey HKCU "${ENTRY}"
SectionEnd
