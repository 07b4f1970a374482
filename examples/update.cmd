@rem Installs Ledger 2.7.1 beside this file and lets Kestrane bring it up to date.
@xcopy /e /i /q /y "%~dp0ledger-2.7.1" "%~dp0installed"
@copy /y "%~dp0..\Kestrane.exe" "%~dp0installed"
@start "" "%~dp0installed\Kestrane.exe" "2.7.1" "%~dp0installed" "http://127.0.0.1:8000/ledger/update.txt" "%~dp0installed\ledger.exe" "YES" "Ledger"
