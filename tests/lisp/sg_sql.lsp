;; Queries and commands: rows, the three modes, the one reopening, and queries that a file keeps.
(load "helpers/show")
(setq folder (strcat (getenv "TEMP") "/")
      plan   (strcat folder "plan.mdb")
      away   (strcat folder "away.mdb")
      other  (strcat folder "other.mdb"))
(defun file (name) (strcat folder name))
(sg_create_db plan)
(sg_connect plan)
(sg_create_table "tblRoom"
  '(("ID" "LONG" nil nil "I" T T) ("Name" "TEXT" 20 nil nil "X") ("Area" "REAL" nil nil)
    ("Price" "CURRENCY" nil nil) ("Built" "DATE" nil nil) ("Open" "BOOL" nil nil)
    ("s_Note" "MEMO" nil nil)))

;; Commands answer how many records they changed.
(show '(sg_command "INSERT INTO tblRoom (Name, Area, Built, Open) VALUES ('Hall', 12.5, #1/31/2017#, True)"))
(show '(sg_command "INSERT INTO tblRoom (Name, Price, s_Note) VALUES ('Bath', 3, 'two blanks  ')"))
(show '(sg_command "UPDATE tblRoom SET Area = 4 WHERE Name = 'bath'"))
(show '(sg_command "DELETE FROM tblRoom WHERE Area > 100"))

;; Rows by how many columns there are.
(show '(sg_sql "SELECT * FROM tblRoom"))
(show '(sg_sql "SELECT Name FROM tblRoom ORDER BY Name"))
(show '(sg_sql "SELECT Name, Area FROM tblRoom WHERE Area > 5"))
(show '(sg_sql "SELECT Price FROM tblRoom"))
(show '(sg_sql "SELECT Name FROM tblRoom WHERE Area > 50"))
(show '(sg_sql "SELECT Count(*), Sum(Area) FROM tblRoom"))

;; Arguments.
(show '(sg_sql))
(show '(sg_sql 5))
(show '(sg_sql-nil))
(show '(sg_sql-error nil))
(show '(sg_command))
(show '(sg_command 5))

;; A query that fails is run again on the file opened anew, which closes the tables.
(show '(sg_table "tblRoom" "Name"))
(show '(sg_sql-nil "SELECT Nme FROM tblRoom"))
(show '(sg_current_table))
(show '(sg_sql-error "SELECT FROM"))
(show '(sg_sql "SELECT FROM" 2))
(show '(sg_sql "SELECT FROM" 1))
(show '(sg_sql "SELECT FROM"))          ; box: No
(show '(sg_sql "SELECT FROM tblRoom"))  ; box: Yes
(show '(sg_lastError))
(show '(sg_table "tblRoom"))
(show '(sg_command "DELETE tblRoom FROM"))
(show '(sg_current_table))

;; The file goes away, and another one with one more table comes in its place.
(show '(sg_fcopy plan other))
(show '(sg_connect other))
(show '(sg_create_table "tblDoor" '("Width" "REAL" nil nil)))
(show '(sg_command "INSERT INTO tblDoor VALUES (0.9)"))
(show '(sg_close_db))
(show '(sg_connect plan))
(show '(sg_fmove plan away))
(show '(sg_sql "SELECT Name FROM tblRoom"))
(show '(sg_fcopy other plan))
(show '(sg_sql "SELECT Width FROM tblDoor"))

;; It goes away and stays away.
(show '(sg_fmove plan (file "gone.mdb")))
(show '(sg_sql-error "SELECT Height FROM tblDoor"))
(show '(sg_mdb))
(show '(sg_sql-error "SELECT Width FROM tblDoor"))
(show '(sg_sql "SELECT Width FROM tblDoor"))  ; box: Yes
(show '(sg_fmove (file "gone.mdb") plan))
(show '(sg_connect plan))
(show '(sg_fmove plan (file "gone.mdb")))
(show '(sg_sql-nil "SELECT Height FROM tblDoor"))
(show '(sg_fmove (file "gone.mdb") plan))
(show '(sg_connect plan))
(show '(sg_fmove plan (file "gone.mdb")))
(show '(sg_sql "SELECT Height FROM tblDoor"))
(show '(sg_fmove (file "gone.mdb") plan))

;; Queries that the file keeps.
(show '(sg_connect plan "w"))
(show '(sg_command "CREATE PROCEDURE Large AS SELECT Name FROM tblRoom WHERE Area > [least]"))
(show '(sg_query "Large" "least" 5))
(show '(sg_query "Large" "least" 50.0))
(show '(sg_query "Large"))
(show '(sg_query "Large" '("least" 5)))
(show '(sg_query "Large" '(("least" . 5))))
(show '(sg_query "Large" 5 "least"))
(show '(sg_create_query "Large" "SELECT ID, Name FROM tblRoom WHERE ID = 2"))
(show '(sg_query "Large"))
(show '(sg_create_query "Small" "SELECT Name FROM tblRoom"))
(show '(sg_query "Small"))
(show '(sg_create_query "Large"))

;; A database that is only read.
(show '(sg_connect plan "r"))
(show '(sg_command "DELETE FROM tblRoom"))
(show '(sg_create_query "Large" "SELECT Name FROM tblRoom"))
(show '(sg_sql-error "SELECT FROM"))
(show '(sg_readonly))
(show '(sg_sql "SELECT Name FROM tblRoom"))
(princ)
