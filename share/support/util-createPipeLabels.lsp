;; Makes the pipe labels of a new layer system from those of another one.
;;
;;   (util-createPipeLabels NEW SOURCE)
;;
;; Here there are none. A program that keeps labels for each system defines its own.

(defun util-createPipeLabels (new source) nil)

(princ)
