; Draws a small plan: a room, a supply duct through its wall, and two outlets.
;
;   swiftgate run examples/plan.lsp --save plan.dxf
;   swiftgate render plan.dxf -o plan.png --size 1000x640

(defun layer (name color linetype weight)
  (entmake (list '(0 . "LAYER") '(100 . "AcDbSymbolTableRecord") '(100 . "AcDbLayerTableRecord")
                 (cons 2 name) '(70 . 0) (cons 62 color) (cons 6 linetype) (cons 370 weight))))

(defun path (layer closed points)
  (entmake (append (list '(0 . "LWPOLYLINE") '(100 . "AcDbEntity") (cons 8 layer)
                         '(100 . "AcDbPolyline") (cons 90 (length points)) (cons 70 closed))
                   (mapcar '(lambda (p) (cons 10 p)) points))))

(defun rectangle (layer x1 y1 x2 y2)
  (path layer 1 (list (list x1 y1) (list x2 y1) (list x2 y2) (list x1 y2))))

; A hatch of one closed loop of straight edges.
(defun hatch (layer pattern scale points)
  (entmake (append (list '(0 . "HATCH") '(100 . "AcDbEntity") (cons 8 layer) '(100 . "AcDbHatch")
                         '(10 0.0 0.0 0.0) '(210 0.0 0.0 1.0) (cons 2 pattern) '(70 . 0) '(71 . 0)
                         '(91 . 1) '(92 . 3) '(72 . 0) '(73 . 1) (cons 93 (length points)))
                   (mapcar '(lambda (p) (cons 10 p)) points)
                   (list '(97 . 0) '(75 . 0) '(76 . 1) '(52 . 0.0) (cons 41 scale) '(77 . 0)
                         '(98 . 0)))))

(defun label (layer x y height text)
  (entmake (list '(0 . "TEXT") (cons 8 layer) (list 10 x y 0.0) (cons 40 height) (cons 1 text))))

(entmake '((0 . "LTYPE") (100 . "AcDbSymbolTableRecord") (100 . "AcDbLinetypeTableRecord")
           (2 . "CENTER") (70 . 0) (3 . "Long and short") (72 . 65) (73 . 4) (40 . 48.0)
           (49 . 30.0) (74 . 0) (49 . -6.0) (74 . 0) (49 . 6.0) (74 . 0) (49 . -6.0) (74 . 0)))
(layer "WALL" 7 "Continuous" 50)
(layer "WALL-FILL" 8 "Continuous" 13)
(layer "DUCT" 5 "Continuous" 70)
(layer "DUCT-CENTER" 1 "CENTER" 18)
(layer "OUTLET" 3 "Continuous" 35)
(layer "NOTE" 7 "Continuous" 18)

; What is between the outside and the inside of the walls, below and above the duct, then the walls.
(hatch "WALL-FILL" "ANSI31" 80.0
       '((0.0 0.0) (600.0 0.0) (600.0 360.0) (0.0 360.0) (0.0 210.0) (24.0 210.0) (24.0 336.0)
         (576.0 336.0) (576.0 24.0) (24.0 24.0) (24.0 150.0) (0.0 150.0)))
(rectangle "WALL" 0.0 0.0 600.0 360.0)
(rectangle "WALL" 24.0 24.0 576.0 336.0)

; The duct, with a bend at its end.
(entmake '((0 . "LWPOLYLINE") (100 . "AcDbEntity") (8 . "DUCT") (100 . "AcDbPolyline") (90 . 8)
           (70 . 1) (10 -80.0 150.0) (10 480.0 150.0) (42 . -0.41421356) (10 500.0 130.0)
           (10 500.0 90.0) (10 560.0 90.0) (10 560.0 130.0) (42 . 0.41421356) (10 480.0 210.0)
           (10 -80.0 210.0)))
(entmake '((0 . "LWPOLYLINE") (100 . "AcDbEntity") (8 . "DUCT-CENTER") (100 . "AcDbPolyline")
           (90 . 4) (70 . 128) (10 -100.0 180.0) (10 480.0 180.0) (42 . -0.41421356)
           (10 530.0 130.0) (10 530.0 70.0)))

; An outlet is a block, so that it takes the layer that it is put on.
(entmake '((0 . "BLOCK") (2 . "OUTLET") (70 . 0) (10 0.0 0.0 0.0)))
(entmake '((0 . "CIRCLE") (8 . "0") (10 0.0 0.0 0.0) (40 . 20.0)))
(entmake '((0 . "CIRCLE") (8 . "0") (10 0.0 0.0 0.0) (40 . 11.0)))
(entmake '((0 . "LINE") (8 . "0") (10 -14.0 -14.0 0.0) (11 14.0 14.0 0.0)))
(entmake '((0 . "LINE") (8 . "0") (10 -14.0 14.0 0.0) (11 14.0 -14.0 0.0)))
(entmake '((0 . "ENDBLK")))
(foreach x '(130.0 330.0)
  (entmake (list '(0 . "INSERT") '(8 . "OUTLET") '(2 . "OUTLET") (list 10 x 180.0 0.0)))
  (label "NOTE" (- x 36.0) 224.0 13.0 "450 m3/h"))

(label "NOTE" 60.0 280.0 24.0 "ROOM 1.04")
(label "NOTE" 170.0 100.0 13.0 "SUPPLY AIR %%c315")
(princ "\nThe plan is drawn.")
(princ)
