; The checks of the ducts: as solids in a drawing, as faces in a plain one, as bodies in a STEP
; file.

; The straight pieces that are tagged: those of the main in the corridor that are long enough, each
; with its "middle" on the floor.
(defun tagged-ducts ()
  (mapcar '(lambda (row)
             (list (cons "size" (value-of "sSize" row))
                   (list "middle" (/ (+ (value-of "dX1" row) (value-of "dX2" row)) 2.0)
                         (value-of "dY1" row) 0.0)))
          (vl-remove-if-not '(lambda (row)
                               (and (= (value-of "sServes" row) "main")
                                    (= (value-of "dY1" row) (value-of "dY2" row))
                                    (> (value-of "dLength" row) 600.0)))
                            (rows-of-kind "Straight"))))

; --- Solids

(defun handles-of (rows) (mapcar '(lambda (row) (value-of "sHandle" row)) rows))

(defun data-text (kind size air serves) (line-of (list kind size "air" air "for" serves)))

(defun stored-data (rows)
  (mapcar '(lambda (row)
             (data-text (value-of "sKind" row) (value-of "sSize" row) (value-of "dAirflow" row)
                        (value-of "sServes" row)))
          rows))

(defun drawn-data (solids)
  (mapcar '(lambda (solid / values)
             (setq values (sg_xdget-all solid))
             (data-text (value-of "kind" values) (value-of "size" values)
                        (value-of "air" values) (value-of "serves" values)))
          solids))

; The corners of the box about a straight piece, by its row: its ends, and half its size to all
; sides but along it. Pieces run along x, y or z; the width of those along z is along x or y, and
; they are round.
(defun box-of-row (row / from to half)
  (setq from (list (value-of "dX1" row) (value-of "dY1" row) (value-of "dZ1" row))
        to (list (value-of "dX2" row) (value-of "dY2" row) (value-of "dZ2" row))
        half (mapcar '(lambda (a b size) (if (equal a b 0.001) (/ size 2.0) 0.0)) from to
                     (list (value-of "dWidth" row) (value-of "dWidth" row)
                           (value-of "dHeight" row))))
  (list (mapcar '(lambda (a b size) (- (min a b) size)) from to half)
        (mapcar '(lambda (a b size) (+ (max a b) size)) from to half)))

(defun box-of-solid (solid / extents)
  (setq extents (AcDbEntity::getGeomExtents solid))
  (list (value-of "min" extents) (value-of "max" extents)))

; The straight pieces whose solid is not where its row says.
(defun misplaced (rows)
  (vl-remove-if '(lambda (row)
                   (equal (box-of-row row) (box-of-solid (handent (value-of "sHandle" row))) 0.01))
                rows))

(defun check-solids (/ rows solids)
  (setq rows (rows-of "tblDuct" "sHandle")
        solids (entities-like '((0 . "QN_HVACSOLID"))))
  (if (check-list "solids, by handle" (handles-of rows)
                  (mapcar '(lambda (solid) (value-of 5 (entget solid))) solids))
    (check-list "straight pieces out of place" nil
                (handles-of (misplaced (rows-of-kind "Straight")))))
  (check-list "extended data of solids" (stored-data rows) (drawn-data solids)))

; --- Faces

; The box about points, as two corners; nil for none.
(defun box-of-points (points)
  (if points
    (list (apply 'mapcar (cons 'min points)) (apply 'mapcar (cons 'max points)))))

(defun corners-of-faces (layer)
  (apply 'append
         (mapcar '(lambda (data) (mapcar '(lambda (code) (value-of code data)) '(10 11 12 13)))
                 (data-like (list '(0 . "3DFACE") (cons 8 layer))))))

; How far the duct reaches: from the end piece behind the last diffuser to the bend, and from the
; southernmost diffuser to the plant room, where a round duct of 600 is highest and lowest.
(defun expected-reach (equipment / z outlets lows xs)
  (setq z (setting "DuctHeightAboveFloor")
        outlets (diffusers-of equipment)
        lows (mapcar '(lambda (piece)
                        (- (cadr (value-of "place" piece)) (/ (diameter-of piece) 2.0)))
                     outlets)
        xs (mapcar '(lambda (piece) (car (value-of "place" piece))) outlets))
  (list (list (- (apply 'min xs) 400.0) (apply 'min lows) (- z 300.0))
        (list (+ (car middle) (/ (main-width equipment) 2.0)) 12600.0
              (+ z 300.0))))

; The diffusers at which no duct of their size ends: the corners nearby at the ceiling lie on a
; circle about the diffuser.
(defun badly-served (equipment corners / ceiling ends place radius box)
  (setq ceiling (setting "CeilingHeight")
        ends (vl-remove-if-not '(lambda (point) (equal (caddr point) ceiling 0.01)) corners))
  (vl-remove-if
    '(lambda (piece)
       (setq place (value-of "place" piece)
             radius (/ (diameter-of piece) 2.0)
             box (box-of-points
                   (vl-remove-if '(lambda (point)
                                    (> (distance (list (car point) (cadr point))
                                                 (list (car place) (cadr place)))
                                       300.0))
                                 ends)))
       (equal box (list (list (- (car place) radius) (- (cadr place) radius) ceiling)
                        (list (+ (car place) radius) (+ (cadr place) radius) ceiling))
              (* 0.02 radius)))
    (diffusers-of equipment)))

(defun check-faces (equipment / corners)
  (setq corners (corners-of-faces "M-DUCT-SUPP"))
  (check "reach of the duct" (expected-reach equipment) (box-of-points corners))
  (check-list "diffusers without a duct of their size" nil
              (mapcar '(lambda (piece) (value-of "tag" piece)) (badly-served equipment corners)))
  (check "top of the hangers" 3300.0
         (caddr (cadr (box-of-points (corners-of-faces "M-DUCT-HNGR"))))))

; --- Bodies

; What stands between two texts in a line; nil when they do not.
(defun text-between (before after line / from to)
  (setq from (vl-string-search before line)
        from (if from (+ from (strlen before)))
        to (if from (vl-string-search after line from)))
  (if to (substr line (1+ from) (- to from))))

; The bodies of a STEP file are named after the entities that they come from.
(defun check-step (name / file line handle handles bodies)
  (setq file (open (needed-file name "the ducts as a STEP file") "r")
        bodies 0)
  (while (setq line (read-line file))
    (if (setq handle (text-between "PRODUCT('QN_HVACSOLID " "'" line))
      (setq handles (cons handle handles)))
    (if (vl-string-search "MANIFOLD_SOLID_BREP(" line) (setq bodies (1+ bodies))))
  (close file)
  (check-list "solids, by name" (handles-of (rows-of "tblDuct" "sHandle")) handles)
  (check "bodies, one a solid" (length handles) bodies))
