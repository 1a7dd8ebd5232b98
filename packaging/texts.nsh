; The installer's own texts, in both languages.
!macro Text name english russian
  LangString ${name} ${LANG_ENGLISH} "${english}"
  LangString ${name} ${LANG_RUSSIAN} "${russian}"
!macroend

!insertmacro Text DriverSection "Driver and recorder" "Драйвер и регистратор"
!insertmacro Text DriverText "Corvane.adc for recording applications, ltr27rec for the command line, the guide and examples." "Corvane.adc для программ регистрации, ltr27rec для командной строки, руководство и примеры."
!insertmacro Text SimulatorSection "Simulated crate" "Имитатор крейта"
!insertmacro Text SimulatorText "To try everything without a crate. Lies in a folder of its own and changes nothing until it is chosen." "Чтобы попробовать всё без крейта. Лежит в своей папке и ничего не меняет, пока его не выберут."
!insertmacro Text GuideFile "guide.html" "guide.ru.html"
!insertmacro Text ShowGuide "Open the guide" "Открыть руководство"
!insertmacro Text RecorderLink "Recorder" "Регистратор"
!insertmacro Text GuideLink "Guide" "Руководство"
!insertmacro Text RegisterLink "Register the driver" "Зарегистрировать драйвер"
!insertmacro Text SimulatorLink "Use the simulated crate" "Использовать имитатор крейта"
!insertmacro Text RemoveLink "Uninstall" "Удалить"
!insertmacro Text InUse "The driver is in use by:" "Драйвер используется программой:"
!insertmacro Text CloseThem "Close it, then try again." "Закройте её и повторите."
!insertmacro Text Unknown "a program of another user" "программа другого пользователя"
!insertmacro Text EarlierStays "The earlier version could not be removed. Nothing was installed." "Прежнюю версию не удалось удалить. Ничего не установлено."
!insertmacro Text CopyThem "Copy them there now?" "Скопировать их туда сейчас?"
!insertmacro Text RegisterLater "The driver is installed, but not registered. When both libraries are there, choose Register the driver in the Start menu. To try it without a crate, choose Use the simulated crate." "Драйвер установлен, но не зарегистрирован. Когда обе библиотеки будут на месте, выберите в меню «Пуск» пункт «Зарегистрировать драйвер». Чтобы попробовать его без крейта, выберите «Использовать имитатор крейта»."
!insertmacro Text RemoveSettings "Remove the list of servers and your settings, too?" "Удалить также список серверов и ваши настройки?"
