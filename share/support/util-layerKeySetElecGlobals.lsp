;; Prepares for questions about the layer keys of a database.
;;
;;   (util-layerKeySetElecGlobals PATH)
;;
;; The layers dialog calls this function ahead of each key. Here nothing depends on the database; a
;; program whose keys do defines its own.

(defun util-layerKeySetElecGlobals (path) nil)

(princ)
