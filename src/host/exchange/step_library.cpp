#include "host/exchange/step_library.h"

#include "host/system/companion_library.h"

namespace sg::exchange {

const StepLibrary* stepLibrary() {
    static const auto kEntry =
        reinterpret_cast<StepLibraryEntry>(companionSymbol(kStepLibrary, kStepLibraryEntry));
    return kEntry == nullptr ? nullptr : kEntry();
}

}  // namespace sg::exchange
