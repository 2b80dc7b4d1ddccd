;; Lists that describe no object of a drawing, and what a drawing cannot do without.
(load "helpers/show")

;; ---- Numbers that are none ----------------------------------------------------------------------
(setq endless (* 1e308 10)  no-number (- endless endless))
(setq line (entmakex '((0 . "LINE") (10 0 0 0) (11 1 0 0))))
(show '(entmake (list '(0 . "LINE") (list 10 no-number 0 0) '(11 1 0 0))))
(show '(entmake (list '(0 . "CIRCLE") '(10 0 0 0) (cons 40 endless))))
(show '(entmod (list (cons -1 line) (list 10 endless 0 0))))
(show '(assoc 10 (entget line)))

;; ---- Without size, direction or contents --------------------------------------------------------
(show '(entmake '((0 . "RAY") (10 0 0 0) (11 0 0 0))))
(show '(entmake '((0 . "XLINE") (10 0 0 0) (11 0 0 0))))
(show '(entmake '((0 . "LEADER") (10 0 0 0))))
(show '(entmake '((0 . "INSERT") (2 . "*Model_Space") (10 0 0 0))))
(show '(entmake '((0 . "ACAD_PROXY_ENTITY"))))
(show '(entmake '((0 . "OLE2FRAME") (10 0 0 0) (11 1 1 0))))

;; ---- Groups that hold something else ------------------------------------------------------------
(regapp "A1")
(show '(entmod (list (cons -1 line) '(-3 ("A1" (1004 . "ABC"))))))
(show '(entmod (list (cons -1 line) '(-3 ("A1" (1005 . "XY"))))))
(show '(entmod (list (cons -1 line) '(-3 ("A1" (1070 . 70000))))))
(show '(entmod (list (cons -1 line) '(62 . -40000))))
(show '(progn (entmod (list (cons -1 line) '(-3 ("A1" (1070 . 65535))))) (assoc -3 (entget line '("A1")))))
(show '(= (xdsize '(-3 ("A1" (1070 . 3)))) (xdsize '(("A1" (1070 . 3))))))

;; ---- What every drawing needs -------------------------------------------------------------------
(setq root (namedobjdict))
(show '(dictremove root "acad_group"))
(show '(dictrename root "ACAD_LAYOUT" "X"))
(show '(entdel (cdr (assoc -1 (dictsearch root "ACAD_GROUP")))))
(show '(dictadd root "ACAD_MINE" (entmakex '((0 . "DICTIONARY")))))
(show '(type (dictremove root "ACAD_MINE")))
;; ---- What would hold itself ---------------------------------------------------------------------
(setq outer (dictadd root "OUTER" (entmakex '((0 . "DICTIONARY"))))
      inner (dictadd outer "INNER" (entmakex '((0 . "DICTIONARY")))))
(show '(dictadd inner "OUTER" outer))
(show '(dictadd inner "SELF" inner))
(show '(dictadd (entmakex '((0 . "DICTIONARY"))) "ROOT" root))
(defun attach (dictionary)
  (entmod (list (cons -1 line) '(102 . "{ACAD_XDICTIONARY") (cons 360 dictionary) '(102 . "}"))))
(show '(attach line))
(show '(attach root))
(show '(attach inner))
(show '(not (null (attach (setq own (entmakex '((0 . "DICTIONARY"))))))))
(show '(eq (cdr (assoc 330 (entget own))) line))
(show '(assoc 330 (entget root)))
(show '(entmake '((0 . "BLOCK") (2 . "*MODEL_SPACE") (10 0 0 0) (70 . 0))))
(show '(entmake '((0 . "BLOCK") (2 . "*Paper_Space3") (10 0 0 0) (70 . 0))))
(princ)
