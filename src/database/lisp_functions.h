#pragma once

// The sg_ functions as the call guard runs them; docs/functions/sg.md tells what they do.
namespace sg {

// The product's extended data on entities.
int xdPutList();
int xdGet();
int xdGetList();
int xdGetAll();

}  // namespace sg
