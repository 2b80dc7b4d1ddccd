;; An error inside *error* is reported, not handled again.
(defun *error* (message)
  (princ (strcat "handler: " message "\n"))
  (car 5))
(strcat 1)
