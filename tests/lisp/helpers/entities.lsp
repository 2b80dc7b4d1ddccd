;; Lists of objects without what differs from drawing to drawing.

;; The list of an object; of entity names and handles only the group's code stays.
(defun groups (e)
  (mapcar '(lambda (group) (if (or (= (type (cdr group)) 'ENAME) (= (car group) 5))
                             (list (car group))
                             group))
          (entget e '("*"))))

;; The groups behind the layer, of an entity on layer 0: those of its class.
(defun own (e) (cdr (member '(8 . "0") (groups e))))

;; The value of a group.
(defun group-of (code e) (cdr (assoc code (entget e))))

;; Gives an object another value of a group, or an entity one that it did not have; what it has then.
(defun change (e code new / given)
  (setq given (entget e)
        given (if (assoc code given)
                (subst (cons code new) (assoc code given) given)
                (apply 'append
                       (mapcar '(lambda (group) (if (= (car group) 8) (list group (cons code new)) (list group)))
                               given))))
  (if (entmod given) (group-of code e) 'refused))

;; How many entities the spaces hold.
(defun count-entities (/ e count)
  (setq count 0 e (entnext))
  (while e (setq count (1+ count) e (entnext e)))
  count)
(princ)
