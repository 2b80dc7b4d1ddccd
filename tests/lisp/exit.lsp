;; (exit) is no error; expressions behind the program are not run, and the drawing is saved.
(princ "before\n")
(defun leave () (exit))
(leave)
(princ "never reached\n")
