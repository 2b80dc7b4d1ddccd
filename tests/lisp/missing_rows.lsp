;; Functions of the module that this build lacks are defined; a call says so and fails.
(load "helpers/show")
(show '(type qn_qn-getPoint))
(show '(ed_editMultilineText "a" 1))
(show '(EDITUSEROPTIONS))
(show '(qn_qn-submitBug nil))
(show '(mapcar 'qn_qn-safeContinue '("a")))
(princ)
