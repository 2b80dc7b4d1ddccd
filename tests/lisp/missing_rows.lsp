;; Functions of the module that this build lacks are defined; a call says so and fails.
(load "helpers/show")
(show '(type qn_qn-getPoint))
(show '(qn_qn-submitBug "a" 1))
(show '(QN_QN-SAFECONTINUE))
(show '(EditUserOptions))
(show '(ed_editMultilineText nil))
(show '(mapcar 'qn_qn-submitBug '("a")))
(princ)
