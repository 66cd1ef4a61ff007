10 A$="X"
20 A$=A$+A$; A$=A$+A$; A$=A$+A$; A$=A$+A$; A$=A$+A$
30 A$=A$+A$; A$=A$+A$; A$=A$+A$; A$=A$+A$; A$=A$+A$
40 A$=A$+A$; A$=A$+A$; A$=A$+A$; A$=A$+A$; A$=A$+A$
50 A$=A$+A$; A$=A$+A$; A$=A$+A$; A$=A$+A$; A$=A$+A$
60 A$[1048577]="END"
70 PRINT A$[65534;4];"|";A$[65535;3];"|"
80 B$=A$
90 PRINT B$[1,3];B$=A$;B$[65535]=A$[65535]
100 A$[3,1]="Q"
110 PRINT "NOT REACHED"
