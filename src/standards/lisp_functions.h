#pragma once

// The LISP functions that work by the standards database. Each is an implementation as the call
// guard runs it; docs/functions tells what they do.
namespace sg {

int createLayer();  // as the standards describe it

// The dialogs that edit the standards.
int customizeLayers();
int layerSystemOptionsElec();
int layerSystemOptionsPlumb();
int layerSystemOptionsHvac();
int customizeTextStyles();
int customizeLabelGroup();

}  // namespace sg
