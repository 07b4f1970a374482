@rem Installs Ledger 2.7.1 beside this file and lets Kestrane bring it up to date.
@xcopy /e /i /q /y "%~dp0ledger-2.7.1" "%~dp0installed"
@copy /y "%~dp0..\Kestrane.exe" "%~dp0installed"
@start "" "%~dp0installed\Kestrane.exe" "2.7.1" "%~dp0installed" "http://127.0.0.1:28080/update.txt#key=51bce7f3c734369c2cc7252dceda1e7f0d5dda4bbac919258508ebcd86752581" "%~dp0installed\ledger.exe" "YES" "Ledger"
