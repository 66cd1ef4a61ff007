10 REM no line feed
20 END