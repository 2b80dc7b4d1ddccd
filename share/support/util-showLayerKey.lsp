;; Whether the layers dialog shows a key.
;;
;;   (util-showLayerKey KEY)
;;
;; Here it shows all of them. A program that hides some defines its own.

(defun util-showLayerKey (key) T)

(princ)
