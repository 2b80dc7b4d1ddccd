;; Adding, changing and deleting records.
(load "helpers/show")
(setq plan (strcat (getenv "TEMP") "/plan.mdb"))
(sg_create_db plan)
(sg_connect plan)
(sg_create_table "tblRoom"
  '(("ID" "LONG" nil nil "I" T T)
    ("Name" "TEXT" 10 nil nil "X")
    ("Level" "INT" nil nil)
    ("Built" "DATE" nil nil)
    ("Open" "BOOL" nil nil)
    ("s_Note" "MEMO" nil nil)))
(sg_create_table "tblCode" '(("Code" "LONG" nil nil "X" T) ("Label" "TEXT" 10 T nil) ("Kind" "TEXT" 10 T "none")))
(sg_table "tblRoom" "Name")

;; The three forms of a record.
(show '(sg_append '(("Name" . "Hall") ("Level" . 1))))
(show '(sg_append '(("Name" "Bath") ("Level" 2))))
(show '(sg_append "Name" "Attic" "Level" 3))
(show '(sg_getrec))
(show '(sg_append nil))
(show '(sg_append 5))
(show '(sg_append '((5 . "Name"))))
(show '(sg_append '(("Name"))))
(show '(sg_delete))

;; Values and their fields.
(show '(sg_seek "Hall"))
(show '(sg_replace '(("ID" . 77) ("Name" . "a name that is too long") ("Level" . 2.6))))
(show '(sg_replace '(("Built" . "1/31/2017") ("Open" . T) ("s_Note" . "two blanks  "))))
(show '(sg_replace '(("Name" . "") ("s_Note" . "") ("Level" . nil) ("Open" . nil) ("Built"))))
(show '(sg_command "UPDATE tblRoom SET Level = 9 WHERE Name = ' '"))
(show '(sg_getrec))

;; A field that can't be set is named; nothing is written.
(show '(sg_append '(("Name" . "Cellar") ("Nmae" . "x"))))
(show '(sg_append '(("Name" . "Cellar") ("Level" . "low"))))
(show '(sg_replace '(("Level" . 100000))))
(show '(sg_replace '(("Built" . "someday"))))
(show '(sg_count))
(show '(sg_lastError))

;; What the engine refuses when the record is written.
(sg_table "tblCode" "Code")
(show '(sg_append '(("Code" . 1))))
(show '(sg_lastError))
(show '(sg_append 0 '(("Code" . 1))))
(show '(sg_append 1 '(("Code" . 2) ("Label" . "mine"))))
(show '(sg_append 1 '(("Code" . 1))))
(show '(sg_replace '(("Code" . 1))))
(show '(sg_getrec))
(show '(sg_sql "SELECT Len(Label) FROM tblCode ORDER BY Code"))

;; Running numbers.
(sg_table "tblRoom")
(defun number (record) (if (listp record) (cdr (assoc "ID" record)) record))
(show '(number (sg_append_withindex 6 '(("Name" . "six")))))
(show '(number (sg_append_withindex 5 '(("Name" . "five")))))
(show '(number (sg_append_withindex 6 '(("Name" . "six")))))
(show '(number (sg_append_withindex 8 '(("Name" . "eight")))))
(show '(number (sg_append_withindex 9 '(("Name" . "nine") ("None" . 1)))))
(show '(number (sg_append_withindex 11 '(("Name" . "eleven")))))
(show '(sg_append_withindex "12" '(("Name" . "twelve"))))
(show '(sg_append_withindex 12 nil))
(show '(sg_sql "SELECT ID, Name FROM tblRoom ORDER BY ID"))

;; A deleted record stays under the cursor until it moves.
(show '(number (sg_top)))
(show '(sg_delete))
(show '(sg_delete))
(show '(sg_getrec))
(show '(number (sg_skip)))
(show '(sg_count))

;; At the end there is none to change; that is kept as the last error and not printed.
(show '(sg_skip 99))
(show '(sg_replace '(("Name" . "x"))))
(show '(sg_lastError))
(show '(sg_delete))

;; In a database that is only read nothing is written and nothing said.
(sg_connect plan "r")
(sg_table "tblRoom")
(show '(sg_append '(("Name" . "x"))))
(show '(sg_replace '(("Name" . "x"))))
(show '(sg_delete))
(show '(sg_append_withindex 20 '(("Name" . "x"))))
(princ)
