;; Types and symbols.
(load "helpers/show")
(defun mine () nil)
(foreach form
  '((type 1) (type 1.5) (type "a") (type 'a) (type '(1)) (type '(1 . 2)) (type nil) (type T)
    (type car) (type mine) (type (lambda (x) x)) (type (open "types.lsp" "r"))
    (type (vl-catch-all-apply '/ '(1 0))) (type sg_append)
    (numberp nil) (listp "a") (atom "a") (vl-symbolp 'a) (vl-symbolp nil) (vl-symbolp "a")
    (vl-symbol-name 'mine) (vl-symbol-value 'mine2) (vl-symbol-name "a")
    (set 'a 5) a (set "b" 1) (eval 'a) (eval ''a) (quote a) (function car)
    (atoms-family 1 '("CAR" "mine" "NO-SUCH")) (equal 'a "a") (eq "a" "b"))
  (show form))
(princ)
