;; Writes the keys of a layer system and their layers to a file that spreadsheets open.
;;
;;   (util-exportLayerSystem-noName SYSTEM PATH)
;;
;; SYSTEM is the system's id, -1 for the general one, PATH its database. The file is asked for
;; (util-layerSystem-file). It has a line a key, comma-separated, with the columns that the first
;; line names. Answers the file, or nil when none was chosen or it cannot be written.

(defun util-exportLayerSystem-noName (system path / name file)
  (cond
    ((null (setq name (util-exportLayerSystem:file T path))) nil)
    ((null (setq file (open name "w")))
      (alert (strcat "The file cannot be written: " name))
      nil)
    (t
      (write-line "Layer Key,Layer Name,Color,Linetype,Plot,Lineweight,Plot Style" file)
      (foreach row (util-exportLayerSystem:rows system path)
        (write-line (util-exportLayerSystem:line row) file))
      (close file)
      name)))

;; The program that asks for the file may be a user's own.
(defun util-exportLayerSystem:file (saves path)
  (if (null util-layerSystem-file) (load "util-layerSystem-file"))
  (util-layerSystem-file saves path))

(defun util-exportLayerSystem:rows (system path)
  (host-database-select path
    (strcat
      "select k.sKey, l.sName, l.iColor, l.sLinetype, l.bPlot, l.sLineweight, l.sPlotstyle"
      " from tblLayerKey as k inner join tblLayer as l on k.ixLayer = l.ixLayer"
      " where k.ixLayerSystem " (if (= system -1) "is Null" (strcat "= " (itoa system)))
      " order by k.sKey")))

(defun util-exportLayerSystem:line (row / line)
  (setq row (list (nth 0 row) (nth 1 row) (nth 2 row) (nth 3 row) (if (nth 4 row) 1 0)
                  (nth 5 row) (nth 6 row))
        line "")
  (foreach value row
    (setq line (strcat line (if (= line "") "" ",") (util-exportLayerSystem:field value))))
  line)

;; In quotes where it has a comma or a quote; nothing for Null.
(defun util-exportLayerSystem:field (value)
  (cond
    ((null value) "")
    ((numberp value) (itoa (fix value)))
    ((wcmatch value "*[,\"]*")
      (strcat "\"" (util-exportLayerSystem:doubled value) "\""))
    (t value)))

(defun util-exportLayerSystem:doubled (text / all)
  (setq all "")
  (foreach code (vl-string->list text)
    (setq all (strcat all (if (= code 34) "\"\"" (chr code)))))
  all)

(princ)
