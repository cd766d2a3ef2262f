@echo off
rem install.cmd            registers Quorix for the current user
rem install.cmd machine    registers it for everybody, as administrator
setlocal
set "switches=/s"
if /i "%~1"=="remove" (
    set "switches=/s /u"
    shift
)
if /i not "%~1"=="machine" set "switches=%switches% /n /i:user"

rem A 32-bit command window of a 64-bit Windows sees its own programs where the 64-bit ones should be.
set "native=%SystemRoot%\System32"
set "processor=%PROCESSOR_ARCHITECTURE%"
if defined PROCESSOR_ARCHITEW6432 (
    set "native=%SystemRoot%\Sysnative"
    set "processor=%PROCESSOR_ARCHITEW6432%"
)
set "narrow=%native%"
if /i not "%processor%"=="x86" set "narrow=%SystemRoot%\SysWOW64"

set failed=
if /i "%processor%"=="AMD64" call :register "%native%" win64
if exist "%narrow%\regsvr32.exe" call :register "%narrow%" win32
if defined failed exit /b 1
echo Done.
exit /b 0

:register
"%~1\regsvr32.exe" %switches% "%~dp0%~2\quorix.dll"
if not errorlevel 1 goto :eof
echo %~2\quorix.dll could not be registered, or removed. For the whole machine, run this as administrator.
set failed=1
goto :eof
