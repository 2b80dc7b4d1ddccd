;; Functions of the module that this build lacks are defined; a call says so and fails.
(load "helpers/show")
(show '(type qn_qn-getPoint))
(show '(qn_qn-safeContinue "a" 1))
(show '(QN_QN-SUBMITBUG))
(show '(EditUserOptions nil))
(show '(mapcar 'ed_editMultilineText '("a")))
(princ)
