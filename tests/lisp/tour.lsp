;; The language in one page: what a drafting office's programs are made of.

;; Functions, local variables, recursion.
(defun factorial (n) (if (< n 2) 1 (* n (factorial (1- n)))))
(princ "10! = ") (princ (factorial 10)) (terpri)

(defun average (numbers / total)
  (setq total 0.0)
  (foreach n numbers (setq total (+ total n)))
  (/ total (length numbers)))
(princ (strcat "average: " (rtos (average '(3 4 8)) 2 2) "\n"))
(princ "total outside: ") (prin1 total) (terpri)

;; Functions are values.
(setq square (lambda (x) (* x x)))
(print (mapcar 'square '(1 2 3)))
(print (mapcar '+ '(1 2 3) '(10 20 30)))
(print (apply 'strcat (list "a" "b" "c")))
(print ((lambda (a b) (list b a)) 1 2))

;; Association lists and dotted pairs.
(setq duct '((8 . "M-DUCT") (40 . 12.5) (10 1.0 2.0 0.0)))
(print (cdr (assoc 8 duct)))
(print (cdr (assoc 10 duct)))
(print (subst (cons 8 "M-PIPE") (assoc 8 duct) duct))

;; Loops.
(setq i 0 squares nil)
(while (< i 5) (setq squares (cons (* i i) squares) i (1+ i)))
(print (reverse squares))
(setq line "")
(repeat 3 (setq line (strcat line "-=")))
(print line)

;; Choices.
(defun size-name (width)
  (cond ((< width 10) "small")
        ((< width 20) 'medium)
        (T (list "large" width))))
(print (mapcar 'size-name '(5 15 25)))

;; Data that is a program.
(setq form (list '+ 1 2 (list '* 3 4)))
(print form) (princ "= ") (prin1 (eval form))
(print (eval (read "(strcat \"read \" \"and run\")")))

;; A command, called as a function.
(defun c:greet () (princ "\nHello from a command.") (princ))
(c:greet)
(terpri)
(princ)
