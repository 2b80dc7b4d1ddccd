;; A program at work on a project's database of 200,000 records of 6 fields.
;;
;;   swiftgate run bench/database.lsp -- make FILE      appends them all to a new database
;;   swiftgate run bench/database.lsp -- WORK FILE      works on it: walk, walk-by-key, seek,
;;                                                      seek-apart or list; or open, which does no
;;                                                      more than that

(setq rows 200000)

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

(defun make-rows (file)
  (sg_create_db file)
  (sg_connect file)
  (sg_create_table "tblRoom"
    '(("ID" "LONG" nil nil "I" T T) ("Room" "TEXT" 20 nil nil) ("Note" "TEXT" 20 nil nil)
      ("Flow" "REAL" nil nil) ("Level" "LONG" nil nil) ("Open" "BOOL" nil nil)))
  (sg_table "tblRoom")
  (append-rows))

(defun walk (/ count)
  (setq count 0)
  (sg_top)
  (while (sg_skip) (setq count (1+ count)))
  (require (> count (- rows 2))))

;; Keys in order, or so far apart that each is on other pages than the one before.
(defun seek-rows (step / key)
  (setq key 0)
  (repeat rows
    (setq key (rem (+ key step) rows))
    (require (sg_seek (1+ key)))))

(defun require (truth) (if (null truth) (exit)))

(defun work-on (work file)
  (require (sg_connect file))
  (require (if (member work '("open" "walk" "list"))
             (sg_table "tblRoom")
             (sg_table "tblRoom" "ID")))
  (cond ((= work "open"))
        ((member work '("walk" "walk-by-key")) (walk))
        ((= work "seek") (seek-rows 1))
        ((= work "seek-apart") (seek-rows 76543))
        ((= work "list") (require (= (length (sg_sql "SELECT * FROM tblRoom")) rows)))
        ((exit))))

((lambda (work file) (if (= work "make") (make-rows file) (work-on work file)))
  (car (host-arguments)) (cadr (host-arguments)))
(sg_close_db)
(princ)
