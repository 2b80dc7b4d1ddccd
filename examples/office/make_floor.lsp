; Draws an office floor: walls with doors and windows, rooms with numbers, names and areas.
;
;   swiftgate run examples/office/make_floor.lsp --save floor.dxf
;
; Millimetres. The axes of the outer walls run from 0,0 to 36000,13800. A room is a closed polyline
; on "A-AREA" along the faces of its walls; its number is the text on "A-AREA-NUMB" inside it, its
; name the one on "A-AREA-NAME".

(setq outer-wall 300.0
      inner-wall 120.0
      corridor-south 5800.0
      corridor-north 8000.0
      floor-width 36000.0
      floor-depth 13800.0
      door-width 900.0)

; Number, name, west axis, east axis; from west to east.
(setq south-rooms '(("1.01" "Office" 0.0 5000.0)
                    ("1.02" "Office" 5000.0 10000.0)
                    ("1.03" "Office" 10000.0 15000.0)
                    ("1.04" "Open office" 15000.0 28000.0)
                    ("1.05" "Management" 28000.0 36000.0))
      north-rooms '(("1.06" "Reception" 0.0 7000.0)
                    ("1.07" "Meeting" 7000.0 14000.0)
                    ("1.08" "Conference" 14000.0 23000.0)
                    ("1.09" "Server" 23000.0 26000.0)
                    ("1.10" "Pantry" 26000.0 30000.0)
                    ("1.11" "Washroom" 30000.0 33000.0)
                    ("1.12" "Plant room" 33000.0 36000.0)))

; --- Drawing

(setvar "INSUNITS" 4)  ; millimetres

(defun make-layer (name color weight)
  (entmake (list '(0 . "LAYER") '(100 . "AcDbSymbolTableRecord") '(100 . "AcDbLayerTableRecord")
                 (cons 2 name) '(70 . 0) (cons 62 color) '(6 . "Continuous") (cons 370 weight))))

