;; How fast a program works on a project's database: records a second, by the clock.
;;
;;   swiftgate run bench/database.lsp
;;
;; Makes a database of 200,000 records of 6 fields in the temporary folder, and deletes it again.

(setq file (vl-filename-mktemp "bench.mdb") rows 200000)

;; Prints the records a second of an expression that works on `count` of them.
(defun measure (what count expression / start)
  (setq start (getvar "MILLISECS"))
  (eval expression)
  (princ (strcat what ": "
                 (rtos (/ (* 1000.0 count) (max 1 (- (getvar "MILLISECS") start))) 2 0)
                 " a second\n")))

;; A number of as many digits, so that texts have the same length.
(defun digits (n) (substr (itoa (+ 1000000000 n)) 2))

(defun append-rows (/ n)
  (setq n 0)
  (repeat rows
    (setq n (1+ n))
    (sg_append (list (cons "Room" (strcat "Room number" (digits n)))
                     (cons "Note" (strcat "Some remark" (digits (rem (* n 7) 99991))))
                     (cons "Flow" (* n 0.25))
                     (cons "Level" (* n 3))
                     (cons "Open" T)))))

(defun walk () (sg_top) (while (sg_skip)))

;; Keys in order, or so far apart that each is on other pages than the one before.
(defun seek-rows (step / key)
  (setq key 0)
  (repeat rows
    (setq key (rem (+ key step) rows))
    (if (null (sg_seek (1+ key))) (exit))))

(sg_create_db file)
(sg_connect file)
(sg_create_table "tblRoom"
  '(("ID" "LONG" nil nil "I" T T) ("Room" "TEXT" 20 nil nil) ("Note" "TEXT" 20 nil nil)
    ("Flow" "REAL" nil nil) ("Level" "LONG" nil nil) ("Open" "BOOL" nil nil)))
(sg_table "tblRoom")
(measure "sg_append" rows '(append-rows))
(measure "sg_skip, file order" rows '(walk))
(sg_table "tblRoom" "ID")
(measure "sg_skip, by the key" rows '(walk))
(measure "sg_seek, keys in order" rows '(seek-rows 1))
(measure "sg_seek, keys apart" rows '(seek-rows 76543))
(measure "sg_sql, all rows" rows '(setq answer (sg_sql "SELECT * FROM tblRoom")))
(sg_close_db)
(vl-file-delete file)
(princ)
