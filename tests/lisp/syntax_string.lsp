(princ "printed before\n")
(setq a 1)
(princ "never closed)
(princ a)
