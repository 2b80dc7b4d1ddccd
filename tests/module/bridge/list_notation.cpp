#include "module/bridge/list_notation.h"

#include <cstdio>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "base/encoding.h"

namespace sg::test {
namespace {

constexpr struct {
    const char* text;
    int16_t type;
} kPlain[] = {{"(", RTLB},    {")", RTLE}, {".", RTDOTE},
              {"nil", RTNIL}, {"T", RTT},  {"void", RTVOID}};

std::vector<double> numbersOf(const std::string& text) {
    std::vector<double> numbers;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, ',');)
        numbers.push_back(std::stod(part));
    return numbers;
}

void setText(resbuf& node, std::string text) {
    for (char& c : text) {
        if (c == '_') c = ' ';
    }
    node.restype = RTSTR;
    node.resval.rstring = acutNewString(fromUtf8(text).c_str());
}

void setPoint(resbuf& node, const std::vector<double>& at) {
    node.restype = at.size() == 2 ? RTPOINT : RT3DPOINT;
    for (size_t i = 0; i < at.size(); ++i)
        node.resval.rpoint[i] = at[i];
}

void setName(resbuf& node, int16_t type, const std::vector<double>& words) {
    node.restype = type;
    node.resval.rlname[0] = static_cast<int32_t>(words.at(0));
    node.resval.rlname[1] = static_cast<int32_t>(words.at(1));
}

void setNumber(resbuf& node, const std::string& item) {
    switch (item.back()) {
        case 's':
            node.restype = RTSHORT;
            node.resval.rint = static_cast<int16_t>(std::stoi(item));
            break;
        case 'r':
            node.restype = RTREAL;
            node.resval.rreal = std::stod(item);
            break;
        default:
            node.restype = RTLONG;
            node.resval.rlong = static_cast<int32_t>(std::stol(item));
    }
}

void setValue(resbuf& node, const std::string& item) {
    for (const auto& plain : kPlain) {
        if (item == plain.text) {
            node.restype = plain.type;
            return;
        }
    }
    if (item.front() == '\'') return setText(node, item.substr(1, item.size() - 2));
    if (item.front() == '<') return setPoint(node, numbersOf(item.substr(1, item.size() - 2)));
    if (item.front() == 'e') return setName(node, RTENAME, numbersOf(item.substr(2)));
    if (item.front() == 'p') return setName(node, RTPICKS, numbersOf(item.substr(2)));
    setNumber(node, item);
}

void setItem(resbuf& node, const std::string& item) {
    const size_t colon = item.find(':');
    const bool dxf = colon != std::string::npos && item.front() != '\'' &&
                     (item.front() == '-' || std::isdigit(item.front()));
    setValue(node, dxf ? item.substr(colon + 1) : item);
    if (dxf) node.restype = static_cast<int16_t>(std::stoi(item));
}

std::string number(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.12g", value);
    return text;
}

std::string pointText(const resbuf& node, int count) {
    std::string text = "<";
    for (int i = 0; i < count; ++i)
        text += (i == 0 ? "" : ",") + number(node.resval.rpoint[i]);
    return text + ">";
}

std::string nameText(const resbuf& node) {
    return std::to_string(node.resval.rlname[0]) + "," + std::to_string(node.resval.rlname[1]);
}

std::string stringText(const resbuf& node) {
    std::string text = toUtf8(node.resval.rstring);
    for (char& c : text) {
        if (c == ' ') c = '_';
    }
    return "'" + text + "'";
}

std::string describeValue(const resbuf& node, int16_t type) {
    for (const auto& plain : kPlain) {
        if (type == plain.type) return plain.text;
    }
    switch (type) {
        case RTLONG:
            return std::to_string(node.resval.rlong);
        case RTSHORT:
            return std::to_string(node.resval.rint) + "s";
        case RTREAL:
            return number(node.resval.rreal) + "r";
        case RTSTR:
            return stringText(node);
        case RTPOINT:
            return pointText(node, 2);
        case RT3DPOINT:
            return pointText(node, 3);
        case RTENAME:
            return "e:" + nameText(node);
        case RTPICKS:
            return "p:" + nameText(node);
        default:
            return "?" + std::to_string(type);
    }
}

std::string describeNode(const resbuf& node) {
    if (node.restype >= 1000) return describeValue(node, node.restype);
    return std::to_string(node.restype) + ":" +
           describeValue(node, acdbGroupCodeToType(node.restype));
}

}  // namespace

List makeList(const std::string& notation) {
    List head;
    resbuf* tail = nullptr;
    std::istringstream in(notation);
    for (std::string item; in >> item;) {
        resbuf* node = acutNewRb(RTNIL);
        if (tail == nullptr) {
            head.reset(node);
        } else {
            tail->rbnext = node;
        }
        tail = node;
        setItem(*node, item);
    }
    return head;
}

std::string describe(const resbuf* list) {
    std::string text;
    for (; list != nullptr; list = list->rbnext) {
        if (!text.empty()) text += ' ';
        text += describeNode(*list);
    }
    return text;
}

}  // namespace sg::test
