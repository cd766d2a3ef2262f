@echo off
rem uninstall.cmd            undoes install.cmd
rem uninstall.cmd machine    undoes install.cmd machine, as administrator
call "%~dp0install.cmd" remove %*
