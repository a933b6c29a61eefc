@echo off
rem Starts the tests in this folder. What it can be asked: run-tests.cmd --help
setlocal
set keep=yes
for %%a in (%*) do if "%%~a"=="--no-pause" set keep=no
if not exist "%~dp0bin\run_tests.exe" goto missing
"%~dp0bin\run_tests.exe" %*
set result=%errorlevel%
goto end
:missing
echo The programs are not beside this file: unpack the whole archive first, then start run-tests.cmd again.
set result=2
:end
if %keep%==yes pause
exit /b %result%
