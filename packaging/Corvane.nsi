; The installer. scripts/package runs makensis with VERSION, STAGE (the folder to install), LISTS (files.nsh, unfiles.nsh)
; and OUTPUT.
;
; Switches: /S silent, /AllUsers or /CurrentUser, /D=folder (the last one, without quotes).
; Exit codes: 0 done; 1 cancelled; 2 refused, nothing was changed; 3 installed, but the driver is not registered: the
; vendor's libraries are missing.
Unicode true
Name "Corvane ${VERSION}"
OutFile "${OUTPUT}"
SetCompressor /SOLID lzma

!define UninstallKey "Software\Microsoft\Windows\CurrentVersion\Uninstall\Corvane"
!define Settings "Software\Vrex\ADC\L-Card\LTR27"

!define MULTIUSER_EXECUTIONLEVEL Highest
!define MULTIUSER_MUI
!define MULTIUSER_INSTALLMODE_COMMANDLINE
!define MULTIUSER_INSTALLMODE_INSTDIR Corvane
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_KEY "${UninstallKey}"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_VALUENAME UninstallString
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_KEY "${UninstallKey}"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_VALUENAME InstallLocation
!include MultiUser.nsh
!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh

!define MUI_ICON "${STAGE}\..\driver.ico"
!define MUI_UNICON "${STAGE}\..\driver.ico"
!define MUI_ABORTWARNING
!insertmacro MUI_PAGE_WELCOME
!insertmacro MULTIUSER_PAGE_INSTALLMODE
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_SHOWREADME "$INSTDIR\guide\$(GuideFile)"
!define MUI_FINISHPAGE_SHOWREADME_TEXT $(ShowGuide)
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English
!insertmacro MUI_LANGUAGE Russian
!include texts.nsh

VIProductVersion "${VERSION}.0"
VIAddVersionKey /LANG=0 ProductName "Corvane"
VIAddVersionKey /LANG=0 ProductVersion "${VERSION}"
VIAddVersionKey /LANG=0 FileVersion "${VERSION}"
VIAddVersionKey /LANG=0 FileDescription "Corvane setup"
VIAddVersionKey /LANG=0 LegalCopyright "MIT licence"

Var ThisUser    ; "--this-user", or nothing
Var Registered  ; the driver's file that hosts load
Var Earlier     ; the folder of the version that was installed before
Var Code
Var Text

; Runs the recorder in the folder with these arguments: $Code is its exit code, $Text what it says. It says that in UTF-8,
; and nsExec takes the bytes for the system's code page.
!macro Recorder folder arguments
  nsExec::ExecToStack '"${folder}\ltr27rec.exe" ${arguments}'
  Pop $Code
  Pop $Text
  System::Call '*(&m${NSIS_MAX_STRLEN} "$Text")p.r0'
  System::Call 'kernel32::MultiByteToWideChar(i 65001, i 0, p r0, i -1, w .s, i ${NSIS_MAX_STRLEN})'
  Pop $Text
  System::Free $0
  ${If} $Code == error
    StrCpy $Text "$(NotRun)"
  ${EndIf}
!macroend

; What both halves begin with. Refuses while a program has the driver loaded, or the file can't be replaced for another
; reason.
!macro Begin un
Function ${un}Begin
  StrCpy $ThisUser ""
  ${If} $MultiUser.InstallMode == CurrentUser
    StrCpy $ThisUser --this-user
  ${EndIf}
  ReadRegStr $0 SHCTX "Software\Classes\Tessmark.Corvane\CLSID" ""
  ReadRegStr $Registered SHCTX "Software\Classes\CLSID\$0\InprocServer32" ""
  retry:
  !insertmacro Recorder "$PLUGINSDIR" 'driver --programs --folder "$INSTDIR"'
  ${If} $Code == error
    StrCpy $Text ""  ; no list of programs: whether one has the file, it tells itself
  ${EndIf}
  ${If} $Text == ""
  ${AndIf} ${FileExists} "$INSTDIR\Corvane.adc"
    ClearErrors
    FileOpen $0 "$INSTDIR\Corvane.adc" a
    ${If} ${Errors}
      StrCpy $Text "$(Unknown)"
    ${Else}
      FileClose $0
    ${EndIf}
  ${EndIf}
  ${If} $Text != ""
    DetailPrint "$(InUse) $Text"
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(InUse)$\r$\n$\r$\n$Text$\r$\n$(CloseThem)" /SD IDCANCEL IDRETRY retry
    SetErrorLevel 2
    Quit
  ${EndIf}
