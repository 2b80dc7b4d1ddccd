;; Data without end is an error at the limit, and the program's handler still runs.
(defun *error* (message) (princ (strcat "handler: " message "\n")))
(setq all nil)
(while T (setq all (cons (strcat "a string " (itoa (length (list 1 2 3)))) all)))
