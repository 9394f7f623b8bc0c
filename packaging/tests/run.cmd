@echo off
rem A double click on run.ps1 would open an editor; one on this file runs it.
if not exist "%~dp0run.ps1" (
  echo Unpack the whole zip to a folder on this machine first.
  pause
  exit /b 2
)
powershell.exe -NoProfile -ExecutionPolicy Bypass -File "%~dp0run.ps1" %*
set code=%errorlevel%
pause
exit /b %code%
