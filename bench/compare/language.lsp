;; The language benchmarks, each the best of five runs in milliseconds; language.py holds the same
;; algorithms for CPython.

(defun fib (n)
  (if (< n 2) n (+ (fib (- n 1)) (fib (- n 2)))))

(defun run-fib () (fib 25))

(defun run-list (/ cells i reversed)
  (setq i 0)
  (while (< i 300000)
    (setq cells (cons i cells)
          i (+ i 1)))
  (while cells
    (setq reversed (cons (car cells) reversed)
          cells (cdr cells)))
  (car reversed))

(defun run-strings (/ i s)
  (setq i 0)
  (while (< i 200000)
    (setq s (strcat "item " (itoa i) " of many")
          i (+ i 1)))
  (strlen s))

(defun run-while (/ i sum)
  (setq i 0 sum 0)
  (while (< i 1000000)
    (setq sum (+ sum i)
          i (+ i 1)))
  i)

(defun measure (name work / best start took)
  (repeat 5
    (setq start (getvar "MILLISECS"))
    (work)
    (setq took (- (getvar "MILLISECS") start))
    (if (or (null best) (< took best)) (setq best took)))
  (princ (strcat name " " (itoa best) "\n")))

(measure "fib(25)" run-fib)
(measure "list-300k" run-list)
(measure "strings-200k" run-strings)
(measure "while-1M" run-while)
(princ)
