; The schedule: what the database knows of the equipment, drawn as a table.

(setq schedule-row 300.0)

; The columns that are shown: ((key label width justification) ...).
(defun schedule-columns ()
  (mapcar '(lambda (row) (mapcar 'cdr row))
          (sg_sql (strcat "SELECT sKey, sLabel, dWidth, sJustification FROM tblLabelGroup "
                          "WHERE sGroup = 'Equipment schedule' AND bDisplay = True "
                          "ORDER BY iSortOrder"))))

; One line for each room and type: room, type, how many, and their sums.
(defun schedule-lines ()
  (mapcar '(lambda (row) (mapcar 'cdr row))
          (sg_sql (strcat "SELECT Min(sTag) AS Tag, sRoom, sType, Count(*) AS Pieces, "
                          "Sum(dAirflow) AS Air, Sum(dPower) AS Power FROM tblSchedule "
                          "GROUP BY sRoom, sType ORDER BY sRoom, sType"))))

(defun draw-rule (layer from to)
  (entmake (list '(0 . "LINE") (cons 8 layer) (cons 10 from) (cons 11 to))))

; A cell's text: attached left or right of its column, halfway up its row.
(defun draw-cell (layer text x y width justification / at attachment)
  (if (= justification "Right")
    (setq at (list (+ x (- width 80.0)) y 0.0) attachment 6)
    (setq at (list (+ x 80.0) y 0.0) attachment 4))
  (entmake (list '(0 . "MTEXT") '(100 . "AcDbEntity") (cons 8 layer) '(100 . "AcDbMText")
                 (cons 10 at) '(40 . 140.0) (cons 41 (- width 160.0)) (cons 71 attachment)
                 '(72 . 1) (cons 1 text))))

(defun number-text (x digits) (if x (rtos x 2 digits) ""))

; What a line shows in the column of a key.
(defun cell-text (line key)
  (cond ((= key "Tag") (car line))
        ((= key "Room") (cadr line))
        ((= key "Type") (strcat (itoa (fix (cadddr line))) " x " (caddr line)))
        ((= key "Airflow") (number-text (nth 4 line) 0))
        ((= key "Power") (number-text (nth 5 line) 0))
        (T "")))

; Draws the schedule with its top left corner at a point; answers how many lines it has.
(defun draw-schedule (layer corner / columns lines width x y bottom)
  (setq columns (schedule-columns)
        lines (schedule-lines)
        width (apply '+ (mapcar 'caddr columns))
        bottom (- (cadr corner) (* schedule-row (1+ (length lines))))
        x (car corner)
        y (- (cadr corner) (/ schedule-row 2.0)))
  (foreach column columns
    (draw-cell layer (strcat "{\\L" (cadr column) "}") x y (caddr column) (cadddr column))
    (draw-rule layer (list x (cadr corner) 0.0) (list x bottom 0.0))
    (setq x (+ x (caddr column))))
  (draw-rule layer (list x (cadr corner) 0.0) (list x bottom 0.0))
  (draw-rule layer (list (car corner) (cadr corner) 0.0) (list x (cadr corner) 0.0))
  (setq y (cadr corner))
  (foreach line lines
    (setq y (- y schedule-row)
          x (car corner))
    (draw-rule layer (list x y 0.0) (list (+ x width) y 0.0))
    (foreach column columns
      (draw-cell layer (cell-text line (car column)) x (- y (/ schedule-row 2.0))
                 (caddr column) (cadddr column))
      (setq x (+ x (caddr column)))))
  (draw-rule layer (list (car corner) bottom 0.0) (list (+ (car corner) width) bottom 0.0))
  (length lines))
