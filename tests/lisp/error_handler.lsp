;; *error* runs while the variables of the failed function are still bound.
(setq mode 'idle)

(defun work (/ mode *error*)
  (defun *error* (message)
    (princ (strcat "handler: " message "\n"))
    (princ "mode in the handler: ") (prin1 mode) (terpri)
    (princ))
  (setq mode 'working)
  (car 5)
  (princ "never reached\n"))

(work)
