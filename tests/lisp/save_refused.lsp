;; A failed program's drawing is not saved.
(princ "about to fail\n")
(car 5)
