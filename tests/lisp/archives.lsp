;; Making and unpacking archives.
(load "helpers/show")
(setq here (strcat (getenv "TEMP") "/"))
(defun make-file (name text / f)
  (setq f (open (strcat here name) "w"))
  (princ text f)
  (close f))
(defun read-file (name / f line)
  (setq f (open (strcat here name) "r") line (read-line f))
  (close f)
  line)
(defun in-folder (name) (vl-directory-files (strcat here name) nil 1))

(vl-mkdir (strcat here "Plans"))
(vl-mkdir (strcat here "Plans/Old"))
(make-file "Plans/ground floor.dwg" "the ground floor")
(make-file "Plans/First floor.DWG" "the first floor")
(make-file "Plans/notes.txt" "some notes")
(make-file "Plans/Old/ground floor.dwg" "an old ground floor")

;; Patterns, separators and case; what is stored has no folders.
(show '(CreateZip (strcat here "plans.zip") (list (strcat here "plans\\*.dwg") (strcat here "Plans/Notes.txt"))))
(show '(ExtractZip (strcat here "PLANS.zip") (strcat here "out/one")))
(show '(in-folder "out/one"))
(show '(read-file "out/one/ground floor.dwg"))
(show '(vl-directory-files (strcat here "out/one") nil -1))

;; The patterns may stand without a list; a name that is taken gets a number.
(show '(CreateZip (strcat here "two.zip") (strcat here "Plans/ground*") (strcat here "Plans/Old/*.*")))
(show '(ExtractZip (strcat here "two.zip") (strcat here "out/two")))
(show '(in-folder "out/two"))
(show '(read-file "out/two/ground floor (2).dwg"))

;; Unpacking replaces what exists.
(make-file "out/two/ground floor.dwg" "changed")
(show '(ExtractZip (strcat here "two.zip") (strcat here "out/two")))
(show '(read-file "out/two/ground floor.dwg"))

;; An entry that fails leaves no archive, and one that was there stays.
(show '(CreateZip (strcat here "three.zip") (list (strcat here "Plans/*.dwg") (strcat here "Plans/*.ies"))))
(show '(CreateZip (strcat here "three.zip") (list (strcat here "Plans"))))
(show '(CreateZip (strcat here "plans.zip") (list (strcat here "Plans/none.txt"))))
(show '(ExtractZip (strcat here "plans.zip") (strcat here "out/one")))
(show '(in-folder ""))

;; What cannot be begun answers no value.
(show '(CreateZip (strcat here "no folder/x.zip") (list (strcat here "Plans/*.dwg"))))
(show '(CreateZip (strcat here "Plans") (list (strcat here "Plans/*.dwg"))))
(show '(CreateZip 1 (list (strcat here "Plans/*.dwg"))))
(show '(CreateZip))

;; An archive without entries.
(show '(CreateZip (strcat here "empty.zip") nil))
(show '(vl-file-size (strcat here "empty.zip")))
(show '(ExtractZip (strcat here "empty.zip") (strcat here "out/none")))

;; What is no archive.
(show '(ExtractZip (strcat here "Plans/notes.txt") (strcat here "out")))
(show '(ExtractZip (strcat here "none.zip") (strcat here "out")))
(show '(ExtractZip (strcat here "plans.zip") (strcat here "Plans/notes.txt")))
(show '(ExtractZip (strcat here "plans.zip")))
(show '(ExtractZip nil nil))
(princ)
