; What all programs of the office use: ends of programs, data of entities and rows, numbers.

; Ends the program with an error; `swiftgate run` then answers 1.
(defun fail (message) (vl-exit-with-error message))

; The path of a file that a program cannot do without. `what` says what it is for whoever forgot it.
(defun needed-file (name what)
  (cond ((null name) (fail (strcat "Name " what " behind --")))
        ((findfile name))
        (T (fail (strcat "There is no file " name " (" what ")")))))

; Connects the drawing to a database, or ends the program with the engine's reason.
(defun open-project (name)
  (if (null (and (sg_connect (needed-file name "the project's database")) (sg_mdb)))
    (fail (strcat name " cannot be opened: " (sg_lastError)))))

; --- Lists of (key . value), as entities, rows and rooms are

; A value by its key; nil when there is none.
(defun value-of (key data) (cdr (assoc key data)))

(defun all-values (key data)
  (mapcar 'cdr (vl-remove-if-not '(lambda (pair) (= (car pair) key)) data)))

(defun sum-of (key items)
  (apply '+ (cons 0.0 (mapcar '(lambda (item) (cond ((value-of key item)) (0.0))) items))))

; --- Entities

; The names of all entities in model space that fit a filter.
(defun entities-like (filter / found index names)
  (setq found (ssget "_X" (append filter '((410 . "Model"))))
        index 0)
  (if found
    (repeat (sslength found)
      (setq names (cons (ssname found index) names)
            index (1+ index))))
  (reverse names))

(defun data-like (filter) (mapcar 'entget (entities-like filter)))

; --- Rows

; Makes a table the current one. When that fails the one before it would stay current, and be read
; or written in its place: so the program ends.
(defun use-table (table index)
  (if (null (if index (sg_table table index) (sg_table table)))
    (fail (strcat "The table " table " cannot be opened: " (sg_lastError)))))

; The row of a table whose index has a value; nil when there is none.
(defun row-of (table index value)
  (use-table table index)
  (sg_seek value))

; Every row of a table, in the order of an index.
(defun rows-of (table index / row rows)
  (use-table table index)
  (setq row (sg_top))
  (while row
    (setq rows (cons row rows)
          row (sg_skip)))
  (reverse rows))

; A setting of the project.
(defun setting (key) (value-of "dNumber" (row-of "tblGlobal" "sKey" key)))

; Adds a row to a table, or ends the program with the engine's reason.
(defun add-row (table row)
  (use-table table nil)
  (if (null (sg_append row))
    (fail (strcat "Nothing could be added to " table ": " (sg_lastError)))))

; --- Numbers

(defun ceiling (x) (if (= x (fix x)) (fix x) (1+ (fix x))))

; The next size up, in steps.
(defun size-up (size step) (* step (ceiling (/ (- size 0.01) step))))

; A number for people: without digits behind the point, or so many of them; nothing for none.
(defun number-text (x digits) (if x (rtos x 2 digits) ""))

; --- Points

(defun at-height (point z) (list (car point) (cadr point) z))
(defun middle-of (from to) (mapcar '(lambda (a b) (/ (+ a b) 2.0)) from to))
(defun moved (point x y) (list (+ (car point) x) (+ (cadr point) y) (cond ((caddr point)) (0.0))))
