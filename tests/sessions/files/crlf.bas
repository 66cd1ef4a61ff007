10 REM crlf
20 END
