; What an office floor must come to, worked out from what its programs are given and from nothing
; that they made: the rooms of the floor's drawing, and tblRoomUse, tblEquipment and tblGlobal.
; Nothing here calls equipment.lsp, sections.lsp or ducts.lsp.

; The least whole number of so much that reaches a sum; at least 1.
(defun least-count (each total / count)
  (setq count 1)
  (while (< (* count each) (- total 1e-9)) (setq count (1+ count)))
  count)

; --- Equipment: (("tag" . ..) ("room" . ..) ("type" . ..) ("place" x y z) ("air" . ..)
;     ("power" . ..)) for each piece

(defun expected-in-room (room article count rows / columns number wide deep pieces)
  (setq columns (least-count rows count)
        wide (- (value-of "east" room) (value-of "west" room))
        deep (- (value-of "north" room) (value-of "south" room))
        number 0)
  (repeat (* columns rows)
    (setq pieces (cons (list (cons "tag" (strcat (value-of "sPrefix" article) "-"
                                                 (value-of "number" room) "-"
                                                 (itoa (1+ number))))
                             (cons "room" (value-of "number" room))
                             (cons "type" (value-of "sType" article))
                             (list "place"
                                   (+ (value-of "west" room)
                                      (/ (* wide (1+ (* 2 (rem number columns)))) 2.0 columns))
                                   (+ (value-of "south" room)
                                      (/ (* deep (1+ (* 2 (/ number columns)))) 2.0 rows))
                                   ceiling)
                             (cons "air" (value-of "dAirflow" article))
                             (cons "power" (value-of "dPower" article)))
                       pieces)
          number (1+ number)))
  (reverse pieces))

; What one room is to have of the article that a field of its use names.
(defun expected-of-kind (room use field each per-area rows / article)
  (setq article (value-of (value-of field use) articles))
  (if article
    (expected-in-room room article
                      (least-count (cond ((value-of each article)) (1.0))
                                   (* (value-of "area" room) per-area))
                      rows)))

(defun expected-in (room / use deep)
  (setq use (value-of (value-of "name" room) uses)
        deep (> (- (value-of "north" room) (value-of "south" room)) 4000.0))
  (if use
    (append
      (if (value-of "sDiffuser" use)
        (expected-of-kind room use "sDiffuser" "dAirflow" (value-of "dAirPerArea" use) 1))
      (if (value-of "sLuminaire" use)
        (expected-of-kind room use "sLuminaire" "" (/ 1.0 (value-of "dAreaPerLuminaire" use))
                          (if deep 2 1))))))

(defun by-name (table index)
  (mapcar '(lambda (row) (cons (value-of index row) row)) (rows-of table index)))

(defun expected-equipment (rooms / uses articles ceiling)
  (setq ceiling (setting "CeilingHeight")
        uses (by-name "tblRoomUse" "sName")
        articles (by-name "tblEquipment" "sType"))
  (apply 'append (mapcar 'expected-in rooms)))

; --- Ducts: (("size" . ..) ("serves" . ..) ("length" . ..)) for each straight piece

(setq taper (/ (sin (* pi (/ 15.0 180.0))) (cos (* pi (/ 15.0 180.0))))  ; of reducers
      collar 3.0          ; what a takeoff reaches past its branches and its main's side
      main-height 250.0
      middle '(35000.0 6900.0)
      plant-end 11800.0)

(defun step-up (needed step) (* step (least-count step needed)))
(defun expected-width (air)
  (max 200.0 (step-up (/ air 3600.0 velocity (/ main-height 1000000.0)) 50.0)))
(defun expected-diameter (air) (step-up (* 2000.0 (sqrt (/ air 3600.0 4.0 pi))) 20.0))
(defun diameter-of (diffuser) (expected-diameter (value-of "air" diffuser)))
(defun rectangle-text (width) (strcat (rtos width 2 0) "x" (rtos main-height 2 0)))
(defun circle-text (diameter) (strcat "D" (rtos diameter 2 0)))

(defun expected-piece (size serves long)
  (if (> long 0.01)
    (list (list (cons "size" size) (cons "serves" serves) (cons "length" long)))))

; How far a takeoff reaches along its main from its branch; and the reducer behind it.
(defun takeoff-reach (diffuser) (+ collar (/ (diameter-of diffuser) 2.0)))
(defun reducer-length (from to) (/ (- from to) 2.0 taper))

; Along to the diffuser and down to it, less the takeoff's half and the two ends of the elbow.
(defun expected-branch (diffuser width / place diameter serves)
  (setq place (value-of "place" diffuser)
        diameter (diameter-of diffuser)
        serves (value-of "tag" diffuser))
  (append
    (expected-piece (circle-text diameter) serves
                    (- (abs (- (cadr place) (cadr middle))) (/ width 2.0) collar diameter))
    (expected-piece (circle-text diameter) serves (- drop diameter))))

(defun diffusers-of (pieces)
  (vl-sort (vl-remove-if-not '(lambda (piece) (value-of "air" piece)) pieces)
           '(lambda (a b) (> (cadr (assoc "place" a)) (cadr (assoc "place" b))))))

; Out of the plant room: 0.8 m of round duct, the transition from 600 to the main, and the main up
; to the bend, whose radius is its width.
(defun expected-plant-end (width)
  (append
    (expected-piece "D600" "main" 800.0)
    (expected-piece (rectangle-text width) "main"
                    (- plant-end (cadr middle) width
                       (max 300.0 (/ (- 600.0 main-height) 2.0 taper)
                            (/ (abs (- width 600.0)) 2.0 taper))))))

(defun main-width (equipment / velocity)
  (setq velocity (setting "DuctVelocity"))
  (expected-width (sum-of "air" equipment)))

(defun expected-ducts (equipment / velocity drop air width from pieces reach narrower x)
  (setq velocity (setting "DuctVelocity")
        drop (- (setting "DuctHeightAboveFloor") (setting "CeilingHeight"))
        air (sum-of "air" equipment)
        width (expected-width air)
        from (- (car middle) width)
        pieces (expected-plant-end width))
  (foreach diffuser (diffusers-of equipment)
    (setq reach (takeoff-reach diffuser)
          x (car (value-of "place" diffuser))
          pieces (append pieces
                         (expected-piece (rectangle-text width) "main" (- from x reach))
                         (expected-branch diffuser width))
          air (- air (value-of "air" diffuser))
          narrower (expected-width air)
          from (- x reach (reducer-length width narrower))
          width narrower))
  (append pieces (expected-piece (rectangle-text width) "main" (- from (- x 400.0)))))

; How often the main gets narrower.
(defun expected-reducers (equipment / velocity air width count)
  (setq velocity (setting "DuctVelocity")
        air (sum-of "air" equipment)
        width (expected-width air)
        count 0)
  (foreach diffuser (diffusers-of equipment)
    (setq air (- air (value-of "air" diffuser)))
    (if (< (expected-width air) width)
      (setq width (expected-width air)
            count (1+ count))))
  count)

; A hanger for every 3 m, begun or whole, of each piece of the main in the corridor that is longer
; than 0.6 m. The first two pieces are in the plant room.
(defun expected-hangers (ducts / count)
  (setq count 0)
  (foreach duct (cddr ducts)
    (if (and (= (value-of "serves" duct) "main") (> (value-of "length" duct) 600.0))
      (setq count (+ count (least-count 3000.0 (value-of "length" duct))))))
  count)
