// The packaged JSON parsers that are called fast, on the same documents. They read neither comments
// nor leading zeros, so they get the documents without them.

#include <rapidjson/document.h>
#include <simdjson.h>

#include <cctype>
#include <memory>

#include "bench/Documents.h"
#include "bench/Operation.h"

namespace kc2::bench {

namespace {

// The text without comments and leading zeros, and as long as the other one where it can be.
std::string strictText(const std::string& text) {
    std::string strict;
    char last = ' ';
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '"') {
            const size_t start = at;
            for (++at; text[at] != '"'; ++at) {
                at += text[at] == '\\';
            }
            strict.append(text, start, at + 1 - start);
        } else if (text.compare(at, 2, "//") == 0) {
            at = text.find('\n', at) - 1;
        } else if (text.compare(at, 2, "/*") == 0) {
            at = text.find("*/", at) + 1;
        } else if (text[at] == '0' && !std::isdigit(static_cast<unsigned char>(last)) &&
                   last != '.' && std::isdigit(static_cast<unsigned char>(text.at(at + 1)))) {
            continue;
        } else {
            strict += text[at];
        }
        last = text[at];
    }
    return strict;
}

}  // namespace

Operations otherParserOperations() {
    Operations operations;
    for (const Document& document : documents()) {
        const auto text = std::make_shared<std::string>(strictText(document.text));
        operations.push_back({"RapidJSON " + document.name, 1, [text] {
                                  rapidjson::Document root;
                                  if (root.Parse(text->data(), text->size()).HasParseError()) {
                                      std::abort();
                                  }
                                  keep(root);
                              }});
        const auto padded = std::make_shared<simdjson::padded_string>(*text);
        operations.push_back({"simdjson " + document.name, 1, [padded] {
                                  simdjson::dom::parser parser;
                                  if (parser.parse(*padded).error() != simdjson::SUCCESS) {
                                      std::abort();
                                  }
                              }});
    }
    return operations;
}

}  // namespace kc2::bench
