;; An error that nobody handles ends the program: its text and the calls that led to it.
(defun cut (width)
  (/ 100 (- width 5)))

(defun each (widths)
  (mapcar 'cut widths))

(defun c:ducts (/ widths)
  (setq widths '(10 6 5))
  (princ "cutting\n")
  (each widths))

(princ "start\n")
(c:ducts)
(princ "never reached\n")
