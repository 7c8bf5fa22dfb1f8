// Text arguments of the C interface that become registry strings.
#pragma once

#include <stdexcept>
#include <string>

// A null text is a caller error that ends the process: it raises the
// standard library's logic error with the text "basic_string::_M_construct
// null not valid", which leaves the C interface and terminates the host.
inline std::string xunTextArg_(const char* text) {
    if (text == nullptr)
        throw std::logic_error("basic_string::_M_construct null not valid");
    return std::string(text);
}
