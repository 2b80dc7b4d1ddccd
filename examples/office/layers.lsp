; Shows the layers dialog on the project's database.
;
;   swiftgate run examples/office/layers.lsp --path examples/office -- project.mdb
;
; On a display a person works in it; --input examples/office/layers.in looks at it, takes a picture,
; gives the text layer another colour and closes it.

(load "tools")
(open-project (car (host-arguments)))
(qn_qn-customizeLayers)
(sg_close_db)
(princ)
