@rem The recorder's console, from the Start menu: in the user's documents, with ltr27rec on the path.
@set "PATH=%~dp0;%PATH%"
@ltr27rec --help
