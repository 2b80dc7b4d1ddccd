;; Data without end is an error at the limit. What the failed function held is free again, so a
;; program that catches the error goes on.
(defun gather-cells (/ all) (while T (setq all (cons 1 all))))
(defun gather-text (/ all) (setq all "x") (while T (setq all (strcat all all))))
(foreach function '(gather-cells gather-text gather-cells)
  (princ (vl-catch-all-error-message (vl-catch-all-apply function nil)))
  (terpri))
(setq kept nil)
(repeat 100000 (setq kept (cons 1 kept)))
(princ (length kept)) (terpri)
(gather-cells)
(princ "never reached\n")
