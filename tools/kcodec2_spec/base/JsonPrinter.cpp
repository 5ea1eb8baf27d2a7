// Prints JSON.

#include "base/JsonPrinter.h"

#include <sstream>

#include "base/Print.h"

namespace kc2::tool {

void print(const Json::Value& json) {
    Json::StreamWriterBuilder writer;
    writer["indentation"] = "  ";
    printOut("{}\n", Json::writeString(writer, json));
}

JsonPrinter::JsonPrinter() {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    mWriter.reset(builder.newStreamWriter());
}

void JsonPrinter::print(const Json::Value& json) const {
    std::ostringstream text;
    mWriter->write(json, &text);
    writeOut(text.str());
}

}  // namespace kc2::tool
