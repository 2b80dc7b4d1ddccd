; Draws what a trading company has sold, by category, beside whatever a drawing holds: a table of
; the figures, and a bar for each category with the figures as extended data.
;
;   swiftgate run examples/sales/sales.lsp --drawing plan.dwg --path examples/office
;       --path examples/sales --save sales.dwg -- nwind.mdb
;
; The database is the well-known sample of a trading company, with its tables Categories, Products
; and Order Details.

(foreach part '("tools" "table" "bars") (load part))

(defun *error* (message)
  (sg_close_db)
  (princ (strcat "\nThe sales are not drawn: " message "\n")))

; --- The figures

; ((("Category" . ..) ("Lines" . ..) ("Pieces" . ..) ("Sales" . ..)) ...), the best category first.
; CDbl makes a real of a currency, which LISP has no value for.
(defun sales-by-category ()
  (cond ((sg_sql (strcat "SELECT CategoryName AS Category, Count(*) AS Lines, "
                         "Sum(Quantity) AS Pieces, "
                         "Sum(CDbl([Order Details].UnitPrice) * Quantity * (1 - Discount)) "
                         "AS Sales "
                         "FROM (Categories INNER JOIN Products "
                         "ON Categories.CategoryID = Products.CategoryID) "
                         "INNER JOIN [Order Details] "
                         "ON Products.ProductID = [Order Details].ProductID "
                         "GROUP BY CategoryName ORDER BY 4 DESC")))
        (T (fail "The database has no sales"))))

(defun total-line (rows)
  (list "TOTAL" (rtos (sum-of "Lines" rows) 2 0) (rtos (sum-of "Pieces" rows) 2 0)
        (rtos (sum-of "Sales" rows) 2 0)))

(defun category-line (row)
  (list (value-of "Category" row) (rtos (value-of "Lines" row) 2 0)
        (rtos (value-of "Pieces" row) 2 0) (rtos (value-of "Sales" row) 2 0)))

; --- The drawing

(defun make-layer (name color)
  (if (null (tblsearch "LAYER" name))
    (entmake (list '(0 . "LAYER") '(100 . "AcDbSymbolTableRecord")
                   '(100 . "AcDbLayerTableRecord") (cons 2 name) '(70 . 0) (cons 62 color)
                   '(6 . "Continuous")))))

; The box about all that the drawing has, as two corners; a unit square where there is nothing.
(defun drawing-box (/ extents low high)
  (setq low (getvar "EXTMIN") high (getvar "EXTMAX"))
  (if (< (car low) (car high)) (list low high) '((0.0 0.0 0.0) (1.0 1.0 0.0))))

; The table stands to the right of the drawing and is as high as that; the bars to the right of it.
(defun draw-sales (rows / box height row corner columns width)
  (setq box (drawing-box)
        height (- (cadr (cadr box)) (cadr (car box)))
        row (/ height (+ 3.0 (length rows)))
        columns (list (list "CATEGORY" (* 5.0 row) "Left") (list "LINES" (* 3.0 row) "Right")
                      (list "PIECES" (* 3.0 row) "Right") (list "SALES" (* 4.0 row) "Right"))
        width (* 15.0 row)
        corner (list (+ (car (cadr box)) row) (- (cadr (cadr box)) row) 0.0))
  (make-layer "SALES" 5)
  (make-layer "SALES-BARS" 140)
  (draw-table (list "SALES" row (* 0.4 row)) corner "SALES BY CATEGORY" columns
              (append (mapcar 'category-line rows) (list (total-line rows))))
  (draw-bars "SALES-BARS" (list (+ (car corner) width (* 0.5 row)) (- (cadr corner) row) 0.0)
             row (* 8.0 row) rows))

(open-project (car (host-arguments)))
(setq rows (sales-by-category))
(draw-sales rows)
(sg_close_db)
(princ (strcat "\n" (itoa (length rows)) " categories, " (rtos (sum-of "Sales" rows) 2 2)
               " in all\n"))
(princ)
