;; Shows the options of a layer system.
;;
;;   (util-layersystemoptions SYSTEM PATH)
;;
;; The layers dialog calls this function with a system's id and its database. Which of the three
;; options dialogs comes up is told by the system's name: the electrical one, that for plumbing, and
;; for all other names the one for ducts. A program that knows better defines its own.

(defun util-layersystemoptions (system path / name)
  (setq name (strcase (util-layersystemoptions:name system path)))
  (cond
    ((wcmatch name "*ELEC*,*POWER*,*LIGHT*,*CONDUIT*,*CABLE*,*ALARM*,*DATA*")
      (qn_qn-LayerSystemOptionsElec "" path system))
    ((wcmatch name "*PLUMB*,*PIP*,*WATER*,*SANITARY*,*DRAIN*,*SEWER*,*GAS*,*SPRINKLER*")
      (qn_qn-LayerSystemOptionsPlumb path system))
    (t (qn_qn-LayerSystemOptionsHVAC path system))))

(defun util-layersystemoptions:name (system path / rows)
  (setq rows
    (host-database-select path
      (strcat "select sDescription from tblLayerSystem where ixLayerSystem = " (itoa system))))
  (if (and rows (car (car rows))) (car (car rows)) ""))

(princ)
