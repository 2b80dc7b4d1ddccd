; Checks what sales.lsp has drawn, by another way than its query: every line of every order is read
; from the database as it was given, and added up here.
;
;   swiftgate run examples/sales/check_sales.lsp --drawing plan.dwg --path examples/office
;       -- GIVEN.mdb nwind.mdb sales.dwg
;
; plan.dwg and GIVEN.mdb are what the work began with, nwind.mdb and sales.dwg what it has made.

(foreach part '("tools" "checks") (load part))

; --- What is expected

; The category of each product: ((product . name) ...).
(defun categories-of-products (/ names)
  (setq names (mapcar '(lambda (row) (cons (value-of "CategoryID" row)
                                           (value-of "CategoryName" row)))
                      (rows-of "Categories" "PrimaryKey")))
  (mapcar '(lambda (row) (cons (value-of "ProductID" row)
                               (value-of (value-of "CategoryID" row) names)))
          (rows-of "Products" "PrimaryKey")))

; The sums with one line of an order added: ((category lines pieces sales) ...).
(defun add-line (sums line category / sum added)
  (setq sum (assoc category sums)
        added (list category
                    (+ 1.0 (cond ((cadr sum)) (0.0)))
                    (+ (value-of "Quantity" line) (cond ((caddr sum)) (0.0)))
                    (+ (* (value-of "Price" line) (value-of "Quantity" line)
                          (- 1.0 (value-of "Discount" line)))
                       (cond ((cadddr sum)) (0.0)))))
  (if sum (subst added sum sums) (cons added sums)))

(defun sums-by-category (/ categories sums)
  (setq categories (categories-of-products))
  (foreach line (sg_sql (strcat "SELECT ProductID, Quantity, Discount, CDbl(UnitPrice) AS Price "
                                "FROM [Order Details]"))
    (setq sums (add-line sums line (value-of (value-of "ProductID" line) categories))))
  sums)

(defun expected-texts (sums)
  (append
    (apply 'append
           (mapcar '(lambda (sum)
                      (list (car sum) (rtos (cadr sum) 2 0) (rtos (caddr sum) 2 0)
                            (rtos (cadddr sum) 2 0)))
                   sums))
    (list "TOTAL" (rtos (apply '+ (mapcar 'cadr sums)) 2 0)
          (rtos (apply '+ (mapcar 'caddr sums)) 2 0)
          (rtos (apply '+ (mapcar 'cadddr sums)) 2 0))
    (mapcar '(lambda (title) (strcat "{\\L" title "}"))
            '("SALES BY CATEGORY" "CATEGORY" "LINES" "PIECES" "SALES"))))

(defun bar-texts (sums)
  (mapcar '(lambda (sum) (strcat (car sum) " " (rtos (caddr sum) 2 0) " "
                                 (rtos (cadddr sum) 2 0)))
          sums))

; --- What is found

(defun drawn-bars ()
  (mapcar '(lambda (bar / values)
             (setq values (sg_xdget-all bar))
             (strcat (value-of "category" values) " " (rtos (value-of "pieces" values) 2 0) " "
                     (rtos (value-of "sales" values) 2 0)))
          (entities-like '((0 . "SOLID") (8 . "SALES-BARS")))))

; Every table with its number of rows.
(defun table-sizes ()
  (mapcar '(lambda (table)
             (strcat table " " (rtos (car (sg_sql (strcat "SELECT Count(*) FROM [" table "]")))
                                     2 0)))
          (sg_list_tables)))

; What the drawing had before: each entity's handle, kind and layer.
(defun entities-apart-from-sales ()
  (mapcar '(lambda (data) (strcat (value-of 5 data) " " (value-of 0 data) " " (value-of 8 data)))
          (data-like '((-4 . "<NOT") (8 . "SALES*") (-4 . "NOT>")))))

(defun check-sales (given made drawing / sums tables before)
  (open-project given)
  (setq sums (sums-by-category)
        tables (table-sizes)
        before (entities-apart-from-sales))
  (open-project made)
  (check-list "tables of the compacted database, with their rows" tables (table-sizes))
  (host-open-drawing (needed-file drawing "the drawing of the sales"))
  (check-list "entities that were in the drawing" before (entities-apart-from-sales))
  (check-list "texts in the table" (expected-texts sums)
              (mapcar '(lambda (data) (value-of 1 data))
                      (data-like '((0 . "MTEXT") (8 . "SALES")))))
  (check-list "bars, with extended data" (bar-texts sums) (drawn-bars)))

(apply 'check-sales (host-arguments))
(finish-checks)
(princ)
