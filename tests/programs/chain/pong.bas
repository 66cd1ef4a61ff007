10 COM K,P$,V(3),W$(2),U$[10],Q(2,2)
20 REM Pong: the same COM list under other names
30 PRINT "PONG";K;P$;V(1);V(2);V(3);W$(1);W$(2);U$;Q(1,1);Q(2,2)
40 P$=P$+"-PONG"
50 V(K)=V(K)+1
60 W$(1)=W$(1)+"!"
70 U$=U$+"U"
80 Q(2,2)=Q(2,2)*2
90 CHAIN "chain_pair.bas",LOOP
