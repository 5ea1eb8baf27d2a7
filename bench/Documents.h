// The documents that are measured, and the device tree that they lie in.
#pragma once

#include <string>
#include <vector>

namespace kc2::bench {

struct Document {
    std::string name;
    std::string path;  // A file of this machine that holds the text.
    std::string text;
    int entries = 0;  // Of a generated document; 0 for the others.
};

// The built-in documents, the examples, and generated ones of 10 to 100,000 entries.
const std::vector<Document>& documents();

const Document& documentNamed(const std::string& name);

// The largest document that a person wrote: an example, else a built-in one.
const Document& richestDocument();

// Lets the device's directories lie in a directory of this process, where the system spec file
// holds richestDocument() and the private configuration file the first built-in document, and
// silences the log.
void setUpDevice();

// Removes the files that this process has made.
void tearDownDevice();

}  // namespace kc2::bench
