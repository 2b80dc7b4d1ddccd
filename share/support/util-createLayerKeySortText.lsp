;; The text by which the layers dialog sorts a key.
;;
;;   (util-createLayerKeySortText KEY)
;;
;; The key in capitals, with numbers filled up with zeros: "DUCT-2" comes before "DUCT-10".

(defun util-createLayerKeySortText (key / text number)
  (setq text "" number "")
  (foreach code (vl-string->list (strcat (strcase key) " "))
    (if (<= 48 code 57)
      (setq number (strcat number (chr code)))
      (setq text (strcat text (util-createLayerKeySortText:filled number) (chr code))
            number "")))
  (vl-string-right-trim " " text))

(defun util-createLayerKeySortText:filled (number)
  (if (= number "")
    ""
    (progn
      (while (< (strlen number) 8) (setq number (strcat "0" number)))
      number)))

(princ)
