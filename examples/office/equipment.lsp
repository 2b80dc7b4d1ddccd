; Diffusers and luminaires: how many a room needs, where they stand, and what they are called.

; The layer that the project's standard has for a key; made when the drawing has it not yet.
; `system` names a layer system; nil is the general one.
(defun layer-for (system key / id row name)
  (setq id (if system
             (car (sg_sql (strcat "SELECT ixLayerSystem FROM tblLayerSystem WHERE sDescription = '"
                                  system "'")))))
  (use-table "tblLayerKey" "isxLayerSystemKey")
  (setq row (sg_seek id key))
  (if (null row) (fail (strcat "The project's standard has no layer for the key " key)))
  (setq name (value-of "sName" (row-of "tblLayer" "ixLayer" (value-of "ixLayer" row))))
  (if (null (qn_qn-createLayer name)) (fail (strcat "The layer " name " cannot be made")))
  name)

(defun block-name (article) (vl-string-translate " /" "__" (strcase article)))

; A block for a type of equipment: its outline, and a mark that tells a diffuser from a luminaire.
(defun make-equipment-block (article / name x y)
  (setq name (block-name (value-of "sType" article))
        x (/ (value-of "dWidth" article) 2.0)
        y (/ (value-of "dDepth" article) 2.0))
  (if (null (tblsearch "BLOCK" name))
    (progn
      (entmake (list '(0 . "BLOCK") (cons 2 name) '(70 . 0) '(10 0.0 0.0 0.0)))
      (entmake (list '(0 . "LWPOLYLINE") '(100 . "AcDbEntity") '(8 . "0") '(100 . "AcDbPolyline")
                     '(90 . 4) '(70 . 1) (list 10 (- x) (- y)) (list 10 x (- y)) (list 10 x y)
                     (list 10 (- x) y)))
      (if (= (value-of "sKind" article) "Diffuser")
        (foreach part '(0.85 0.5 0.15)
          (entmake (list '(0 . "CIRCLE") '(8 . "0") '(10 0.0 0.0 0.0)
                         (cons 40 (* part (min x y))))))
        (progn
          (entmake (list '(0 . "LINE") '(8 . "0") (list 10 (- x) (- y) 0.0) (list 11 x y 0.0)))
          (entmake (list '(0 . "LINE") '(8 . "0") (list 10 (- x) y 0.0) (list 11 x (- y) 0.0)))))
      (entmake '((0 . "ENDBLK")))))
  name)

; Places one piece of equipment with its extended data and its line in the schedule. Answers it as
; (("tag" . ..) ("place" . point) ("air" . cubic metres an hour, or nil)).
(defun place-equipment (room article layer tag place / reference)
  (entmake (list '(0 . "INSERT") (cons 8 layer) (cons 2 (make-equipment-block article))
                 (cons 10 place)))
  (setq reference (entlast))
  (sg_xdput-list reference
                 (list "tag" tag "room" (value-of "number" room) "type" (value-of "sType" article)))
  (add-row "tblSchedule"
           (list (cons "sTag" tag) (cons "sRoom" (value-of "number" room))
                 (cons "sType" (value-of "sType" article))
                 (cons "sHandle" (value-of 5 (entget reference)))
                 (cons "dAirflow" (value-of "dAirflow" article))
                 (cons "dPower" (value-of "dPower" article))
                 (cons "dX" (car place)) (cons "dY" (cadr place))
                 (cons "dZ" (caddr place))))
  (list (cons "tag" tag) (cons "place" place) (cons "air" (value-of "dAirflow" article))))

; Places at least so many pieces of one type in a room, in so many rows. They are numbered from 1 in
; their room: SD-1.04-1, SD-1.04-2. All of them are at the ceiling.
(defun place-in-room (room article count rows layer / number height)
  (setq number 0
        height (setting "CeilingHeight"))
  (mapcar '(lambda (place)
             (setq number (1+ number))
             (place-equipment room article layer
                              (strcat (value-of "sPrefix" article) "-" (value-of "number" room) "-"
                                      (itoa number))
                              (at-height place height)))
          (places-in-room room count rows)))

; How many pieces a room needs for so much in all, by what one of them does.
(defun count-for (total each) (max 1 (ceiling (/ total each))))

(defun deep-p (room) (> (- (value-of "north" room) (value-of "south" room)) 4000.0))

; The type of equipment that a room's use asks for in a field of tblRoomUse; nil for none.
(defun article-for (use field / name)
  (setq name (value-of field use))
  (if name
    (cond ((row-of "tblEquipment" "sType" name))
          (T (fail (strcat "tblEquipment has no type " name ", which tblRoomUse asks for"))))))

; Diffusers stand in one row, as many as the air for the room's area asks for.
(defun place-diffusers (room use / article)
  (setq article (article-for use "sDiffuser"))
  (if article
    (place-in-room room article
                   (count-for (* (value-of "area" room) (value-of "dAirPerArea" use))
                              (value-of "dAirflow" article))
                   1 (layer-for nil "Diffuser"))))

; Luminaires stand in two rows in a deep room, so that the diffusers have the middle.
(defun place-luminaires (room use / article)
  (setq article (article-for use "sLuminaire"))
  (if article
    (place-in-room room article
                   (count-for (value-of "area" room) (value-of "dAreaPerLuminaire" use))
                   (if (deep-p room) 2 1) (layer-for nil "Luminaire"))))

; Equips a room with what its use asks for. Answers (diffusers luminaires); a room whose use the
; project does not know gets nothing.
(defun equip (room / use)
  (setq use (row-of "tblRoomUse" "sName" (value-of "name" room)))
  (if use (list (place-diffusers room use) (place-luminaires room use))))
