(princ "printed before\n")
(setq pair '(1 . 2 3))
