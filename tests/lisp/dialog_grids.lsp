;; The text styles and the order of labels.
(load "helpers/show")
(load "helpers/standards")
(make-standards)
(foreach style '("'DEFAULT', 'Standard', 0.125, 1" "'Title', Null, 0.25, Null"
                 "'Note', 'O''Brien', Null, Null")
  (run-all (list (strcat "insert into tblTextStyle (sKey, sStyleName, dHeight, dScaleFactor) values (" style ")"))))
(defun show-styles ()
  (rows-of "select sKey, sStyleName, dHeight, dScaleFactor from tblTextStyle order by ixTextStyle"))
(show '(qn_qn-customizeTextStyles nil nil))
(show-styles)
(show '(qn_qn-customizeTextStyles standards "TITLE"))
(show-styles)

(defun make-labels ()
  (sg_command "delete from tblLabelGroup")
  (foreach label '("'Fans', 'Schedule Title', 'FANS', Null, 'Left', -1, -1"
                   "'Fans', 'Mark', 'Mark', 1.5, 'Left', -1, 1"
                   "'Fans', 'Flow', 'L/s', 2, 'Center', -1, 2"
                   "'Fans', 'Note', 'Note', Null, 'Right', 0, 3"
                   "'Pumps', 'Mark', 'Pump', 3, 'Left', 0, 7")
    (run-all (list (strcat "insert into tblLabelGroup (sGroup, sKey, sLabel, dWidth, sJustification, bDisplay, iSortOrder) values (" label ")")))))
(defun show-labels ()
  (rows-of "select sGroup, sKey, sLabel, dWidth, sJustification, bDisplay, iSortOrder from tblLabelGroup order by ixLabelGroup"))
(princ "\n---- with widths and justification")
(make-labels)
(show '(qn_qn-customizeLabelGroup "Fans" "Fan" nil "ALL"))
(show-labels)
(princ "\n---- one width for all, and a key that is hidden")
(make-labels)
(show '(qn_qn-customizeLabelGroup "Fans" "Fan" standards "SAME" '("Note" 1 "Nothing")))
(show-labels)
(princ "\n---- without widths: the heading's statement holds for every row")
(make-labels)
(show '(qn_qn-customizeLabelGroup "Fans" "Fan" standards))
(show-labels)
(show '(qn_qn-customizeLabelGroup "Fans"))
(show '(qn_qn-customizeLabelGroup "' or 1=1" "None" standards "SAME"))
(princ)
