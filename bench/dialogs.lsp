;; The layers dialog on a large database.
;;
;;   swiftgate run bench/dialogs.lsp --path tests/lisp -- make FILE
;;       makes a database of 2,000 layers and 200 layer systems of 300 keys
;;   swiftgate run bench/dialogs.lsp --input SCRIPT -- show FILE
;;       opens the dialog on it, once
;;   swiftgate run bench/dialogs.lsp --input SCRIPT -- open FILE
;;       opens no more than the database

(setq layers 2000 systems 200 keys 300)

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

(defun make-layers (file)
  (load "helpers/standards")
  (setq standards file)
  (make-standards)
  (append-layers)
  (append-systems))

((lambda (work file)
   (cond ((= work "make") (make-layers file))
         ((null (sg_connect file)) (exit))
         ((= work "show") (qn_qn-customizeLayers))))
  (car (host-arguments)) (cadr (host-arguments)))
(sg_close_db)
(princ)
