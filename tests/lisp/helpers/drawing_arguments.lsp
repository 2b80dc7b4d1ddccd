;; Every function on drawings with every kind of argument, and entities of every kind with every
;; group at its extremes: whatever comes of it, the program goes on.
(setq line (entmakex '((0 . "LINE") (10 0 0 0) (11 3 4 0)))
      gone (entmakex '((0 . "LINE") (10 0 0 0) (11 3 4 0)))
      text (entmakex '((0 . "MTEXT") (10 0 0 0) (40 . 2.5) (1 . "Supply air")))
      calls 0)
(entdel gone)
(setq kinds (list nil T 0 -1 2.5 "text" "" '(1.0 2.0 3.0) '(1 2) '("a" "b") '(("a" . 1)) '(nil) line gone text
                  (tblobjname "LAYER" "0") (namedobjdict) 'symbol car))
(defun answer (f given)
  (setq calls (1+ calls))
  (vl-catch-all-apply f given))
(defun try (f)
  (answer f nil)
  (foreach a kinds
    (answer f (list a))
    (foreach b kinds
      (answer f (list a b))
      (foreach c (list nil 1 2.5 "text" '(1.0 2.0 3.0) '("a" 1)) (answer f (list a b c))))))
(foreach f '(AcDbCurve::getLength AcDbCurve::getPointAtDist AcDbCurve::getClosestPointTo AcDbCurve::getDistAtPoint
             AcDb2dPolyline::setCurveType AcDbMText::actualWidth AcDbMText::actualHeight AcDbMText::ascent
             AcDbMText::descent AcDbMText::direction AcDbMText::setDirection AcDbMText::setMask AcDbMText::setNormal
             AcDbMText::insert AcDbMtext::lastLineWidth AcDbEntity::setColor AcDbEntity::getGeomExtents
             AcDbFace::makeEdgeInvisibleAt AcDbAnnotativeObjectPE::setAnnotative SetAnnoBlock qn_qn-setColor
             qn_qn-setPlotStyle qn_qn-freezeInViewport qn_qn-intersectArcArc qn_qn-intersectArcLine
             qn_qn-intersectLineArc sg_xdput-list sg_xdget sg_xdget-list sg_xdget-all
             entget entmod entupd entmake entmakex entdel entnext handent regapp xdroom xdsize tblsearch tblnext
             tblobjname dictsearch dictnext dictadd dictremove dictrename trans textbox vports)
  (try f))
(print (list (quote called) (> calls 5000)))

;; ---- Groups at their extremes -------------------------------------------------------------------
(entmake '((0 . "BLOCK") (2 . "Damper") (10 0 0) (70 . 0)))
(entmake '((0 . "CIRCLE") (10 0 0) (40 . 1.0)))
(entmake '((0 . "ENDBLK")))
(setq entities
  '(((0 . "LINE") (10 0 0) (11 1 0)) ((0 . "POINT") (10 0 0)) ((0 . "CIRCLE") (10 0 0) (40 . 1))
    ((0 . "ARC") (10 0 0) (40 . 1) (50 . 0) (51 . 1)) ((0 . "ELLIPSE") (10 0 0) (11 1 0) (40 . 0.5))
    ((0 . "RAY") (10 0 0) (11 1 0)) ((0 . "XLINE") (10 0 0) (11 1 0))
    ((0 . "LWPOLYLINE") (90 . 2) (10 0 0) (42 . 1) (10 1 0))
    ((0 . "SPLINE") (71 . 2) (40 . 0) (40 . 0) (40 . 0) (40 . 1) (40 . 1) (40 . 1) (10 0 0) (10 1 0) (10 1 1))
    ((0 . "TEXT") (10 0 0) (40 . 1) (1 . "a")) ((0 . "MTEXT") (10 0 0) (40 . 1) (1 . "a"))
    ((0 . "ATTDEF") (10 0 0) (40 . 1) (1 . "a") (2 . "A") (3 . "a")) ((0 . "INSERT") (2 . "Damper") (10 0 0))
    ((0 . "SOLID") (10 0 0) (11 1 0) (12 0 1)) ((0 . "3DFACE") (10 0 0) (11 1 0) (12 0 1))
    ((0 . "LEADER") (3 . "Standard") (10 0 0) (10 1 0)) ((0 . "VIEWPORT") (67 . 1) (10 0 0) (40 . 1) (41 . 1))
    ((0 . "HATCH") (2 . "SOLID") (70 . 1) (91 . 1) (92 . 3) (72 . 0) (73 . 1) (93 . 3) (10 0 0) (10 1 0) (10 1 1))
    ((0 . "DIMENSION") (2 . "Damper") (10 0 0) (13 0 0) (14 1 0) (70 . 1))))
(defun extremes (code)
  (cond ((< code 10) '("" "a" "\\{\\P\\H0;\\S1/;%%d"))
        ((or (< code 19) (< 209 code 214))
         (mapcar '(lambda (point) (cons 'point point)) '((0 0 0) (1e300 -1e300 1e300) (1e-300 0 0) (-1 0 0) (0 0 -1))))
        ((< code 60) '(0.0 -1.0 1e300 -1e300 1e-300 4e9))
        ((< code 80) '(0 -1 1 255 32767 -32768))
        ((< code 100) '(0 -1 2147483647 -2147483648))
        ((< 139 code 150) '(0.0 -1.0 1e300))
        ((or (< 169 code 176) (< 279 code 290) (= code 370)) '(0 -1 32767 -32768))))
(defun use (e)
  (vl-catch-all-apply 'entget (list e))
  (vl-catch-all-apply 'AcDbEntity::getGeomExtents (list e))
  (vl-catch-all-apply 'AcDbCurve::getLength (list e))
  (vl-catch-all-apply 'AcDbCurve::getPointAtDist (list e 0.5))
  (vl-catch-all-apply 'AcDbCurve::getClosestPointTo (list e '(0.25 0.5 0.0)))
  (vl-catch-all-apply 'AcDbMtext::lastLineWidth (list e))
  (entdel e))
(setq made 0)
(foreach entity entities
  (setq code 1)
  (while (< code 371)
    (foreach value (extremes code)
      (setq e (vl-catch-all-apply 'entmakex
                (list (append entity (list (if (and (listp value) (= (car value) 'point))
                                             (cons code (cdr value))
                                             (cons code value)))))))
      (if (= (type e) 'ENAME) (progn (setq made (1+ made)) (use e))))
    (setq code (1+ code))))
(print (list (quote made) (> made 1000)))
(princ)
