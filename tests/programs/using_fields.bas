10 REM Numeric and string fields, literals, groups and line endings
20 IMAGE 8.2d
30 PRINT USING 20;3.14159
40 PRINT USING "8d.2";3.14159
50 PRINT USING "#,-8.2d";3.14159
60 PRINT "|"
70 PRINT USING "08.2d,x,08.2d";-1.5,1.5
80 PRINT USING "3(4d)";1,2,3,4,5
90 PRINT USING "x,s5d,s5d,s5d,s05.1d";12,-12,0,1.5
100 PRINT USING "d,x,d,x,d,x,.3d,x,6.12d";2.5,0.49,-0.5,-0.0004,1.5
110 PRINT USING "'91,5a,'93,'91,-5a,'93,'91,5.2a,'93,'91,2a,'93";"ab","ab","abc","abcdef"
120 PRINT USING "'91,05a,'93,'91,*.3a,'93";"ab","abcdef"
130 IMAGE "Sum: " "of two",3x,4d,/,"next line"
140 PRINT USING 130;12
150 IMAGE 2("<",2(d),">"),'33
160 PRINT USING 150;1,2,3,4
170 PRINT USING "#,3d";1
180 PRINT USING "#,3d";2
190 IMAGE +,"-carriage return"
200 PRINT USING 190
210 PRINT "over"
220 IMAGE -,"line feed only"
230 PRINT USING 220
240 PRINT "|"
250 IMAGE "no value left: ",3d,"|",3d,"|"
260 PRINT USING 250;7
270 IMAGE "runs once: ",'34,'34
280 PRINT USING 270;1,2,3
290 IMAGE 3d,q,"never"
300 PRINT USING 290;1,2,3
310 PRINT USING "5d,2x,-5d,'124";"ab","cd"
320 PRINT USING "9a,9.2a";2.5,-1000
330 PRINT USING "";1
340 A=1/3
350 PRINT USING "x,*.5d,x,*.*d,x,*d";A,A*3,-A
360 PRINT USING "12.2d,12.2d";1E30,-3.4E38
370 IMAGE 2(")"),"(",2(d)
380 PRINT USING 370;5,6,7
390 END