FunctionEnd
!macroend
!insertmacro Begin ""
!insertmacro Begin "un."

Function .onInit
  StrCpy $0 $INSTDIR  ; of /D=
  !insertmacro MULTIUSER_INIT
  ${If} $0 != ""
    StrCpy $INSTDIR $0
  ${EndIf}
  InitPluginsDir
  File "/oname=$PLUGINSDIR\ltr27rec.exe" "${STAGE}\ltr27rec.exe"
FunctionEnd

; Takes an earlier version away, with files that this one no longer has. What the user has in its folder comes into the
; new one.
Function RemoveEarlier
  ReadRegStr $Earlier SHCTX "${UninstallKey}" InstallLocation
  ${If} $Earlier == ""
    StrCpy $Earlier "$INSTDIR"
  ${EndIf}
  ${If} ${FileExists} "$Earlier\uninstall.exe"
    CopyFiles /SILENT "$Earlier\uninstall.exe" "$PLUGINSDIR\earlier.exe"
    ExecWait '"$PLUGINSDIR\earlier.exe" /S /$MultiUser.InstallMode /upgrade _?=$Earlier' $1
    ${If} $1 != 0
      SetErrorLevel 2
      Abort "$(EarlierStays)"
    ${EndIf}
    Delete "$Earlier\uninstall.exe"
  ${EndIf}
  ${If} $Earlier != $INSTDIR
    CreateDirectory "$INSTDIR\simulator"
    Rename "$Earlier\iplist.txt" "$INSTDIR\iplist.txt"
    Rename "$Earlier\simulator\iplist.txt" "$INSTDIR\simulator\iplist.txt"
    Rename "$Earlier\ltrapi.dll" "$INSTDIR\ltrapi.dll"
    Rename "$Earlier\ltr27api.dll" "$INSTDIR\ltr27api.dll"
    RMDir "$INSTDIR\simulator"
    RMDir "$Earlier\simulator"
    RMDir "$Earlier"
  ${EndIf}
FunctionEnd

; Finds the vendor's libraries, has them copied where that helps, and lets the driver register itself.
Function RegisterDriver
  !insertmacro Recorder "$INSTDIR" "driver --libraries"
  DetailPrint "$Text"
  ${If} $Code == 6
    MessageBox MB_YESNO|MB_ICONQUESTION "$Text$\r$\n$(CopyThem)" /SD IDYES IDNO stay
    !insertmacro Recorder "$INSTDIR" "driver --copy-libraries"
    DetailPrint "$Text"
    stay:
  ${EndIf}
  ${If} $Registered == "$Earlier\simulator\Corvane.adc"
  ${AndIf} ${FileExists} "$INSTDIR\simulator\Corvane.adc"
    !insertmacro Recorder "$INSTDIR" "driver --simulator $ThisUser"  ; as it was chosen before
  ${Else}
    !insertmacro Recorder "$INSTDIR" "driver --real $ThisUser"
  ${EndIf}
  DetailPrint "$Text"
  ${If} $Code != 0
    SetErrorLevel 3
    MessageBox MB_OK|MB_ICONINFORMATION "$Text$\r$\n$(RegisterLater)" /SD IDOK
  ${EndIf}
FunctionEnd

