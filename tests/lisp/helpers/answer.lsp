;; Loaded by a test.
(setq loaded-times (1+ (cond (loaded-times) (0))))
(defun c:answer () (princ "the command runs\n") 42)
(defun c:question () (princ "another one\n") (princ))
'last-value
