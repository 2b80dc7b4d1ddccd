;; Functions of the module that this build lacks are defined; a call says so and fails.
(load "helpers/show")
(show '(type qn_qn-getPoint))
(show '(qn_qn-drawHanger "a" 1))
(show '(QN_QN-TRIPLEUNION))
(show '(GetTempPath))
(show '(qn_qn-explodeSolid nil))
(show '(mapcar 'PathIsNetworkPath '("a")))
(princ)
