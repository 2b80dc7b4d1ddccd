;; Integers have 32 bits, reals are doubles.
(load "helpers/show")
(foreach form
  '((+) (+ 1 2) (+ 1 2.0) (- 5) (- 10 3 2) (*) (* 2 3.5) (/ 7 2) (/ -7 2) (/ 7 2.0) (/ 12 2 3)
    (/ 1 0) (/ 1.0 0) (1+ 2147483647) (1- -2147483648) (+ 2147483647 1) (* 65536 65536)
    (rem 7 3) (rem -7 3) (rem 7.5 2) (rem 1 0) (gcd 12 18) (gcd -12 18) (abs -5) (abs -5.5)
    (max 1 2.0) (max 3 2) (min 1 2.0) (expt 2 10) (expt 2 -1) (expt 2.0 0.5) (expt 2 31)
    (sqrt 2) (sqrt -1) (exp 1) (log 10) (log 0) (sin 0.5) (cos 0) (atan 1) (atan 1 -1) (atan 0 -1)
    (fix 2.9) (fix -2.9) (float 3) (fix 3000000000.0)
    (= 1 1.0) (= "a" "a") (= 1 1 1) (= 1 2 1) (/= 1 2) (/= 1 1) (< 1 2 3) (< 1 3 2) (> 3 2 1)
    (<= 1 1 2) (>= 2 2 1) (< "a" "b") (= 'a 'a)
    (eq 'a 'a) (eq '(1) '(1)) (equal '(1 2) '(1 2)) (equal 1.0 1.05 0.1) (equal 1.0 1.05 0.01)
    (zerop 0) (zerop 0.0) (minusp -1) (minusp 0) (numberp 1) (numberp "1")
    (logand 12 10) (logand) (logior 12 10) (logior) (lsh 1 4) (lsh 16 -2) (lsh -1 -28) (~ 5)
    (boole 1 12 10) (boole 6 12 10) (boole 7 12 10) (boole 8 12 10)
    (+ 1 "2") (+ nil 1) (1+ nil) (sqrt "x") (< 1 'a) (rem 5 nil))
  (show form))

;; How reals print.
(foreach form
  '(1.0 0.5 -0.25 100.0 1e10 1e20 123456.789 1234567.89 0.000001 1e-5 3.14159265358979 1e300 2.5e-10)
  (prin1 form) (princ " "))
(terpri)
;; How they are read.
(foreach form '(2147483647 2147483648 -2147483648 1. 1.e3 +5 -0 1e3) (prin1 form) (princ " "))
(terpri)
(princ)
