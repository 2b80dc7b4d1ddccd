;; Connecting to databases: files that are there or not, modes, the support path, and repairs.
(load "helpers/show")
(setq folder (strcat (getenv "TEMP") "/")
      plan   (strcat folder "plan.mdb"))

;; Without a database.
(show '(sg_mdb))
(show '(sg_readonly))
(show '(sg_close_db))
(show '(sg_exist "tblRoom"))
(show '(sg_connect plan))
(show '(sg_connect))
(show '(sg_connect 5))

;; A new file.
(show '(sg_create_db plan))
(show '(sg_create_db plan))
(show '(sg_connect plan))
(show '(sg_mdb))
(show '(sg_readonly))
(show '(sg_create_table "tblRoom" '(("ID" "LONG" T nil "I" T T) ("Name" "TEXT" 20 nil nil "X"))))
(show '(sg_exist "tblRoom"))
(show '(sg_exist "TBLROOM"))
(show '(sg_exist 5))
(show '(sg_table "tblRoom" "Name"))
(foreach name '("Hall" "Attic") (sg_append (list (cons "Name" name))))

;; The same file in the same mode is not opened again: the table stays selected.
(show '(sg_connect plan "w"))
(show '(sg_connect "plan.mdb"))
(show '(sg_connect (strcat (vl-string-translate "/" "\\" folder) "PLAN.MDB")))
(show '(sg_current_table))
(show '(sg_getrec))

;; In another mode it is.
(show '(sg_connect plan "W"))
(show '(sg_readonly))
(show '(sg_current_table))
(show '(sg_table "tblRoom"))
(show '(sg_append '(("Name" . "Cellar"))))
(show '(sg_delete))
(show '(sg_command "DELETE FROM tblRoom"))
(show '(sg_connect plan nil))
(show '(sg_readonly))

;; Tables are closed one by one, the current one first.
(show '(sg_table "tblRoom"))
(show '(sg_close_table))
(show '(sg_close_table))
(show '(sg_current_table))
(show '(sg_table "tblRoom" "ID"))
(show '(sg_closeall_tables))
(show '(sg_current_index))

;; After a close there is no database until the next connect.
(show '(sg_close_db))
(show '(sg_mdb))
(show '(sg_readonly))
(show '(sg_table "tblRoom"))
(show '(sg_connect plan))
(show '(sg_sql "SELECT Name FROM tblRoom ORDER BY Name"))

;; A file of the support path has its full name.
(show '(sg_connect "standards.mdb"))
(vl-mkdir (strcat folder "support"))
(show '(sg_create_db (strcat folder "support/standards.mdb")))
(show '(sg_connect "standards.mdb"))
(show '(sg_mdb))

;; A file that is no database can't be repaired: LISP is asked, and the connect answers T.
(setq bad (strcat folder "bad.mdb"))
(setq file (open bad "w"))
(write-line "no database" file)
(close file)
(show '(sg_connect bad))
(show '(sg_mdb))
(show '(sg_table "tblRoom"))
(show '(sg_top))

;; A program's own repair.
(defun compactDatabase (name destination how)
  (print (list name destination how))
  (vl-file-delete name)
  (sg_create_db name))
(show '(sg_connect bad "r"))
(show '(sg_mdb))
(show '(sg_readonly))
;; The file that was given up for another one is still open.
(show '(sg_compact plan (strcat folder "dense.mdb") nil))
(princ)
