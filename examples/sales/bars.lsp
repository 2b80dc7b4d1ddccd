; Bars: one below the other, filled, with what they stand for as extended data.

; A filled rectangle; answers its entity.
(defun make-bar (layer x y long high)
  (entmakex (list '(0 . "SOLID") (cons 8 layer) (list 10 x y 0.0) (list 11 (+ x long) y 0.0)
                  (list 12 x (- y high) 0.0) (list 13 (+ x long) (- y high) 0.0))))

; A bar for each row, its top left corner in the first one's row of a table; the greatest is `width`
; long. The rows have "Category", "Pieces" and "Sales".
(defun draw-bars (layer corner row-height width rows / y most sales)
  (setq y (- (cadr corner) (* 0.2 row-height))
        most (apply 'max (mapcar '(lambda (row) (value-of "Sales" row)) rows)))
  (foreach row rows
    (setq sales (value-of "Sales" row))
    (sg_xdput-list (make-bar layer (car corner) y (/ (* width sales) most) (* 0.6 row-height))
                   (list "category" (value-of "Category" row)
                         "pieces" (* 1.0 (value-of "Pieces" row)) "sales" sales))
    (setq y (- y row-height))))
