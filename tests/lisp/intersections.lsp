;; Where runs of arcs and lines cross, as distances along the first of the two.
;;
;; An arc is a point, the direction of travel there, 1 for a left or -1 for a right turn, the radius
;; and the sweep; a line is two points. Both may be extended straight past their ends.
(load "helpers/show")

(setq q (/ pi 2))
(defun fixed (pairs) (mapcar '(lambda (pair) (cons (car pair) (rtos (cdr pair) 2 6))) pairs))
(defun arc-arc (extend a b) (fixed (apply 'qn_qn-intersectArcArc (cons extend (append a b)))))
(defun arc-line (extend a b) (fixed (apply 'qn_qn-intersectArcLine (cons extend (append a b)))))
(defun line-arc (extend a b) (fixed (apply 'qn_qn-intersectLineArc (cons extend (append a b)))))

;; From the origin along x, a quarter turn to the left round (0 10): it ends in (10 10), upwards.
(setq left (list '(0.0 0.0 0.0) 0.0 1 10.0 q))
;; The same to the right round (0 -10), which ends in (10 -10), downwards.
(setq right (list '(0.0 0.0 0.0) 0.0 -1 10.0 q))

;; ---- Arc and line -------------------------------------------------------------------------------
;; The slanting line through the centre meets the arc halfway: 10 * pi / 4.
(setq slant '((0.0 10.0 0.0) (20.0 -10.0 0.0)))
(show '(arc-line 0.0 left slant))
(show '(rtos (* 2.5 pi) 2 6))
;; Elevations do not count.
(show '(arc-line 0.0 left '((0.0 10.0 55.0) (20.0 -10.0 -7.0))))
;; Of the circle's two crossings with the line only one is on the quarter.
(show '(arc-line 0.0 left '((0.0 1.0 0.0) (20.0 1.0 0.0))))
(show '(rtos (* 10 (atan (sqrt (- 100 81)) 9)) 2 6))
;; Across the straight piece behind the end, at (10 13): a quarter turn and 3.
(setq high '((0.0 13.0 0.0) (20.0 13.0 0.0)))
(show '(arc-line 0.0 left high))
(show '(arc-line 5.0 left high))
(show '(rtos (+ (* 5 pi) 3) 2 6))
(show '(arc-line 2.0 left high))
;; Across the one ahead of the start, at (-4 0): the distance is below 0.
(setq early '((-4.0 -3.0 0.0) (-4.0 3.0 0.0)))
(show '(arc-line 5.0 left early))
(show '(arc-line 0.0 left early))
;; The line is extended too: it ends 2 short of the arc, at (10 10).
(show '(arc-line 3.0 left '((20.0 10.0 0.0) (12.0 10.0 0.0))))
;; A right turn: the arc's end is where travel begins, and both extensions run backwards there. What
;; crosses them counts twice, and behind the far end there is nothing.
(show '(arc-line 0.0 right '((0.0 -10.0 0.0) (20.0 10.0 0.0))))
(show '(arc-line 5.0 right early))
(show '(rtos (+ (* 5 pi) 4) 2 6))
(show '(arc-line 5.0 right '((0.0 -13.0 0.0) (20.0 -13.0 0.0))))
;; Any other direction is built as a right turn, after so many quarter turns, and measured as a left:
;; a line that rises by a twelfth of a turn from the centre is a third along from the far end.
(setq rising (list '(0.0 -10.0 0.0) (list (* 10 (sqrt 3)) 0.0 0.0)))
(show '(arc-line 0.0 right rising))
(show '(arc-line 0.0 (list '(0.0 0.0 0.0) 0.0 3 10.0 q) rising))
(show '(arc-line 0.0 (list '(0.0 0.0 0.0) 0.0 -5 10.0 q) rising))
(show '(mapcar 'rtos (list (* 10 (/ pi 3)) (* 10 (/ pi 6))) '(2 2) '(6 6)))
;; The extension ahead comes first, then the arc, then the extension behind, whatever the line's way.
(show '(arc-line 5.0 left '((-4.0 0.0 0.0) (10.0 13.0 0.0))))
(show '(arc-line 5.0 left '((10.0 13.0 0.0) (-4.0 0.0 0.0))))

;; ---- Line and arc -------------------------------------------------------------------------------
(show '(line-arc 0.0 slant left))
(show '(line-arc 0.0 '((0.0 1.0 0.0) (20.0 1.0 0.0)) left))
(show '(rtos (sqrt 19) 2 6))
;; On the extension ahead of the first point: at (10 10), 2 before (12 10).
(show '(line-arc 3.0 '((12.0 10.0 0.0) (20.0 10.0 0.0)) left))
;; On the arc's extensions; where one joins the arc, once for each of the two.
(show '(line-arc 5.0 early left))
(show '(line-arc 5.0 high left))
(show '(line-arc 5.0 '((0.0 -5.0 0.0) (0.0 5.0 0.0)) left))
(show '(line-arc 0.0 high left))
(show '(line-arc 0.0 '((0.0 50.0 0.0) (20.0 50.0 0.0)) left))

;; ---- Arc and arc --------------------------------------------------------------------------------
;; The mirror image across y = 5, round (0 0): they meet at y = 5, a sixth of a turn along.
(setq mirrored (list '(0.0 10.0 0.0) 0.0 -1 10.0 q))
(show '(arc-arc 0.0 left mirrored))
(show '(rtos (* 10 (/ pi 3)) 2 6))
;; Seen from the other: the same distance along, on the arc that ends where travel begins.
(show '(arc-arc 0.0 mirrored left))
;; At different elevations.
(show '(arc-arc 0.0 left (cons '(0.0 10.0 77.0) (cdr mirrored))))
;; Two that touch, at (0 0) where both begin: once.
(show '(arc-arc 0.0 left right))
;; Arc A crosses only what extends B ahead of its start: B begins in (20 8) along x.
(setq beside (list '(20.0 8.0 0.0) 0.0 1 3.0 q))
(show '(arc-arc 0.0 left beside))
(show '(arc-arc 15.0 left beside))
(show '(rtos (* 10 (atan (sqrt (- 100 4)) 2)) 2 6))
;; Extension with extension: A's behind its end, x = 10, with B's ahead of its start, y = 12.
(show '(arc-arc 15.0 left (list '(20.0 12.0 0.0) 0.0 1 3.0 q)))
(show '(rtos (+ (* 5 pi) 2) 2 6))
;; Far apart.
(show '(arc-arc 0.0 left (list '(500.0 0.0 0.0) 0.0 1 3.0 q)))

;; ---- What is no arc and no line -----------------------------------------------------------------
(show '(qn_qn-intersectArcArc))
(show '(qn_qn-intersectArcLine))
(show '(qn_qn-intersectLineArc))
(show '(qn_qn-intersectArcLine 0.0 '(0.0 0.0)))
(show '(arc-line 0 left slant))
(show '(arc-line 0.0 (list '(0.0 0.0 0.0) 0 1 10.0 q) slant))
(show '(arc-line 0.0 (list '(0.0 0.0 0.0) 0.0 1 10 q) slant))
(show '(arc-line 0.0 (list '(0.0 0.0 0.0) 0.0 "left" 10.0 q) slant))
(show '(arc-line 0.0 left '((0.0 10.0 0.0))))
(show '(arc-arc 0.0 left '((0.0 0.0 0.0) 0.0)))
(show '(line-arc 0.0 slant '()))
;; Missing, the extension counts as 0.
(show '(fixed (apply 'qn_qn-intersectLineArc (append slant left))))
;; Nothing that can meet anything.
(show '(arc-line 0.0 (list '(0.0 0.0 0.0) 0.0 1 0.0 q) slant))
(show '(arc-line 0.0 left '((1.0 1.0 0.0) (1.0 1.0 0.0))))
(show '(arc-line 2.0 left '((1.0 1.0 0.0) (1.0 1.0 0.0))))
(show '(listp (arc-line 2.0 (list '(0.0 0.0 0.0) 0.0 1 -10.0 q) slant)))
(show '(listp (arc-arc 2.0 (list '(0.0 0.0 0.0) 0.0 1 10.0 100.0) (list '(1e300 0.0 0.0) 1e300 -1 1e300 -1e300))))
;; The pieces never come into the drawing.
(show '(entlast))
(princ)
