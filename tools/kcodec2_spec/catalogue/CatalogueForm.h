// The form of a settings catalogue file: each kind of object in it, with every member.
#pragma once

#include <string>
#include <vector>

namespace kc2::tool {

struct CatalogueMember {
    const char* name;
    bool isNeeded;
    std::string value;  // What it may be, for people.
    const char* meaning;
};

// The kinds of objects, in the order of the page.
enum class CatalogueKind { File, Setting, Value, Bit, Component, Code };

struct CatalogueObject {
    const char* title;
    std::vector<CatalogueMember> members;
};

// Built once; one object for each kind, in their order.
const std::vector<CatalogueObject>& catalogueForm();
const CatalogueObject& formOf(CatalogueKind kind);

// The code names that "chips" may have: those with a built-in document, and "other" for the rest.
std::vector<std::string> chipNames();

}  // namespace kc2::tool
