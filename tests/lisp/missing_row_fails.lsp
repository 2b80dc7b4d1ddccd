;; The failure of a module's function is an error of the calling program.
(defun c:drag-line () (qn_qn-lineJig "line"))
(c:drag-line)
