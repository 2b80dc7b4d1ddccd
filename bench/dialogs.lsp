;; How long the layers dialog takes on a large database, by the clock.
;;
;;   swiftgate run bench/dialogs.lsp --input bench/dialogs.in
;;
;; Makes a database of 2,000 layers and 200 layer systems of 300 keys in the temporary folder, and
;; deletes it again. The first time the dialog is opened the toolkit is, too.

(setq file (vl-filename-mktemp "bench.qn") layers 2000 systems 200 keys 300)

(defun since (start) (rtos (/ (- (getvar "MILLISECS") start) 1000.0) 2 3))

(defun append-layers (/ n)
  (sg_table "tblLayer" "ixLayer")
  (setq n 0)
  (repeat layers
    (setq n (1+ n))
    (sg_append (list (cons "sName" (strcat "M-LAYER-" (itoa n))) (cons "iColor" (1+ (rem n 255)))
                     (cons "sLinetype" "Continuous") (cons "bPlot" T) (cons "sLineweight" "25")))))

(defun append-systems (/ system n)
  (setq system 0)
  (repeat systems
    (setq system (1+ system) n 0)
    (sg_table "tblLayerSystem" "ixLayerSystem")
    (sg_append (list (cons "sDescription" (strcat "System " (itoa system)))
                     (cons "iSortOrder" system)))
    (sg_table "tblLayerKey" "ixLayerKey")
    (repeat keys
      (setq n (1+ n))
      (sg_append (list (cons "ixLayerSystem" system) (cons "ixLayer" (1+ (rem (* n 7) layers)))
                       (cons "sKey" (strcat "KEY_" (itoa n))))))))

(load "tests/lisp/helpers/standards")
(setq standards file)
(make-standards)
(append-layers)
(append-systems)

;; The script cancels the first two dialogs, and goes through 20 systems in the third.
(foreach what '("opened, the first time" "opened" "opened, and 20 systems shown")
  (setq start (getvar "MILLISECS"))
  (qn_qn-customizeLayers)
  (princ (strcat what ": " (since start) " s\n")))
(sg_close_db)
(vl-file-delete file)
(princ)