(defun make-polyline (layer points)
  (entmake (append (list '(0 . "LWPOLYLINE") '(100 . "AcDbEntity") (cons 8 layer)
                         '(100 . "AcDbPolyline") (cons 90 (length points)) '(70 . 1))
                   (mapcar '(lambda (point) (cons 10 point)) points))))

(defun corners (x1 y1 x2 y2)
  (list (list x1 y1) (list x2 y1) (list x2 y2) (list x1 y2)))

; A text whose left (0) or right (2) end is halfway up at a point.
(defun make-text (layer point side height text)
  (entmake (list '(0 . "TEXT") (cons 8 layer) (cons 10 point) (cons 11 point) (cons 40 height)
                 (cons 1 text) (cons 72 side) '(73 . 2))))

(defun insert-block (layer name point rotation)
  (entmake (list '(0 . "INSERT") (cons 8 layer) (cons 2 name) (cons 10 point)
                 (cons 50 rotation))))

; A filled piece of wall.
(defun make-wall-piece (x1 y1 x2 y2 / points)
  (setq points (corners x1 y1 x2 y2))
  (entmake (append '((0 . "HATCH") (100 . "AcDbEntity") (8 . "A-WALL-PATT") (100 . "AcDbHatch")
                     (10 0.0 0.0 0.0) (210 0.0 0.0 1.0) (2 . "SOLID") (70 . 1) (71 . 0) (91 . 1)
                     (92 . 3) (72 . 0) (73 . 1) (93 . 4))
                   (mapcar '(lambda (point) (cons 10 point)) points)
                   '((97 . 0) (75 . 0) (76 . 1) (98 . 0))))
  (make-polyline "A-WALL" points))

; A wall along x or y ("x", "y") from `start` to `end`, its axis at `across`. An opening is
; (start end), and they come in order: what is left between them is drawn.
(defun make-wall (direction start end across thick openings / half from)
  (setq half (/ thick 2.0)
        from start)
  (foreach opening (append openings (list (list end end)))
    (if (< from (car opening))
      (if (= direction "x")
        (make-wall-piece from (- across half) (car opening) (+ across half))
        (make-wall-piece (- across half) from (+ across half) (car opening))))
    (setq from (cadr opening))))

(defun middle (room) (/ (+ (caddr room) (cadddr room)) 2.0))

; --- Blocks

; A door: hinged at the origin, closed along x, open along y.
(entmake '((0 . "BLOCK") (2 . "DOOR-900") (70 . 0) (10 0.0 0.0 0.0)))
(entmake (list '(0 . "LINE") '(8 . "0") '(10 0.0 0.0 0.0) (list 11 0.0 door-width 0.0)))
(entmake (list '(0 . "ARC") '(8 . "0") '(10 0.0 0.0 0.0) (cons 40 door-width) '(50 . 0.0)
               (cons 51 (/ pi 2.0))))
(entmake '((0 . "ENDBLK")))

; A window 1800 wide in an outer wall along x, its middle at the origin.
(entmake '((0 . "BLOCK") (2 . "WINDOW-1800") (70 . 0) (10 0.0 0.0 0.0)))
(foreach y '(-150.0 -20.0 20.0 150.0)
  (entmake (list '(0 . "LINE") '(8 . "0") (list 10 -900.0 y 0.0) (list 11 900.0 y 0.0))))
(entmake '((0 . "ENDBLK")))

(make-layer "A-WALL" 7 50)
(make-layer "A-WALL-PATT" 254 13)
(make-layer "A-DOOR" 3 25)
(make-layer "A-GLAZ" 4 25)
(make-layer "A-AREA" 9 13)
(make-layer "A-AREA-NUMB" 14 25)
(make-layer "A-AREA-NAME" 7 25)

; --- Walls

; Windows sit in the middle of each three metres or so of a room's outer wall.
(defun window-places (room / width count step places)
  (setq width (- (cadddr room) (caddr room))
        count (max 1 (fix (/ width 3000.0)))
        step (/ width count))
  (repeat count
    (setq places (cons (+ (caddr room) (* step (+ (length places) 0.5))) places)))
  (reverse places))

(defun outer-wall-with-windows (across rooms / places)
  (setq places (apply 'append (mapcar 'window-places rooms)))
  (make-wall "x" (/ outer-wall -2.0) (+ floor-width (/ outer-wall 2.0)) across outer-wall
             (mapcar '(lambda (x) (list (- x 900.0) (+ x 900.0))) places))
  (foreach x places (insert-block "A-GLAZ" "WINDOW-1800" (list x across 0.0) 0.0)))

(defun corridor-wall (across rooms rotation / half)
  (setq half (/ door-width 2.0))
  (make-wall "x" (/ outer-wall 2.0) (- floor-width (/ outer-wall 2.0)) across inner-wall
             (mapcar '(lambda (room) (list (- (middle room) half) (+ (middle room) half))) rooms))
  (foreach room rooms
    (insert-block "A-DOOR" "DOOR-900"
                  (list (if (= rotation 0.0) (- (middle room) half) (+ (middle room) half))
                        across 0.0)
                  rotation)))

(outer-wall-with-windows 0.0 south-rooms)
(outer-wall-with-windows floor-depth north-rooms)
(foreach x (list 0.0 floor-width)
  (make-wall "y" (/ outer-wall 2.0) (- floor-depth (/ outer-wall 2.0)) x outer-wall nil))
(corridor-wall corridor-south south-rooms pi)
(corridor-wall corridor-north north-rooms 0.0)
(foreach room (cdr south-rooms)
  (make-wall "y" (/ outer-wall 2.0) (- corridor-south (/ inner-wall 2.0)) (caddr room) inner-wall
             nil))
(foreach room (cdr north-rooms)
  (make-wall "y" (+ corridor-north (/ inner-wall 2.0)) (- floor-depth (/ outer-wall 2.0))
             (caddr room) inner-wall nil))

; --- Rooms

; Half of the wall on an axis along y.
(defun half-wall (x)
  (if (or (= x 0.0) (= x floor-width)) (/ outer-wall 2.0) (/ inner-wall 2.0)))

; The room's texts stand along its north wall, out of the way of what is placed in it.
(defun make-room (number name west east south north / area)
  (make-polyline "A-AREA" (corners west south east north))
  (setq area (/ (* (- east west) (- north south)) 1000000.0))
  (make-text "A-AREA-NUMB" (list (+ west 250.0) (- north 350.0) 0.0) 0 300.0 number)
  (make-text "A-AREA-NAME" (list (+ west 250.0) (- north 750.0) 0.0) 0 200.0 name)
  (make-text "A-AREA" (list (- east 250.0) (- north 350.0) 0.0) 2 180.0
             (strcat (rtos area 2 1) " m2")))

(defun make-rooms (rooms south north)
  (foreach room rooms
    (make-room (car room) (cadr room) (+ (caddr room) (half-wall (caddr room)))
               (- (cadddr room) (half-wall (cadddr room))) south north)))

(make-rooms south-rooms (/ outer-wall 2.0) (- corridor-south (/ inner-wall 2.0)))
(make-rooms north-rooms (+ corridor-north (/ inner-wall 2.0)) (- floor-depth (/ outer-wall 2.0)))
(make-room "1.00" "Corridor" (/ outer-wall 2.0) (- floor-width (/ outer-wall 2.0))
           (+ corridor-south (/ inner-wall 2.0)) (- corridor-north (/ inner-wall 2.0)))

(princ (strcat "\nThe floor is drawn: " (itoa (1+ (+ (length south-rooms) (length north-rooms))))
               " rooms."))
(princ)
