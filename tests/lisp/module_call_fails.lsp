;; The failure of a module's function is an error of the calling program.
(defun c:report () (qn_qn-submitBug))
(c:report)
