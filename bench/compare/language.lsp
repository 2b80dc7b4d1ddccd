;; One of the language programs, twenty times; language.py holds the same algorithms for CPython.
;;
;;   swiftgate run bench/compare/language.lsp -- fib|list|strings|while

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

(setq work (eval (read (strcat "run-" (car (host-arguments))))))
(repeat 20 (work))
(princ)
