// JSON output of the xun tool, written with nlohmann-json.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace xuntool {

// JSON documents keep their members in the order they were added.
typedef nlohmann::ordered_json Json;

// A text as a JSON string: bytes that are not UTF-8 are taken as Latin-1
// characters (the library's texts come from files of either encoding), so
// the document is always valid UTF-8.
Json JsonText(const std::string& text);

// A number as JSON: null for NaN and the infinities, which JSON cannot
// hold; an integer when the value is one (1 rather than 1.0); otherwise the
// shortest text that reads back as the same double.
Json JsonNumber(double value);

// Writes the document with two-blank indentation and a final line break.
void PrintJson(const Json& document);

} // namespace xuntool
