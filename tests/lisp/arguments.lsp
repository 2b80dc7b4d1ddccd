;; What stands behind "--" belongs to the program.
(foreach argument (host-arguments) (prin1 argument) (terpri))
(princ)
