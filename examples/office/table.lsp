; Tables in drawings: lines, and a text for each cell.

; The style of a table: (layer row-height text-height).
(defun table-layer () (car table-style))
(defun table-row () (cadr table-style))
(defun table-text () (caddr table-style))

(defun draw-rule (from to)
  (entmake (list '(0 . "LINE") (cons 8 (table-layer)) (cons 10 from) (cons 11 to))))

; A cell's text, halfway up its row, at its column's left, middle or right.
(defun draw-cell (text x y width justification / margin attachment at)
  (setq margin (* 0.6 (table-text))
        attachment (cond ((= justification "Right") 6) ((= justification "Center") 5) (4))
        at (list (cond ((= attachment 6) (+ x (- width margin)))
                       ((= attachment 5) (+ x (/ width 2.0)))
                       ((+ x margin)))
                 y 0.0))
  (entmake (list '(0 . "MTEXT") '(100 . "AcDbEntity") (cons 8 (table-layer)) '(100 . "AcDbMText")
                 (cons 10 at) (cons 40 (table-text)) (cons 41 (- width (* 2.0 margin)))
                 (cons 71 attachment) '(72 . 1) (cons 1 text))))

; One line of cells, its upper edge at y, and the rule below it. Cells without a text stay empty.
(defun draw-line (columns cells x y width / middle)
  (setq middle (- y (/ (table-row) 2.0)))
  (draw-rule (list x (- y (table-row)) 0.0) (list (+ x width) (- y (table-row)) 0.0))
  (foreach column columns
    (if (/= (car cells) "")
      (draw-cell (car cells) x middle (cadr column) (caddr column)))
    (setq x (+ x (cadr column))
          cells (cdr cells))))

(defun underlined (text) (strcat "{\\L" text "}"))

; Draws a table with its top left corner at a point. `columns` are ((label width justification)
; ...), `lines` are lists of as many texts. Answers the y of its lower edge.
(defun draw-table (table-style corner title columns lines / width x y top)
  (setq width (apply '+ (mapcar 'cadr columns))
        x (car corner)
        y (cadr corner))
  (draw-cell (underlined title) x (+ y (/ (table-row) 2.0)) width "Left")
  (draw-rule corner (list (+ x width) y 0.0))
  (foreach line (cons (mapcar '(lambda (column) (underlined (car column))) columns) lines)
    (draw-line columns line (car corner) y width)
    (setq y (- y (table-row))))
  (draw-rule corner (list x y 0.0))
  (foreach column columns
    (setq x (+ x (cadr column)))
    (draw-rule (list x (cadr corner) 0.0) (list x y 0.0)))
  y)
