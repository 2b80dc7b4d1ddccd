#pragma once

#include <cstdint>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "source_folder.h"

namespace sg::test {

// The keys and signatures of vectors.txt by name; make_vectors.py tells how they were made.
inline const std::map<std::string, std::string>& signatureTexts() {
    static const auto texts = [] {
        std::map<std::string, std::string> found;
        std::ifstream file(testSources() / "support/signatures/vectors.txt");
        for (std::string name, text; std::getline(file, name) && std::getline(file, text);)
            found[name] = text;
        return found;
    }();
    return texts;
}

inline std::vector<uint8_t> signatureBytes(const std::string& name) {
    std::istringstream text(signatureTexts().at(name));
    std::vector<uint8_t> bytes;
    std::string number;
    std::getline(text, number, ',');  // the count
    while (std::getline(text, number, ','))
        bytes.push_back(static_cast<uint8_t>(std::stoi(number)));
    return bytes;
}

}  // namespace sg::test
