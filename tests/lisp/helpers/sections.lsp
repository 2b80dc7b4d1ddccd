;; Sections of ducts, and what programs are told of solids.
(load "helpers/show")

;; A rectangular section between two points.
(defun run (x1 y1 z1 x2 y2 z2 width height)
  (list x1 y1 z1 x2 y2 z2 0 0.0 0.0 width height "RC" 0.0 0.0 "" "" 0 1.0))

;; A section with another value at a place, which counts from 1.
(defun with (place value section)
  (if (= place 1)
    (cons value (cdr section))
    (cons (car section) (with (1- place) value (cdr section)))))

(defun round-run (x1 y1 z1 x2 y2 z2 diameter)
  (with 12 "RD" (run x1 y1 z1 x2 y2 z2 diameter diameter)))

;; A number of at most four decimals; the same of everything in a list, with e for entity names.
(defun rounded (value / whole)
  (cond ((= (type value) 'REAL)
          (setq whole (fix (+ (* (abs value) 1e4) 0.5)))
          (if (= whole 0) 0.0 (/ (* whole (if (minusp value) -1 1)) 1e4)))
        ((= (type value) 'ENAME) 'e)
        ((atom value) value)
        (t (cons (rounded (car value)) (rounded (cdr value))))))

(defun told (key result) (cdr (assoc key result)))

;; The corners of the box about an entity.
(defun box (e) (rounded (AcDbEntity::getGeomExtents e)))

(defun entities (/ all) (if (setq all (ssget "X")) (sslength all) 0))

;; Shows a form and its value as rounded.
(defun tell (form)
  (show (list 'rounded form)))
(princ)
