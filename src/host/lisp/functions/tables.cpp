#include "host/lisp/functions/tables.h"

namespace sg::lisp {

void defineLanguage(Interpreter& in) {
    for (const auto table :
         {controlFunctions, arithmeticFunctions, listFunctions, sequenceFunctions, stringFunctions,
          conversionFunctions, streamFunctions, fileFunctions, programFunctions}) {
        in.define(table());
    }
}

}  // namespace sg::lisp
