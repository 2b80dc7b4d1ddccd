; The rooms of a floor, as its drawing tells them: a closed polyline on "A-AREA", its number and its
; name as texts inside it.

(defun inside-p (point west south east north)
  (and (< west (car point) east) (< south (cadr point) north)))

; The text among `texts` that stands in a rectangle; empty when none does.
(defun text-inside (texts west south east north / found)
  (foreach text texts
    (if (inside-p (value-of 11 text) west south east north) (setq found (value-of 1 text))))
  (if found found ""))

; A room as (("number" . ..) ("name" . ..) ("west" . ..) ("south" . ..) ("east" . ..) ("north" . ..)
; ("area" . square metres)).
(defun room-of (outline numbers names / points xs ys west south east north)
  (setq points (all-values 10 outline)
        xs (mapcar 'car points)
        ys (mapcar 'cadr points)
        west (apply 'min xs)
        south (apply 'min ys)
        east (apply 'max xs)
        north (apply 'max ys))
  (list (cons "number" (text-inside numbers west south east north))
        (cons "name" (text-inside names west south east north))
        (cons "west" west) (cons "south" south) (cons "east" east) (cons "north" north)
        (cons "area" (/ (* (- east west) (- north south)) 1000000.0))))

; Every room, by number.
(defun read-rooms (/ numbers names rooms)
  (setq numbers (data-like '((0 . "TEXT") (8 . "A-AREA-NUMB")))
        names (data-like '((0 . "TEXT") (8 . "A-AREA-NAME")))
        rooms (mapcar '(lambda (outline) (room-of outline numbers names))
                      (data-like '((0 . "LWPOLYLINE") (8 . "A-AREA")))))
  (if (null rooms) (fail "The drawing has no rooms: no closed polylines on the layer A-AREA"))
  (vl-sort rooms '(lambda (a b) (< (value-of "number" a) (value-of "number" b)))))

; Places for at least `count` things in so many rows over a room, as many in each row.
(defun places-in-room (room count rows / columns step-x step-y places row column)
  (setq columns (/ (+ count (1- rows)) rows)
        step-x (/ (- (value-of "east" room) (value-of "west" room)) columns)
        step-y (/ (- (value-of "north" room) (value-of "south" room)) rows)
        row 0)
  (repeat rows
    (setq column 0)
    (repeat columns
      (setq places (cons (list (+ (value-of "west" room) (* step-x (+ 0.5 column)))
                               (+ (value-of "south" room) (* step-y (+ 0.5 row)))
                               0.0)
                         places)
            column (1+ column)))
    (setq row (1+ row)))
  (reverse places))
