@echo off
rem Tries Pixora on this PC: says first what it will do, and asks.
"%~dp0tests\PixoraTests.exe" %*
