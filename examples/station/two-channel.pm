Power meter, two channels
 14
*CLS
FREQ
MHZ
CHA
CHB
READA?
READB?
TRGA
TRGB
 215
STBY
 1
 1
 1000
 .01
 .1
 2
Mid(x, 4)
