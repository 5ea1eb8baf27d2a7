// What an editor offers at a place of a document.

#include "editor/Completion.h"

#include <fmt/format.h>

#include <string>
#include <utility>
#include <vector>

#include "base/Text.h"
#include "catalogue/BuiltInValues.h"
#include "editor/EditorJson.h"

namespace kc2::tool {

namespace {

// The numbers that the protocol gives these kinds.
constexpr int kPropertyItem = 10;
constexpr int kValueItem = 12;

const Json::Value& schemaOfStep(const Json::Value& schema, const Cursor::Step& step) {
    if (step.isElement) {
        const Json::Value& items = memberOf(schema, "items");
        const auto index = static_cast<Json::ArrayIndex>(step.index);
        return !items.isArray()            ? items
               : items.isValidIndex(index) ? items[index]
                                           : Json::Value::nullSingleton();
    }
    const Json::Value& known = memberOf(memberOf(schema, "properties"), step.key);
    return known.isNull() ? memberOf(schema, "additionalProperties") : known;
}

const Json::Value& schemaAt(const Json::Value& root, const Cursor& cursor, size_t depth) {
    const Json::Value* schema = &root;
    for (size_t i = 0; i < depth; ++i) {
        schema = &schemaOfStep(*schema, cursor.path[i]);
    }
    return *schema;
}

struct Choice {
    std::string value;  // As a document has it.
    std::string meaning;
};

// Adds what is not there yet.
void addChoice(const Json::Value& value, const std::string& meaning, std::vector<Choice>* choices) {
    const std::string written = writtenValue(value);
    for (Choice& known : *choices) {
        if (known.value == written) {
            known.meaning = known.meaning.empty() ? meaning : known.meaning;
            return;
        }
    }
    choices->push_back({written, meaning});
}

void addEnumeration(const Json::Value& schema, std::vector<Choice>* choices) {
    const Json::Value& meanings = memberOf(schema, "enumDescriptions");
    Json::ArrayIndex index = 0;
    for (const Json::Value& value : memberOf(schema, "enum")) {
        addChoice(value, meanings.isValidIndex(index) ? textOf(meanings[index]) : "", choices);
        ++index;
    }
}

// The values that the schema names, the built-in ones first.
std::vector<Choice> choicesIn(const Json::Value& schema) {
    std::vector<Choice> choices;
    if (const Json::Value& value = memberOf(schema, "default"); !value.isNull()) {
        addChoice(value, "", &choices);
    }
    for (const Json::Value& value : memberOf(schema, "examples")) {
        addChoice(value, "", &choices);
    }
    addEnumeration(schema, &choices);
    for (const Json::Value& alternative : memberOf(schema, "anyOf")) {
        addEnumeration(alternative, &choices);
    }
    for (const Json::Value& snippet : memberOf(schema, "defaultSnippets")) {
        if (snippet.isMember("body")) {  // Else it is a text with places to fill in.
            addChoice(snippet["body"], textOf(memberOf(snippet, "description")), &choices);
        }
    }
    if (textOf(memberOf(schema, "type")) == "boolean") {
        addChoice(true, "", &choices);
        addChoice(false, "", &choices);
    }
    return choices;
}

std::string sensibleValue(const Json::Value& schema);

// With the members that must not be absent.
std::string sensibleObject(const Json::Value& schema) {
    std::string members;
    for (const Json::Value& name : memberOf(schema, "required")) {
        const Json::Value& member = memberOf(memberOf(schema, "properties"), textOf(name));
        members += fmt::format("{}\"{}\": {}", members.empty() ? "" : ", ", textOf(name),
                               sensibleValue(member));
    }
    return fmt::format("{{{}}}", members);
}

std::string sensibleValue(const Json::Value& schema) {
    if (const std::vector<Choice> choices = choicesIn(schema); !choices.empty()) {
        return choices.front().value;
    }
    const Json::Value& types = memberOf(schema, "type");
    const std::string type = types.isArray() && !types.empty() ? textOf(types[0]) : textOf(types);
    return type == "object"   ? sensibleObject(schema)
           : type == "array"  ? "[]"
           : type == "string" ? "\"\""
                              : "0";
}

class Offers {
public:
    Offers(const Cursor& cursor, const TextLines& lines) : mCursor(cursor), mLines(lines) {}

    void add(int kind, const std::string& label, const std::string& meaning,
             const std::string& filter, const std::string& text) {
        Json::Value item;
        item["label"] = label;
        item["kind"] = kind;
        // The editor compares this with what the edit replaces, which has the quotes.
        item["filterText"] = filter;
        item["sortText"] = fmt::format("{:04}", mItems.size());
        item["textEdit"] =
                editToJson(mLines, mCursor.token, text + (mCursor.isBeforeMore ? "," : ""));
        if (!meaning.empty()) {
            item["documentation"] = meaning;
        }
        mItems.append(std::move(item));
    }

    Json::Value items() { return std::move(mItems); }

private:
    const Cursor& mCursor;
    const TextLines& mLines;
    Json::Value mItems{Json::arrayValue};
};

void offerNames(const Cursor& cursor, const Json::Value& object, Offers* offers) {
    const Json::Value& properties = memberOf(object, "properties");
    if (!properties.isObject()) {
        return;
    }
    for (const std::string& name : properties.getMemberNames()) {
        const Json::Value& schema = properties[name];
        const std::string meaning = textOf(memberOf(schema, "description"));
        if (cursor.neighbours.count(name) != 0 || meaning.empty()) {
            continue;
        }
        const std::string quoted = fmt::format("\"{}\"", name);
        const std::string rest = cursor.hasColon ? "" : fmt::format(": {}", sensibleValue(schema));
        offers->add(kPropertyItem, name, meaning, quoted, quoted + rest);
    }
}

void offerValues(const Cursor& cursor, const Json::Value& schema, Offers* offers) {
    std::vector<Choice> choices = choicesIn(schema);
    const Cursor::Step& last = cursor.path.back();
    const bool isPerfWord = !memberOf(schema, "pattern").isNull();
    // Words come in pairs: a code, which the schema offers for each, then its value.
    if (isPerfWord && last.isElement && last.index % 2 != 0) {
        choices.clear();
    }
    for (const Choice& choice : choices) {
        const bool isText = choice.value.starts_with('"') && choice.value.size() > 1;
        const std::string label =
                isText ? choice.value.substr(1, choice.value.size() - 2) : choice.value;
        if (!isText || isPerfWord || cursor.neighbours.count(label) == 0) {
            offers->add(kValueItem, label, choice.meaning, choice.value, choice.value);
        }
    }
}

}  // namespace

Json::Value completionsAt(const Cursor& cursor, const TextLines& lines, const Json::Value& schema) {
    Offers offers(cursor, lines);
    if (cursor.role == Cursor::Role::Name) {
        offerNames(cursor, schemaAt(schema, cursor, cursor.path.size() - 1), &offers);
    } else if (cursor.role == Cursor::Role::Value) {
        offerValues(cursor, schemaAt(schema, cursor, cursor.path.size()), &offers);
    }
    return offers.items();
}

}  // namespace kc2::tool
