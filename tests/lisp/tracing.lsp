;; trace shows calls and what they answer.
(defun square (x) (* x x))
(defun sum-of-squares (a b) (+ (square a) (square b)))
(trace square sum-of-squares)
(sum-of-squares 3 4)
(untrace square sum-of-squares)
(sum-of-squares 3 4)
(princ)
