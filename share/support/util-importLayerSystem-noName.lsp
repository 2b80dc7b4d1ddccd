;; Reads the keys of a layer system and their layers from a file that util-exportLayerSystem-noName
;; or a spreadsheet wrote.
;;
;;   (util-importLayerSystem-noName SYSTEM PATH)
;;
;; SYSTEM is the system's id, -1 for the general one, PATH its database. The file is asked for
;; (util-layerSystem-file). Layers that the database does not have are added, those that it has get
;; the properties of the file; keys that the system has get the layer of their line, and other keys
;; are passed over. All is done, or with a message nothing. Answers T when the tables have changed.

(defun util-importLayerSystem-noName (system path / name rows done)
  (if (null util-layerSystem-file) (load "util-layerSystem-file"))
  (cond
    ((null (setq name (util-layerSystem-file nil path))) nil)
    ((null (setq rows (util-importLayerSystem:read name)))
      (alert (strcat "The file holds no layer keys: " name))
      nil)
    (t
      (setq done
        (vl-catch-all-apply 'host-database-execute
          (list path (util-importLayerSystem:statements system path rows))))
      (if (vl-catch-all-error-p done)
        (progn
          (alert (strcat "The layers could not be imported: "
                         (vl-catch-all-error-message done)))
          nil)
        (> done 0)))))

;; ---- The file

;; The lines behind the first as lists of texts; nil when there are none.
(defun util-importLayerSystem:read (name / file line rows)
  (if (setq file (open name "r"))
    (progn
      (read-line file)
      (while (setq line (read-line file))
        (setq line (util-importLayerSystem:fields line))
        (if (and (>= (length line) 2) (/= (car line) "") (/= (cadr line) ""))
          (setq rows (cons line rows))))
      (close file)))
  (reverse rows))

;; The fields of a comma-separated line. In quotes, a comma is part of the text and two quotes are
;; one.
(defun util-importLayerSystem:fields (line / fields text quoted codes code)
  (setq text "" codes (vl-string->list (vl-string-right-trim "\r" line)))
  (while codes
    (setq code (car codes) codes (cdr codes))
    (cond
      ((and quoted (= code 34) (= 34 (car codes)))
        (setq text (strcat text "\"") codes (cdr codes)))
      ((= code 34) (setq quoted (not quoted)))
      ((and (= code 44) (not quoted)) (setq fields (cons text fields) text ""))
      (t (setq text (strcat text (chr code))))))
  (reverse (cons text fields)))

;; ---- The statements

;; Layers come first, so that the keys find them.
(defun util-importLayerSystem:statements (system path rows / known layers keys name)
  (setq known
    (mapcar '(lambda (row) (strcase (car row)))
      (host-database-select path "select sName from tblLayer")))
  (foreach row rows
    (setq name (strcase (cadr row))
          layers
      (cons (if (member name known)
              (util-importLayerSystem:change row)
              (util-importLayerSystem:add row))
        layers)
          keys (cons (util-importLayerSystem:assign system row) keys))
    (if (not (member name known)) (setq known (cons name known))))
  (append (reverse layers) (reverse keys)))

(defun util-importLayerSystem:add (row)
  (strcat
    "insert into tblLayer (sName, bRGBColor, iColor, sLinetype, bPlot, sLineweight, sPlotstyle)"
    " values (" (util-importLayerSystem:text (cadr row)) ", 0, "
    (util-importLayerSystem:color row) ", " (util-importLayerSystem:linetype row) ", "
    (util-importLayerSystem:plot row) ", " (util-importLayerSystem:or-null 5 row) ", "
    (util-importLayerSystem:or-null 6 row) ")"))

(defun util-importLayerSystem:change (row)
  (strcat
    "update tblLayer set iColor = " (util-importLayerSystem:color row)
    ", sLinetype = " (util-importLayerSystem:linetype row)
    ", bPlot = " (util-importLayerSystem:plot row)
    ", sLineweight = " (util-importLayerSystem:or-null 5 row)
    ", sPlotstyle = " (util-importLayerSystem:or-null 6 row)
    " where sName = " (util-importLayerSystem:text (cadr row))))

(defun util-importLayerSystem:assign (system row)
  (strcat
    "update tblLayerKey, tblLayer set tblLayerKey.ixLayer = tblLayer.ixLayer"
    " where tblLayer.sName = " (util-importLayerSystem:text (cadr row))
    " and tblLayerKey.sKey = " (util-importLayerSystem:text (car row))
    " and tblLayerKey.ixLayerSystem "
    (if (= system -1) "is Null" (strcat "= " (itoa system)))))

;; ---- Values

(defun util-importLayerSystem:text (text / all)
  (setq all "'")
  (foreach code (vl-string->list text)
    (setq all (strcat all (if (= code 39) "''" (chr code)))))
  (strcat all "'"))

(defun util-importLayerSystem:or-null (place row / text)
  (setq text (nth place row))
  (if (or (null text) (= text "")) "Null" (util-importLayerSystem:text text)))

(defun util-importLayerSystem:color (row / color)
  (setq color (atoi (cond ((nth 2 row)) (""))))
  (if (<= 1 color 255) (itoa color) "Null"))

(defun util-importLayerSystem:linetype (row / text)
  (setq text (nth 3 row))
  (util-importLayerSystem:text (if (or (null text) (= text "")) "Continuous" text)))

(defun util-importLayerSystem:plot (row)
  (if (= "0" (nth 4 row)) "0" "-1"))

(princ)
