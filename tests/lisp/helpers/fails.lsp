;; Fails in line 4.
(defun fail-here (x)
  (strcat "a"
          (itoa x)))
(fail-here "no number")
