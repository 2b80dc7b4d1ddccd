; Diffusers and luminaires: how many a room needs, where they stand, and what they are called.

; The layer that the project's standard has for a key; made when the drawing has it not yet.
; `system` names a layer system; nil is the general one.
(defun layer-for (system key / id row name)
  (setq id (if system
             (car (sg_sql (strcat "SELECT ixLayerSystem FROM tblLayerSystem WHERE sDescription = '"
                                  system "'")))))
  (sg_table "tblLayerKey" "isxLayerSystemKey")
  (setq row (sg_seek id key))
  (if (null row) (progn (princ (strcat "\nNo layer for the key " key "\n")) (exit)))
  (sg_table "tblLayer" "ixLayer")
  (setq name (value-of "sName" (sg_seek (value-of "ixLayer" row))))
  (qn_qn-createLayer name)
  name)

; The row of a table whose index has a value.
(defun row-of (table index value)
  (sg_table table index)
  (sg_seek value))

(defun ceiling (x) (if (= x (fix x)) (fix x) (1+ (fix x))))

(defun block-name (type) (vl-string-translate " /" "__" (strcase type)))

; A block for a type of equipment: its outline, and a mark that tells a diffuser from a luminaire.
(defun make-equipment-block (row / name x y)
  (setq name (block-name (value-of "sType" row))
        x (/ (value-of "dWidth" row) 2.0)
        y (/ (value-of "dDepth" row) 2.0))
  (if (null (tblsearch "BLOCK" name))
    (progn
      (entmake (list '(0 . "BLOCK") (cons 2 name) '(70 . 0) '(10 0.0 0.0 0.0)))
      (entmake (list '(0 . "LWPOLYLINE") '(100 . "AcDbEntity") '(8 . "0") '(100 . "AcDbPolyline")
                     '(90 . 4) '(70 . 1) (list 10 (- x) (- y)) (list 10 x (- y)) (list 10 x y)
                     (list 10 (- x) y)))
      (if (= (value-of "sKind" row) "Diffuser")
        (foreach part '(0.85 0.5 0.15)
          (entmake (list '(0 . "CIRCLE") '(8 . "0") '(10 0.0 0.0 0.0)
                         (cons 40 (* part (min x y))))))
        (progn
          (entmake (list '(0 . "LINE") '(8 . "0") (list 10 (- x) (- y) 0.0) (list 11 x y 0.0)))
          (entmake (list '(0 . "LINE") '(8 . "0") (list 10 (- x) y 0.0) (list 11 x (- y) 0.0)))))
      (entmake '((0 . "ENDBLK")))))
  name)

; Places one piece of equipment with its extended data and its line in the schedule.
(defun place-equipment (room row layer tag place / reference)
  (entmake (list '(0 . "INSERT") (cons 8 layer) (cons 2 (make-equipment-block row))
                 (cons 10 place)))
  (setq reference (entlast))
  (sg_xdput-list reference
                 (list "tag" tag "room" (value-of "number" room) "type" (value-of "sType" row)))
  (sg_table "tblSchedule" "sTag")
  (sg_append (list (cons "sTag" tag) (cons "sRoom" (value-of "number" room))
                   (cons "sType" (value-of "sType" row))
                   (cons "sHandle" (value-of 5 (entget reference)))
                   (cons "dAirflow" (value-of "dAirflow" row))
                   (cons "dPower" (value-of "dPower" row))
                   (cons "dX" (car place)) (cons "dY" (cadr place))))
  (list tag reference place))

; Places what one room needs of one kind, in so many rows; answers ((tag reference place) ...).
(defun equip-room (room row count rows layer / number)
  (setq number 0)
  (mapcar '(lambda (place)
             (setq number (1+ number))
             (place-equipment room row layer
                              (strcat (value-of "sPrefix" row) "-" (value-of "number" room) "-"
                                      (itoa number))
                              place))
          (places-in-room room count rows)))

; How many pieces a room needs for so much in all, by what one of them does.
(defun count-for (total each) (max 1 (ceiling (/ total each))))

(defun deep-p (room) (> (- (value-of "north" room) (value-of "south" room)) 4000.0))

; Equips a room with what its use asks for: diffusers along its middle, luminaires on both sides of
; them. Answers the diffusers.
(defun equip (room / use diffuser luminaire placed)
  (setq use (row-of "tblRoomUse" "sName" (value-of "name" room)))
  (if (and use (value-of "sDiffuser" use))
    (setq diffuser (row-of "tblEquipment" "sType" (value-of "sDiffuser" use))
          placed (equip-room room diffuser
                             (count-for (* (value-of "area" room) (value-of "dAirPerArea" use))
                                        (value-of "dAirflow" diffuser))
                             1 (layer-for nil "Diffuser"))))
  (if (and use (value-of "sLuminaire" use))
    (progn
      (setq luminaire (row-of "tblEquipment" "sType" (value-of "sLuminaire" use)))
      (equip-room room luminaire
                  (count-for (value-of "area" room) (value-of "dAreaPerLuminaire" use))
                  (if (deep-p room) 2 1) (layer-for nil "Luminaire"))))
  placed)

; --- Tags

; The symbol at a leader's end, of radius one, as leaders want it.
(defun make-tag-symbol ()
  (if (null (tblsearch "BLOCK" "TAG"))
    (progn
      (entmake '((0 . "BLOCK") (2 . "TAG") (70 . 0) (10 0.0 0.0 0.0)))
      (entmake '((0 . "CIRCLE") (8 . "0") (10 0.0 0.0 0.0) (40 . 1.0)))
      (entmake '((0 . "ENDBLK"))))))

; Tags a piece of equipment with a leader that ends beside it, and its tag there.
(defun tag-equipment (piece layer / start knee end)
  (setq start (caddr piece)
        knee (mapcar '+ start '(300.0 500.0 0.0))
        end (mapcar '+ knee '(400.0 0.0 0.0)))
  (qn_qn-leader-insert (list start knee end) layer "TAG" (/ 60.0 (getvar "DIMSCALE")))
  (entmake (list '(0 . "TEXT") (cons 8 layer) (cons 10 (mapcar '+ end '(100.0 -60.0 0.0)))
                 '(40 . 120.0) (cons 1 (car piece)))))
