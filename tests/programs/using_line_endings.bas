10 REM The first character of a format chooses the line ending; TAB shows the column
20 PRINT USING "-8.2d";3.14159
30 PRINT TAB(10);"after a line feed only, column 8"
40 PRINT USING "+,"'34"ab"'34
50 PRINT TAB(4);"after a carriage return"
60 PRINT USING "#,8.2d";2.5
70 PRINT TAB(10);"no ending"
80 PRINT USING "8.2d";2.5
90 PRINT TAB(10);"carriage return and line feed"
100 PRINT USING '34'34",-8.2d,"'34"|"'34;2.5
