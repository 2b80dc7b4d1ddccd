;; (quit) leaves loops and functions.
(setq i 0)
(while T
  (setq i (1+ i))
  (if (= i 3) (progn (princ "leaving at ") (princ i) (terpri) (quit))))
