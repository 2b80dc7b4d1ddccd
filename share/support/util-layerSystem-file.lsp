;; The file that a layer system is exported to or imported from.
;;
;;   (util-layerSystem-file SAVES PATH)
;;
;; Asks for a CSV file; SAVES tells that it is to be written. It begins with the name of the
;; database PATH. Answers the path, or nil when the user cancels.

(defun util-layerSystem-file (saves path)
  (setq path (strcat (vl-filename-directory path) "/" (vl-filename-base path) "-layers.csv"))
  (CFileDialog
    (not saves)
    (if saves "Export Layers" "Import Layers")
    path "csv" T T))

(princ)
