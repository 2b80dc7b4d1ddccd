; Checks: what a program expects beside what it finds, a line each.
;
; (check "pieces" 17 17) prints     ok       pieces: 17
; (check "pieces" 17 16) prints     DIFFERS  pieces: expected 17, found 16

(setq checks-failed 0)

(defun report (ok text)
  (princ (strcat "\n  " (if ok "ok       " "DIFFERS  ") text))
  (if (null ok) (setq checks-failed (1+ checks-failed)))
  ok)

(defun shown (value) (if (= (type value) 'REAL) (rtos value 2 3) (vl-princ-to-string value)))

; Two values that shall be equal; reals within a thousandth.
(defun check (what expected found)
  (if (equal expected found 0.001)
    (report T (strcat what ": " (shown found)))
    (report nil (strcat what ": expected " (shown expected) ", found " (shown found)))))

; What of a list another one lacks, counted: of ("a" "a") the list ("a") lacks one "a". Both are
; sorted.
(defun lacking (items others / missing)
  (while items
    (while (and others (< (car others) (car items))) (setq others (cdr others)))
    (if (and others (= (car others) (car items)))
      (setq others (cdr others))
      (setq missing (cons (car items) missing)))
    (setq items (cdr items)))
  (reverse missing))

(defun sorted (texts) (if texts (acad_strlsort texts)))
(defun first-of (texts)
  (if texts (strcat "; " (itoa (length texts)) ", such as \"" (car texts) "\"") "; none"))

; Two lists of texts that shall hold the same ones, in whatever order.
(defun check-list (what expected found / missing extra)
  (setq expected (sorted expected)
        found (sorted found)
        missing (lacking expected found)
        extra (lacking found expected))
  (if (or missing extra)
    (report nil (strcat what ": missing" (first-of missing) "; not expected" (first-of extra)))
    (report T (strcat what ": " (itoa (length found))))))

; To be called at the end: an error, and so exit code 1, when something differs.
(defun finish-checks ()
  (princ "\n")
  (if (> checks-failed 0) (fail (strcat (itoa checks-failed) " checks failed"))))

; --- Texts to compare

(defun fixed (x) (if x (rtos x 2 3) "-"))
(defun point-text (point)
  (strcat (fixed (car point)) "," (fixed (cadr point)) "," (fixed (cond ((caddr point)) (0.0)))))

; Values, one behind the other.
(defun line-of (values)
  (apply 'strcat
         (mapcar '(lambda (value)
                    (strcat (cond ((= (type value) 'LIST) (point-text value))
                                  ((numberp value) (fixed (* 1.0 value)))
                                  (value)
                                  ("-"))
                            " "))
                 values)))
