;; (exit) in *error* ends the handler quietly.
(defun *error* (message)
  (princ (strcat "handler: " message "\n"))
  (exit)
  (princ "never reached\n"))
(strcat 1)
