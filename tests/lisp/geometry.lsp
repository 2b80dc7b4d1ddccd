;; Points, distances and angles in radians.
(load "helpers/show")
(foreach form
  '((distance '(0 0) '(3 4)) (distance '(0 0 0) '(1 2 2)) (distance '(0 0) '(3 4 100))
    (angle '(0 0) '(1 1)) (angle '(0 0) '(-1 0)) (angle '(0 0) '(0 -1)) (angle '(1 1) '(1 1))
    (polar '(0 0) 0 10) (polar '(1 2 3) (/ pi 2) 2.0)
    (inters '(0 0) '(10 10) '(0 10) '(10 0)) (inters '(0 0) '(1 1) '(5 0) '(5 1))
    (inters '(0 0) '(1 1) '(5 0) '(5 1) nil) (inters '(0 0) '(1 0) '(0 1) '(1 1) nil)
    (inters '(0 0 5) '(10 10 5) '(0 10 5) '(10 0 5)) (inters '(0 0 0) '(10 10 0) '(0 10 5) '(10 0 5))
    (distance '(0 0) '(1)) (distance 5 '(1 1)) (polar '(0 0) "a" 1))
  (show form))
(princ)
