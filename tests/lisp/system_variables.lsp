;; System variables have types, ranges and some are read-only.
(load "helpers/show")
(foreach form
  '((getvar "LUNITS") (setvar "LUNITS" 4) (getvar "lunits") (rtos 30.5) (setvar 'LUNITS 2)
    (setvar "LUNITS" 9) (setvar "LUNITS" "x") (getvar "NOSUCHVARIABLE") (setvar "DWGNAME" "x")
    (getvar "DWGNAME") (setvar "CLAYER" "0") (setvar "DIMSCALE" 2) (getvar "DIMSCALE")
    (setvar "CMDECHO" 0) (getvar "CMDECHO") (setvar "LASTPOINT" '(1 2 3)) (getvar "LASTPOINT")
    (type (getvar "ACADVER")) (getvar 5))
  (show form))
(princ)
