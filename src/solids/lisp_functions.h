#pragma once

// The LISP functions that draw sections and fittings as solids. Each is an implementation as the
// call guard runs it; docs/functions/solids.md tells what they do.
namespace sg {

int getTripleCoord();
int drawTripleCenter();
int drawTripleElbow();
int drawTripleTakeoff();
int drawTripleWye();
int drawTripleTransition();
int drawTripleSkin();
int drawHanger();
int tripleUnion();
int explodeSolid();

}  // namespace sg
