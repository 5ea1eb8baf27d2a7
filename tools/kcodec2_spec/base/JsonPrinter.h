// Prints JSON.
#pragma once

#include <json/value.h>
#include <json/writer.h>

#include <memory>

namespace kc2::tool {

// Prints JSON for scripts, indented, and a line end.
void print(const Json::Value& json);

// Prints JSON on one line, without a line end; for those who print many.
class JsonPrinter {
public:
    JsonPrinter();
    void print(const Json::Value& json) const;

private:
    std::unique_ptr<Json::StreamWriter> mWriter;
};

}  // namespace kc2::tool
