
 .15
 80
True
 1
 5
 1
 1
False

 1
 1
 80
 1
 10
 1
 2.5
 5
False
 0
-10
 3
 .1
 0
False
 0
False
False
 0
 150
True
False





