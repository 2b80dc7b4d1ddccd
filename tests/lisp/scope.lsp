;; Variables are dynamically scoped: a function sees those of its callers.
(load "helpers/show")

(setq level 'global)
(defun which () level)
(defun inner (level) (which))
(defun outer (/ level) (setq level 'outer) (list (which) (inner 'inner) (which)))
(show '(outer))
(show '(which))

;; A local variable starts as nil and is put back when the function ends, by an error too.
(defun break-off (/ level) (setq level 'lost) (car 5))
(show '(break-off))
(show '(which))

;; An argument that is a local too keeps what was passed.
(defun twice (x / x2) (setq x2 (* 2 x)) (list x x2))
(show '(twice 4))
(show 'x2)

;; setq in a function reaches the caller's variable.
(defun change () (setq level 'changed))
(defun keep (level) (change) level)
(show '(keep 'mine))
(show '(which))

;; foreach has a variable of its own.
(setq item 'before)
(foreach item '(1 2 3) (princ item))
(terpri)
(show 'item)

;; Functions are values of the same variables as data.
(setq double '(lambda (x) (* 2 x)))
(show '(double 21))
(defun-q listed (a) (list a a))
(show 'listed)
(show '(listed 1))
(setq car-of car)
(show '(car-of '(a b)))
(show '(type car-of))
(show '(type outer))
(show '(undefined-function 1))
(show '((quote 5) 1))
(show '(setq t 1))
(show '(boundp 'level))
(show '(boundp 'no-such-variable))
(princ)
