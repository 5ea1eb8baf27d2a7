// The JSON Schema of the documents, for editors.
#pragma once

#include <json/value.h>

#include "catalogue/Catalogue.h"

namespace kc2::tool {

// A schema (draft-07) of system spec documents, with the catalogue's settings and components.
Json::Value schemaOf(const Catalogue& catalogue);

}  // namespace kc2::tool
