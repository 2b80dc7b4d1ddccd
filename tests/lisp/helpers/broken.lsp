(setq before-the-break T)
(defun broken (
