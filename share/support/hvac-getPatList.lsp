;; The names of the predefined hatch patterns.
;;
;;   (hvac-getPatList)
;;
;; Those of the pattern file acad.pat on the support path, in its order; nil without one.

(defun hvac-getPatList (/ path file line names)
  (if (and (setq path (findfile "acad.pat")) (setq file (open path "r")))
    (progn
      (while (setq line (read-line file))
        (if (= "*" (substr line 1 1))
          (setq names (cons (hvac-getPatList:name line) names))))
      (close file)))
  (reverse names))

;; What stands between "*" and the comma.
(defun hvac-getPatList:name (line / comma)
  (setq comma (vl-string-position (ascii ",") line))
  (vl-string-trim " \t" (if comma (substr line 2 (1- comma)) (substr line 2))))

(princ)
