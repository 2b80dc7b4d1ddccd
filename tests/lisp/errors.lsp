;; The texts of errors, as *error* and vl-catch-all-error-message give them.
(load "helpers/show")
(defun two (a b) (list a b))
(foreach form
  '((no-such-function) (two 1) (two 1 2 3) (car 1 2) (car) (+ 1 nil) (1+ "a") (strcat nil)
    (strlen 5) (substr "abc" "x") (nth 1.5 '(1)) (length 'a) (mapcar '5 '(1)) (apply 'no-such '(1))
    (/ 5 0) (vl-exit-with-error "my own words") (exit) (quit) (if) (if 1 2 3 4) (setq a) (setq 1 2)
    (repeat "x" 1) (repeat -1 5) (foreach 5 '(1) 1) (foreach x 5 1) (while) (lambda) (cond 5)
    (read "(a") (read "\"a") (chr "a") (itoa "1") (vl-catch-all-error-message 5) (getvar 5)
    (setvar "NOSUCHVARIABLE" 1) (load "no such file") (open 5 "r") (open "a" "q")
    (close 5) (expt "a" 1) (logand 1.5) (lsh 1 "a") (vl-sort '(1 a) '<) ("not a function" 1) (nil 1))
  (show form))
(princ)
