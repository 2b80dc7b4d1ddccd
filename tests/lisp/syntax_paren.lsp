(princ "printed before\n")
(princ (+ 1 2)))
(princ "never reached")
