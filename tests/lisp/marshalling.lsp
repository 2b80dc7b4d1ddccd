;; The example, as it ships.
(load "../../examples/marshalling/marshalling.lsp")
