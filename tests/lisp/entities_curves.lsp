;; Curves and plane figures: made, listed, changed.
(load "helpers/show")
(load "helpers/entities")

;; What an entity is made of comes back in the order of its class, whatever order it was given in.
(defun made (given) (own (entmakex given)))

;; ---- Lines and points ---------------------------------------------------------------------------
(show '(groups (entmakex '((0 . "LINE") (11 4.0 5.0 6.0) (10 1.0 2.0 3.0)))))
(show '(made '((0 . "LINE") (10 1 2) (11 4 5) (39 . 2.5) (210 0 0 -1))))
(show '(made '((0 . "POINT") (10 1 2 3))))
(show '(made '((0 . "RAY") (100 . "AcDbEntity") (100 . "AcDbRay") (10 1 2 3) (11 0 3 4))))
(show '(made '((0 . "XLINE") (100 . "AcDbEntity") (100 . "AcDbXline") (10 1 2 3) (11 0 3 4))))

;; ---- Circles, arcs, ellipses --------------------------------------------------------------------
(show '(made '((0 . "CIRCLE") (10 1 2 3) (40 . 5))))
(show '(made '((0 . "CIRCLE") (10 1 2 3) (40 . 5) (39 . 1.5) (210 0 0 2))))
(show '(made '((0 . "ARC") (10 1 2 3) (40 . 5) (50 . 1.5) (51 . 0.5))))
;; An angle beyond a turn comes back within it.
(show '(equal (cdr (assoc 51 (made (list '(0 . "ARC") '(10 0 0) '(40 . 1) '(50 . 0.5) (cons 51 (+ 1.5 (* 2 pi))))))) 1.5 1e-12))
(show '(made '((0 . "ELLIPSE") (100 . "AcDbEntity") (100 . "AcDbEllipse") (10 1 2 3) (11 4 0 0) (40 . 0.5))))
(show '(made '((0 . "ELLIPSE") (10 1 2 3) (11 0 4 0) (40 . 0.25) (41 . 0.5) (42 . 1.5))))

;; ---- Polylines of one entity --------------------------------------------------------------------
(show '(made '((0 . "LWPOLYLINE") (100 . "AcDbEntity") (100 . "AcDbPolyline") (90 . 3) (70 . 1)
               (10 0 0) (42 . 0.5) (10 4 0) (10 4 3))))
(show '(made '((0 . "LWPOLYLINE") (90 . 2) (38 . 7) (39 . 2) (10 0 0) (40 . 0.1) (41 . 0.2) (10 4 0) (40 . 0.2) (41 . 0.2))))
(show '(made '((0 . "LWPOLYLINE") (90 . 2) (70 . 128) (43 . 0.5) (10 0 0) (10 4 0) (210 0 1 0))))
(setq poly (entlast))
(show '(change poly 43 1.5))
(show '(change poly 70 1))

;; ---- Splines ------------------------------------------------------------------------------------
(show '(made '((0 . "SPLINE") (100 . "AcDbEntity") (100 . "AcDbSpline") (70 . 8) (71 . 3) (72 . 8) (73 . 4) (74 . 0)
               (40 . 0) (40 . 0) (40 . 0) (40 . 0) (40 . 1) (40 . 1) (40 . 1) (40 . 1)
               (10 0 0 0) (10 1 1 0) (10 2 1 0) (10 3 0 0))))
;; With a knot too few it is none.
(show '(entmake '((0 . "SPLINE") (100 . "AcDbEntity") (100 . "AcDbSpline") (70 . 8) (71 . 3) (72 . 7) (73 . 4) (74 . 0)
                  (40 . 0) (40 . 0) (40 . 0) (40 . 0) (40 . 1) (40 . 1) (40 . 1)
                  (10 0 0 0) (10 1 1 0) (10 2 1 0) (10 3 0 0))))

;; ---- Faces, solids, traces ----------------------------------------------------------------------
(show '(made '((0 . "3DFACE") (10 0 0 1) (11 4 0 2) (12 4 4 3) (13 0 4 4) (70 . 5))))
(show '(made '((0 . "3DFACE") (10 0 0) (11 4 0) (12 4 4))))
(show '(made '((0 . "SOLID") (10 0 0 1) (11 4 0 1) (12 0 4 1) (13 4 4 1) (39 . 2))))
(show '(made '((0 . "TRACE") (10 0 0) (11 4 0) (12 0 4) (13 4 4))))

;; ---- What all of them have ----------------------------------------------------------------------
(entmake '((0 . "LTYPE") (100 . "AcDbSymbolTableRecord") (100 . "AcDbLinetypeTableRecord") (2 . "DASHED") (70 . 0)
           (3 . "") (72 . 65) (73 . 2) (40 . 0.75) (49 . 0.5) (74 . 0) (49 . -0.25) (74 . 0)))
(setq line (entmakex '((0 . "LINE") (10 0 0) (11 1 0) (8 . "Ducts") (6 . "dashed") (62 . 3) (48 . 2) (370 . 35) (60 . 1))))
(show '(groups line))
(show '(tblsearch "LAYER" "Ducts"))
;; A layer's and a linetype's name come back as the drawing writes them.
(show '(change line 8 "DUCTS"))
(show '(change line 8 "Pipes"))
(show '(change line 62 256))
(show '(assoc 62 (entget line)))
(show '(change line 6 "ByLayer"))
(show '(change line 370 -1))
(show '(assoc 370 (entget line)))
(show '(change line 48 1.0))
(show '(change line 60 0))
(show '(groups line))
(show '(groups (entmakex '((0 . "LINE") (10 0 0) (11 1 0) (62 . 0) (6 . "BYBLOCK") (370 . -2)))))
(show '(groups (entmakex '((0 . "LINE") (10 0 0) (11 1 0) (62 . 1) (420 . 16711680)))))
;; A new entity has its layer from the drawing and everything else from its layer.
(setvar "CECOLOR" "5")
(setvar "CLAYER" "Pipes")
(show '(groups (entmakex '((0 . "LINE") (10 0 0) (11 1 0)))))
(setvar "CECOLOR" "BYLAYER")
(setvar "CLAYER" "0")

;; ---- Changing -----------------------------------------------------------------------------------
(setq circle (entmakex '((0 . "CIRCLE") (10 1 2 3) (40 . 5))))
(show '(change circle 40 7.5))
(show '(change circle 10 '(9.0 8.0 7.0)))
;; What is left out stays.
(show '(type (entmod (list (cons -1 circle) '(40 . 2.0)))))
(show '(own circle))
;; Whatever stands for what it is, not for what it has, stays.
(show '(type (entmod (list (cons -1 circle) '(5 . "FFFF") '(40 . 3.0)))))
(show '(= (group-of 5 circle) "FFFF"))
(show '(change circle 0 "ARC"))
(show '(change circle 40 0.0))
(show '(change circle 40 -3.0))
(show '(change circle 62 300))
(show '(change circle 62 -1))
(show '(change circle 6 "no such linetype"))
(show '(change circle 370 1234))
(show '(change circle 8 "no|such*layer"))
(show '(own circle))
(show '(entmod (list (cons -1 circle) '(40 . -2.0))))
(show '(entmod (list (cons -1 circle) '(62 . 300))))
(show '(entmod '((0 . "CIRCLE") (40 . 2.0))))
(show '(eq (entupd circle) circle))

;; A list of an entity makes another one like it.
(show '(equal (own circle) (own (entmakex (entget circle)))))
(show '(eq circle (entlast)))
(princ)
