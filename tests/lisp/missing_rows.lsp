;; Functions of the module that this build lacks are defined; a call says so and fails.
(load "helpers/show")
(show '(type qn_qn-getPoint))
(show '(qn_qn-lineJig "a" 1))
(show '(QN_QN-TEXTJIG))
(show '(qn_qn-tripleUnion))
(show '(RectangleJig nil))
(show '(mapcar 'qn_qn-drawHanger '("a")))
(princ)
