;; A list without an end.
(princ "printed before\n")
(defun unfinished (a b)
  (list a
        b)
