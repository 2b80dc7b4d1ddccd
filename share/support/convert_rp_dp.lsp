;; Converts a section's reference point before a solid is built on it.
;;
;;   (convert_rp_dp POINT VIEW)
;;
;; POINT is a list of three reals, VIEW the view code of the section. The answer is the point to use.
;; The module calls this function for every point of a section that is to be converted. This one
;; answers the point as it is; a program that defines its own takes its place.

(defun convert_rp_dp (point view) point)

(princ)
