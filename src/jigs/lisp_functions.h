#pragma once

// The LISP functions that let the user drag something. Each is an implementation as the call guard
// runs it; docs/functions/jigs.md tells what they do.
namespace sg {

int dragBlocks();
int dragRectangle();
int dragLine();
int dragText();
int dragRotation();
int dragMove();
int dragMultiRotation();

int createJigTimer();
int killJigTimer();

}  // namespace sg
