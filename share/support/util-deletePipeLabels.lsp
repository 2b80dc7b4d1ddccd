;; Deletes the pipe labels of a layer system.
;;
;;   (util-deletePipeLabels SYSTEM)
;;
;; Here there are none. A program that keeps labels for each system defines its own.

(defun util-deletePipeLabels (system) nil)

(princ)
