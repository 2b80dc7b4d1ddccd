;; 100,000 leaders with a symbol.
;;
;;   swiftgate run bench/leaders.lsp

(entmake '((0 . "BLOCK") (2 . "TAG") (70 . 0) (10 0.0 0.0 0.0)))
(entmake '((0 . "CIRCLE") (10 0.0 0.0 0.0) (40 . 1.0)))
(entmake '((0 . "ENDBLK")))
(setq x 0.0)
(repeat 100000
  (if (null (qn_qn-leader-insert
              (list (list x 0.0) (list (+ x 10.0) 10.0) (list (+ x 30.0) 10.0)) "0" "TAG" 0.125))
    (exit))
  (setq x (+ x 1.0)))
(princ)
