#!/usr/bin/env basic
PRINT "a script"

X = Y
