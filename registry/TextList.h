// Joins the idents of a registry list into one newly allocated text, each
// followed by ";", for the ...GetAll functions.
#pragma once

#include <cstdlib>
#include <cstring>
#include <string>

// Returns 0 and leaves *list untouched when the list is empty; otherwise
// stores a malloc'ed copy (released by the caller with free) and returns 1.
template <class List, class IdentOf>
int xunJoinIdents_(const List& items, IdentOf identOf, char** list) {
    std::string text;
    for (const auto* item : items)
        if (item != nullptr) {
            text += *identOf(item);
            text += ';';
        }
    if (text.empty())
        return 0;
    char* copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy == nullptr)
        return 0;
    std::memcpy(copy, text.c_str(), text.size() + 1);
    *list = copy;
    return 1;
}
