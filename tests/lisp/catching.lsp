;; Errors caught, nested and passed on.
(load "helpers/show")
(setq caught (vl-catch-all-apply '/ '(1 0)))
(prin1 (vl-catch-all-error-p caught)) (terpri)
(princ (vl-catch-all-error-message caught)) (terpri)
(prin1 (vl-catch-all-apply '+ '(1 2))) (terpri)
(prin1 (vl-catch-all-error-p (vl-catch-all-apply 'list '(1)))) (terpri)

;; *error* is not asked for an error that is caught.
(defun *error* (message) (princ "must not be seen\n"))
(defun safe-divide (a b / answer)
  (setq answer (vl-catch-all-apply '/ (list a b)))
  (if (vl-catch-all-error-p answer) 'failed answer))
(show '(mapcar 'safe-divide '(10 10) '(2 0)))
(setq *error* nil)

;; The inner catch takes the error, the outer one sees a value.
(show '(vl-catch-all-apply
         '(lambda () (list 'outer (vl-catch-all-error-message (vl-catch-all-apply 'car '(5)))))
         nil))

;; What was bound between error and catch is put back.
(setq depth 0)
(defun dig (depth) (if (= depth 5) (car depth) (dig (1+ depth))))
(show '(dig 1))
(show 'depth)

;; What was printed before the error stays printed.
(vl-catch-all-apply '(lambda () (princ "printed first\n") (car 1) (princ "never\n")) nil)
(princ)
