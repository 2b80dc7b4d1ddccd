;; Block definitions.
(load "helpers/show")
(load "helpers/entities")

(defun line (x) (entmake (list '(0 . "LINE") (list 10 0 0) (list 11 x 0))))
(defun contents (name / e kinds)
  (setq e (cdr (assoc -2 (tblsearch "BLOCK" name))))
  (while e
    (setq kinds (cons (group-of 0 e) kinds) e (entnext e)))
  (reverse kinds))
(defun blocks (/ record names)
  (setq record (tblnext "BLOCK" T))
  (while record
    (setq names (cons (cdr (assoc 2 record)) names) record (tblnext "BLOCK")))
  (reverse names))

(show '(blocks))
(show '(entmake '((0 . "BLOCK") (2 . "Valve") (10 1 2 3) (70 . 0))))
;; Until it is complete nobody sees it.
(show '(tblsearch "BLOCK" "Valve"))
(show '(type (line 1)))
(show '(entlast))
(entmake '((0 . "POLYLINE")))
(entmake '((0 . "VERTEX") (10 0 0)))
(entmake '((0 . "VERTEX") (10 1 0)))
(entmake '((0 . "SEQEND")))
(show '(entmake '((0 . "ENDBLK"))))
(show '(mapcar '(lambda (group) (if (= (car group) -2) -2 group)) (tblsearch "block" "VALVE")))
(show '(contents "Valve"))
(show '(groups (tblobjname "BLOCK" "Valve")))
(show '(groups (cdr (assoc 330 (entget (tblobjname "BLOCK" "Valve"))))))
(show '(groups (cdr (assoc -2 (tblsearch "BLOCK" "Valve")))))
(show '(blocks))

;; Blocks in blocks.
(entmake '((0 . "BLOCK") (2 . "Pair") (10 0 0) (70 . 0)))
(show '(type (entmake '((0 . "INSERT") (2 . "Valve") (10 0 0)))))
(show '(type (entmake '((0 . "INSERT") (2 . "Valve") (10 5 0)))))
(show '(entmake '((0 . "ENDBLK"))))
(show '(contents "Pair"))

;; Defined anew: references show what is there now.
(setq pair (entmakex '((0 . "INSERT") (2 . "Pair") (10 0 0))))
(show '(AcDbEntity::getGeomExtents pair))
(entmake '((0 . "BLOCK") (2 . "VALVE") (10 0 0) (70 . 0)))
(line 7)
(show '(entmake '((0 . "ENDBLK"))))
(show '(contents "Valve"))
(show '(AcDbEntity::getGeomExtents pair))
(show '(blocks))

;; Anonymous blocks are numbered.
(entmake '((0 . "BLOCK") (2 . "*U") (10 0 0) (70 . 1)))
(line 1)
(show '(setq name (entmake '((0 . "ENDBLK")))))
(entmake '((0 . "BLOCK") (2 . "*U") (10 0 0) (70 . 1)))
(line 1)
(show '(entmake '((0 . "ENDBLK"))))
(show '(group-of 2 (entmakex (list '(0 . "INSERT") (cons 2 name) '(10 0 0)))))

;; ---- What is wrong, and leaves nothing ----------------------------------------------------------
(setq before (blocks) entities (count-entities))
(show '(entmake '((0 . "ENDBLK"))))
(show '(entmake '((0 . "BLOCK") (10 0 0) (70 . 0))))
;; A block in a block's definition.
(entmake '((0 . "BLOCK") (2 . "New") (10 0 0) (70 . 0)))
(line 1)
(show '(entmake '((0 . "BLOCK") (2 . "Inner") (10 0 0) (70 . 0))))
(show '(entmake '((0 . "ENDBLK"))))
;; A bad entity.
(entmake '((0 . "BLOCK") (2 . "New") (10 0 0) (70 . 0)))
(line 1)
(show '(entmake '((0 . "CIRCLE") (10 0 0))))
(show '(entmake '((0 . "ENDBLK"))))
;; Given up.
(entmake '((0 . "BLOCK") (2 . "New") (10 0 0) (70 . 0)))
(line 1)
(show '(entmake))
(show '(entmake '((0 . "ENDBLK"))))
;; A name that no block can have.
(entmake '((0 . "BLOCK") (2 . "a|b*c") (10 0 0) (70 . 0)))
(show '(entmake '((0 . "ENDBLK"))))
;; Itself: the block is not there yet.
(entmake '((0 . "BLOCK") (2 . "Self") (10 0 0) (70 . 0)))
(show '(entmake '((0 . "INSERT") (2 . "Self") (10 0 0))))
(show '(entmake '((0 . "ENDBLK"))))
;; Nor when it is defined anew.
(entmake '((0 . "BLOCK") (2 . "Valve") (10 0 0) (70 . 0)))
(line 9)
(show '(null (entmake '((0 . "INSERT") (2 . "Valve") (10 0 0)))))
(show '(entmake '((0 . "ENDBLK"))))
(show '(AcDbEntity::getGeomExtents pair))
(show '(equal before (blocks)))
(show '(= entities (count-entities)))
;; A polyline that is not complete.
(entmake '((0 . "BLOCK") (2 . "New") (10 0 0) (70 . 0)))
(entmake '((0 . "POLYLINE")))
(show '(entmake '((0 . "ENDBLK"))))
(show '(equal before (blocks)))

;; A reference that would come to show the block it stands in.
(setq inner (cdr (assoc -2 (tblsearch "BLOCK" "Pair"))))
(show '(change inner 2 "Pair"))
(show '(change inner 2 "Valve"))

;; ---- Changing -----------------------------------------------------------------------------------
(setq begin (tblobjname "BLOCK" "Valve"))
(show '(change begin 10 '(3.0 0.0 0.0)))
(show '(AcDbEntity::getGeomExtents pair))
(show '(entdel begin))
(setq member (cdr (assoc -2 (tblsearch "BLOCK" "Valve"))))
(show '(eq (entdel member) member))
(show '(contents "Valve"))
(show '(AcDbEntity::getGeomExtents pair))
(show '(eq (entdel member) member))
(show '(contents "Valve"))
(princ)
