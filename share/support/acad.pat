;; Hatch patterns. A pattern is a line with its name and description, and a line for each family
;; of lines: angle, x and y of the start, shift along and distance between lines, dashes.

*SOLID, Solid fill
45, 0,0, 0,.125
*ANSI31, Lines at 45 degrees
45, 0,0, 0,.125
*ANSI32, Pairs of lines at 45 degrees
45, 0,0, 0,.375
45, .176776695,0, 0,.375
*ANSI37, Crossed lines at 45 degrees
45, 0,0, 0,.125
135, 0,0, 0,.125
*LINE, Horizontal lines
0, 0,0, 0,.125
*NET, Horizontal and vertical lines
0, 0,0, 0,.125
90, 0,0, 0,.125
*NET3, Lines in three directions
0, 0,0, 0,.125
60, 0,0, 0,.125
120, 0,0, 0,.125
*DASH, Dashed horizontal lines
0, 0,0, .125,.125, .125,-.125
*DOTS, Dots
0, 0,0, .03125,.0625, 0,-.0625
*CROSS, Crosses
0, 0,0, .25,.25, .125,-.375
90, .0625,-.0625, .25,.25, .125,-.375
*GRATE, Grate
0, 0,0, 0,.03125
90, 0,0, 0,.125
*BRICK, Bricks
0, 0,0, 0,.25
90, 0,0, 0,.5, .25,-.25
90, .25,0, 0,.5, -.25,.25
*EARTH, Earth
0, 0,0, .25,.25, .25,-.25
0, 0,.09375, .25,.25, .25,-.25
0, 0,.1875, .25,.25, .25,-.25
90, .03125,.21875, .25,.25, .25,-.25
90, .125,.21875, .25,.25, .25,-.25
90, .21875,.21875, .25,.25, .25,-.25