Section "$(DriverSection)" Driver
  SectionIn RO
  Call Begin
  Call RemoveEarlier
  !include "${LISTS}/files.nsh"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  WriteRegStr SHCTX "${UninstallKey}" DisplayName "Corvane"
  WriteRegStr SHCTX "${UninstallKey}" DisplayVersion "${VERSION}"
  WriteRegStr SHCTX "${UninstallKey}" DisplayIcon "$INSTDIR\Corvane.adc"
  WriteRegStr SHCTX "${UninstallKey}" InstallLocation "$INSTDIR"
  WriteRegStr SHCTX "${UninstallKey}" UninstallString '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode'
  WriteRegStr SHCTX "${UninstallKey}" QuietUninstallString '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode /S'
  WriteRegDWORD SHCTX "${UninstallKey}" NoModify 1
  WriteRegDWORD SHCTX "${UninstallKey}" NoRepair 1
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  WriteRegDWORD SHCTX "${UninstallKey}" EstimatedSize $0

  CreateDirectory "$SMPROGRAMS\Corvane"
  SetOutPath "$DOCUMENTS"
  CreateShortcut "$SMPROGRAMS\Corvane\$(RecorderLink).lnk" "$SYSDIR\cmd.exe" '/k "$INSTDIR\console.cmd"' "$INSTDIR\Corvane.adc"
  SetOutPath "$INSTDIR"
  CreateShortcut "$SMPROGRAMS\Corvane\$(GuideLink).lnk" "$INSTDIR\guide\$(GuideFile)"
  CreateShortcut "$SMPROGRAMS\Corvane\$(RegisterLink).lnk" "$SYSDIR\cmd.exe" '/k ""$INSTDIR\ltr27rec.exe" driver --real $ThisUser"' "$INSTDIR\Corvane.adc"
  CreateShortcut "$SMPROGRAMS\Corvane\$(RemoveLink).lnk" "$INSTDIR\uninstall.exe" /$MultiUser.InstallMode
SectionEnd

Section "$(SimulatorSection)" Simulator
  !include "${LISTS}/simulator_files.nsh"
  CreateShortcut "$SMPROGRAMS\Corvane\$(SimulatorLink).lnk" "$SYSDIR\cmd.exe" '/k ""$INSTDIR\ltr27rec.exe" driver --simulator $ThisUser"' "$INSTDIR\Corvane.adc"
SectionEnd

Section -Registration
  Call RegisterDriver
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
  !insertmacro MUI_DESCRIPTION_TEXT ${Driver} "$(DriverText)"
  !insertmacro MUI_DESCRIPTION_TEXT ${Simulator} "$(SimulatorText)"
!insertmacro MUI_FUNCTION_DESCRIPTION_END

Function un.onInit
  !insertmacro MULTIUSER_UNINIT
  InitPluginsDir
  File "/oname=$PLUGINSDIR\ltr27rec.exe" "${STAGE}\ltr27rec.exe"  ; whatever has become of the installed one
FunctionEnd

Section Uninstall
  Call un.Begin
  ; Another copy that was registered since stays so.
  ${If} $Registered == "$INSTDIR\Corvane.adc"
  ${OrIf} $Registered == "$INSTDIR\simulator\Corvane.adc"
    !insertmacro Recorder "$PLUGINSDIR" 'driver --unregister $ThisUser --folder "$INSTDIR"'
    DetailPrint "$Text"
    ${If} $Code != 0
      MessageBox MB_OK|MB_ICONEXCLAMATION "$Text" /SD IDOK
      SetErrorLevel 2
      Quit
    ${EndIf}
  ${EndIf}
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} "$0" "/upgrade" $1
  IfErrors 0 keep
  ; Copies that only this driver used.
  Delete "$INSTDIR\ltrapi.dll"
  Delete "$INSTDIR\ltr27api.dll"
  MessageBox MB_YESNO|MB_ICONQUESTION|MB_DEFBUTTON2 "$(RemoveSettings)" /SD IDNO IDNO keep
  Delete "$INSTDIR\iplist.txt"
  Delete "$INSTDIR\simulator\iplist.txt"
  DeleteRegKey HKCU "${Settings}"
  DeleteRegKey /ifempty HKCU "Software\Vrex\ADC\L-Card"
  DeleteRegKey /ifempty HKCU "Software\Vrex\ADC"
  DeleteRegKey /ifempty HKCU "Software\Vrex"
  keep:
  ; Its links, in whichever language they were made.
  Delete "$SMPROGRAMS\Corvane\*.lnk"
  RMDir "$SMPROGRAMS\Corvane"
  !include "${LISTS}/unfiles.nsh"
  Delete "$INSTDIR\uninstall.exe"
  SetOutPath "$TEMP"
  RMDir "$INSTDIR"
  DeleteRegKey SHCTX "${UninstallKey}"
SectionEnd
