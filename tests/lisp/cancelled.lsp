;; Esc at a prompt ends the program with the usual cancel error.
(defun c:ask () (getstring "\nName: ") (princ "never reached\n"))
(c:ask)
