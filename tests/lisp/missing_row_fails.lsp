;; The failure of a module's function is an error of the calling program.
(defun c:open-project () (sg_connect "project.mdb"))
(c:open-project)
